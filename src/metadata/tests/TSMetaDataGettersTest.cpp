// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaDataGetters.h"

#include "PropertyKeys.h"
#include "Settings.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QJsonObject>

namespace {

class Getters : public testsupport::IsolatedTest {
protected:
    static TSMetaData gps(const QVariantMap& gps) {
        return TSMetaData::fromProperties(QVariantMap{{kCGImagePropertyGPSDictionary, gps}});
    }
};

// Every corpus photo that records a camera direction, checked against exiftool's reading.
TEST_F(Getters, DirectionOfCorpusPhotosAgreesWithExiftool) {
    const QStringList files{"portrait/image-with-matte.jpg", "jpeg/iphone_hdr_YES.jpg", "heif/IMG_5195.HEIC",
                            "tiff/IMG_1361.dng"};
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        const QString path = testsupport::corpusDir() + '/' + name;
        const TSMetaData record(testsupport::readFile(path));
        const QJsonObject numbers = testsupport::exiftoolJson(path, {"-n", "-GPS:all"}).toObject();
        const QJsonObject words = testsupport::exiftoolJson(path, {"-GPS:all"}).toObject();
        ASSERT_TRUE(numbers.contains("GPSImgDirection"));

        const auto angle = facingGraAngle(record);
        ASSERT_TRUE(angle);
        EXPECT_NEAR(*angle, numbers["GPSImgDirection"].toDouble(), 1e-6);
        // exiftool says "True North" / "Magnetic North" as we do.
        EXPECT_EQ(facingRef(record), words["GPSImgDirectionRef"].toString());
        EXPECT_EQ(gpsMeaning(record, kCGImagePropertyGPSLatitudeRef),
                  numbers["GPSLatitudeRef"].toString() == "N" ? "North latitude" : "South latitude");
    }
}

TEST_F(Getters, BearingStandsInForAMissingDirection) {
    const TSMetaData bearing = gps({{kCGImagePropertyGPSDestBearing, 271.5}, {kCGImagePropertyGPSDestBearingRef, "M"}});
    EXPECT_EQ(facingData(bearing), QVariant(271.5));
    EXPECT_EQ(facingGraAngle(bearing), 271.5);
    EXPECT_EQ(facingRef(bearing), "Magnetic North");

    // The image direction wins over the bearing, each for its own reference.
    const TSMetaData both = gps({{kCGImagePropertyGPSImgDirection, 90}, {kCGImagePropertyGPSDestBearing, 10},
                                 {kCGImagePropertyGPSImgDirectionRef, "T"}, {kCGImagePropertyGPSDestBearingRef, "M"}});
    EXPECT_EQ(facingGraAngle(both), 90);
    EXPECT_EQ(facingRef(both), "True North");
}

TEST_F(Getters, NothingWithoutANumberOrWithoutGPS) {
    for (const TSMetaData& record :
         {TSMetaData(), TSMetaData::fromProperties(QVariantMap{{kCGImagePropertyExifDictionary, QVariantMap{}}}),
          gps({{kCGImagePropertyGPSLatitude, 45.0}})}) {
        EXPECT_FALSE(facingData(record));
        EXPECT_FALSE(facingGraAngle(record));
        EXPECT_FALSE(facingRef(record));
        EXPECT_FALSE(gpsMeaning(record, kCGImagePropertyGPSAltitude));
    }
    // A direction that is no number as a whole has no angle, in either display mode.
    for (bool human : {true, false}) {
        Settings::setFlag(SettingsFlag::human, human);
        EXPECT_FALSE(facingGraAngle(gps({{kCGImagePropertyGPSImgDirection, "12 deg"}})));
        EXPECT_FALSE(facingGraAngle(gps({{kCGImagePropertyGPSImgDirection, QVariantList{1, 2}}})));
        EXPECT_EQ(facingGraAngle(gps({{kCGImagePropertyGPSImgDirection, "12.5"}})), 12.5);
    }
}

}  // namespace
