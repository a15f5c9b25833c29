// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSGeocoder.h"

#include "HandGeocoder.h"
#include "HRLocation.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

namespace {

using testsupport::HandGeocoder;

struct Asked {
    bool done = false;
    std::optional<QList<Placemark>> placemarks;
    QString locality() const {
        return placemarks && !placemarks->isEmpty() ? placemarks->first().locality.value_or("") : QString();
    }
};

std::shared_ptr<Asked> ask(const GeoLocation& location) {
    auto asked = std::make_shared<Asked>();
    [](GeoLocation l, std::shared_ptr<Asked> a) -> QCoro::Task<> {
        a->placemarks = co_await TSGeocoder::reverse(l);
        a->done = true;
    }(location, asked);
    return asked;
}

void settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

// A position `metres` north of another.
GeoLocation north(const GeoLocation& from, double metres) {
    constexpr double metresPerDegree = 6371008.8 * M_PI / 180;
    return GeoLocation(from.coordinate.latitude + metres / metresPerDegree, from.coordinate.longitude);
}

class TSGeocoderRules : public ::testing::Test {
protected:
    void SetUp() override {
        fake = std::make_shared<HandGeocoder>();
        TSGeocoder::setGeocoder(fake);
    }
    void TearDown() override { TSGeocoder::setGeocoder(nullptr); }
    std::shared_ptr<HandGeocoder> fake;
};

const GeoLocation arezzo(43.46745, 11.88513);

}  // namespace

TEST_F(TSGeocoderRules, PlacesCloserThanSevenPointTwoMetresShareACacheEntry) {
    auto first = ask(arezzo);
    ASSERT_EQ(fake->sent.size(), 1);
    fake->answer("Arezzo");
    settle();
    ASSERT_TRUE(first->done);
    EXPECT_EQ(first->locality(), "Arezzo");

    const GeoLocation near = north(arezzo, 7.1), far = north(arezzo, 7.2);
    ASSERT_LT(arezzo.distance(near), 7.2);
    ASSERT_GE(arezzo.distance(far), 7.2);
    auto cached = ask(near);
    EXPECT_TRUE(cached->done);  // straight from the cache, without waiting
    EXPECT_EQ(cached->locality(), "Arezzo");
    EXPECT_EQ(fake->sent.size(), 1);

    auto asked = ask(far);
    EXPECT_FALSE(asked->done);
    EXPECT_EQ(fake->sent.size(), 2);
    fake->answer("Arezzo too");
    settle();
    EXPECT_EQ(asked->locality(), "Arezzo too");
    EXPECT_EQ(TSGeocoder::cache().arrayList.size(), 2);
    EXPECT_EQ(TSGeocoder::cache().arrayList.first().location, far);  // newest first
}

TEST_F(TSGeocoderRules, AnEleventhPlaceDropsTheOldest) {
    for (int i = 0; i < 11; ++i) {
        auto a = ask(GeoLocation(10 + i, 20));
        fake->answer(QString("place %1").arg(i));
        settle();
        ASSERT_TRUE(a->done);
    }
    EXPECT_EQ(TSGeocoder::cache().arrayList.size(), TSGeocoder::cacheSize);
    EXPECT_EQ(fake->sent.size(), 11);
    EXPECT_FALSE(TSGeocoder::reversed(GeoLocation(10, 20)).hit);  // the oldest is gone
    const auto second = TSGeocoder::reversed(GeoLocation(11, 20));
    ASSERT_TRUE(second.hit);
    EXPECT_EQ(second.placemarks->first().locality, QString("place 1"));
    auto again = ask(GeoLocation(10, 20));
    EXPECT_EQ(fake->sent.size(), 12);
}

TEST_F(TSGeocoderRules, TheSamePlaceWhileARequestRunsSendsNothing) {
    auto first = ask(arezzo);
    auto second = ask(north(arezzo, 3));
    EXPECT_TRUE(second->done);  // nil at once: the running request serves the place
    EXPECT_FALSE(second->placemarks);
    EXPECT_EQ(fake->sent.size(), 1);
    EXPECT_EQ(fake->cancels, 0);
    fake->answer("Arezzo");
    settle();
    EXPECT_EQ(first->locality(), "Arezzo");
}

TEST_F(TSGeocoderRules, AnotherPlaceCancelsTheRunningRequest) {
    // Paging fast through far-apart photos: only the last gets an answer.
    auto rome = ask(GeoLocation(41.89, 12.49));
    auto paris = ask(GeoLocation(48.85, 2.35));
    auto london = ask(GeoLocation(51.51, -0.13));
    EXPECT_EQ(fake->cancels, 2);
    EXPECT_EQ(fake->sent.size(), 3);
    fake->answer("London");
    settle();
    EXPECT_TRUE(rome->done);
    EXPECT_FALSE(rome->placemarks);
    EXPECT_TRUE(paris->done);
    EXPECT_FALSE(paris->placemarks);
    EXPECT_EQ(london->locality(), "London");
    ASSERT_EQ(TSGeocoder::cache().arrayList.size(), 1);  // cancelled requests leave no entry
    // Compared by coordinate: a location made here carries another time stamp.
    ASSERT_TRUE(TSGeocoder::lastLocation());
    EXPECT_EQ(TSGeocoder::lastLocation()->coordinate, (GeoCoordinate{51.51, -0.13}));
}

TEST_F(TSGeocoderRules, AFailureLeavesTheCacheAloneAndTheNextCallStartsOver) {
    auto first = ask(arezzo);
    fake->fail();
    settle();
    EXPECT_TRUE(first->done);
    EXPECT_FALSE(first->placemarks);
    EXPECT_TRUE(TSGeocoder::cache().arrayList.isEmpty());
    EXPECT_EQ(TSGeocoder::lastLocation(), arezzo);
    EXPECT_FALSE(TSGeocoder::reversed(arezzo).hit);

    auto again = ask(arezzo);
    EXPECT_EQ(fake->sent.size(), 2);
    fake->answer("Arezzo");
    settle();
    EXPECT_EQ(again->locality(), "Arezzo");
}

TEST_F(TSGeocoderRules, NoPlaceThereIsCachedToo) {
    auto sea = ask(GeoLocation(30, -40));
    fake->answerNothing();
    settle();
    ASSERT_TRUE(sea->placemarks);
    EXPECT_TRUE(sea->placemarks->isEmpty());
    const auto hit = TSGeocoder::reversed(GeoLocation(30, -40));
    EXPECT_TRUE(hit.hit);
    auto again = ask(GeoLocation(30, -40));
    EXPECT_TRUE(again->done);
    EXPECT_EQ(fake->sent.size(), 1);
}
