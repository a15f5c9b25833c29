#include "JsonOutput.h"

#include <QJsonDocument>

#include <cstdio>

namespace cli {

JsonOutput::JsonOutput(const Arguments& args, bool always)
    : on_(always || args.has("--json")), pretty_(args.has("--pretty")) {}

void JsonOutput::print() const {
    if (!on_) return;
    QByteArray text = QJsonDocument(entries_).toJson(pretty_ ? QJsonDocument::Indented : QJsonDocument::Compact);
    if (!text.endsWith('\n')) text += '\n';
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

}  // namespace cli
