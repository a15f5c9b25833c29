// SPDX-License-Identifier: GPL-3.0-or-later
#include "JsonOutput.h"

#include <QJsonDocument>

#include <cmath>
#include <cstdio>

namespace cli {

JsonOutput::JsonOutput(const Arguments& args, bool always)
    : on_(always || args.has("--json")), pretty_(args.has("--pretty")) {}

void JsonOutput::write(const QByteArray& text) {
    if (pretty_) held_ += text;
    else std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

void JsonOutput::add(const QJsonObject& entry) {
    if (on_) addText(QJsonDocument(entry).toJson(QJsonDocument::Compact));
}

void JsonOutput::addText(const QByteArray& entry) {
    if (!on_) return;
    write(count_++ == 0 ? QByteArrayLiteral("[") : QByteArrayLiteral(","));
    write(entry);
}

void JsonOutput::print() {
    if (!on_) return;
    write(count_ == 0 ? QByteArrayLiteral("[]\n") : QByteArrayLiteral("]\n"));
    if (!pretty_) return;
    const QByteArray text = QJsonDocument::fromJson(held_).toJson(QJsonDocument::Indented);
    std::fwrite(text.constData(), 1, size_t(text.size()), stdout);
}

void appendJsonString(QByteArray& out, QStringView text) {
    static const char hex[] = "0123456789abcdef";
    const QByteArray utf8 = text.toUtf8();
    out += '"';
    for (char c : utf8) {
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (uint8_t(c) < 0x20) {
                out += "\\u00";
                out += hex[uint8_t(c) >> 4];
                out += hex[uint8_t(c) & 0xf];
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

void appendJson(QByteArray& out, const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::QVariantMap: {
        const QVariantMap& map = *static_cast<const QVariantMap*>(v.constData());
        out += '{';
        for (auto it = map.begin(); it != map.end(); ++it) {
            if (it != map.begin()) out += ',';
            appendJsonString(out, it.key());
            out += ':';
            appendJson(out, it.value());
        }
        out += '}';
        return;
    }
    case QMetaType::QVariantList: {
        const QVariantList& list = *static_cast<const QVariantList*>(v.constData());
        out += '[';
        for (qsizetype i = 0; i < list.size(); ++i) {
            if (i) out += ',';
            appendJson(out, list[i]);
        }
        out += ']';
        return;
    }
    case QMetaType::QByteArray:
        out += '"';
        out += v.toByteArray().toBase64();
        out += '"';
        return;
    case QMetaType::Bool: out += v.toBool() ? "true" : "false"; return;
    case QMetaType::Double: {
        const double d = v.toDouble();
        if (!std::isfinite(d)) out += "null";
        else if (d == std::trunc(d) && d >= -9223372036854775808.0 && d < 9223372036854775808.0)
            out += QByteArray::number(qint64(d));
        else out += QByteArray::number(d, 'g', QLocale::FloatingPointShortest);
        return;
    }
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong:
        out += QByteArray::number(v.toLongLong());
        return;
    case QMetaType::UnknownType: case QMetaType::Nullptr: out += "null"; return;
    default: appendJsonString(out, v.toString()); return;
    }
}

}  // namespace cli
