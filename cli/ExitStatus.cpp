// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExitStatus.h"

#include "Commands.h"
#include "JsonOutput.h"

namespace cli {

void ExitStatus::fail(const QString& file, const QString& cause, JsonOutput* json) {
    printError(file + ": " + cause + "\n");
    if (json) json->add(QJsonObject{{"file", file}, {"error", cause}});
    failed_ = true;
}

}  // namespace cli
