// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageDecoder.h"

#include "Exiv2Convert.h"
#include "HeifContainer.h"
#include "ImageProperties.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>
#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>
#include <cmath>
#include <memory>
#include <optional>
#include <vector>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {
namespace {

using HeifContext = std::unique_ptr<heif_context, decltype(&heif_context_free)>;
using HeifHandle = std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)>;

HeifContext readHeif(const QByteArray& bytes) {
    HeifContext ctx(heif_context_alloc(), heif_context_free);
    if (heif_context_read_from_memory_without_copy(ctx.get(), bytes.constData(), size_t(bytes.size()), nullptr).code !=
        heif_error_Ok)
        ctx.reset();
    return ctx;
}

HeifHandle primaryHandle(heif_context* ctx) {
    heif_image_handle* raw = nullptr;
    if (!ctx || heif_context_get_primary_image_handle(ctx, &raw).code != heif_error_Ok) raw = nullptr;
    return HeifHandle(raw, heif_image_handle_release);
}

// libheif applies the item's rotation and mirroring while decoding.
QImage decodeHeifHandle(heif_image_handle* handle) {
    // A hostile header may claim any size; no camera comes near this many pixels.
    constexpr qint64 maxPixels = qint64(1) << 28;
    if (qint64(heif_image_handle_get_width(handle)) * heif_image_handle_get_height(handle) > maxPixels) return {};
    heif_image* rawImage = nullptr;
    if (heif_decode_image(handle, &rawImage, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr).code !=
        heif_error_Ok)
        return {};
    std::unique_ptr<heif_image, decltype(&heif_image_release)> image(rawImage, heif_image_release);
    int stride = 0;
    const uint8_t* pixels = heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    const int w = heif_image_get_width(image.get(), heif_channel_interleaved);
    const int h = heif_image_get_height(image.get(), heif_channel_interleaved);
    if (!pixels || w <= 0 || h <= 0) return {};
    return QImage(pixels, w, h, stride, QImage::Format_RGBA8888).copy();
}

QImage decodeHeif(const QByteArray& bytes) {
    HeifContext ctx = readHeif(bytes);
    HeifHandle handle = primaryHandle(ctx.get());
    return handle ? decodeHeifHandle(handle.get()) : QImage();
}

// Whether a smaller picture has the image's shape, within what rounding its sides allows: a
// letterboxed camera thumbnail would show black bars in the grid, a turned one lie sideways.
bool sameShape(qint64 w, qint64 h, qint64 imageWidth, qint64 imageHeight) {
    if (w <= 0 || h <= 0 || imageWidth <= 0 || imageHeight <= 0) return imageWidth <= 0 || imageHeight <= 0;
    const double aspect = double(imageWidth) / double(imageHeight);
    return std::abs(double(w) / double(h) - aspect) <= 0.03 * aspect;
}

// How an item is turned and mirrored when shown: its 'irot' and 'imir' values, in their order.
QList<int> turnsOf(const heif::Container& c, uint32_t item) {
    QList<int> out;
    const auto a = c.associations.find(item);
    if (a == c.associations.end()) return out;
    for (uint32_t n : a->second) {
        if (n < 1 || n > c.properties.size()) continue;
        const heif::Box& p = c.properties[n - 1];
        if ((p.type == "irot" || p.type == "imir") && p.size > p.header)
            out << (p.type == "irot" ? 4 : 8) + (uint8_t(c.bytes[p.body()]) & (p.type == "irot" ? 3 : 1));
    }
    return out;
}

// The smallest stored thumbnail that is still big enough, or the primary image. A thumbnail
// serves only when it is turned as the primary image is and has its shape: a writer that turned
// the photo and not its thumbnail would otherwise show it sideways.
QImage heifThumbnail(const QByteArray& bytes, int maxSide) {
    HeifContext ctx = readHeif(bytes);
    HeifHandle primary = primaryHandle(ctx.get());
    if (!primary) return {};
    const int count = heif_image_handle_get_number_of_thumbnails(primary.get());
    std::vector<heif_item_id> ids(size_t(qMax(count, 0)));
    if (count > 0) heif_image_handle_get_list_of_thumbnail_IDs(primary.get(), ids.data(), count);
    std::optional<heif::Container> container;
    try {
        if (!ids.empty()) container.emplace(bytes);
    } catch (const std::exception&) {
        ids.clear();  // boxes libheif took and we don't: no thumbnail we can trust
    }
    const int width = heif_image_handle_get_width(primary.get()), height = heif_image_handle_get_height(primary.get());
    const QList<int> primaryTurns = container ? turnsOf(*container, container->primary) : QList<int>();
    HeifHandle best(nullptr, heif_image_handle_release);
    int bestSide = 0;
    for (heif_item_id id : ids) {
        heif_image_handle* raw = nullptr;
        if (heif_image_handle_get_thumbnail(primary.get(), id, &raw).code != heif_error_Ok || !raw) continue;
        HeifHandle thumb(raw, heif_image_handle_release);
        const int w = heif_image_handle_get_width(raw), h = heif_image_handle_get_height(raw);
        if (turnsOf(*container, id) != primaryTurns || !sameShape(w, h, width, height)) continue;
        const int side = qMax(w, h);
        if (side >= maxSide && (!best || side < bestSide)) {
            best = std::move(thumb);
            bestSide = side;
        }
    }
    if (best) {
        QImage image = decodeHeifHandle(best.get());
        if (!image.isNull()) return image;
    }
    return decodeHeifHandle(primary.get());
}

// Qt decodes, at the reduced size from the start where the format allows it.
QImage scaledDecode(const QByteArray& bytes, int maxSide) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false);
    const QSize size = reader.size();
    if (size.isValid() && qMax(size.width(), size.height()) > maxSide)
        reader.setScaledSize(size.scaled(maxSide, maxSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    return reader.read();
}

// A Fujifilm raw file carries a full-size JPEG of the picture where its header says.
QByteArray rafJpeg(const QByteArray& bytes) {
    if (bytes.size() < 92) return {};
    const quint32 at = qFromBigEndian<quint32>(bytes.constData() + 84);
    const quint32 length = qFromBigEndian<quint32>(bytes.constData() + 88);
    if (at > quint64(bytes.size()) || length > quint64(bytes.size()) - at) return {};
    return QByteArray::fromRawData(bytes.constData() + at, qsizetype(length));
}

int exifOrientation(const Exiv2::ExifData& exif) {
    auto it = exif.findKey(Exiv2::ExifKey("Exif.Image.Orientation"));
    if (it == exif.end() || it->count() < 1) return 1;
    return int(it->toLong());
}

// An embedded preview (EXIF thumbnail, a raw file's JPEG previews) that is big enough and has
// the stored image's shape; like the stored pixels, it is still to be turned by the orientation.
QImage embeddedPreview(Exiv2::Image& image, int maxSide) {
    Exiv2::PreviewManager previews(image);
    // Listed from the smallest up.
    for (const Exiv2::PreviewProperties& p : previews.getPreviewProperties()) {
        if (int(qMax(p.width_, p.height_)) < maxSide || p.width_ == 0 || p.height_ == 0) continue;
        if (!sameShape(p.width_, p.height_, image.pixelWidth(), image.pixelHeight())) continue;
        const Exiv2::PreviewImage preview = previews.getPreviewImage(p);
        // A raw file's preview may be full-sized: it too is decoded at the reduced size.
        QImage decoded = scaledDecode(
            QByteArray::fromRawData(reinterpret_cast<const char*>(preview.pData()), qsizetype(preview.size())), maxSide);
        if (!decoded.isNull() && qMax(decoded.width(), decoded.height()) >= maxSide) return decoded;
    }
    return {};
}

}  // namespace

QImage decodeImage(const QByteArray& bytes) {
    const Format format = detectFormat(bytes);
    if (format == Format::Heif || format == Format::Avif) return decodeHeif(bytes);
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false);
    return reader.read();
}

QImage thumbnail(const QByteArray& bytes, int maxSide) {
    if (maxSide < 1 || bytes.isEmpty()) return {};
    const Format format = detectFormat(bytes);
    if (format == Format::Movie) return {};
    if (format == Format::Heif || format == Format::Avif) return scaledToFit(heifThumbnail(bytes, maxSide), maxSide);

    int orientation = 1;
    QImage image;
    if (format != Format::Unknown) {
        initExiv2();
        std::lock_guard xmpTurn(xmpMutex());
        try {
            Exiv2::Image::AutoPtr exiv2Image =
                Exiv2::ImageFactory::open(reinterpret_cast<const Exiv2::byte*>(bytes.constData()), long(bytes.size()));
            if (exiv2Image.get()) {
                exiv2Image->readMetadata();
                orientation = exifOrientation(exiv2Image->exifData());
                image = embeddedPreview(*exiv2Image, maxSide);
            }
        } catch (const std::exception&) {
            // Broken metadata: the pixels may still decode, upright as stored.
        }
    }
    if (image.isNull()) image = scaledDecode(format == Format::Raf ? rafJpeg(bytes) : bytes, maxSide);
    if (image.isNull()) return {};
    return applyOrientation(scaledToFit(image, maxSide), orientation);
}

QImage scaledToFit(const QImage& image, int maxSide) {
    if (image.isNull() || maxSide < 1 || qMax(image.width(), image.height()) <= maxSide) return image;
    return image.scaled(maxSide, maxSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage applyOrientation(const QImage& image, int orientation) {
    // Mirror first, then turn clockwise, as the EXIF values are defined.
    switch (orientation) {
    case 2: return image.mirrored(true, false);
    case 3: return image.mirrored(true, true);
    case 4: return image.mirrored(false, true);
    case 5: return image.mirrored(false, true).transformed(QTransform().rotate(90));
    case 6: return image.transformed(QTransform().rotate(90));
    case 7: return image.mirrored(true, false).transformed(QTransform().rotate(90));
    case 8: return image.transformed(QTransform().rotate(270));
    default: return image;
    }
}

}  // namespace imageio
