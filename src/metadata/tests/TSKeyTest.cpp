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

// An item without a location drops exactly the last two rows.
TEST(TSKey, DetailRowsEndWithTheMapAndASeparator) {
    for (const QList<TSKey>& rows : {TSKeys::photoRows(), TSKeys::videoRows()})
        EXPECT_EQ(rows.mid(rows.size() - 2), (QList<TSKey>{MAP, SEPARATOR}));
    EXPECT_EQ(TSKeys::photoRows().size(), 25);
    EXPECT_EQ(TSKeys::videoRows().size(), 20);
}

}  // namespace
