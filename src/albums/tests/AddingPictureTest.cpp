// SPDX-License-Identifier: GPL-3.0-or-later
// Waiting for a new picture to land, and finding where it did, over a real library.
#include "AddingPicture.h"
#include "AlbumTestSupport.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace {

QCoro::Task<> waitAndNote(TSSemaphore& semaphore, QStringList& order, QString name) {
    co_await semaphore.wait();
    order << name;
}

TEST(TSSemaphore, AReleaseBeforeTheWaitLetsItThroughAtOnce) {
    TSSemaphore semaphore;
    QStringList order;
    semaphore.release(1);
    EXPECT_EQ(semaphore.counter(), 1);
    auto task = waitAndNote(semaphore, order, "first");
    EXPECT_EQ(order, QStringList{"first"});
    EXPECT_EQ(semaphore.counter(), 0);
}

TEST(TSSemaphore, WaitersResumeInTheOrderTheyCameOnePerRelease) {
    TSSemaphore semaphore;
    QStringList order;
    auto first = waitAndNote(semaphore, order, "first");
    auto second = waitAndNote(semaphore, order, "second");
    EXPECT_TRUE(order.isEmpty());
    EXPECT_EQ(semaphore.waiting(), 2);
    semaphore.release(1);
    EXPECT_EQ(order, QStringList{"first"});
    EXPECT_EQ(semaphore.waiting(), 1);
    EXPECT_EQ(semaphore.counter(), -1);
    // A count larger than the waiters resumes them all and keeps the rest.
    semaphore.release(3);
    EXPECT_EQ(order, (QStringList{"first", "second"}));
    EXPECT_EQ(semaphore.counter(), 2);
}

class AddingPictureTest : public testsupport::IsolatedTest {
protected:
    std::unique_ptr<library::Library> lib;
    AddingPicture adding;
    std::optional<library::FetchResult> current;
    bool resumed = false;

    void SetUp() override {
        const QString root = isolation().root() + "/lib";
        QDir().mkpath(root + "/Trip");
        // Dates 2021 (in the album Trip) and 2023.
        ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/heif/IMG_5195.HEIC", root + "/Trip/a.heic"));
        ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/video/apple_meta.mov", root + "/b.mov"));
        lib = std::make_unique<library::Library>(QStringList{root}, isolation().root() + "/library.sqlite");
        lib->scan();
        // What the library's change observer does while a picture is being added.
        QObject::connect(lib.get(), &library::Library::libraryDidChange, [this] {
            if (!adding.adding || !current) return;
            adding.update(*lib, &*current);
            adding.complete();
        });
    }
    QCoro::Task<> save() {
        adding.start(*lib, {});
        adding.adding = true;
        QFile file(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg");  // taken in 2008
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_TRUE(lib->createAsset(file.readAll(), "new.jpg", std::nullopt, std::nullopt).has_value());
        co_await adding.wait();
        adding.adding = false;
        resumed = true;
    }
};

TEST_F(AddingPictureTest, NewPictureInTheAlbumOnViewIsFoundThere) {
    current = lib->fetchAssets();
    auto task = save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return resumed; }, 20000));
    // The oldest of three: first by date.
    EXPECT_EQ(adding.actualIndex, 0);
    EXPECT_FALSE(adding.allPhotosIndex);
    EXPECT_FALSE(adding.tessorinIndex);
}

TEST_F(AddingPictureTest, NewPictureOutsideTheAlbumOnViewIsFoundInAllPhotosAndTheAppsAlbum) {
    current = lib->fetchAssets(lib->album("Trip")->identifier);
    ASSERT_EQ(current->count(), 1);
    // The application's album doesn't exist before the first save.
    EXPECT_FALSE(lib->album(library::Library::applicationAlbumTitle()));
    auto task = save();
    ASSERT_TRUE(QTest::qWaitFor([&] { return resumed; }, 20000));
    EXPECT_FALSE(adding.actualIndex);
    EXPECT_EQ(adding.allPhotosIndex, 0);
    EXPECT_EQ(adding.tessorinIndex, 0);
    const auto album = lib->album(library::Library::applicationAlbumTitle());
    ASSERT_TRUE(album);
    EXPECT_EQ(lib->fetchAssets(album->identifier).count(), 1);
}

TEST_F(AddingPictureTest, ChangesWhileNotAddingLeaveTheIndexesAlone) {
    current = lib->fetchAssets();
    adding.start(*lib, {});
    QFile::copy(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", isolation().root() + "/lib/c.jpg");
    lib->scan();
    adding.update(*lib, &*current);
    EXPECT_FALSE(adding.actualIndex);
    EXPECT_FALSE(adding.allPhotosIndex);
    EXPECT_EQ(adding.addingSemaphore.counter(), 0);
}

}  // namespace
