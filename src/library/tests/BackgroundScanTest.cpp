// SPDX-License-Identifier: GPL-3.0-or-later
// The first scan on a worker thread, written batch by batch: the same library in the end as one
// synchronous scan, items fetchable while it runs, and a stop that leaves a sound index.
#include "FileFacts.h"
#include "LibraryFixture.h"

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <unistd.h>

using namespace library;

namespace {

// Photos of two dates, a movie that makes some of them live photos and a raw file that joins
// others: with batches of a few files, partners land in different batches.
const QStringList sources{"jpeg/Canon_40D.jpg", "jpeg/Nikon_D70.jpg", "video/small_video.mp4", "tiff/IMG_1361.dng"};
constexpr int photos = 300;
constexpr int smallBatch = 7;

// Each item as its files relative to `root`, in order, with its type and date: what identifiers
// and machines don't change. Sorted, as items of one date come in the order of their identifiers.
std::string shapeOf(const FetchResult& r, const QString& root) {
    QStringList items;
    for (const Asset& a : r.assets()) {
        QStringList files;
        for (const Resource& res : a.resources) files << QDir(root).relativeFilePath(res.path);
        items << QStringLiteral("%1 %2 %3 %4")
                     .arg(files.join(','))
                     .arg(int(a.mediaType))
                     .arg(a.mediaSubtypes)
                     .arg(a.creationDate.toString(Qt::ISODateWithMs));
    }
    items.sort();
    return items.join('\n').toStdString();
}

class BackgroundScanTest : public LibraryFixture {
protected:
    void SetUp() override {
        LibraryFixture::SetUp();
        own = ownCopies(sources);
        ASSERT_FALSE(HasFailure());
        fill(root());
    }
    // f0.jpg ... in folders of 50, every third with f<i>.mp4 beside it, every fifth with f<i>.dng.
    void fill(const QString& folder) {
        files = 0;
        for (int i = 0; i < photos; ++i) {
            const QString dir = QStringLiteral("%1/%2").arg(folder).arg(i / 50);
            if (i % 50 == 0) ASSERT_TRUE(QDir().mkpath(dir));
            auto put = [&](const QString& source, const QString& ext) {
                const QString target = QStringLiteral("%1/f%2.%3").arg(dir).arg(i).arg(ext);
                ASSERT_EQ(link(QFile::encodeName(source).constData(), QFile::encodeName(target).constData()), 0);
                ++files;
            };
            put(own[i % 2], "jpg");
            if (i % 3 == 0) put(own[2], "mp4");
            if (i % 5 == 0) put(own[3], "dng");
        }
    }
    // Runs the event loop until the scan ends and what it sent here has arrived.
    static ScanReport finish(QFuture<ScanReport> future) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return future.isFinished(); }, 120000));
        QCoreApplication::processEvents();
        return future.result();
    }
    FetchOptions everything{SortOrder::creationDateAscending, std::nullopt, true};
    QStringList own;
    int files = 0;
};

TEST_F(BackgroundScanTest, BatchedScanEndsWithTheLibraryAndChangeDetailsOfOneSynchronousScan) {
    // The same files in a second folder, indexed in one synchronous scan by a library of its own.
    const QString other = path("other");
    fill(other);
    Library once({other}, path("data/other.sqlite"));
    const FetchResult onceBefore = once.fetchAssets(everything);
    ASSERT_EQ(once.scan().filesRead, files);
    const ChangeDetails onceDetails = once.changeDetails(onceBefore);

    const FetchResult before = lib->fetchAssets(everything);
    const ScanReport report = finish(lib->scanInBackground(smallBatch));
    EXPECT_EQ(report.filesRead, files);
    EXPECT_FALSE(report.cancelled);
    EXPECT_TRUE(report.indexError.isEmpty()) << report.indexError.toStdString();
    const ChangeDetails details = lib->changeDetails(before);

    // 300 photos; every third is live, every fifth holds a raw file: 300 items of 300 + 100 + 60 files.
    ASSERT_EQ(files, 460);
    EXPECT_EQ(lib->fetchAssets(everything).count(), photos);
    EXPECT_EQ(shapeOf(lib->fetchAssets(everything), root()), shapeOf(once.fetchAssets(everything), other));
    EXPECT_EQ(shapeOf(details.fetchResultAfterChanges, root()), shapeOf(onceDetails.fetchResultAfterChanges, other));
    EXPECT_EQ(details.insertedIndexes, onceDetails.insertedIndexes);
    EXPECT_EQ(details.insertedIndexes.size(), photos);
    EXPECT_TRUE(details.removedIndexes.isEmpty());
    EXPECT_TRUE(details.changedIndexes.isEmpty());
    // Nothing is left for the next scan to read.
    EXPECT_EQ(lib->scan().filesRead, 0);
    EXPECT_EQ(lib->lastScanReport().filesUnchanged, files);
}

TEST_F(BackgroundScanTest, ItemsAppearBatchByBatchWithProgressThatAddsUp) {
    FetchResult shown = lib->fetchAssets(everything);
    QList<qsizetype> counts;
    bool detailsMatch = true;
    QObject::connect(lib.get(), &Library::libraryDidChange, lib.get(), [&] {
        const ChangeDetails d = lib->changeDetails(shown);
        // A movie or raw file that joins a shown photo changes it; nothing goes.
        detailsMatch = detailsMatch && d.removedIndexes.isEmpty() &&
                       d.fetchResultAfterChanges.count() == shown.count() + d.insertedIndexes.size();
        shown = d.fetchResultAfterChanges;
        counts << shown.count();
    });
    QSignalSpy progress(lib.get(), &Library::scanProgress);
    const ScanReport report = finish(lib->scanInBackground(50));
    EXPECT_EQ(report.filesRead, files);
    EXPECT_TRUE(detailsMatch);
    // 460 files in batches of 50, or a quarter of those written once that is more: 50, 50, 50,
    // 50, 50, 62, 78 and the last 70; the items growing with each, the last all of them.
    ASSERT_EQ(counts.size(), 8);
    EXPECT_GT(counts.first(), 0);
    EXPECT_LT(counts.first(), photos);
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()));
    EXPECT_EQ(counts.last(), photos);
    EXPECT_EQ(shown.count(), lib->fetchAssets(everything).count());

    ASSERT_GE(progress.size(), 2);
    int lastRead = -1;
    for (const QList<QVariant>& p : progress) {
        EXPECT_EQ(p.at(0).toInt(), files);  // all of them new
        EXPECT_EQ(p.at(1).toInt() + p.at(2).toInt(), files);
        EXPECT_GE(p.at(1).toInt(), lastRead);
        lastRead = p.at(1).toInt();
    }
    EXPECT_EQ(progress.first().at(1).toInt(), 0);
    EXPECT_EQ(progress.last().at(1).toInt(), files);
}

TEST_F(BackgroundScanTest, AScanOfTheAppMeanwhileLeavesTheFilesToTheBackgroundOne) {
    QList<int> readMeanwhile;
    bool scanned = false;
    QObject::connect(lib.get(), &Library::libraryDidChange, lib.get(), [&] {
        if (std::exchange(scanned, true)) return;
        readMeanwhile << lib->scan().filesRead;
    });
    const ScanReport report = finish(lib->scanInBackground(smallBatch));
    ASSERT_FALSE(readMeanwhile.isEmpty());
    EXPECT_EQ(readMeanwhile.first(), 0);
    EXPECT_EQ(report.filesRead, files);
    // One item per photo: no file was given two.
    EXPECT_EQ(lib->fetchAssets(everything).count(), photos);
}

TEST_F(BackgroundScanTest, StoppedMidwayItKeepsWholeBatchesAndTheNextScanReadsTheRest) {
    // Stopped at the first batch's notice: the worker may have written a few more by then, not
    // all of them.
    QObject::connect(lib.get(), &Library::libraryDidChange, lib.get(), [&] { lib->cancelBackgroundScan(); });
    QFuture<ScanReport> future = lib->scanInBackground(10);
    const ScanReport stopped = finish(future);
    EXPECT_TRUE(stopped.cancelled);
    ASSERT_GT(stopped.filesRead, 0);
    ASSERT_LT(stopped.filesRead, files);

    // What is in the index is sound: every item's files are there and whole, and a library
    // opened anew sees the same.
    const FetchResult part = lib->fetchAssets(everything);
    qsizetype indexed = 0;
    for (const Asset& a : part.assets()) {
        EXPECT_FALSE(a.resources.isEmpty());
        for (const Resource& r : a.resources) EXPECT_TRUE(QFileInfo::exists(r.path)) << r.path.toStdString();
        indexed += a.resources.size();
    }
    EXPECT_EQ(indexed, stopped.filesRead);
    reopen();
    EXPECT_EQ(lib->fetchAssets(everything).count(), part.count());

    const ScanReport rest = lib->scan();
    EXPECT_EQ(rest.filesRead, files - stopped.filesRead);
    EXPECT_EQ(rest.filesUnchanged, stopped.filesRead);
    EXPECT_EQ(lib->fetchAssets(everything).count(), photos);
}

TEST_F(BackgroundScanTest, ALostIndexReadInBatchesTakesEveryIdentifierAndMarkBackFromTheJournal) {
    ASSERT_EQ(lib->scan().filesRead, files);
    QHash<QString, QString> before;  // main file to identifier
    for (const Asset& a : lib->fetchAssets(everything).assets()) before.insert(a.resources.first().path, a.localIdentifier);
    const Asset last = QList<Asset>(lib->fetchAssets(everything).assets()).last();
    ASSERT_TRUE(lib->setFavorite(last.localIdentifier, true));
    lib.reset();
    ASSERT_TRUE(QFile::remove(database()));
    QFile::remove(database() + "-wal");
    QFile::remove(database() + "-shm");

    reopen();
    const ScanReport report = finish(lib->scanInBackground(smallBatch));
    EXPECT_EQ(report.filesRead, files);
    QHash<QString, QString> after;
    for (const Asset& a : lib->fetchAssets(everything).assets()) after.insert(a.resources.first().path, a.localIdentifier);
    EXPECT_EQ(after, before);
    ASSERT_TRUE(lib->asset(last.localIdentifier).has_value());
    EXPECT_TRUE(lib->asset(last.localIdentifier)->favorite);
    // And the journal still holds them all for the next time.
    lib.reset();
    ASSERT_TRUE(QFile::remove(database()));
    QFile::remove(database() + "-wal");
    QFile::remove(database() + "-shm");
    reopen();
    lib->scan();
    after.clear();
    for (const Asset& a : lib->fetchAssets(everything).assets()) after.insert(a.resources.first().path, a.localIdentifier);
    EXPECT_EQ(after, before);
}

TEST_F(BackgroundScanTest, DestroyingTheLibraryStopsItsScan) {
    QFuture<ScanReport> future = lib->scanInBackground(5);
    lib.reset();
    EXPECT_TRUE(future.isFinished());
    reopen();
    const ScanReport rest = lib->scan();
    EXPECT_EQ(rest.filesRead + rest.filesUnchanged, files);
    EXPECT_EQ(lib->fetchAssets(everything).count(), photos);
}

}  // namespace

// The first bytes' hash the index and the journals keep from earlier versions: SHA-1 of the
// first 64 KiB, as sha1sum gives it, for a file longer and one shorter than that.
TEST_F(BackgroundScanTest, HeadsAreTheSha1OfTheFirst64KiB) {
    const QString longer = path("longer.jpg");
    QFile out(longer);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    QByteArray bytes(100000, '\0');
    for (int i = 0; i < bytes.size(); ++i) bytes[i] = char(i * 7 % 251);
    out.write(bytes);
    out.close();
    for (const QString& file : {longer, own[0]}) {
        QProcess sha;
        sha.start("sh", {"-c", "head -c 65536 \"$1\" | sha1sum", "sh", file});
        ASSERT_TRUE(sha.waitForFinished(30000));
        const QString expected = QString::fromLatin1(sha.readAllStandardOutput()).section(' ', 0, 0);
        ASSERT_EQ(expected.size(), 40);
        EXPECT_EQ(headHash(file), expected) << file.toStdString();
    }
}
