// SPDX-License-Identifier: GPL-3.0-or-later
// The tables between exiv2's tags and the property keys, and the XMP homes of fields.
#include "Exiv2Convert.h"

#include "PropertyKeys.h"

namespace imageio {

// clang-format off
const QHash<uint16_t, const char*>& exifTagKeys() {
    static const QHash<uint16_t, const char*> t{
        {0x829a, kCGImagePropertyExifExposureTime}, {0x829d, kCGImagePropertyExifFNumber},
        {0x8822, kCGImagePropertyExifExposureProgram}, {0x8824, kCGImagePropertyExifSpectralSensitivity},
        {0x8827, kCGImagePropertyExifISOSpeedRatings}, {0x8828, kCGImagePropertyExifOECF},
        {0x8830, kCGImagePropertyExifSensitivityType}, {0x8831, kCGImagePropertyExifStandardOutputSensitivity},
        {0x8832, kCGImagePropertyExifRecommendedExposureIndex}, {0x8833, kCGImagePropertyExifISOSpeed},
        {0x8834, kCGImagePropertyExifISOSpeedLatitudeyyy}, {0x8835, kCGImagePropertyExifISOSpeedLatitudezzz},
        {0x9000, kCGImagePropertyExifVersion}, {0x9003, kCGImagePropertyExifDateTimeOriginal},
        {0x9004, kCGImagePropertyExifDateTimeDigitized}, {0x9010, kCGImagePropertyExifOffsetTime},
        {0x9011, kCGImagePropertyExifOffsetTimeOriginal}, {0x9012, kCGImagePropertyExifOffsetTimeDigitized},
        {0x9101, kCGImagePropertyExifComponentsConfiguration}, {0x9102, kCGImagePropertyExifCompressedBitsPerPixel},
        {0x9201, kCGImagePropertyExifShutterSpeedValue}, {0x9202, kCGImagePropertyExifApertureValue},
        {0x9203, kCGImagePropertyExifBrightnessValue}, {0x9204, kCGImagePropertyExifExposureBiasValue},
        {0x9205, kCGImagePropertyExifMaxApertureValue}, {0x9206, kCGImagePropertyExifSubjectDistance},
        {0x9207, kCGImagePropertyExifMeteringMode}, {0x9208, kCGImagePropertyExifLightSource},
        {0x9209, kCGImagePropertyExifFlash}, {0x920a, kCGImagePropertyExifFocalLength},
        {0x9214, kCGImagePropertyExifSubjectArea}, {0x9286, kCGImagePropertyExifUserComment},
        {0x9290, kCGImagePropertyExifSubsecTime}, {0x9291, kCGImagePropertyExifSubsecTimeOriginal},
        {0x9292, kCGImagePropertyExifSubsecTimeDigitized}, {0xa000, kCGImagePropertyExifFlashPixVersion},
        {0xa001, kCGImagePropertyExifColorSpace}, {0xa002, kCGImagePropertyExifPixelXDimension},
        {0xa003, kCGImagePropertyExifPixelYDimension}, {0xa004, kCGImagePropertyExifRelatedSoundFile},
        {0xa20b, kCGImagePropertyExifFlashEnergy}, {0xa20c, kCGImagePropertyExifSpatialFrequencyResponse},
        {0xa20e, kCGImagePropertyExifFocalPlaneXResolution}, {0xa20f, kCGImagePropertyExifFocalPlaneYResolution},
        {0xa210, kCGImagePropertyExifFocalPlaneResolutionUnit}, {0xa214, kCGImagePropertyExifSubjectLocation},
        {0xa215, kCGImagePropertyExifExposureIndex}, {0xa217, kCGImagePropertyExifSensingMethod},
        {0xa300, kCGImagePropertyExifFileSource}, {0xa301, kCGImagePropertyExifSceneType},
        {0xa302, kCGImagePropertyExifCFAPattern}, {0xa401, kCGImagePropertyExifCustomRendered},
        {0xa402, kCGImagePropertyExifExposureMode}, {0xa403, kCGImagePropertyExifWhiteBalance},
        {0xa404, kCGImagePropertyExifDigitalZoomRatio}, {0xa405, kCGImagePropertyExifFocalLenIn35mmFilm},
        {0xa406, kCGImagePropertyExifSceneCaptureType}, {0xa407, kCGImagePropertyExifGainControl},
        {0xa408, kCGImagePropertyExifContrast}, {0xa409, kCGImagePropertyExifSaturation},
        {0xa40a, kCGImagePropertyExifSharpness}, {0xa40b, kCGImagePropertyExifDeviceSettingDescription},
        {0xa40c, kCGImagePropertyExifSubjectDistRange}, {0xa420, kCGImagePropertyExifImageUniqueID},
        {0xa430, kCGImagePropertyExifCameraOwnerName}, {0xa431, kCGImagePropertyExifBodySerialNumber},
        {0xa432, kCGImagePropertyExifLensSpecification}, {0xa433, kCGImagePropertyExifLensMake},
        {0xa434, kCGImagePropertyExifLensModel}, {0xa435, kCGImagePropertyExifLensSerialNumber},
        {0xa460, kCGImagePropertyExifCompositeImage}, {0xa461, kCGImagePropertyExifSourceImageNumberOfCompositeImage},
        {0xa462, kCGImagePropertyExifSourceExposureTimesOfCompositeImage}, {0xa500, kCGImagePropertyExifGamma},
    };
    return t;
}

const QHash<uint16_t, const char*>& tiffTagKeys() {
    static const QHash<uint16_t, const char*> t{
        {0x0103, kCGImagePropertyTIFFCompression}, {0x0106, kCGImagePropertyTIFFPhotometricInterpretation},
        {0x010d, kCGImagePropertyTIFFDocumentName}, {0x010e, kCGImagePropertyTIFFImageDescription},
        {0x010f, kCGImagePropertyTIFFMake}, {0x0110, kCGImagePropertyTIFFModel},
        {0x0112, kCGImagePropertyTIFFOrientation}, {0x011a, kCGImagePropertyTIFFXResolution},
        {0x011b, kCGImagePropertyTIFFYResolution}, {0x0128, kCGImagePropertyTIFFResolutionUnit},
        {0x0131, kCGImagePropertyTIFFSoftware}, {0x012d, kCGImagePropertyTIFFTransferFunction},
        {0x0132, kCGImagePropertyTIFFDateTime}, {0x013b, kCGImagePropertyTIFFArtist},
        {0x013c, kCGImagePropertyTIFFHostComputer}, {0x8298, kCGImagePropertyTIFFCopyright},
        {0x013e, kCGImagePropertyTIFFWhitePoint}, {0x013f, kCGImagePropertyTIFFPrimaryChromaticities},
        {0x0142, kCGImagePropertyTIFFTileWidth}, {0x0143, kCGImagePropertyTIFFTileLength},
    };
    return t;
}

const QHash<uint16_t, const char*>& gpsTagKeys() {
    static const QHash<uint16_t, const char*> t{
        {0x00, kCGImagePropertyGPSVersion}, {0x01, kCGImagePropertyGPSLatitudeRef},
        {0x02, kCGImagePropertyGPSLatitude}, {0x03, kCGImagePropertyGPSLongitudeRef},
        {0x04, kCGImagePropertyGPSLongitude}, {0x05, kCGImagePropertyGPSAltitudeRef},
        {0x06, kCGImagePropertyGPSAltitude}, {0x07, kCGImagePropertyGPSTimeStamp},
        {0x08, kCGImagePropertyGPSSatellites}, {0x09, kCGImagePropertyGPSStatus},
        {0x0a, kCGImagePropertyGPSMeasureMode}, {0x0b, kCGImagePropertyGPSDOP},
        {0x0c, kCGImagePropertyGPSSpeedRef}, {0x0d, kCGImagePropertyGPSSpeed},
        {0x0e, kCGImagePropertyGPSTrackRef}, {0x0f, kCGImagePropertyGPSTrack},
        {0x10, kCGImagePropertyGPSImgDirectionRef}, {0x11, kCGImagePropertyGPSImgDirection},
        {0x12, kCGImagePropertyGPSMapDatum}, {0x13, kCGImagePropertyGPSDestLatitudeRef},
        {0x14, kCGImagePropertyGPSDestLatitude}, {0x15, kCGImagePropertyGPSDestLongitudeRef},
        {0x16, kCGImagePropertyGPSDestLongitude}, {0x17, kCGImagePropertyGPSDestBearingRef},
        {0x18, kCGImagePropertyGPSDestBearing}, {0x19, kCGImagePropertyGPSDestDistanceRef},
        {0x1a, kCGImagePropertyGPSDestDistance}, {0x1b, kCGImagePropertyGPSProcessingMethod},
        {0x1c, kCGImagePropertyGPSAreaInformation}, {0x1d, kCGImagePropertyGPSDateStamp},
        {0x1e, kCGImagePropertyGPSDifferental}, {0x1f, kCGImagePropertyGPSHPositioningError},
    };
    return t;
}

// IIM record 2 dataset numbers.
const QHash<uint16_t, const char*>& iptcDatasetKeys() {
    static const QHash<uint16_t, const char*> t{
        {3, kCGImagePropertyIPTCObjectTypeReference}, {4, kCGImagePropertyIPTCObjectAttributeReference},
        {5, kCGImagePropertyIPTCObjectName}, {7, kCGImagePropertyIPTCEditStatus},
        {8, kCGImagePropertyIPTCEditorialUpdate}, {10, kCGImagePropertyIPTCUrgency},
        {12, kCGImagePropertyIPTCSubjectReference}, {15, kCGImagePropertyIPTCCategory},
        {20, kCGImagePropertyIPTCSupplementalCategory}, {22, kCGImagePropertyIPTCFixtureIdentifier},
        {25, kCGImagePropertyIPTCKeywords}, {26, kCGImagePropertyIPTCContentLocationCode},
        {27, kCGImagePropertyIPTCContentLocationName}, {30, kCGImagePropertyIPTCReleaseDate},
        {35, kCGImagePropertyIPTCReleaseTime}, {37, kCGImagePropertyIPTCExpirationDate},
        {38, kCGImagePropertyIPTCExpirationTime}, {40, kCGImagePropertyIPTCSpecialInstructions},
        {42, kCGImagePropertyIPTCActionAdvised}, {45, kCGImagePropertyIPTCReferenceService},
        {47, kCGImagePropertyIPTCReferenceDate}, {50, kCGImagePropertyIPTCReferenceNumber},
        {55, kCGImagePropertyIPTCDateCreated}, {60, kCGImagePropertyIPTCTimeCreated},
        {62, kCGImagePropertyIPTCDigitalCreationDate}, {63, kCGImagePropertyIPTCDigitalCreationTime},
        {65, kCGImagePropertyIPTCOriginatingProgram}, {70, kCGImagePropertyIPTCProgramVersion},
        {75, kCGImagePropertyIPTCObjectCycle}, {80, kCGImagePropertyIPTCByline},
        {85, kCGImagePropertyIPTCBylineTitle}, {90, kCGImagePropertyIPTCCity},
        {92, kCGImagePropertyIPTCSubLocation}, {95, kCGImagePropertyIPTCProvinceState},
        {100, kCGImagePropertyIPTCCountryPrimaryLocationCode}, {101, kCGImagePropertyIPTCCountryPrimaryLocationName},
        {103, kCGImagePropertyIPTCOriginalTransmissionReference}, {105, kCGImagePropertyIPTCHeadline},
        {110, kCGImagePropertyIPTCCredit}, {115, kCGImagePropertyIPTCSource},
        {116, kCGImagePropertyIPTCCopyrightNotice}, {118, kCGImagePropertyIPTCContact},
        {120, kCGImagePropertyIPTCCaptionAbstract}, {122, kCGImagePropertyIPTCWriterEditor},
        {130, kCGImagePropertyIPTCImageType}, {131, kCGImagePropertyIPTCImageOrientation},
        {135, kCGImagePropertyIPTCLanguageIdentifier},
    };
    return t;
}
// clang-format on

bool isRepeatableIptc(const QString& key) {
    return key == kCGImagePropertyIPTCKeywords || key == kCGImagePropertyIPTCByline ||
           key == kCGImagePropertyIPTCWriterEditor || key == kCGImagePropertyIPTCSupplementalCategory ||
           key == kCGImagePropertyIPTCContact || key == kCGImagePropertyIPTCSubjectReference ||
           key == kCGImagePropertyIPTCBylineTitle;
}

// clang-format off
const std::vector<XmpField>& xmpIptcFields() {
    static const std::vector<XmpField> iptcFields{
        {"Xmp.dc.subject", kCGImagePropertyIPTCKeywords, true},
        {"Xmp.dc.creator", kCGImagePropertyIPTCByline, true},
        {"Xmp.photoshop.AuthorsPosition", kCGImagePropertyIPTCBylineTitle, true},
        {"Xmp.dc.title", kCGImagePropertyIPTCObjectName, false},
        {"Xmp.photoshop.Headline", kCGImagePropertyIPTCHeadline, false},
        {"Xmp.dc.description", kCGImagePropertyIPTCCaptionAbstract, false},
        {"Xmp.photoshop.CaptionWriter", kCGImagePropertyIPTCWriterEditor, true},
        {"Xmp.photoshop.Credit", kCGImagePropertyIPTCCredit, false},
        {"Xmp.photoshop.Source", kCGImagePropertyIPTCSource, false},
        {"Xmp.dc.rights", kCGImagePropertyIPTCCopyrightNotice, false},
        {"Xmp.xmpRights.UsageTerms", kCGImagePropertyIPTCRightsUsageTerms, false},
        {"Xmp.photoshop.City", kCGImagePropertyIPTCCity, false},
        {"Xmp.iptc.Location", kCGImagePropertyIPTCSubLocation, false},
        {"Xmp.photoshop.State", kCGImagePropertyIPTCProvinceState, false},
        {"Xmp.photoshop.Country", kCGImagePropertyIPTCCountryPrimaryLocationName, false},
        {"Xmp.iptc.CountryCode", kCGImagePropertyIPTCCountryPrimaryLocationCode, false},
        {"Xmp.photoshop.Instructions", kCGImagePropertyIPTCSpecialInstructions, false},
        {"Xmp.photoshop.TransmissionReference", kCGImagePropertyIPTCOriginalTransmissionReference, false},
        {"Xmp.photoshop.Urgency", kCGImagePropertyIPTCUrgency, false},
        {"Xmp.photoshop.Category", kCGImagePropertyIPTCCategory, false},
        {"Xmp.photoshop.SupplementalCategories", kCGImagePropertyIPTCSupplementalCategory, true},
        {"Xmp.iptc.SubjectCode", kCGImagePropertyIPTCSubjectReference, true},
        {"Xmp.iptc.Scene", kCGImagePropertyIPTCScene, true},
        {"Xmp.iptc.IntellectualGenre", kCGImagePropertyIPTCExtGenre, false},
        {"Xmp.iptcExt.Event", kCGImagePropertyIPTCExtEvent, false},
        {"Xmp.iptcExt.DigitalSourceType", kCGImagePropertyIPTCExtDigitalSourceType, false},
        {"Xmp.xmp.Rating", kCGImagePropertyIPTCStarRating, false},
    };
    return iptcFields;
}

const std::vector<XmpField>& xmpContactFields() {
    static const std::vector<XmpField> contactFields{
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrExtadr", kCGImagePropertyIPTCContactInfoAddress, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCity", kCGImagePropertyIPTCContactInfoCity, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrRegion", kCGImagePropertyIPTCContactInfoStateProvince, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrPcode", kCGImagePropertyIPTCContactInfoPostalCode, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCtry", kCGImagePropertyIPTCContactInfoCountry, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiEmailWork", kCGImagePropertyIPTCContactInfoEmails, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiTelWork", kCGImagePropertyIPTCContactInfoPhones, false},
        {"Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiUrlWork", kCGImagePropertyIPTCContactInfoWebURLs, false},
    };
    return contactFields;
}

const std::vector<XmpFill>& xmpFills() {
    using enum XmpFill::Kind;
    static const std::vector<XmpFill> fills{
        {"Xmp.tiff.Make", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFMake, Text},
        {"Xmp.tiff.Model", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFModel, Text},
        {"Xmp.tiff.Software", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFSoftware, Text},
        {"Xmp.xmp.CreatorTool", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFSoftware, Text},
        {"Xmp.tiff.Artist", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFArtist, Text},
        {"Xmp.tiff.Copyright", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFCopyright, Text},
        {"Xmp.tiff.ImageDescription", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFImageDescription, Text},
        {"Xmp.tiff.DateTime", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFDateTime, Date},
        {"Xmp.xmp.ModifyDate", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFDateTime, Date},
        {"Xmp.tiff.Orientation", kCGImagePropertyTIFFDictionary, kCGImagePropertyTIFFOrientation, Number},
        {"Xmp.exif.DateTimeOriginal", kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal, Date},
        {"Xmp.photoshop.DateCreated", kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeOriginal, Date},
        {"Xmp.exif.DateTimeDigitized", kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeDigitized, Date},
        {"Xmp.xmp.CreateDate", kCGImagePropertyExifDictionary, kCGImagePropertyExifDateTimeDigitized, Date},
        {"Xmp.exif.ExposureTime", kCGImagePropertyExifDictionary, kCGImagePropertyExifExposureTime, Number},
        {"Xmp.exif.FNumber", kCGImagePropertyExifDictionary, kCGImagePropertyExifFNumber, Number},
        {"Xmp.exif.ISOSpeedRatings", kCGImagePropertyExifDictionary, kCGImagePropertyExifISOSpeedRatings, Numbers},
        {"Xmp.exif.FocalLength", kCGImagePropertyExifDictionary, kCGImagePropertyExifFocalLength, Number},
        {"Xmp.exif.FocalLengthIn35mmFilm", kCGImagePropertyExifDictionary, kCGImagePropertyExifFocalLenIn35mmFilm, Number},
        {"Xmp.exif.ExposureBiasValue", kCGImagePropertyExifDictionary, kCGImagePropertyExifExposureBiasValue, Number},
        {"Xmp.exif.MeteringMode", kCGImagePropertyExifDictionary, kCGImagePropertyExifMeteringMode, Number},
        {"Xmp.exif.WhiteBalance", kCGImagePropertyExifDictionary, kCGImagePropertyExifWhiteBalance, Number},
        {"Xmp.exif.PixelXDimension", kCGImagePropertyExifDictionary, kCGImagePropertyExifPixelXDimension, Number},
        {"Xmp.exif.PixelYDimension", kCGImagePropertyExifDictionary, kCGImagePropertyExifPixelYDimension, Number},
        {"Xmp.exif.UserComment", kCGImagePropertyExifDictionary, kCGImagePropertyExifUserComment, Text},
        {"Xmp.exifEX.LensModel", kCGImagePropertyExifDictionary, kCGImagePropertyExifLensModel, Text},
        {"Xmp.exifEX.LensMake", kCGImagePropertyExifDictionary, kCGImagePropertyExifLensMake, Text},
        {"Xmp.aux.Lens", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxLensModel, Text},
        {"Xmp.aux.LensInfo", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxLensInfo, Text},
        {"Xmp.aux.LensID", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxLensID, Number},
        {"Xmp.aux.SerialNumber", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxSerialNumber, Text},
        {"Xmp.aux.LensSerialNumber", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxLensSerialNumber, Text},
        {"Xmp.aux.ImageNumber", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxImageNumber, Number},
        {"Xmp.aux.FlashCompensation", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxFlashCompensation, Number},
        {"Xmp.aux.OwnerName", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxOwnerName, Text},
        {"Xmp.aux.Firmware", kCGImagePropertyExifAuxDictionary, kCGImagePropertyExifAuxFirmware, Text},
    };
    return fills;
}
// clang-format on

}  // namespace imageio
