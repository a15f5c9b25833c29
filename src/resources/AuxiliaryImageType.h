// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The kinds of image a photo may carry beside its main one, in the order they are looked for
// and listed.
#include "AuxiliaryData.h"

#include <QString>
#include <array>

enum class AuxiliaryImageType : quint8 {
    depth,
    disparity,
    HDRGainMap,
    portraitEffectsMatte,
    semanticSegmentationGlassesMatte,
    semanticSegmentationHairMatte,
    semanticSegmentationSkinMatte,
    semanticSegmentationSkyMatte,
    semanticSegmentationTeethMatte,
};

inline constexpr std::array<AuxiliaryImageType, 9> allAuxiliaryImageTypes{
    AuxiliaryImageType::depth,
    AuxiliaryImageType::disparity,
    AuxiliaryImageType::HDRGainMap,
    AuxiliaryImageType::portraitEffectsMatte,
    AuxiliaryImageType::semanticSegmentationGlassesMatte,
    AuxiliaryImageType::semanticSegmentationHairMatte,
    AuxiliaryImageType::semanticSegmentationSkinMatte,
    AuxiliaryImageType::semanticSegmentationSkyMatte,
    AuxiliaryImageType::semanticSegmentationTeethMatte,
};

// "Depth Map", "Image Disparity", "HDR Gain Map", ...
QString label(AuxiliaryImageType type);
// The same kind as the image reader names it.
imageio::AuxiliaryDataType dataType(AuxiliaryImageType type);
