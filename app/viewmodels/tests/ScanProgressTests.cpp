// SPDX-License-Identifier: GPL-3.0-or-later
// The library read in the background as the app opens it: the progress line's numbers, the
// album list growing while it runs, and other folders chosen midway.
#include "AlbumListViewModel.h"
#include "Albums.h"
#include "AppModels.h"
#include "Isolation.h"
#include "Library.h"
#include "ScanProgressViewModel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTest>
#include <unistd.h>

namespace {

// Batches of 1,000 files or more: three of them.
constexpr int photos = 2500;

class ScanProgressScreen : public testsupport::IsolatedTest {
protected:
    QString root;
    std::unique_ptr<AppModels> models;

    void SetUp() override {
        root = isolation().root() + "/Pictures";
        // Hard links of our own copy of two photos of different dates, in folders of 100.
        QDir().mkpath(isolation().root() + "/sources");
        QStringList own;
        for (const QString s : {"jpeg/Canon_40D.jpg", "jpeg/Nikon_D70.jpg"}) {
            own << isolation().root() + "/sources/" + QFileInfo(s).fileName();
            ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + '/' + s, own.last()));
        }
        for (int i = 0; i < photos; ++i) {
            const QString dir = QStringLiteral("%1/%2").arg(root).arg(i / 100);
            if (i % 100 == 0) ASSERT_TRUE(QDir().mkpath(dir));
            const QString target = QStringLiteral("%1/p%2.jpg").arg(dir).arg(i);
            ASSERT_EQ(link(QFile::encodeName(own[i % 2]).constData(), QFile::encodeName(target).constData()), 0);
        }
        TSEnvironment::setCurrentAlbum(nullptr);
        models = std::make_unique<AppModels>();
    }
    void TearDown() override {
        models.reset();
        TSEnvironment::setCurrentAlbum(nullptr);
    }
    int allPhotosCount() {
        const AlbumListViewModel& list = *models->albumList;
        if (list.rowCount() == 0 || list.data(list.index(0), AlbumListViewModel::TitleRole) != "All Photos") return 0;
        return list.data(list.index(0), AlbumListViewModel::CountRole).toInt();
    }
};

}  // namespace

TEST_F(ScanProgressScreen, ProgressAddsUpAndTheAlbumListGrowsWhileTheLibraryIsRead) {
    ScanProgressViewModel& progress = *models->scanProgress;
    struct Seen { int seen, read, left, listed; };
    QList<Seen> steps;
    QObject::connect(&progress, &ScanProgressViewModel::changed, [&] {
        if (progress.running()) steps << Seen{progress.seen(), progress.read(), progress.left(), allPhotosCount()};
    });
    models->openLibrary({root}, false, true);
    EXPECT_TRUE(progress.running());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !progress.running(); }, 120000));
    EXPECT_TRUE(progress.text().isEmpty());

    ASSERT_GE(steps.size(), 2);
    int lastRead = 0;
    bool partlyListed = false;
    for (const Seen& s : steps) {
        if (s.read + s.left == 0) continue;  // still looking
        EXPECT_EQ(s.seen, photos);
        EXPECT_EQ(s.read + s.left, photos);
        EXPECT_GE(s.read, lastRead);
        lastRead = s.read;
        // The list shows what is written, which is never more than what is read.
        EXPECT_LE(s.listed, s.read);
        partlyListed = partlyListed || (s.listed > 0 && s.listed < photos);
    }
    EXPECT_EQ(lastRead, photos);
    EXPECT_TRUE(partlyListed) << "items listed before the scan ended";
    EXPECT_EQ(allPhotosCount(), photos);
}

TEST_F(ScanProgressScreen, TheLineSaysHowFarInWords) {
    ScanProgressViewModel& progress = *models->scanProgress;
    QStringList texts;
    QObject::connect(&progress, &ScanProgressViewModel::changed, [&] {
        if (progress.running()) texts << progress.text();
    });
    models->openLibrary({root}, false, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !progress.running(); }, 120000));
    EXPECT_TRUE(progress.text().isEmpty());
    // Numbers as the locale writes them.
    const QString all = QLocale().toString(photos);
    ASSERT_FALSE(texts.isEmpty());
    EXPECT_EQ(texts.first(), "Looking for photos...");
    EXPECT_TRUE(texts.contains(QStringLiteral("%1 files found, 0 read, %1 left").arg(all))) << texts.join(" | ").toStdString();
    EXPECT_EQ(texts.last(), QStringLiteral("%1 files found, %1 read, 0 left").arg(all));
}

TEST_F(ScanProgressScreen, OtherFoldersChosenMidwayStopTheFirstScanAndReadTheirOwn) {
    models->openLibrary({root}, false, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return models->scanProgress->read() > 0; }, 120000));
    const QString other = root + "/7";  // 100 of the photos
    models->openLibrary({other}, false, true);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !models->scanProgress->running(); }, 120000));
    EXPECT_EQ(models->library->folders(), QStringList{other});
    EXPECT_TRUE(models->library->assetForPath(other + "/p700.jpg").has_value());
    // The first library's index, opened again, is sound and its next scan reads the rest.
    models->openLibrary({root}, false, false);
    EXPECT_EQ(allPhotosCount(), photos);
    EXPECT_EQ(models->library->lastScanReport().filesRead + models->library->lastScanReport().filesUnchanged, photos);
}
