// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A position on the earth and a named place: the values that the positioning and geocoding
// services deal in.
#include <QDateTime>
#include <QString>
#include <optional>

struct GeoCoordinate {
    double latitude = 0;
    double longitude = 0;
    bool operator==(const GeoCoordinate&) const = default;
};

struct GeoLocation {
    GeoCoordinate coordinate;
    double altitude = 0;
    double horizontalAccuracy = 0;  // metres; negative means the coordinate is not valid
    double verticalAccuracy = -1;   // metres; negative means the altitude is not valid
    double speed = -1;              // metres per second; negative means unknown
    double course = -1;             // degrees from true north; negative means unknown
    QDateTime timestamp = QDateTime::currentDateTimeUtc();

    GeoLocation() = default;
    GeoLocation(double latitude, double longitude) : coordinate{latitude, longitude} {}

    // Great-circle distance in metres (haversine on the mean earth radius).
    double distance(const GeoLocation& other) const;

    // Equal when all eight values agree, time to the millisecond.
    bool operator==(const GeoLocation& other) const;
};

// The geo: link of a place (RFC 5870), which the desktop's map applications open.
QString geoUri(const GeoCoordinate& coordinate);

// The texts that reverse geocoding gives for a place; any may be absent.
struct Placemark {
    std::optional<QString> subLocality, locality, country, ISOcountryCode, thoroughfare, subThoroughfare,
        postalCode, administrativeArea;
    bool operator==(const Placemark&) const = default;
};
