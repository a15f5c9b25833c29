// SPDX-License-Identifier: GPL-3.0-or-later
#include "Resources.h"

#include "FileTypes.h"
#include "ImageDecoder.h"
#include "Log.h"
#include "MotionPhoto.h"
#include "TSAsset.h"
#include "TSResourceAuxiliary.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QUrl>

QString TSFileRawResource::fileName() const { return QFileInfo(fileUrl).fileName(); }

QString TSFileRawResource::id() const { return QString::fromLatin1(QUrl::toPercentEncoding(fileUrl, "/")); }

QString resourcesTemporaryFolder() {
    static QTemporaryDir dir(QDir::tempPath() + "/tessorin-XXXXXX");
    return dir.path();
}

QString auxiliaryFileName(const QString& fileName, AuxiliaryImageType type) {
    QString squeezed = label(type);
    squeezed.remove(' ');
    const qsizetype dot = fileName.lastIndexOf('.');
    const QString base = dot > 0 ? fileName.left(dot) : fileName;
    const QString extension = dot > 0 ? fileName.mid(dot + 1) : QString();
    return base + "_" + squeezed + "." + extension;
}

std::optional<EmbeddedMovie> embeddedMovie(const QByteArray& bytes, const QString& fileName, QString* error) {
    const std::optional<imageio::MotionPhoto> motion = imageio::findMotionPhoto(bytes, error);
    if (!motion) return std::nullopt;
    EmbeddedMovie movie;
    movie.label = imageio::kindName(motion->kind);
    movie.data = bytes.mid(motion->offset, motion->length);
    movie.presentationTimestampUs = motion->presentationTimestampUs;
    // QuickTime's own brand makes a .mov, every other an .mp4.
    const QString extension = movie.data.mid(8, 4) == "qt  " ? QStringLiteral("mov") : QStringLiteral("mp4");
    const qsizetype dot = fileName.lastIndexOf('.');
    movie.fileName = (dot > 0 ? fileName.left(dot) : fileName) + "_" + QString(movie.label).remove(' ') + "." + extension;
    return movie;
}

std::optional<QString> dataToTempFile(const QByteArray& data, const QString& fileName) {
    const QString path = QDir(resourcesTemporaryFolder()).filePath(fileName);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        Log::error("Error writing the file: " + file.errorString());
        return {};
    }
    return path;
}

namespace {

// Fitted into the thumbnail box; the smaller of the two scales wins.
QImage fitted(const QImage& image) {
    if (image.isNull()) return {};
    return image.scaled(resourceThumbnailSide, resourceThumbnailSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

// A picture of the resource: decoded from its bytes, else, for what only a file reader
// understands (a movie's first frame), from a temporary copy.
ResourceImage thumbnailOf(const QByteArray& data, const QString& fileName) {
    QImage picture = imageio::thumbnail(data, resourceThumbnailSide);
    if (picture.isNull() && filetypes::isVideo(filetypes::mimeType(fileName))) {
        if (auto path = dataToTempFile(data, fileName)) picture = fitted(TSAsset::firstFrame(*path));
    }
    if (picture.isNull()) return {ResourceImage::Kind::genericDoc, {}};
    return {ResourceImage::Kind::image, picture};
}

}  // namespace

FileResourceActor::FileResourceActor(std::shared_ptr<const TSFileRawResource> source)
    : source_(std::move(source)), resData_(source_->resData) {}

void FileResourceActor::load() {
    resourceImg_ = {ResourceImage::Kind::genericDoc, {}};
    if (resData_.isEmpty()) return;
    formattedSize_ = filetypes::fileSizeText(resData_.size());
    resourceImg_ = thumbnailOf(resData_, source_->fileName());
}

bool FileResourceActor::checkAuxiliary(AuxiliaryImageType type) {
    if (resData_.isEmpty()) return false;
    const std::optional<QByteArray> data = TSResourceAuxiliary(resData_).auxiliaryData(type);
    if (!data) return false;
    const QImage image = QImage::fromData(*data);
    if (image.isNull()) return false;
    auxiliaryThumbnails_[type] = fitted(image);
    if (auto path = dataToTempFile(*data, auxiliaryFileName(source_->fileName(), type))) auxiliaryUrl_[type] = *path;
    return true;
}

LoadedResource FileResourceActor::loadedResource() const {
    return {source_, resData_, source_->fileUrl, formattedSize_, resourceImg_, auxiliaryThumbnails_, auxiliaryUrl_};
}

std::unique_ptr<TSResourceActorProtocol> makeActor(const std::shared_ptr<const RawResource>& raw) {
    if (auto file = std::dynamic_pointer_cast<const TSFileRawResource>(raw))
        return std::make_unique<FileResourceActor>(std::move(file));
    return nullptr;
}
