// SPDX-License-Identifier: GPL-3.0-or-later
#include "HandGeocoder.h"
#include "PlaceLookup.h"
#include "PropertyKeys.h"
#include "TSDataStore.h"
#include "TSGeocoder.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QMetaObject>

namespace {

using testsupport::HandGeocoder;

struct CountingDisplay : Displayer {
    int changes = 0;
    void dataChanged() override { ++changes; }
};

void settle() {
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
}

QVariantMap arezzoGps() {
    return {{kCGImagePropertyGPSDictionary,
             QVariantMap{{kCGImagePropertyGPSLatitude, 43.46745}, {kCGImagePropertyGPSLatitudeRef, "N"},
                         {kCGImagePropertyGPSLongitude, 11.88513}, {kCGImagePropertyGPSLongitudeRef, "E"}}}};
}

class PlaceLookup : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static int argc = 1;
        static char name[] = "metadata_tests";
        static char* argv[] = {name, nullptr};
        if (!QCoreApplication::instance()) new QCoreApplication(argc, argv);  // lives as long as the tests
    }
    void SetUp() override {
        geocoder = std::make_shared<HandGeocoder>();
        TSGeocoder::setGeocoder(geocoder);
        display = std::make_shared<CountingDisplay>();
        store = std::make_shared<TSDataStore>();
        store->displayDelegate = display;
    }
    void TearDown() override {
        placelookup::setActualIndexSource({});
        TSGeocoder::setGeocoder(nullptr);
    }
    std::shared_ptr<HandGeocoder> geocoder;
    std::shared_ptr<CountingDisplay> display;
    std::shared_ptr<TSDataStore> store;
};

}  // namespace

TEST_F(PlaceLookup, FillStartsItAndTheAnswerBecomesTheLocationRow) {
    store->fill(TSMetaData::fromProperties(arezzoGps()));
    const QString degrees = store->value(TSKey::EXIF_LOCATION).first;
    EXPECT_TRUE(degrees.contains("43°")) << degrees.toStdString();
    EXPECT_EQ(geocoder->sent.size(), 0);  // in a task of its own: not during fill
    settle();
    EXPECT_EQ(geocoder->sent.size(), 1);
    EXPECT_EQ(placelookup::running(), 1);
    geocoder->answer("Arezzo", "Italy", "IT");
    settle();
    EXPECT_EQ(placelookup::running(), 0);
    EXPECT_EQ(store->value(TSKey::EXIF_LOCATION).first, "Arezzo, Italy (IT)");
    ASSERT_TRUE(store->placemark);
    EXPECT_EQ(store->placemark->locality, QString("Arezzo"));
    EXPECT_GE(display->changes, 2);  // once for the rows, once for the place
}

TEST_F(PlaceLookup, AnItemLocationGoesToTheFileLocationRow) {
    store->setAssetLocation(GeoLocation(43.46745, 11.88513));
    settle();
    geocoder->answer("Arezzo", "Italy", "IT");
    settle();
    EXPECT_EQ(store->datas.value(TSKey::FILE_LOCATION), QString("Arezzo, Italy (IT)"));
    EXPECT_FALSE(store->datas.contains(TSKey::EXIF_LOCATION));
}

TEST_F(PlaceLookup, WithoutADisplayNothingIsAsked) {
    store->displayDelegate.reset();
    store->fill(TSMetaData::fromProperties(arezzoGps()));
    settle();
    EXPECT_EQ(geocoder->sent.size(), 0);
    EXPECT_EQ(placelookup::running(), 0);
    EXPECT_TRUE(placelookup::waitForAll(10));
}

TEST_F(PlaceLookup, AStoreOnItsOwnStartsNoLookup) {
    TSDataStore alone;  // not held by a shared pointer: nobody could be told
    alone.displayDelegate = display;
    alone.fill(TSMetaData::fromProperties(arezzoGps()));
    settle();
    EXPECT_EQ(geocoder->sent.size(), 0);
}

TEST_F(PlaceLookup, AnAnswerForAPageTheUserLeftIsDropped) {
    int page = 3;
    placelookup::setActualIndexSource([&] { return page; });
    store->fill(TSMetaData::fromProperties(arezzoGps()));
    settle();
    ASSERT_EQ(geocoder->sent.size(), 1);
    page = 4;
    geocoder->answer("Arezzo", "Italy", "IT");
    settle();
    EXPECT_FALSE(store->placemark);
    EXPECT_NE(store->value(TSKey::EXIF_LOCATION).first, "Arezzo, Italy (IT)");
    EXPECT_EQ(placelookup::running(), 0);
    // The place is cached all the same: coming back shows it at once.
    page = 3;
    placelookup::start(GeoLocation(43.46745, 11.88513), store);
    settle();
    EXPECT_EQ(store->value(TSKey::EXIF_LOCATION).first, "Arezzo, Italy (IT)");
    EXPECT_EQ(geocoder->sent.size(), 1);
}

TEST_F(PlaceLookup, AnAnswerForAStoreThatIsGoneIsDropped) {
    store->fill(TSMetaData::fromProperties(arezzoGps()));
    settle();
    std::weak_ptr<TSDataStore> weak = store;
    store.reset();  // the item was let go while the geocoder worked
    EXPECT_TRUE(weak.expired());
    geocoder->answer("Arezzo", "Italy", "IT");
    settle();
    EXPECT_EQ(placelookup::running(), 0);
}

TEST_F(PlaceLookup, WaitForAllRunsTheEventLoopUntilTheAnswer) {
    store->fill(TSMetaData::fromProperties(arezzoGps()));
    QMetaObject::invokeMethod(qApp, [&] { QMetaObject::invokeMethod(qApp, [&] { geocoder->answer("Arezzo", "Italy", "IT"); }, Qt::QueuedConnection); },
                              Qt::QueuedConnection);
    EXPECT_TRUE(placelookup::waitForAll(5000));
    EXPECT_EQ(store->value(TSKey::EXIF_LOCATION).first, "Arezzo, Italy (IT)");
}
