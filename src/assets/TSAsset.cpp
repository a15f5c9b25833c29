// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSAsset.h"

#include "FileTypes.h"
#include "ImageProperties.h"
#include "Log.h"
#include "Sidecar.h"
#include "VideoLoading.h"

#include <QFileInfo>

TSAsset::TSAsset(const QString& path, std::weak_ptr<Displayer> delegate) : path_(path) {
    ddStore_->displayDelegate = std::move(delegate);
    const auto mime = filetypes::mimeType(path);
    if (filetypes::isVideo(mime)) ddStore_->mediaType = MediaType::video;
    const QString name = QFileInfo(path).fileName();
    ddStore_->set(TSKey::NAME, name);
    ddStore_->set(TSKey::SUBTYPE, QStringLiteral("--"));
    ddStore_->set(TSKey::FILETYPE, filetypes::typeIdentifier(path));
    Log::debug("chosen file: " + name, "init(from:delegate:)");
    read("init(from:delegate:)");
}

TSAsset::TSAsset(const library::Asset& asset, std::weak_ptr<Displayer> delegate)
    : path_(asset.mainPath()), asset_(asset) {
    ddStore_->displayDelegate = std::move(delegate);
    setLibraryRows(asset);
    read("init(asset:delegate:)");
    setLibrarySize(asset);
}

TSAsset::TSAsset(const library::Asset& asset, const std::optional<QByteArray>& data, std::weak_ptr<Displayer> delegate)
    : path_(asset.mainPath()), bytes_(data.value_or(QByteArray())), asset_(asset) {
    ddStore_->displayDelegate = std::move(delegate);
    setLibraryRows(asset);
    parse("setData(data:uti:)");
    setLibrarySize(asset);
}

void TSAsset::setLibraryRows(const library::Asset& asset) {
    if (asset.mediaType == library::MediaType::video) ddStore_->mediaType = MediaType::video;
    ddStore_->setAssetDate(asset.creationDate.isValid() ? std::optional(asset.creationDate) : std::nullopt);
    std::optional<GeoLocation> location;
    if (asset.location) {
        location = GeoLocation{};
        location->coordinate = {asset.location->latitude, asset.location->longitude};
        if (asset.location->altitude) {
            location->altitude = *asset.location->altitude;
            location->verticalAccuracy = 0;
        }
    }
    ddStore_->setAssetLocation(location);
    ddStore_->setSizes(asset.pixelWidth, asset.pixelHeight);
    const QString line = QStringLiteral("-- ------------------------------------------------------ --");
    QStringList names{line};
    for (const library::Resource& r : asset.resources) {
        names << "-- Name: " + r.originalFilename + ' ' + library::resourceTypeText(r.type);
        if (!r.originalFilename.isEmpty()) ddStore_->set(TSKey::NAME, r.originalFilename);
    }
    names << line;
    Log::debug(names.join('\n'), "init(asset:delegate:)");
    ddStore_->set(TSKey::SUBTYPE, QString::number(asset.mediaSubtypes));
    ddStore_->set(TSKey::FILETYPE, filetypes::typeIdentifier(path_));
}

void TSAsset::setLibrarySize(const library::Asset& asset) {
    // A file that could not be read still shows the size the library has for it.
    if (bytes_.isEmpty() && !asset.resources.isEmpty() && asset.resources.first().fileSize > 0)
        ddStore_->datas[TSKey::FILE_SIZE] = filetypes::fileSizeText(asset.resources.first().fileSize);
}

void TSAsset::read(const QString& function) {
    const QString name = QFileInfo(path_).fileName();
    QString error;
    if (!file_.open(path_, &error)) {
        readError_ = error;
        Log::warning(name + ": " + error, function);
    }
    bytes_ = file_.bytes();
    parse(function);
}

void TSAsset::parse(const QString& function) {
    const QByteArray& bytes = bytes_;
    Log::debug("file length: " + QString::number(bytes.size()), function);
    // A movie by its bytes is a movie whatever its name says.
    if (!isVideo() && imageio::detectFormat(bytes) == imageio::Format::Movie) ddStore().mediaType = MediaType::video;
    // Movies have no image properties; their rows come from the movie reader.
    if (!bytes.isEmpty() && !isVideo()) {
        auto properties = TSMetaData::metadata(bytes);
        // What the photo's XMP sidecar says wins over what the photo says of itself.
        if (properties && !path_.isEmpty()) imageio::addSidecar(path_, *properties);
        metaData_ = TSMetaData::fromProperties(std::move(properties));
    }
    ddStore_->set(TSKey::FILE_SIZE, bytes.isEmpty() ? QStringLiteral("0") : filetypes::fileSizeText(bytes.size()));
    ddStore_->fill(metaData_);
    if (isVideo()) loadVideo();
}

void TSAsset::loadVideo() {
    QString error;
    video_ = media::readMovie(bytes_, &error);
    if (!video_) Log::warning("🎥 " + path_ + ": " + error, "video load");
    metaVideo_ = videoload::load(ddStore(), video_);
}

QImage TSAsset::firstFrame(const QString& path) {
    imageio::FileBytes file;
    if (!file.open(path)) return {};
    QString error;
    QImage image = media::firstFrame(file.bytes(), &error);
    if (image.isNull()) Log::warning("🎥 first frame of " + path + ": " + error, "firstFrame(url:)");
    return image;
}
