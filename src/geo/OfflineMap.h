// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The map that needs no network: land, coastlines and country borders from world.bin, and the
// towns of the place data as labelled dots, more of them the closer the view. The map view
// draws it beneath the tiles always, so a missing tile shows this instead of a hole.
#include "PlaceIndex.h"
#include "WebMercator.h"

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <memory>
#include <vector>

class QPainter;

enum class MapStyle { standard, hybrid, satellite };

class OfflineMap {
public:
    struct Town {
        QPointF point;  // world pixels at zoom 0
        QString name;
        quint32 population;
    };

    // Reads and checks world.bin; nothing on failure, with the reason in `error`. `index`, when
    // given, supplies the towns.
    static std::shared_ptr<const OfflineMap> load(const QString& path, const PlaceIndex* index = nullptr,
                                                  QString* error = nullptr);
    // $TESSORIN_WORLD if set, else share/tessorin/world.bin beside the program's folder, else the
    // installed copy.
    static QString defaultPath();
    // The map of defaultPath() with the shared place data's towns, loaded once; nothing when the
    // file can't be read (logged), and the view then draws only the sea.
    static std::shared_ptr<const OfflineMap> shared();

    // Draws the part of the world of `viewSize` pixels whose centre is `centre` in world pixels
    // at `zoom`, repeating the world sideways when the view is wider than it. `own` (a photo's
    // town, from ownTown) is named whatever its size.
    void draw(QPainter& painter, const QSizeF& viewSize, const QPointF& centre, double zoom, MapStyle style,
              const Town* own = nullptr) const;

    // The fewest people a town needs to get a dot at a zoom.
    static quint32 minPopulation(double zoom);
    // The closest zoom, at most `closest`, at which a view of `viewSize` centred on `c` names a
    // town besides the one `c` lies in: closer than that the map is land without a name.
    double zoomShowingTowns(const GeoCoordinate& c, const QSizeF& viewSize, double closest) const;
    // The town nearest `c`, when one lies within about 15 km of it: found once for a photo's
    // place, not at every frame, for it looks at every town.
    const Town* ownTown(const GeoCoordinate& c) const;

    qsizetype ringCount() const { return qsizetype(rings_.size()); }
    qsizetype borderCount() const { return qsizetype(borders_.size()); }
    qsizetype townCount() const { return qsizetype(towns_.size()); }

private:
    struct Line {
        std::vector<QPointF> points;  // world pixels at zoom 0
        QRectF bounds;
    };
    std::vector<Line> rings_;
    std::vector<Line> borders_;
    std::vector<Town> towns_;
};
