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
    EXPECT_EQ(tsKeyFromRawValue("City:"), IPTC_CREATOR_CONTACT_INFO_CITY);
    EXPECT_EQ(tsKeyFromRawValue("City"), IPTC_CITY);
    EXPECT_EQ(tsKeyFromRawValue("Country:"), IPTC_CREATOR_CONTACT_INFO_COUNTRY);
    EXPECT_EQ(tsKeyFromRawValue("Country"), IPTC_COUNTRY);
    EXPECT_EQ(tsKeyFromRawValue("SourceImageNumberOfCompositeImage"), NightMode);
}

TEST(TSKey, Coordinates) {
    EXPECT_EQ(coord(EXIF_DATE), (TagCoord{"DateTimeOriginal", SubDictionary::exif}));
    EXPECT_EQ(coord(CAM_MAKER), (TagCoord{"Make", SubDictionary::tiff}));
    EXPECT_FALSE(coord(VIDEOCAM_MAKER));
    EXPECT_EQ(coord(IPTC_CREATOR_CONTACT_INFO), (TagCoord{"CreatorContactInfo", SubDictionary::iptc}));
    EXPECT_EQ(coord(IPTC_CREATOR_CONTACT_INFO_CITY), (TagCoord{"CiAdrCity", SubDictionary::iptcCCI}));
    EXPECT_EQ(TSKeys::keys(SubDictionary::general), QList<TSKey>{COLOR});
    EXPECT_TRUE(TSKeys::keys(SubDictionary::gps).isEmpty());

    QList<TSKey> without, withFallback;
    for (TSKey key : TSKeys::allCases()) {
        if (!coord(key)) without << key;
        if (fallbackCoord(key)) withFallback << key;
    }
    EXPECT_EQ(without, (QList<TSKey>{FILE_SIZE, NAME, FILE_DATE, EXIF_LOCATION, FILE_LOCATION, VIDEOCAM_MAKER,
                                     RESOLUTION, WxH, ASPECT_RATIO, SUBTYPE, FILETYPE, DURATION, FPS, AUDIO_FORMAT,
                                     SEPARATOR, DETAILS_STACK, SIZES, BADGES, MAP}));
    EXPECT_EQ(withFallback, (QList<TSKey>{EXIF_DATE, AUTHOR, COPYRIGHT, DESCRIPTION}));
    EXPECT_EQ(fallbackCoord(EXIF_DATE), (TagCoord{"DateTime", SubDictionary::tiff}));
    EXPECT_EQ(fallbackCoord(AUTHOR), (TagCoord{"By-line", SubDictionary::iptc}));
}

QList<TSKey> range(TSKey first, TSKey last) {
    QList<TSKey> keys;
    for (int i = int(first); i <= int(last); ++i) keys << TSKey(i);
    return keys;
}

TEST(TSKey, PerDictionaryListsInVocabularyOrder) {
    const QList<TSKey> exif = QList{EXIF_DATE} + range(EXIF_DIGITIZED_DATE, EXIF_OFFSET_TIME_DIGITIZED) +
                              QList{LENS, LENS_MAKER} + range(LENS_SERIAL, BODY_SERIAL) + QList{USER_COMMENT} +
                              range(ISO_SPEED, EXPOSURE_TIME) + range(FLASH, AWB) + QList{NightMode};
    EXPECT_EQ(TSKeys::exifKeys(), exif);
    EXPECT_EQ(TSKeys::tiffKeys(), (QList{CAMERA, CAM_MAKER, AUTHOR, COPYRIGHT, DESCRIPTION, SOFTWARE}));
    EXPECT_EQ(TSKeys::iptcContactKeys(), range(IPTC_CREATOR_CONTACT_INFO_ADDRESS, IPTC_CREATOR_CONTACT_INFO_URLS));
    EXPECT_EQ(TSKeys::iptcKeys(), range(IPTC_AUTHOR_TITLE, IPTC_CREATOR_CONTACT_INFO) +
                                      range(IPTC_CITY, IPTC_DIGITAL_CREATION_TIME));
}

// An item without a location drops exactly the last two rows.
TEST(TSKey, DetailRowsEndWithTheMapAndASeparator) {
    for (const QList<TSKey>& rows : {TSKeys::photoRows(), TSKeys::videoRows()})
        EXPECT_EQ(rows.mid(rows.size() - 2), (QList<TSKey>{MAP, SEPARATOR}));
    EXPECT_EQ(TSKeys::photoRows().size(), 25);
    EXPECT_EQ(TSKeys::videoRows().size(), 20);
}

}  // namespace
