// SPDX-License-Identifier: GPL-3.0-or-later
#include "OfflineMap.h"

#include <gtest/gtest.h>

#include <QFile>
#include <cstring>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

namespace {

const QSize view(800, 600);

QImage drawn(const OfflineMap& map, const GeoCoordinate& centre, double zoom, MapStyle style = MapStyle::standard) {
    QImage image(view, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    map.draw(painter, view, mercator::project(centre, zoom), zoom, style);
    return image;
}

// The colour drawn at a coordinate of a view centred on `centre`.
QColor at(const QImage& image, const GeoCoordinate& centre, const GeoCoordinate& c, double zoom, double dx = 0) {
    const QPointF p = mercator::project(c, zoom) - mercator::project(centre, zoom) + QPointF(view.width(), view.height()) / 2;
    return image.pixelColor(int(p.x() + dx), int(p.y()));
}

const QColor sea(0xaa, 0xd3, 0xdf), land(0xf2, 0xef, 0xe9);

// Equal but for the rounding of blending.
bool near(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue()) <= 6;
}

}  // namespace

// Drawn from the file alone: no tile server, no network.
TEST(OfflineMap, LandAndSeaAtWorldCountryAndCityZoom) {
    QString error;
    const auto map = OfflineMap::load(OfflineMap::defaultPath(), nullptr, &error);
    ASSERT_TRUE(map) << error.toStdString() << " (run scripts/install-deps.sh and build world_data)";
    EXPECT_GT(map->ringCount(), 100);
    EXPECT_GT(map->borderCount(), 100);

    // The whole world at zoom 0 is 256 pixels wide: a wider view shows it twice.
    const GeoCoordinate atlantic{20, -40};
    const QImage world = drawn(*map, atlantic, 0);
    EXPECT_TRUE(near(at(world, atlantic, {-25, 134}, 0), land)) << "Australia";
    EXPECT_TRUE(near(at(world, atlantic, {-25, 134}, 0, -256), land)) << "Australia, one world to the west";

    // Across the antimeridian, Chukotka is land on both sides and the Bering Sea is sea.
    const GeoCoordinate bering{64, -175};
    const QImage strait = drawn(*map, bering, 4);
    EXPECT_TRUE(near(at(strait, bering, {67, -176}, 4), land));
    EXPECT_TRUE(near(at(strait, bering, {66, 176}, 4, -mercator::worldSize(4)), land));
    EXPECT_TRUE(near(at(strait, bering, {60, -175}, 4), sea));
    EXPECT_TRUE(near(at(world, atlantic, {-5, -150}, 0, 256), sea)) << "Pacific";
    EXPECT_TRUE(near(at(world, atlantic, {30, -40}, 0), sea)) << "Atlantic";

    // Italy at country zoom: the Po valley is land, the Tyrrhenian Sea is sea.
    const GeoCoordinate italy{42, 12.5};
    const QImage country = drawn(*map, italy, 5);
    EXPECT_TRUE(near(at(country, italy, {45.1, 10.5}, 5), land));
    EXPECT_TRUE(near(at(country, italy, {40.0, 11.5}, 5), sea));

    // Barcelona at city zoom, where a continent's ring is far bigger than the view.
    const GeoCoordinate barcelona{41.38, 2.17};
    const QImage city = drawn(*map, barcelona, 12);
    EXPECT_TRUE(near(at(city, barcelona, {41.42, 2.12}, 12), land)) << "the city";
    EXPECT_TRUE(near(at(city, barcelona, {41.32, 2.28}, 12), sea)) << "the sea off it";
    EXPECT_EQ(city.pixelColor(0, 0).alpha(), 255);  // every pixel drawn

    // The aerial styles draw the same map in their own colours.
    const QImage hybrid = drawn(*map, italy, 5, MapStyle::hybrid);
    EXPECT_NE(at(hybrid, italy, {45.1, 10.5}, 5), land);
    EXPECT_NE(at(hybrid, italy, {45.1, 10.5}, 5), at(hybrid, italy, {40.0, 11.5}, 5));
}

TEST(OfflineMap, TownsAppearByPopulationAndZoom) {
    const auto index = PlaceIndex::shared();
    ASSERT_TRUE(index);
    const auto map = OfflineMap::load(OfflineMap::defaultPath(), index.get());
    ASSERT_TRUE(map);
    EXPECT_GT(map->townCount(), 1000);

    auto labelPixels = [&](const GeoCoordinate& c, double zoom) {
        const QImage image = drawn(*map, c, zoom);
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) dark += qGray(image.pixel(x, y)) < 60;
        return dark;
    };
    EXPECT_GT(labelPixels({48.86, 2.35}, 6), 50) << "Paris and its neighbours are named";
    EXPECT_EQ(labelPixels({-30, -140}, 6), 0) << "the open Pacific has no towns";
    // Closer views name smaller towns.
    EXPECT_LT(OfflineMap::minPopulation(12), OfflineMap::minPopulation(6));
    EXPECT_LT(OfflineMap::minPopulation(6), OfflineMap::minPopulation(0));
}

// Offline, a photo's map opens where it names something: a mountain village's own name, and
// its neighbours once the view has backed out far enough to reach them.
TEST(OfflineMap, APhotosMapNamesItsTownAndOpensWhereNeighboursShow) {
    const auto index = PlaceIndex::shared();
    ASSERT_TRUE(index);
    const auto map = OfflineMap::load(OfflineMap::defaultPath(), index.get());
    ASSERT_TRUE(map);
    auto darkPixels = [&](const GeoCoordinate& c, double zoom, std::optional<GeoCoordinate> own) {
        QImage image(view, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        map->draw(painter, view, mercator::project(c, zoom), zoom, MapStyle::standard, own ? map->ownTown(*own) : nullptr);
        painter.end();
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) dark += qGray(image.pixel(x, y)) < 60;
        return dark;
    };
    // Zermatt: some 5,800 people, at the end of a valley; the nearest bigger towns are 30 km off.
    const GeoCoordinate zermatt{46.0207, 7.7491};
    EXPECT_EQ(darkPixels(zermatt, 12, std::nullopt), 0) << "too small for a dot of its own at this zoom";
    EXPECT_GT(darkPixels(zermatt, 12, zermatt), 20) << "the photo's own town is named";
    // Out in the open sea there is no town of one's own to name.
    EXPECT_EQ(darkPixels({-30, -140}, 12, GeoCoordinate{-30, -140}), 0);

    // A phone's map row: the zoom backs out until a neighbour is in view, and no farther than that.
    const QSizeF row(390, 200);
    const double zoom = map->zoomShowingTowns(zermatt, row, 12);
    EXPECT_LT(zoom, 12);
    EXPECT_GE(zoom, 7) << "a valley's neighbours, not the whole country";
    EXPECT_GT(darkPixels(zermatt, zoom, std::nullopt), 0);
    // A tablet's view of Paris names its suburbs at the closest zoom already.
    EXPECT_EQ(map->zoomShowingTowns({48.8566, 2.3522}, QSizeF(view), 12), 12);
}

TEST(OfflineMap, DamagedFilesAreRefused) {
    QFile real(OfflineMap::defaultPath());
    ASSERT_TRUE(real.open(QIODevice::ReadOnly));
    const QByteArray good = real.readAll();
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());

    QByteArray farRing = good;
    const quint32 huge = 0xFFFFFFF0;
    std::memcpy(farRing.data() + 24 + 4, &huge, 4);  // the first ring ends far past the points
    QByteArray manyRings = good;
    std::memcpy(manyRings.data() + 12, &huge, 4);  // a ring count that would wrap the size sum

    for (const QByteArray& bytes : {QByteArray(), good.left(20), good.left(good.size() - 1), good + "x", farRing,
                                    manyRings, QByteArray("TSPLACES") + good.mid(8)}) {
        const QString path = dir.filePath("world.bin");
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
        f.close();
        QString error;
        EXPECT_FALSE(OfflineMap::load(path, nullptr, &error));
        EXPECT_FALSE(error.isEmpty());
    }
    EXPECT_FALSE(OfflineMap::load(dir.filePath("missing.bin")));
}
