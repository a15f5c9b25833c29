#include "TSKey.h"

#include <gtest/gtest.h>

#include <QSet>

void PrintTo(const TagCoord& c, std::ostream* os) { *os << c.key.toStdString() << " in " << int(c.dict); }

namespace {

using enum TSKey;

TEST(TSKey, EveryCaseRoundTripsThroughItsOwnRawValue) {
    const auto& all = TSKeys::allCases();
    ASSERT_EQ(all.size(), 78);
    EXPECT_EQ(all.first(), FILE_SIZE);
    EXPECT_EQ(all.last(), MAP);
    QSet<QString> raws;
    for (TSKey key : all) {
        raws << rawValue(key);
        EXPECT_EQ(tsKeyFromRawValue(rawValue(key)), key) << rawValue(key).toStdString();
    }
    EXPECT_EQ(raws.size(), 78);
    EXPECT_EQ(QSet<TSKey>(all.begin(), all.end()).size(), 78);
}

TEST(TSKey, ConstructionNeedsTheExactText) {
    EXPECT_EQ(tsKeyFromRawValue(""), SEPARATOR);
    EXPECT_EQ(tsKeyFromRawValue("Camera:"), CAMERA);
    EXPECT_FALSE(tsKeyFromRawValue("Camera"));
    EXPECT_FALSE(tsKeyFromRawValue("camera:"));
    EXPECT_FALSE(tsKeyFromRawValue("Camera: "));
    EXPECT_EQ(tsKeyFromRawValue("City:"), IPTC_CREATOR_CONTACT_INFO_CITY);
    EXPECT_EQ(tsKeyFromRawValue("City"), IPTC_CITY);
    EXPECT_EQ(tsKeyFromRawValue("Country:"), IPTC_CREATOR_CONTACT_INFO_COUNTRY);
    EXPECT_EQ(tsKeyFromRawValue("Country"), IPTC_COUNTRY);
    EXPECT_EQ(tsKeyFromRawValue("SourceImageNumberOfCompositeImage"), NightMode);
    EXPECT_EQ(tsKeyFromRawValue("Author's Job Title"), IPTC_AUTHOR_TITLE);
    EXPECT_EQ(rawValue(EXIF_SUBSEC_TIME), "EXIF_SUBSEC_TIME");
    EXPECT_EQ(rawValue(FOCAL_LENGTH_35), "35 mm equiv.:");
}

TEST(TSKey, Coordinates) {
    EXPECT_EQ(coord(EXIF_DATE), (TagCoord{"DateTimeOriginal", SubDictionary::exif}));
    EXPECT_EQ(coord(CAM_MAKER), (TagCoord{"Make", SubDictionary::tiff}));
    EXPECT_FALSE(coord(VIDEOCAM_MAKER));
    EXPECT_EQ(coord(NightMode), (TagCoord{"SourceImageNumberOfCompositeImage", SubDictionary::exif}));
    EXPECT_EQ(coord(IPTC_CREATOR_CONTACT_INFO), (TagCoord{"CreatorContactInfo", SubDictionary::iptc}));
    EXPECT_EQ(coord(IPTC_CREATOR_CONTACT_INFO_CITY), (TagCoord{"CiAdrCity", SubDictionary::iptcCCI}));
    EXPECT_EQ(coord(IPTC_COUNTRYCODE), (TagCoord{"Country/PrimaryLocationCode", SubDictionary::iptc}));

    EXPECT_EQ(TSKeys::keys(SubDictionary::general), QList<TSKey>{COLOR});
    EXPECT_EQ(coord(COLOR), (TagCoord{"ProfileName", SubDictionary::general}));
    EXPECT_TRUE(TSKeys::keys(SubDictionary::gps).isEmpty());

    QList<TSKey> without;
    for (TSKey key : TSKeys::allCases())
        if (!coord(key)) without << key;
    EXPECT_EQ(without, (QList<TSKey>{FILE_SIZE, NAME, FILE_DATE, EXIF_LOCATION, FILE_LOCATION, VIDEOCAM_MAKER,
                                     RESOLUTION, WxH, ASPECT_RATIO, SUBTYPE, FILETYPE, DURATION, FPS, AUDIO_FORMAT,
                                     SEPARATOR, DETAILS_STACK, SIZES, BADGES, MAP}));
}

TEST(TSKey, FallbackCoordinatesOnlyForFourCases) {
    QList<TSKey> with;
    for (TSKey key : TSKeys::allCases())
        if (fallbackCoord(key)) with << key;
    EXPECT_EQ(with, (QList<TSKey>{EXIF_DATE, AUTHOR, COPYRIGHT, DESCRIPTION}));
    EXPECT_EQ(fallbackCoord(EXIF_DATE), (TagCoord{"DateTime", SubDictionary::tiff}));
    EXPECT_EQ(fallbackCoord(AUTHOR), (TagCoord{"By-line", SubDictionary::iptc}));
    EXPECT_EQ(fallbackCoord(COPYRIGHT), (TagCoord{"CopyrightNotice", SubDictionary::iptc}));
    EXPECT_EQ(fallbackCoord(DESCRIPTION), (TagCoord{"Caption/Abstract", SubDictionary::iptc}));
}

TEST(TSKey, PerDictionaryListsInVocabularyOrder) {
    EXPECT_EQ(TSKeys::exifKeys(),
              (QList<TSKey>{EXIF_DATE, EXIF_DIGITIZED_DATE, EXIF_SUBSEC_TIME, EXIF_SUBSEC_TIME_ORIGINAL,
                            EXIF_SUBSEC_TIME_DIGITIZED, EXIF_OFFSET_TIME, EXIF_OFFSET_TIME_ORIGINAL,
                            EXIF_OFFSET_TIME_DIGITIZED, LENS, LENS_MAKER, LENS_SERIAL, BODY_SERIAL, USER_COMMENT,
                            ISO_SPEED, FOCAL_LENGTH, FOCAL_LENGTH_35, EXPOSURE_BIAS, APERTURE, EXPOSURE_TIME, FLASH,
                            METERINGMODE, AWB, NightMode}));
    EXPECT_EQ(TSKeys::tiffKeys(), (QList<TSKey>{CAMERA, CAM_MAKER, AUTHOR, COPYRIGHT, DESCRIPTION, SOFTWARE}));
    EXPECT_EQ(TSKeys::iptcContactKeys(),
              (QList<TSKey>{IPTC_CREATOR_CONTACT_INFO_ADDRESS, IPTC_CREATOR_CONTACT_INFO_CITY,
                            IPTC_CREATOR_CONTACT_INFO_POSTAL_CODE, IPTC_CREATOR_CONTACT_INFO_REGION,
                            IPTC_CREATOR_CONTACT_INFO_COUNTRY, IPTC_CREATOR_CONTACT_INFO_EMAILS,
                            IPTC_CREATOR_CONTACT_INFO_PHONES, IPTC_CREATOR_CONTACT_INFO_URLS}));
    QList<TSKey> iptc;
    for (int i = int(IPTC_AUTHOR_TITLE); i <= int(IPTC_CREATOR_CONTACT_INFO); ++i) iptc << TSKey(i);
    for (int i = int(IPTC_CITY); i <= int(IPTC_DIGITAL_CREATION_TIME); ++i) iptc << TSKey(i);
    EXPECT_EQ(TSKeys::iptcKeys(), iptc);
}

TEST(TSKey, DetailRowsEndWithTheMapAndASeparator) {
    const QList<TSKey>& photo = TSKeys::photoRows();
    const QList<TSKey>& video = TSKeys::videoRows();
    EXPECT_EQ(photo.size(), 25);
    EXPECT_EQ(video.size(), 20);
    EXPECT_EQ(photo.mid(photo.size() - 2), (QList<TSKey>{MAP, SEPARATOR}));
    EXPECT_EQ(video.mid(video.size() - 2), (QList<TSKey>{MAP, SEPARATOR}));
    EXPECT_EQ(photo.count(SEPARATOR), 8);
    EXPECT_EQ(video.count(SEPARATOR), 7);
    EXPECT_TRUE(photo.contains(DETAILS_STACK) && !video.contains(DETAILS_STACK));
    EXPECT_TRUE(video.contains(VIDEOCAM_MAKER) && !video.contains(CAM_MAKER));
}

}  // namespace
