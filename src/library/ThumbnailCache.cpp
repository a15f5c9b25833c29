// SPDX-License-Identifier: GPL-3.0-or-later
#include "ThumbnailCache.h"

#include "FileBytes.h"
#include "ImageDecoder.h"
#include "ImageProperties.h"
#include "MovieReader.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

namespace library::thumbnails {

namespace {

// The cache's sizes of thumbnail, each in a folder of its name.
struct SizeClass { int side; const char* folder; };
constexpr SizeClass sizeClasses[] = {{128, "normal/"}, {256, "large/"}, {512, "x-large/"}, {1024, "xx-large/"}};

// The smallest class that holds a picture of this size; nothing above the largest.
const SizeClass* sizeClassFor(int maxSide) {
    for (const SizeClass& c : sizeClasses)
        if (maxSide <= c.side) return &c;
    return nullptr;
}

QString fileUri(const QString& path) { return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded); }

}  // namespace

QString cachePath(const QString& path, int maxSide) {
    const SizeClass* size = sizeClassFor(maxSide);
    if (!size) return {};
    const QString md5 = QString::fromLatin1(QCryptographicHash::hash(fileUri(path).toUtf8(), QCryptographicHash::Md5).toHex());
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/thumbnails/" + size->folder + md5 + ".png";
}

QImage picture(const QString& path, int maxSide) {
    imageio::FileBytes file;
    if (maxSide < 1 || !file.open(path)) return {};
    const imageio::Format format = imageio::detectFormat(file.bytes());
    QImage image = format == imageio::Format::Movie ? QImage() : imageio::thumbnail(file.bytes(), maxSide);
    // Movies, and the containers only FFmpeg knows (AVI, Matroska, MPEG-TS).
    if (image.isNull() && (format == imageio::Format::Movie || format == imageio::Format::Unknown))
        image = imageio::scaledToFit(media::firstFrame(file.bytes()), maxSide);
    return image;
}

QImage forFile(const QString& path, int maxSide) {
    const SizeClass* size = sizeClassFor(maxSide);
    if (!size) return picture(path, maxSide);
    const QFileInfo info(path);
    const QString mtime = QString::number(info.lastModified().toSecsSinceEpoch());
    const QString cached = cachePath(path, maxSide);
    QImage image(cached);
    if (!image.isNull() && image.text("Thumb::MTime") == mtime && image.text("Thumb::URI") == fileUri(path))
        return imageio::scaledToFit(image, maxSide);

    image = picture(path, size->side);
    if (image.isNull()) return {};
    image.setText("Thumb::URI", fileUri(path));
    image.setText("Thumb::MTime", mtime);
    image.setText("Thumb::Size", QString::number(info.size()));
    image.setText("Software", QStringLiteral(TESSORIN_APP_NAME));
    // Written whole or not at all: another program may read the cache at any moment.
    QDir().mkpath(QFileInfo(cached).absolutePath());
    QSaveFile out(cached);
    if (out.open(QIODevice::WriteOnly) && image.save(&out, "PNG")) {
        out.commit();
        QFile::setPermissions(cached, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    return imageio::scaledToFit(image, maxSide);
}

}  // namespace library::thumbnails
