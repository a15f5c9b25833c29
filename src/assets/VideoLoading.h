// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The rows of a video item: sizes, duration, frame rate, codec names, audio format and the
// common metadata items, from what the movie reader gives. Nothing here fails: a property that
// can't be read leaves its row alone or shows "??" or "--".
#include "MovieReader.h"
#include "TSDataStore.h"
#include "TSMetaVideo.h"

#include <memory>
#include <optional>

namespace videoload {

// "00:59", "59:59", "1:00:00": minutes and seconds, with unpadded hours in front past an hour.
QString durationText(double seconds);
// "H.264" for avc1, "HEVC" for hvc1, else the first description's subtype; logs them all.
QString videoFormat(const QList<media::FormatDescription>& descriptions);

// Fills the store from the movie (nothing when it couldn't be opened) and ends with the rows
// final: SEPARATOR set and `completed` true. Returns the item's tags.
std::shared_ptr<TSMetaVideo> load(TSDataStore& store, const std::optional<media::MovieInfo>& movie);

// The rows of the items that have a common key (software, model, make, ...), the recording date
// and the location.
void metadataRows(TSDataStore& store, const QList<media::MetadataItem>& items);

}  // namespace videoload
