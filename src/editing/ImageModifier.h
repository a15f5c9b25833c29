// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns one photo and its final property dictionary into new bytes. The coded image is copied and
// only the metadata change, whatever the save; only when a rendering is asked for are the pixels
// drawn anew, upright with the orientation wish applied, as JPEG.
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

// Needs `tags.destMutable`; throws TSError on failure, and for a format whose metadata can't be
// written (a raw file) unless `render`. The result's data source is the rewritten file;
// `readBack`, when given, receives what it reads as.
ModifyingPhotoAsset modifiedAsset(bool render, const ModifyingPhotoAsset& asset, imageio::PropertyDict* readBack = nullptr);
// The lossless metadata copy: the source's bytes with `dictionary` laid over its metadata.
// `sourceProperties`, when given, is what the reader made of `source`, which then isn't read again.
// Nothing on failure, with the writer's reason in `why` when given.
std::optional<imageio::Rewritten> recompressingAddData(const imageio::PropertyDict& dictionary, const QByteArray& source,
                                                       const imageio::PropertyDict* sourceProperties = nullptr,
                                                       imageio::PropertyDict* readBack = nullptr, QString* why = nullptr);
// Pixels drawn upright from orientation `orientation` (2 to 8), as JPEG; other values give the
// data back as they are; nothing when the image can't be decoded.
std::optional<QByteArray> undoingOrientation(const QByteArray& data, int orientation, bool keepSize);
// Pixels drawn with the orientation applied, as JPEG; other values give the data back.
std::optional<QByteArray> applyingOrientation(const QByteArray& data, int orientation);

}  // namespace ImageModifier
