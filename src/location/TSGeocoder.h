// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Coordinates to place names while the user pages through photos. The geocoding service takes
// one request at a time and is not to be flooded, so a small cache and a one-request rule
// stand in front of it. Used from the GUI thread only; the requests themselves run on
// GeocoderActor.
#include "GeoLocation.h"
#include "GeocodingService.h"
#include "Recent.h"

#include <QCoro/QCoroTask>
#include <QList>
#include <memory>
#include <optional>

class TSGeocoder {
public:
    // Two positions closer than this are one place, for the cache and for the running request.
    static constexpr double threshold = 7.2;  // metres
    static constexpr int cacheSize = 10;
    // Setting with the address of a Nominatim-compatible service; empty (the default): offline.
    static constexpr char onlineURLKey[] = "geocoderURL";

    struct ReversedLocation {
        std::optional<GeoLocation> location;
        std::optional<QList<Placemark>> placemarks;
        // Equal when both locations lie less than `threshold` apart, or both are missing.
        bool operator==(const ReversedLocation& other) const;
    };

    // The answer of the cache: a hit carries the cached placemarks, which may be none.
    struct CacheAnswer {
        bool hit = false;
        std::optional<QList<Placemark>> placemarks;
    };

    // The placemarks of a position, from the cache or the service. Nothing when the request
    // failed or was cancelled, or when the same place is being asked for already (that
    // request will serve it).
    static QCoro::Task<std::optional<QList<Placemark>>> reverse(GeoLocation location);
    static CacheAnswer reversed(const GeoLocation& location);
    // One request to the service; throws TSError when it fails or is cancelled.
    static QCoro::Task<QList<Placemark>> continuationReverse(GeoLocation location);

    // Newest first.
    static Recent<ReversedLocation>& cache();
    // The position of the latest request sent out.
    static std::optional<GeoLocation>& lastLocation();
    // The service: by default the offline place data, with the online service of the settings.
    static GeocodingService& geocoder();
    // Puts another service in place and forgets the cache and the last location.
    static void setGeocoder(std::shared_ptr<GeocodingService> service);

    TSGeocoder() = delete;
};
