// SPDX-License-Identifier: GPL-3.0-or-later
#include "TileSource.h"
#include "WebMercator.h"

#include "HttpAnswer.h"
#include "Isolation.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QEventLoop>
#include <QImage>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <numbers>

using mercator::TileId;

TEST(WebMercator, TilesOfKnownPoints) {
    // London at zoom 10 is the tile every OSM example names.
    EXPECT_EQ(mercator::tileAt({51.5074, -0.1278}, 10), (TileId{10, 511, 340}));
    // Null Island sits on the corner of the four middle tiles and belongs to the south-east one.
    EXPECT_EQ(mercator::tileAt({0, 0}, 1), (TileId{1, 1, 1}));
    EXPECT_EQ(mercator::tileAt({0, 0}, 0), (TileId{0, 0, 0}));
    // The poles and the antimeridian stay on the map.
    EXPECT_EQ(mercator::tileAt({90, -180}, 3), (TileId{3, 0, 0}));
    EXPECT_EQ(mercator::tileAt({-90, 179.9999}, 3), (TileId{3, 7, 7}));
    EXPECT_EQ(mercator::tileAt({0, 180}, 2), (TileId{2, 0, 2}));  // 180° east is 180° west

    // Projecting and back again is the identity inside the square.
    for (const GeoCoordinate c : {GeoCoordinate{45.5, 9.2}, GeoCoordinate{-33.86, 151.21}, GeoCoordinate{64.1, -21.9}}) {
        const GeoCoordinate back = mercator::unproject(mercator::project(c, 13.5), 13.5);
        EXPECT_NEAR(back.latitude, c.latitude, 1e-9);
        EXPECT_NEAR(back.longitude, c.longitude, 1e-9);
    }
    // One pixel at zoom 0 on the equator is the earth's circumference over 256.
    EXPECT_NEAR(mercator::metresPerPixel(0, 0), 156543.03, 0.01);
    EXPECT_NEAR(mercator::metresPerPixel(60, 1), 156543.03 / 4, 0.01);
}

TEST(WebMercator, HeadingArrowTurnsByTheDirection) {
    EXPECT_EQ(mercator::headingRadians(0), 0.0f);
    EXPECT_EQ(mercator::headingRadians(90), float(std::numbers::pi / 2));
    EXPECT_FLOAT_EQ(mercator::headingRadians(271.5), 4.7385689f);  // 271.5 × 0.0174532925
    // At zoom 20 the world is 2^28 pixels, as many as the arrow's map points.
    const QRectF r = mercator::headingRect({0, 0}, 20);
    EXPECT_DOUBLE_EQ(r.width(), 2414.016);
    EXPECT_DOUBLE_EQ(r.center().x(), 134217728);
    EXPECT_DOUBLE_EQ(mercator::headingRect({0, 0}, 19).width(), 2414.016 / 2);
}

namespace {

// A tile server on the loopback address: answers each tile after a short wait with a green PNG
// that may be kept an hour.
struct TileServer : testsupport::HttpAnswer {
    TileServer() : HttpAnswer("200 OK", {}) {
        QImage image(256, 256, QImage::Format_RGB32);
        image.fill(Qt::green);
        QBuffer b(&body);
        b.open(QIODevice::WriteOnly);
        image.save(&b, "PNG");
        contentType = "image/png";
        cacheControl = "max-age=3600";
        delayMs = 30;
    }
};

// Asks for tiles until each has come or failed (10 s at most); counts the failures.
int fetch(TileSource& source, const QList<TileId>& tiles) {
    int failed = 0, done = 0;
    QEventLoop loop;
    QObject::connect(&source, &TileSource::tileReady, &loop, [&] { if (++done == tiles.size()) loop.quit(); });
    QObject::connect(&source, &TileSource::tileFailed, &loop, [&] {
        ++failed;
        if (++done == tiles.size()) loop.quit();
    });
    int atHand = 0;
    for (const TileId& t : tiles) atHand += source.tile(t) != nullptr;
    if (atHand == tiles.size()) return 0;
    QTimer::singleShot(10'000, &loop, &QEventLoop::quit);
    loop.exec();
    EXPECT_EQ(done + atHand, tiles.size());
    return failed;
}

class Tiles : public testsupport::IsolatedTest {
protected:
    void SetUp() override { ASSERT_TRUE(cache_.isValid()); }
    QTemporaryDir cache_;
    TileServer server_;
};

}  // namespace

TEST_F(Tiles, FetchedTwoAtATimeWithOurNameAndKeptWhileFresh) {
    QList<TileId> tiles;
    for (int x = 0; x < 4; ++x)
        for (int y = 0; y < 2; ++y) tiles.append({3, x, y});
    {
        TileSource first(server_.tileTemplate(), cache_.path());
        EXPECT_EQ(fetch(first, tiles), 0);
        ASSERT_NE(first.tile({3, 2, 1}), nullptr);
        EXPECT_EQ(first.tile({3, 2, 1})->size(), QSize(256, 256));
    }
    EXPECT_EQ(server_.requests, 8);
    EXPECT_LE(server_.maxOpen, 2);
    EXPECT_TRUE(server_.lastRequest().contains("GET /3/"));
    EXPECT_TRUE(server_.lastRequest().contains("User-Agent: Tessorin/")) << server_.lastRequest().toStdString();

    // A second view of the same place, in a new map, is drawn from the disk cache.
    TileSource second(server_.tileTemplate(), cache_.path());
    EXPECT_EQ(fetch(second, tiles), 0);
    EXPECT_EQ(server_.requests, 8);
}

TEST_F(Tiles, ExpiredTilesAreFetchedAgain) {
    server_.cacheControl = "max-age=1";
    { TileSource first(server_.tileTemplate(), cache_.path()); EXPECT_EQ(fetch(first, {{5, 1, 1}}), 0); }
    QEventLoop wait;
    QTimer::singleShot(2100, &wait, &QEventLoop::quit);
    wait.exec();
    TileSource second(server_.tileTemplate(), cache_.path());
    EXPECT_EQ(fetch(second, {{5, 1, 1}}), 0);
    EXPECT_EQ(server_.requests, 2);
}

TEST_F(Tiles, AFailingServerLeavesTheOfflineMap) {
    // An error status and a body that is no picture both fail, and a failed tile isn't asked
    // for again at once.
    server_.status = "503 Service Unavailable";
    server_.cacheControl = "no-store";
    TileSource source(server_.tileTemplate(), cache_.path());
    EXPECT_EQ(fetch(source, {{2, 1, 1}}), 1);
    server_.status = "200 OK";
    server_.body = "<html>not a tile</html>";
    EXPECT_EQ(fetch(source, {{2, 0, 1}}), 1);
    EXPECT_EQ(source.tile({2, 1, 1}), nullptr);
    EXPECT_EQ(server_.requests, 2);

    // A closed port is the same as no network.
    TileSource nowhere("http://127.0.0.1:9/{z}/{x}/{y}.png", cache_.path());
    EXPECT_EQ(fetch(nowhere, {{1, 0, 0}}), 1);
}

TEST_F(Tiles, NoServerAndTheNotice) {
    for (const char* none : {"", "none", " None "}) {
        TileSource source(none, cache_.path());
        EXPECT_FALSE(source.isEnabled());
        EXPECT_EQ(source.tile({0, 0, 0}), nullptr);
    }
    EXPECT_EQ(server_.requests, 0);
    TileSource osm(TileSource::openStreetMapTemplate, cache_.path());
    EXPECT_EQ(TileSource::attribution(osm.urlTemplate()), "© OpenStreetMap contributors");
    EXPECT_EQ(osm.url({4, 8, 5}).toString(), "https://tile.openstreetmap.org/4/8/5.png");
    EXPECT_EQ(TileSource::attribution(server_.tileTemplate()), "");
}
