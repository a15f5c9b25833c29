// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageStripModel.h"

#include "GroupViewModel.h"
#include "TSFilesAlbum.h"
#include "TSMetaDataObservable.h"
#include "TSPhotoAlbum.h"

int ImageStripModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count_; }

QVariant ImageStripModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count_) return {};
    switch (role) {
    case SourceRole: return imageSource(index.row());
    case VideoRole: return isVideo(index.row());
    case LiveRole: return isLive(index.row());
    default: return {};
    }
}

QHash<int, QByteArray> ImageStripModel::roleNames() const {
    return {{SourceRole, "source"}, {VideoRole, "video"}, {LiveRole, "live"}};
}

void ImageStripModel::follow(bool force) {
    const auto album = TSEnvironment::currentAlbum();
    if (!force && album_.lock() == album && album->count() == count_) return;
    beginResetModel();
    album_ = album;
    count_ = album->count();
    endResetModel();
}

QString ImageStripModel::imageSource(int index) {
    if (const auto* photos = dynamic_cast<const TSPhotoAlbum*>(TSEnvironment::currentAlbum().get())) {
        const library::Asset* asset = photos->assetAt(index);
        return asset ? GroupViewModel::thumbnailSource(asset->mainPath(), true) : QString();
    }
    const auto album = std::dynamic_pointer_cast<TSFilesAlbum>(TSEnvironment::currentAlbum());
    const auto path = album ? album->imageUrl(index) : std::nullopt;
    return path ? GroupViewModel::thumbnailSource(*path) : QString();
}

bool ImageStripModel::isVideo(int index) {
    const auto album = TSEnvironment::currentAlbum();
    return index >= 0 && index < album->count() && album->isVideo(index);
}

bool ImageStripModel::isLive(int index) {
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(TSEnvironment::currentAlbum().get());
    const library::Asset* asset = photos ? photos->assetAt(index) : nullptr;
    return asset && (asset->mediaSubtypes & library::Subtype::photoLive);
}
