// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSLocationManager.h"

#include "Geocoder.h"
#include "Isolation.h"
#include "TSGeocoder.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QFile>
#include <QNmeaPositionInfoSource>
#include <QTest>
#include <QTimer>

#include <cmath>

namespace {

// One RMC sentence with its checksum: a valid fix at the position, in NMEA's degree-minute form.
QByteArray rmc(double lat, double lon, const char* time) {
    auto dm = [](double deg, int width) {
        const double a = std::abs(deg);
        return QStringLiteral("%1%2").arg(int(a), width, 10, QLatin1Char('0')).arg((a - int(a)) * 60, 7, 'f', 4, QLatin1Char('0'));
    };
    const QString body = QStringLiteral("GPRMC,%1,A,%2,%3,%4,%5,0.0,0.0,221126,,,A")
                             .arg(time, dm(lat, 2), lat < 0 ? "S" : "N", dm(lon, 3), lon < 0 ? "W" : "E");
    quint8 sum = 0;
    for (const QChar c : body) sum ^= quint8(c.toLatin1());
    return ('$' + body + QStringLiteral("*%1\r\n").arg(sum, 2, 16, QLatin1Char('0')).toUpper()).toLatin1();
}

class LocationManager : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        // The offline place data, as the app uses it with no geocoder address set.
        TSGeocoder::setGeocoder(std::make_shared<Geocoder>());
    }
    void TearDown() override { TSGeocoder::setGeocoder(nullptr); }

    // A manager that replays a recorded log of sentences, as a receiver would deliver them.
    std::unique_ptr<TSLocationManager> replaying(const QByteArray& log) {
        const QString path = isolation().root() + "/track.nmea";
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(log);
        f.close();
        return std::make_unique<TSLocationManager>([path](QObject* parent) {
            auto* source = new QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode, parent);
            auto* file = new QFile(path, source);
            file->open(QIODevice::ReadOnly);
            source->setDevice(file);
            return source;
        });
    }
};

}  // namespace

TEST_F(LocationManager, AFixGetsItsCoordinateThenItsPlace) {
    auto manager = replaying(rmc(41.8902, 12.4922, "101500.00"));
    int changes = 0;
    QObject::connect(manager.get(), &TSLocationManager::changed, [&] { ++changes; });
    manager->start();
    EXPECT_TRUE(manager->locationAvailable());
    ASSERT_TRUE(QTest::qWaitFor([&] { return manager->actualHRLocation() && manager->actualHRLocation()->title; }, 10000));
    const HRLocation& here = *manager->actualHRLocation();
    EXPECT_NEAR(here.location->coordinate.latitude, 41.8902, 1e-6);
    EXPECT_NEAR(here.location->coordinate.longitude, 12.4922, 1e-6);
    // The Colosseum: its district, the town and the country.
    EXPECT_TRUE(here.title->endsWith("Rome, Italy (IT)")) << here.title->toStdString();
    EXPECT_TRUE(here.subtitle->contains("Rome")) << here.subtitle->toStdString();
    EXPECT_FALSE(here.subtitle->contains('\n'));
    EXPECT_GE(changes, 3);  // started, the fix, its name
    manager->stop();
}

TEST_F(LocationManager, AFixWithNoPlaceKeepsTheCoordinateText) {
    // The middle of the South Pacific: no town within reach, so no name, as when offline.
    auto manager = replaying(rmc(-48.8767, -123.3933, "101500.00"));
    manager->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return manager->actualHRLocation().has_value(); }, 10000));
    // Give the geocoder its turn: its empty answer must leave the coordinate text.
    QTest::qWait(500);
    const HRLocation& here = *manager->actualHRLocation();
    EXPECT_FALSE(here.title);
    EXPECT_EQ(here.subtitle, hrl::coordinatesText(*here.location, true));
}

TEST_F(LocationManager, NoSourceMeansDenied) {
    TSLocationManager manager([](QObject* parent) {
        return QGeoPositionInfoSource::createSource(QStringLiteral("no such plugin"), parent);
    });
    QString title, message;
    QObject::connect(&manager, &TSLocationManager::denied, [&](const QString& t, const QString& m) {
        title = t;
        message = m;
    });
    manager.start();
    EXPECT_FALSE(manager.locationAvailable());
    EXPECT_FALSE(manager.actualHRLocation());
    EXPECT_EQ(title, "Location Services Disabled");
    EXPECT_EQ(message, "To enable, please go to Settings and turn on Location Service for this app.");
}
