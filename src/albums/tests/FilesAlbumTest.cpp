// SPDX-License-Identifier: GPL-3.0-or-later
#include "AlbumTestSupport.h"
#include "TSFilesAlbum.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QThread>

namespace {

class FilesAlbumTest : public ::testing::Test {
protected:
    TSMetaDataObservable& hub = TSEnvironment::observable();
    std::shared_ptr<TSFilesAlbum> album = std::make_shared<TSFilesAlbum>();
    Recorder screen;
    QString corpus = testsupport::corpusDir();
    QStringList files{corpus + "/jpeg/Canon_40D.jpg", corpus + "/heif/Stonehenge.heic",
                      corpus + "/video/apple_meta.mov"};

    void SetUp() override {
        spin();
        hub.download = DownloadLevel::none;
        TSEnvironment::setCurrentAlbum(album);
        screen.ignored = {"rows"};
        hub.addObserver(&screen);
        album->addGroupObserver(&screen);
    }
    void TearDown() override {
        TSEnvironment::setCurrentAlbum(nullptr);
    }
};

TEST_F(FilesAlbumTest, OnAPhoneNothingLoadsUntilAnItemIsChosen) {
    album->loadBookmarks({});  // an empty pick tells nobody
    spin();
    EXPECT_TRUE(screen.heard.isEmpty());
    EXPECT_EQ(hub.download, DownloadLevel::none);

    album->loadBookmarks(files);
    EXPECT_EQ(album->count(), 3);
    EXPECT_FALSE(album->hasValidIndex());
    EXPECT_FALSE(album->currentAsset);
    EXPECT_EQ(screen.heard, QStringList{"reload changed"});
    EXPECT_EQ(hub.download, DownloadLevel::done);
    spin();
    EXPECT_EQ(screen.heard, (QStringList{"reload changed", "done"}));
    EXPECT_EQ(screen.lastAlbum, album);
}

TEST_F(FilesAlbumTest, OnAPadTheFirstItemLoadsAtOnce) {
    album->loadBookmarks(files, true);
    ASSERT_TRUE(album->currentAsset);
    EXPECT_EQ(album->displayedIndex, 0);
    EXPECT_EQ(album->currentAsset->path(), files[0]);
    EXPECT_EQ(screen.heard, (QStringList{"begin", "reload changed"}));
    spin();
    EXPECT_EQ(screen.heard, (QStringList{"begin", "reload changed", "processed", "done"}));
}

TEST_F(FilesAlbumTest, ChoosingAnItemBuildsItsRowsAndTellsProcessedOnTheNextTurn) {
    album->loadBookmarks(files);
    spin();
    screen.heard.clear();

    album->setActualIndex(1);
    ASSERT_TRUE(album->currentAsset);
    EXPECT_EQ(album->currentAsset->ddStore().value(TSKey::NAME).first, "Stonehenge.heic");
    EXPECT_EQ(screen.heard, QStringList{"begin"});
    spin();
    EXPECT_EQ(screen.heard, (QStringList{"begin", "processed"}));
    EXPECT_EQ(screen.lastAlbum, album);

    // The same item again: processed at once, from the asset already built.
    const auto asset = album->currentAsset;
    screen.heard.clear();
    album->setActualIndex(1);
    EXPECT_EQ(screen.heard, (QStringList{"begin", "processed"}));
    EXPECT_EQ(album->currentAsset, asset);
    spin();
    EXPECT_EQ(screen.heard.size(), 2);

    // Chosen from inside a delivery, the notifications still come, each once.
    screen.heard.clear();
    bool chosen = false;
    screen.onHear = [&](const QString&) {
        if (!std::exchange(chosen, true)) album->setActualIndex(2);
    };
    hub.sendMetaData(MetaSelector::liveReady);
    spin();
    EXPECT_EQ(screen.heard.count("begin"), 1);
    EXPECT_EQ(screen.heard.count("processed"), 1);
    EXPECT_TRUE(album->currentAsset->isVideo());
}

TEST_F(FilesAlbumTest, IndexesOutsideTheListAreClampedAndMissingFilesShowNothing) {
    album->loadBookmarks(files);
    album->setActualIndex(7);
    EXPECT_EQ(album->displayedIndex, 2);
    EXPECT_EQ(album->currentAsset->path(), files[2]);
    album->setActualIndex(-3);
    EXPECT_EQ(album->displayedIndex, 0);
    EXPECT_EQ(album->currentAsset->path(), files[0]);

    // A copy is dated by the time it carries, not by when it landed here.
    QTemporaryDir dir;
    const QString gone = dir.filePath("gone.jpg");
    ASSERT_TRUE(QFile::copy(files[0], gone));
    const QDateTime taken(QDate(2019, 7, 14), QTime(9, 30));
    QFile copy(gone);
    ASSERT_TRUE(copy.open(QIODevice::ReadWrite) && copy.setFileTime(taken, QFileDevice::FileModificationTime));
    copy.close();
    album->loadBookmarks({gone});
    EXPECT_EQ(album->date(0), taken);
    ASSERT_TRUE(QFile::remove(gone));
    album->setActualIndex(0);
    EXPECT_FALSE(album->hasValidIndex());
    EXPECT_FALSE(album->currentAsset);
    EXPECT_FALSE(album->imageUrl(0));
    EXPECT_FALSE(album->date(0));
}

TEST_F(FilesAlbumTest, ImagesAreMadeOffTheGuiThreadAndHandedBackOnIt) {
    QTemporaryDir dir;
    const QString broken = dir.filePath("broken.jpg");
    QFile out(broken);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("\xFF\xD8\xFF\xE0 not really a JPEG");
    out.close();
    album->loadBookmarks(files + QStringList{broken});

    struct Answer {
        QImage image;
        bool degraded = true;
        bool onGuiThread = false;
    };
    QMap<int, Answer> answers;
    QSet<qint32> ids;
    for (int i = 0; i < album->count() + 1; ++i)
        ids << album->requestImage(i, {120, 80}, [&answers, i](const QImage& image, bool degraded) {
            answers[i] = {image, degraded, QThread::currentThread() == QCoreApplication::instance()->thread()};
        });
    EXPECT_EQ(ids.size(), album->count() + 1);  // one identifier per request
    ASSERT_TRUE(QTest::qWaitFor([&] { return answers.size() == album->count() + 1; }, 20000));
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(files[i].toStdString());
        EXPECT_FALSE(answers[i].image.isNull());
        EXPECT_LE(qMax(answers[i].image.width(), answers[i].image.height()), 120);
        EXPECT_FALSE(answers[i].degraded);
        EXPECT_TRUE(answers[i].onGuiThread);
    }
    EXPECT_TRUE(answers[3].image.isNull());  // not decodable
    EXPECT_TRUE(answers[4].image.isNull());  // past the end
    EXPECT_TRUE(answers[4].onGuiThread);
}

}  // namespace
