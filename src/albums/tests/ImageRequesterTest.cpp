// SPDX-License-Identifier: GPL-3.0-or-later
// The request cascade over real files: a library item on the disk, and one that stands for an
// item kept off the device, read from a named pipe that a thread of the test feeds slowly.
#include "AlbumTestSupport.h"
#include "ImageRequester.h"
#include "Library.h"
#include "TSPhotoAlbum.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using library::Resource;
using library::ResourceType;

struct Receiver : TSAssetRequestManager {
    library::Asset asset;
    std::optional<std::optional<QByteArray>> received;
    std::optional<QString> uti;
    const library::Asset* libraryAsset() const override { return &asset; }
    void setData(const std::optional<QByteArray>& data, const std::optional<QString>& type) override {
        received = data;
        uti = type;
    }
};

// Writes `content` into a named pipe in pieces, pausing between them, until done or until the
// reader closes its end.
class SlowSource {
public:
    SlowSource(const QString& path, qint64 total, int pauseMs) : SlowSource(path, QByteArray(total, 'x'), 1 << 16, pauseMs) {}
    SlowSource(const QString& path, const QByteArray& content, qint64 pieceSize, int pauseMs) : path_(path) {
        EXPECT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        thread_ = std::thread([this, content, pieceSize, pauseMs] {
            const qint64 total = content.size();
            // A closed reader must give EPIPE here, not a signal that ends the test program.
            sigset_t pipe;
            sigemptyset(&pipe);
            sigaddset(&pipe, SIGPIPE);
            pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
            const int fd = ::open(QFile::encodeName(path_).constData(), O_WRONLY);
            if (fd < 0) return;
            while (written < total) {
                const ssize_t n = ::write(fd, content.constData() + written, size_t(qMin(pieceSize, total - written)));
                if (n <= 0) {
                    readerClosed = true;
                    break;
                }
                written += n;
                std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs));
            }
            ::close(fd);
        });
    }
    ~SlowSource() { thread_.join(); }
    std::atomic<qint64> written = 0;
    std::atomic_bool readerClosed = false;

private:
    QString path_;
    std::thread thread_;
};

class ImageRequesterTest : public testsupport::IsolatedTest {
protected:
    TSMetaDataObservable& hub = TSEnvironment::observable();
    Recorder screen;
    ImageRequester requester;
    std::shared_ptr<Receiver> item = std::make_shared<Receiver>();

    void SetUp() override {
        hub.download = DownloadLevel::none;
        hub.addObserver(&screen);
    }
    // The hub is every test's: a delayed progress must land in the test that caused it, not
    // move the bar of the next one.
    void TearDown() override { spin(300); }
    QString path(const QString& name) { return isolation().root() + '/' + name; }
    // An image item whose only file sits on a mount that isn't this device.
    void remoteItem(const QString& file, qint64 size) {
        item->asset.mediaType = library::MediaType::image;
        item->asset.resources = {Resource{ResourceType::photo, "IMG_0001.JPG", file, size, false}};
    }
    QList<float> progressHeard() const {
        QList<float> values;
        for (const QString& h : screen.heard)
            if (h.startsWith("progress ")) values << h.mid(9).toFloat();
        return values;
    }
};

TEST(ImageRequesterChoice, PrefersTheEditThenTheAlternateThenTheOriginal) {
    auto res = [](ResourceType t, const char* name) { return Resource{t, name, QString("/l/") + name, 1, true}; };
    library::Asset photo;
    photo.mediaType = library::MediaType::image;
    // A single resource is the item's, whatever its type.
    photo.resources = {res(ResourceType::adjustmentData, "Adjustments.json")};
    EXPECT_EQ(ImageRequester::chosenResource(photo)->type, ResourceType::adjustmentData);
    photo.resources = {res(ResourceType::photo, "a.jpg"), res(ResourceType::pairedVideo, "a.mov")};
    EXPECT_EQ(ImageRequester::chosenResource(photo)->originalFilename, "a.jpg");
    photo.resources = {res(ResourceType::photo, "a.cr2"), res(ResourceType::alternatePhoto, "a.jpg")};
    EXPECT_EQ(ImageRequester::chosenResource(photo)->originalFilename, "a.jpg");
    photo.resources = {res(ResourceType::photo, "o.jpg"), res(ResourceType::fullSizePhoto, "e.jpg"),
                       res(ResourceType::adjustmentData, "Adjustments.json")};
    EXPECT_EQ(ImageRequester::chosenResource(photo)->originalFilename, "e.jpg");
    // A movie never takes a photo resource, however many it has.
    library::Asset movie;
    movie.mediaType = library::MediaType::video;
    movie.resources = {res(ResourceType::photo, "p.jpg"), res(ResourceType::adjustmentData, "j")};
    EXPECT_FALSE(ImageRequester::chosenResource(movie));
    movie.resources = {res(ResourceType::video, "o.mov"), res(ResourceType::fullSizeVideo, "e.mov")};
    EXPECT_EQ(ImageRequester::chosenResource(movie)->originalFilename, "e.mov");
    EXPECT_FALSE(ImageRequester::chosenResource(library::Asset{}));
}

TEST_F(ImageRequesterTest, ItemOnTheDiskIsReadWithoutTheDownloadPath) {
    QDir().mkpath(path("lib"));
    const QString file = path("lib/a.jpg");
    ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", file));
    library::Library lib({path("lib")}, path("library.sqlite"));
    lib.scan();
    item->asset = *lib.assetForPath(file);
    requester.dataRequest(item);
    ASSERT_TRUE(QTest::qWaitFor([&] { return item->received.has_value(); }, 20000));
    QFile original(file);
    ASSERT_TRUE(original.open(QIODevice::ReadOnly));
    ASSERT_TRUE(item->received->has_value());
    EXPECT_EQ(**item->received, original.readAll());
    EXPECT_EQ(item->uti, "public.jpeg");
    EXPECT_FALSE(requester.needDownload);
    spin(300);
    // Nothing of the download path: no failure, and the bar never stayed at 0 without an end.
    for (const QString& h : screen.heard) EXPECT_FALSE(h.startsWith("failure")) << h.toStdString();
    EXPECT_TRUE(screen.heard.contains("done"));
    EXPECT_EQ(hub.download, DownloadLevel::done);
}

TEST_F(ImageRequesterTest, SlowFileOnTheDeviceReportsRisingProgress) {
    constexpr qint64 size = 16 << 16;  // sixteen pieces
    item->asset.mediaType = library::MediaType::image;
    item->asset.resources = {Resource{ResourceType::photo, "slow.jpg", path("slow.jpg"), size, true}};
    SlowSource source(path("slow.jpg"), size, 15);
    requester.dataRequest(item);
    ASSERT_TRUE(QTest::qWaitFor([&] { return item->received.has_value(); }, 20000));
    ASSERT_TRUE(item->received->has_value());
    EXPECT_EQ(**item->received, QByteArray(size, 'x'));
    spin(300);
    // The bar's first showing (0) may fall anywhere among the reader's values.
    QList<float> values = progressHeard();
    values.removeAll(0.0f);
    ASSERT_GE(values.size(), 8);
    EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
    EXPECT_LT(values.last(), 1.0f);
    EXPECT_TRUE(screen.heard.contains("done"));
}

TEST_F(ImageRequesterTest, ItemOffTheDeviceIsFetchedWithTheProgressBarShown) {
    constexpr qint64 size = 16 << 16;
    remoteItem(path("remote.jpg"), size);
    SlowSource source(path("remote.jpg"), size, 30);
    requester.dataRequest(item);
    EXPECT_TRUE(requester.needDownload);
    ASSERT_TRUE(QTest::qWaitFor([&] { return item->received.has_value(); }, 20000));
    ASSERT_TRUE(item->received->has_value());
    EXPECT_EQ((*item->received)->size(), size);
    EXPECT_EQ(**item->received, QByteArray(size, 'x'));
    EXPECT_FALSE(requester.needDownload);
    spin(300);
    // The bar appears after the short wait, and the end closes it.
    const QList<float> values = progressHeard();
    ASSERT_FALSE(values.isEmpty());
    EXPECT_LT(values.first(), 1.0f);
    EXPECT_TRUE(screen.heard.contains("done"));
    for (const QString& h : screen.heard) EXPECT_FALSE(h.startsWith("failure")) << h.toStdString();
}

TEST_F(ImageRequesterTest, CancelStopsTheReadingAndEndsTheCascade) {
    constexpr qint64 size = 64 << 16;
    remoteItem(path("remote.jpg"), size);
    SlowSource source(path("remote.jpg"), size, 20);
    requester.dataRequest(item);
    ASSERT_TRUE(QTest::qWaitFor([&] { return source.written > 2 << 16; }, 20000));
    requester.onProgressCanceled();
    EXPECT_TRUE(requester.stopDownload());
    ASSERT_TRUE(QTest::qWaitFor([&] { return hub.download == DownloadLevel::interrupted; }, 20000));
    // The reader closed its end long before the source was through.
    ASSERT_TRUE(QTest::qWaitFor([&] { return source.readerClosed.load(); }, 20000));
    EXPECT_LT(source.written, size);
    spin(300);
    EXPECT_FALSE(item->received.has_value());
    for (const QString& h : screen.heard) EXPECT_FALSE(h.startsWith("failure")) << h.toStdString();
}

TEST_F(ImageRequesterTest, ItemThatCantBeFetchedFailsWithTheReadersText) {
    remoteItem(path("gone.jpg"), 1000);
    requester.dataRequest(item);
    ASSERT_TRUE(QTest::qWaitFor([&] { return hub.download == DownloadLevel::failed; }, 20000));
    spin(50);
    EXPECT_FALSE(item->received.has_value());
    ASSERT_FALSE(screen.heard.isEmpty());
    EXPECT_TRUE(screen.heard.last().startsWith("failure ")) << screen.heard.join(" | ").toStdString();
    EXPECT_TRUE(screen.heard.last().contains("gone.jpg"));
}

TEST_F(ImageRequesterTest, CancelOfALocalReadStartsNoFallback) {
    // A large local file: the cancel lands while it is being read.
    const QString file = path("big.jpg");
    {
        QFile f(file);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        ASSERT_TRUE(f.resize(qint64(200) << 20));
    }
    item->asset.mediaType = library::MediaType::image;
    item->asset.resources = {Resource{ResourceType::photo, "big.jpg", file, qint64(200) << 20, true}};
    requester.dataRequest(item);
    requester.onProgressCanceled();
    EXPECT_TRUE(requester.resourceRequestCancelled());
    spin(500);
    // No main request followed: the cascade stopped where the user cancelled it.
    EXPECT_FALSE(requester.lastRequest.has_value());
    EXPECT_FALSE(item->received.has_value());
}

TEST_F(ImageRequesterTest, AlbumShowsProgressThenTheRowsOfAnItemOffTheDevice) {
    QFile jpeg(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg");
    ASSERT_TRUE(jpeg.open(QIODevice::ReadOnly));
    const QByteArray bytes = jpeg.readAll();
    library::Asset remote;
    remote.localIdentifier = "remote-1";
    remote.mediaType = library::MediaType::image;
    remote.resources = {Resource{ResourceType::photo, "IMG_0001.JPG", path("remote.jpg"), bytes.size(), false}};
    // Small pieces: the fetch lasts past the bar's short wait.
    SlowSource source(path("remote.jpg"), bytes, 1024, 40);
    auto album = std::make_shared<TSPhotoAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    const auto forget = qScopeGuard([] { TSEnvironment::setCurrentAlbum(nullptr); });
    screen.ignored = {"rows"};
    album->setAlbum(library::FetchResult({remote}), 0, "Recents");
    ASSERT_TRUE(QTest::qWaitFor([&] { return album->needDownload(); }, 20000));
    EXPECT_FALSE(album->currentAsset);
    ASSERT_TRUE(QTest::qWaitFor([&] { return album->currentAsset != nullptr; }, 20000));
    EXPECT_FALSE(album->needDownload());
    const TSAsset& item = *album->currentAsset;
    EXPECT_EQ(item.imageData(), bytes);
    EXPECT_EQ(item.ddStore().datas.value(TSKey::NAME), "IMG_0001.JPG");
    EXPECT_EQ(item.ddStore().datas.value(TSKey::CAMERA), "Canon EOS 40D");
    EXPECT_EQ(item.libraryAsset()->localIdentifier, "remote-1");

    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.heard.contains("processed"); }, 20000)) << screen.heard.join(" | ").toStdString();
    const qsizetype processed = screen.heard.indexOf("processed");
    // The bar was on view while the item was on its way.
    QList<float> before;
    for (qsizetype i = 0; i < processed; ++i)
        if (screen.heard[i].startsWith("progress ")) before << screen.heard[i].mid(9).toFloat();
    ASSERT_FALSE(before.isEmpty()) << screen.heard.join(" | ").toStdString();
    EXPECT_LT(before.first(), 1.0f);
    for (const QString& h : screen.heard) EXPECT_FALSE(h.startsWith("failure")) << h.toStdString();
}

}  // namespace
