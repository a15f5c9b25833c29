// SPDX-License-Identifier: GPL-3.0-or-later
// The index under another program's lock, and live photos paired by the identifier the camera
// writes into both files rather than by name.
#include "LibraryFixture.h"
#include "MotionPhotos.h"

#include <QProcess>
#include <atomic>
#include <sqlite3.h>
#include <thread>

using namespace library;

namespace {

// Another connection that takes the index's write lock and holds it for `holdMs`.
class OtherWriter {
public:
    OtherWriter(const QString& database, int holdMs) {
        thread_ = std::thread([this, database, holdMs] {
            sqlite3* db = nullptr;
            if (sqlite3_open(database.toUtf8().constData(), &db) == SQLITE_OK &&
                sqlite3_exec(db, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr) == SQLITE_OK) {
                holding = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(holdMs));
                sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
            }
            sqlite3_close(db);
            released = true;
        });
        while (!holding && !released) std::this_thread::yield();
    }
    ~OtherWriter() { thread_.join(); }
    std::atomic_bool holding = false;
    std::atomic_bool released = false;

private:
    std::thread thread_;
};

bool run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    const bool ok = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (!ok) ADD_FAILURE() << program.toStdString() << ": " << p.readAllStandardError().toStdString();
    return ok;
}

}  // namespace

TEST_F(LibraryFixture, ScanWaitsForAnotherWritersLockAndThenGoesOn) {
    const QString first = add("jpeg/Canon_40D.jpg", "a.jpg");
    lib->scan();
    const QString id = assetOf(first).localIdentifier;
    ASSERT_TRUE(lib->setFavorite(id, true));
    add("jpeg/Nikon_D70.jpg", "b.jpg");
    OtherWriter other(database(), 800);
    ASSERT_TRUE(other.holding);
    const ScanReport report = lib->scan();
    EXPECT_TRUE(other.released);
    EXPECT_TRUE(report.indexError.isEmpty()) << report.indexError.toStdString();
    EXPECT_EQ(report.filesRead, 1);
    EXPECT_EQ(lib->fetchAssets().count(), 2);
    EXPECT_TRUE(lib->asset(id).value_or(Asset{}).favorite);
}

TEST_F(LibraryFixture, LockHeldTooLongFailsClearlyAndLosesNothing) {
    const QString first = add("jpeg/Canon_40D.jpg", "a.jpg");
    lib->scan();
    const QString id = assetOf(first).localIdentifier;
    ASSERT_TRUE(lib->setFavorite(id, true));
    add("jpeg/Nikon_D70.jpg", "b.jpg");
    {
        // Longer than the index waits for a lock.
        OtherWriter other(database(), 7000);
        ASSERT_TRUE(other.holding);
        const ScanReport report = lib->scan();
        EXPECT_FALSE(other.released);
        EXPECT_TRUE(report.indexError.contains("locked")) << report.indexError.toStdString();
        EXPECT_TRUE(report.problems.contains(report.indexError));
        // The index is as it was: the one item, still a favourite.
        EXPECT_EQ(lib->fetchAssets().count(), 1);
    }
    EXPECT_TRUE(lib->asset(id).value_or(Asset{}).favorite);
    const ScanReport again = lib->scan();
    EXPECT_TRUE(again.indexError.isEmpty());
    EXPECT_EQ(again.filesRead, 1);
    EXPECT_EQ(lib->fetchAssets().count(), 2);
}

TEST_F(LibraryFixture, LivePhotoPairsByContentIdentifierNotByName) {
    // The same identifier in a photo and a movie of other names; a second pair with two
    // different ones.
    const QString still = add("heif/IMG_5195.HEIC", "IMG_0001.HEIC");
    const QString motion = root() + "/clip_0001.mov";
    const QString lone = add("heif/IMG_5195.HEIC", "IMG_0002.HEIC");
    const QString stranger = root() + "/clip_0002.mov";
    const QString source = testsupport::corpusDir() + "/video/apple_meta.mov";
    ASSERT_TRUE(run("exiftool", {"-q", "-overwrite_original", "-Apple:MediaGroupUUID=7C1D6F0A-PAIR", still}));
    ASSERT_TRUE(run("exiftool", {"-q", "-overwrite_original", "-Apple:MediaGroupUUID=7C1D6F0A-LONE", lone}));
    for (const auto& [target, id] : {std::pair{motion, "7C1D6F0A-PAIR"}, std::pair{stranger, "7C1D6F0A-OTHER"}})
        ASSERT_TRUE(run("ffmpeg", {"-v", "error", "-y", "-i", source, "-map", "0", "-c", "copy", "-metadata",
                                   QStringLiteral("com.apple.quicktime.content.identifier=%1").arg(id),
                                   "-movflags", "use_metadata_tags", target}));
    lib->scan();
    EXPECT_EQ(lib->fetchAssets().count(), 3);
    const Asset live = assetOf(still);
    EXPECT_EQ(assetOf(motion).localIdentifier, live.localIdentifier);
    EXPECT_TRUE(live.mediaSubtypes & Subtype::photoLive);
    ASSERT_EQ(live.resources.size(), 2);
    EXPECT_EQ(live.resources[1].type, ResourceType::pairedVideo);
    EXPECT_EQ(live.resources[1].path, motion);

    EXPECT_NE(assetOf(stranger).localIdentifier, assetOf(lone).localIdentifier);
    EXPECT_FALSE(assetOf(lone).mediaSubtypes & Subtype::photoLive);
    EXPECT_EQ(assetOf(stranger).mediaType, MediaType::video);
}

TEST_F(LibraryFixture, MotionPhotosAreLivePhotosOfOneFile) {
    const QString mp4 = testsupport::video("small_video.mp4");
    QDir().mkpath(root());
    testsupport::googleMotionPhoto(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", mp4, root() + "/PXL_0001.MP.jpg");
    testsupport::samsungMotionPhoto(testsupport::corpusDir() + "/jpeg/Nikon_D70.jpg", mp4, root() + "/20231114_221320.jpg");
    // A movie length that reaches past the file: a still.
    testsupport::googleMotionPhoto(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", mp4, root() + "/broken.jpg",
                                   QFileInfo(mp4).size() * 10);
    lib->scan();
    EXPECT_EQ(lib->fetchAssets().count(), 3);
    for (const QString name : {"PXL_0001.MP.jpg", "20231114_221320.jpg"}) {
        const Asset live = assetOf(root() + "/" + name);
        EXPECT_EQ(live.mediaType, MediaType::image);
        EXPECT_TRUE(live.mediaSubtypes & Subtype::photoLive) << name.toStdString();
        ASSERT_EQ(live.resources.size(), 1);
        EXPECT_EQ(live.resources[0].type, ResourceType::photo);
    }
    EXPECT_FALSE(assetOf(root() + "/broken.jpg").mediaSubtypes & Subtype::photoLive);
    EXPECT_EQ(lib->fetchAssets(QStringLiteral("smart:213")).count(), 2);
}

TEST_F(LibraryFixture, FetchSeesWhatAnotherProcessWroteToTheIndex) {
    const QString file = add("jpeg/Canon_40D.jpg", "a.jpg");
    lib->scan();
    const QString id = assetOf(file).localIdentifier;
    EXPECT_FALSE(lib->fetchAssets().objectAt(0).favorite);
    // Another connection to the same index, as the command-line tool has while the app runs.
    Library other({root()}, database());
    ASSERT_TRUE(other.setFavorite(id, true));
    EXPECT_TRUE(lib->fetchAssets().objectAt(0).favorite);
    add("jpeg/Nikon_D70.jpg", "b.jpg");
    other.scan();
    EXPECT_EQ(lib->fetchAssets().count(), 2);
}
