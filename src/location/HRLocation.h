// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The value in which a place travels through the system, its JSON form, the text forms of a
// coordinate and of a placemark, and the parsers that read a coordinate from text.
#include "GeoLocation.h"

#include <QImage>
#include <QJsonObject>
#include <QStringList>
#include <optional>

struct HRLocation {
    std::optional<QString> title;
    std::optional<QString> subtitle;
    std::optional<GeoLocation> location;
    QImage thumbnail;  // shown beside a row; never persisted

    // Places compare by their location alone: titles and subtitles play no part.
    bool operator==(const HRLocation& other) const { return location == other.location; }

    QJsonObject toJson() const;
    // Fails only when the JSON is not an object; each key that is absent or damaged is left unset.
    static std::optional<HRLocation> fromJson(const QJsonValue& json);
    QByteArray toJsonBytes() const;
    static std::optional<HRLocation> fromJsonBytes(const QByteArray& bytes);
};

namespace hrl {

using OptText = std::optional<QString>;

std::optional<GeoLocation> degreesLocation(const OptText& text);
std::optional<GeoLocation> decimalLocation(const OptText& text);
std::optional<GeoLocation> iso6709Location(const OptText& text);

QStringList typedTokens(const OptText& text);
std::optional<QStringList> degreesString(const OptText& text);

// "12° 30' 15\" N 9° 10' 5\" E"; nothing for the (±180, ±180) mark of no position.
std::optional<QString> coordinatesText(const GeoLocation& location, bool oneLine);
QString decimalCoordinatesText(const GeoLocation& location, bool human, bool oneLine);

// A whole token read as one number by the C rule; blanks before or anything after refuse it.
std::optional<double> number(const QString& token);
// The shortest decimal text that reads back as the same double.
QString shortest(double value);

}  // namespace hrl

QString placeText(const Placemark& placemark);
QString shortPlaceText(const Placemark& placemark);
QString addressText(const Placemark& placemark);
