#include "TSAsset.h"

#include "FileTypes.h"
#include "ImageProperties.h"
#include "Log.h"
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

    QString error;
    if (!file_.open(path, &error)) {
        readError_ = error;
        Log::warning(name + ": " + error, "init(from:delegate:)");
    }
    const QByteArray& bytes = file_.bytes();
    Log::debug("file length: " + QString::number(bytes.size()), "init(from:delegate:)");
    // A movie by its bytes is a movie whatever its name says.
    if (!isVideo() && imageio::detectFormat(bytes) == imageio::Format::Movie) ddStore().mediaType = MediaType::video;
    // Movies have no image properties; their rows come from the movie reader.
    if (!bytes.isEmpty() && !isVideo()) metaData_ = TSMetaData(bytes);
    ddStore_->set(TSKey::FILE_SIZE, bytes.isEmpty() ? QStringLiteral("0") : filetypes::fileSizeText(bytes.size()));
    ddStore_->fill(metaData_);
    if (isVideo()) loadVideo();
}

void TSAsset::loadVideo() {
    QString error;
    video_ = media::readMovie(file_.bytes(), &error);
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
