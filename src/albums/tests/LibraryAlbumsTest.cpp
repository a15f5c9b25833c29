// SPDX-License-Identifier: GPL-3.0-or-later
// The library as the album list and the open album see it: collections under the user's
// options, the memory cap, the observer that keeps the current album in step, and the item built
// from a library asset. Over a real library in the test's own folder.
#include "AddingPicture.h"
#include "AlbumTestSupport.h"
#include "Albums.h"
#include "Isolation.h"
#include "Settings.h"
#include "TSLibraryObserver.h"
#include "TSPhotoAlbum.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

// Readable failure messages.
void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }
void PrintTo(const QStringList& list, std::ostream* os) { *os << '[' << list.join(", ").toStdString() << ']'; }

namespace {

class LibraryAlbumsTest : public testsupport::IsolatedTest {
protected:
    QString root;
    std::unique_ptr<library::Library> lib;
    std::shared_ptr<TSPhotoAlbum> album = std::make_shared<TSPhotoAlbum>();

    void SetUp() override {
        root = isolation().root() + "/lib";
        // By date: a 2008, c 2018, b 2021, and the movie d 2023.
        add("jpeg/Canon_40D.jpg", "a.jpg");
        add("heif/IMG_5195.HEIC", "Trips/2021/b.heic");
        add("jpeg/DSC_3079.jpg", "Trips/c.jpg");
        add("video/apple_meta.mov", "d.mov");
        lib = std::make_unique<library::Library>(QStringList{root}, isolation().root() + "/library.sqlite");
        ASSERT_TRUE(lib->isOpen());
        lib->scan();
        TSEnvironment::setCurrentAlbum(album);
    }
    void TearDown() override { TSEnvironment::setCurrentAlbum(nullptr); }

    void add(const QString& corpus, const QString& relative) {
        const QString target = root + '/' + relative;
        QDir().mkpath(QFileInfo(target).absolutePath());
        ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + '/' + corpus, target)) << corpus.toStdString();
    }
    QStringList names(const library::FetchResult& fetch) const {
        QStringList list;
        for (const auto& a : fetch.assets()) list << QFileInfo(a.mainPath()).fileName();
        return list;
    }
    QString idOf(const QString& name) const {
        const auto all = lib->fetchAssets();
        for (const auto& a : all.assets())
            if (QFileInfo(a.mainPath()).fileName() == name) return a.localIdentifier;
        return {};
    }
};

struct Viewer : QObject, TSLibraryViewer {
    QList<library::ChangeDetails> heard;
    void libraryDidChange(const library::ChangeDetails& d) override { heard << d; }
};

}  // namespace

TEST_F(LibraryAlbumsTest, CollectionsFollowTheOptionsAndLeaveOutWhatHoldsNothing) {
    Settings::setFlag(SettingsFlag::video, true);
    Settings::setFlag(SettingsFlag::mostRecentFirst, false);
    ASSERT_TRUE(lib->setFavorite(idOf("c.jpg"), true));
    QList<TSCollection> list = Albums::collections(*lib);
    // No events, synced, faces, imported or shared albums in a folder library: no such rows.
    ASSERT_EQ(list.size(), 3);
    EXPECT_EQ(list[0].title, "Saved Photos");
    EXPECT_EQ(list[0].kind, TSCollection::Kind::assetsFetched);
    EXPECT_EQ(names(list[0].assets), (QStringList{"a.jpg", "c.jpg", "b.heic", "d.mov"}));
    EXPECT_EQ(list[1].title, "Albums");
    ASSERT_EQ(list[1].collections.size(), 1);
    EXPECT_EQ(list[1].collections[0].title, "Trips");
    EXPECT_EQ(list[1].collections[0].type, library::CollectionType::folder);  // it has a subfolder
    EXPECT_EQ(list[2].title, "Smart Albums");
    QList<int> smart;
    for (const auto& c : list[2].collections) smart << c.subtype;
    EXPECT_TRUE(smart.contains(203));  // favourites
    EXPECT_TRUE(smart.contains(202));  // videos
    EXPECT_FALSE(smart.contains(209));  // the user's library is the first row already
    EXPECT_FALSE(smart.contains(205));  // hidden items stay out of sight

    Settings::setFlag(SettingsFlag::video, false);
    Settings::setFlag(SettingsFlag::mostRecentFirst, true);
    list = Albums::collections(*lib);
    EXPECT_EQ(names(list[0].assets), (QStringList{"b.heic", "c.jpg", "a.jpg"}));
    for (const auto& c : list[2].collections) EXPECT_NE(c.subtype, 202);
}

TEST_F(LibraryAlbumsTest, RamCheckCountsWholeUnitsBeforeTheDecimalMark) {
    EXPECT_EQ(TSEnvironment::ramCheck(3'000'000'000), 36);
    EXPECT_EQ(TSEnvironment::ramCheck(2'500'000'000), 24);  // "2.5 GB" counts as 2
    EXPECT_EQ(TSEnvironment::ramCheck(4'000'000'000), 48);
    EXPECT_EQ(TSEnvironment::ramCheck(16'000'000'000), 48);
    EXPECT_EQ(TSEnvironment::ramCheck(512'000'000), 48);  // "512 MB": three digits, still capped
    EXPECT_GT(TSEnvironment::physicalMemory(), 0);
}

TEST_F(LibraryAlbumsTest, WithoutAGroupScreenTheAlbumFollowsTheLibraryAndKeepsItsItem) {
    TSLibraryObserver observer(lib.get());
    album->setAlbum(lib->fetchAssets(), 1, "All Photos");  // c.jpg
    spin();
    std::optional<library::ChangeDetails> seen;
    int calls = 0;
    observer.onChange = [&](const std::optional<library::ChangeDetails>& d) { seen = d, ++calls; };

    ASSERT_TRUE(lib->deleteAsset(idOf("a.jpg")));  // an item before the one on view
    EXPECT_EQ(calls, 1);
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->removedIndexes, QList<qsizetype>{0});
    EXPECT_EQ(album->count(), 3);
    EXPECT_EQ(album->displayedIndex, 0);
    EXPECT_EQ(QFileInfo(album->currentLibraryAsset()->mainPath()).fileName(), "c.jpg");
    {
        std::lock_guard lock(album->changes->semaphore);
        ASSERT_TRUE(album->changes->incremental);
        EXPECT_EQ(album->changes->incremental->removedIndexes, QList<qsizetype>{0});
    }

    ASSERT_TRUE(lib->deleteAsset(idOf("c.jpg")));  // the one on view: its neighbour takes over
    EXPECT_EQ(names(*album->fetchedAssets), (QStringList{"b.heic", "d.mov"}));
    EXPECT_EQ(album->displayedIndex, 0);
    spin();
    ASSERT_TRUE(album->currentAsset);
    EXPECT_EQ(QFileInfo(album->currentAsset->path()).fileName(), "b.heic");

    // A change elsewhere than in the album still reaches a waiting save, with no details: the
    // save goes on, and finds no new item to offer.
    TSEnvironment::setCurrentAlbum(std::make_shared<TSPhotoAlbum>());
    AddingPicture& adding = TSEnvironment::addingPicture();
    adding.start(*lib, {});
    adding.adding = true;
    calls = 0;
    ASSERT_TRUE(lib->setFavorite(idOf("b.heic"), true));
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(seen);
    EXPECT_FALSE(adding.adding);
    EXPECT_FALSE(adding.allPhotosIndex);
    EXPECT_EQ(adding.addingSemaphore.counter(), 1);
    bool waited = false;
    [](AddingPicture& a, bool& done) -> QCoro::Task<> { co_await a.wait(); done = true; }(adding, waited);
    EXPECT_TRUE(waited);
    EXPECT_EQ(adding.addingSemaphore.counter(), 0);
}

TEST_F(LibraryAlbumsTest, AGroupScreenGetsTheDetailsInstead) {
    TSLibraryObserver observer(lib.get());
    Viewer viewer;
    observer.refreshableDelegate = &viewer;
    const library::FetchResult before = lib->fetchAssets();
    album->setAlbum(before, 0, "All Photos");
    ASSERT_TRUE(lib->setFavorite(idOf("b.heic"), true));
    ASSERT_EQ(viewer.heard.size(), 1);
    EXPECT_EQ(viewer.heard[0].changedIndexes, QList<qsizetype>{2});
    EXPECT_TRUE(*album->fetchedAssets == before);  // the viewer decides when the album moves on
    TSLibraryObserver::updateAlbum(viewer.heard[0]);
    EXPECT_TRUE(album->fetchedAssets->objectAt(2).favorite);
}

TEST_F(LibraryAlbumsTest, ALibraryItemStartsWithWhatTheLibraryKnows) {
    const auto asset = lib->asset(idOf("b.heic"));
    ASSERT_TRUE(asset);
    TSAsset item(*asset);
    ASSERT_TRUE(item.libraryAsset());
    EXPECT_EQ(item.ddStore().datas.value(TSKey::NAME), "b.heic");
    EXPECT_EQ(item.ddStore().datas.value(TSKey::SUBTYPE), QString::number(asset->mediaSubtypes));
    EXPECT_TRUE(item.ddStore().dates.dict.contains("Asset"));
    EXPECT_FALSE(item.imageData().isEmpty());

    // The file gone since the scan: the size is the library's, not "0".
    QFile::remove(asset->mainPath());
    TSAsset gone(*asset);
    EXPECT_TRUE(gone.imageData().isEmpty());
    EXPECT_NE(gone.ddStore().datas.value(TSKey::FILE_SIZE), "0");
    EXPECT_EQ(gone.ddStore().datas.value(TSKey::NAME), "b.heic");
}
