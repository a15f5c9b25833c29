// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Takes private data out of a photo for sharing without touching how it looks: the colour
// profile, the orientation, the pixel sizes and the coded image stay, only tags go.
#include <QString>
#include <optional>

class TagsPhotoModifier;
class TSAsset;

namespace PrivacyStrip {

enum class Kind {
    location,  // every GPS tag
    dates,     // every date and time, with their zones and sub-seconds
    personal,  // the place, serial numbers, owner names, unique ids, maker notes
    motion,    // a motion photo's movie: the still stays, byte for byte
};

// "location", "dates", "private", "motion".
std::optional<Kind> parseKind(const QString& text);

void strip(TagsPhotoModifier& tags, Kind kind);

// The photo's bytes with `kind` stripped, for sharing, through the save pipeline and its
// read-back check; the bytes as they are when there is nothing to strip. Nothing, with the
// reason, when the format can't be written.
std::optional<QByteArray> strippedCopy(const TSAsset& asset, Kind kind, QString* error = nullptr);

}  // namespace PrivacyStrip
