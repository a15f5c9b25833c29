// SPDX-License-Identifier: GPL-3.0-or-later
#include "Geocoder.h"

#include "GeocoderActor.h"
#include "Log.h"
#include "NominatimProvider.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>

#include <atomic>
#include <mutex>

// What the caller's side and the worker's jobs share. Jobs may outlive the Geocoder: they post
// their answers only while `home` (an object on the caller's thread) is there.
struct Geocoder::Shared {
    std::mutex mutex;
    QObject* home = nullptr;
    Geocoder* owner = nullptr;
    std::atomic<quint64> latest{0};  // the newest request; older ones need no network

    // Worker only.
    QPointer<QNetworkReply> reply;
    quint64 replyId = 0;

    void post(std::function<void(Geocoder&)> f) {
        std::lock_guard lock(mutex);
        if (!home) return;
        Geocoder* o = owner;
        QMetaObject::invokeMethod(home, [o, f = std::move(f)] { f(*o); }, Qt::QueuedConnection);
    }
};

namespace {

// One network access for all requests, made on the worker thread and living there.
QNetworkAccessManager* network() {
    static QNetworkAccessManager* nam = nullptr;
    if (!nam) nam = new QNetworkAccessManager(GeocoderActor::shared().context());
    return nam;
}

}  // namespace

Geocoder::Geocoder(std::function<QString()> onlineURL, IndexSource index)
    : shared_(std::make_shared<Shared>()), onlineURL_(std::move(onlineURL)), index_(std::move(index)) {
    shared_->home = new QObject;
    shared_->owner = this;
}

Geocoder::~Geocoder() {
    QObject* home;
    {
        std::lock_guard lock(shared_->mutex);
        home = shared_->home;
        shared_->home = nullptr;
    }
    delete home;  // answers already posted to it are dropped with it
}

void Geocoder::reverseGeocode(const GeoLocation& location, Completion completion) {
    if (busy_) cancelGeocode();
    const quint64 id = ++current_;
    busy_ = true;
    completion_ = std::move(completion);
    shared_->latest = id;
    const QUrl base = onlineBase();
    const QLocale locale;
    const GeoCoordinate c = location.coordinate;
    GeocoderActor::shared().enqueue([shared = shared_, index = index_, id, base, locale, c] {
        GeocodeResult offline;
        if (auto places = index ? index() : nullptr) {
            if (auto p = places->reverse(c, locale)) offline.placemarks << *p;
        } else {
            offline.error = QStringLiteral("no place data");
        }
        if (base.isEmpty() || shared->latest != id) {
            shared->post([id, offline](Geocoder& g) { g.deliver(id, offline); });
            return;
        }
        QNetworkReply* reply = network()->get(nominatim::reverseRequest(base, c, locale));
        shared->reply = reply;
        shared->replyId = id;
        QObject::connect(reply, &QNetworkReply::finished, reply, [shared, reply, id, offline] {
            reply->deleteLater();
            GeocodeResult result = offline;
            if (reply->error() == QNetworkReply::NoError) {
                if (auto p = nominatim::parseReverse(reply->readAll())) result = GeocodeResult{{*p}, std::nullopt, false};
            } else if (reply->error() != QNetworkReply::OperationCanceledError) {
                Log::info("🗺 online geocoder: " + reply->errorString() + "; the offline answer stands", "reverseGeocode");
            }
            shared->post([id, result](Geocoder& g) { g.deliver(id, result); });
        });
    });
}

void Geocoder::cancelGeocode() {
    if (!busy_) return;
    busy_ = false;
    const quint64 id = current_;
    shared_->latest = id + 1;  // no request of this id needs the network any more
    Completion c = std::move(completion_);
    completion_ = nullptr;
    shared_->post([c](Geocoder&) {
        if (c) c(GeocodeResult{{}, QStringLiteral("cancelled"), true});
    });
    GeocoderActor::shared().enqueue([shared = shared_, id] {
        if (shared->reply && shared->replyId == id) shared->reply->abort();
    });
}

void Geocoder::deliver(quint64 id, const GeocodeResult& result) {
    if (!busy_ || id != current_) return;  // cancelled, or overtaken by a newer request
    busy_ = false;
    Completion c = std::move(completion_);
    completion_ = nullptr;
    if (c) c(result);
}

QUrl Geocoder::onlineBase() const {
    const QString url = onlineURL_ ? onlineURL_().trimmed() : QString();
    const QUrl base(url);
    return url.isEmpty() || !base.isValid() ? QUrl() : base;
}

bool Geocoder::isOnline() const { return !onlineBase().isEmpty(); }

void Geocoder::search(const QString& text, int limit, std::function<void(const QList<PlaceMatch>&)> completion) {
    const QLocale locale;
    const QUrl base = onlineBase();
    GeocoderActor::shared().enqueue([shared = shared_, index = index_, text, limit, locale, base, completion = std::move(completion)] {
        QList<PlaceMatch> matches;
        if (auto places = index ? index() : nullptr) matches = places->search(text, limit, locale);
        if (base.isEmpty()) {
            shared->post([completion, matches](Geocoder&) { completion(matches); });
            return;
        }
        QNetworkReply* reply = network()->get(nominatim::searchRequest(base, text, limit, locale));
        QObject::connect(reply, &QNetworkReply::finished, reply, [shared, reply, matches, limit, completion] {
            reply->deleteLater();
            QList<PlaceMatch> merged;
            if (reply->error() == QNetworkReply::NoError) {
                for (const auto& [placemark, coordinate] : nominatim::parseSearch(reply->readAll()))
                    merged.append(PlaceMatch{placemark, coordinate, 0});
            } else {
                Log::info("🗺 online search: " + reply->errorString() + "; the offline answer stands", "search");
            }
            // An offline town the service named too (within a kilometre) is left out.
            for (const PlaceMatch& m : matches) {
                const bool known = std::any_of(merged.begin(), merged.end(), [&](const PlaceMatch& o) {
                    return GeoLocation(o.coordinate.latitude, o.coordinate.longitude)
                               .distance(GeoLocation(m.coordinate.latitude, m.coordinate.longitude)) < 1000;
                });
                if (!known && merged.size() < limit) merged.append(m);
            }
            shared->post([completion, merged](Geocoder&) { completion(merged); });
        });
    });
}
