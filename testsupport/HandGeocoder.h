// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A geocoding service whose answers the test gives by hand, to decide what happens while a
// request waits: when requests are sent, cancelled, answered or failed. The real service is
// tested in geo; this one stands behind TSGeocoder in the tests of what sits in front of it.
#include "GeocodingService.h"

#include <QCoreApplication>
#include <QList>
#include <QMetaObject>
#include <QString>

namespace testsupport {

class HandGeocoder : public GeocodingService {
public:
    QList<GeoLocation> sent;  // every request, in order
    int cancels = 0;

    void reverseGeocode(const GeoLocation& location, Completion completion) override {
        if (running_) cancelGeocode();
        sent << location;
        running_ = std::move(completion);
    }
    bool isGeocoding() const override { return bool(running_); }
    void cancelGeocode() override {
        if (!running_) return;
        ++cancels;
        finish(GeocodeResult{{}, QStringLiteral("cancelled"), true});
    }
    // The running request finds a town of that name, in the country given, if any.
    void answer(const QString& locality, const QString& country = {}, const QString& countryCode = {}) {
        Placemark p;
        p.locality = locality;
        if (!country.isEmpty()) p.country = country;
        if (!countryCode.isEmpty()) p.ISOcountryCode = countryCode;
        finish(GeocodeResult{{p}, std::nullopt, false});
    }
    void fail() { finish(GeocodeResult{{}, QStringLiteral("network down"), false}); }
    void answerNothing() { finish(GeocodeResult{}); }

private:
    // Like the real service: the completion runs later, from the event loop.
    void finish(const GeocodeResult& r) {
        if (!running_) return;
        Completion c = std::move(running_);
        running_ = nullptr;
        QMetaObject::invokeMethod(qApp, [c, r] { c(r); }, Qt::QueuedConnection);
    }
    Completion running_;
};

}  // namespace testsupport
