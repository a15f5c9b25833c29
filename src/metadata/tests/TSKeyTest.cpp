// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSKey.h"

#include <gtest/gtest.h>

void PrintTo(const TagCoord& c, std::ostream* os) { *os << c.key.toStdString() << " in " << int(c.dict); }

namespace {

using enum TSKey;

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

    EXPECT_EQ(fallbackCoord(EXIF_DATE), (TagCoord{"DateTime", SubDictionary::tiff}));
    EXPECT_EQ(fallbackCoord(AUTHOR), (TagCoord{"By-line", SubDictionary::iptc}));
}

}  // namespace
