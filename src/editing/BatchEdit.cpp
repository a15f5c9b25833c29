// SPDX-License-Identifier: GPL-3.0-or-later
#include "BatchEdit.h"

#include "DateShift.h"
#include "TagsPhotoModifier.h"

QStringList applyBatch(TagsPhotoModifier& tags, const BatchWishes& wishes) {
    QStringList problems;
    if (wishes.shiftSeconds) DateShift::shiftDates(tags, *wishes.shiftSeconds);
    if (wishes.zone)
        if (auto problem = TimeZones::applyZone(tags, *wishes.zone)) problems << "time zone not set: " + *problem;
    if (wishes.trackLog)
        if (auto problem = Geotagger::geotag(tags, *wishes.trackLog, wishes.geotag)) problems << "no place set: " + *problem;
    if (wishes.strip) PrivacyStrip::strip(tags, *wishes.strip);
    return problems;
}
