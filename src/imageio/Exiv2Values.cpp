// SPDX-License-Identifier: GPL-3.0-or-later
#include "Exiv2Values.h"

#include <exiv2/tags.hpp>

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {

// A double as a whole number without the undefined behaviour of an out-of-range cast.
qint64 whole(double d) {
    if (!std::isfinite(d)) return 0;
    return qint64(std::clamp(std::round(d), -9.0e18, 9.0e18));
}

QString textOf(const QVariant& v) {
    if (v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList) {
        QStringList parts;
        for (const QVariant& e : v.toList()) parts << textOf(e);
        return parts.join(", ");
    }
    if (v.typeId() == QMetaType::QByteArray) return QString::fromUtf8(v.toByteArray());
    if (v.typeId() == QMetaType::Double) return QString::number(v.toDouble(), 'g', 15);
    return v.toString();
}

QStringList itemsOf(const QVariant& v) {
    if (v.typeId() == QMetaType::QVariantList || v.typeId() == QMetaType::QStringList) {
        QStringList out;
        for (const QVariant& e : v.toList()) out << textOf(e);
        return out;
    }
    return {textOf(v)};
}

// Numbers of a scalar, a list, or a text such as "6" or "2 3 2".
QList<double> numbersOf(const QVariant& v) {
    QList<double> out;
    if (v.typeId() == QMetaType::QVariantList) {
        for (const QVariant& e : v.toList()) out << numbersOf(e);
        return out;
    }
    if (v.typeId() == QMetaType::QString) {
        static const QRegularExpression sep(QStringLiteral("[\\s,]+"));
        for (const QString& part : v.toString().split(sep, Qt::SkipEmptyParts)) {
            const auto slash = part.indexOf('/');
            bool ok = false;
            if (slash > 0) {
                double den = part.mid(slash + 1).toDouble(&ok);
                double num = ok ? part.left(slash).toDouble(&ok) : 0;
                if (ok && den != 0) out << num / den;
            } else if (double d = part.toDouble(&ok); ok) {
                out << d;
            }
        }
        return out;
    }
    bool ok = false;
    double d = v.toDouble(&ok);
    if (ok) out << d;
    return out;
}

namespace {

// A double as the nearest short fraction: whole numbers over 1, exposure times as 1/n,
// everything else over a power of ten up to a millionth.
QString rationalText(double d, bool isSigned) {
    if (!std::isfinite(d) || (!isSigned && d < 0)) d = 0;
    constexpr double kMax = 2e9;
    if (std::fabs(d) >= kMax) d = std::copysign(kMax, d);
    if (d == std::round(d)) return QStringLiteral("%1/1").arg(whole(d));
    const double inverse = 1 / d;
    if (std::fabs(inverse) < kMax && std::fabs(inverse - std::round(inverse)) < 1e-9 * std::fabs(inverse))
        return QStringLiteral("%1/%2").arg(d < 0 ? -1 : 1).arg(whole(std::fabs(inverse)));
    qint64 den = 10;
    while (den < 1000000 && std::fabs(d * den - std::round(d * den)) > 1e-9 && std::fabs(d * den * 10) < kMax) den *= 10;
    while (std::fabs(d * den) >= kMax && den > 1) den /= 10;
    return QStringLiteral("%1/%2").arg(whole(d * den)).arg(den);
}

// Decimal degrees as degrees, minutes and seconds to a ten-thousandth.
QString degreesText(double d) {
    d = std::fabs(d);
    if (!std::isfinite(d) || d > 360) d = 0;
    qint64 total = whole(d * 3600 * 10000);
    qint64 deg = total / (3600 * 10000), rest = total % (3600 * 10000);
    return QStringLiteral("%1/1 %2/1 %3/10000").arg(deg).arg(rest / (60 * 10000)).arg(rest % (60 * 10000));
}

}  // namespace

bool isAscii(const QString& s) {
    for (QChar c : s)
        if (c.unicode() > 0x7e) return false;
    return true;
}

std::unique_ptr<Exiv2::Value> exifValue(uint16_t tag, const std::string& group, const QVariant& v) {
    const Exiv2::TypeId type = Exiv2::ExifKey(tag, group).defaultTypeId();
    std::unique_ptr<Exiv2::Value> value(Exiv2::Value::create(type).release());
    auto read = [&](const QString& text) { return value->read(text.toStdString()) == 0; };
    const bool gps = group == "GPSInfo";
    if (gps && (tag == 0x02 || tag == 0x04 || tag == 0x14 || tag == 0x16)) {
        const auto n = numbersOf(v);
        if (n.size() == 1) return read(degreesText(n.first())) ? std::move(value) : nullptr;
        QStringList parts;
        for (double d : n) parts << rationalText(d, false);
        return read(parts.join(' ')) ? std::move(value) : nullptr;
    }
    if (gps && tag == 0x07 && v.typeId() == QMetaType::QString) {
        QStringList parts;
        for (const QString& p : v.toString().split(':')) parts << rationalText(p.toDouble(), false);
        return read(parts.join(' ')) ? std::move(value) : nullptr;
    }
    switch (type) {
    case Exiv2::comment: {
        const QString text = textOf(v);
        return read((isAscii(text) ? QStringLiteral("charset=Ascii ") : QStringLiteral("charset=Unicode ")) + text)
                   ? std::move(value) : nullptr;
    }
    case Exiv2::undefined: {
        QByteArray bytes;
        if (v.typeId() == QMetaType::QByteArray) {
            bytes = v.toByteArray();
        } else if (v.typeId() == QMetaType::QVariantList && (tag == 0x9000 || tag == 0xa000)) {
            // Version arrays go back to their four digits: [2, 3, 2] → "0232".
            const auto n = numbersOf(v);
            if (n.isEmpty()) return nullptr;
            bytes = QByteArray::number(whole(n.value(0))).rightJustified(2, '0') +
                    QByteArray::number(whole(n.value(1))) + QByteArray::number(whole(n.value(2)));
        } else if (v.typeId() == QMetaType::QVariantList) {
            for (double d : numbersOf(v)) bytes.append(char(whole(d) & 0xff));
        } else if (v.typeId() == QMetaType::Int || v.typeId() == QMetaType::UInt || v.typeId() == QMetaType::LongLong ||
                   v.typeId() == QMetaType::ULongLong || v.typeId() == QMetaType::Double) {
            // A one-byte code read as a number (FileSource 3, SceneType 1) goes back as that byte,
            // not as the digit's character.
            bytes.append(char(whole(v.toDouble()) & 0xff));
        } else {
            bytes = textOf(v).toUtf8();
        }
        value->read(reinterpret_cast<const Exiv2::byte*>(bytes.constData()), long(bytes.size()), Exiv2::littleEndian);
        return value;
    }
    case Exiv2::unsignedRational:
    case Exiv2::signedRational: {
        QStringList parts;
        for (double d : numbersOf(v)) parts << rationalText(d, type == Exiv2::signedRational);
        return !parts.isEmpty() && read(parts.join(' ')) ? std::move(value) : nullptr;
    }
    case Exiv2::unsignedByte: case Exiv2::unsignedShort: case Exiv2::unsignedLong: case Exiv2::signedByte:
    case Exiv2::signedShort: case Exiv2::signedLong: case Exiv2::tiffFloat: case Exiv2::tiffDouble: {
        QStringList parts;
        const bool integral = type != Exiv2::tiffFloat && type != Exiv2::tiffDouble;
        for (double d : numbersOf(v)) parts << (integral ? QString::number(whole(d)) : QString::number(d, 'g', 17));
        return !parts.isEmpty() && read(parts.join(' ')) ? std::move(value) : nullptr;
    }
    default:
        return read(textOf(v)) ? std::move(value) : nullptr;
    }
}

// "yyyy:MM:dd HH:mm:ss" → "yyyy-MM-ddTHH:mm:ss"; other texts stay.
QString isoDate(const QString& exifDate) {
    static const QRegularExpression re(QStringLiteral("^(\\d{4}):(\\d{2}):(\\d{2}) (\\d{2}:\\d{2}:\\d{2})$"));
    const auto m = re.match(exifDate);
    return m.hasMatch() ? QStringLiteral("%1-%2-%3T%4").arg(m.captured(1), m.captured(2), m.captured(3), m.captured(4))
                        : exifDate;
}

}  // namespace imageio
