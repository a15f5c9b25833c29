// SPDX-License-Identifier: GPL-3.0-or-later
#include "GeoLocation.h"

#include <cmath>

double GeoLocation::distance(const GeoLocation& other) const {
    constexpr double earthRadius = 6371008.8;  // mean radius, metres
    constexpr double rad = M_PI / 180.0;
    double lat1 = coordinate.latitude * rad, lat2 = other.coordinate.latitude * rad;
    double dLat = lat2 - lat1, dLon = (other.coordinate.longitude - coordinate.longitude) * rad;
    double a = std::sin(dLat / 2) * std::sin(dLat / 2) + std::cos(lat1) * std::cos(lat2) * std::sin(dLon / 2) * std::sin(dLon / 2);
    return 2 * earthRadius * std::atan2(std::sqrt(a), std::sqrt(std::max(0.0, 1 - a)));
}

bool GeoLocation::operator==(const GeoLocation& o) const {
    return coordinate == o.coordinate && altitude == o.altitude && horizontalAccuracy == o.horizontalAccuracy &&
           verticalAccuracy == o.verticalAccuracy && speed == o.speed && course == o.course &&
           timestamp.toMSecsSinceEpoch() == o.timestamp.toMSecsSinceEpoch();
}

QString geoUri(const GeoCoordinate& c) {
    return QStringLiteral("geo:%1,%2").arg(c.latitude, 0, 'f', 6).arg(c.longitude, 0, 'f', 6);
}
