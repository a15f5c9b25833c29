// SPDX-License-Identifier: GPL-3.0-or-later
// XMP sidecars in the library: a resource of their photo's item, never an item; read again when
// another program changes them; moved, renamed and trashed with their photo.
#include "CameraFiles.h"
#include "LibraryFixture.h"

#include <QSignalSpy>
#include <QTimeZone>

using namespace library;

namespace {

QByteArray sidecar(const QString& date) {
    return QStringLiteral(R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
<rdf:Description rdf:about="" xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmlns:exif="http://ns.adobe.com/exif/1.0/"
 xmp:Rating="4" exif:DateTimeOriginal="%1"/></rdf:RDF></x:xmpmeta>)").arg(date).toUtf8();
}

// Writes `bytes` and sets the file's time `secondsLater` after the photo's, so a change is a
// change whatever the clock's resolution.
void writeSidecar(const QString& path, const QByteArray& bytes, const QString& photo, int secondsLater) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
    ASSERT_TRUE(f.setFileTime(QFileInfo(photo).lastModified().addSecs(secondsLater), QFileDevice::FileModificationTime));
}

QStringList sidecarsOf(const Asset& a) {
    QStringList out;
    for (const Resource& r : a.resources)
        if (r.type == ResourceType::xmpSidecar) out << r.originalFilename;
    return out;
}

}  // namespace

TEST_F(LibraryFixture, SidecarsAreResourcesOfTheirItemsAndTheirValuesCount) {
    const QString jpeg = add("jpeg/Canon_40D.jpg", "Trip/IMG_1.jpg");
    writeSidecar(jpeg + ".xmp", sidecar("2021-07-04T10:11:12"), jpeg, 10);
    // A raw file and its JPEG are one item, and share NAME.xmp.
    const QString raw = root() + "/Trip/RAW_2.CR3";
    {
        QFile f(raw);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(testsupport::canonCr3(testsupport::readFile(testsupport::corpusDir() + "/tiff/IMG_1361.dng")));
    }
    add("jpeg/Nikon_D70.jpg", "Trip/RAW_2.JPG");
    writeSidecar(root() + "/Trip/RAW_2.xmp", sidecar("2019-01-02T03:04:05"), raw, 10);
    writeSidecar(root() + "/Trip/orphan.xmp", sidecar("2000-01-01T00:00:00"), raw, 10);
    lib->scan();

    EXPECT_EQ(lib->fetchAssets().count(), 2);
    const Asset photo = assetOf(jpeg);
    EXPECT_EQ(sidecarsOf(photo), QStringList{"IMG_1.jpg.xmp"});
    EXPECT_EQ(photo.creationDate, QDateTime(QDate(2021, 7, 4), QTime(10, 11, 12), QTimeZone::systemTimeZone()));
    const Asset pair = assetOf(raw);
    EXPECT_TRUE(pair.holdsRaw);
    EXPECT_EQ(sidecarsOf(pair), QStringList{"RAW_2.xmp"});
    EXPECT_EQ(pair.creationDate, QDateTime(QDate(2019, 1, 2), QTime(3, 4, 5), QTimeZone::systemTimeZone()));
    EXPECT_FALSE(lib->assetForPath(root() + "/Trip/orphan.xmp"));

    // Another program's change to the sidecar is a change of the item, noticed by the watcher.
    lib->startWatching();
    QSignalSpy spy(lib.get(), &Library::libraryDidChange);
    const FetchResult before = lib->fetchAssets();
    writeSidecar(jpeg + ".xmp", sidecar("2022-08-09T10:11:12"), jpeg, 20);
    ASSERT_TRUE(spy.wait(10000));
    const ChangeDetails d = lib->changeDetails(before);
    ASSERT_EQ(d.changedObjects.size(), 1);
    EXPECT_EQ(d.changedObjects[0].localIdentifier, photo.localIdentifier);
    EXPECT_EQ(d.changedObjects[0].creationDate, QDateTime(QDate(2022, 8, 9), QTime(10, 11, 12), QTimeZone::systemTimeZone()));
    // Gone, the photo's own date is back (exiftool: DateTimeOriginal 2008:05:30 15:56:01).
    ASSERT_TRUE(QFile::remove(jpeg + ".xmp"));
    for (int i = 0; i < 50 && !sidecarsOf(assetOf(jpeg)).isEmpty(); ++i) spy.wait(200);
    EXPECT_EQ(sidecarsOf(assetOf(jpeg)), QStringList{});
    EXPECT_EQ(assetOf(jpeg).creationDate, QDateTime(QDate(2008, 5, 30), QTime(15, 56, 1), QTimeZone::systemTimeZone()));
}

TEST_F(LibraryFixture, ASidecarMovesIsRenamedAndGoesToTheTrashWithItsPhoto) {
    const QString first = add("jpeg/Canon_40D.jpg", "Trip/IMG_1.jpg");
    writeSidecar(first + ".xmp", sidecar("2021-07-04T10:11:12"), first, 10);
    lib->scan();
    const QString id = assetOf(first).localIdentifier;

    // Moved by another program, the photo keeps its identifier and its sidecar.
    QDir().mkpath(root() + "/Other");
    const QString moved = root() + "/Other/IMG_1.jpg";
    ASSERT_TRUE(QFile::rename(first, moved));
    ASSERT_TRUE(QFile::rename(first + ".xmp", moved + ".xmp"));
    const ScanReport report = lib->scan();
    EXPECT_EQ(report.filesMoved, 1);
    EXPECT_EQ(assetOf(moved).localIdentifier, id);
    EXPECT_EQ(sidecarsOf(assetOf(moved)), QStringList{"IMG_1.jpg.xmp"});

    // An edit that changes the photo's extension renames NAME.EXT.xmp with it; revert, back.
    QString error;
    ASSERT_TRUE(lib->editInPlace(id, testsupport::readFile(moved), "jpeg", "payload", &error)) << error.toStdString();
    const QString renamed = root() + "/Other/IMG_1.jpeg";
    EXPECT_EQ(sidecarsOf(assetOf(renamed)), QStringList{"IMG_1.jpeg.xmp"});
    EXPECT_FALSE(QFileInfo::exists(moved + ".xmp"));
    ASSERT_TRUE(lib->revert(id, &error)) << error.toStdString();
    EXPECT_EQ(sidecarsOf(assetOf(moved)), QStringList{"IMG_1.jpg.xmp"});
    EXPECT_EQ(testsupport::readFile(moved + ".xmp"), sidecar("2021-07-04T10:11:12"));

    // Deleted, both go to the trash.
    ASSERT_TRUE(lib->deleteAsset(id, &error)) << error.toStdString();
    EXPECT_EQ(QDir(root() + "/Other").entryList(QDir::Files), QStringList{});
    QStringList trashed = QDir(path("data/Trash/files")).entryList(QDir::Files);
    EXPECT_EQ(trashed, (QStringList{"IMG_1.jpg", "IMG_1.jpg.xmp"}));
}
