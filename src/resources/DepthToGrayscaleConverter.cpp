// SPDX-License-Identifier: GPL-3.0-or-later
#include "DepthToGrayscaleConverter.h"

#include <QFloat16>
#include <QString>
#include <cmath>
#include <cstring>
#include <limits>

std::optional<PixelFormat> mapFormat(const QString& fourCC) {
    if (fourCC == "hdep") return PixelFormat::depthFloat16;
    if (fourCC == "hdis") return PixelFormat::disparityFloat16;
    if (fourCC == "fdep") return PixelFormat::depthFloat32;
    if (fourCC == "fdis") return PixelFormat::disparityFloat32;
    return {};
}

bool isFloat16(PixelFormat format) {
    return format == PixelFormat::depthFloat16 || format == PixelFormat::disparityFloat16;
}

int PixelBuffer::bytesPerSample() const { return isFloat16(format) ? 2 : 4; }

bool PixelBuffer::isValid() const {
    return width > 0 && height > 0 && qint64(bytesPerRow) >= qint64(width) * bytesPerSample() &&
           qint64(bytesPerRow) * height <= data.size();
}

void DepthToGrayscaleConverter::reset() {
    outputFormatDescription_.reset();
    inputFormatDescription_.reset();
    inputTextureFormat_ = TextureFormat::invalid;
    isPrepared_ = false;
}

void DepthToGrayscaleConverter::prepare(const FormatDescription& input, int /*outputRetainedBufferCountHint*/) {
    reset();
    if (input.width <= 0 || input.height <= 0) return;
    inputFormatDescription_ = input;
    outputFormatDescription_ = FormatDescription{PixelFormat::bgra32, input.width, input.height};
    switch (input.subtype) {
    case PixelFormat::depthFloat16:
    case PixelFormat::disparityFloat16: inputTextureFormat_ = TextureFormat::r16Float; break;
    case PixelFormat::depthFloat32:
    case PixelFormat::disparityFloat32: inputTextureFormat_ = TextureFormat::r32Float; break;
    default: inputTextureFormat_ = TextureFormat::invalid;
    }
    isPrepared_ = true;
}

namespace {

float sampleAt(const char* row, int x, bool half) {
    if (half) {
        qfloat16 h;
        std::memcpy(&h, row + qsizetype(x) * 2, 2);
        return float(h);
    }
    float f;
    std::memcpy(&f, row + qsizetype(x) * 4, 4);
    return f;
}

// A float written to an 8-bit normalised channel: clamped to 0...1, rounded to the nearest
// level; NaN gives 0.
quint8 unorm8(float v) {
    if (std::isnan(v)) return 0;
    v = std::clamp(v, 0.0f, 1.0f);
    return quint8(std::nearbyint(v * 255.0f));
}

}  // namespace

std::optional<PixelBuffer> DepthToGrayscaleConverter::render(const PixelBuffer& input) {
    if (!isPrepared_ || !outputFormatDescription_) return {};
    if (inputTextureFormat_ == TextureFormat::invalid || !input.isValid() ||
        isFloat16(input.format) != (inputTextureFormat_ == TextureFormat::r16Float) ||
        input.width != outputFormatDescription_->width || input.height != outputFormatDescription_->height)
        return {};
    const bool half = inputTextureFormat_ == TextureFormat::r16Float;

    // Lowest and highest sample, NaN left out; infinities count.
    float lowest = std::numeric_limits<float>::max();
    float highest = -std::numeric_limits<float>::max();
    for (int y = 0; y < input.height; ++y) {
        const char* row = input.data.constData() + qsizetype(y) * input.bytesPerRow;
        for (int x = 0; x < input.width; ++x) {
            const float s = sampleAt(row, x, half);
            if (std::isnan(s)) continue;
            lowest = std::min(lowest, s);
            highest = std::max(highest, s);
        }
    }
    const float offset = lowest;
    const float range = highest - lowest;

    PixelBuffer out{PixelFormat::bgra32, input.width, input.height, input.width * 4, {}};
    out.data.resize(qsizetype(out.bytesPerRow) * out.height);
    for (int y = 0; y < input.height; ++y) {
        const char* row = input.data.constData() + qsizetype(y) * input.bytesPerRow;
        auto* dst = reinterpret_cast<quint8*>(out.data.data() + qsizetype(y) * out.bytesPerRow);
        for (int x = 0; x < input.width; ++x) {
            const quint8 level = unorm8((sampleAt(row, x, half) - offset) / range);
            dst[4 * x] = dst[4 * x + 1] = dst[4 * x + 2] = level;
            dst[4 * x + 3] = 255;
        }
    }
    return out;
}
