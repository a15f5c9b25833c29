// SPDX-License-Identifier: GPL-3.0-or-later
// The index over real files: what a scan finds, grouping, identifiers that last, fetches,
// collections, change details and the faults a library folder meets.
#include "FileFacts.h"
#include "CameraFiles.h"
#include "LibraryFixture.h"
#include "ThumbnailCache.h"

#include <QSignalSpy>
#include <QTimeZone>
#include <sqlite3.h>
#include <sys/stat.h>

using namespace library;

namespace {

QStringList typesOf(const Asset& a) {
    QStringList out;
    for (const auto& r : a.resources) out << resourceTypeText(r.type);
    return out;
}

void touch(const QString& file, qint64 secondsLater) {
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    f.setFileTime(QFileInfo(file).lastModified().addSecs(secondsLater), QFileDevice::FileModificationTime);
}

}  // namespace

TEST_F(LibraryFixture, ScanOfTheCorpusReadsEveryFileOnceAndSurvivesBrokenOnes) {
    const QString corpus = testsupport::corpusDir();
    QStringList files = testsupport::corpusFiles() + testsupport::malformedFiles();
    int held = 0;
    for (const QString& f : files) {
        if (!hasMediaName(f)) continue;
        add(QDir(corpus).relativeFilePath(f), QDir(corpus).relativeFilePath(f));
        ++held;
    }
    ASSERT_GT(held, 60) << "the corpus is partial";
    ScanReport first = lib->scan();
    EXPECT_EQ(first.filesRead, held);
    // No two corpus files share a folder and base name, so each is its own asset, broken or not.
    EXPECT_EQ(lib->fetchAssets(FetchOptions{SortOrder::creationDateAscending, std::nullopt, true}).count(), held);

    ScanReport again = lib->scan();
    EXPECT_EQ(again.filesRead, 0);
    EXPECT_EQ(again.filesUnchanged, held);

    // Values as exiftool and ffprobe read them.
    Asset heic = assetOf(root() + "/heif/IMG_5195.HEIC");
    EXPECT_EQ(heic.creationDate, QDateTime(QDate(2021, 4, 11), QTime(20, 47, 53), Qt::UTC));  // 15:47:53 -05:00
    EXPECT_EQ(heic.creationDate.offsetFromUtc(), -5 * 3600);
    EXPECT_EQ(heic.mediaType, MediaType::image);
    Asset gps = assetOf(root() + "/jpeg/gps/DSCN0010.jpg");
    ASSERT_TRUE(gps.location.has_value());
    EXPECT_NEAR(gps.location->latitude, 43.4674483, 1e-6);
    EXPECT_NEAR(gps.location->longitude, 11.8851267, 1e-6);
    Asset turned = assetOf(root() + "/jpeg/orientation/portrait_6.jpg");
    EXPECT_EQ(turned.pixelWidth, 450);  // 600x450 stored, turned a quarter
    EXPECT_EQ(turned.pixelHeight, 600);
    Asset movie = assetOf(root() + "/video/sample_640x360.mov");
    EXPECT_EQ(movie.mediaType, MediaType::video);
    EXPECT_NEAR(movie.duration, 13.347, 0.01);
    EXPECT_EQ(typesOf(movie), QStringList{"Original Video"});
    EXPECT_EQ(assetOf(root() + "/jpeg/iphone_hdr_YES.jpg").mediaSubtypes & 2, 2);  // HDR
    EXPECT_EQ(assetOf(root() + "/portrait/image-with-matte.jpg").mediaSubtypes & 16, 16);  // depth effect
    EXPECT_EQ(assetOf(root() + "/jpeg/Canon_40D.jpg").mediaSubtypes, 0);
}

TEST_F(LibraryFixture, UnreadableFileIsAnAssetWithWhatTheFileSystemKnows) {
    QFile junk(root() + "/junk.jpg");
    ASSERT_TRUE(junk.open(QIODevice::WriteOnly));
    junk.write("not a picture at all");
    junk.close();
    QFile empty(root() + "/empty.heic");
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    // Neither a link to nothing nor a pipe (which would block a reader) is taken for a file.
    ASSERT_TRUE(QFile::link(root() + "/nowhere.heic", root() + "/dangling.heic"));
    ASSERT_EQ(mkfifo((root() + "/pipe.jpg").toUtf8().constData(), 0600), 0);
    ScanReport r = lib->scan();
    EXPECT_EQ(r.problems.size(), 2) << r.problems.join('\n').toStdString();
    Asset a = assetOf(root() + "/junk.jpg");
    EXPECT_EQ(a.mediaType, MediaType::image);
    EXPECT_EQ(a.creationDate.toSecsSinceEpoch(), QFileInfo(root() + "/junk.jpg").lastModified().toSecsSinceEpoch());
    EXPECT_EQ(a.resources.value(0).fileSize, 20);
    EXPECT_EQ(lib->fetchAssets().count(), 2);
}

TEST_F(LibraryFixture, GroupsLivePhotosRawWithJpegAndKeepsOthersApart) {
    add("jpeg/Canon_40D.jpg", "IMG_0001.JPG");
    add("video/apple_meta.mov", "IMG_0001.MOV");
    add("jpeg/Nikon_D70.jpg", "DSC_1.jpg");
    add("tiff/IMG_1361.dng", "DSC_1.dng");
    add("jpeg/jolla.jpg", "Same.jpg");
    add("heif/Stonehenge.heic", "Same.heic");  // two pictures of one name stay two assets
    add("video/small_video.mp4", "clip.mp4");
    lib->scan();

    Asset live = assetOf(root() + "/IMG_0001.MOV");
    EXPECT_EQ(live.mediaType, MediaType::image);
    EXPECT_EQ(live.mediaSubtypes & 8, 8);
    EXPECT_EQ(typesOf(live), (QStringList{"Original Photo", "Original Live Photo"}));
    EXPECT_EQ(live.resources.at(0).originalFilename, "IMG_0001.JPG");

    Asset raw = assetOf(root() + "/DSC_1.dng");
    EXPECT_EQ(raw.resources.at(0).originalFilename, "DSC_1.jpg");
    EXPECT_EQ(typesOf(raw), (QStringList{"Original Photo", "Alternate Photo"}));

    EXPECT_NE(assetOf(root() + "/Same.jpg").localIdentifier, assetOf(root() + "/Same.heic").localIdentifier);
    EXPECT_EQ(lib->fetchAssets().count(), 5);
    EXPECT_EQ(lib->fetchAssets(FetchOptions{SortOrder::creationDateAscending, MediaType::video, false}).count(), 1);

    // The smart albums that hold something, and what they hold.
    QStringList smart;
    for (const auto& c : lib->smartAlbums()) smart << c.title;
    EXPECT_TRUE(smart.contains("Live Photos"));
    EXPECT_TRUE(smart.contains("RAW"));
    EXPECT_TRUE(smart.contains("Videos"));
    EXPECT_FALSE(smart.contains("Favorites"));
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:213")).count(), 1);
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:217")).objectAt(0).localIdentifier, raw.localIdentifier);
}

TEST_F(LibraryFixture, CameraFilesOfEveryNameAndCaseAreTakenByTheirBytes) {
    const QString corpus = testsupport::corpusDir();
    auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile f(root() + '/' + name);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    };
    const QByteArray heic = testsupport::readFile(corpus + "/heif/Stonehenge.heic");  // 300 x 200
    const QByteArray jpeg = testsupport::readFile(corpus + "/jpeg/Canon_40D.jpg");    // 100 x 68
    const QByteArray tiff = testsupport::readFile(corpus + "/tiff/Arbitro.tiff");     // 174 x 38
    const QByteArray dng = testsupport::readFile(corpus + "/tiff/IMG_1361.dng");      // 4032 x 3024, turned
    const QByteArray mov = testsupport::readFile(corpus + "/video/apple_meta.mov");
    const QByteArray mp4 = testsupport::readFile(corpus + "/video/small_video.mp4");
    // Name, bytes, and what the library must make of them: 'p' photo, 'r' raw photo, 'v' movie.
    struct Case { QString name; QByteArray bytes; char kind; int width; };
    QList<Case> cases;
    for (const QString& name : {"hif", "heic"}) cases << Case{"canon." + name, heic, 'p', 300};
    cases << Case{"sony.HIF", heic, 'p', 300} << Case{"phone.HEIC", heic, 'p', 300};
    for (const QString& name : {"jpg", "JPG", "jpeg", "JPEG"}) cases << Case{"shot." + name, jpeg, 'p', 100};
    for (const QString& name : {"tif", "TIF"}) cases << Case{"scan." + name, tiff, 'p', 174};
    for (const QString& name : {"dng", "DNG", "cr2", "CR2", "nef", "NEF", "arw", "ARW", "orf", "ORF", "rw2", "RW2"})
        cases << Case{"raw." + name, dng, 'r', 3024};
    for (const QString& name : {"cr3", "CR3"}) cases << Case{"eos." + name, testsupport::canonCr3(dng), 'r', 3024};
    // 2048 x 1536 turned a quarter, as exiftool reads it.
    const QByteArray raf = testsupport::fujifilmRaf(testsupport::readFile(corpus + "/jpeg/canon_hdr_YES.jpg"));
    for (const QString& name : {"raf", "RAF"}) cases << Case{"fuji." + name, raf, 'r', 1536};
    for (const QString& name : {"mov", "MOV"}) cases << Case{"clip." + name, mov, 'v', 0};
    for (const QString& name : {"mp4", "MP4", "m4v", "M4V", "3gp", "3GP"}) cases << Case{"clip." + name, mp4, 'v', 0};
    // The bytes, not the name, say what a file is: a HEIC named as a JPEG is read as one.
    cases << Case{"export.JPG", heic, 'p', 300};
    for (const Case& c : cases) write(c.name, c.bytes);
    // Files that hold a picture or a movie under a name that is not one: a camera's picture of its
    // movie, an editor's backup, a sidecar.
    write("clip.THM", jpeg);
    write("shot.jpg_original", jpeg);
    write("raw.xmp", "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>");

    const ScanReport report = lib->scan();
    EXPECT_EQ(report.filesRead, cases.size());
    // Every file is its own asset here: none shares a base name with a file of another kind.
    ASSERT_EQ(lib->fetchAssets().count(), cases.size());
    const FetchResult raws = lib->fetchAssets(QStringLiteral("smart:217"));
    const FetchResult videos = lib->fetchAssets(QStringLiteral("smart:202"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        const Asset a = assetOf(root() + '/' + c.name);
        EXPECT_EQ(a.mediaType, c.kind == 'v' ? MediaType::video : MediaType::image);
        EXPECT_EQ(raws.contains(a.localIdentifier), c.kind == 'r');
        EXPECT_EQ(videos.contains(a.localIdentifier), c.kind == 'v');
        if (c.width) EXPECT_EQ(a.pixelWidth, c.width);
    }
    EXPECT_TRUE(report.problems.isEmpty()) << report.problems.join('\n').toStdString();
    EXPECT_EQ(assetOf(root() + "/clip.3GP").duration, assetOf(root() + "/clip.mp4").duration);
    EXPECT_GT(assetOf(root() + "/clip.3GP").duration, 0);
    EXPECT_FALSE(lib->assetForPath(root() + "/clip.THM").has_value());
    EXPECT_FALSE(lib->assetForPath(root() + "/shot.jpg_original").has_value());
}

TEST_F(LibraryFixture, ARawAndItsPictureOfOneNameInAnyCaseAreOneAsset) {
    const QString corpus = testsupport::corpusDir();
    const QByteArray dng = testsupport::readFile(corpus + "/tiff/IMG_1361.dng");
    auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile f(root() + '/' + name);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    };
    write("IMG_0001.CR2", dng);
    add("jpeg/Canon_40D.jpg", "IMG_0001.JPG");
    write("dsc_0002.nef", dng);
    add("jpeg/Nikon_D70.jpg", "DSC_0002.jpg");
    write("IMG_0003.CR3", testsupport::canonCr3(dng));
    add("heif/Stonehenge.heic", "IMG_0003.HIF");
    write("P0004.RAF", testsupport::fujifilmRaf(testsupport::readFile(corpus + "/jpeg/canon_hdr_YES.jpg")));
    add("jpeg/jolla.jpg", "p0004.JPEG");
    lib->scan();
    ASSERT_EQ(lib->fetchAssets().count(), 4);
    const QList<std::pair<QString, QString>> pairs{{"IMG_0001.CR2", "IMG_0001.JPG"}, {"dsc_0002.nef", "DSC_0002.jpg"},
                                                   {"IMG_0003.CR3", "IMG_0003.HIF"}, {"P0004.RAF", "p0004.JPEG"}};
    for (const auto& [raw, picture] : pairs) {
        SCOPED_TRACE(raw.toStdString());
        const Asset a = assetOf(root() + '/' + raw);
        EXPECT_EQ(a.localIdentifier, assetOf(root() + '/' + picture).localIdentifier);
        // The picture shows the asset; the raw file is its alternate.
        EXPECT_EQ(typesOf(a), (QStringList{"Original Photo", "Alternate Photo"}));
        EXPECT_EQ(a.resources.value(0).originalFilename, picture);
        EXPECT_EQ(a.resources.value(1).originalFilename, raw);
    }
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:217")).count(), 4);
}

TEST_F(LibraryFixture, ThumbnailsOfTurnedPhotosAreUprightAtEverySizeAndInTheCache) {
    // Shown landscape whatever their orientation (stored turned where the tag turns them), and an
    // iPhone HEIC stored landscape that 'irot' and its orientation turn to portrait.
    QStringList landscape;
    for (int o = 1; o <= 8; ++o) landscape << add(QStringLiteral("jpeg/orientation/landscape_%1.jpg").arg(o), QStringLiteral("l%1.jpg").arg(o));
    const QString heic = add("heif/iphone_13_pro_max.HEIC", "IMG_0001.HEIC");
    // The group list's and grid's 60 and 256, the strip's and the full-screen view's larger ones.
    for (int side : {60, 128, 256, 600, 2048}) {
        SCOPED_TRACE(side);
        for (const QString& file : landscape) {
            const QImage image = thumbnails::forFile(file, side);
            EXPECT_GT(image.width(), image.height()) << file.toStdString();
            EXPECT_LE(image.width(), side);
        }
        const QImage portrait = thumbnails::forFile(heic, side);
        EXPECT_LT(portrait.width(), portrait.height());
        EXPECT_EQ(portrait.height(), side);
    }
    // What file managers read from the shared cache is upright too.
    for (int side : {128, 256}) {
        EXPECT_GT(QImage(thumbnails::cachePath(landscape[5], side)).width(), QImage(thumbnails::cachePath(landscape[5], side)).height());
        const QImage cached(thumbnails::cachePath(heic, side));
        EXPECT_EQ(cached.size(), QSize(side * 3 / 4, side));
    }
}

TEST_F(LibraryFixture, IdentifiersAndMarksLastThroughRenameMoveAndRescan) {
    const QString file = add("jpeg/Canon_40D.jpg", "a.jpg");
    add("jpeg/Nikon_D70.jpg", "b.jpg");
    lib->scan();
    const QString id = assetOf(file).localIdentifier;
    ASSERT_TRUE(lib->setFavorite(id, true));
    ASSERT_TRUE(lib->setHidden(assetOf(root() + "/b.jpg").localIdentifier, true));

    ASSERT_TRUE(QFile::rename(file, root() + "/renamed.jpg"));
    ScanReport r = lib->scan();
    EXPECT_EQ(r.filesMoved, 1);
    EXPECT_EQ(r.filesRead, 0);
    EXPECT_EQ(assetOf(root() + "/renamed.jpg").localIdentifier, id);

    QDir().mkpath(root() + "/Trip/Day 1");
    ASSERT_TRUE(QFile::rename(root() + "/renamed.jpg", root() + "/Trip/Day 1/moved.jpg"));
    lib->scan();
    reopen();  // a new process reads the same index
    Asset moved = assetOf(root() + "/Trip/Day 1/moved.jpg");
    EXPECT_EQ(moved.localIdentifier, id);
    EXPECT_TRUE(moved.favorite);

    // Hidden ones leave every fetch but the hidden album's.
    EXPECT_EQ(lib->fetchAssets().count(), 1);
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:205")).count(), 1);
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:203")).objectAt(0).localIdentifier, id);

    // Folders are the user albums; one with subfolders is a list.
    auto albums = lib->userCollections();
    ASSERT_EQ(albums.size(), 1);
    EXPECT_EQ(albums[0].title, "Trip");
    EXPECT_EQ(albums[0].type, CollectionType::folder);
    ASSERT_EQ(albums[0].children.size(), 1);
    EXPECT_EQ(lib->fetchAssets(albums[0].children[0].identifier).objectAt(0).localIdentifier, id);
    EXPECT_EQ(lib->album("Day 1")->identifier, albums[0].children[0].identifier);
}

TEST_F(LibraryFixture, ChangeDetailsTellRemovedInsertedChangedAndMoved) {
    // Taken in 2006, 2008-05, 2008-10 and 2018: the fetch sorts them so.
    const QString a = add("jpeg/Fujifilm_FinePix_E500.jpg", "a.jpg");
    const QString b = add("jpeg/Canon_40D.jpg", "b.jpg");
    const QString c = add("jpeg/gps/DSCN0010.jpg", "c.jpg");
    const QString d = add("jpeg/DSC_3079.jpg", "d.jpg");
    lib->scan();
    const FetchResult before = lib->fetchAssets();
    ASSERT_EQ(before.count(), 4);
    const QStringList order{assetOf(a).localIdentifier, assetOf(b).localIdentifier, assetOf(c).localIdentifier,
                            assetOf(d).localIdentifier};
    for (int i = 0; i < 4; ++i) ASSERT_EQ(before.objectAt(i).localIdentifier, order[i]);

    ASSERT_TRUE(QFile::remove(b));                              // removed: index 1 before
    add("heif/iphone_13_pro_max.HEIC", "e.heic");                // inserted: 2022, the last
    touch(c, 60);                                                // changed in place
    ASSERT_TRUE(lib->setFavorite(order[3], true));               // changed by a mark
    lib->scan();

    ChangeDetails details = lib->changeDetails(before);
    const FetchResult& after = details.fetchResultAfterChanges;
    EXPECT_TRUE(details.hasIncrementalChanges);
    EXPECT_EQ(details.removedIndexes, QList<qsizetype>{1});
    EXPECT_EQ(details.removedObjects.value(0).localIdentifier, order[1]);
    EXPECT_EQ(details.insertedIndexes, QList<qsizetype>{3});
    EXPECT_EQ(details.insertedObjects.value(0).resources.value(0).originalFilename, "e.heic");
    QStringList changed;
    for (qsizetype i : details.changedIndexes) changed << after.objectAt(i).localIdentifier;
    EXPECT_EQ(changed.size(), 2);
    EXPECT_TRUE(changed.contains(order[2]) && changed.contains(order[3]));
    EXPECT_FALSE(details.hasMoves());

    // A file replaced by one of another date (2018 becomes 2006) moves in the date order.
    const FetchResult second = lib->fetchAssets();
    QFile::remove(d);
    ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/jpeg/Fujifilm_FinePix_E500.jpg", d));
    lib->scan();
    ChangeDetails moved = lib->changeDetails(second);
    EXPECT_TRUE(moved.removedIndexes.isEmpty());
    EXPECT_TRUE(moved.insertedIndexes.isEmpty());
    ASSERT_EQ(moved.moves.size(), 1);
    const FetchResult& third = moved.fetchResultAfterChanges;
    EXPECT_LT(*third.indexOf(order[3]), *third.indexOf(order[2]));
    EXPECT_GT(*second.indexOf(order[3]), *second.indexOf(order[2]));
    const QString mover = second.objectAt(moved.moves[0].first).localIdentifier;
    EXPECT_EQ(third.objectAt(moved.moves[0].second).localIdentifier, mover);
    EXPECT_EQ(moved.changedIndexes, QList<qsizetype>{*third.indexOf(order[3])});
    EXPECT_TRUE(lib->changeDetails(moved.fetchResultAfterChanges).isEmpty());
}

TEST_F(LibraryFixture, MissingFolderLosesNothingAndDamagedIndexIsRebuilt) {
    const QString card = path("card");
    QDir().mkpath(card);
    ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", card + "/x.jpg"));
    reopen({root(), card});
    lib->scan();
    const QString id = assetOf(card + "/x.jpg").localIdentifier;
    ASSERT_TRUE(lib->setFavorite(id, true));

    ASSERT_TRUE(QDir().rename(card, path("card-away")));
    ScanReport gone = lib->scan();
    EXPECT_EQ(gone.filesRemoved, 0);
    ASSERT_EQ(gone.problems.size(), 1);
    EXPECT_TRUE(gone.problems[0].contains(card));
    ASSERT_TRUE(QDir().rename(path("card-away"), card));
    lib->scan();
    EXPECT_TRUE(lib->asset(id).value_or(Asset{}).favorite);

    // Garbage where the index was: moved aside, a new one made, the folders read again.
    lib.reset();
    for (const char* suffix : {"", "-wal", "-shm"}) QFile::remove(database() + suffix);
    QFile db(database());
    ASSERT_TRUE(db.open(QIODevice::WriteOnly));
    db.write(QByteArray(8192, 'x'));
    db.close();
    reopen({root(), card});
    QStringList aside = QDir(path("data")).entryList({"library.sqlite.corrupt-*"});
    EXPECT_EQ(aside.size(), 1);
    EXPECT_EQ(lib->fetchAssets().count(), 0);
    lib->scan();
    EXPECT_EQ(lib->fetchAssets().count(), 1);
}

TEST_F(LibraryFixture, IndexFromANewerVersionIsRefusedNotOverwritten) {
    lib.reset();
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(database().toUtf8().constData(), &db), SQLITE_OK);
    sqlite3_exec(db, "PRAGMA user_version=99", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    Library newer({root()}, database());
    EXPECT_FALSE(newer.isOpen());
    EXPECT_TRUE(newer.openError().contains("newer")) << newer.openError().toStdString();
    EXPECT_FALSE(newer.scan().problems.isEmpty());
    EXPECT_TRUE(QDir(path("data")).entryList({"library.sqlite.corrupt-*"}).isEmpty());
}

TEST(ResourceTypeText, NamesByRawValue) {
    EXPECT_EQ(resourceTypeText(5), "Actual Photo");
    EXPECT_EQ(resourceTypeText(9), "Original Live Photo");
    EXPECT_EQ(resourceTypeText(19), "proxy");
    EXPECT_EQ(resourceTypeText(13), "Unknown");
}

TEST_F(LibraryFixture, AnotherProgramsChangesAreNoticed) {
    const QString kept = add("jpeg/Canon_40D.jpg", "kept.jpg");
    const QString doomed = add("jpeg/Nikon_D70.jpg", "doomed.jpg");
    lib->scan();
    lib->startWatching();
    QSignalSpy spy(lib.get(), &Library::libraryDidChange);
    const FetchResult before = lib->fetchAssets();

    // Rewritten in place, deleted, and a new one in a new folder.
    {
        QFile f(kept);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite | QIODevice::Append));
        f.write("trailing bytes after the picture");
    }
    ASSERT_TRUE(QFile::remove(doomed));
    QDir().mkpath(root() + "/New");
    ASSERT_TRUE(spy.wait(10000));
    add("jpeg/jolla.jpg", "New/new.jpg");  // in a folder made after the watch began
    for (int i = 0; i < 50 && !lib->assetForPath(root() + "/New/new.jpg"); ++i) spy.wait(200);

    ChangeDetails d = lib->changeDetails(before);
    EXPECT_EQ(d.removedObjects.value(0).resources.value(0).originalFilename, "doomed.jpg");
    EXPECT_EQ(d.insertedObjects.value(0).resources.value(0).originalFilename, "new.jpg");
    ASSERT_EQ(d.changedObjects.size(), 1);
    EXPECT_EQ(d.changedObjects[0].resources.value(0).fileSize, QFileInfo(kept).size());
}

TEST_F(LibraryFixture, WatcherLooksOnlyAtTheFoldersThatChanged) {
    const QStringList sources{"jpeg/Canon_40D.jpg", "jpeg/Nikon_D70.jpg", "jpeg/jolla.jpg"};
    for (const char* album : {"A", "B"})
        for (int i = 0; i < 3; ++i) add(sources[i], QStringLiteral("%1/%2.jpg").arg(album).arg(i));
    lib->scan();
    lib->startWatching();
    QSignalSpy spy(lib.get(), &Library::libraryDidChange);

    {
        QFile f(root() + "/B/1.jpg");
        ASSERT_TRUE(f.open(QIODevice::ReadWrite | QIODevice::Append));
        f.write("trailing bytes after the picture");
    }
    ASSERT_TRUE(spy.wait(10000));
    // The changed file read again, its two neighbours looked at, album A left alone.
    EXPECT_EQ(lib->lastScanReport().filesRead, 1);
    EXPECT_EQ(lib->lastScanReport().filesUnchanged, 2);

    // A folder moved in from outside is read whole, subfolders and all.
    const QString outside = path("outside/C");
    QDir().mkpath(outside + "/Sub");
    ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/" + sources[0], outside + "/x.jpg"));
    ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/" + sources[1], outside + "/Sub/y.jpg"));
    ASSERT_TRUE(QDir().rename(outside, root() + "/C"));
    ASSERT_TRUE(spy.wait(10000));
    EXPECT_EQ(lib->lastScanReport().filesRead, 2);
    EXPECT_EQ(lib->lastScanReport().filesUnchanged, 0);
    EXPECT_EQ(lib->fetchAssets().count(), 8);

    // A folder deleted takes its items with it.
    ASSERT_TRUE(QDir(root() + "/A").removeRecursively());
    for (int i = 0; i < 50 && lib->fetchAssets().count() != 5; ++i) spy.wait(200);
    EXPECT_EQ(lib->fetchAssets().count(), 5);
}
