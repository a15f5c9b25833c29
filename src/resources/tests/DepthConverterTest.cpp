// SPDX-License-Identifier: GPL-3.0-or-later
// The grey levels of the converter and the scaling of maps, against levels worked out here:
// level = round(255 * (sample - lowest) / (highest - lowest)).
#include "DepthToGrayscaleConverter.h"
#include "TSResourceAuxiliary.h"

#include <QFloat16>
#include <gtest/gtest.h>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

PixelBuffer floatMap(int w, int h, const std::vector<float>& samples, int padding = 0) {
    PixelBuffer map{PixelFormat::disparityFloat32, w, h, w * 4 + padding, {}};
    map.data.fill('\0', qsizetype(map.bytesPerRow) * h);
    for (int y = 0; y < h; ++y)
        std::memcpy(map.data.data() + qsizetype(y) * map.bytesPerRow, samples.data() + qsizetype(y) * w, size_t(w) * 4);
    return map;
}

std::optional<PixelBuffer> convert(const PixelBuffer& map) {
    DepthToGrayscaleConverter converter;
    converter.prepare({map.format, map.width, map.height}, 1);
    return converter.render(map);
}

quint8 levelAt(const PixelBuffer& out, int x, int y) {
    return quint8(out.data[qsizetype(y) * out.bytesPerRow + 4 * x]);
}

}  // namespace

TEST(DepthConverter, OddSizedMapCoversEveryPixelWithTheRangeOfItsSamples) {
    const int w = 768, h = 577;
    std::vector<float> samples(size_t(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) samples[size_t(y) * w + x] = 0.5f + std::sin(x * 0.01f) * std::cos(y * 0.02f);
    samples[5] = std::numeric_limits<float>::quiet_NaN();
    float lo = 1e9f, hi = -1e9f;
    for (float s : samples)
        if (!std::isnan(s)) lo = std::min(lo, s), hi = std::max(hi, s);

    const auto out = convert(floatMap(w, h, samples, 12));  // rows longer than the samples
    ASSERT_TRUE(out);
    ASSERT_EQ(out->width, w);
    ASSERT_EQ(out->height, h);
    int mismatches = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const float s = samples[size_t(y) * w + x];
            const int expected = std::isnan(s) ? 0 : int(std::lround((s - lo) / (hi - lo) * 255.0f));
            const int got = levelAt(*out, x, y);
            // Rounding exactly at a half level may go either way.
            if (std::abs(got - expected) > (std::isnan(s) ? 0 : 1)) ++mismatches;
            const uchar* px = reinterpret_cast<const uchar*>(out->data.constData()) + qsizetype(y) * out->bytesPerRow + 4 * x;
            if (px[0] != px[1] || px[1] != px[2] || px[3] != 255) ++mismatches;
        }
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(levelAt(*out, w - 1, h - 1), quint8(std::lround((samples.back() - lo) / (hi - lo) * 255.0f)));
}

TEST(DepthConverter, FlatAndNaNMapsAreLeftAloneByTheScalingAndGiveBlack) {
    PixelBuffer flat = floatMap(3, 2, std::vector<float>(6, 0.75f));
    const QByteArray before = flat.data;
    EXPECT_FALSE(normalize(flat));
    EXPECT_EQ(flat.data, before);
    auto out = convert(flat);
    ASSERT_TRUE(out);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(levelAt(*out, i % 3, i / 3), 0);  // 0 / 0

    PixelBuffer nan = floatMap(2, 2, std::vector<float>(4, std::numeric_limits<float>::quiet_NaN()));
    EXPECT_FALSE(normalize(nan));
    out = convert(nan);
    ASSERT_TRUE(out);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(levelAt(*out, i % 2, i / 2), 0);
}

TEST(DepthConverter, ScalingBringsHalfFloatMapsToZeroOneAndKeepsNaN) {
    PixelBuffer map{PixelFormat::disparityFloat16, 4, 1, 8, {}};
    const qfloat16 samples[4] = {qfloat16(0.864746f), qfloat16(1.366211f), qfloat16(std::nanf("")), qfloat16(1.1154785f)};
    map.data = QByteArray(reinterpret_cast<const char*>(samples), 8);
    ASSERT_TRUE(normalize(map));
    const auto* s = reinterpret_cast<const qfloat16*>(map.data.constData());
    EXPECT_EQ(float(s[0]), 0.0f);
    EXPECT_EQ(float(s[1]), 1.0f);
    EXPECT_TRUE(std::isnan(float(s[2])));
    EXPECT_NEAR(float(s[3]), 0.5f, 0.002f);
    // After scaling the converter spans exactly 0...1.
    const auto out = convert(map);
    ASSERT_TRUE(out);
    EXPECT_EQ(levelAt(*out, 0, 0), 0);
    EXPECT_EQ(levelAt(*out, 1, 0), 255);
    EXPECT_NEAR(levelAt(*out, 3, 0), 128, 1);
}

TEST(DepthConverter, RefusesWhatItWasNotPreparedFor) {
    DepthToGrayscaleConverter converter;
    const PixelBuffer map = floatMap(2, 2, {0, 1, 2, 3});
    EXPECT_FALSE(converter.render(map));  // never prepared
    converter.prepare({PixelFormat::bgra32, 2, 2}, 1);
    EXPECT_TRUE(converter.isPrepared());
    EXPECT_EQ(converter.inputTextureFormat(), DepthToGrayscaleConverter::TextureFormat::invalid);
    EXPECT_FALSE(converter.render(map));
    converter.prepare({PixelFormat::depthFloat32, 3, 2}, 1);
    EXPECT_FALSE(converter.render(map));  // another size
    PixelBuffer shortData = map;
    shortData.data.chop(1);
    converter.prepare({PixelFormat::depthFloat32, 2, 2}, 1);
    EXPECT_FALSE(converter.render(shortData));
    converter.reset();
    EXPECT_FALSE(converter.isPrepared());
    EXPECT_FALSE(converter.render(map));
}
