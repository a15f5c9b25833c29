// SPDX-License-Identifier: GPL-3.0-or-later
#include "NominatimProvider.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>

namespace nominatim {

namespace {

QNetworkRequest request(const QUrl& base, const QString& endpoint, const QUrlQuery& q, const QLocale& locale) {
    QUrl url = base;
    QString path = url.path();
    if (!path.endsWith(u'/')) path += u'/';
    url.setPath(path + endpoint);
    url.setQuery(q);
    QNetworkRequest request(url);
    // Public Nominatim servers refuse requests that don't say who asks.
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("%1/%2").arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    request.setRawHeader("Accept-Language", locale.bcp47Name().toUtf8());
    request.setTransferTimeout(10'000);
    return request;
}

}  // namespace

QNetworkRequest reverseRequest(const QUrl& base, const GeoCoordinate& c, const QLocale& locale) {
    QUrlQuery q;
    q.addQueryItem("format", "jsonv2");
    q.addQueryItem("lat", QString::number(c.latitude, 'f', 7));
    q.addQueryItem("lon", QString::number(c.longitude, 'f', 7));
    q.addQueryItem("addressdetails", "1");
    return request(base, "reverse", q, locale);
}

QNetworkRequest searchRequest(const QUrl& base, const QString& text, int limit, const QLocale& locale) {
    QUrlQuery q;
    q.addQueryItem("format", "jsonv2");
    q.addQueryItem("q", QString::fromLatin1(QUrl::toPercentEncoding(text)));
    q.addQueryItem("addressdetails", "1");
    q.addQueryItem("limit", QString::number(limit));
    return request(base, "search", q, locale);
}

namespace {

std::optional<Placemark> placemarkOf(const QJsonObject& root) {
    const QJsonObject a = root.value("address").toObject();
    auto first = [&](std::initializer_list<const char*> keys) -> std::optional<QString> {
        for (const char* k : keys) {
            const QString v = a.value(k).toString();
            if (!v.isEmpty()) return v;
        }
        return std::nullopt;
    };
    Placemark p;
    p.subThoroughfare = first({"house_number"});
    p.thoroughfare = first({"road", "pedestrian", "footway", "square", "place"});
    p.subLocality = first({"suburb", "quarter", "neighbourhood", "city_district"});
    p.locality = first({"city", "town", "village", "municipality", "hamlet"});
    p.administrativeArea = first({"state", "region", "province", "state_district"});
    p.postalCode = first({"postcode"});
    p.country = first({"country"});
    if (auto code = first({"country_code"})) p.ISOcountryCode = code->toUpper();
    if (!p.locality && !p.subLocality && !p.thoroughfare && !p.country) return std::nullopt;
    return p;
}

}  // namespace

std::optional<Placemark> parseReverse(const QByteArray& json) {
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    if (root.isEmpty() || root.contains("error")) return std::nullopt;
    return placemarkOf(root);
}

QList<std::pair<Placemark, GeoCoordinate>> parseSearch(const QByteArray& json) {
    QList<std::pair<Placemark, GeoCoordinate>> out;
    for (const QJsonValue& v : QJsonDocument::fromJson(json).array()) {
        const QJsonObject o = v.toObject();
        bool latOk = false, lonOk = false;
        const double lat = o.value("lat").toString().toDouble(&latOk);
        const double lon = o.value("lon").toString().toDouble(&lonOk);
        if (!latOk || !lonOk || qAbs(lat) > 90 || qAbs(lon) > 180) continue;
        auto p = placemarkOf(o);
        if (!p) continue;
        out.append({*p, GeoCoordinate{lat, lon}});
    }
    return out;
}

}  // namespace nominatim
