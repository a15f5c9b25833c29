// SPDX-License-Identifier: GPL-3.0-or-later
#include "Geocoder.h"
#include "HttpAnswer.h"
#include "GeocoderActor.h"
#include "NominatimProvider.h"

#include <gtest/gtest.h>

#include <QTcpServer>
#include <QTest>
#include <QThread>

#include <atomic>

namespace {

// Runs the event loop until the completion has run (or 10 s have passed).
struct Answer {
    std::optional<GeocodeResult> result;
    QThread* thread = nullptr;
    GeocodingService::Completion completion() {
        return [this](const GeocodeResult& r) {
            result = r;
            thread = QThread::currentThread();
        };
    }
    bool wait() {
        return QTest::qWaitFor([&] { return result.has_value(); }, 10'000);
    }
};

// The places a search finds, waited for (10 s at most).
std::optional<QList<PlaceMatch>> searchFor(Geocoder& geocoder, const QString& text, int limit) {
    std::optional<QList<PlaceMatch>> answer;
    geocoder.search(text, limit, [&](const QList<PlaceMatch>& m) { answer = m; });
    QTest::qWaitFor([&] { return answer.has_value(); }, 10'000);
    return answer;
}

QString locality(const GeocodeResult& r) { return r.placemarks.isEmpty() ? QString() : r.placemarks.first().locality.value_or(""); }

using FakeNominatim = testsupport::HttpAnswer;

const QByteArray romeAnswer = R"({"place_id":1,"lat":"41.8897","lon":"12.4694","address":{"house_number":"7",
    "road":"Piazza di Santa Maria in Trastevere","suburb":"Trastevere","city":"Roma","state":"Lazio",
    "postcode":"00153","country":"Italia","country_code":"it"}})";

}  // namespace

TEST(Geocoder, AnswersOnTheAskingThreadWithWorkDoneOnTheActor) {
    std::atomic<QThread*> worker{nullptr};
    Geocoder g({}, [&] {
        worker = QThread::currentThread();
        return PlaceIndex::shared();
    });
    Answer a;
    g.reverseGeocode(GeoLocation(43.46745, 11.88513), a.completion());
    EXPECT_TRUE(g.isGeocoding());
    ASSERT_TRUE(a.wait());
    EXPECT_FALSE(g.isGeocoding());
    EXPECT_FALSE(a.result->error);
    EXPECT_EQ(locality(*a.result), "Arezzo");
    EXPECT_EQ(a.thread, QThread::currentThread());
    EXPECT_NE(worker.load(), QThread::currentThread());
    EXPECT_NE(worker.load(), nullptr);

    Answer sea;
    g.reverseGeocode(GeoLocation(30, -40), sea.completion());
    ASSERT_TRUE(sea.wait());
    EXPECT_FALSE(sea.result->error);
    EXPECT_TRUE(sea.result->placemarks.isEmpty());
}

TEST(Geocoder, CancelAndNewerRequestsEndTheRunningOne) {
    Geocoder g;
    Answer first, second, third;
    g.reverseGeocode(GeoLocation(41.8897, 12.4694), first.completion());
    g.cancelGeocode();
    EXPECT_FALSE(g.isGeocoding());
    g.reverseGeocode(GeoLocation(48.8530, 2.3499), second.completion());
    g.reverseGeocode(GeoLocation(51.5080, -0.1281), third.completion());  // overtakes the second
    ASSERT_TRUE(third.wait());
    ASSERT_TRUE(first.wait());
    ASSERT_TRUE(second.wait());
    EXPECT_TRUE(first.result->cancelled);
    EXPECT_TRUE(first.result->error);
    EXPECT_TRUE(second.result->cancelled);
    EXPECT_FALSE(third.result->error);
    EXPECT_EQ(locality(*third.result), "London");
    g.cancelGeocode();  // idle: nothing happens
    EXPECT_FALSE(g.isGeocoding());
}

TEST(Geocoder, FailsWithoutPlaceData) {
    Geocoder g({}, [] { return std::shared_ptr<const PlaceIndex>(); });
    Answer a;
    g.reverseGeocode(GeoLocation(41.8897, 12.4694), a.completion());
    ASSERT_TRUE(a.wait());
    EXPECT_TRUE(a.result->error);
    EXPECT_FALSE(a.result->cancelled);
}

TEST(Geocoder, SearchesOnTheActor) {
    Geocoder g;
    const auto found = searchFor(g, "Arezzo", 3);
    ASSERT_TRUE(found);
    ASSERT_FALSE(found->isEmpty());
    EXPECT_EQ(found->first().placemark.locality, QString("Arezzo"));
}

TEST(Geocoder, OnlineAnswerGivesTheStreetAddress) {
    FakeNominatim server("200 OK", romeAnswer);
    Geocoder g([&] { return server.url(); });
    Answer a;
    g.reverseGeocode(GeoLocation(41.8897, 12.4694), a.completion());
    ASSERT_TRUE(a.wait());
    ASSERT_FALSE(a.result->error);
    ASSERT_EQ(a.result->placemarks.size(), 1);
    const Placemark& p = a.result->placemarks.first();
    EXPECT_EQ(p.thoroughfare, QString("Piazza di Santa Maria in Trastevere"));
    EXPECT_EQ(p.subThoroughfare, QString("7"));
    EXPECT_EQ(p.subLocality, QString("Trastevere"));
    EXPECT_EQ(p.locality, QString("Roma"));
    EXPECT_EQ(p.postalCode, QString("00153"));
    EXPECT_EQ(p.ISOcountryCode, QString("IT"));
    EXPECT_TRUE(server.request().startsWith("GET /nominatim/reverse?format=jsonv2&lat=41.8897000&lon=12.4694000&addressdetails=1 "))
        << server.request().toStdString();
    EXPECT_TRUE(server.request().contains("User-Agent:"));
}

TEST(Geocoder, OfflineAnswerStandsWhenTheOnlineServiceFails) {
    FakeNominatim broken("500 Internal Server Error", "{}");
    FakeNominatim sea("200 OK", R"({"error":"Unable to geocode"})");
    quint16 closed;  // nobody listens on this port
    {
        QTcpServer s;
        s.listen(QHostAddress::LocalHost, 0);
        closed = s.serverPort();
    }
    const std::pair<const char*, QString> services[] = {
        {"server error", broken.url()},
        {"no place in its answer", sea.url()},
        {"nobody listening", QStringLiteral("http://127.0.0.1:%1").arg(closed)},
    };
    for (const auto& [what, url] : services) {
        SCOPED_TRACE(what);
        Geocoder g([url = url] { return url; });
        Answer a;
        g.reverseGeocode(GeoLocation(43.46745, 11.88513), a.completion());
        ASSERT_TRUE(a.wait());
        EXPECT_FALSE(a.result->error);
        EXPECT_EQ(locality(*a.result), "Arezzo");
    }
}

TEST(Nominatim, ReadsAnswersAndRefusesErrors) {
    EXPECT_FALSE(nominatim::parseReverse(R"({"error":"Unable to geocode"})"));
    EXPECT_FALSE(nominatim::parseReverse("not json"));
    EXPECT_FALSE(nominatim::parseReverse(R"({"address":{}})"));
    const auto village = nominatim::parseReverse(R"({"address":{"village":"Azoia","county":"Sintra","state":"Lisboa","country":"Portugal","country_code":"pt"}})");
    ASSERT_TRUE(village);
    EXPECT_EQ(village->locality, QString("Azoia"));
    EXPECT_EQ(village->administrativeArea, QString("Lisboa"));
    EXPECT_EQ(village->ISOcountryCode, QString("PT"));
    EXPECT_FALSE(village->thoroughfare);
}

TEST(Geocoder, OnlineSearchComesFirstAndOfflineTownsFillIn) {
    // A street near the middle of Arezzo: the offline town of that name is the same place.
    FakeNominatim server("200 OK", R"([{"lat":"43.4633","lon":"11.8798","name":"","address":{"road":"Via Roma",
        "house_number":"1","city":"Arezzo","state":"Toscana","country":"Italia","country_code":"it"}},
        {"lat":"nonsense","lon":"11","address":{"city":"Nowhere"}}])");
    Geocoder g([&] { return server.url(); });
    EXPECT_TRUE(g.isOnline());
    const auto found = searchFor(g, "Via Roma 1, Arezzo", 5);
    ASSERT_TRUE(found);
    ASSERT_FALSE(found->isEmpty());
    EXPECT_EQ(found->first().placemark.thoroughfare, QString("Via Roma"));
    EXPECT_EQ(found->first().coordinate, (GeoCoordinate{43.4633, 11.8798}));
    for (const PlaceMatch& m : *found) EXPECT_NE(m.placemark.locality, QString("Nowhere"));
    EXPECT_TRUE(server.request().startsWith("GET /nominatim/search?format=jsonv2&q=Via%20Roma%201%2C%20Arezzo&addressdetails=1&limit=5 "))
        << server.request().toStdString();

    // With the service failing, the offline answer stands; with none set, nothing goes out.
    FakeNominatim broken("503 Service Unavailable", "");
    Geocoder g2([&] { return broken.url(); });
    const auto offline = searchFor(g2, "Arezzo", 3);
    ASSERT_TRUE(offline);
    ASSERT_FALSE(offline->isEmpty());
    EXPECT_EQ(offline->first().placemark.locality, QString("Arezzo"));
    EXPECT_FALSE(Geocoder([] { return QString(); }).isOnline());
    EXPECT_FALSE(Geocoder().isOnline());
}
