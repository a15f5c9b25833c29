// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The shared date formats: the user's locale for display, and EXIF's fixed text for tags.
#include <QDateTime>
#include <QString>
#include <optional>

namespace Formatter {

enum class Style { fullDate, mediumDate, shortDate, longDate, timeOnly };

QString format(const QDateTime& date, Style style);
// Reads back a text that `format` made in the same style.
std::optional<QDateTime> parse(const QString& text, Style style);

// "yyyy:MM:dd HH:mm:ss" in local time, whatever the locale; nothing for any other text.
std::optional<QDateTime> exifDate(const QString& text);
QString exifDateText(const QDateTime& date);

}  // namespace Formatter
