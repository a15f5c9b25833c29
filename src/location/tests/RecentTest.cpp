// SPDX-License-Identifier: GPL-3.0-or-later
#include "Recent.h"
#include "Settings.h"

#include <gtest/gtest.h>

#include <QTimeZone>

namespace {

HRLocation place(double lat, const char* title) {
    HRLocation h;
    h.location = GeoLocation(lat, 10);
    h.location->timestamp = QDateTime::fromSecsSinceEpoch(1000, QTimeZone::utc());
    h.title = title;
    return h;
}

QStringList titles(const Recent<HRLocation>& r) {
    QStringList out;
    for (const auto& h : r) out << h.title.value_or("");
    return out;
}

class RecentLists : public ::testing::Test {
protected:
    // Each test gets its own empty settings folder, never the user's.
    void SetUp() override {
        recents::loadRecents();
    }
};

}  // namespace

TEST(Recent, KeepsTheNewestFiveAndMovesRepeatsToTheFront) {
    Recent<int> r(5);
    for (int i = 1; i <= 6; ++i) r.add(i);
    EXPECT_EQ(r.arrayList, (QList<int>{6, 5, 4, 3, 2}));
    r.add(3);
    EXPECT_EQ(r.arrayList, (QList<int>{3, 6, 5, 4, 2}));
    r.add(3);
    EXPECT_EQ(r.arrayList, (QList<int>{3, 6, 5, 4, 2}));
}

TEST(Recent, PlacesCompareByLocationOnly) {
    Recent<HRLocation> r(5);
    r.add(place(1, "first"));
    r.add(place(1, "renamed"));  // equal to the newest: nothing changes, not even the title
    EXPECT_EQ(titles(r), QStringList{"first"});
    r.add(place(2, "other"));
    r.add(place(1, "again"));  // equal to an older one: it moves to the front, new title and all
    EXPECT_EQ(titles(r), (QStringList{"again", "other"}));
    HRLocation noWhere1, noWhere2;
    noWhere1.title = "a";
    r.add(noWhere1);
    r.add(noWhere2);
    EXPECT_EQ(r.arrayList.size(), 3);
}

TEST_F(RecentLists, LoadingReversesTheSavedOrder) {
    recents::saveRecents(std::nullopt, std::nullopt, place(1, "A"));
    recents::saveRecents(std::nullopt, std::nullopt, place(2, "B"));
    recents::saveRecents(std::nullopt, std::nullopt, place(3, "C"));
    EXPECT_EQ(titles(recents::locations()), (QStringList{"C", "B", "A"}));
    recents::loadRecents();
    EXPECT_EQ(titles(recents::locations()), (QStringList{"A", "B", "C"}));
}

TEST_F(RecentLists, DatesAreSavedOnceEachAndRemovedPlacesAreNot) {
    const QDateTime d1 = QDateTime::fromSecsSinceEpoch(1'600'000'000, QTimeZone::utc());
    const QDateTime d2 = QDateTime::fromSecsSinceEpoch(1'700'000'000, QTimeZone::utc());
    recents::saveRecents(d1, d1, std::nullopt);
    EXPECT_EQ(recents::dates().arrayList, QList<QDateTime>{d1});
    recents::saveRecents(d1, d2, std::nullopt);
    EXPECT_EQ(recents::dates().arrayList, (QList<QDateTime>{d2, d1}));
    EXPECT_DOUBLE_EQ(Settings::value("dt_0").toDouble(), 1'700'000'000.0);

    HRLocation removed;
    removed.title = "--";
    recents::saveRecents(std::nullopt, std::nullopt, removed);
    recents::saveRecents(std::nullopt, std::nullopt, HRLocation{});
    EXPECT_TRUE(recents::locations().arrayList.isEmpty());
    EXPECT_FALSE(Settings::value("loc_0").isValid());

    recents::loadRecents();
    EXPECT_EQ(recents::dates().arrayList, (QList<QDateTime>{d1, d2}));
}
