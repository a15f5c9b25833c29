#include "NominatimProvider.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>

namespace nominatim {

QNetworkRequest reverseRequest(const QUrl& base, const GeoCoordinate& c, const QLocale& locale) {
    QUrl url = base;
    QString path = url.path();
    if (!path.endsWith(u'/')) path += u'/';
    url.setPath(path + "reverse");
    QUrlQuery q;
    q.addQueryItem("format", "jsonv2");
    q.addQueryItem("lat", QString::number(c.latitude, 'f', 7));
    q.addQueryItem("lon", QString::number(c.longitude, 'f', 7));
    q.addQueryItem("addressdetails", "1");
    url.setQuery(q);
    QNetworkRequest request(url);
    // Public Nominatim servers refuse requests that don't say who asks.
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("%1/%2").arg(QCoreApplication::applicationName(), QCoreApplication::applicationVersion()));
    request.setRawHeader("Accept-Language", locale.bcp47Name().toUtf8());
    request.setTransferTimeout(10'000);
    return request;
}

std::optional<Placemark> parseReverse(const QByteArray& json) {
    const QJsonObject root = QJsonDocument::fromJson(json).object();
    if (root.isEmpty() || root.contains("error")) return std::nullopt;
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

}  // namespace nominatim
