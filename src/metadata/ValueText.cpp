// SPDX-License-Identifier: GPL-3.0-or-later
#include "ValueText.h"

#include <QLocale>
#include <QStringList>
#include <cmath>

namespace valuetext {

bool isInteger(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong:
    case QMetaType::Short: case QMetaType::UShort: case QMetaType::Long: case QMetaType::ULong:
        return true;
    default:
        return false;
    }
}
bool isNumber(const QVariant& v) {
    return isInteger(v) || v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float ||
           v.typeId() == QMetaType::Bool;
}
bool isText(const QVariant& v) { return v.typeId() == QMetaType::QString; }
bool isArray(const QVariant& v) { return v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList; }
bool isDictionary(const QVariant& v) { return v.typeId() == QMetaType::QVariantMap; }
bool isData(const QVariant& v) { return v.typeId() == QMetaType::QByteArray; }

QString describeDouble(double d) {
    if (std::isnan(d)) return QStringLiteral("nan");
    if (std::isinf(d)) return d > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    QString s = QString::number(d, 'g', QLocale::FloatingPointShortest);
    if (!s.contains(u'.') && !s.contains(u'e')) s += QStringLiteral(".0");
    return s;
}

QString describe(const QVariant& v) {
    if (isText(v)) return v.toString();
    if (v.typeId() == QMetaType::Bool) return v.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    if (isInteger(v)) return QString::number(v.toLongLong());
    if (isNumber(v)) return QString::number(v.toDouble(), 'g', QLocale::FloatingPointShortest);
    if (isArray(v)) {
        QStringList parts;
        for (const QVariant& e : v.toList()) parts << describe(e);
        return '[' + parts.join(", ") + ']';
    }
    if (isDictionary(v)) {
        const QVariantMap map = v.toMap();
        if (map.isEmpty()) return QStringLiteral("[:]");
        QStringList parts;
        for (auto it = map.begin(); it != map.end(); ++it) parts << it.key() + ": " + describe(it.value());
        return '[' + parts.join(", ") + ']';
    }
    if (isData(v)) return QStringLiteral("%1 bytes").arg(v.toByteArray().size());
    if (!v.isValid() || v.isNull()) return QStringLiteral("nil");
    return v.toString();
}

}  // namespace valuetext
