// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaData.h"

#include "Log.h"
#include "RecordingLogProvider.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

using PropertyDict = TSMetaData::PropertyDict;

PropertyDict jpegLikeProperties() {
    return {
        {"PixelWidth", 640},
        {"PixelHeight", 480},
        {"Orientation", 1},
        {"ProfileName", "sRGB IEC61966-2.1"},
        {"{Exif}", PropertyDict{{"DateTimeOriginal", "2021:05:01 10:00:00"}}},
        {"{TIFF}", PropertyDict{{"Orientation", 6}, {"Make", "Canon"}}},
        {"{GPS}", PropertyDict{{"Latitude", 51.1788}, {"LatitudeRef", "N"}}},
        {"{IPTC}", PropertyDict{{"City", "Amesbury"}}},
        {"{JFIF}", PropertyDict{{"DensityUnit", 1}}},
    };
}

TEST(TSMetaData, SplitsNamedDictionariesGroupsAndScalars) {
    const TSMetaData record = TSMetaData::fromProperties(jpegLikeProperties());
    ASSERT_TRUE(record.metaDataDic());
    EXPECT_EQ(record.exifDic()->value("DateTimeOriginal"), "2021:05:01 10:00:00");
    EXPECT_EQ(record.tiffDic()->value("Make"), "Canon");
    EXPECT_EQ(record.gpsDic()->value("LatitudeRef"), "N");
    EXPECT_EQ(record.iptcDic()->value("City"), "Amesbury");

    const PropertyDict general{{"PixelWidth", 640}, {"PixelHeight", 480}, {"Orientation", 1},
                               {"ProfileName", "sRGB IEC61966-2.1"}};
    EXPECT_EQ(record.generalData(), general);
    // {GPS} and {IPTC} stay in the grouping although they have fields of their own.
    EXPECT_EQ(record.otherGeneralGroupedData().keys(), (QStringList{"General", "{GPS}", "{IPTC}", "{JFIF}"}));
    EXPECT_EQ(record.otherGeneralGroupedData().value("General").toMap(), general);
    EXPECT_EQ(record.otherGroupsWithoutGPS()->keys(), (QStringList{"General", "{IPTC}", "{JFIF}"}));
}

TEST(TSMetaData, GeneralGroupOnlyWithScalars) {
    const TSMetaData onlyGroups = TSMetaData::fromProperties(PropertyDict{
        {"{Exif}", PropertyDict{}}, {"{TIFF}", PropertyDict{}}, {"{PNG}", PropertyDict{{"Gamma", 0.45}}}});
    EXPECT_TRUE(onlyGroups.generalData().isEmpty());
    EXPECT_EQ(onlyGroups.otherGeneralGroupedData().keys(), QStringList{"{PNG}"});

    // A known dictionary key with a value of another type is just a scalar.
    const TSMetaData wrongType = TSMetaData::fromProperties(PropertyDict{{"{Exif}", "not a dictionary"}});
    EXPECT_FALSE(wrongType.exifDic());
    EXPECT_EQ(wrongType.otherGeneralGroupedData().keys(), QStringList{"General"});
}

TEST(TSMetaData, EmptyRecords) {
    for (const TSMetaData& record : {TSMetaData(), TSMetaData::fromProperties(std::nullopt),
                                     TSMetaData::fromProperties(PropertyDict{})}) {
        EXPECT_FALSE(record.exifDic() || record.tiffDic() || record.gpsDic() || record.iptcDic());
        EXPECT_TRUE(record.generalData().isEmpty());
        EXPECT_TRUE(record.otherGeneralGroupedData().isEmpty());
        EXPECT_FALSE(record.otherGroupsWithoutGPS());
        EXPECT_FALSE(record.orientation());
    }
}

std::optional<qint64> orientationOf(const PropertyDict& properties) {
    return TSMetaData::fromProperties(properties).orientation();
}

TEST(TSMetaData, OrientationPrefersTiffThenTopLevel) {
    EXPECT_EQ(TSMetaData::fromProperties(jpegLikeProperties()).orientation(), 6);
    EXPECT_EQ(orientationOf({{"Orientation", 3}}), 3);
    // The first value present decides even when it is no integer.
    EXPECT_FALSE(orientationOf({{"{TIFF}", PropertyDict{{"Orientation", "six"}}}, {"Orientation", 1}}));
}

TEST(TSMetaData, OrientationIntegerConversion) {
    EXPECT_EQ(orientationOf({{"Orientation", qint64(12)}}), 12);  // no range check
    EXPECT_EQ(orientationOf({{"Orientation", 6.0}}), 6);
    EXPECT_EQ(orientationOf({{"Orientation", 6.9}}), 6);
    EXPECT_FALSE(orientationOf({{"Orientation", std::nan("")}}));
    EXPECT_FALSE(orientationOf({{"Orientation", 1e300}}));
    EXPECT_EQ(orientationOf({{"Orientation", "5"}}), 5);
    EXPECT_EQ(orientationOf({{"Orientation", "-2"}}), -2);
    for (const char* text : {"", "+", "6.0", " 6", "6 ", "0x6", "99999999999999999999"})
        EXPECT_FALSE(orientationOf({{"Orientation", text}})) << text;
    EXPECT_FALSE(orientationOf({{"Orientation", QVariantList{6}}}));
}

class TSMetaDataFromBytes : public ::testing::Test {
protected:
    void SetUp() override { Log::addProvider(recorder_); }
    void TearDown() override {
        Log::removeProvider(recorder_);
        Log::flush();
    }
    QList<RecordingLogProvider::Entry> logged() {
        Log::flush();
        return recorder_->entries();
    }
    std::shared_ptr<RecordingLogProvider> recorder_ = std::make_shared<RecordingLogProvider>();
};

TEST_F(TSMetaDataFromBytes, UnreadableBytesAreLoggedAndGiveAnEmptyRecord) {
    const TSMetaData record{QByteArray()};
    EXPECT_FALSE(record.metaDataDic());
    EXPECT_TRUE(record.generalData().isEmpty());
    EXPECT_TRUE(record.otherGeneralGroupedData().isEmpty());

    const auto lines = logged();
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0].level, LogLevel::error);
    EXPECT_EQ(lines[0].function, "metadata(from:)");
    EXPECT_TRUE(lines[0].text.startsWith(SendableMessage::arrow() + "Can't read metadata")) << lines[0].text.toStdString();
}

TEST_F(TSMetaDataFromBytes, AbsentBytesAreNotAnError) {
    EXPECT_FALSE(TSMetaData(std::nullopt).metaDataDic());
    EXPECT_TRUE(logged().isEmpty());
}

TEST_F(TSMetaDataFromBytes, CameraJpegWithGps) {
    const TSMetaData record{testsupport::readFile(testsupport::corpusDir() + "/jpeg/gps/DSCN0010.jpg")};
    ASSERT_TRUE(record.metaDataDic());
    EXPECT_TRUE(record.exifDic() && record.tiffDic() && record.gpsDic());
    const QStringList groups = record.otherGeneralGroupedData().keys();
    EXPECT_TRUE(groups.contains("{GPS}") && groups.contains("General"));
    EXPECT_FALSE(groups.contains("{Exif}") || groups.contains("{TIFF}"));
    EXPECT_EQ(record.orientation(), 1);
    EXPECT_TRUE(logged().isEmpty());
}

}  // namespace
