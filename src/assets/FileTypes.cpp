// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileTypes.h"

#include <QFileInfo>
#include <QHash>
#include <QMimeDatabase>

namespace filetypes {

std::optional<QString> typeIdentifier(const QString& path) {
    static const QHash<QString, QString> byExtension{
        {"jpg", "public.jpeg"}, {"jpeg", "public.jpeg"}, {"jpe", "public.jpeg"},
        {"heic", "public.heic"}, {"heif", "public.heif"}, {"hif", "public.heif"},
        {"avif", "public.avif"}, {"png", "public.png"}, {"tif", "public.tiff"},
        {"tiff", "public.tiff"}, {"gif", "com.compuserve.gif"}, {"webp", "org.webmproject.webp"},
        {"dng", "com.adobe.raw-image"}, {"cr2", "com.canon.cr2-raw-image"},
        {"cr3", "com.canon.cr3-raw-image"}, {"nef", "com.nikon.raw-image"},
        {"arw", "com.sony.arw-raw-image"}, {"orf", "com.olympus.raw-image"},
        {"rw2", "com.panasonic.rw2-raw-image"}, {"pef", "com.pentax.raw-image"},
        {"mov", "com.apple.quicktime-movie"}, {"qt", "com.apple.quicktime-movie"},
        {"mp4", "public.mpeg-4"}, {"m4v", "com.apple.m4v-video"},
    };
    auto it = byExtension.find(QFileInfo(path).suffix().toLower());
    if (it == byExtension.end()) return std::nullopt;
    return it.value();
}

std::optional<QString> mimeType(const QString& path) {
    static const QMimeDatabase db;
    const QMimeType type = db.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    if (!type.isValid() || type.isDefault()) return std::nullopt;
    return type.name();
}

bool isVideo(const std::optional<QString>& mime) {
    return mime && (mime->contains("video", Qt::CaseInsensitive) || mime->contains("movie", Qt::CaseInsensitive));
}

QString fileSizeText(qint64 bytes) {
    if (bytes == 0) return QStringLiteral("Zero KB");
    if (bytes < 1000) return QStringLiteral("%1 bytes").arg(bytes);
    struct Unit { double size; const char* name; int decimals; };
    static const Unit units[] = {{1e3, "KB", 0}, {1e6, "MB", 1}, {1e9, "GB", 2}, {1e12, "TB", 2}};
    const Unit* unit = &units[0];
    for (const Unit& u : units)
        if (double(bytes) >= u.size) unit = &u;
    // Rounding may carry into the next unit ("999.96 KB" reads "1 MB").
    QString number = QString::number(double(bytes) / unit->size, 'f', unit->decimals);
    if (number.contains(u'.')) {
        while (number.endsWith(u'0')) number.chop(1);
        if (number.endsWith(u'.')) number.chop(1);
    }
    if (unit->decimals == 0 && number == "1000" && unit != &units[3]) return QStringLiteral("1 %1").arg((unit + 1)->name);
    return number + " " + unit->name;
}

}  // namespace filetypes
