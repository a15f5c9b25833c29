// SPDX-License-Identifier: GPL-3.0-or-later
// The reader takes a HEIF's facts and metadata from the container's boxes itself; libheif, which
// reads back every write, is the oracle: both must give the same dictionary.
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "PropertyKeys.h"
#include "Rewritten.h"
#include "TestSupport.h"

#include <gtest/gtest.h>
#include <libheif/heif.h>

#include <vector>

using namespace imageio;
using namespace testsupport;

namespace {

std::optional<PropertyDict> byLibheif(const QByteArray& bytes) {
    Rewritten whole = Rewritten::from(bytes);
    whole.keep(0, bytes.size());
    return readProperties(whole);
}

void expectReadAsLibheif(const QByteArray& bytes, const std::string& what) {
    const auto theirs = byLibheif(bytes);
    ASSERT_TRUE(theirs) << what;
    QString error;
    const auto ours = readProperties(bytes, &error);
    ASSERT_TRUE(ours) << what << ": " << error.toStdString();
    for (auto it = theirs->begin(); it != theirs->end(); ++it)
        EXPECT_EQ(ours->value(it.key()), it.value()) << what << ": " << it.key().toStdString();
    EXPECT_EQ(ours->keys(), theirs->keys()) << what;
}

// A small image coded by libheif: with an alpha plane (an auxiliary image), at 10 bits, and with
// an Exif block.
QByteArray encoded(bool alpha, int bits) {
    heif_context* ctx = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_image* image = nullptr;
    heif_image_handle* handle = nullptr;
    QByteArray bytes;
    const heif_chroma chroma = bits > 8 ? (alpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE)
                                        : (alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB);
    if (heif_context_get_encoder_for_format(ctx, heif_compression_HEVC, &encoder).code == heif_error_Ok &&
        heif_image_create(64, 64, heif_colorspace_RGB, chroma, &image).code == heif_error_Ok &&
        heif_image_add_plane(image, heif_channel_interleaved, 64, 64, bits).code == heif_error_Ok) {
        int stride = 0;
        uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < stride; ++x) plane[y * stride + x] = uint8_t(x * 3 + y);
        // A TIFF header and one directory with the orientation in it.
        const QByteArray exif("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0", 26);
        struct Writer {
            static heif_error write(heif_context*, const void* data, size_t size, void* userdata) {
                static_cast<QByteArray*>(userdata)->append(static_cast<const char*>(data), qsizetype(size));
                return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
            }
        };
        heif_writer writer{1, &Writer::write};
        if (heif_context_encode_image(ctx, image, encoder, nullptr, &handle).code == heif_error_Ok &&
            heif_context_add_exif_metadata(ctx, handle, exif.constData(), int(exif.size())).code == heif_error_Ok)
            heif_context_write(ctx, &writer, &bytes);
    }
    if (handle) heif_image_handle_release(handle);
    if (image) heif_image_release(image);
    if (encoder) heif_encoder_release(encoder);
    heif_context_free(ctx);
    return bytes;
}

}  // namespace

TEST(HeifContainer, ReadsEverySampleAndItsRewritesAsLibheifDoes) {
    QStringList files;
    for (const QString& f : corpusFiles())
        if (f.contains("/heif/")) files << f;
    ASSERT_EQ(files.size(), 4);
    PropertyDict changes;
    changes.insert(kCGImagePropertyIPTCDictionary, PropertyDict{{kCGImagePropertyIPTCCaptionAbstract, "A caption"}});
    changes.insert(kCGImagePropertyGPSDictionary, PropertyDict{{kCGImagePropertyGPSLatitude, 48.8584},
                                                               {kCGImagePropertyGPSLatitudeRef, "N"}});
    for (const QString& file : files) {
        const QByteArray bytes = readFile(file);
        expectReadAsLibheif(bytes, file.toStdString());
        // New Exif and XMP items, or the file's own moved to a new 'mdat'.
        const auto written = writeProperties(bytes, changes);
        ASSERT_TRUE(written) << file.toStdString();
        expectReadAsLibheif(*written, file.toStdString() + " rewritten");
        EXPECT_EQ(readProperties(*written)->value(kCGImagePropertyIPTCDictionary).toMap()
                      .value(kCGImagePropertyIPTCCaptionAbstract), "A caption");
    }
}

TEST(HeifContainer, ReadsAlphaDepthAndExifOfImagesLibheifMade) {
    for (bool alpha : {false, true}) {
        for (int bits : {8, 10}) {
            const QByteArray bytes = encoded(alpha, bits);
            const std::string what = (alpha ? "with alpha, " : "") + std::to_string(bits) + " bits";
            ASSERT_FALSE(bytes.isEmpty()) << what;
            expectReadAsLibheif(bytes, what);
            const auto props = readProperties(bytes);
            ASSERT_TRUE(props);
            EXPECT_EQ(props->value(kCGImagePropertyHasAlpha).toBool(), alpha) << what;
            EXPECT_EQ(props->value(kCGImagePropertyDepth).toInt(), bits) << what;
            EXPECT_EQ(props->value(kCGImagePropertyOrientation).toInt(), 6) << what;
        }
    }
}
