// SPDX-License-Identifier: GPL-3.0-or-later
#include "Settings.h"

#include <gtest/gtest.h>

#include <QSettings>

namespace {

// Each test gets its own empty settings folder, never the user's.
class SettingsTest : public ::testing::Test {
protected:
    static QStringList storedKeys() { return QSettings(Settings::organisation, Settings::application).allKeys(); }
    static void store(const QString& key, const QVariant& value) {
        QSettings(Settings::organisation, Settings::application).setValue(key, value);
    }

};

TEST_F(SettingsTest, FirstStartSeesTheDefaultsWithoutWritingThem) {
    QStringList keys;
    QList<bool> defaults;
    for (SettingsFlag f : Settings::allFlags()) {
        keys << Settings::key(f);
        defaults << Settings::flag(f);
    }
    EXPECT_EQ(keys, (QStringList{"mostRecentFirst", "gridView", "saveInTessorin", "human", "video", "hiddenInAlbums",
                                 "hiddenInAllPhotos", "needConversion", "showLivePhotos", "hideEmptyTags"}));
    EXPECT_EQ(defaults, (QList<bool>{true, false, true, true, true, true, false, true, true, true}));
    EXPECT_EQ(Settings::value("human"), QVariant(true));
    EXPECT_FALSE(Settings::value("noSuchKey").isValid());
    EXPECT_TRUE(storedKeys().isEmpty());
}

TEST_F(SettingsTest, StoredValuesWinAndAreReadAtEachUse) {
    Settings::setFlag(SettingsFlag::human, false);
    EXPECT_FALSE(Settings::flag(SettingsFlag::human));
    // A change made behind our back is seen at the next read.
    store("human", true);
    store("gridView", true);
    EXPECT_TRUE(Settings::flag(SettingsFlag::human));
    EXPECT_TRUE(Settings::flag(SettingsFlag::gridView));
    EXPECT_EQ(storedKeys(), (QStringList{"gridView", "human"}));
}

TEST_F(SettingsTest, HiddenSectionsRoundTrip) {
    EXPECT_TRUE(Settings::hiddenSections().isEmpty());
    for (const QList<int>& sections : {QList<int>{2}, QList<int>{0, 3, 5}, QList<int>{}}) {
        Settings::setHiddenSections(sections);
        EXPECT_EQ(Settings::hiddenSections(), sections);
    }
}

class ReviewCounter : public SettingsTest {
protected:
    static int count() { return Settings::value(SettingsKey::reviewWorthyActionCount).toInt(); }
    static QString askedVersion() { return Settings::value(SettingsKey::lastReviewRequestAppVersion).toString(); }
};

TEST_F(ReviewCounter, FourthSaveAsksOncePerVersion) {
    for (int i = 0; i < 3; ++i) Settings::noteReviewWorthyAction(true);
    EXPECT_EQ(count(), 3);
    EXPECT_TRUE(askedVersion().isEmpty());

    Settings::noteReviewWorthyAction(true);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(askedVersion(), TESSORIN_VERSION);

    // Already asked for this version: the counter keeps growing.
    for (int i = 0; i < 5; ++i) Settings::noteReviewWorthyAction(true);
    EXPECT_EQ(count(), 5);

    // A new version asks again.
    store(SettingsKey::lastReviewRequestAppVersion, "0.0.1");
    Settings::noteReviewWorthyAction(true);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(askedVersion(), TESSORIN_VERSION);
}

TEST_F(ReviewCounter, WithoutActiveWindowTheNextSaveTriesAgain) {
    store(SettingsKey::reviewWorthyActionCount, 3);
    Settings::noteReviewWorthyAction(false);
    EXPECT_EQ(count(), 4);
    EXPECT_TRUE(askedVersion().isEmpty());
    Settings::noteReviewWorthyAction(true);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(askedVersion(), TESSORIN_VERSION);
}

}  // namespace
