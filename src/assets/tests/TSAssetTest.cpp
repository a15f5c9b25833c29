// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileTypes.h"
#include "TSAsset.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

namespace {

class Asset : public ::testing::Test {
protected:
    QTemporaryDir dir_;
};

}  // namespace

TEST(FileTypes, NamesAndSizes) {
    EXPECT_EQ(filetypes::typeIdentifier("/a/b/IMG_1.JPG"), "public.jpeg");
    EXPECT_EQ(filetypes::typeIdentifier("x.dng"), "com.adobe.raw-image");
    EXPECT_FALSE(filetypes::typeIdentifier("x.unknownext"));
    EXPECT_FALSE(filetypes::mimeType("x.unknownext"));
    EXPECT_TRUE(filetypes::isVideo(filetypes::mimeType("clip.MOV")));
    EXPECT_TRUE(filetypes::isVideo(filetypes::mimeType("clip.mp4")));
    EXPECT_FALSE(filetypes::isVideo(filetypes::mimeType("photo.heic")));
    EXPECT_FALSE(filetypes::isVideo(std::nullopt));
    EXPECT_EQ(filetypes::fileSizeText(0), "Zero KB");
    EXPECT_EQ(filetypes::fileSizeText(512), "512 bytes");
    EXPECT_EQ(filetypes::fileSizeText(7958), "8 KB");
    EXPECT_EQ(filetypes::fileSizeText(999'600), "1 MB");
    EXPECT_EQ(filetypes::fileSizeText(2'500'000), "2.5 MB");
    EXPECT_EQ(filetypes::fileSizeText(24'000'000), "24 MB");
    EXPECT_EQ(filetypes::fileSizeText(1'250'000'000), "1.25 GB");
}

TEST_F(Asset, CameraPhotoFillsItsRows) {
    const QString path = testsupport::corpusDir() + "/jpeg/Canon_40D.jpg";
    TSAsset asset(path);
    const TSDataStore& s = asset.ddStore();
    EXPECT_FALSE(asset.readError());
    EXPECT_EQ(s.value(TSKey::NAME).first, "Canon_40D.jpg");
    EXPECT_EQ(s.value(TSKey::FILETYPE).first, "JPEG");
    EXPECT_EQ(s.value(TSKey::FILE_SIZE).first, "8 KB");
    EXPECT_EQ(s.value(TSKey::CAMERA).first, "Canon EOS 40D");
    EXPECT_EQ(s.value(TSKey::WxH).first, "100 x 68 (0.0MP)");
    EXPECT_EQ(s.value(TSKey::APERTURE).first, "ƒ/7.1");
    EXPECT_EQ(s.value(TSKey::EXPOSURE_TIME).first, "1/160s");
    EXPECT_EQ(s.dateSource, DataSource::fromExif);
}

TEST_F(Asset, UnreadableFileKeepsOnlyItsNameRows) {
    TSAsset missing(dir_.filePath("gone.jpg"));
    ASSERT_TRUE(missing.readError());
    const TSDataStore& s = missing.ddStore();
    EXPECT_EQ(s.value(TSKey::NAME).first, "gone.jpg");
    EXPECT_EQ(s.value(TSKey::FILE_SIZE).first, "0");
    EXPECT_EQ(s.value(TSKey::CAMERA).first, "--");
    EXPECT_FALSE(missing.metaData().metaDataDic());
}
