// SPDX-License-Identifier: GPL-3.0-or-later
// The share menu's view model over real files: what reaches the clipboard, what a save writes,
// and the alert when a copy can't be made.
#include "ShareViewModel.h"

#include "TSFilesAlbum.h"
#include "TSMetaDataObservable.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

class ShareScreen : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(outDir_.isValid());
        TSEnvironment::setCurrentAlbum(nullptr);
        QGuiApplication::clipboard()->setText("before");
    }
    void TearDown() override { TSEnvironment::setCurrentAlbum(nullptr); }

    // The files album with `path` on view, made the current album as the detail screen has it.
    void show(const QString& path) {
        auto album = std::make_shared<TSFilesAlbum>();
        album->imageBookmarks = {path};
        album->currentAsset = std::make_shared<TSAsset>(path);
        album->displayedIndex = 0;
        TSEnvironment::setCurrentAlbum(album);
    }
    QUrl target(const QString& name) const { return QUrl::fromLocalFile(outDir_.filePath(name)); }

    QTemporaryDir outDir_;
    ShareViewModel share;
};

}  // namespace

// Every button of the menu runs its action, closes the menu and offers a save; texts are ready
// to paste and saved as they stand.
TEST_F(ShareScreen, EveryButtonSharesTheItemOnView) {
    show(corpusDir() + "/jpeg/gps/DSCN0010.jpg");
    const auto asset = TSEnvironment::currentAlbum()->currentAsset;
    QStringList actions;
    for (const QVariant& row : share.rows()) {
        const QVariantMap map = row.toMap();
        if (map["kind"] == "button") actions << map["action"].toString();
    }
    ASSERT_EQ(actions.size(), 7);
    for (const QString& action : actions) {
        SCOPED_TRACE(action.toStdString());
        share.setMenuOpen(true);
        QSignalSpy offered(&share, &ShareViewModel::saveRequested);
        share.trigger(action);
        EXPECT_FALSE(share.menuOpen());
        EXPECT_EQ(offered.count(), 1);
        EXPECT_FALSE(share.errorVisible());
        EXPECT_FALSE(share.saveFileName().isEmpty());
        ASSERT_TRUE(share.saveTo(target(share.saveFileName())));
    }
    // What each save wrote, read back.
    const QString base = outDir_.filePath("DSCN0010");
    EXPECT_EQ(readFile(outDir_.filePath("DSCN0010.jpg")), asset->imageData());
    // exiftool: Model COOLPIX P6000, DateTimeOriginal 2008:10:22 16:28:39.
    const QString details = QString::fromUtf8(readFile(base + "-details.txt"));
    for (const char* part : {"DSCN0010.jpg", "COOLPIX P6000", "Wednesday, 22 October 2008 16:28:39"})
        EXPECT_TRUE(details.contains(part)) << part << " in " << details.toStdString();
    EXPECT_TRUE(QJsonDocument::fromJson(readFile(base + "-tags.json")).isObject());
    EXPECT_TRUE(readFile(base + "-tags.txt").startsWith("**Exif**\n"));
    EXPECT_TRUE(readFile(base + "-tags-raw.txt").contains("{GPS}"));
    const QImage stripped(base + "-no-metadata.jpg");
    EXPECT_EQ(stripped.size(), QSize(640, 480));
    // The last text shared is what the clipboard holds.
    EXPECT_EQ(QString::fromUtf8(readFile(base + "-tags-raw.txt")), QGuiApplication::clipboard()->text());
    EXPECT_TRUE(share.pendingData().isEmpty());
}

// "With Metadata" puts the summary sentence on the clipboard beside the untouched file.
TEST_F(ShareScreen, WithMetadataCopiesTheSummary) {
    show(corpusDir() + "/heif/iphone_13_pro_max.HEIC");
    share.shareMeta();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "This photo was taken on 16 Feb 2022 at 12:55:41");
    EXPECT_EQ(share.saveFileName(), "iphone_13_pro_max.HEIC");
    EXPECT_EQ(share.pendingData(), readFile(corpusDir() + "/heif/iphone_13_pro_max.HEIC"));
    share.cancelSave();
    EXPECT_TRUE(share.pendingData().isEmpty());
    EXPECT_FALSE(share.saveTo(target("nothing.heic")));
    EXPECT_FALSE(QFile::exists(outDir_.filePath("nothing.heic")));
}

// A movie can't be stripped: the "Error" alert, and nothing offered; "Ok" clears it.
TEST_F(ShareScreen, FailuresShowTheErrorAlert) {
    show(video("apple_meta.mov"));
    QSignalSpy offered(&share, &ShareViewModel::saveRequested);
    share.setMenuOpen(true);
    share.shareWithoutMeta();
    EXPECT_FALSE(share.menuOpen());
    EXPECT_EQ(offered.count(), 0);
    EXPECT_TRUE(share.errorVisible());
    EXPECT_EQ(share.errorTitle(), "Error");
    EXPECT_EQ(share.errorMessage(), "Error while stripping Metadata");
    share.dismissError();
    EXPECT_FALSE(share.errorVisible());

    // A save that can't be written says why and keeps the items for another try.
    share.jsonShare();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "{}");
    EXPECT_FALSE(share.saveTo(target("missing/tags.json")));
    EXPECT_TRUE(share.errorVisible());
    EXPECT_TRUE(share.errorMessage().contains("missing/tags.json")) << share.errorMessage().toStdString();
    EXPECT_EQ(share.pendingData(), "{}");
    EXPECT_TRUE(share.saveTo(target("tags.json")));
}

// No item on view, or an empty text: nothing happens at all.
TEST_F(ShareScreen, NothingToShareDoesNothing) {
    QSignalSpy offered(&share, &ShareViewModel::saveRequested);
    for (const char* action : {"shareMeta", "shareWithoutMeta", "shareWithoutLocation", "shareDetails", "hrShare", "jsonShare", "rawShare"})
        share.trigger(action);
    // A movie that can't be read has no tags to export.
    const QString broken = outDir_.filePath("broken.mov");
    QFile file(broken);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("\0\0\0\x08mdat not a movie", 20) == 20);
    file.close();
    show(broken);
    share.hrShare();
    share.rawShare();
    EXPECT_EQ(offered.count(), 0);
    EXPECT_FALSE(share.errorVisible());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "before");
}
