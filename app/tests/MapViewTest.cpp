// SPDX-License-Identifier: GPL-3.0-or-later
// The map item drawn offscreen: the heading arrow's turn, the camera and style rules, moving
// away and back, and tiles from a server on the loopback address over the offline map.
#include "HttpAnswer.h"
#include "Isolation.h"
#include "Settings.h"
#include "TSMapView.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

const QColor arrowBlue(0x00, 0x7A, 0xFF);

class MapViewTest : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        Settings::setValue(TSMapView::standardTilesKey, "none");
        view_.setSize(QSizeF(400, 300));
    }
    QImage draw() {
        QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        view_.paint(&painter);
        return image;
    }
    // The centre of the arrow's blue pixels, from the pin.
    QPointF arrowFromPin(double heading) {
        view_.setPlace({{"latitude", 45.5}, {"longitude", 9.2}, {"title", "Milan"}, {"heading", heading}});
        const QImage image = draw();
        QPointF sum;
        int n = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == arrowBlue) sum += QPointF(x, y), ++n;
        EXPECT_GT(n, 50);
        return n ? sum / n - QPointF(200, 150) : QPointF();
    }
    TSMapView view_;
};

}  // namespace

TEST_F(MapViewTest, ArrowTurnsClockwiseFromNorth) {
    const QPointF north = arrowFromPin(0);
    EXPECT_LT(north.y(), -10);
    EXPECT_NEAR(north.x(), 0, 2);
    const QPointF east = arrowFromPin(90);  // a quarter turn
    EXPECT_GT(east.x(), 10);
    EXPECT_NEAR(east.y(), 0, 2);
    const QPointF west = arrowFromPin(271.5);  // just north of west
    EXPECT_LT(west.x(), -10);
    EXPECT_LT(west.y(), 0);
    EXPECT_NEAR(west.y() / west.x(), std::tan(1.5 * M_PI / 180), 0.05);

    // A photo without direction: the pin alone, no arrow left from the last one.
    view_.setPlace({{"latitude", 45.5}, {"longitude", 9.2}, {"title", "Milan"}});
    const QImage image = draw();
    int blue = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) blue += image.pixelColor(x, y) == arrowBlue;
    EXPECT_EQ(blue, 0);
}

TEST_F(MapViewTest, CameraStyleAndRecentre) {
    view_.setPlace({{"latitude", 45.5}, {"longitude", 9.2}, {"title", "Milan"}});
    EXPECT_EQ(view_.cameraType(), TSMapView::standard);
    const double standardZoom = view_.zoom();
    view_.setSegment(0);
    EXPECT_EQ(view_.cameraType(), TSMapView::threeD);
    EXPECT_GT(view_.zoom(), standardZoom);  // the 3D camera is lower
    view_.setSegment(2);                     // "Hybrid" from 3D
    EXPECT_EQ(view_.cameraType(), TSMapView::standard);
    EXPECT_EQ(view_.mapStyle(), MapStyle::hybrid);
    EXPECT_FALSE(draw().isNull());

    // Moving the map shows the re-centre button; re-centring hides it and finds the pin again.
    EXPECT_FALSE(view_.movedAway());
    view_.pan(120, -40);
    view_.zoomAt(2, 10, 10);
    EXPECT_TRUE(view_.movedAway());
    view_.recenter();
    EXPECT_FALSE(view_.movedAway());
    EXPECT_NEAR(view_.pinPoint().x(), 200, 1e-6);
    EXPECT_NEAR(view_.pinPoint().y(), 150, 1e-6);
    // A long press names the ground under it.
    const QVariantMap at = view_.coordinateAt(200, 150);
    EXPECT_NEAR(at["latitude"].toDouble(), 45.5, 1e-9);
    EXPECT_NEAR(at["longitude"].toDouble(), 9.2, 1e-9);

    // Damaged places are no places, and draw.
    for (const QVariantMap& bad : {QVariantMap{{"latitude", "north"}, {"longitude", 9.2}},
                                   QVariantMap{{"latitude", qQNaN()}, {"longitude", 9.2}},
                                   QVariantMap{{"latitude", 45.0}, {"longitude", qInf()}}}) {
        view_.setPlace(bad);
        EXPECT_FALSE(view_.hasPin());
        EXPECT_FALSE(draw().isNull());
    }

    // An item without place: the world around the Atlantic, no pin, no tools.
    view_.setPlace({});
    EXPECT_FALSE(view_.hasPin());
    EXPECT_NEAR(view_.centerLatitude(), 20, 1e-9);
    EXPECT_NEAR(view_.centerLongitude(), -40, 1e-9);
    view_.pan(50, 0);
    EXPECT_FALSE(view_.movedAway());

    // The scale: a round distance no longer than 100 pixels.
    view_.setPlace({{"latitude", 0.0}, {"longitude", 0.0}});
    const auto [metres, pixels] = view_.scaleBar();
    EXPECT_LE(pixels, 100);
    EXPECT_GT(pixels, 40);
    EXPECT_EQ(TSMapView::distanceText(200), "200 m");
    EXPECT_EQ(TSMapView::distanceText(5000), "5 km");
}

TEST_F(MapViewTest, TilesFromTheServerCoverTheOfflineMap) {
    // A server whose every tile is plain red.
    QByteArray png;
    QImage red(256, 256, QImage::Format_RGB32);
    red.fill(Qt::red);
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    red.save(&buffer, "PNG");
    testsupport::HttpAnswer server("200 OK", png);
    server.contentType = "image/png";
    server.cacheControl = "max-age=600";
    Settings::setValue(TSMapView::standardTilesKey, server.tileTemplate());
    view_.setPlace({{"latitude", 45.5}, {"longitude", 9.2}});
    EXPECT_EQ(view_.attribution(), "");
    EXPECT_NE(draw().pixelColor(5, 295), QColor(Qt::red));  // nothing yet: the offline map
    EXPECT_TRUE(QTest::qWaitFor([&] { return draw().pixelColor(5, 295) == QColor(Qt::red); }, 10000));
    EXPECT_LE(server.requests, 6);  // the tiles of the view, once each

    Settings::setValue(TSMapView::standardTilesKey, TileSource::openStreetMapTemplate);
    EXPECT_EQ(view_.attribution(), "© OpenStreetMap contributors");
}
