// SPDX-License-Identifier: GPL-3.0-or-later
#include "HRLocation.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QTimeZone>

using namespace hrl;

namespace {

void expectAt(const std::optional<GeoLocation>& loc, double lat, double lon) {
    ASSERT_TRUE(loc.has_value());
    EXPECT_NEAR(loc->coordinate.latitude, lat, 1e-9);
    EXPECT_NEAR(loc->coordinate.longitude, lon, 1e-9);
}

}  // namespace

TEST(DecimalLocation, ReadsTheTypedShapesWithLettersSettingTheSign) {
    const struct {
        const char* typed;
        double lat, lon;
    } cases[] = {
        {"45.5 9.2", 45.5, 9.2},       {"45.5, 9.2", 45.5, 9.2},   {"45,5 9,2", 45.5, 9.2},
        {"45.5N 9.2E", 45.5, 9.2},     {"45.5 N 9.2 E", 45.5, 9.2}, {"9.2E 45.5N", 45.5, 9.2},
        {"9.2 45.5 N", 45.5, 9.2},     {"-33.8568 151.2153", -33.8568, 151.2153},
        {"45.5S 9.2", -45.5, 9.2},     {"-45.5S 9.2", 45.5, 9.2},  {"45.5 9.2W", 45.5, -9.2},
        {"10 w 20 s", -20, -10},
        // The plain comma rule never finishes on these; ours must, and still read the numbers.
        {",45.5 9.2", 45.5, 9.2},      {"45.5 9.2,", 45.5, 9.2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        expectAt(decimalLocation(QString(c.typed)), c.lat, c.lon);
    }
}

TEST(DecimalLocation, RefusesWhatIsNoCoordinate) {
    EXPECT_FALSE(decimalLocation(std::nullopt));
    EXPECT_FALSE(decimalLocation(QString("45.5,9.2")));  // a comma between digits is a decimal comma
    EXPECT_FALSE(decimalLocation(QString("45.5N 9.2N")));  // both letters of one axis
    EXPECT_FALSE(decimalLocation(QString("Rome")));
    EXPECT_FALSE(decimalLocation(QString("45.5x 9.2")));
    EXPECT_FALSE(decimalLocation(QString("1 2 3 4 5")));
    EXPECT_FALSE(decimalLocation(QString("")));
    EXPECT_FALSE(decimalLocation(QString(",")));
}

TEST(Tokens, SplitTrailingDirectionLetters) {
    EXPECT_EQ(typedTokens(QString("45,5N  9.2 e")), (QStringList{"45.5", "N", "9.2", "e"}));
    EXPECT_EQ(typedTokens(QString("N")), QStringList{"N"});
    EXPECT_TRUE(typedTokens(std::nullopt).isEmpty());
}

TEST(Number, FollowsTheWholeTokenRule) {
    EXPECT_EQ(number("12.5"), 12.5);
    EXPECT_EQ(number("-3e2"), -300.0);
    EXPECT_FALSE(number(" 12"));
    EXPECT_FALSE(number("12 "));
    EXPECT_FALSE(number(""));
    EXPECT_FALSE(number("12,5"));
}

TEST(DegreesLocation, ReadsDegreesMinutesSeconds) {
    expectAt(degreesLocation(QString("12°30'15\" N 9°10'5\" E")), 12 + 30 / 60.0 + 15 / 3600.0, 9 + 10 / 60.0 + 5 / 3600.0);
    expectAt(degreesLocation(QString("12°30'15\" N, 9°10'5\" E")), 12 + 30 / 60.0 + 15 / 3600.0, 9 + 10 / 60.0 + 5 / 3600.0);
    expectAt(degreesLocation(QString("12° 30' N 9° 10' W")), 12.5, -(9 + 10 / 60.0));
    expectAt(degreesLocation(QString("9°10'5\" E 12°30'15\" S")), -(12 + 30 / 60.0 + 15 / 3600.0), 9 + 10 / 60.0 + 5 / 3600.0);
    // The sign of the degrees pulls the minutes with it.
    expectAt(degreesLocation(QString("-12° 30' 0\" 9° 0' 0\"")), -12.5, 9);
}

TEST(DegreesLocation, RefusesOddMarksAndNeverHangs) {
    EXPECT_FALSE(degreesLocation(QString("12° N")));
    EXPECT_FALSE(degreesLocation(QString("12° 13° 14°")));
    EXPECT_FALSE(degreesLocation(std::nullopt));
    // Text that no mark can take: the plain loop would spin on it forever.
    EXPECT_FALSE(degreesLocation(QString("12°° 5 N")));
    EXPECT_FALSE(degreesString(QString("12 N")));
    EXPECT_EQ(degreesString(QString("")), QStringList{});
}

TEST(Iso6709, ReadsLatitudeAndLongitude) {
    expectAt(iso6709Location(QString("+45.4640+009.1900+120.5/")), 45.464, 9.19);
    expectAt(iso6709Location(QString("-33.8568+151.2153/")), -33.8568, 151.2153);
    EXPECT_FALSE(iso6709Location(QString("45.4640 9.1900")));
    EXPECT_FALSE(iso6709Location(QString("+4.5.4+9/")));
}

TEST(CoordinateTexts, DegreesTruncateAndMarkZeroSouthWest) {
    EXPECT_EQ(coordinatesText(GeoLocation(0, 0), true), QString("0° 0' 0\" S 0° 0' 0\" W"));
    EXPECT_EQ(coordinatesText(GeoLocation(-33.8568, 151.2153), false), QString("33° 51' 24\" S\n151° 12' 55\" E"));
    EXPECT_FALSE(coordinatesText(GeoLocation(-180, -180), true));
    EXPECT_FALSE(coordinatesText(GeoLocation(180, 180), true));
    EXPECT_EQ(decimalCoordinatesText(GeoLocation(-33.85681, 151.2153), true, true), "33.8568 S 151.2153 E");
    EXPECT_EQ(decimalCoordinatesText(GeoLocation(-33.85681, 151.2153), false, false), "-33.85681 S\n151.2153 E");
}

TEST(CoordinateTexts, RoundTripThroughTheParsers) {
    const GeoLocation places[] = {{41.8902, 12.4922}, {-33.8568, 151.2153}, {64.1466, -21.9426},
                                  {-0.000123, -179.99999}, {89.99, 0.5}, {1.0 / 3, -2.0 / 3}};
    for (const GeoLocation& p : places) {
        SCOPED_TRACE(decimalCoordinatesText(p, false, true).toStdString());
        auto dms = degreesLocation(coordinatesText(p, true));
        ASSERT_TRUE(dms);
        // Seconds are truncated, so the text is within one second of arc, on the near side of zero.
        EXPECT_NEAR(dms->coordinate.latitude, p.coordinate.latitude, 1.0 / 3600);
        EXPECT_NEAR(dms->coordinate.longitude, p.coordinate.longitude, 1.0 / 3600);
        // The raw text keeps every digit, but marks a southern or western value twice (minus sign
        // and letter), and the parser applies both: such a half reads back with its sign flipped.
        auto exact = decimalLocation(decimalCoordinatesText(p, false, true));
        ASSERT_TRUE(exact);
        const double lat = p.coordinate.latitude, lon = p.coordinate.longitude;
        EXPECT_EQ(exact->coordinate.latitude, lat > 0 ? lat : -lat);
        EXPECT_EQ(exact->coordinate.longitude, lon > 0 ? lon : -lon);
    }
}

TEST(PlacemarkTexts, JoinOnlyWhatIsThere) {
    Placemark p;
    p.locality = "Bologna";
    p.country = "Italia";
    p.ISOcountryCode = "IT";
    EXPECT_EQ(placeText(p), "Bologna, Italia (IT)");
    EXPECT_EQ(shortPlaceText(p), "Bologna (IT)");
    p.subLocality = "Santo Stefano";
    p.thoroughfare = "Via Santo Stefano";
    p.subThoroughfare = "12";
    p.postalCode = "40125";
    p.administrativeArea = "Emilia-Romagna";
    EXPECT_EQ(placeText(p), "Santo Stefano, Bologna, Italia (IT)");
    EXPECT_EQ(addressText(p), "Santo Stefano\nVia Santo Stefano 12\n40125 Bologna, Emilia-Romagna (IT)");
    Placemark onlyCode;
    onlyCode.ISOcountryCode = "FR";
    EXPECT_EQ(placeText(onlyCode), "(FR)");
    EXPECT_EQ(placeText(Placemark{}), "");
}

TEST(HRLocationJson, RoundTripsAndEqualsByLocationAlone) {
    HRLocation h;
    h.title = "Colosseo";
    h.subtitle = "Roma";
    GeoLocation g(41.8902, 12.4922);
    g.altitude = 31.5;
    g.horizontalAccuracy = 5;
    g.timestamp = QDateTime::fromMSecsSinceEpoch(1700000000123, QTimeZone::utc());
    h.location = g;
    auto back = HRLocation::fromJsonBytes(h.toJsonBytes());
    ASSERT_TRUE(back);
    EXPECT_EQ(*back->location, g);
    EXPECT_EQ(back->title, h.title);
    EXPECT_EQ(back->subtitle, h.subtitle);
    // The time stamp is stored as seconds since 2001-01-01.
    EXPECT_DOUBLE_EQ(h.toJson()["location"].toObject()["timestamp"].toDouble(), 1700000000.123 - 978307200.0);

    HRLocation other = h;
    other.title = "elsewhere";
    EXPECT_EQ(other, h);
    EXPECT_EQ(HRLocation{}, HRLocation{});
    EXPECT_FALSE(HRLocation{} == h);
}

TEST(HRLocationJson, DamagedKeysAreLeftUnset) {
    // "details" missing: the subtitle is the one-line coordinate text.
    auto a = HRLocation::fromJsonBytes(R"({"location":{"latitude":1,"longitude":2,"altitude":0,
        "horizontalAccuracy":0,"verticalAccuracy":0,"speed":0,"course":0,"timestamp":0},"desc":"x"})");
    ASSERT_TRUE(a && a->location);
    EXPECT_EQ(a->subtitle, QString("1° 0' 0\" N 2° 0' 0\" E"));
    // One inner key missing fails the location only.
    auto b = HRLocation::fromJsonBytes(R"({"location":{"latitude":1,"longitude":2},"desc":3,"details":"d"})");
    ASSERT_TRUE(b);
    EXPECT_FALSE(b->location);
    EXPECT_FALSE(b->title);
    EXPECT_EQ(b->subtitle, "d");
    auto c = HRLocation::fromJsonBytes("{}");
    ASSERT_TRUE(c);
    EXPECT_FALSE(c->subtitle);
    EXPECT_FALSE(HRLocation::fromJsonBytes("[1,2]"));
    EXPECT_FALSE(HRLocation::fromJsonBytes("not json"));
}
