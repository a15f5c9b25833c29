// SPDX-License-Identifier: GPL-3.0-or-later
#include "SendableMessage.h"

#include <QStringList>

QString SendableMessage::arrow() { return QStringLiteral("\n\t\u21AA\uFE0F"); }

namespace {

bool isList(const QVariant& v) {
    return v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList;
}

QString printed(const QVariant& v, bool quoteText);

template <typename Map>
QString printedMap(const Map& map) {
    if (map.isEmpty()) return QStringLiteral("[:]");
    QStringList parts;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        parts << printed(it.key(), true) + QStringLiteral(": ") + printed(it.value(), true);
    return '[' + parts.join(QStringLiteral(", ")) + ']';
}

// The printed form of a value; inside collections texts are quoted so that their bounds show.
QString printed(const QVariant& v, bool quoteText) {
    if (!v.isValid() || v.isNull()) return QStringLiteral("nil");
    switch (v.typeId()) {
    case QMetaType::QString: return quoteText ? '"' + v.toString() + '"' : v.toString();
    case QMetaType::Bool: return v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::QByteArray: return QString::number(v.toByteArray().size()) + QStringLiteral(" bytes");
    case QMetaType::QVariantMap: return printedMap(v.toMap());
    case QMetaType::QVariantHash: return printedMap(v.toHash());
    default: break;
    }
    if (isList(v)) {
        QStringList parts;
        for (const QVariant& element : v.toList()) parts << printed(element, true);
        return '[' + parts.join(QStringLiteral(", ")) + ']';
    }
    if (v.canConvert<QString>()) return v.toString();
    return QString::fromLatin1(v.typeName());
}

template <typename Map>
QString mapLines(const Map& map) {
    QString text;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        text += SendableMessage::arrow() + it.key() + QStringLiteral(" \u2192 ") + printed(it.value(), false);
    return text;
}

}  // namespace

SendableMessage::SendableMessage(const QVariant& message) {
    if (message.typeId() == QMetaType::QVariantMap) {
        text_ = mapLines(message.toMap());
    } else if (message.typeId() == QMetaType::QVariantHash) {
        text_ = mapLines(message.toHash());
    } else if (isList(message)) {
        for (const QVariant& element : message.toList()) text_ += arrow() + printed(element, false);
    } else {
        text_ = arrow() + printed(message, false);
    }
}
