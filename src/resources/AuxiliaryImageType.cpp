// SPDX-License-Identifier: GPL-3.0-or-later
#include "AuxiliaryImageType.h"

QString label(AuxiliaryImageType type) {
    switch (type) {
    case AuxiliaryImageType::depth: return QStringLiteral("Depth Map");
    case AuxiliaryImageType::disparity: return QStringLiteral("Image Disparity");
    case AuxiliaryImageType::HDRGainMap: return QStringLiteral("HDR Gain Map");
    case AuxiliaryImageType::portraitEffectsMatte: return QStringLiteral("Portrait Effects Matte");
    case AuxiliaryImageType::semanticSegmentationGlassesMatte: return QStringLiteral("Glasses Matte");
    case AuxiliaryImageType::semanticSegmentationHairMatte: return QStringLiteral("Hair Matte");
    case AuxiliaryImageType::semanticSegmentationSkinMatte: return QStringLiteral("Skin Matte");
    case AuxiliaryImageType::semanticSegmentationSkyMatte: return QStringLiteral("Sky Matte");
    case AuxiliaryImageType::semanticSegmentationTeethMatte: return QStringLiteral("Teeth Matte");
    }
    return {};
}

imageio::AuxiliaryDataType dataType(AuxiliaryImageType type) {
    using D = imageio::AuxiliaryDataType;
    switch (type) {
    case AuxiliaryImageType::depth: return D::Depth;
    case AuxiliaryImageType::disparity: return D::Disparity;
    case AuxiliaryImageType::HDRGainMap: return D::HDRGainMap;
    case AuxiliaryImageType::portraitEffectsMatte: return D::PortraitEffectsMatte;
    case AuxiliaryImageType::semanticSegmentationGlassesMatte: return D::SemanticSegmentationGlassesMatte;
    case AuxiliaryImageType::semanticSegmentationHairMatte: return D::SemanticSegmentationHairMatte;
    case AuxiliaryImageType::semanticSegmentationSkinMatte: return D::SemanticSegmentationSkinMatte;
    case AuxiliaryImageType::semanticSegmentationSkyMatte: return D::SemanticSegmentationSkyMatte;
    case AuxiliaryImageType::semanticSegmentationTeethMatte: return D::SemanticSegmentationTeethMatte;
    }
    return D::Depth;
}
