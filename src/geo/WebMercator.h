// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The map's projection: spherical Web Mercator in "world pixels", where the whole world at zoom z
// is a square of 256·2^z pixels with (0, 0) at its north-west corner, latitude ±85.0511 at its
// edges. Tile servers cut that square into 256-pixel tiles numbered from the same corner.
#include "GeoLocation.h"

#include <QPointF>
#include <QRectF>

namespace mercator {

inline constexpr double tileSize = 256;
inline constexpr double maxLatitude = 85.05112877980659;
inline constexpr int maxZoom = 19;

struct TileId {
    int z = 0, x = 0, y = 0;
    bool operator==(const TileId&) const = default;
};

double worldSize(double zoom);
// Latitudes beyond the square are clamped to its edge; longitudes wrap.
QPointF project(const GeoCoordinate& coordinate, double zoom);
GeoCoordinate unproject(const QPointF& point, double zoom);
// The tile that holds the coordinate at a whole zoom.
TileId tileAt(const GeoCoordinate& coordinate, int zoom);
// Ground metres per world pixel at a latitude.
double metresPerPixel(double latitude, double zoom);

// The heading arrow turns clockwise by the camera's direction, in radians: worked out in
// doubles, handed to drawing as a float.
float headingRadians(double degrees);
// The square the arrow covers around the pin: 2414.016 points of a 2^28-point world wide,
// whatever the zoom, so it grows and shrinks with the ground like the map.
QRectF headingRect(const GeoCoordinate& pin, double zoom);

}  // namespace mercator
