#pragma once
// The optional online geocoder: a Nominatim-compatible HTTP service, for street addresses that
// the offline data doesn't have. Used only when the user has given its address.
#include "GeoLocation.h"

#include <QByteArray>
#include <QLocale>
#include <QNetworkRequest>
#include <QUrl>
#include <optional>

namespace nominatim {

// GET BASE/reverse?format=jsonv2&lat=..&lon=..&addressdetails=1, in the user's language.
QNetworkRequest reverseRequest(const QUrl& base, const GeoCoordinate& coordinate, const QLocale& locale);

// The placemark of an answer; nothing for an error answer ("Unable to geocode": open sea) or
// one that names no place.
std::optional<Placemark> parseReverse(const QByteArray& json);

}  // namespace nominatim
