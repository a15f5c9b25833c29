// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The optional online geocoder: a Nominatim-compatible HTTP service, for street addresses that
// the offline data doesn't have. Used only when the user has given its address.
#include "GeoLocation.h"

#include <QByteArray>
#include <QList>
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

// GET BASE/search?format=jsonv2&q=..&addressdetails=1&limit=.., in the user's language.
QNetworkRequest searchRequest(const QUrl& base, const QString& text, int limit, const QLocale& locale);

// The places of a search answer, in its order; each has a placemark and a position. Entries
// without a position or a name are left out; an answer that isn't a list gives none.
QList<std::pair<Placemark, GeoCoordinate>> parseSearch(const QByteArray& json);

}  // namespace nominatim
