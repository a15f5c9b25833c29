// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The geocoding service of the program (callers ask it through location's TSGeocoder): the
// offline place data, and the online service when the user has given one. Requests run on
// GeocoderActor; answers come back to the thread that made the Geocoder. When the online
// service fails, is slow to connect or is off, the offline answer stands.
#include "GeocodingService.h"
#include "PlaceIndex.h"

#include <QUrl>
#include <functional>
#include <memory>

class Geocoder final : public GeocodingService {
public:
    using IndexSource = std::function<std::shared_ptr<const PlaceIndex>()>;
    // `onlineURL` is asked at each request; an empty text means offline only. The place data
    // is fetched from `index` on the worker, so that loading it never holds up the caller.
    explicit Geocoder(std::function<QString()> onlineURL = {}, IndexSource index = &PlaceIndex::shared);
    ~Geocoder() override;

    void reverseGeocode(const GeoLocation& location, Completion completion) override;
    bool isGeocoding() const override { return busy_; }
    void cancelGeocode() override;

    // Places by name, best first (PlaceIndex::search), on the worker; the completion runs on
    // the thread that made the Geocoder. With an online service, its answers come first (they
    // know streets), then the offline places that aren't among them; when it fails, the offline
    // answer stands.
    void search(const QString& text, int limit, std::function<void(const QList<PlaceMatch>&)> completion) override;
    // Whether searches and reverse look-ups ask an online service too.
    bool isOnline() const override;

private:
    struct Shared;
    void deliver(quint64 id, const GeocodeResult& result);
    // The online service's address, asked now; empty when there is none or it is no address.
    QUrl onlineBase() const;

    std::shared_ptr<Shared> shared_;
    std::function<QString()> onlineURL_;
    IndexSource index_;
    quint64 current_ = 0;
    bool busy_ = false;
    Completion completion_;
};
