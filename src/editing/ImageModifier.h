// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns one photo and its final property dictionary into new bytes. Saved as a new item or to a
// file, the coded image is copied and only the metadata change; edited in place, the pixels are
// first drawn upright with the orientation wish applied, and HEIF becomes JPEG.
#include "TSAsset.h"
#include "Rewritten.h"
#include "TagsPhotoModifier.h"

#include <QByteArray>
#include <memory>
#include <optional>
#include <variant>

// A photo's bytes: as read, or as rewritten (new metadata and the kept ranges of what was read).
using MADataSource = std::variant<QByteArray, imageio::Rewritten>;

// One photo under edit.
struct ModifyingPhotoAsset {
    std::shared_ptr<TSAsset> tsAsset;
    std::shared_ptr<TagsPhotoModifier> tags;
    MADataSource dataSource;
    int type = 1;  // the resource type to add on saving: a photo
};

namespace ImageModifier {

// Needs `tags.destMutable`; throws TSError on failure. The result's data source is the rewritten
// file; `readBack`, when given, receives what it reads as.
ModifyingPhotoAsset modifiedAsset(bool modify, const ModifyingPhotoAsset& asset, imageio::PropertyDict* readBack = nullptr);
// The lossless metadata copy: the source's bytes with `dictionary` laid over its metadata.
// `sourceProperties`, when given, is what the reader made of `source`, which then isn't read again.
std::optional<imageio::Rewritten> recompressingAddData(const imageio::PropertyDict& dictionary, const QByteArray& source,
                                                       const imageio::PropertyDict* sourceProperties = nullptr,
                                                       imageio::PropertyDict* readBack = nullptr);
// Pixels drawn upright from orientation `orientation` (2 to 8), as JPEG; other values give the
// data back as they are; nothing when the image can't be decoded.
std::optional<QByteArray> undoingOrientation(const QByteArray& data, int orientation, bool keepSize);
// Pixels drawn with the orientation applied, as JPEG; other values give the data back.
std::optional<QByteArray> applyingOrientation(const QByteArray& data, int orientation);

}  // namespace ImageModifier
