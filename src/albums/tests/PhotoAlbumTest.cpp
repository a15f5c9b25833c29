// SPDX-License-Identifier: GPL-3.0-or-later
// The album over a fetch of a real library in a temporary folder.
#include "AlbumTestSupport.h"
#include "Library.h"
#include "TSPhotoAlbum.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

class PhotoAlbumTest : public ::testing::Test {
protected:
    TSMetaDataObservable& hub = TSEnvironment::observable();
    QTemporaryDir tmp;
    std::shared_ptr<TSPhotoAlbum> album = std::make_shared<TSPhotoAlbum>();
    Recorder screen;
    std::unique_ptr<library::Library> lib;

    void SetUp() override {
        QDir().mkpath(tmp.path() + "/lib");
        // Dates 2008, 2021 and 2023: the fetch keeps that order.
        const QList<QPair<QString, QString>> files{
            {"jpeg/Canon_40D.jpg", "a.jpg"}, {"heif/IMG_5195.HEIC", "b.heic"}, {"video/apple_meta.mov", "c.mov"}};
        for (const auto& f : files) ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/" + f.first, tmp.path() + "/lib/" + f.second));
        lib = std::make_unique<library::Library>(QStringList{tmp.path() + "/lib"}, tmp.path() + "/library.sqlite");
        lib->scan();
        spin();
        TSEnvironment::setCurrentAlbum(album);
        screen.ignored = {"rows"};
        hub.addObserver(&screen);
        album->addGroupObserver(&screen);
    }
    void TearDown() override { TSEnvironment::setCurrentAlbum(nullptr); }
};

}  // namespace

TEST_F(PhotoAlbumTest, SettingAFetchLoadsTheItemAndTheSameSettingDoesNothing) {
    const library::FetchResult fetch = lib->fetchAssets();
    ASSERT_EQ(fetch.count(), 3);
    album->setAlbum(fetch, 1, "Recents");
    EXPECT_EQ(screen.heard, QStringList{"reload changed"});
    spin();
    EXPECT_EQ(screen.heard, (QStringList{"reload changed", "begin", "processed"}));
    ASSERT_TRUE(album->currentAsset);
    EXPECT_EQ(album->currentAsset->path(), fetch.objectAt(1).mainPath());
    EXPECT_EQ(album->title(), "Recents");
    EXPECT_TRUE(album->isVideo(2));
    EXPECT_FALSE(album->isVideo(0));
    EXPECT_EQ(album->date(0)->date(), QDate(2008, 5, 30));
    EXPECT_FALSE(album->date(3));

    screen.heard.clear();
    album->setAlbum(lib->fetchAssets(), 1, "Recents");  // an equal fetch, the same index
    spin();
    EXPECT_TRUE(screen.heard.isEmpty());
    album->setAlbum(lib->fetchAssets(), 2, "Recents");
    spin();
    EXPECT_EQ(screen.heard, (QStringList{"reload", "begin", "processed"}));

    EXPECT_EQ(album->indexOfAsset(fetch.objectAt(0).localIdentifier), 0);
    EXPECT_FALSE(album->indexOfAsset(QString("nothing")));
    EXPECT_FALSE(album->indexOfAsset(std::nullopt));
}

TEST_F(PhotoAlbumTest, IndexesClampAndAnEmptyFetchHasNoItem) {
    album->setAlbum(lib->fetchAssets(), 99, "Recents");
    spin();
    EXPECT_EQ(album->displayedIndex, 2);
    album->setAlbum(lib->fetchAssets(QStringLiteral("smart:203")), 0, "Favorites");
    spin();
    EXPECT_EQ(album->count(), 0);
    EXPECT_TRUE(album->isEmpty());
    EXPECT_EQ(album->displayedIndex, 0);
    EXPECT_FALSE(album->currentAsset);

    QImage got;
    bool called = false;
    EXPECT_EQ(album->requestImage(0, QSize(40, 40), [&](const QImage& image, bool) { got = image, called = true; }), 0);
    EXPECT_TRUE(called);
    EXPECT_TRUE(got.isNull());

    album->setAlbum(lib->fetchAssets(), 0, "Recents");
    called = false;
    EXPECT_GT(album->requestImage(5, QSize(40, 40), [&](const QImage& image, bool) { got = image, called = true; }), 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return called; }, 20000));
    EXPECT_FALSE(got.isNull());  // the last item's first frame
    EXPECT_LE(qMax(got.width(), got.height()), 40);
}
