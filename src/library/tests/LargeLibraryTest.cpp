// SPDX-License-Identifier: GPL-3.0-or-later
// A library of ten thousand items, made fast with hard links of three photos of different dates:
// what one change says and what it reads.
#include "FileFacts.h"
#include "LibraryFixture.h"
#include "Rows.h"

#include <QFile>
#include <unistd.h>

using namespace library;

namespace {

constexpr int items = 10000;
const QStringList sources{"jpeg/Canon_40D.jpg", "jpeg/Nikon_D70.jpg", "jpeg/Fujifilm_FinePix_E500.jpg"};

QStringList identifiers(const FetchResult& r) {
    QStringList ids;
    for (const Asset& a : r.assets()) ids << a.localIdentifier;
    return ids;
}

class LargeLibraryTest : public LibraryFixture {
protected:
    void SetUp() override {
        LibraryFixture::SetUp();
        own = ownCopies(sources);
        ASSERT_FALSE(HasFailure());
        for (int i = 0; i < items; ++i) {
            const QString folder = folderOf(i);
            if (i % 100 == 0) ASSERT_TRUE(QDir().mkpath(folder));
            ASSERT_EQ(link(QFile::encodeName(own[i % own.size()]).constData(), QFile::encodeName(file(i)).constData()), 0)
                << file(i).toStdString();
        }
        ASSERT_EQ(lib->scan().filesRead, items);
    }
    QString folderOf(int i) const { return QStringLiteral("%1/%2").arg(root()).arg(i / 100, 3, 10, QChar('0')); }
    QString file(int i) const { return QStringLiteral("%1/f%2.jpg").arg(folderOf(i)).arg(i); }
    // Puts another photo, of another date and size, in place of item `i`: a new file, not a
    // write through the link every other item shares.
    void replace(int i, const QString& by) {
        const QString temporary = folderOf(i) + "/.replacing";
        ASSERT_TRUE(QFile::copy(by, temporary));
        ASSERT_EQ(::rename(QFile::encodeName(temporary).constData(), QFile::encodeName(file(i)).constData()), 0);
    }
    QStringList own;
};

TEST_F(LargeLibraryTest, ChangeDetailsOfEachChangeEqualThoseOfAWholeComparison) {
    const FetchOptions byDate{SortOrder::creationDateDescending, std::nullopt, false};
    struct Expected { qsizetype removed, inserted, changed, moves; };
    auto check = [&](const char* what, const std::function<void()>& change, Expected expected) {
        SCOPED_TRACE(what);
        const FetchResult before = lib->fetchAssets(byDate);
        ASSERT_GE(before.count(), items - 1);
        auto versions = [](const FetchResult& r) {
            QList<qint64> v;
            for (const Asset& a : r.assets()) v << a.version;
            return v;
        };
        const QList<qint64> versionsBefore = versions(before);
        change();
        lib->scan();
        const ChangeDetails incremental = lib->changeDetails(before);
        // A result is a snapshot: the items it shares with the library stay as they were.
        EXPECT_EQ(versions(before), versionsBefore);
        // A library opened anew has nothing loaded or kept: its result is made whole, and the
        // details from comparing every item.
        Library anew({root()}, database());
        const ChangeDetails whole = library::changeDetails(before, anew.fetchAssets(byDate));
        EXPECT_EQ(identifiers(incremental.fetchResultAfterChanges), identifiers(whole.fetchResultAfterChanges));
        EXPECT_EQ(incremental.removedIndexes, whole.removedIndexes);
        EXPECT_EQ(incremental.insertedIndexes, whole.insertedIndexes);
        EXPECT_EQ(incremental.changedIndexes, whole.changedIndexes);
        EXPECT_EQ(incremental.moves, whole.moves);
        EXPECT_EQ(incremental.removedIndexes.size(), expected.removed);
        EXPECT_EQ(incremental.insertedIndexes.size(), expected.inserted);
        EXPECT_EQ(incremental.changedIndexes.size(), expected.changed);
        EXPECT_EQ(incremental.moves.size(), expected.moves);
        // And the next fetch is the result the details end in.
        EXPECT_EQ(identifiers(lib->fetchAssets(byDate)), identifiers(whole.fetchResultAfterChanges));
    };
    check("insert", [&] { ASSERT_TRUE(QFile::copy(own[1], folderOf(4242) + "/new.jpg")); }, {0, 1, 0, 0});
    check("removal", [&] { ASSERT_TRUE(QFile::remove(file(17))); }, {1, 0, 0, 0});
    // Kept as the same item, whose version grows: changed, in its place.
    check("rename", [&] { ASSERT_TRUE(QFile::rename(file(5000), folderOf(5000) + "/renamed.jpg")); }, {0, 0, 1, 0});
    // A Canon photo of 2008 becomes a Fujifilm one of 2006: changed, and moved among the others.
    check("change", [&] { replace(3, own[2]); }, {0, 0, 1, 1});
    check("favourite", [&] { ASSERT_TRUE(lib->setFavorite(identifiers(lib->fetchAssets(byDate)).at(10), true)); }, {0, 0, 1, 0});
}

TEST_F(LargeLibraryTest, AChangedFileIsTheOnlyOneRead) {
    qint64 read = filesReadSoFar();
    EXPECT_EQ(lib->scan().filesRead, 0);
    EXPECT_EQ(filesReadSoFar() - read, 0) << "nothing changed, nothing read";

    replace(123, own[2]);
    read = filesReadSoFar();
    const ScanReport full = lib->scan();
    EXPECT_EQ(full.filesRead, 1);
    EXPECT_EQ(full.filesUnchanged, items - 1);
    // Its metadata, and its first bytes to know it again when it moves.
    EXPECT_EQ(filesReadSoFar() - read, 2);

    // The watcher's scan of the one folder that changed.
    replace(9876, own[1]);
    read = filesReadSoFar();
    const ScanReport folder = lib->scan({folderOf(9876)}, {});
    EXPECT_EQ(folder.filesRead, 1);
    EXPECT_EQ(folder.filesUnchanged, 99);
    EXPECT_EQ(filesReadSoFar() - read, 2);
}

TEST_F(LargeLibraryTest, ARescanOfAWatchedLibraryListsOnlyTheFoldersThatChanged) {
    const int folders = items / 100 + 1;  // and the root
    lib->startWatching();
    // The first scan under the watch lists every folder; from then on the watch tells.
    qint64 listed = foldersListedSoFar();
    EXPECT_EQ(lib->scan().filesUnchanged, items);
    EXPECT_EQ(foldersListedSoFar() - listed, folders);
    listed = foldersListedSoFar();
    EXPECT_EQ(lib->scan().filesUnchanged, 0);
    EXPECT_EQ(foldersListedSoFar() - listed, 0) << "nothing changed, no folder listed";

    // A photo replaced and one added, scanned before the watcher has told: the scan takes its news.
    replace(123, own[2]);
    ASSERT_TRUE(QFile::copy(own[1], folderOf(4242) + "/new.jpg"));
    listed = foldersListedSoFar();
    const qint64 read = filesReadSoFar();
    ScanReport r = lib->scan();
    EXPECT_EQ(foldersListedSoFar() - listed, 2);
    EXPECT_EQ(r.filesRead, 2);
    EXPECT_EQ(r.filesUnchanged, 99 + 100);
    EXPECT_EQ(filesReadSoFar() - read, 4) << "each new or changed file's metadata and first bytes";
    EXPECT_TRUE(lib->assetForPath(folderOf(4242) + "/new.jpg"));
    listed = foldersListedSoFar();
    EXPECT_EQ(lib->scan().filesRead, 0);
    EXPECT_EQ(foldersListedSoFar() - listed, 0);

    // A folder made and one removed: the root that holds them is listed again, the two told of.
    ASSERT_TRUE(QDir(folderOf(500)).removeRecursively());
    ASSERT_TRUE(QDir().mkpath(root() + "/Trip"));
    ASSERT_TRUE(QFile::copy(own[0], root() + "/Trip/a.jpg"));
    listed = foldersListedSoFar();
    r = lib->scan();
    EXPECT_EQ(r.filesRemoved, 100);
    EXPECT_EQ(r.filesRead, 1);
    EXPECT_EQ(foldersListedSoFar() - listed, 2) << "the root and Trip";

    // Unwatched, a rescan can't know what changed: it lists every folder, and finds a folder
    // that went by its parent's listing.
    lib->stopWatching();
    ASSERT_TRUE(QDir(folderOf(600)).removeRecursively());
    listed = foldersListedSoFar();
    r = lib->scan();
    EXPECT_EQ(r.filesRemoved, 100);
    EXPECT_EQ(r.filesUnchanged, items - 200 + 2);
    EXPECT_EQ(foldersListedSoFar() - listed, folders - 2 + 1);
    EXPECT_EQ(lib->fetchAssets().count(), items - 200 + 2);
}

}  // namespace
