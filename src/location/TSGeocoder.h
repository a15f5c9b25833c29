// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one way to place names: every caller asks here. Behind it stand the geocoding service
// (by default geo's Geocoder: the offline place data, the online service of the settings, both
// asked on GeocoderActor), a small cache and a one-request rule, so that paging through photos
// never floods the service, which takes one request at a time. Used from the GUI thread only.
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

    // One request for a position the user chose (a typed coordinate, a pin), past the cache:
    // such a request is rare and wants the service's own answer. Like any request, it ends
    // the one running.
    static void reverseGeocode(const GeoLocation& location, GeocodingService::Completion completion);
    // Whether searches ask an online service too; without one, the offline place data answer
    // a search at once and need no service.
    static bool isOnline();
    // Places by name from the service, best first; the completion runs later on this thread.
    static void search(const QString& text, int limit, std::function<void(const QList<PlaceMatch>&)> completion);

    // Newest first.
    static Recent<ReversedLocation>& cache();
    // The position of the latest request sent out.
    static std::optional<GeoLocation>& lastLocation();
    // Puts another service in place (none: the default one again, made on next use) and forgets
    // the cache and the last location.
    static void setGeocoder(std::shared_ptr<GeocodingService> service);

    TSGeocoder() = delete;

private:
    static GeocodingService& geocoder();
};
