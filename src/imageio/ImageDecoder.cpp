#include "ImageDecoder.h"

#include "ImageProperties.h"

#include <QBuffer>
#include <QImageReader>
#include <libheif/heif.h>
#include <memory>

namespace imageio {
namespace {

QImage decodeHeif(const QByteArray& bytes) {
    std::unique_ptr<heif_context, decltype(&heif_context_free)> ctx(heif_context_alloc(), heif_context_free);
    if (heif_context_read_from_memory_without_copy(ctx.get(), bytes.constData(), size_t(bytes.size()), nullptr).code !=
        heif_error_Ok)
        return {};
    heif_image_handle* rawHandle = nullptr;
    if (heif_context_get_primary_image_handle(ctx.get(), &rawHandle).code != heif_error_Ok) return {};
    std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle(rawHandle, heif_image_handle_release);
    heif_image* rawImage = nullptr;
    if (heif_decode_image(handle.get(), &rawImage, heif_colorspace_RGB, heif_chroma_interleaved_RGBA, nullptr).code !=
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

}  // namespace imageio
