// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The wishes that act on each photo from its own values rather than setting one value on all:
// a date shift, a time zone, a place from a track log, a privacy strip. Applied after the edit
// model's wishes, in that order, so that the track log sees the corrected clock.
#include "Geotagger.h"
#include "PrivacyStrip.h"
#include "TimeZones.h"

#include <QStringList>
#include <memory>

class TagsPhotoModifier;

struct BatchWishes {
    std::optional<qint64> shiftSeconds;
    std::optional<TimeZones::ZoneWish> zone;
    std::shared_ptr<const TrackLog> trackLog;
    Geotagger::Options geotag;
    std::optional<PrivacyStrip::Kind> strip;

    bool any() const { return shiftSeconds || zone || trackLog || strip; }
};

// Applies the wishes to one photo. Returns what could not be done to it, one line each; the
// rest is done.
QStringList applyBatch(TagsPhotoModifier& tags, const BatchWishes& wishes);
