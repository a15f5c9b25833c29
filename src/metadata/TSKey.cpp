// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSKey.h"

#include "PropertyKeys.h"

#include <QHash>

#include <array>

namespace {

struct Entry {
    TSKey key;
    const char* raw;
    const char* coordKey;  // nullptr: no coordinate
    SubDictionary dict;
};

// clang-format off
constexpr std::array<Entry, 78> kTable{{
    {TSKey::FILE_SIZE, "File size:", nullptr, {}},
    {TSKey::NAME, "File name:", nullptr, {}},
    {TSKey::EXIF_DATE, "Original Date:", kCGImagePropertyExifDateTimeOriginal, SubDictionary::exif},
    {TSKey::FILE_DATE, "File Date:", nullptr, {}},
    {TSKey::EXIF_LOCATION, "Location:", nullptr, {}},
    {TSKey::FILE_LOCATION, "File Location:", nullptr, {}},
    {TSKey::EXIF_DIGITIZED_DATE, "Digitized Date:", kCGImagePropertyExifDateTimeDigitized, SubDictionary::exif},
    {TSKey::EXIF_SUBSEC_TIME, "EXIF_SUBSEC_TIME", kCGImagePropertyExifSubsecTime, SubDictionary::exif},
    {TSKey::EXIF_SUBSEC_TIME_ORIGINAL, "EXIF_SUBSEC_TIME_ORIGINAL", kCGImagePropertyExifSubsecTimeOriginal, SubDictionary::exif},
    {TSKey::EXIF_SUBSEC_TIME_DIGITIZED, "EXIF_SUBSEC_TIME_DIGITIZED", kCGImagePropertyExifSubsecTimeDigitized, SubDictionary::exif},
    {TSKey::EXIF_OFFSET_TIME, "EXIF_OFFSET_TIME", kCGImagePropertyExifOffsetTime, SubDictionary::exif},
    {TSKey::EXIF_OFFSET_TIME_ORIGINAL, "EXIF_OFFSET_TIME_ORIGINAL", kCGImagePropertyExifOffsetTimeOriginal, SubDictionary::exif},
    {TSKey::EXIF_OFFSET_TIME_DIGITIZED, "EXIF_OFFSET_TIME_DIGITIZED", kCGImagePropertyExifOffsetTimeDigitized, SubDictionary::exif},
    {TSKey::CAMERA, "Camera:", kCGImagePropertyTIFFModel, SubDictionary::tiff},
    {TSKey::CAM_MAKER, "Camera Maker:", kCGImagePropertyTIFFMake, SubDictionary::tiff},
    {TSKey::LENS, "Lens:", kCGImagePropertyExifLensModel, SubDictionary::exif},
    {TSKey::LENS_MAKER, "Lens Maker:", kCGImagePropertyExifLensMake, SubDictionary::exif},
    {TSKey::VIDEOCAM_MAKER, "Maker:", nullptr, {}},
    {TSKey::LENS_SERIAL, "Lens Serial Number:", kCGImagePropertyExifLensSerialNumber, SubDictionary::exif},
    {TSKey::BODY_SERIAL, "Body Serial Number:", kCGImagePropertyExifBodySerialNumber, SubDictionary::exif},
    {TSKey::AUTHOR, "Author:", kCGImagePropertyTIFFArtist, SubDictionary::tiff},
    {TSKey::COPYRIGHT, "Copyright:", kCGImagePropertyTIFFCopyright, SubDictionary::tiff},
    {TSKey::DESCRIPTION, "Description:", kCGImagePropertyTIFFImageDescription, SubDictionary::tiff},
    {TSKey::USER_COMMENT, "User comment:", kCGImagePropertyExifUserComment, SubDictionary::exif},
    {TSKey::SOFTWARE, "Software:", kCGImagePropertyTIFFSoftware, SubDictionary::tiff},
    {TSKey::ISO_SPEED, "ISO Speed:", kCGImagePropertyExifISOSpeedRatings, SubDictionary::exif},
    {TSKey::FOCAL_LENGTH, "Focal Length:", kCGImagePropertyExifFocalLength, SubDictionary::exif},
    {TSKey::FOCAL_LENGTH_35, "35 mm equiv.:", kCGImagePropertyExifFocalLenIn35mmFilm, SubDictionary::exif},
    {TSKey::EXPOSURE_BIAS, "Exp. comp.:", kCGImagePropertyExifExposureBiasValue, SubDictionary::exif},
    {TSKey::APERTURE, "Aperture:", kCGImagePropertyExifFNumber, SubDictionary::exif},
    {TSKey::EXPOSURE_TIME, "Shutter speed:", kCGImagePropertyExifExposureTime, SubDictionary::exif},
    {TSKey::COLOR, "Color:", kCGImagePropertyProfileName, SubDictionary::general},
    {TSKey::RESOLUTION, "Resolution:", nullptr, {}},
    {TSKey::WxH, "Image size:", nullptr, {}},
    {TSKey::ASPECT_RATIO, "Aspect ratio:", nullptr, {}},
    {TSKey::FLASH, "Flash:", kCGImagePropertyExifFlash, SubDictionary::exif},
    {TSKey::METERINGMODE, "Metering:", kCGImagePropertyExifMeteringMode, SubDictionary::exif},
    {TSKey::AWB, "AWB:", kCGImagePropertyExifWhiteBalance, SubDictionary::exif},
    {TSKey::SUBTYPE, "SUBTYPE", nullptr, {}},
    {TSKey::NightMode, "SourceImageNumberOfCompositeImage", kCGImagePropertyExifSourceImageNumberOfCompositeImage, SubDictionary::exif},
    {TSKey::FILETYPE, "File type:", nullptr, {}},
    {TSKey::IPTC_AUTHOR_TITLE, "Author's Job Title", kCGImagePropertyIPTCBylineTitle, SubDictionary::iptc},
    {TSKey::IPTC_DOC_TITLE, "Document title", kCGImagePropertyIPTCObjectName, SubDictionary::iptc},
    {TSKey::IPTC_KEYWORDS, "Keywords:", kCGImagePropertyIPTCKeywords, SubDictionary::iptc},
    {TSKey::IPTC_HEADLINE, "Headline", kCGImagePropertyIPTCHeadline, SubDictionary::iptc},
    {TSKey::IPTC_CREDIT, "Credit:", kCGImagePropertyIPTCCredit, SubDictionary::iptc},
    {TSKey::IPTC_SOURCE, "Source", kCGImagePropertyIPTCSource, SubDictionary::iptc},
    {TSKey::IPTC_DESCRIPTION_WRITER, "Editor's Description", kCGImagePropertyIPTCWriterEditor, SubDictionary::iptc},
    {TSKey::IPTC_RIGHTS_USAGE_TERM, "Rights Usage Terms", kCGImagePropertyIPTCRightsUsageTerms, SubDictionary::iptc},
    {TSKey::IPTC_CREATOR_CONTACT_INFO, "Creator Contact Info", kCGImagePropertyIPTCCreatorContactInfo, SubDictionary::iptc},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_ADDRESS, "Address:", kCGImagePropertyIPTCContactInfoAddress, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_CITY, "City:", kCGImagePropertyIPTCContactInfoCity, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_POSTAL_CODE, "Postal Code:", kCGImagePropertyIPTCContactInfoPostalCode, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_REGION, "State/Province:", kCGImagePropertyIPTCContactInfoStateProvince, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_COUNTRY, "Country:", kCGImagePropertyIPTCContactInfoCountry, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_EMAILS, "Email(s):", kCGImagePropertyIPTCContactInfoEmails, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_PHONES, "Phone(s):", kCGImagePropertyIPTCContactInfoPhones, SubDictionary::iptcCCI},
    {TSKey::IPTC_CREATOR_CONTACT_INFO_URLS, "URL(s):", kCGImagePropertyIPTCContactInfoWebURLs, SubDictionary::iptcCCI},
    {TSKey::IPTC_CITY, "City", kCGImagePropertyIPTCCity, SubDictionary::iptc},
    {TSKey::IPTC_SUBLOCATION, "Location within the city", kCGImagePropertyIPTCSubLocation, SubDictionary::iptc},
    {TSKey::IPTC_PROVINCE, "State or Province", kCGImagePropertyIPTCProvinceState, SubDictionary::iptc},
    {TSKey::IPTC_COUNTRY, "Country", kCGImagePropertyIPTCCountryPrimaryLocationName, SubDictionary::iptc},
    {TSKey::IPTC_COUNTRYCODE, "Country Code", kCGImagePropertyIPTCCountryPrimaryLocationCode, SubDictionary::iptc},
    {TSKey::IPTC_EVENT, "Event", kCGImagePropertyIPTCExtEvent, SubDictionary::iptc},
    {TSKey::IPTC_SOURCE_TYPE, "Source Type", kCGImagePropertyIPTCExtDigitalSourceType, SubDictionary::iptc},
    {TSKey::IPTC_GENRE, "Genre", kCGImagePropertyIPTCExtGenre, SubDictionary::iptc},
    {TSKey::IPTC_DATE_CREATED, "Creation Date", kCGImagePropertyIPTCDateCreated, SubDictionary::iptc},
    {TSKey::IPTC_TIME_CREATED, "Creation Time (UTC)", kCGImagePropertyIPTCTimeCreated, SubDictionary::iptc},
    {TSKey::IPTC_DIGITAL_CREATION_DATE, "Digital Creation Date", kCGImagePropertyIPTCDigitalCreationDate, SubDictionary::iptc},
    {TSKey::IPTC_DIGITAL_CREATION_TIME, "Digital Creation Time (UTC)", kCGImagePropertyIPTCDigitalCreationTime, SubDictionary::iptc},
    {TSKey::DURATION, "Duration:", nullptr, {}},
    {TSKey::FPS, "FPS:", nullptr, {}},
    {TSKey::AUDIO_FORMAT, "Audio Coding:", nullptr, {}},
    {TSKey::SEPARATOR, "", nullptr, {}},
    {TSKey::DETAILS_STACK, "DETAILS_STACK", nullptr, {}},
    {TSKey::SIZES, "SIZES", nullptr, {}},
    {TSKey::BADGES, "BADGES", nullptr, {}},
    {TSKey::MAP, "MAP", nullptr, {}},}};
// clang-format on

constexpr bool inEnumOrder() {
    for (size_t i = 0; i < kTable.size(); ++i)
        if (kTable[i].key != static_cast<TSKey>(i)) return false;
    return true;
}
static_assert(inEnumOrder(), "the table is indexed by TSKey");

// The texts built once, so that lookups hand out shared copies.
struct Vocabulary {
    std::array<QString, kTable.size()> raws;
    std::array<std::optional<TagCoord>, kTable.size()> coords;
    QHash<QString, TSKey> byRaw;
    QList<TSKey> all;

    Vocabulary() {
        for (size_t i = 0; i < kTable.size(); ++i) {
            const Entry& e = kTable[i];
            raws[i] = QString::fromUtf8(e.raw);
            if (e.coordKey) coords[i] = TagCoord{QString::fromLatin1(e.coordKey), e.dict};
            byRaw.insert(raws[i], e.key);
            all << e.key;
        }
    }
};

const Vocabulary& vocabulary() {
    static const Vocabulary v;
    return v;
}

}  // namespace

const QString& rawValue(TSKey key) { return vocabulary().raws[static_cast<size_t>(key)]; }

std::optional<TSKey> tsKeyFromRawValue(const QString& raw) {
    const auto& byRaw = vocabulary().byRaw;
    const auto it = byRaw.constFind(raw);
    if (it == byRaw.cend()) return std::nullopt;
    return *it;
}

std::optional<TagCoord> coord(TSKey key) { return vocabulary().coords[static_cast<size_t>(key)]; }

std::optional<TagCoord> fallbackCoord(TSKey key) {
    switch (key) {
    case TSKey::EXIF_DATE: return TagCoord{kCGImagePropertyTIFFDateTime, SubDictionary::tiff};
    case TSKey::AUTHOR: return TagCoord{kCGImagePropertyIPTCByline, SubDictionary::iptc};
    case TSKey::COPYRIGHT: return TagCoord{kCGImagePropertyIPTCCopyrightNotice, SubDictionary::iptc};
    case TSKey::DESCRIPTION: return TagCoord{kCGImagePropertyIPTCCaptionAbstract, SubDictionary::iptc};
    default: return std::nullopt;
    }
}

size_t qHash(TSKey key, size_t seed) noexcept { return qHash(rawValue(key), seed); }

namespace TSKeys {

const QList<TSKey>& allCases() { return vocabulary().all; }

QList<TSKey> keys(SubDictionary dict) {
    QList<TSKey> found;
    for (TSKey key : allCases())
        if (const auto c = coord(key); c && c->dict == dict) found << key;
    return found;
}

const QList<TSKey>& exifKeys() {
    static const QList<TSKey> list = keys(SubDictionary::exif);
    return list;
}

const QList<TSKey>& tiffKeys() {
    static const QList<TSKey> list = keys(SubDictionary::tiff);
    return list;
}

const QList<TSKey>& iptcKeys() {
    static const QList<TSKey> list = keys(SubDictionary::iptc);
    return list;
}

const QList<TSKey>& iptcContactKeys() {
    static const QList<TSKey> list = keys(SubDictionary::iptcCCI);
    return list;
}

// clang-format off
const QList<TSKey>& photoRows() {
    using enum TSKey;
    static const QList<TSKey> rows{
        SEPARATOR, BADGES, DETAILS_STACK,
        SEPARATOR, CAMERA, CAM_MAKER, LENS, LENS_MAKER,
        SEPARATOR, SIZES,
        SEPARATOR, RESOLUTION, COLOR, SOFTWARE,
        SEPARATOR, AUTHOR, COPYRIGHT, DESCRIPTION, USER_COMMENT,
        SEPARATOR, IPTC_KEYWORDS, IPTC_CREDIT,
        SEPARATOR, MAP,
        SEPARATOR,
    };
    return rows;
}

const QList<TSKey>& videoRows() {
    using enum TSKey;
    static const QList<TSKey> rows{
        SEPARATOR, BADGES,
        SEPARATOR, CAMERA, VIDEOCAM_MAKER,
        SEPARATOR, SIZES,
        SEPARATOR, DURATION, FPS, AUDIO_FORMAT, SOFTWARE,
        SEPARATOR, AUTHOR, COPYRIGHT, DESCRIPTION, USER_COMMENT,
        SEPARATOR, MAP,
        SEPARATOR,
    };
    return rows;
}
// clang-format on

}  // namespace TSKeys
