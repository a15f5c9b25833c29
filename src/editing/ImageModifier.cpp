// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageModifier.h"

#include "ImageDecoder.h"
#include "ImageWriter.h"
#include "Log.h"
#include "TSError.h"

#include <QBuffer>
#include <QTransform>

namespace {

// The platform's orientation numbering of a drawn image: up 0, down 1, left 2, right 3,
// upMirrored 4, downMirrored 5, leftMirrored 6, rightMirrored 7.
QImage oriented(const QImage& image, int ui) {
    switch (ui) {
    case 1: return image.transformed(QTransform().rotate(180));
    case 2: return image.transformed(QTransform().rotate(-90));
    case 3: return image.transformed(QTransform().rotate(90));
    case 4: return image.mirrored(true, false);
    case 5: return image.mirrored(false, true);
    case 6: return image.mirrored(true, false).transformed(QTransform().rotate(-90));
    case 7: return image.mirrored(true, false).transformed(QTransform().rotate(90));
    default: return image;
    }
}

// Draws `image` with orientation `ui` to fill a canvas of `size`, exchanged first when asked and
// the orientation turns the picture on its side.
QImage redraw(const QImage& image, QSize size, int ui, bool swapSize) {
    if (swapSize && (ui == 2 || ui == 3 || ui == 6 || ui == 7)) size.transpose();
    const QImage drawn = oriented(image, ui);
    if (drawn.isNull()) return {};
    return drawn.size() == size ? drawn : drawn.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

std::optional<QByteArray> jpeg(const QImage& image, int quality) {
    if (image.isNull()) return std::nullopt;
    QByteArray out;
    QBuffer buffer(&out);
    buffer.open(QIODevice::WriteOnly);
    if (!image.convertToFormat(QImage::Format_RGB32).save(&buffer, "JPEG", quality)) return std::nullopt;
    return out;
}

}  // namespace

namespace ImageModifier {

std::optional<QByteArray> undoingOrientation(const QByteArray& data, int orientation, bool keepSize) {
    static const QList<int> steps[] = {{}, {}, {6, 3}, {3, 3}, {5}, {2, 5}, {3}, {3, 5}, {2}};
    if (orientation < 2 || orientation > 8) return data;
    QImage image = imageio::decodeImage(data);
    if (image.isNull()) return std::nullopt;
    // The first canvas is the picture as shown, which a sideways orientation turns.
    QSize size = image.size();
    if (orientation >= 5) size.transpose();
    for (int ui : steps[orientation]) {
        image = redraw(image, size, ui, keepSize);
        if (image.isNull()) return std::nullopt;
        size = image.size();
    }
    return jpeg(image, 100);
}

std::optional<QByteArray> applyingOrientation(const QByteArray& data, int orientation) {
    static const int draw[] = {0, 0, 4, 1, 5, 6, 3, 7, 2};
    if (orientation < 2 || orientation > 8) return data;
    const QImage image = imageio::decodeImage(data);
    if (image.isNull()) return std::nullopt;
    return jpeg(redraw(image, image.size(), draw[orientation], orientation >= 5), 100);
}

std::optional<imageio::Rewritten> recompressingAddData(const imageio::PropertyDict& dictionary, const QByteArray& source,
                                                       const imageio::PropertyDict* sourceProperties,
                                                       imageio::PropertyDict* readBack, QString* why) {
    if (dictionary.isEmpty() || source.isEmpty()) return std::nullopt;
    QString reason;
    std::optional<imageio::PropertyDict> read;
    if (!sourceProperties) {
        read = imageio::canWrite(imageio::detectFormat(source)) ? imageio::readProperties(source, &reason)
                                                                : imageio::PropertyDict{};
        sourceProperties = read ? &*read : nullptr;
    }
    auto out = sourceProperties ? imageio::rewriteProperties(source, *sourceProperties, dictionary, &reason, readBack)
                                : std::nullopt;
    if (!out) Log::error("Error: Could not create image destination (" + reason + ")");
    if (!out && why) *why = reason;
    return out;
}

ModifyingPhotoAsset modifiedAsset(bool render, const ModifyingPhotoAsset& asset, imageio::PropertyDict* readBack) {
    const QByteArray* source = std::get_if<QByteArray>(&asset.dataSource);
    if (!source) throw TSError("Error managing image data");
    QByteArray data = *source;
    const auto sourceFormat = imageio::detectFormat(data);
    // Never a silent conversion: a photo whose own format can't take new metadata is refused.
    if (!render && !imageio::canWrite(sourceFormat))
        throw TSError(sourceFormat == imageio::Format::Unknown
                          ? QStringLiteral("Tessorin can't write metadata into this kind of file; nothing was saved")
                          : QStringLiteral("Tessorin can't write metadata into %1 files; nothing was saved").arg(imageio::formatName(sourceFormat)));
    if (render) {
        auto upright = undoingOrientation(data, asset.tags->initialOrientation, false);
        if (upright && asset.tags->userOrientation) upright = applyingOrientation(*upright, *asset.tags->userOrientation);
        if (upright) data = *upright;
        const auto format = imageio::detectFormat(data);
        if (format == imageio::Format::Heif || format == imageio::Format::Avif) {
            auto rendered = jpeg(imageio::decodeImage(data), 90);
            if (!rendered) throw TSError("Error getting rendered image");
            data = *rendered;
        }
    }
    // Bytes as they came were read when the photo was: their properties are the modifier's fallback.
    const imageio::PropertyDict* read = !render && asset.tags->fallbackData ? &*asset.tags->fallbackData : nullptr;
    QString why;
    auto written = recompressingAddData(asset.tags->destMutable.value_or(imageio::PropertyDict{}), data, read, readBack, &why);
    if (!written) throw TSError(why.isEmpty() ? QStringLiteral("Error saving the modified image")
                                              : QStringLiteral("Error saving the modified image (%1)").arg(why));
    return ModifyingPhotoAsset{asset.tsAsset, asset.tags, *written, 1};
}

}  // namespace ImageModifier
