// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sidecars.h"

#include "ImageWriter.h"

#include <QFileInfo>

namespace Sidecars {
namespace {

bool allowsWriting(const QFileInfo& info) {
    constexpr auto anyWrite = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return info.isWritable() && (info.permissions() & anyWrite);
}

}  // namespace

bool writable(const QString& path) {
    const QFileInfo info(path);
    if (info.exists() && !allowsWriting(info)) return false;
    return allowsWriting(QFileInfo(info.absolutePath()));
}

std::optional<QString> whyNotInPhoto(const QString& path, const QByteArray& bytes) {
    const auto format = imageio::detectFormat(bytes);
    if (!imageio::canWrite(format))
        return format == imageio::Format::Unknown
                   ? QStringLiteral("Tessorin can't write metadata into this kind of file")
                   : QStringLiteral("Tessorin can't write metadata into %1 files").arg(imageio::formatName(format));
    if (!writable(path)) return QStringLiteral("the photo or its folder is read-only");
    return std::nullopt;
}

}  // namespace Sidecars
