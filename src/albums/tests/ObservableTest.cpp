// SPDX-License-Identifier: GPL-3.0-or-later
#include "AlbumTestSupport.h"
#include "TSFilesAlbum.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class ObservableTest : public ::testing::Test {
protected:
    TSMetaDataObservable& hub = TSEnvironment::observable();
    void SetUp() override {
        spin();  // nothing left over from an earlier test
        hub.download = DownloadLevel::none;
        TSEnvironment::setCurrentAlbum(nullptr);
    }
    void TearDown() override {
        spin(250);
        TSEnvironment::setCurrentAlbum(nullptr);
    }
};

TEST_F(ObservableTest, ANotificationSentDuringADeliveryComesOnceOnTheNextTurn) {
    Recorder first, second;
    hub.addObserver(&first);
    hub.addObserver(&second);
    hub.addObserver(&first);  // the same observer twice is one entry
    int sentFromInside = 0;
    first.onHear = [&](const QString& what) {
        if (what != "processed") return;
        ++sentFromInside;
        hub.sendMetaData(MetaSelector::rowsChanged);
    };

    hub.sendMetaData(MetaSelector::processed);
    EXPECT_EQ(sentFromInside, 1);
    EXPECT_EQ(first.heard, QStringList{"processed"});
    EXPECT_EQ(second.heard, QStringList{"processed"});
    EXPECT_EQ(hub.cyclers, 0);

    spin();
    EXPECT_EQ(first.heard, (QStringList{"processed", "rows"}));
    EXPECT_EQ(second.heard, (QStringList{"processed", "rows"}));
    spin(20);
    EXPECT_EQ(first.heard.size(), 2);
}

TEST_F(ObservableTest, ObserversThatAreGoneAreDroppedAtTheNextDelivery) {
    Recorder staying;
    auto leaving = std::make_unique<Recorder>();
    hub.addObserver(&staying);
    hub.addObserver(leaving.get());
    const int before = hub.observerCount();
    leaving.reset();
    EXPECT_EQ(hub.observerCount(), before - 1);
    hub.sendMetaData(MetaSelector::rowsChanged);  // must not touch the dead one
    EXPECT_EQ(staying.heard, QStringList{"rows"});

    // One that goes away while a deferred notification waits hears nothing of it.
    auto late = std::make_unique<Recorder>();
    hub.addObserver(late.get());
    staying.onHear = [&](const QString& what) {
        if (what == "rows") hub.sendMetaData(MetaSelector::liveReady);
    };
    hub.sendMetaData(MetaSelector::rowsChanged);
    late.reset();
    spin();
    EXPECT_EQ(staying.heard, (QStringList{"rows", "rows", "live"}));
}

TEST_F(ObservableTest, DelayedShowAppearsOnlyWhenStillRequestingAfterAFifthOfASecond) {
    Recorder recorder;
    hub.addObserver(&recorder);

    hub.download = DownloadLevel::request;
    hub.delayedShow();
    spin(100);
    EXPECT_TRUE(recorder.heard.isEmpty());
    spin(200);
    EXPECT_EQ(recorder.heard, QStringList{"progress 0"});
    EXPECT_EQ(hub.download, DownloadLevel::managing);

    // The data came in within the wait: no bar at all.
    recorder.heard.clear();
    hub.download = DownloadLevel::request;
    hub.delayedShow();
    spin(50);
    hub.download = DownloadLevel::done;
    spin(300);
    EXPECT_TRUE(recorder.heard.isEmpty());
    EXPECT_EQ(hub.download, DownloadLevel::done);

    // A second request replaces the first wait: one progress, not two.
    hub.download = DownloadLevel::request;
    hub.delayedShow();
    hub.delayedShow();
    spin(300);
    EXPECT_EQ(recorder.heard, QStringList{"progress 0"});
}

TEST_F(ObservableTest, DelayedProgressWaitsWhileRequestingAndFinishesADoneLoad) {
    Recorder recorder;
    hub.addObserver(&recorder);

    hub.download = DownloadLevel::request;
    hub.delayedProgress(0.25f);
    spin(100);
    EXPECT_TRUE(recorder.heard.isEmpty());
    spin(200);
    EXPECT_EQ(recorder.heard, QStringList{"progress 0.25"});

    recorder.heard.clear();
    hub.download = DownloadLevel::done;
    hub.delayedProgress(0.5f);
    EXPECT_TRUE(recorder.heard.isEmpty());  // never inside the caller
    spin();
    EXPECT_EQ(recorder.heard, QStringList{"done"});
    EXPECT_EQ(hub.download, DownloadLevel::processed);

}

TEST_F(ObservableTest, DoneInterruptedAndAlbumChangedResetCarryTheCurrentAlbum) {
    Recorder recorder;
    hub.addObserver(&recorder);
    auto album = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    hub.sendProgress(1.0f);
    EXPECT_EQ(recorder.heard, QStringList{"done"});
    EXPECT_EQ(recorder.lastAlbum, album);

    recorder.heard.clear();
    hub.interrupted();
    EXPECT_EQ(hub.download, DownloadLevel::interrupted);
    EXPECT_EQ(recorder.heard, QStringList{"processed"});
    EXPECT_EQ(recorder.lastAlbum, album);

    recorder.heard.clear();
    hub.albumChangedReset();
    EXPECT_EQ(recorder.heard, QStringList{"albumChanged"});
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "");
    hub.albumChangedReset(album);
    EXPECT_EQ(TSEnvironment::currentAlbum(), album);
}

}  // namespace
