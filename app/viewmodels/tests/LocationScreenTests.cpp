// SPDX-License-Identifier: GPL-3.0-or-later
// The place-picking screens through their view models: the location screen's search flow,
// checks and hand-back, the map picker, and the address list of a photo's place.
#include "AddressListModel.h"
#include "Geocoder.h"
#include "AppController.h"
#include "AppModels.h"
#include "HttpAnswer.h"
#include "Isolation.h"
#include "LocationModifierViewModel.h"
#include "MapPickerViewModel.h"
#include "Recent.h"
#include "Settings.h"
#include "TSFilesAlbum.h"
#include "TSGeocoder.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QGeoPositionInfoSource>
#include <QGuiApplication>
#include <QJsonObject>
#include <QTest>

namespace {

HRLocation place(double lat, double lon, const QString& title) {
    HRLocation l;
    l.title = title;
    l.location = GeoLocation(lat, lon);
    return l;
}

// A position source that does not exist: the screen must say the position is not available.
TSLocationManager::SourceFactory noSource() {
    return [](QObject* parent) { return QGeoPositionInfoSource::createSource("no such source", parent); };
}

class LocationScreens : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        TSGeocoder::setGeocoder(std::make_shared<Geocoder>());  // offline place data only
        recents::locations().arrayList.clear();
    }
    void TearDown() override {
        TSGeocoder::setGeocoder(nullptr);
        recents::locations().arrayList.clear();
    }
    static QStringList titles(const QVariantList& sections, int section) {
        QStringList out;
        for (const QVariant& row : sections[section].toMap()["rows"].toList()) out << row.toMap()["title"].toString();
        return out;
    }
};

}  // namespace

TEST_F(LocationScreens, TypedCoordinatesAreNamedWithoutThePlaceSearch) {
    LocationModifierViewModel screen(noSource());
    EXPECT_EQ(screen.title(), "Location");
    EXPECT_EQ(screen.placeholder(), "Search or insert an address");
    for (const QString& typed : {QStringLiteral("45.5 9.2"), QStringLiteral("45° 30' 0\" N 9° 12' 0\" E")}) {
        screen.search(typed);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !screen.searchedLocations().isEmpty(); }, 10000)) << typed.toStdString();
        EXPECT_TRUE(screen.queryFragment().isEmpty());
        const HRLocation& found = screen.searchedLocations().first();
        EXPECT_EQ(found.location->coordinate, (GeoCoordinate{45.5, 9.2}));
        EXPECT_TRUE(found.title->endsWith("Italy (IT)")) << found.title->toStdString();
        EXPECT_FALSE(found.subtitle->contains('\n'));
        EXPECT_EQ(screen.checkedIndexPath(), (LocationModifierViewModel::IndexPath{0, 0}));
    }

    // A name goes to the place search; its results leave the check where it was.
    screen.tap(4, 0);
    screen.search("Lisbon");
    EXPECT_EQ(screen.queryFragment(), "Lisbon");
    ASSERT_FALSE(screen.searchedLocations().isEmpty());
    EXPECT_EQ(screen.searchedLocations().first().title, "Lisbon");
    EXPECT_EQ(screen.checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);

    // The open sea has no name: nothing found, and the check falls back from the results.
    screen.tap(0, 0);
    screen.search("-48.8767 -123.3933");
    EXPECT_TRUE(QTest::qWaitFor([&] { return screen.checkedIndexPath() == LocationModifierViewModel::defaultIndexPath; }, 10000));
    EXPECT_TRUE(screen.searchedLocations().isEmpty());
}

TEST_F(LocationScreens, LeavingDeliversTheCheckedPlace) {
    std::optional<HRLocation> delivered;
    auto screen = std::make_unique<LocationModifierViewModel>(noSource());
    screen->locationDelegate = [&](const HRLocation& l) { delivered = l; };
    screen->setPhotoLocation(place(43.77, 11.25, "Florence"));
    screen->leave();
    ASSERT_TRUE(delivered);
    EXPECT_EQ(delivered->title, "Florence");  // nothing chosen: the photo's own place

    // A recent place, then one from the map; a map answer without a place changes nothing.
    recents::locations().add(place(48.85, 2.35, "Paris"));
    screen->tap(5, 0);
    screen->leave();
    EXPECT_EQ(delivered->title, "Paris");
    screen->didChooseMapLocation(place(35.68, 139.69, "Tokyo"));
    EXPECT_EQ(screen->checkedIndexPath(), (LocationModifierViewModel::IndexPath{3, 1}));
    screen->leave();
    EXPECT_EQ(delivered->title, "Tokyo");
    HRLocation none;
    none.title = "--";
    screen->didChooseMapLocation(none);
    EXPECT_EQ(screen->checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);

    // The header rows open their pickers and check nothing.
    int photoPickers = 0, mapPickers = 0;
    QObject::connect(screen.get(), &LocationModifierViewModel::photoPickerRequested, [&] { ++photoPickers; });
    QObject::connect(screen.get(), &LocationModifierViewModel::mapPickerRequested, [&] { ++mapPickers; });
    screen->tap(2, 0);
    screen->tap(3, 0);
    EXPECT_EQ(photoPickers + mapPickers, 2);
    EXPECT_EQ(screen->checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);
}

TEST_F(LocationScreens, SixSectionsInOrder) {
    LocationModifierViewModel screen(noSource());
    QString alertTitle;
    QObject::connect(&screen, &LocationModifierViewModel::alert, [&](const QString& t, const QString&) { alertTitle = t; });
    screen.setPhotoLocation(place(43.77, 11.25, "Florence"));
    screen.appear();
    EXPECT_EQ(alertTitle, "Location Services Disabled");
    QVariantList sections = screen.sections();
    ASSERT_EQ(sections.size(), 6);
    EXPECT_EQ(titles(sections, 1), QStringList{"Location not available"});
    EXPECT_EQ(titles(sections, 2), QStringList{"From a photo"});
    EXPECT_EQ(titles(sections, 3), QStringList{"From map"});
    EXPECT_EQ(sections[4].toMap()["header"], "From current photo");
    EXPECT_EQ(titles(sections, 4), QStringList{"Florence"});
    EXPECT_TRUE(sections[4].toMap()["rows"].toList()[0].toMap()["checked"].toBool());
    EXPECT_EQ(sections[5].toMap()["header"], "");  // no recents, no header
    recents::locations().add(place(48.85, 2.35, "Paris"));
    EXPECT_EQ(screen.sections()[5].toMap()["header"], "Most recent");

    // A picture's place: a corpus photo with GPS, and one without.
    screen.choosePhoto(testsupport::corpusDir() + "/jpeg/iphone_hdr_YES.jpg");
    sections = screen.sections();
    EXPECT_EQ(titles(sections, 2), (QStringList{"From a photo", "iphone_hdr_YES.jpg"}));
    EXPECT_EQ(screen.checkedIndexPath(), (LocationModifierViewModel::IndexPath{2, 1}));
    EXPECT_FALSE(screen.locationAt({2, 1})->thumbnail.isNull());
    screen.choosePhoto(testsupport::corpusDir() + "/png/ReaganSmallPng.png");
    EXPECT_EQ(screen.checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);
}

TEST_F(LocationScreens, MapPicker) {
    MapPickerViewModel picker;
    std::optional<HRLocation> delivered;
    picker.locationDelegate = [&](const HRLocation& l) { delivered = l; };
    QString alertTitle, alertMessage;
    QObject::connect(&picker, &MapPickerViewModel::alert, [&](const QString& t, const QString& m) {
        alertTitle = t;
        alertMessage = m;
    });

    picker.longPress(52.52, 13.405);
    EXPECT_EQ(picker.pin()["title"], "Selected location");
    bool done = false;
    QObject::connect(&picker, &MapPickerViewModel::done, [&] { done = true; });
    picker.finish();
    ASSERT_TRUE(QTest::qWaitFor([&] { return done; }, 10000));
    ASSERT_TRUE(delivered);
    EXPECT_TRUE(delivered->title->contains("Berlin")) << delivered->title->toStdString();
    EXPECT_EQ(delivered->location->coordinate, (GeoCoordinate{52.52, 13.405}));

    picker.search("xqzvvqx");
    EXPECT_EQ(alertTitle, "Found nothing");
    EXPECT_EQ(alertMessage, "No location found (be aware that an internet connection is required for the search)");

    picker.search("Springfield");  // many towns: the user chooses
    ASSERT_GT(picker.choices().size(), 1);
    picker.choose(0);
    EXPECT_TRUE(picker.choices().isEmpty());
    EXPECT_EQ(picker.pin()["title"], "Springfield");

    picker.search("-33.8568 151.2153");
    EXPECT_DOUBLE_EQ(picker.pin()["latitude"].toDouble(), -33.8568);
    EXPECT_EQ(picker.curAnnotation()->subtitle, "33° 51' 24\" S 151° 12' 55\" E");
}

TEST_F(LocationScreens, AddressListOfACorpusPhotoAgreesWithExiftool) {
    const QString path = testsupport::corpusDir() + "/jpeg/iphone_hdr_YES.jpg";
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const TSMetaData md(f.readAll());
    const QJsonObject tags = testsupport::exiftoolJson(path, {"-n", "-GPS:all"}).toObject();
    const GeoLocation at(tags["GPSLatitude"].toDouble(), tags["GPSLongitude"].toDouble());
    Placemark pm;
    pm.locality = "Somewhere";

    for (bool human : {true, false}) {
        const auto sections = AddressListModel::sectionsFor(at, pm, md, human);
        QStringList names;
        for (const auto& s : sections) names << s.title;
        EXPECT_EQ(names, (QStringList{"", "Address", "Coordinates", "Direction", "Altitude", "Speed"}));
        EXPECT_EQ(sections[0].rows, QStringList{"Show in Maps"});
        const double degrees = tags["GPSImgDirection"].toDouble();
        const QString direction = sections[3].rows[0];
        ASSERT_TRUE(direction.endsWith("°"));
        if (human) EXPECT_EQ(direction, QString::asprintf("%.4f°", degrees));
        else EXPECT_NEAR(hrl::number(direction.chopped(1)).value_or(-1), degrees, 1e-6);
        EXPECT_EQ(sections[3].rows[1], "True North");
    }
    // No place: no sections; no direction, altitude or speed: just the link and the coordinates.
    EXPECT_TRUE(AddressListModel::sectionsFor(std::nullopt, pm, md, true).isEmpty());
    EXPECT_EQ(AddressListModel::sectionsFor(at, std::nullopt, TSMetaData(), true).size(), 2);
}

TEST_F(LocationScreens, PlaceSearchAsksTheOnlineServiceWhenOneIsSet) {
    testsupport::HttpAnswer server("200 OK", R"([{"lat":"41.8897","lon":"12.4694","address":{"house_number":"7",
        "road":"Piazza di Santa Maria in Trastevere","suburb":"Trastevere","city":"Roma","state":"Lazio",
        "postcode":"00153","country":"Italia","country_code":"it"}}])");
    TSGeocoder::setGeocoder(std::make_shared<Geocoder>([&] { return server.url(); }));
    const GeoCoordinate piazza{41.8897, 12.4694};

    LocationModifierViewModel screen(noSource());
    screen.search("Piazza di Santa Maria in Trastevere 7, Roma");
    EXPECT_EQ(screen.queryFragment(), "Piazza di Santa Maria in Trastevere 7, Roma");
    ASSERT_TRUE(QTest::qWaitFor([&] {
        return !screen.searchedLocations().isEmpty() && screen.searchedLocations().first().location->coordinate == piazza;
    }, 10000));
    const HRLocation& street = screen.searchedLocations().first();
    EXPECT_EQ(street.title, "Trastevere, Roma, Italia (IT)");
    EXPECT_EQ(street.subtitle, "Trastevere, Piazza di Santa Maria in Trastevere 7, 00153 Roma, Lazio (IT)");
    EXPECT_EQ(screen.checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);
    EXPECT_EQ(server.request().count("GET /nominatim/search?"), 1);

    // Typed coordinates are named, never searched for.
    screen.search("45.5 9.2");
    ASSERT_TRUE(QTest::qWaitFor([&] { return screen.checkedIndexPath() == LocationModifierViewModel::IndexPath{0, 0}; }, 10000));
    EXPECT_EQ(server.request().count("GET /nominatim/search?"), 1);

    // The map picker's search: a single answer moves the pin there.
    MapPickerViewModel picker;
    picker.search("Piazza di Santa Maria in Trastevere 7, Roma");
    ASSERT_TRUE(QTest::qWaitFor([&] { return picker.pin()["latitude"].toDouble() == piazza.latitude; }, 10000));
    EXPECT_DOUBLE_EQ(picker.pin()["longitude"].toDouble(), piazza.longitude);
}

TEST_F(LocationScreens, FromAPhotoOffersTheAlbumOnViewAndTheAlertLeadsToSettings) {
    // Two photos and a movie picked as files: the movie isn't offered.
    const QString gps = testsupport::corpusDir() + "/jpeg/gps/DSCN0010.jpg";
    const QString plain = testsupport::corpusDir() + "/png/imagemagick.png";
    auto album = std::make_shared<TSFilesAlbum>();
    album->loadBookmarks({gps, testsupport::corpusDir() + "/video/apple_meta.mov", plain});
    TSEnvironment::setCurrentAlbum(album);
    LocationModifierViewModel screen(noSource());
    const QVariantList photos = screen.albumPhotos();
    TSEnvironment::setCurrentAlbum(nullptr);
    ASSERT_EQ(photos.size(), 2);
    EXPECT_EQ(photos[0].toMap()["path"], gps);
    EXPECT_EQ(photos[0].toMap()["title"], "DSCN0010.jpg");
    EXPECT_EQ(photos[1].toMap()["path"], plain);

    screen.choosePhoto(photos[0].toMap()["path"].toString());
    EXPECT_EQ(screen.checkedIndexPath(), (LocationModifierViewModel::IndexPath{2, 1}));
    ASSERT_TRUE(screen.locationAt({2, 1}));
    // exiftool: GPSLatitude 43.4674483333333, GPSLongitude 11.8851266666639
    EXPECT_NEAR(screen.locationAt({2, 1})->location->coordinate.latitude, 43.46744833, 1e-6);
    EXPECT_NEAR(screen.locationAt({2, 1})->location->coordinate.longitude, 11.88512667, 1e-6);
    screen.choosePhoto(photos[1].toMap()["path"].toString());
    EXPECT_EQ(screen.checkedIndexPath(), LocationModifierViewModel::defaultIndexPath);

    AppModels models;
    models.location->openSettings();
    EXPECT_EQ(models.app->screens().last(), "settings");
}
