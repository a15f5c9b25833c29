// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a geocoding service offers: the placemarks of a position, whether a request is running,
// and cancelling it. One request at a time.
#include "GeoLocation.h"
#include "PlaceIndex.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

struct GeocodeResult {
    QList<Placemark> placemarks;  // empty: no place there
    std::optional<QString> error;  // set when the request failed; placemarks are then empty
    bool cancelled = false;        // a failure by cancelGeocode or by a newer request
};

class GeocodingService {
public:
    using Completion = std::function<void(const GeocodeResult&)>;
    virtual ~GeocodingService() = default;

    // Asks for the placemarks of a position. The completion runs exactly once, later, on the
    // thread that asked (whose event loop must run): with the answer, or with an error, a
    // cancellation among them. A request made while another runs cancels the running one.
    virtual void reverseGeocode(const GeoLocation& location, Completion completion) = 0;
    // True from a request until its completion has been called or it has been cancelled.
    virtual bool isGeocoding() const = 0;
    // Ends the running request: its completion gets a cancellation. Nothing when idle.
    virtual void cancelGeocode() = 0;

    // Whether the service asks an online service too, whose searches know streets; without
    // one, the offline place data answer a search at once and the service is not asked.
    virtual bool isOnline() const { return false; }
    // Places by name, best first; the completion runs on the thread that asked. A service with
    // no online part finds nothing here.
    virtual void search(const QString& text, int limit, std::function<void(const QList<PlaceMatch>&)> completion) {
        Q_UNUSED(text);
        Q_UNUSED(limit);
        completion({});
    }
};
