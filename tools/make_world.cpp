// SPDX-License-Identifier: GPL-3.0-or-later
// Builds world.bin, the offline world map, from Natural Earth's 1:50m countries as TopoJSON
// (npm world-atlas): the merged land polygons, and every arc two countries share as a border.
// usage: make_world COUNTRIES_TOPOJSON OUT_FILE
#include "WorldFormat.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <tuple>
#include <vector>

namespace {

struct Point {
    float lon, lat;
};
using Line = std::vector<Point>;

// TopoJSON keeps each arc once, quantised and delta-coded; a negative index (~i) walks arc i
// backwards.
std::vector<Line> decodeArcs(const QJsonObject& topology) {
    const QJsonObject transform = topology["transform"].toObject();
    const double sx = transform["scale"][0].toDouble(), sy = transform["scale"][1].toDouble();
    const double tx = transform["translate"][0].toDouble(), ty = transform["translate"][1].toDouble();
    std::vector<Line> arcs;
    for (const QJsonValue& arc : topology["arcs"].toArray()) {
        Line line;
        qint64 x = 0, y = 0;
        for (const QJsonValue& p : arc.toArray()) {
            x += p[0].toInteger();
            y += p[1].toInteger();
            line.push_back({float(x * sx + tx), float(y * sy + ty)});
        }
        arcs.push_back(std::move(line));
    }
    return arcs;
}

Line ring(const QJsonArray& arcIndexes, const std::vector<Line>& arcs) {
    Line out;
    for (const QJsonValue& v : arcIndexes) {
        const int i = v.toInt();
        const bool reversed = i < 0;
        const size_t index = size_t(reversed ? ~i : i);
        if (index >= arcs.size()) continue;
        Line arc = arcs[index];
        if (reversed) std::reverse(arc.begin(), arc.end());
        // Each arc starts where the last one ended.
        out.insert(out.end(), arc.begin() + (out.empty() ? 0 : 1), arc.end());
    }
    return out;
}

// A ring that crosses the antimeridian (Chukotka, Fiji) jumps by 360° there; drawn as it is, that
// edge would run across the whole map. Continuing its longitudes past ±180 keeps it whole (the map
// draws the world's neighbouring copies). A ring around a pole (Antarctica) doesn't close that
// way and is left as it is: its long edge lies on the map's bottom edge.
Line unwrapped(const Line& ring) {
    Line out = ring;
    for (size_t i = 1; i < out.size(); ++i) {
        float lon = out[i].lon;
        while (lon - out[i - 1].lon > 180) lon -= 360;
        while (lon - out[i - 1].lon < -180) lon += 360;
        out[i].lon = lon;
    }
    return std::abs(out.back().lon - out.front().lon) < 1 ? out : ring;
}

// Calls `visit` with every ring's arc list of a Polygon or MultiPolygon.
template <typename Visit>
void forEachRing(const QJsonObject& geometry, const Visit& visit) {
    const QString type = geometry["type"].toString();
    const QJsonArray arcs = geometry["arcs"].toArray();
    if (type == "Polygon")
        for (const QJsonValue& r : arcs) visit(r.toArray());
    else if (type == "MultiPolygon")
        for (const QJsonValue& polygon : arcs)
            for (const QJsonValue& r : polygon.toArray()) visit(r.toArray());
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_world COUNTRIES_TOPOJSON OUT_FILE\n");
        return 2;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "make_world: can't read %s\n", argv[1]);
        return 1;
    }
    const QJsonObject topology = QJsonDocument::fromJson(in.readAll()).object();
    const std::vector<Line> arcs = decodeArcs(topology);
    const QJsonObject objects = topology["objects"].toObject();

    std::vector<Line> rings;
    for (const QJsonValue& g : objects["land"]["geometries"].toArray())
        forEachRing(g.toObject(), [&](const QJsonArray& r) {
            if (Line l = ring(r, arcs); l.size() >= 3) rings.push_back(unwrapped(l));
        });

    // An arc in the rings of two countries is a border between them; one in a single country's
    // rings is coast, which the land's outline already draws.
    QHash<int, int> uses;
    for (const QJsonValue& g : objects["countries"]["geometries"].toArray())
        forEachRing(g.toObject(), [&](const QJsonArray& r) {
            for (const QJsonValue& v : r) ++uses[v.toInt() < 0 ? ~v.toInt() : v.toInt()];
        });
    std::vector<Line> borders;
    for (auto it = uses.cbegin(); it != uses.cend(); ++it)
        if (it.value() >= 2 && size_t(it.key()) < arcs.size()) borders.push_back(arcs[size_t(it.key())]);
    std::sort(borders.begin(), borders.end(), [](const Line& a, const Line& b) {
        return std::tie(a.front().lon, a.front().lat) < std::tie(b.front().lon, b.front().lat);
    });
    if (rings.empty() || borders.empty()) {
        std::fprintf(stderr, "make_world: no land or no borders in %s\n", argv[1]);
        return 1;
    }

    std::vector<quint32> ringStarts{0}, borderStarts;
    std::vector<float> points;
    for (const Line& l : rings) {
        for (const Point& p : l) points.insert(points.end(), {p.lon, p.lat});
        ringStarts.push_back(quint32(points.size() / 2));
    }
    borderStarts.push_back(ringStarts.back());
    for (const Line& l : borders) {
        for (const Point& p : l) points.insert(points.end(), {p.lon, p.lat});
        borderStarts.push_back(quint32(points.size() / 2));
    }

    world::Header header{};
    std::copy(std::begin(world::magic), std::end(world::magic), header.magic);
    header.version = world::formatVersion;
    header.ringCount = quint32(rings.size());
    header.borderCount = quint32(borders.size());
    header.pointCount = quint32(points.size() / 2);

    QSaveFile out(QString::fromLocal8Bit(argv[2]));
    if (!out.open(QIODevice::WriteOnly)) return 1;
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    out.write(reinterpret_cast<const char*>(ringStarts.data()), qint64(ringStarts.size() * sizeof(quint32)));
    out.write(reinterpret_cast<const char*>(borderStarts.data()), qint64(borderStarts.size() * sizeof(quint32)));
    out.write(reinterpret_cast<const char*>(points.data()), qint64(points.size() * sizeof(float)));
    if (!out.commit()) {
        std::fprintf(stderr, "make_world: can't write %s\n", argv[2]);
        return 1;
    }
    std::printf("world map: %zu land rings, %zu borders, %zu points\n", rings.size(), borders.size(), points.size() / 2);
    return 0;
}
