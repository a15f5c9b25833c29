// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFileInfo>
#include <QImage>
#include <libheif/heif.h>

#include <memory>
#include <vector>

namespace testsupport {

namespace {

bool isJpeg(const QString& f) {
    const QString s = QFileInfo(f).suffix().toLower();
    return s == "jpg" || s == "jpeg";
}
bool isHeif(const QString& f) {
    const QString s = QFileInfo(f).suffix().toLower();
    return s == "heic" || s == "avif";
}

// Bytes from the first start-of-scan marker on: the coded image and whatever follows it.
QByteArray jpegScan(const QByteArray& b) {
    for (qsizetype at = 2; at + 4 <= b.size();) {
        if (uint8_t(b[at]) != 0xFF) return {};
        const uint8_t marker = uint8_t(b[at + 1]);
        if (marker == 0xDA) return b.mid(at);
        at += 2 + (uint8_t(b[at + 2]) << 8 | uint8_t(b[at + 3]));
    }
    return {};
}

// Decoded pixels of every image of a HEIF file: top-level images, their thumbnails and
// auxiliary images, in order.
QList<QByteArray> heifPixels(const QByteArray& bytes) {
    QList<QByteArray> out;
    std::unique_ptr<heif_context, decltype(&heif_context_free)> ctx(heif_context_alloc(), heif_context_free);
    if (heif_context_read_from_memory_without_copy(ctx.get(), bytes.constData(), size_t(bytes.size()), nullptr).code)
        return out;
    auto decode = [&](heif_image_handle* h) {
        heif_image* img = nullptr;
        if (heif_decode_image(h, &img, heif_colorspace_undefined, heif_chroma_undefined, nullptr).code) {
            out << QByteArray("undecodable");
            return;
        }
        QByteArray all;
        for (heif_channel c : {heif_channel_Y, heif_channel_Cb, heif_channel_Cr, heif_channel_R, heif_channel_G,
                               heif_channel_B, heif_channel_Alpha, heif_channel_interleaved}) {
            if (!heif_image_has_channel(img, c)) continue;
            int stride = 0;
            const uint8_t* p = heif_image_get_plane_readonly(img, c, &stride);
            // Row by row: the padding at the end of a row is never written by the decoder.
            const int w = heif_image_get_width(img, c), h2 = heif_image_get_height(img, c);
            const int rowBytes = w * ((heif_image_get_bits_per_pixel(img, c) + 7) / 8);
            for (int y = 0; y < h2; ++y) all.append(reinterpret_cast<const char*>(p) + qsizetype(y) * stride, rowBytes);
        }
        heif_image_release(img);
        out << QCryptographicHash::hash(all, QCryptographicHash::Sha256);
    };
    const int n = heif_context_get_number_of_top_level_images(ctx.get());
    std::vector<heif_item_id> ids(size_t(std::max(n, 0)));
    heif_context_get_list_of_top_level_image_IDs(ctx.get(), ids.data(), n);
    for (heif_item_id id : ids) {
        heif_image_handle* h = nullptr;
        if (heif_context_get_image_handle(ctx.get(), id, &h).code) continue;
        decode(h);
        for (bool aux : {false, true}) {
            const int count = aux ? heif_image_handle_get_number_of_auxiliary_images(h, 0)
                                  : heif_image_handle_get_number_of_thumbnails(h);
            std::vector<heif_item_id> sub(size_t(std::max(count, 0)));
            if (aux) heif_image_handle_get_list_of_auxiliary_image_IDs(h, 0, sub.data(), count);
            else heif_image_handle_get_list_of_thumbnail_IDs(h, sub.data(), count);
            for (heif_item_id s : sub) {
                heif_image_handle* sh = nullptr;
                if ((aux ? heif_image_handle_get_auxiliary_image_handle(h, s, &sh)
                         : heif_image_handle_get_thumbnail(h, s, &sh)).code == heif_error_Ok) {
                    decode(sh);
                    heif_image_handle_release(sh);
                }
            }
        }
        heif_image_handle_release(h);
    }
    return out;
}

}  // namespace

void expectSameImage(const QString& source, const QString& written) {
    const QByteArray a = readFile(source), b = readFile(written);
    if (isJpeg(source)) {
        ASSERT_FALSE(jpegScan(a).isEmpty());
        EXPECT_TRUE(jpegScan(a) == jpegScan(b)) << "the coded image changed";
    } else if (isHeif(source)) {
        const auto before = heifPixels(a);
        ASSERT_FALSE(before.isEmpty());
        EXPECT_EQ(before, heifPixels(b));
    } else if (!source.endsWith(".dng")) {  // the sample DNG carries no image data
        const QImage ia = QImage::fromData(a), ib = QImage::fromData(b);
        ASSERT_FALSE(ia.isNull());
        EXPECT_TRUE(ia == ib) << "the decoded pixels changed";
    }
}

}  // namespace testsupport
