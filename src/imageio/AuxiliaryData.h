// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The images a photo carries beside the main one (depth and disparity maps, gain maps, mattes),
// found and decoded to their samples. HEIF and AVIF keep them as auxiliary items (libheif);
// JPEG appends them behind the primary image and indexes them in a Multi-Picture Format segment
// or a container directory in the XMP, with XMP in each image that names its role.
#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace imageio {

enum class AuxiliaryDataType {
    Depth,
    Disparity,
    HDRGainMap,
    PortraitEffectsMatte,
    SemanticSegmentationGlassesMatte,
    SemanticSegmentationHairMatte,
    SemanticSegmentationSkinMatte,
    SemanticSegmentationSkyMatte,
    SemanticSegmentationTeethMatte,
};

// One auxiliary image decoded to unsigned integer samples, one channel, rows of bytesPerRow.
struct AuxiliaryDataInfo {
    AuxiliaryDataType type = AuxiliaryDataType::Depth;
    QByteArray data;
    int width = 0;
    int height = 0;
    int bytesPerRow = 0;
    int bitsPerSample = 8;           // stored precision; 9 to 16 bits take two bytes a sample
    std::optional<int> orientation;  // EXIF orientation the samples still need to stand upright
    // What the samples stand for, for depth and disparity: the sample type of the maps in
    // their native form ("hdis", "fdis", "hdep", "fdep") and the float range the stored
    // integers span.
    QString depthDataType;
    double minValue = 0.0;
    double maxValue = 1.0;
    bool filtered = false;
    // The coded stream as stored, when the container keeps one of its own (JPEG).
    QByteArray encoded;
    QString encodedMime;

    int bytesPerSample() const { return bitsPerSample > 8 ? 2 : 1; }
};

// The first auxiliary image of that type of the primary image, or nothing when there is none
// or it can't be decoded.
std::optional<AuxiliaryDataInfo> auxiliaryDataInfo(const QByteArray& bytes, AuxiliaryDataType type);

// Where an image of a Multi-Picture Format index stands in the file.
struct MpfImage {
    qsizetype offset = 0;
    qsizetype size = 0;
};
// The images a JPEG's MPF index lists, the primary first; entries that point outside the file
// are left out.
std::vector<MpfImage> mpfImages(const QByteArray& jpeg);

}  // namespace imageio
