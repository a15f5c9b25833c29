// SPDX-License-Identifier: GPL-3.0-or-later
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSDataStore.h"

#include <gtest/gtest.h>


namespace {

class DataStore : public ::testing::Test {
protected:
    static TSDataStore filled(const QVariantMap& props) {
        TSDataStore s;
        s.fill(TSMetaData::fromProperties(props));
        return s;
    }
};

QVariantMap gps(const QVariantMap& g) { return {{kCGImagePropertyGPSDictionary, g}}; }

}  // namespace

TEST_F(DataStore, RowsAreDimDashesUntilCompleted) {
    TSDataStore s;
    s.set(TSKey::CAMERA, "X");
    EXPECT_EQ(s.value(TSKey::CAMERA), (std::pair<QString, double>{"--", 0.5}));
    s.fill(TSMetaData());
    EXPECT_EQ(s.value(TSKey::CAMERA).first, "X");
    EXPECT_EQ(s.value(TSKey::LENS), (std::pair<QString, double>{"--", 1.0}));
}

TEST_F(DataStore, SetNeverOverwritesATriedRow) {
    TSDataStore s;
    s.set(TSKey::LENS, std::nullopt);
    s.set(TSKey::LENS, "later");
    EXPECT_EQ(s.datas.value(TSKey::LENS), std::nullopt);
    EXPECT_TRUE(s.datas.contains(TSKey::LENS));
}

TEST_F(DataStore, SizesShowTheDisplayedOrientation) {
    auto s = filled({{kCGImagePropertyPixelWidth, 6000}, {kCGImagePropertyPixelHeight, 4000}, {kCGImagePropertyOrientation, 6}});
    EXPECT_EQ(s.value(TSKey::WxH).first, "4000 x 6000 (24.0MP)");
    EXPECT_EQ(s.value(TSKey::ASPECT_RATIO).first, "3 : 2");
    TSDataStore z;
    z.setSizes(0, 7);
    EXPECT_EQ(z.datas.value(TSKey::ASPECT_RATIO), "1 : 0");
    TSDataStore zero;
    zero.setSizes(0, 0);
    EXPECT_EQ(zero.datas.value(TSKey::ASPECT_RATIO), "--");
}

TEST_F(DataStore, ResolutionUnit) {
    auto tiff = [](QVariantMap t) { return QVariantMap{{kCGImagePropertyTIFFDictionary, t}}; };
    EXPECT_EQ(filled(tiff({{kCGImagePropertyTIFFXResolution, 72}, {kCGImagePropertyTIFFYResolution, 72},
                           {kCGImagePropertyTIFFResolutionUnit, 3}}))
                  .value(TSKey::RESOLUTION).first,
              "72 x 72");
    EXPECT_EQ(filled(tiff({{kCGImagePropertyTIFFXResolution, 72.0}, {kCGImagePropertyTIFFYResolution, 300.5}}))
                  .value(TSKey::RESOLUTION).first,
              "72 x 300.5 dpi");
    EXPECT_EQ(filled(tiff({{kCGImagePropertyTIFFXResolution, 72}})).value(TSKey::RESOLUTION).first, "--");
}

TEST_F(DataStore, LocationReferencesAndMissingHalves) {
    auto s = filled(gps({{kCGImagePropertyGPSLatitude, 33.5}, {kCGImagePropertyGPSLatitudeRef, "S"},
                         {kCGImagePropertyGPSLongitudeRef, "W"}}));
    ASSERT_TRUE(s.location);
    EXPECT_EQ(s.location->coordinate, (GeoCoordinate{-33.5, -0.0}));
    EXPECT_EQ(s.locationSource, DataSource::fromExif);
    EXPECT_EQ(s.value(TSKey::EXIF_LOCATION).first, "33° 30' 0\" S\n0° 0' 0\" W");
    // Anything but "N" negates, lower case included; no reference negates nothing.
    EXPECT_EQ(filled(gps({{kCGImagePropertyGPSLatitude, 10.0}, {kCGImagePropertyGPSLatitudeRef, "n"}}))
                  .location->coordinate.latitude,
              -10.0);
    EXPECT_EQ(filled(gps({{kCGImagePropertyGPSLongitude, 10.0}})).location->coordinate, (GeoCoordinate{0, 10}));
    EXPECT_FALSE(filled(gps({{kCGImagePropertyGPSAltitude, 3.0}})).location);
}

TEST_F(DataStore, DatesAndTheirSources) {
    auto s = filled({{kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifDateTimeOriginal, "not a date"}}},
                     {kCGImagePropertyTIFFDictionary, QVariantMap{{kCGImagePropertyTIFFDateTime, "2021:04:11 15:47:53"}}}});
    EXPECT_EQ(s.dateSource, DataSource::fromExif);
    EXPECT_TRUE(s.dates.dict.contains("Tiff"));
    EXPECT_EQ(s.date, std::optional(QDateTime(QDate(2021, 4, 11), QTime(15, 47, 53))));
    EXPECT_EQ(s.value(TSKey::EXIF_DATE).second, 1.0);

    // No EXIF date: the file's date stands in, dimmed.
    TSDataStore f;
    f.setAssetDate(QDateTime(QDate(2020, 1, 1), QTime(10, 0)));
    f.fill(TSMetaData());
    EXPECT_EQ(f.value(TSKey::EXIF_DATE).second, 0.5);
    EXPECT_EQ(f.value(TSKey::EXIF_DATE).first, f.datas.value(TSKey::FILE_DATE));
}

TEST_F(DataStore, DisagreeingSourcesDimTheRow) {
    const QDateTime exif(QDate(2021, 4, 11), QTime(15, 47, 53));
    auto withAssetDate = [&](const QDateTime& asset) {
        TSDataStore s;
        s.setAssetDate(asset);
        s.fill(TSMetaData::fromProperties(QVariantMap{
            {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifDateTimeOriginal, "2021:04:11 15:47:53"}}}}));
        return s.value(TSKey::EXIF_DATE).second;
    };
    EXPECT_EQ(withAssetDate(exif.addMSecs(999)), 1.0);
    EXPECT_EQ(withAssetDate(exif.addSecs(2)), 0.5);

    auto withAssetPlace = [&](double metresNorth) {
        TSDataStore s;
        s.setAssetLocation(GeoLocation(45.0 + metresNorth / 111195.0, 9.0));
        s.fill(TSMetaData::fromProperties(gps({{kCGImagePropertyGPSLatitude, 45.0}, {kCGImagePropertyGPSLatitudeRef, "N"},
                                               {kCGImagePropertyGPSLongitude, 9.0}, {kCGImagePropertyGPSLongitudeRef, "E"}})));
        return s.value(TSKey::EXIF_LOCATION).second;
    };
    EXPECT_EQ(withAssetPlace(0.5), 1.0);
    EXPECT_EQ(withAssetPlace(1.5), 0.5);
}

TEST_F(DataStore, ExposureRowsCarryTheirUnits) {
    auto s = filled({{kCGImagePropertyExifDictionary,
                      QVariantMap{{kCGImagePropertyExifExposureTime, 0.004}, {kCGImagePropertyExifFNumber, 1.7999},
                                  {kCGImagePropertyExifFocalLength, 4.25}, {kCGImagePropertyExifExposureBiasValue, 0},
                                  {kCGImagePropertyExifSourceImageNumberOfCompositeImage, QVariantList{0, 3}},
                                  {kCGImagePropertyExifFlash, 16}, {kCGImagePropertyExifWhiteBalance, 0}}}});
    EXPECT_EQ(s.value(TSKey::EXPOSURE_TIME).first, "1/250s");
    EXPECT_EQ(s.value(TSKey::APERTURE).first, "ƒ/1.8");
    EXPECT_EQ(s.value(TSKey::FOCAL_LENGTH).first, "4.25 mm");
    EXPECT_EQ(s.value(TSKey::EXPOSURE_BIAS).first, "0 EV");
    EXPECT_EQ(s.datas.value(TSKey::NightMode), "N");
    EXPECT_EQ(s.isFlashOn(), false);
    EXPECT_EQ(s.isAutoWhiteBalance(), true);
    EXPECT_EQ(s.tagLine(TSKey::FLASH), "Flash: Flash did not fire, Compulsory flash suppression\n");
    EXPECT_EQ(s.tagLine(TSKey::METERINGMODE), "Metering: --\n");
}

TEST_F(DataStore, TypeTextAndScreenshots) {
    EXPECT_EQ(typeText("public.jpeg"), "JPEG");
    EXPECT_EQ(typeText("com.adobe.raw-image"), "RAW");
    EXPECT_EQ(typeText("public.heic"), "HEIC");
    EXPECT_EQ(typeText("public.camera-raw-image"), "CAMERA-RAW");
    EXPECT_EQ(typeText("jpeg"), "jpeg");
    EXPECT_EQ(typeText("H.264"), "H.264");
    TSDataStore s;
    s.set(TSKey::SUBTYPE, QString::number(MediaSubtype::photoScreenshot));
    s.fill(TSMetaData());
    EXPECT_EQ(s.value(TSKey::CAMERA).first, "Screenshot");
}

TEST_F(DataStore, SummaryHasNoDanglingWords) {
    TSDataStore bare;
    bare.fill(TSMetaData());
    EXPECT_EQ(bare.summaryText(), "This photo was taken");

    auto s = filled({{kCGImagePropertyTIFFDictionary, QVariantMap{{kCGImagePropertyTIFFImageDescription, "Harbour"},
                                                                  {kCGImagePropertyTIFFArtist, "Ana"}}},
                     {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifDateTimeOriginal, "2022:11:02 10:05:44"}}}});
    // The tests run in the C locale: its short date and its time.
    EXPECT_EQ(s.summaryText().toStdString(), "Harbour\nTaken on 2 Nov 2022 at 10:05:44\nby Ana");
}

TEST_F(DataStore, DetailsListEveryKeyEvenWithoutValue) {
    TSDataStore video;
    video.mediaType = MediaType::video;
    video.completed = true;
    const QString v = video.detailsText();
    EXPECT_TRUE(v.contains("Is video: true\n"));
    EXPECT_FALSE(v.contains("Flash:"));
    EXPECT_TRUE(v.contains("Duration: --\n"));

    TSDataStore photo;
    photo.fill(TSMetaData());
    const QString p = photo.detailsText();
    EXPECT_TRUE(p.contains("Lens: --\n"));
    EXPECT_TRUE(p.contains("HDR: false\nLive: false\nPortrait: false\n"));
    EXPECT_TRUE(p.endsWith(QStringLiteral("\nData collected with %1 %2\n").arg(TESSORIN_APP_NAME, TESSORIN_VERSION)));
}
