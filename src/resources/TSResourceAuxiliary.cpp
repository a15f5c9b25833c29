// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSResourceAuxiliary.h"

#include "ImageDecoder.h"

#include <QBuffer>
#include <QFloat16>
#include <QImage>
#include <cmath>
#include <cstring>
#include <limits>

TSResourceAuxiliary::TSResourceAuxiliary(QByteArray bytes) {
    if (!bytes.isEmpty()) source_ = std::move(bytes);
}

std::optional<QByteArray> TSResourceAuxiliary::auxiliaryData(AuxiliaryImageType type) {
    if (!source_) return {};
    const auto info = imageio::auxiliaryDataInfo(*source_, dataType(type));
    if (!info) return {};
    auto bytes = type == AuxiliaryImageType::disparity ? depthRoute(*info) : bitmapRoute(*info);
    if (bytes) hasAux_ = true;
    return bytes;
}

bool TSResourceAuxiliary::hasAuxiliaryImage(const QByteArray& bytes) {
    TSResourceAuxiliary auxiliary(bytes);
    for (AuxiliaryImageType type : allAuxiliaryImageTypes)
        if (auxiliary.auxiliaryData(type)) return true;
    return false;
}

namespace {

QByteArray encode(const QImage& image, const char* format, int quality = -1) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, format, quality) ? bytes : QByteArray();
}

// Samples of 2 or 4 bytes moved like pixels of the same size: Qt's transforms copy pixels
// bit for bit.
PixelBuffer oriented(const PixelBuffer& map, int orientation) {
    const QImage::Format carrier = map.bytesPerSample() == 2 ? QImage::Format_RGB16 : QImage::Format_RGBA8888;
    const QImage wrapped(reinterpret_cast<const uchar*>(map.data.constData()), map.width, map.height, map.bytesPerRow,
                         carrier);
    const QImage turned = imageio::applyOrientation(wrapped, orientation);
    PixelBuffer out{map.format, turned.width(), turned.height(), turned.width() * map.bytesPerSample(), {}};
    out.data.resize(qsizetype(out.bytesPerRow) * out.height);
    for (int y = 0; y < out.height; ++y)
        std::memcpy(out.data.data() + qsizetype(y) * out.bytesPerRow, turned.constScanLine(y), size_t(out.bytesPerRow));
    return out;
}

}  // namespace

std::optional<PixelBuffer> depthDataMap(const imageio::AuxiliaryDataInfo& info) {
    const auto format = mapFormat(info.depthDataType);
    if (!format || info.width <= 0 || info.height <= 0 || info.bitsPerSample < 1 || info.bitsPerSample > 16 ||
        qint64(info.bytesPerRow) < qint64(info.width) * info.bytesPerSample() ||
        qint64(info.bytesPerRow) * info.height > info.data.size())
        return {};
    PixelBuffer map{*format, info.width, info.height, 0, {}};
    map.bytesPerRow = map.width * map.bytesPerSample();
    map.data.resize(qsizetype(map.bytesPerRow) * map.height);
    const double top = double((1u << info.bitsPerSample) - 1);
    const double span = info.maxValue - info.minValue;
    for (int y = 0; y < info.height; ++y) {
        const uchar* row = reinterpret_cast<const uchar*>(info.data.constData()) + qsizetype(y) * info.bytesPerRow;
        char* dst = map.data.data() + qsizetype(y) * map.bytesPerRow;
        for (int x = 0; x < info.width; ++x) {
            quint16 stored = row[x];
            if (info.bytesPerSample() == 2) std::memcpy(&stored, row + 2 * x, 2);
            const float value = float(info.minValue + std::min(double(stored), top) / top * span);
            if (isFloat16(map.format)) {
                const qfloat16 h(value);
                std::memcpy(dst + 2 * x, &h, 2);
            } else {
                std::memcpy(dst + 4 * x, &value, 4);
            }
        }
    }
    if (info.orientation && *info.orientation >= 2 && *info.orientation <= 8) return oriented(map, *info.orientation);
    return map;
}

namespace {

template <typename T>
bool normalizeSamples(PixelBuffer& map, T startHighest, T startLowest) {
    const qsizetype count = std::min(qsizetype(map.width) * map.height, map.data.size() / qsizetype(sizeof(T)));
    auto* samples = reinterpret_cast<T*>(map.data.data());
    T highest = startHighest, lowest = startLowest;
    for (qsizetype i = 0; i < count; ++i) {
        const T s = samples[i];
        if (std::isnan(float(s))) continue;
        if (s > highest) highest = s;
        if (s < lowest) lowest = s;
    }
    const T range = T(highest - lowest);
    if (!(float(range) > 0)) return false;
    for (qsizetype i = 0; i < count; ++i)
        if (!std::isnan(float(samples[i]))) samples[i] = T(T(samples[i] - lowest) / range);
    return true;
}

}  // namespace

bool normalize(PixelBuffer& map) {
    if (map.width <= 0 || map.height <= 0) return false;
    // Each scan starts from the far ends of the format's finite range.
    if (isFloat16(map.format)) return normalizeSamples<qfloat16>(map, qfloat16(-65504.0f), qfloat16(65504.0f));
    return normalizeSamples<float>(map, -std::numeric_limits<float>::max(), std::numeric_limits<float>::max());
}

std::optional<QByteArray> bitmapRoute(const imageio::AuxiliaryDataInfo& info) {
    if (info.width <= 0 || info.height <= 0 || info.bytesPerRow < info.width ||
        qint64(info.bytesPerRow) * info.height > info.data.size())
        return {};
    // One byte a sample, 0 black and 255 white, whatever the samples really are.
    QImage grey(reinterpret_cast<const uchar*>(info.data.constData()), info.width, info.height, info.bytesPerRow,
                QImage::Format_Grayscale8);
    if (info.orientation) grey = imageio::applyOrientation(grey, *info.orientation);
    QByteArray bmp = encode(grey, "BMP");
    if (bmp.isEmpty()) return {};
    return bmp;
}

std::optional<QByteArray> depthRoute(const imageio::AuxiliaryDataInfo& info) {
    std::optional<PixelBuffer> map = depthDataMap(info);
    if (!map) return {};
    DepthToGrayscaleConverter converter;
    converter.reset();
    normalize(*map);
    if (!converter.isPrepared()) converter.prepare({map->format, map->width, map->height}, 1);
    const std::optional<PixelBuffer> grey = converter.render(*map);
    if (!grey) return {};
    const QImage image(reinterpret_cast<const uchar*>(grey->data.constData()), grey->width, grey->height,
                       grey->bytesPerRow, QImage::Format_RGB32);
    QByteArray jpeg = encode(image, "JPEG", 100);
    if (jpeg.isEmpty()) return {};
    return jpeg;
}
