// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Sets the zone of a photo's dates (OffsetTime, OffsetTimeOriginal, OffsetTimeDigitized), either
// keeping the local times (the camera showed the right clock, the zone was missing or wrong) or
// keeping the instant (the camera stayed on home time: the local times move).
#include <QDateTime>
#include <QString>
#include <optional>

class TagsPhotoModifier;

namespace TimeZones {

struct ZoneWish {
    std::optional<int> offsetSeconds;  // a fixed offset, "+02:00"
    QString zoneName;                  // or a zone, "Europe/Rome", whose offset depends on the date
    bool keepInstant = false;
};

// "+02:00", "-0530", "Z", "UTC" or a zone name the system knows; nothing otherwise.
std::optional<ZoneWish> parseZone(const QString& text);

// The EXIF offset text of `seconds` east of UTC: "+02:00", "-05:30".
QString offsetText(int seconds);
// Seconds east of UTC of an EXIF offset text, or nothing.
std::optional<int> parseOffsetText(const QString& text);

// Seconds east of UTC the wish gives at a wall-clock time (a QDateTime in UTC standing for the
// clock) or, with `isInstant`, at an instant: a zone name's offset on that date.
int offsetAt(const ZoneWish& wish, const QDateTime& localOrInstant, bool isInstant);

// Applies the wish to every date the photo has. Nothing on success; otherwise why the photo was
// left alone (keeping the instant needs the zone the dates were in).
std::optional<QString> applyZone(TagsPhotoModifier& tags, const ZoneWish& wish);

}  // namespace TimeZones
