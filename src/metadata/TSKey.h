// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The closed vocabulary of every metadata item the system names. A case's raw value is both
// its identity and its row label, so changing a label changes the identity.
#include <QList>
#include <QString>
#include <optional>

// Where a coordinate points in a property dictionary. The order matters only for comparison.
enum class SubDictionary { exif, tiff, iptc, iptcCCI, gps, general };

// A property key (the image framework's text) and the dictionary that holds it.
struct TagCoord {
    QString key;
    SubDictionary dict;

    friend bool operator==(const TagCoord&, const TagCoord&) = default;
};

// clang-format off
enum class TSKey {
    FILE_SIZE, NAME, EXIF_DATE, FILE_DATE, EXIF_LOCATION, FILE_LOCATION, EXIF_DIGITIZED_DATE,
    EXIF_SUBSEC_TIME, EXIF_SUBSEC_TIME_ORIGINAL, EXIF_SUBSEC_TIME_DIGITIZED,
    EXIF_OFFSET_TIME, EXIF_OFFSET_TIME_ORIGINAL, EXIF_OFFSET_TIME_DIGITIZED,
    CAMERA, CAM_MAKER, LENS, LENS_MAKER, VIDEOCAM_MAKER, LENS_SERIAL, BODY_SERIAL,
    AUTHOR, COPYRIGHT, DESCRIPTION, USER_COMMENT, SOFTWARE,
    ISO_SPEED, FOCAL_LENGTH, FOCAL_LENGTH_35, EXPOSURE_BIAS, APERTURE, EXPOSURE_TIME,
    COLOR, RESOLUTION, WxH, ASPECT_RATIO, FLASH, METERINGMODE, AWB, SUBTYPE, NightMode, FILETYPE,
    IPTC_AUTHOR_TITLE, IPTC_DOC_TITLE, IPTC_KEYWORDS, IPTC_HEADLINE, IPTC_CREDIT, IPTC_SOURCE,
    IPTC_DESCRIPTION_WRITER, IPTC_RIGHTS_USAGE_TERM, IPTC_CREATOR_CONTACT_INFO,
    IPTC_CREATOR_CONTACT_INFO_ADDRESS, IPTC_CREATOR_CONTACT_INFO_CITY, IPTC_CREATOR_CONTACT_INFO_POSTAL_CODE,
    IPTC_CREATOR_CONTACT_INFO_REGION, IPTC_CREATOR_CONTACT_INFO_COUNTRY, IPTC_CREATOR_CONTACT_INFO_EMAILS,
    IPTC_CREATOR_CONTACT_INFO_PHONES, IPTC_CREATOR_CONTACT_INFO_URLS,
    IPTC_CITY, IPTC_SUBLOCATION, IPTC_PROVINCE, IPTC_COUNTRY, IPTC_COUNTRYCODE,
    IPTC_EVENT, IPTC_SOURCE_TYPE, IPTC_GENRE,
    IPTC_DATE_CREATED, IPTC_TIME_CREATED, IPTC_DIGITAL_CREATION_DATE, IPTC_DIGITAL_CREATION_TIME,
    DURATION, FPS, AUDIO_FORMAT, SEPARATOR, DETAILS_STACK, SIZES, BADGES, MAP,
};
// clang-format on

const QString& rawValue(TSKey key);
// Exact, case-sensitive match of the whole text.
std::optional<TSKey> tsKeyFromRawValue(const QString& raw);
// Nothing for cases filled from several keys or from the library, and for row kinds.
std::optional<TagCoord> coord(TSKey key);
// Where to look when the primary coordinate has no value; only four cases have one.
std::optional<TagCoord> fallbackCoord(TSKey key);

// Hashes the raw value, which identifies the case.
size_t qHash(TSKey key, size_t seed = 0) noexcept;

namespace TSKeys {
// The 78 cases in vocabulary order; every list below keeps that order.
const QList<TSKey>& allCases();
// The cases whose coordinate lies in `dict`.
QList<TSKey> keys(SubDictionary dict);
const QList<TSKey>& exifKeys();
const QList<TSKey>& tiffKeys();
const QList<TSKey>& iptcKeys();
const QList<TSKey>& iptcContactKeys();
// Detail table rows below the date and location rows. Both end in MAP, SEPARATOR so that an
// item without a location drops exactly the last two.
const QList<TSKey>& photoRows();
const QList<TSKey>& videoRows();
}  // namespace TSKeys
