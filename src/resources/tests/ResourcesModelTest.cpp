// SPDX-License-Identifier: GPL-3.0-or-later
// The resource model over real files: order, progress, thumbnails and temporary files.
#include "ResourcesModel.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QSignalSpy>
#include <gtest/gtest.h>

using testsupport::corpusDir;
using testsupport::readFile;

namespace {

std::shared_ptr<const RawResource> fileResource(const QString& path, QByteArray data) {
    return std::make_shared<TSFileRawResource>(path, std::move(data));
}
std::shared_ptr<const RawResource> corpusResource(const QString& name) {
    const QString path = corpusDir() + "/" + name;
    const QByteArray data = readFile(path);
    EXPECT_FALSE(data.isEmpty()) << name.toStdString();
    return fileResource(path, data);
}

void loadAndWait(ResourcesModel& model) {
    QSignalSpy finished(&model, &ResourcesModel::finished);
    model.load();
    ASSERT_TRUE(finished.wait(120000));
}

using ResourcesModelTest = testsupport::IsolatedTest;

class UnknownResource : public RawResource {
    QString label() const override { return "Unknown"; }
    QString fileName() const override { return "unknown"; }
    QString id() const override { return "unknown"; }
};

}  // namespace

TEST_F(ResourcesModelTest, LoadsEachResourceInOrderWithItsAuxiliaryImages) {
    ResourcesModel model({corpusResource("portrait/image-with-matte.jpg"), fileResource("/nowhere/notes.txt", "plain text"),
                          fileResource("/nowhere/empty.jpg", {}), corpusResource("jpeg/Canon_40D.jpg")});
    EXPECT_EQ(model.imgNumber(), 40);
    EXPECT_EQ(model.orderedKeys(), (QStringList{"0", "1", "2", "3"}));
    EXPECT_EQ(model.progress(), 0);
    EXPECT_TRUE(model.processedKeys().isEmpty());
    loadAndWait(model);

    EXPECT_EQ(model.progress(), 40);
    EXPECT_EQ(model.processedKeys(), (QStringList{"0", "1", "2", "3"}));
    EXPECT_EQ(model.resourcesSub().value("0"),
              (QList{AuxiliaryImageType::disparity, AuxiliaryImageType::portraitEffectsMatte}));
    EXPECT_FALSE(model.resourcesSub().contains("1"));
    EXPECT_FALSE(model.resourcesSub().contains("3"));

    const LoadedResource portrait = model.resourcesDic().value("0");
    EXPECT_EQ(portrait.resourceImg.kind, ResourceImage::Kind::image);
    EXPECT_EQ(portrait.resourceImg.image.size(), QSize(39, 52));  // 3024 x 4032 fitted
    EXPECT_EQ(portrait.formattedSize, "2.2 MB");  // 2,218,088 bytes
    EXPECT_EQ(portrait.url, corpusDir() + "/portrait/image-with-matte.jpg");
    ASSERT_EQ(portrait.auxiliaryUrl.size(), 2u);
    const QString disparity = portrait.auxiliaryUrl.at(AuxiliaryImageType::disparity);
    const QString matte = portrait.auxiliaryUrl.at(AuxiliaryImageType::portraitEffectsMatte);
    EXPECT_EQ(QFileInfo(disparity).fileName(), "image-with-matte_ImageDisparity.jpg");
    EXPECT_EQ(QFileInfo(matte).fileName(), "image-with-matte_PortraitEffectsMatte.jpg");
    EXPECT_EQ(QFileInfo(disparity).absolutePath(), resourcesTemporaryFolder());
    EXPECT_EQ(QImageReader(disparity).format(), "jpeg");
    EXPECT_EQ(QImageReader(matte).format(), "bmp");  // the name keeps the resource's extension
    EXPECT_EQ(portrait.auxiliaryThumbnails.at(AuxiliaryImageType::disparity).size(), QSize(39, 52));

    const LoadedResource text = model.resourcesDic().value("1");
    EXPECT_EQ(text.resourceImg.kind, ResourceImage::Kind::genericDoc);
    EXPECT_EQ(text.formattedSize, "10 bytes");
    const LoadedResource empty = model.resourcesDic().value("2");
    EXPECT_EQ(empty.resourceImg.kind, ResourceImage::Kind::genericDoc);
    EXPECT_EQ(empty.formattedSize, "...");
    EXPECT_TRUE(empty.auxiliaryUrl.empty());

    // A second load does nothing.
    QSignalSpy changed(&model, &ResourcesModel::changed);
    model.load();
    QCoreApplication::processEvents();
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(model.progress(), 40);
}

TEST_F(ResourcesModelTest, HeicGainMapAndNothingToLoad) {
    ResourcesModel model({corpusResource("heif/iphone_13_pro_max.HEIC")});
    loadAndWait(model);
    EXPECT_EQ(model.resourcesSub().value("0"), QList{AuxiliaryImageType::HDRGainMap});
    EXPECT_EQ(QFileInfo(model.resourcesDic().value("0").auxiliaryUrl.at(AuxiliaryImageType::HDRGainMap)).fileName(),
              "iphone_13_pro_max_HDRGainMap.HEIC");

    ResourcesModel none({});
    EXPECT_EQ(none.imgNumber(), 0);
    loadAndWait(none);
    EXPECT_EQ(none.progress(), 0);
}

TEST_F(ResourcesModelTest, AnUnknownKindOfResourceStopsTheLoopShortOfTheEnd) {
    ResourcesModel model({corpusResource("jpeg/Canon_40D.jpg"), std::make_shared<UnknownResource>(),
                          corpusResource("jpeg/Nikon_D70.jpg")});
    loadAndWait(model);
    EXPECT_EQ(model.processedKeys(), QStringList{"0"});
    EXPECT_EQ(model.progress(), 10);
    EXPECT_EQ(model.imgNumber(), 30);
}

TEST_F(ResourcesModelTest, TemporaryNamesCarryTheLabelBeforeTheExtension) {
    EXPECT_EQ(auxiliaryFileName("IMG_0001.HEIC", AuxiliaryImageType::depth), "IMG_0001_DepthMap.HEIC");
    EXPECT_EQ(auxiliaryFileName("IMG_0001", AuxiliaryImageType::HDRGainMap), "IMG_0001_HDRGainMap.");
    EXPECT_EQ(auxiliaryFileName("a.b.jpg", AuxiliaryImageType::semanticSegmentationSkyMatte), "a.b_SkyMatte.jpg");
    // Two resources sharing a name share the file: the later write wins.
    const auto first = dataToTempFile("first", "shared.txt");
    const auto second = dataToTempFile("second", "shared.txt");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(*first, *second);
    EXPECT_EQ(readFile(*second), "second");
}
