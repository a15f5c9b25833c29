// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Property values as the writer hands them to exiv2: texts, lists and numbers of a property
// dictionary turned into exiv2 values of each tag's own type.
#include <exiv2/value.hpp>

#include <QList>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <string>

namespace imageio {

// A double as a whole number without the undefined behaviour of an out-of-range cast.
qint64 whole(double d);
// A value as one text; a list's items joined by ", ".
QString textOf(const QVariant& v);
// A value as its items' texts; a single value is one item.
QStringList itemsOf(const QVariant& v);
// Numbers of a scalar, a list, or a text such as "6" or "2 3 2".
QList<double> numbersOf(const QVariant& v);
bool isAscii(const QString& s);
// The value of EXIF tag `tag` in IFD `group`, of that tag's default type; nothing when `v` can't
// be read as one.
std::unique_ptr<Exiv2::Value> exifValue(uint16_t tag, const std::string& group, const QVariant& v);
// "yyyy:MM:dd HH:mm:ss" → "yyyy-MM-ddTHH:mm:ss"; other texts stay.
QString isoDate(const QString& exifDate);

}  // namespace imageio
