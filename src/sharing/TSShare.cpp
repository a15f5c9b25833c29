// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSShare.h"

#include "PrivacyStrip.h"

#include "ImageDecoder.h"
#include "ImageProperties.h"
#include "Log.h"
#include "TSMetaVideo.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFileInfo>
#include <QImageWriter>
#include <QPainter>

namespace sharing {

std::unique_ptr<TSMetaDictProtocol> exportDictionary(const TSAsset* asset, bool needDownload) {
    if (asset && !asset->isVideo()) return std::make_unique<TSMetaDictionay>(asset->metaData(), needDownload);
    if (asset && asset->metaVideo() && asset->ddStore().completed)
        return std::make_unique<TSMetaVideoDictionary>(asset->metaVideo());
    return std::make_unique<TSMetaDictionay>(TSMetaData(), true);
}

std::optional<QByteArray> strippedJpeg(const QByteArray& imageData, int orientation) {
    const QImage decoded = imageio::decodeImage(imageData);
    if (decoded.isNull()) return std::nullopt;
    // libheif turns HEIF and AVIF pictures by their container's rotation already; their EXIF
    // orientation only repeats it.
    const imageio::Format format = imageio::detectFormat(imageData);
    const bool containerTurns = format == imageio::Format::Heif || format == imageio::Format::Avif;
    const QImage upright = containerTurns ? decoded : imageio::applyOrientation(decoded, orientation);
    // Drawn on white into a bare image: a JPEG has no transparency (transparent pixels would turn
    // black), and Qt writes an image's text entries (a PNG's tEXt, say) into the JPEG as comments,
    // while the point here is to share nothing but the picture and its colours.
    QImage bare(upright.size(), QImage::Format_RGB32);
    bare.fill(Qt::white);
    {
        QPainter painter(&bare);
        painter.drawImage(0, 0, upright);
    }
    bare.setColorSpace(upright.colorSpace());
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(100);
    if (!writer.write(bare)) return std::nullopt;
    return out;
}

namespace {

std::optional<ShareItems> textItems(const QString& text, const QString& fileName) {
    if (text.isEmpty()) return std::nullopt;
    return ShareItems{{}, fileName, text};
}

}  // namespace

std::optional<ShareItems> shareItems(ShareAction action, const TSAsset* asset, bool needDownload, QString* error) {
    if (!asset) return std::nullopt;
    const QFileInfo file(asset->path());
    const QString base = file.completeBaseName().isEmpty() ? QStringLiteral("item") : file.completeBaseName();
    switch (action) {
    case ShareAction::shareMeta:
        if (asset->imageData().isEmpty()) return std::nullopt;
        return ShareItems{asset->imageData(), file.fileName(), asset->ddStore().summaryText()};
    case ShareAction::shareWithoutMeta: {
        if (asset->imageData().isEmpty()) return std::nullopt;
        const auto orientation = asset->metaData().orientation().value_or(1);
        auto jpeg = strippedJpeg(asset->imageData(), int(orientation));
        if (!jpeg) {
            Log::error(QStringLiteral("📤 stripping %1 failed").arg(asset->path()));
            if (error) *error = kStripError;
            return std::nullopt;
        }
        return ShareItems{*jpeg, base + QStringLiteral("-no-metadata.jpg"), {}};
    }
    case ShareAction::shareWithoutLocation: {
        // Everything but the place stays, the picture's bytes included.
        if (asset->imageData().isEmpty()) return std::nullopt;
        QString reason;
        auto copy = PrivacyStrip::strippedCopy(*asset, PrivacyStrip::Kind::location, &reason);
        if (!copy) {
            Log::error(QStringLiteral("📤 removing the place of %1 failed: %2").arg(asset->path(), reason));
            if (error) *error = kStripError;
            return std::nullopt;
        }
        const QString suffix = file.suffix().isEmpty() ? QString() : "." + file.suffix();
        return ShareItems{*copy, base + QStringLiteral("-no-location") + suffix, asset->ddStore().summaryText()};
    }
    case ShareAction::shareDetails:
        return textItems(asset->ddStore().detailsText(), base + QStringLiteral("-details.txt"));
    case ShareAction::hrShare:
        return textItems(exportDictionary(asset, needDownload)->allText(), base + QStringLiteral("-tags.txt"));
    case ShareAction::jsonShare:
        return textItems(exportDictionary(asset, needDownload)->jsonText(), base + QStringLiteral("-tags.json"));
    case ShareAction::rawShare:
        return textItems(exportDictionary(asset, needDownload)->rawText(), base + QStringLiteral("-tags-raw.txt"));
    }
    return std::nullopt;
}

}  // namespace sharing
