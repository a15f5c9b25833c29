// SPDX-License-Identifier: GPL-3.0-or-later
#include "HRLocation.h"

#include "Log.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTimeZone>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace hrl {
namespace {

const QString directionLetters = QStringLiteral("nNsSeEwW");
const QChar degreeSign(0x00B0);

bool isAsciiDigit(QChar c) { return c >= u'0' && c <= u'9'; }

QString listText(const QStringList& list) {
    QStringList quoted;
    for (const QString& s : list) quoted << '"' + s + '"';
    return '[' + quoted.join(", ") + ']';
}

// A decimal comma becomes a point, a separating comma a blank. A comma at the very start or end
// is left for the split to drop: rescanning it as the plain rule says would never finish.
QString normaliseCommas(QString text) {
    qsizetype from = 0;
    for (qsizetype p; (p = text.indexOf(u',', from)) >= 0;) {
        const qsizetype n = text.size();
        if (p >= 1 && p + 1 < n) text[p] = isAsciiDigit(text[p - 1]) && isAsciiDigit(text[p + 1]) ? u'.' : u' ';
        from = p + 1;
    }
    return text;
}

enum class Axis { latitude, longitude };

// A one-character direction token: its axis, and whether it negates the number.
std::optional<std::pair<Axis, bool>> letter(const QString& token) {
    if (token.size() != 1) return std::nullopt;
    const QChar c = token.at(0).toUpper();
    if (c == u'N' || c == u'S') return std::pair{Axis::latitude, c != u'N'};
    if (c == u'E' || c == u'W') return std::pair{Axis::longitude, c != u'E'};
    return std::nullopt;
}

std::optional<GeoLocation> make(double latitude, double longitude) { return GeoLocation(latitude, longitude); }

// number, letter, number — or number, number, letter when `letterLast`.
std::optional<GeoLocation> threeTokens(const QStringList& t, bool letterLast) {
    const QString& withLetter = letterLast ? t[1] : t[0];
    const QString& other = letterLast ? t[0] : t[2];
    auto dir = letter(letterLast ? t[2] : t[1]);
    auto a = number(withLetter), b = number(other);
    if (!dir || !a || !b) return std::nullopt;
    double value = dir->second ? -*a : *a;
    return dir->first == Axis::latitude ? make(value, *b) : make(*b, value);
}

// Takes the piece before `mark` off the front of `rest` when it holds none of `forbidden`;
// otherwise leaves `rest` alone and gives "0".
QString takeComponent(QString& rest, QChar mark, const QString& forbidden) {
    const QStringList pieces = rest.split(mark, Qt::SkipEmptyParts);
    if (!pieces.isEmpty()) {
        const QString& piece = pieces.first();
        bool clean = std::none_of(piece.begin(), piece.end(), [&](QChar c) { return forbidden.contains(c); });
        if (clean) {
            rest = rest.mid(qMin(rest.size(), piece.size() + 1));
            return piece.trimmed();
        }
    }
    return QStringLiteral("0");
}

}  // namespace

std::optional<double> number(const QString& token) {
    if (token.isEmpty() || token.at(0).isSpace()) return std::nullopt;
    // The C locale, whatever the process's locale says about decimal commas.
    static locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    const QByteArray utf8 = token.toUtf8();
    char* end = nullptr;
    double v = strtod_l(utf8.constData(), &end, cLocale);
    if (end == utf8.constData() || end != utf8.constData() + utf8.size()) return std::nullopt;
    return v;
}

QString shortest(double value) { return QString::number(value, 'g', QLocale::FloatingPointShortest); }

QStringList typedTokens(const OptText& text) {
    if (!text) return {};
    QStringList tokens = normaliseCommas(*text).split(QRegularExpression("[ ,]"));
    Log::debug("tokens: " + listText(tokens));
    tokens.removeAll(QString());
    QStringList out;
    for (const QString& t : std::as_const(tokens)) {
        if (t.size() > 1 && directionLetters.contains(t.back())) out << t.chopped(1) << QString(t.back());
        else out << t;
    }
    Log::debug("typedTokens: " + listText(out));
    return out;
}

std::optional<GeoLocation> decimalLocation(const OptText& text) {
    if (!text) return std::nullopt;
    const QStringList t = typedTokens(text);
    switch (t.size()) {
    case 2: {
        auto lat = number(t[0]), lon = number(t[1]);
        if (!lat || !lon) return std::nullopt;
        return make(*lat, *lon);
    }
    case 3:
        if (auto first = threeTokens(t, false)) return first;
        return threeTokens(t, true);
    case 4: {
        auto a = number(t[0]), b = number(t[2]);
        auto da = letter(t[1]), db = letter(t[3]);
        if (!a || !b || !da || !db || da->first == db->first) return std::nullopt;
        double va = da->second ? -*a : *a, vb = db->second ? -*b : *b;
        return da->first == Axis::latitude ? make(va, vb) : make(vb, va);
    }
    default:
        return std::nullopt;
    }
}

std::optional<QStringList> degreesString(const OptText& text) {
    if (!text) return std::nullopt;
    static const QRegularExpression separators(QStringLiteral("[ ,0-9\\t\\n\\r]"));
    const QString notInDegrees = QStringLiteral("'\"") + directionLetters;
    const QString notInMinutes = QString(degreeSign) + u'"' + directionLetters;
    const QString notInSeconds = QString(degreeSign) + u'\'' + directionLetters;
    QStringList result;
    QString rest = *text;
    while (!rest.isEmpty()) {
        const QString before = rest;
        const QString deg = takeComponent(rest, degreeSign, notInDegrees);
        const QString min = takeComponent(rest, u'\'', notInMinutes);
        const QString sec = takeComponent(rest, u'"', notInSeconds);
        rest = rest.trimmed();
        const QString letters = rest.split(separators).value(0);
        rest = rest.mid(letters.size());
        auto d = number(deg), m = number(min), s = number(sec);
        if (!d || !m || !s) return std::nullopt;
        const QString direction = letters.isEmpty() ? QString() : QString(letters.at(0));
        const double sign = std::copysign(1.0, *d);
        double value = *d + sign * (*m / 60) + sign * (*s / 3600);
        Log::debug(shortest(value) + " " + direction);
        if (direction.toUpper() == u"W" || direction.toUpper() == u"S") value = -value;
        rest = rest.trimmed();
        result << shortest(value) << direction;
        // A pass that took nothing would take nothing again, forever: such text is no coordinate.
        if (rest == before) return std::nullopt;
    }
    return result;
}

std::optional<GeoLocation> degreesLocation(const OptText& text) {
    if (!text) return std::nullopt;
    const bool twoMarks = text->count(degreeSign) == 2 || text->count(u'\'') == 2 || text->count(u'"') == 2;
    if (!twoMarks) return std::nullopt;
    QString spaced = *text;
    spaced.replace(u',', u' ');
    auto parts = degreesString(spaced);
    if (!parts || parts->size() != 4) return std::nullopt;
    auto first = number(parts->at(0)), second = number(parts->at(2));
    if (!first || !second) return std::nullopt;
    auto is = [](const QString& dir, const char* set) { return dir.isEmpty() || QString(set).contains(dir.at(0)); };
    const QString& d1 = parts->at(1);
    const QString& d2 = parts->at(3);
    if (is(d1, "nNsS") && is(d2, "eEwW")) return make(*first, *second);
    if (is(d1, "eEwW") && is(d2, "nNsS")) return make(*second, *first);
    return std::nullopt;
}

std::optional<GeoLocation> iso6709Location(const OptText& text) {
    if (!text) return std::nullopt;
    static const QRegularExpression re(QStringLiteral("([+-][0-9.]+)([+-][0-9.]+)"));
    auto m = re.match(*text);
    if (!m.hasMatch()) return std::nullopt;
    auto lat = number(m.captured(1)), lon = number(m.captured(2));
    if (!lat || !lon) return std::nullopt;
    return make(*lat, *lon);
}

namespace {

// Degrees, minutes and seconds of the absolute value, each truncated, never rounded.
QString dms(double value) {
    double a = std::fabs(value);
    double deg = std::trunc(a);
    double minutes = (a - deg) * 60;
    double min = std::trunc(minutes);
    double sec = std::trunc((minutes - min) * 60);
    return QStringLiteral("%1° %2' %3\"").arg(qint64(deg)).arg(qint64(min)).arg(qint64(sec));
}

}  // namespace

std::optional<QString> coordinatesText(const GeoLocation& location, bool oneLine) {
    const double lat = location.coordinate.latitude, lon = location.coordinate.longitude;
    if ((lat == -180 && lon == -180) || (lat == 180 && lon == 180)) return std::nullopt;
    if (!std::isfinite(lat) || !std::isfinite(lon)) return std::nullopt;
    return dms(lat) + (lat > 0 ? " N" : " S") + (oneLine ? " " : "\n") + dms(lon) + (lon > 0 ? " E" : " W");
}

QString decimalCoordinatesText(const GeoLocation& location, bool human, bool oneLine) {
    const double lat = location.coordinate.latitude, lon = location.coordinate.longitude;
    auto text = [&](double v) { return human ? QString::asprintf("%.4f", std::fabs(v)) : shortest(v); };
    return text(lat) + (lat > 0 ? " N" : " S") + (oneLine ? " " : "\n") + text(lon) + (lon > 0 ? " E" : " W");
}

}  // namespace hrl

namespace {

QString join(const QString& base, const char* separator, const std::optional<QString>& next) {
    if (!next) return base;
    return base + (base.isEmpty() ? QString() : QString::fromUtf8(separator)) + *next;
}

QString withCountryCode(QString text, const Placemark& p) {
    if (p.ISOcountryCode) text += (text.isEmpty() ? "(" : " (") + *p.ISOcountryCode + ")";
    return text;
}

// Seconds between 1970-01-01 and 2001-01-01, the reference date of the stored time stamps.
constexpr double referenceDateOffset = 978307200.0;

}  // namespace

QString placeText(const Placemark& p) {
    return withCountryCode(join(join(p.subLocality.value_or(QString()), ", ", p.locality), ", ", p.country), p);
}

QString shortPlaceText(const Placemark& p) {
    return withCountryCode(join(p.subLocality.value_or(QString()), ", ", p.locality), p);
}

QString addressText(const Placemark& p) {
    QString t = join(p.subLocality.value_or(QString()), "\n", p.thoroughfare);
    t = join(t, " ", p.subThoroughfare);
    t = join(t, "\n", p.postalCode);
    t = join(t, " ", p.locality);
    t = join(t, ", ", p.administrativeArea);
    return withCountryCode(t, p);
}

QJsonObject HRLocation::toJson() const {
    QJsonObject o;
    if (location) {
        const GeoLocation& l = *location;
        o.insert("location", QJsonObject{
                                 {"latitude", l.coordinate.latitude},
                                 {"longitude", l.coordinate.longitude},
                                 {"altitude", l.altitude},
                                 {"horizontalAccuracy", l.horizontalAccuracy},
                                 {"verticalAccuracy", l.verticalAccuracy},
                                 {"speed", l.speed},
                                 {"course", l.course},
                                 {"timestamp", l.timestamp.toMSecsSinceEpoch() / 1000.0 - referenceDateOffset},
                             });
    }
    if (title) o.insert("desc", *title);
    if (subtitle) o.insert("details", *subtitle);
    return o;
}

std::optional<HRLocation> HRLocation::fromJson(const QJsonValue& json) {
    if (!json.isObject()) return std::nullopt;
    const QJsonObject o = json.toObject();
    HRLocation h;
    const QJsonValue inner = o.value("location");
    if (inner.isObject()) {
        const QJsonObject l = inner.toObject();
        static const char* keys[] = {"latitude", "longitude", "altitude", "horizontalAccuracy",
                                     "verticalAccuracy", "speed", "course", "timestamp"};
        bool complete = std::all_of(std::begin(keys), std::end(keys), [&](const char* k) { return l.value(k).isDouble(); });
        if (complete) {
            GeoLocation g(l.value("latitude").toDouble(), l.value("longitude").toDouble());
            g.altitude = l.value("altitude").toDouble();
            g.horizontalAccuracy = l.value("horizontalAccuracy").toDouble();
            g.verticalAccuracy = l.value("verticalAccuracy").toDouble();
            g.speed = l.value("speed").toDouble();
            g.course = l.value("course").toDouble();
            g.timestamp = QDateTime::fromMSecsSinceEpoch(
                qint64(std::llround((l.value("timestamp").toDouble() + referenceDateOffset) * 1000)), QTimeZone::utc());
            h.location = g;
        }
    }
    if (o.value("desc").isString()) h.title = o.value("desc").toString();
    if (o.value("details").isString()) h.subtitle = o.value("details").toString();
    else if (h.location) h.subtitle = hrl::coordinatesText(*h.location, true);
    return h;
}

QByteArray HRLocation::toJsonBytes() const { return QJsonDocument(toJson()).toJson(QJsonDocument::Compact); }

std::optional<HRLocation> HRLocation::fromJsonBytes(const QByteArray& bytes) {
    QJsonParseError error{};
    QJsonDocument doc = QJsonDocument::fromJson(bytes, &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject()) return std::nullopt;
    return fromJson(doc.object());
}
