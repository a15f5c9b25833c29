// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one item on view: a photo library item or a picked file, with its bytes, its metadata
// record and its rows.
#include "FileBytes.h"
#include "Library.h"
#include "MovieReader.h"
#include "TSDataStore.h"
#include "TSMetaData.h"
#include "TSMetaVideo.h"

#include <QImage>
#include <QString>
#include <memory>
#include <optional>

class TSAsset {
public:
    // Reads the file at once; a file that can't be read gives an item with no data, FILE_SIZE
    // "0" and no rows beyond NAME, SUBTYPE and FILETYPE.
    explicit TSAsset(const QString& path, std::weak_ptr<Displayer> delegate = {});
    // A library item: what the library knows (date and place under the source "Asset", pixel
    // sizes, resources, subtypes) first, then the bytes of the file that shows it now.
    explicit TSAsset(const library::Asset& asset, std::weak_ptr<Displayer> delegate = {});
    // A library item whose bytes were already fetched (from off the device): the same rows as
    // above, from `data`; no data gives the size the library has.
    TSAsset(const library::Asset& asset, const std::optional<QByteArray>& data, std::weak_ptr<Displayer> delegate = {});

    // The library item this was built from; nothing for a picked file.
    const std::optional<library::Asset>& libraryAsset() const { return asset_; }

    const QString& path() const { return path_; }
    const TSMetaData& metaData() const { return metaData_; }
    TSDataStore& ddStore() { return *ddStore_; }
    const TSDataStore& ddStore() const { return *ddStore_; }
    // The store as its place look-up holds it: weakly, through this pointer.
    std::shared_ptr<TSDataStore> sharedStore() const { return ddStore_; }
    // The file's whole content; empty when it could not be read.
    const QByteArray& imageData() const { return bytes_; }
    // The open file that imageData() maps, -1 when its bytes came from elsewhere.
    int fileHandle() const { return bytes_.constData() == file_.bytes().constData() ? file_.handle() : -1; }
    bool isVideo() const { return ddStore_->mediaType == MediaType::video; }
    // Why the file could not be read, when it could not.
    const std::optional<QString>& readError() const { return readError_; }
    // The movie as the reader found it; nothing for a photo or a file that is no movie.
    const std::optional<media::MovieInfo>& video() const { return video_; }
    // A movie's tags by key space, there once its rows are final; nothing for a photo.
    std::shared_ptr<const TSMetaVideo> metaVideo() const { return metaVideo_; }
    // The first picture of a movie file, turned upright; a null image when there is none.
    static QImage firstFrame(const QString& path);

private:
    QString path_;
    imageio::FileBytes file_;
    QByteArray bytes_;  // the mapped file's, or the fetched ones
    TSMetaData metaData_;
    std::shared_ptr<TSDataStore> ddStore_ = std::make_shared<TSDataStore>();
    std::optional<QString> readError_;
    std::optional<media::MovieInfo> video_;
    std::shared_ptr<TSMetaVideo> metaVideo_;
    std::optional<library::Asset> asset_;

    void read(const QString& function);
    // The rows from `bytes_`.
    void parse(const QString& function);
    void setLibraryRows(const library::Asset& asset);
    void setLibrarySize(const library::Asset& asset);

    // The movie's rows, read at once: the reader touches only the header of a mapped file.
    void loadVideo();
};
