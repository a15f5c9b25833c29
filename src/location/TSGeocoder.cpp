// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSGeocoder.h"

#include "Geocoder.h"
#include "HRLocation.h"
#include "Log.h"
#include "Settings.h"
#include "TSError.h"

#include <coroutine>

namespace {

std::shared_ptr<GeocodingService>& service() {
    static std::shared_ptr<GeocodingService> s;
    return s;
}

// Suspends until the service answers; the service always answers later, on this thread.
struct ServiceAnswer {
    GeocodingService& service;
    GeoLocation location;
    GeocodeResult result{};

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        service.reverseGeocode(location, [this, handle](const GeocodeResult& r) {
            result = r;
            handle.resume();
        });
    }
    GeocodeResult await_resume() { return std::move(result); }
};

QString describe(const QList<Placemark>& placemarks) {
    QStringList texts;
    for (const Placemark& p : placemarks) texts << placeText(p);
    return "[" + texts.join(", ") + "]";
}

}  // namespace

bool TSGeocoder::ReversedLocation::operator==(const ReversedLocation& other) const {
    if (!location || !other.location) return !location && !other.location;
    return location->distance(*other.location) < threshold;
}

Recent<TSGeocoder::ReversedLocation>& TSGeocoder::cache() {
    static Recent<ReversedLocation> c(cacheSize);
    return c;
}

std::optional<GeoLocation>& TSGeocoder::lastLocation() {
    static std::optional<GeoLocation> last;
    return last;
}

GeocodingService& TSGeocoder::geocoder() {
    auto& s = service();
    if (!s) s = std::make_shared<Geocoder>([] { return Settings::value(onlineURLKey).toString(); });
    return *s;
}

void TSGeocoder::reverseGeocode(const GeoLocation& location, GeocodingService::Completion completion) {
    geocoder().reverseGeocode(location, std::move(completion));
}

bool TSGeocoder::isOnline() { return geocoder().isOnline(); }

void TSGeocoder::search(const QString& text, int limit, std::function<void(const QList<PlaceMatch>&)> completion) {
    geocoder().search(text, limit, std::move(completion));
}

void TSGeocoder::setGeocoder(std::shared_ptr<GeocodingService> s) {
    service() = std::move(s);
    cache().arrayList.clear();
    lastLocation().reset();
}

TSGeocoder::CacheAnswer TSGeocoder::reversed(const GeoLocation& location) {
    Log::debug("🗺 prec: " + QString::number(cache().arrayList.size()), "reversed(location:)");
    for (const ReversedLocation& entry : cache())
        if (entry.location && entry.location->distance(location) < threshold) return {true, entry.placemarks};
    return {};
}

QCoro::Task<QList<Placemark>> TSGeocoder::continuationReverse(GeoLocation location) {
    const GeocodeResult r = co_await ServiceAnswer{geocoder(), location};
    if (r.error) throw TSError(*r.error);
    co_return r.placemarks;
}

QCoro::Task<std::optional<QList<Placemark>>> TSGeocoder::reverse(GeoLocation location) {
    if (const CacheAnswer cached = reversed(location); cached.hit) {
        Log::debug("🗺 cached", "reverse(location:)");
        co_return cached.placemarks;
    }
    GeocodingService& g = geocoder();
    if (lastLocation() && lastLocation()->distance(location) < threshold) {
        Log::debug("🗺 geocoding", "reverse(location:)");
        if (g.isGeocoding()) co_return std::nullopt;  // the running request serves this place
    }
    if (g.isGeocoding()) {
        Log::debug("🗺 cancelled", "reverse(location:)");
        g.cancelGeocode();
    }
    lastLocation() = location;
    QList<Placemark> placemarks;
    try {
        placemarks = co_await continuationReverse(location);
    } catch (const TSError& e) {
        // Nothing is cached and the last location stays, so asking again starts over.
        Log::warning("🗺 " + e.message(), "reverse(location:)");
        co_return std::nullopt;
    }
    Log::debug("🗺 placemarks: " + describe(placemarks), "reverse(location:)");
    cache().add(ReversedLocation{location, placemarks});
    co_return placemarks;
}
