// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Moves every date of a photo by one offset, each from its own value: a camera whose clock ran
// late is fixed by shifting, never by setting one date on all photos.
#include <QString>
#include <optional>

class TagsPhotoModifier;

namespace DateShift {

// "+0:52" (52 minutes), "-1 2:00:00" (back a day and two hours), "+3" (hours), "2:00:05"; the
// sign applies to the whole offset. Seconds, or nothing for any other text.
std::optional<qint64> parseOffset(const QString& text);

// An EXIF date text "yyyy:MM:dd HH:mm:ss" moved by `seconds` as wall-clock time (no zone, so no
// summer-time jumps); nothing when the text is no such date or the year leaves 1 to 9999.
std::optional<QString> shifted(const QString& exifDate, qint64 seconds);

// Shifts DateTimeOriginal, DateTimeDigitized and DateTime where the photo has them. True when
// any changed.
bool shiftDates(TagsPhotoModifier& tags, qint64 seconds);

}  // namespace DateShift
