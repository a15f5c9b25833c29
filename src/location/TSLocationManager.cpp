// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSLocationManager.h"

#include "Log.h"
#include "TSGeocoder.h"

#include <QCoro/QCoroTask>
#include <QGeoPositionInfoSource>

TSLocationManager::TSLocationManager(SourceFactory makeSource, QObject* parent)
    : QObject(parent), makeSource_(std::move(makeSource)) {
    if (!makeSource_) makeSource_ = [](QObject* p) { return QGeoPositionInfoSource::createDefaultSource(p); };
}

TSLocationManager::~TSLocationManager() = default;

void TSLocationManager::start() {
    if (!source_) {
        source_ = makeSource_(this);
        if (!source_) return refuse();
        connect(source_, &QGeoPositionInfoSource::positionUpdated, this, &TSLocationManager::didUpdateLocation);
        connect(source_, &QGeoPositionInfoSource::errorOccurred, this, [this](QGeoPositionInfoSource::Error e) {
            Log::warning(QVariantList{"📍 position source error", int(e)});
            if (e == QGeoPositionInfoSource::AccessError || e == QGeoPositionInfoSource::ClosedError) refuse();
        });
    }
    // A source that is there counts as allowed until it says otherwise.
    locationAvailable_ = true;
    source_->startUpdates();
    emit changed();
}

void TSLocationManager::stop() {
    if (source_) source_->stopUpdates();
}

void TSLocationManager::refuse() {
    locationAvailable_ = false;
    emit changed();
    emit denied(disabledTitle, disabledMessage);
}

void TSLocationManager::didUpdateLocation(const QGeoPositionInfo& fix) {
    if (!fix.isValid()) return;
    GeoLocation location(fix.coordinate().latitude(), fix.coordinate().longitude());
    if (fix.coordinate().type() == QGeoCoordinate::Coordinate3D) {
        location.altitude = fix.coordinate().altitude();
        location.verticalAccuracy = fix.hasAttribute(QGeoPositionInfo::VerticalAccuracy)
                                        ? fix.attribute(QGeoPositionInfo::VerticalAccuracy) : 0;
    }
    location.horizontalAccuracy = fix.hasAttribute(QGeoPositionInfo::HorizontalAccuracy)
                                      ? fix.attribute(QGeoPositionInfo::HorizontalAccuracy) : 0;
    if (fix.hasAttribute(QGeoPositionInfo::GroundSpeed)) location.speed = fix.attribute(QGeoPositionInfo::GroundSpeed);
    if (fix.hasAttribute(QGeoPositionInfo::Direction)) location.course = fix.attribute(QGeoPositionInfo::Direction);
    if (fix.timestamp().isValid()) location.timestamp = fix.timestamp();

    HRLocation hr;
    hr.location = location;
    hr.subtitle = hrl::coordinatesText(location, true);
    actualHRLocation_ = hr;
    locationAvailable_ = true;
    emit changed();

    // Then the place's name, when the geocoder knows one; no answer keeps the coordinate.
    const quint64 fix_ = ++fixes_;
    QPointer<TSLocationManager> self(this);
    [](QPointer<TSLocationManager> self, GeoLocation location, quint64 fix) -> QCoro::Task<> {
        const auto placemarks = co_await TSGeocoder::reverse(location);
        if (!self || fix != self->fixes_ || !placemarks || placemarks->isEmpty()) co_return;
        HRLocation named = *self->actualHRLocation_;
        named.title = placeText(placemarks->first());
        named.subtitle = addressText(placemarks->first()).replace('\n', QLatin1String(", "));
        self->actualHRLocation_ = named;
        emit self->changed();
    }(self, location, fix_);
}
