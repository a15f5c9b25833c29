// SPDX-License-Identifier: GPL-3.0-or-later
// The map: drawing the offline world map of a phone-sized view at world, country and city zoom,
// and a photo's map row (offline map, cached tiles, pin, arrow and scale). bench/map.sh runs it
// and sets the figures beside the goal of one frame, 16 ms.
#include "HttpAnswer.h"
#include "OfflineMap.h"
#include "Settings.h"
#include "TSMapView.h"

#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QSize phone(390, 260);

void BM_OfflineMap(benchmark::State& state, double zoom, GeoCoordinate centre) {
    const auto map = OfflineMap::shared();
    if (!map) {
        state.SkipWithError("no world map");
        return;
    }
    QImage image(phone, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        QPainter painter(&image);
        map->draw(painter, phone, mercator::project(centre, zoom), zoom, MapStyle::standard);
    }
}
BENCHMARK_CAPTURE(BM_OfflineMap, world, 1.0, GeoCoordinate{20, -40})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OfflineMap, country, 5.0, GeoCoordinate{42, 12.5})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_OfflineMap, city, 12.0, GeoCoordinate{45.46, 9.19})->Unit(benchmark::kMillisecond);

// A loopback tile server for the map row's tiles, fetched once before the timing.
void BM_MapRowCachedTiles(benchmark::State& state) {
    QTemporaryDir dir;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir.path());
    qputenv("XDG_CACHE_HOME", dir.filePath("cache").toUtf8());
    QByteArray png;
    QImage tile(256, 256, QImage::Format_RGB32);
    tile.fill(QColor(0xe0, 0xe8, 0xd0));
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    tile.save(&buffer, "PNG");
    testsupport::HttpAnswer server("200 OK", png);
    server.contentType = "image/png";
    server.cacheControl = "max-age=600";
    Settings::setValue(TSMapView::standardTilesKey, server.tileTemplate());
    TSMapView view;
    view.setSize(phone);
    view.setPlace({{"latitude", 45.4642}, {"longitude", 9.19}, {"title", "Milan"}, {"heading", 211.2}});
    QImage image(phone, QImage::Format_ARGB32_Premultiplied);
    auto frame = [&] {
        QPainter painter(&image);
        view.paint(&painter);
    };
    frame();
    QTest::qWait(1500);  // the tiles arrive
    for (auto _ : state) frame();
}
BENCHMARK(BM_MapRowCachedTiles)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
