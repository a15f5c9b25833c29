// SPDX-License-Identifier: GPL-3.0-or-later
// Changes made through the library, read back by exiftool and from the disk.
#include "FileBytes.h"
#include "ImageWriter.h"
#include "LibraryFixture.h"
#include "PropertyKeys.h"
#include "ThumbnailCache.h"

#include <QCryptographicHash>
#include <QUrl>

#include <QDirIterator>
#include <QJsonArray>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTimeZone>

using namespace library;

namespace {

// The photo with a new original date, as the save pipeline would hand it over.
QByteArray redated(const QString& file, const QString& date) {
    imageio::PropertyDict exif{{kCGImagePropertyExifDateTimeOriginal, date}};
    auto out = imageio::writeProperties(testsupport::readFile(file), {{kCGImagePropertyExifDictionary, exif}});
    EXPECT_TRUE(out.has_value());
    return out.value_or(QByteArray());
}

QString exifDate(const QString& file) {
    return testsupport::exiftoolJson(file, {"-DateTimeOriginal"}).toObject().value("DateTimeOriginal").toString();
}

QStringList filesUnder(const QString& dir) {
    QStringList out;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) out << QDir(dir).relativeFilePath(it.next());
    // The journal of what the user set stays beside the photos.
    out.removeAll(".tessorin/journal.jsonl");
    out.sort();
    return out;
}

}  // namespace

TEST_F(LibraryFixture, EditInPlaceKeepsTheOriginalAndRevertBringsItBack) {
    const QString file = add("jpeg/Canon_40D.jpg", "Trip/IMG_1.jpg");
    lib->scan();
    const QByteArray original = testsupport::readFile(file);
    const QDateTime originalTime = QFileInfo(file).lastModified();
    Asset before = assetOf(file);
    ASSERT_TRUE(before.canPerformEditOperation(1));
    ASSERT_TRUE(lib->setFavorite(before.localIdentifier, true));

    QString error;
    ASSERT_TRUE(lib->editInPlace(before.localIdentifier, redated(file, "2001:02:03 04:05:06"), "jpg", "payload", &error))
        << error.toStdString();
    EXPECT_EQ(exifDate(file), "2001:02:03 04:05:06");
    Asset edited = assetOf(file);
    EXPECT_EQ(edited.localIdentifier, before.localIdentifier);
    EXPECT_TRUE(edited.favorite);
    EXPECT_TRUE(edited.isEdited());
    ASSERT_EQ(edited.resources.size(), 3);
    EXPECT_EQ(edited.resources[0].type, ResourceType::photo);
    EXPECT_EQ(edited.resources[1].type, ResourceType::fullSizePhoto);
    EXPECT_EQ(edited.resources[1].path, file);
    EXPECT_EQ(edited.resources[2].type, ResourceType::adjustmentData);
    EXPECT_EQ(testsupport::readFile(edited.resources[0].path), original);
    EXPECT_EQ(edited.resources[0].originalFilename, "IMG_1.jpg");
    EXPECT_EQ(edited.creationDate, QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6)));
    EXPECT_EQ(lib->adjustmentData(before.localIdentifier).value_or(QByteArray()), "payload");
    // The original sits in the library's hidden folder, which is no album and no asset.
    EXPECT_EQ(lib->userCollections().size(), 1);
    EXPECT_EQ(lib->fetchAssets().count(), 1);

    // A second edit keeps the first original.
    ASSERT_TRUE(lib->editInPlace(before.localIdentifier, redated(file, "2002:02:03 04:05:06"), "jpg", "again", &error));
    EXPECT_EQ(exifDate(file), "2002:02:03 04:05:06");
    EXPECT_EQ(testsupport::readFile(assetOf(file).resources[0].path), original);

    ASSERT_TRUE(lib->revert(before.localIdentifier, &error)) << error.toStdString();
    EXPECT_EQ(testsupport::readFile(file), original);
    EXPECT_EQ(QFileInfo(file).lastModified(), originalTime);
    EXPECT_EQ(exifDate(file), "2008:05:30 15:56:01");
    Asset reverted = assetOf(file);
    EXPECT_EQ(reverted.localIdentifier, before.localIdentifier);
    EXPECT_FALSE(reverted.isEdited());
    EXPECT_EQ(reverted.resources.size(), 1);
    EXPECT_EQ(filesUnder(root()), QStringList{"Trip/IMG_1.jpg"});
    EXPECT_FALSE(lib->revert(before.localIdentifier, &error));
}

// The app's library and a save's worker each hold the index; the worker's edit leaves nothing on
// disk for the app's scan to find, yet the app's observers must hear of it.
TEST_F(LibraryFixture, EditThroughAnotherInstanceIsToldByTheNextScan) {
    const QString file = add("jpeg/Canon_40D.jpg", "rome.jpg");
    add("jpeg/Nikon_D70.jpg", "other.jpg");
    lib->scan();
    const FetchResult before = lib->fetchAssets();
    const QString id = assetOf(file).localIdentifier;
    QSignalSpy changed(lib.get(), &Library::libraryDidChange);

    Library worker({root()}, database());
    ASSERT_TRUE(worker.editInPlace(id, redated(file, "2001:02:03 04:05:06"), "jpg", "payload"));
    EXPECT_EQ(changed.count(), 0);

    lib->scan();
    EXPECT_EQ(changed.count(), 1);
    const ChangeDetails d = lib->changeDetails(before);
    ASSERT_EQ(d.changedObjects.size(), 1);
    EXPECT_EQ(d.changedObjects[0].localIdentifier, id);
    EXPECT_EQ(d.changedObjects[0].creationDate.date(), QDate(2001, 2, 3));
    EXPECT_TRUE(d.changedObjects[0].isEdited());
    EXPECT_TRUE(d.insertedObjects.isEmpty());
    EXPECT_TRUE(d.removedObjects.isEmpty());

    // Told once: a scan after it, with nothing new anywhere, stays quiet.
    lib->scan();
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(LibraryFixture, EditThatChangesTheFormatRenamesAndRevertRestoresTheName) {
    const QString heic = add("heif/IMG_5195.HEIC", "IMG_5195.HEIC");
    const QByteArray original = testsupport::readFile(heic);
    lib->scan();
    const QString id = assetOf(heic).localIdentifier;
    // An in-place edit of a HEIF photo is drawn anew as JPEG.
    const QByteArray jpeg = testsupport::readFile(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg");
    ASSERT_TRUE(lib->editInPlace(id, jpeg, "jpg", {}));
    EXPECT_FALSE(QFileInfo::exists(heic));
    EXPECT_EQ(assetOf(root() + "/IMG_5195.jpg").localIdentifier, id);
    EXPECT_EQ(lib->fetchAssets().count(), 1);

    ASSERT_TRUE(lib->revert(id));
    EXPECT_FALSE(QFileInfo::exists(root() + "/IMG_5195.jpg"));
    EXPECT_EQ(testsupport::readFile(heic), original);
    EXPECT_EQ(assetOf(heic).localIdentifier, id);
}

TEST_F(LibraryFixture, EditIsRefusedWhereItCantBeDoneAndTheOriginalStays) {
    const QString movie = add("video/small_video.mp4", "clip.mp4");
    const QString photo = add("jpeg/Canon_40D.jpg", "a.jpg");
    const QString taken = add("jpeg/Nikon_D70.jpg", "IMG_5195.jpg");
    add("heif/IMG_5195.HEIC", "IMG_5195.HEIC");
    lib->scan();
    QString error;
    EXPECT_FALSE(lib->editInPlace(assetOf(movie).localIdentifier, "x", "mp4", {}, &error));
    EXPECT_EQ(error, "Image is not editable");
    EXPECT_FALSE(lib->editInPlace("no-such-id", "x", "jpg", {}, &error));

    // A rendered name that another file holds already.
    const QByteArray before = testsupport::readFile(taken);
    EXPECT_FALSE(lib->editInPlace(assetOf(root() + "/IMG_5195.HEIC").localIdentifier, "x", "jpg", {}, &error));
    EXPECT_EQ(testsupport::readFile(taken), before);

    // A folder we can't write to. (The superuser writes anywhere, so this needs a normal user.)
    if (geteuid() != 0) {
        QFile::setPermissions(root(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        const QByteArray bytes = testsupport::readFile(photo);
        EXPECT_FALSE(assetOf(photo).canPerformEditOperation(1));
        EXPECT_FALSE(lib->editInPlace(assetOf(photo).localIdentifier, "x", "jpg", {}, &error));
        EXPECT_EQ(testsupport::readFile(photo), bytes);
        QFile::setPermissions(root(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }
    EXPECT_EQ(filesUnder(root()), (QStringList{"IMG_5195.HEIC", "IMG_5195.jpg", "a.jpg", "clip.mp4"}));
}

TEST_F(LibraryFixture, NewItemLandsInTheApplicationAlbumWithItsDateAndPlace) {
    add("jpeg/Canon_40D.jpg", "a.jpg");
    lib->scan();
    QSignalSpy changed(lib.get(), &Library::libraryDidChange);
    const FetchResult before = lib->fetchAssets();
    const QByteArray bytes = testsupport::readFile(testsupport::corpusDir() + "/jpeg/Nikon_D70.jpg");
    const QDateTime when(QDate(2020, 6, 1), QTime(12, 0), QTimeZone(7200));
    QString error;
    auto id = lib->createAsset(bytes, "a.jpg", when, Location{48.85, 2.35, std::nullopt}, {}, &error);
    ASSERT_TRUE(id.has_value()) << error.toStdString();
    auto second = lib->createAsset(bytes, "a.jpg", std::nullopt, std::nullopt);
    ASSERT_TRUE(second.has_value());
    EXPECT_GE(changed.count(), 2);

    auto album = lib->album("Tessorin");
    ASSERT_TRUE(album.has_value());
    EXPECT_EQ(album->identifier, "folder:" + root() + "/Tessorin");
    const FetchResult inAlbum = lib->fetchAssets(album->identifier);
    EXPECT_EQ(inAlbum.count(), 2);
    EXPECT_TRUE(inAlbum.contains(*id));
    EXPECT_EQ(testsupport::readFile(root() + "/Tessorin/a.jpg"), bytes);
    EXPECT_TRUE(QFileInfo::exists(root() + "/Tessorin/a_1.jpg"));

    Asset made = *lib->asset(*id);
    EXPECT_EQ(made.creationDate, when);
    ASSERT_TRUE(made.location.has_value());
    EXPECT_DOUBLE_EQ(made.location->latitude, 48.85);
    // The file's own date for the one saved without.
    EXPECT_EQ(lib->asset(*second)->creationDate.date(), QDate(2008, 3, 15));

    // How a save finds where its picture landed.
    ChangeDetails details = lib->changeDetails(before);
    ASSERT_EQ(details.insertedObjects.size(), 2);
    EXPECT_TRUE(details.fetchResultAfterChanges.contains(details.insertedObjects[0].localIdentifier));
}

TEST_F(LibraryFixture, DeleteMovesEveryFileOfTheAssetToTheTrash) {
    const QString photo = add("jpeg/Canon_40D.jpg", "IMG_7.JPG");
    const QString movie = add("video/apple_meta.mov", "IMG_7.MOV");
    const QString other = add("jpeg/Nikon_D70.jpg", "other.jpg");
    lib->scan();
    const QString id = assetOf(photo).localIdentifier;
    ASSERT_EQ(assetOf(movie).localIdentifier, id);
    ASSERT_TRUE(lib->editInPlace(id, redated(photo, "2001:01:01 00:00:00"), "JPG", "x"));

    QString error;
    ASSERT_TRUE(lib->deleteAsset(id, &error)) << error.toStdString();
    EXPECT_FALSE(QFileInfo::exists(photo));
    EXPECT_FALSE(QFileInfo::exists(movie));
    EXPECT_TRUE(QFileInfo::exists(other));
    EXPECT_FALSE(lib->asset(id).has_value());
    EXPECT_EQ(lib->fetchAssets().count(), 1);
    // In the trash of this test's own data folder: the photo as edited, its original, the
    // adjustment data and the movie.
    // (Two of them share the name IMG_7.JPG; the trash tells them apart in its own way.)
    const QStringList trashed = QDir(path("data/Trash/files")).entryList(QDir::Files);
    EXPECT_EQ(trashed.size(), 4) << trashed.join(", ").toStdString();
    EXPECT_TRUE(trashed.contains("Adjustments.json"));
    EXPECT_TRUE(trashed.contains("IMG_7.MOV"));
    EXPECT_EQ(QDir(path("data/Trash/info")).entryList(QDir::Files).size(), 4);
    EXPECT_EQ(filesUnder(root()), QStringList{"other.jpg"});
}

TEST_F(LibraryFixture, ThumbnailsGoThroughTheDesktopCache) {
    const QString photo = add("jpeg/Canon_40D.jpg", "a.jpg");
    const QString movie = add("video/apple_meta.mov", "b.mov");
    const QImage small = thumbnails::forFile(photo, 100);
    ASSERT_FALSE(small.isNull());
    EXPECT_EQ(qMax(small.width(), small.height()), 100);
    // Named by the MD5 of the file's URI, under the test's own cache folder.
    const QString uri = QUrl::fromLocalFile(photo).toString(QUrl::FullyEncoded);
    const QString expected = path("cache") + "/thumbnails/normal/" +
                             QCryptographicHash::hash(uri.toUtf8(), QCryptographicHash::Md5).toHex() + ".png";
    EXPECT_EQ(thumbnails::cachePath(photo, 100), expected);
    QImage stored(expected);
    ASSERT_FALSE(stored.isNull());
    EXPECT_EQ(stored.text("Thumb::URI"), uri);
    EXPECT_EQ(stored.text("Thumb::MTime").toLongLong(), QFileInfo(photo).lastModified().toSecsSinceEpoch());

    // A changed file makes a new one; a movie's is its first frame.
    {
        QFile f(photo);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite));
        f.setFileTime(QFileInfo(photo).lastModified().addSecs(-3600), QFileDevice::FileModificationTime);
    }
    thumbnails::forFile(photo, 100);
    EXPECT_EQ(QImage(expected).text("Thumb::MTime").toLongLong(), QFileInfo(photo).lastModified().toSecsSinceEpoch());
    EXPECT_FALSE(thumbnails::forFile(movie, 256).isNull());
    EXPECT_TRUE(QFileInfo::exists(thumbnails::cachePath(movie, 256)));
    EXPECT_TRUE(thumbnails::forFile(path("nothing.jpg"), 100).isNull());
}
