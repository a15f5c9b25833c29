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

QString fileUri(const QString& path) { return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded); }

}  // namespace

QString cachePath(const QString& path, int maxSide) {
    const QString md5 = QString::fromLatin1(QCryptographicHash::hash(fileUri(path).toUtf8(), QCryptographicHash::Md5).toHex());
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/thumbnails/" +
           (maxSide <= 128 ? "normal/" : "large/") + md5 + ".png";
}

QImage forFile(const QString& path, int maxSide) {
    const QFileInfo info(path);
    const QString mtime = QString::number(info.lastModified().toSecsSinceEpoch());
    const QString cached = cachePath(path, maxSide);
    const int side = maxSide <= 128 ? 128 : 256;
    QImage image(cached);
    if (!image.isNull() && image.text("Thumb::MTime") == mtime && image.text("Thumb::URI") == fileUri(path))
        return imageio::scaledToFit(image, maxSide);

    imageio::FileBytes file;
    if (!file.open(path)) return {};
    image = imageio::detectFormat(file.bytes()) == imageio::Format::Movie ? imageio::scaledToFit(media::firstFrame(file.bytes()), side)
                                                                          : imageio::thumbnail(file.bytes(), side);
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
