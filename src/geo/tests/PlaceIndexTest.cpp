// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaceIndex.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace {

const PlaceIndex& index() {
    static std::shared_ptr<const PlaceIndex> index = [] {
        QString error;
        auto i = PlaceIndex::load(PlaceIndex::defaultPath(), &error);
        if (!i) ADD_FAILURE() << "no place data: " << error.toStdString();
        return i;
    }();
    if (!index) throw std::runtime_error("no place data");
    return *index;
}

struct Spot {
    const char* what;
    double latitude, longitude;
    const char* locality;
    const char* code;
    const char* subLocality = nullptr;
};

void expectPlace(const Spot& s) {
    SCOPED_TRACE(s.what);
    const auto p = index().reverse({s.latitude, s.longitude});
    ASSERT_TRUE(p.has_value());
    EXPECT_EQ(p->locality.value_or("-").toStdString(), s.locality);
    EXPECT_EQ(p->ISOcountryCode.value_or("-").toStdString(), s.code);
    if (s.subLocality) {
        EXPECT_EQ(p->subLocality.value_or("-").toStdString(), s.subLocality);
    }
    EXPECT_TRUE(p->country && !p->country->isEmpty());
}

}  // namespace

TEST(PlaceIndex, NamesWellKnownCities) {
    const Spot spots[] = {
        {"Notre-Dame", 48.8530, 2.3499, "Paris", "FR"},
        {"Trafalgar Square", 51.5080, -0.1281, "London", "GB"},
        {"Brandenburg Gate", 52.5163, 13.3777, "Berlin", "DE"},
        {"Puerta del Sol", 40.4169, -3.7035, "Madrid", "ES"},
        {"Colosseum", 41.8902, 12.4922, "Rome", "IT", "Celio"},
        {"Trastevere", 41.8897, 12.4694, "Rome", "IT", "Trastevere"},
        {"Stephansdom", 48.2085, 16.3731, "Vienna", "AT"},
        {"Old Town Square", 50.0875, 14.4213, "Prague", "CZ"},
        {"Dam Square", 52.3731, 4.8926, "Amsterdam", "NL"},
        {"Gamla stan", 59.3251, 18.0711, "Stockholm", "SE"},
        {"Helsinki Cathedral", 60.1699, 24.9384, "Helsinki", "FI"},
        {"Red Square", 55.7539, 37.6208, "Moscow", "RU"},
        {"Hagia Sophia", 41.0086, 28.9802, "Istanbul", "TR"},
        {"Tahrir Square", 30.0444, 31.2357, "Cairo", "EG"},
        {"Nairobi centre", -1.2864, 36.8172, "Nairobi", "KE"},
        {"Cape Town centre", -33.9249, 18.4241, "Cape Town", "ZA"},
        {"Times Square", 40.7580, -73.9855, "New York City", "US", "Times Square"},
        {"The Loop", 41.8781, -87.6298, "Chicago", "US"},
        {"San Francisco City Hall", 37.7793, -122.4193, "San Francisco", "US"},
        {"Zócalo", 19.4326, -99.1332, "Mexico City", "MX"},
        {"Botafogo", -22.9519, -43.2105, "Rio de Janeiro", "BR"},
        {"Plaza de Mayo", -34.6037, -58.3816, "Buenos Aires", "AR"},
        {"Kagurazaka", 35.7013, 139.7383, "Tokyo", "JP"},
        {"Tiananmen", 39.9042, 116.4074, "Beijing", "CN"},
        {"Sydney Opera House", -33.8568, 151.2153, "Sydney", "AU"},
        {"Mumbai", 19.0760, 72.8777, "Mumbai", "IN"},
        {"Singapore", 1.2903, 103.8520, "Singapore", "SG"},
        {"Reykjavík", 64.1466, -21.9426, "Reykjavík", "IS"},
        {"Honolulu", 21.3069, -157.8583, "Honolulu", "US"},
        {"Wellington", -41.2865, 174.7762, "Wellington", "NZ"},
    };
    for (const Spot& s : spots) expectPlace(s);
}

TEST(PlaceIndex, NamesSmallTownsAndTheLargerOfTwoNearOnes) {
    const Spot spots[] = {
        {"Arezzo", 43.46745, 11.88513, "Arezzo", "IT"},
        {"Cortona", 43.2756, 11.9852, "Cortona", "IT"},
        {"Zermatt", 46.0207, 7.7491, "Zermatt", "CH"},
        {"Rothenburg", 49.3772, 10.1791, "Rothenburg ob der Tauber", "DE"},
        {"Giethoorn", 52.7397, 6.0781, "Giethoorn", "NL"},
        {"Bled", 46.3683, 14.1146, "Bled", "SI"},
        {"Stowe", 44.4654, -72.6874, "Stowe", "US"},
        {"Utqiagvik", 71.2906, -156.7886, "Utqiagvik", "US"},
        {"Longyearbyen", 78.2232, 15.6267, "Longyearbyen", "SJ"},
        {"Ushuaia", -54.8019, -68.3030, "Ushuaia", "AR"},
        {"Alice Springs", -23.7000, 133.8800, "Alice Springs", "AU"},
        // Stonehenge: the hamlet of Larkhill is nearer, the town of Amesbury about as near.
        {"Stonehenge", 51.17828, -1.82664, "Amesbury", "GB"},
    };
    for (const Spot& s : spots) expectPlace(s);
}

TEST(PlaceIndex, NamesCoastsAndBothSidesOfBorders) {
    const Spot spots[] = {
        {"ferry off Dover", 51.05, 1.45, "Dover", "GB"},
        {"Monterey", 36.6002, -121.8947, "Monterey", "US"},
        {"Carmel", 36.5552, -121.9233, "Carmel-by-the-Sea", "US"},
        {"Positano", 40.6281, 14.4850, "Positano", "IT"},
        {"Monaco", 43.7384, 7.4246, "Monaco", "MC"},
        {"Strasbourg", 48.5819, 7.7510, "Strasbourg", "FR"},
        {"Kehl", 48.5707, 7.8155, "Kehl", "DE"},
        {"Görlitz", 51.1528, 14.9872, "Görlitz", "DE"},
        {"Zgorzelec", 51.1486, 15.0084, "Zgorzelec", "PL"},
        {"El Paso", 31.7587, -106.4869, "El Paso", "US"},
        {"Ciudad Juárez", 31.7202, -106.4600, "Ciudad Juárez", "MX"},
        {"Gorizia", 45.9417, 13.6217, "Gorizia", "IT"},
        {"Nova Gorica", 45.9559, 13.6483, "Nova Gorica", "SI"},
        {"Geneva", 46.2044, 6.1432, "Geneva", "CH"},
        {"Basel", 47.5596, 7.5886, "Basel", "CH"},
    };
    for (const Spot& s : spots) expectPlace(s);
}

TEST(PlaceIndex, LooksAcrossTheAntimeridian) {
    // Each position lies on the other side of 180° from its town.
    expectPlace({"east of 180°, Egvekinot west of it", 66.32, 179.95, "Egvekinot", "RU"});
    expectPlace({"west of 180°, Beringovskiy east of it", 63.06, -179.9, "Beringovskiy", "RU"});
    expectPlace({"Anadyr", 64.73, 177.51, "Anadyr", "RU"});
}

TEST(PlaceIndex, OpenSeaAndPolesHaveNoPlace) {
    const GeoCoordinate nowhere[] = {{30, -40}, {0, -150}, {-30, 80}, {-48.88, -123.39}, {35, -150}, {90, 0}, {-90, 0}};
    for (const auto& c : nowhere) {
        EXPECT_FALSE(index().reverse(c)) << c.latitude << " " << c.longitude;
        EXPECT_GT(index().nearest(c).second, PlaceIndex::maxDistance);
    }
    // Just inside and just outside the cutoff, measured from the nearest place itself.
    const auto [i, d] = index().nearest({51.05, 1.45});
    EXPECT_LT(d, PlaceIndex::maxDistance);
    EXPECT_FALSE(index().reverse({std::nan(""), 0}));
}

TEST(PlaceIndex, GivesAreaCountryAndTranslatedCountryNames) {
    const auto p = index().reverse({43.46745, 11.88513});
    ASSERT_TRUE(p);
    EXPECT_EQ(p->administrativeArea, QString("Tuscany"));
    EXPECT_EQ(p->country, QString("Italy"));
    const auto it = index().reverse({43.46745, 11.88513}, QLocale(QLocale::Italian, QLocale::Italy));
    ASSERT_TRUE(it);
    EXPECT_EQ(it->country, QString("Italia"));
    const auto de = index().reverse({48.2085, 16.3731}, QLocale(QLocale::German, QLocale::Austria));
    ASSERT_TRUE(de);
    EXPECT_EQ(de->country, QString("Österreich"));
}

TEST(PlaceIndex, SearchRanksWholeNamesThenStartsThenInsidesByPopulation) {
    auto names = [](const QList<PlaceMatch>& ms) {
        QStringList out;
        for (const auto& m : ms) out << m.placemark.locality.value_or("") + "/" + m.placemark.ISOcountryCode.value_or("");
        return out;
    };
    const auto rome = index().search("Rome");
    ASSERT_GE(rome.size(), 3);
    EXPECT_EQ(names(rome).first(), "Rome/IT");
    EXPECT_EQ(names(rome).at(1), "Rome/US");  // Rome, Georgia, the next largest Rome
    EXPECT_NEAR(rome.first().coordinate.latitude, 41.89, 0.05);
    EXPECT_NEAR(rome.first().coordinate.longitude, 12.5, 0.05);

    // Every match ranked: whole name, then start, then inside; larger first within each.
    const auto york = index().search("york", 200);
    ASSERT_GE(york.size(), 10);
    auto rank = [](const PlaceMatch& m) {
        const QString n = places::fold(m.placemark.subLocality.value_or(m.placemark.locality.value_or("")));
        return n == "york" ? 0 : n.startsWith("york") ? 1 : 2;
    };
    EXPECT_EQ(york.first().placemark.locality, QString("York"));
    EXPECT_EQ(york.first().placemark.ISOcountryCode, QString("GB"));
    for (qsizetype i = 1; i < york.size(); ++i) {
        ASSERT_LE(rank(york[i - 1]), rank(york[i])) << i;
        if (rank(york[i - 1]) == rank(york[i])) {
            EXPECT_GE(york[i - 1].population, york[i].population) << i;
        }
    }
    EXPECT_TRUE(names(york).contains("New York City/US"));
    EXPECT_EQ(rank(york.last()), 2);

    // The two place sources put Lisbon's centre 2.4 km apart; its population still counts.
    EXPECT_EQ(names(index().search("lisbon")).first(), "Lisbon/PT");
    EXPECT_EQ(names(index().search("san fran")).first(), "San Francisco/US");
    EXPECT_EQ(names(index().search("zurich")).first(), QString("Zürich/CH"));
    EXPECT_EQ(names(index().search("SAO PAULO")).first(), QString("São Paulo/BR"));
    EXPECT_EQ(names(index().search("saint-etienne")).first(), QString("Saint-Étienne/FR"));
    EXPECT_TRUE(index().search("").isEmpty());
    EXPECT_TRUE(index().search("xqzqxqz").isEmpty());
}

TEST(PlaceIndex, SearchNarrowsByCountryOrArea) {
    const auto parisUS = index().search("Paris, US");
    ASSERT_FALSE(parisUS.isEmpty());
    for (const auto& m : parisUS) EXPECT_EQ(m.placemark.ISOcountryCode, QString("US"));
    EXPECT_EQ(parisUS.first().placemark.administrativeArea, QString("Texas"));  // the largest
    const auto romeGeorgia = index().search("rome, georgia");
    ASSERT_FALSE(romeGeorgia.isEmpty());
    EXPECT_EQ(romeGeorgia.first().placemark.ISOcountryCode, QString("US"));
    EXPECT_EQ(index().search("Paris, France").first().placemark.ISOcountryCode, QString("FR"));
}

TEST(PlaceIndex, RefusesDamagedFiles) {
    QFile real(PlaceIndex::defaultPath());
    ASSERT_TRUE(real.open(QIODevice::ReadOnly));
    const QByteArray bytes = real.readAll();
    QTemporaryDir dir;
    auto tryBytes = [&](const QByteArray& b) {
        QFile f(dir.filePath("p.bin"));
        f.open(QIODevice::WriteOnly | QIODevice::Truncate);
        f.write(b);
        f.close();
        QString error;
        auto i = PlaceIndex::load(f.fileName(), &error);
        return std::make_pair(bool(i), error);
    };
    EXPECT_TRUE(tryBytes(bytes).first);
    EXPECT_FALSE(tryBytes(bytes.left(bytes.size() / 2)).first);
    EXPECT_FALSE(tryBytes(bytes.left(20)).first);
    QByteArray magic = bytes;
    magic[0] = 'X';
    EXPECT_FALSE(tryBytes(magic).first);
    // A name offset beyond the texts, in the first place record.
    QByteArray offset = bytes;
    places::Header h;
    std::memcpy(&h, bytes.constData(), sizeof h);
    const qsizetype at = qsizetype(h.placesOffset + offsetof(places::Place, name));
    for (int k = 0; k < 4; ++k) offset[at + k] = char(k == 3 ? 0x7F : 0xFF);  // 0x7FFFFFFF
    const auto [ok, error] = tryBytes(offset);
    EXPECT_FALSE(ok);
    EXPECT_TRUE(error.contains("damaged place 0"));
    EXPECT_FALSE(PlaceIndex::load(dir.filePath("missing.bin")));
}

TEST(PlacesFold, IgnoresCaseAccentsAndPunctuation) {
    EXPECT_EQ(places::fold("Saint-Étienne"), "saint etienne");
    EXPECT_EQ(places::fold("  L'Aquila "), "laquila");
    EXPECT_EQ(places::fold("Straße"), "strasse");
    EXPECT_EQ(places::fold("Łódź"), "lodz");
    EXPECT_EQ(places::fold("Ærøskøbing"), "aeroskobing");
    EXPECT_EQ(places::fold("São  Paulo"), "sao paulo");
}
