// SPDX-License-Identifier: GPL-3.0-or-later
#include "WriteCheck.h"

#include "PropertyKeys.h"

#include <cmath>

namespace WriteCheck {

namespace {

bool removal(const QVariant& v) { return !v.isValid() || v.isNull(); }

bool number(const QVariant& v, double& out) {
    const int t = v.typeId();
    if (t != QMetaType::Double && t != QMetaType::Int && t != QMetaType::LongLong && t != QMetaType::UInt &&
        t != QMetaType::ULongLong && t != QMetaType::Float && t != QMetaType::QString)
        return false;
    bool ok = false;
    out = v.toDouble(&ok);
    return ok;
}

bool same(const QVariant& wish, const QVariant& read) {
    // A one-element list reads as its element where the format keeps single values.
    if (wish.typeId() == QMetaType::QVariantList && wish.toList().size() == 1 &&
        read.typeId() != QMetaType::QVariantList)
        return same(wish.toList().first(), read);
    if (read.typeId() == QMetaType::QVariantList && read.toList().size() == 1 &&
        wish.typeId() != QMetaType::QVariantList)
        return same(wish, read.toList().first());
    if (wish.typeId() == QMetaType::QVariantList && read.typeId() == QMetaType::QVariantList) {
        const QVariantList a = wish.toList(), b = read.toList();
        // A list kept where the format holds one text (XMP's photoshop:CaptionWriter) reads as
        // its items joined.
        if (b.size() == 1 && a.size() > 1) {
            QStringList items;
            for (const QVariant& v : a) items << v.toString().trimmed();
            if (same(items.join(QStringLiteral(", ")), b.first())) return true;
        }
        if (a.size() != b.size()) return false;
        for (qsizetype i = 0; i < a.size(); ++i)
            if (!same(a[i], b[i])) return false;
        return true;
    }
    if (wish.typeId() == QMetaType::QString && read.typeId() == QMetaType::QString)
        return wish.toString().trimmed() == read.toString().trimmed();
    double x = 0, y = 0;
    // Rationals keep about seven significant digits, GPS seconds four decimals.
    if (number(wish, x) && number(read, y)) return std::fabs(x - y) <= 1e-6 * std::max(1.0, std::fabs(x));
    return wish.toString() == read.toString();
}

std::optional<QString> compareGroup(const QString& group, const QVariantMap& before, const QVariantMap& wished,
                                    const QVariantMap& read, bool checkRemovals) {
    for (auto it = wished.begin(); it != wished.end(); ++it) {
        const QString name = group + "." + it.key();
        const QVariant now = read.value(it.key());
        if (removal(it.value())) {
            if (checkRemovals && !removal(now)) return name + " was to be removed and is still there";
            continue;
        }
        // A value the file had already is left as it is by the writer.
        if (!removal(before.value(it.key())) && same(it.value(), before.value(it.key()))) continue;
        if (it.value().typeId() == QMetaType::QVariantMap) {
            if (auto d = compareGroup(name, before.value(it.key()).toMap(), it.value().toMap(), now.toMap(), checkRemovals))
                return d;
            continue;
        }
        if (removal(now)) return name + " is missing";
        if (!same(it.value(), now)) return name + " reads \"" + now.toString() + "\", not \"" + it.value().toString() + "\"";
    }
    return std::nullopt;
}

}  // namespace

std::optional<QString> readBackDifference(const imageio::PropertyDict& before, const imageio::PropertyDict& wished,
                                          const imageio::Rewritten& written, const imageio::PropertyDict& read) {
    // In a TIFF file the {TIFF} group also describes the pixels, which the writer keeps on purpose.
    const imageio::Format format = imageio::detectFormat(written.head(64));
    const bool tiff = format == imageio::Format::Tiff;
    for (const QString& group : {QString(kCGImagePropertyExifDictionary), QString(kCGImagePropertyTIFFDictionary),
                                 QString(kCGImagePropertyGPSDictionary), QString(kCGImagePropertyIPTCDictionary)}) {
        const QVariant wish = wished.value(group);
        if (!wish.isValid()) continue;
        const bool checkRemovals = !(tiff && group == kCGImagePropertyTIFFDictionary);
        if (removal(wish) && checkRemovals) {
            bool left = false;
            for (const QVariant& v : read.value(group).toMap()) left = left || !removal(v);
            if (left) return group + " was to be removed and is still there";
            continue;
        }
        if (auto d = compareGroup(group, before.value(group).toMap(), wish.toMap(), read.value(group).toMap(), checkRemovals))
            return d;
    }
    return std::nullopt;
}

}  // namespace WriteCheck
