// SPDX-License-Identifier: GPL-3.0-or-later
// The resource list driven through its view model over files of a files album: when the
// toolbar offers it, its sections and rows as loading goes on, the full-screen view and its
// saved copy.
#include "ResourceActor.h"
#include "ResourcesViewModel.h"
#include "TSFilesAlbum.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <QGuiApplication>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <atomic>

namespace {

using testsupport::corpusDir;

class ResourcesScreenTest : public testsupport::IsolatedTest {
protected:
    void SetUp() override { TSEnvironment::setCurrentAlbum(nullptr); }
    void TearDown() override { TSEnvironment::setCurrentAlbum(nullptr); }

    // Shows the item of that corpus file in a files album and waits for the detail check.
    void show(ResourcesViewModel& vm, const QString& name) {
        album_ = std::make_shared<TSFilesAlbum>();
        TSEnvironment::setCurrentAlbum(album_);
        album_->loadBookmarks({corpusDir() + "/" + name});
        album_->setActualIndex(0);
        ASSERT_TRUE(QTest::qWaitFor([&] { return album_->currentAsset && album_->currentAsset->ddStore().completed; }, 60000));
        // The check runs on the resource worker behind the metadata: a job queued after it has
        // run once it has, and its answer comes on the next turns of the loop.
        QCoreApplication::processEvents();
        std::atomic<bool> behind = false;
        ResourceActor::shared().enqueue([&behind] { behind = true; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return behind.load(); }, 60000));
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
        (void)vm;
    }

    std::shared_ptr<TSFilesAlbum> album_;
};

}  // namespace

TEST_F(ResourcesScreenTest, PortraitOffersTheListWithItsMapsUnderTheFile) {
    ResourcesViewModel vm;
    show(vm, "portrait/image-with-matte.jpg");
    ASSERT_TRUE(vm.available());
    EXPECT_TRUE(album_->currentAsset->ddStore().hasAuxiliaryImage);

    vm.setOpen(true);
    EXPECT_EQ(vm.total(), 10);
    EXPECT_TRUE(vm.showProgress());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !vm.showProgress(); }, 60000));
    EXPECT_EQ(vm.progress(), 10);

    const QVariantList sections = vm.sections();
    ASSERT_EQ(sections.size(), 1);
    const QVariantList rows = sections[0].toMap()["rows"].toList();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].toMap()["title"], "image-with-matte.jpg");
    EXPECT_EQ(rows[0].toMap()["subtitle"], "2.2 MB");
    EXPECT_EQ(rows[0].toMap()["symbol"], "");
    EXPECT_EQ(rows[1].toMap()["title"], "Image Disparity");
    EXPECT_EQ(rows[2].toMap()["title"], "Portrait Effects Matte");

    // A map opens full screen as an image, and its copy is the file's bytes.
    const QUrl matte = rows[2].toMap()["url"].toUrl();
    vm.showMedia(matte);
    EXPECT_EQ(vm.mediaKind(), "image");
    EXPECT_EQ(vm.suggestedName(), "image-with-matte_PortraitEffectsMatte.jpg");
    QTemporaryDir out;
    ASSERT_TRUE(vm.saveCopy(QUrl::fromLocalFile(out.filePath("copy.bmp"))));
    EXPECT_EQ(testsupport::readFile(out.filePath("copy.bmp")), testsupport::readFile(matte.toLocalFile()));
    EXPECT_FALSE(vm.saveCopy(QUrl::fromLocalFile("/nowhere/copy.bmp")));

    vm.setOpen(false);
    EXPECT_TRUE(vm.sections().isEmpty());
    EXPECT_TRUE(vm.mediaUrl().isEmpty());
}

TEST_F(ResourcesScreenTest, PlainPhotoIsNotOfferedButItsListStillFills) {
    ResourcesViewModel vm;
    show(vm, "jpeg/Canon_40D.jpg");
    EXPECT_FALSE(vm.available());
    vm.setOpen(true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return vm.progress() == 10; }, 60000));
    const QVariantList rows = vm.sections().value(0).toMap()["rows"].toList();
    ASSERT_EQ(rows.size(), 1);
    vm.showMedia(rows[0].toMap()["url"].toUrl());
    EXPECT_EQ(vm.mediaKind(), "image");

    QTemporaryDir dir;
    QFile text(dir.filePath("notes.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("hello");
    text.close();
    vm.showMedia(QUrl::fromLocalFile(text.fileName()));
    EXPECT_EQ(vm.mediaKind(), "text");
    EXPECT_EQ(vm.mediaText(), "notes.txt can't be shown here.");
    vm.showMedia(QUrl::fromLocalFile(corpusDir() + "/video/small_video.mp4"));
    EXPECT_EQ(vm.mediaKind(), "video");
    EXPECT_EQ(vm.mediaImage(), "");
    // A HEIC, which Qt can't decode, opens as an image drawn upright by the thumbnail provider.
    const QString heic = corpusDir() + "/heif/iphone_13_pro_max.HEIC";
    vm.showMedia(QUrl::fromLocalFile(heic));
    EXPECT_EQ(vm.mediaKind(), "image");
    EXPECT_EQ(QUrl::fromPercentEncoding(vm.mediaImage().toUtf8()), "image://thumb/" + heic);
}
