// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Places photos on a track log: each photo at the log's position at its capture instant.
#include "TrackLog.h"

#include <QDateTime>
#include <optional>

class TagsPhotoModifier;

namespace Geotagger {

struct Options {
    // Added to the camera's time to give the logger's: "+0:52" when the camera ran 52 minutes late.
    qint64 clockOffsetSeconds = 0;
    // The longest time between two log points that is still bridged.
    qint64 maxGapSeconds = 30 * 60;
};

// The instant a photo was taken: DateTimeOriginal (else DateTimeDigitized, else DateTime) with
// its sub-seconds, in the zone its offset tag gives, else in the system's zone, as the camera's
// clock is taken to show local time.
std::optional<QDateTime> captureInstant(const TagsPhotoModifier& tags);

// Writes the position, altitude, direction of travel and the GPS date and time of the instant
// into the photo's GPS tags. Nothing on success; otherwise why the photo was left alone.
std::optional<QString> geotag(TagsPhotoModifier& tags, const TrackLog& log, const Options& options);

// "5m", "90s", "2h", "1:30" (as a date shift) to seconds.
std::optional<qint64> parseDuration(const QString& text);

}  // namespace Geotagger
