// SPDX-License-Identifier: GPL-3.0-or-later
#include "Workers.h"

namespace cli {

void setUpWorkers() {
    bool ok = false;
    const int n = qEnvironmentVariableIntValue("TESSORIN_WORKERS", &ok);
    if (ok && n > 0) QThreadPool::globalInstance()->setMaxThreadCount(n);
}

}  // namespace cli
