// SPDX-License-Identifier: GPL-3.0-or-later
#include "WebMercator.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace mercator {

namespace {
constexpr double pi = std::numbers::pi;
constexpr double earthRadius = 6378137;  // the sphere of Web Mercator
constexpr double mapKitWorld = 268435456;  // 2^28 points
constexpr double headingSide = 2414.016;
}  // namespace

double worldSize(double zoom) { return tileSize * std::exp2(zoom); }

QPointF project(const GeoCoordinate& c, double zoom) {
    const double size = worldSize(zoom);
    const double lat = std::clamp(c.latitude, -maxLatitude, maxLatitude) * pi / 180;
    double lon = std::fmod(c.longitude + 180, 360);
    if (lon < 0) lon += 360;
    const double x = lon / 360 * size;
    const double y = (1 - std::log(std::tan(lat) + 1 / std::cos(lat)) / pi) / 2 * size;
    return {x, y};
}

GeoCoordinate unproject(const QPointF& p, double zoom) {
    const double size = worldSize(zoom);
    const double n = pi - 2 * pi * p.y() / size;
    return {std::atan(std::sinh(n)) * 180 / pi, p.x() / size * 360 - 180};
}

TileId tileAt(const GeoCoordinate& c, int zoom) {
    zoom = std::clamp(zoom, 0, maxZoom);
    const QPointF p = project(c, zoom);
    const double last = (1 << zoom) - 1;
    // Clamped as doubles first: a value out of int's range (or NaN) has no int to become.
    auto index = [last](double v) { return int(v >= 0 ? std::min(std::floor(v / tileSize), last) : 0); };
    return {zoom, index(p.x()), index(p.y())};
}

double metresPerPixel(double latitude, double zoom) {
    return 2 * pi * earthRadius * std::cos(latitude * pi / 180) / worldSize(zoom);
}

float headingRadians(double degrees) { return float(degrees / 180 * pi); }

QRectF headingRect(const GeoCoordinate& pin, double zoom) {
    const double side = headingSide * worldSize(zoom) / mapKitWorld;
    const QPointF centre = project(pin, zoom);
    return {centre.x() - side / 2, centre.y() - side / 2, side, side};
}

}  // namespace mercator
