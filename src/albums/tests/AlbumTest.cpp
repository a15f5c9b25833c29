// SPDX-License-Identifier: GPL-3.0-or-later
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
}

}  // namespace
