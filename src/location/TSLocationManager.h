// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The device's present position for the location screen: asks the position source for updates,
// turns each fix into an HRLocation (its coordinate first, then the place's name once the
// geocoder answers) and tells the screen. The source is Qt Positioning's default (GeoClue on
// Linux) unless another is given.
#include "HRLocation.h"

#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>

class QGeoPositionInfo;
class QGeoPositionInfoSource;

class TSLocationManager : public QObject {
    Q_OBJECT
public:
    using SourceFactory = std::function<QGeoPositionInfoSource*(QObject* parent)>;

    static constexpr char disabledTitle[] = "Location Services Disabled";
    static constexpr char disabledMessage[] = "To enable, please go to Settings and turn on Location Service for this app.";

    explicit TSLocationManager(SourceFactory makeSource = {}, QObject* parent = nullptr);
    ~TSLocationManager() override;

    // True when a source may be asked and a fix is expected or has come.
    bool locationAvailable() const { return locationAvailable_; }
    const std::optional<HRLocation>& actualHRLocation() const { return actualHRLocation_; }

    // Begins updates; without a source, or when the source refuses, the screen is told to
    // show the alert and the position is not available.
    void start();
    void stop();

    // A fix, as the source reports it.
    void didUpdateLocation(const QGeoPositionInfo& fix);

signals:
    // After any change, on the GUI thread.
    void changed();
    // The position may not be read: the screen shows an alert with "Settings" and "Cancel".
    void denied(const QString& title, const QString& message);

private:
    void refuse();

    bool locationAvailable_ = false;
    std::optional<HRLocation> actualHRLocation_;
    SourceFactory makeSource_;
    QPointer<QGeoPositionInfoSource> source_;
    quint64 fixes_ = 0;  // a geocoder answer for an older fix is dropped
};
