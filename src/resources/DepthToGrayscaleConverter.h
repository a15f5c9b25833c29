// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns a one-channel map of depth or disparity samples (16- or 32-bit floats) into a grey
// BGRA picture: each sample becomes (sample - lowest) / (highest - lowest). Shaped like a frame
// filter: prepared once for a format, then applied, then reset. Plain loops over the samples:
// the grey levels are what matters, not where they are computed.
#include <QByteArray>
#include <optional>

// The sample formats of a map, by their four-character codes, and the output's.
enum class PixelFormat : quint32 {
    depthFloat16 = 0x68646570,      // 'hdep'
    disparityFloat16 = 0x68646973,  // 'hdis'
    depthFloat32 = 0x66646570,      // 'fdep'
    disparityFloat32 = 0x66646973,  // 'fdis'
    bgra32 = 0x42475241,            // 'BGRA'
};

// Nothing for a code that is none of the map formats.
std::optional<PixelFormat> mapFormat(const QString& fourCC);
bool isFloat16(PixelFormat format);

// Samples in rows of bytesPerRow, native byte order.
struct PixelBuffer {
    PixelFormat format = PixelFormat::depthFloat32;
    int width = 0;
    int height = 0;
    int bytesPerRow = 0;
    QByteArray data;

    int bytesPerSample() const;
    // The size and rows fit the data.
    bool isValid() const;
};

struct FormatDescription {
    PixelFormat subtype = PixelFormat::depthFloat32;
    int width = 0;
    int height = 0;
};

class DepthToGrayscaleConverter {
public:
    enum class TextureFormat { invalid, r16Float, r32Float };

    void prepare(const FormatDescription& input, int outputRetainedBufferCountHint);
    void reset();
    // A BGRA picture of the input's size; nothing when unprepared or the input doesn't match.
    std::optional<PixelBuffer> render(const PixelBuffer& input);

    bool isPrepared() const { return isPrepared_; }
    TextureFormat inputTextureFormat() const { return inputTextureFormat_; }
    const std::optional<FormatDescription>& outputFormatDescription() const { return outputFormatDescription_; }

private:
    bool isPrepared_ = false;
    std::optional<FormatDescription> inputFormatDescription_;
    std::optional<FormatDescription> outputFormatDescription_;
    TextureFormat inputTextureFormat_ = TextureFormat::invalid;
};
