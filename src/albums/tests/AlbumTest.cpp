#include "AlbumTestSupport.h"
#include "TSFilesAlbum.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// A files album whose favourite and hide marks the test sets, as a library album's would be.
class MarkedAlbum : public TSFilesAlbum {
public:
    bool favoritingNow = false;
    bool hidingNow = false;
    bool favoriting() const override { return favoritingNow; }
    bool hiding() const override { return hidingNow; }
};

TEST(TSAlbumId, RemembersAnAlbumByItsContentsAndPosition) {
    MarkedAlbum album;
    album.imageBookmarks = {"/a.jpg", "/b.jpg"};
    TSAlbumId never;
    EXPECT_FALSE(never.isSameAlbum(album));
    EXPECT_FALSE(never.isSameIndex(album));

    TSAlbumId id;
    id.update(album);
    EXPECT_TRUE(id.isSameAlbum(album));
    EXPECT_TRUE(id.isSameIndex(album));  // no position counts as index 0
    album.displayedIndex = 1;
    EXPECT_FALSE(id.isSameIndex(album));

    // Another list of files is another album, unless a favourite or hide is under way.
    album.imageBookmarks = {"/a.jpg", "/b.jpg", "/c.jpg"};
    EXPECT_FALSE(id.isSameAlbum(album));
    album.favoritingNow = true;
    EXPECT_TRUE(id.isSameAlbum(album));
    album.favoritingNow = false;
    album.hidingNow = true;
    EXPECT_FALSE(id.isSameAlbum(album));  // hiding holds only at the remembered count
    album.imageBookmarks = {"/a.jpg", "/c.jpg"};
    EXPECT_TRUE(id.isSameAlbum(album));
}

TEST(TSEnvironment, AnEmptyUntitledAlbumStandsInWhenNoneIsChosen) {
    TSEnvironment::setCurrentAlbum(nullptr);
    const auto empty = TSEnvironment::currentAlbum();
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->title(), "");
    EXPECT_TRUE(empty->isEmpty());
    EXPECT_FALSE(empty->hasValidIndex());
    EXPECT_EQ(empty->actualIndex(), 0);
    EXPECT_EQ(TSEnvironment::currentAlbum(), empty);  // the same one each time

    auto files = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(files);
    EXPECT_EQ(TSEnvironment::currentAlbum(), files);
    TSEnvironment::setCurrentAlbum(nullptr);
    EXPECT_EQ(TSEnvironment::currentAlbum(), empty);
}

TEST(AbstractAlbum, TheLastLiveGroupObserverIsTheGroupOnView) {
    TSFilesAlbum album;
    EXPECT_EQ(album.lastGroupObserver(), nullptr);
    Recorder first;
    auto second = std::make_unique<Recorder>();
    album.addGroupObserver(&first);
    album.addGroupObserver(second.get());
    EXPECT_EQ(album.lastGroupObserver(), static_cast<GroupObserver*>(second.get()));
    second.reset();
    EXPECT_EQ(album.lastGroupObserver(), static_cast<GroupObserver*>(&first));
    album.pruneGroupObservers();
    EXPECT_EQ(album.groupObserver.size(), 1);
}

}  // namespace
