// SPDX-License-Identifier: GPL-3.0-or-later
#include "TrackLog.h"
// QXmlStreamReader does the XML; the few elements of the three formats are picked out here by
// hand, as no packaged library reads GPX, KML and NMEA files alike (gpsd reads NMEA from live
// receivers only).

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QTimeZone>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 kMaxLogBytes = qint64(512) << 20;

std::optional<qint64> isoTime(const QString& text) {
    QDateTime t = QDateTime::fromString(text.trimmed(), Qt::ISODateWithMs);
    if (!t.isValid()) return std::nullopt;
    // A time without a zone in a track log is UTC by the formats' own rules.
    if (t.timeSpec() == Qt::LocalTime) t.setTimeSpec(Qt::UTC);
    return t.toMSecsSinceEpoch();
}

bool validPosition(double lat, double lon) {
    return std::isfinite(lat) && std::isfinite(lon) && std::fabs(lat) <= 90 && std::fabs(lon) <= 180;
}

// GPX: <trkpt>, <rtept> and <wpt> with lat/lon attributes, <ele> and <time> children. Each track
// segment is its own segment; waypoints and routes make others.
void readGpx(QXmlStreamReader& xml, QList<TrackPoint>& out) {
    int segment = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && (xml.name() == u"trkseg" || xml.name() == u"rte")) ++segment;
        if (!xml.isStartElement() || !(xml.name() == u"trkpt" || xml.name() == u"wpt" || xml.name() == u"rtept"))
            continue;
        const bool waypoint = xml.name() == u"wpt";
        TrackPoint p;
        bool okLat = false, okLon = false;
        p.latitude = xml.attributes().value(QLatin1String("lat")).toDouble(&okLat);
        p.longitude = xml.attributes().value(QLatin1String("lon")).toDouble(&okLon);
        std::optional<qint64> time;
        const auto element = xml.name().toString();
        while (!xml.atEnd() && !(xml.isEndElement() && xml.name() == element)) {
            xml.readNext();
            if (!xml.isStartElement()) continue;
            if (xml.name() == u"ele") {
                bool ok = false;
                const double ele = xml.readElementText().toDouble(&ok);
                if (ok && std::isfinite(ele)) p.altitude = ele;
            } else if (xml.name() == u"time") {
                time = isoTime(xml.readElementText());
            }
        }
        // Waypoints are moments of their own: never joined to each other or to a track.
        p.segment = waypoint ? -1 - int(out.size()) : segment;
        if (okLat && okLon && time && validPosition(p.latitude, p.longitude)) {
            p.msecs = *time;
            out << p;
        }
    }
}

// "lon,lat[,alt]" (KML coordinates) or "lon lat [alt]" (gx:coord).
std::optional<TrackPoint> kmlCoordinate(const QString& text, QChar separator) {
    const QStringList parts = text.trimmed().split(separator, Qt::SkipEmptyParts);
    if (parts.size() < 2) return std::nullopt;
    TrackPoint p;
    bool okLon = false, okLat = false, okAlt = false;
    p.longitude = parts[0].toDouble(&okLon);
    p.latitude = parts[1].toDouble(&okLat);
    if (parts.size() > 2) {
        const double alt = parts[2].toDouble(&okAlt);
        if (okAlt && std::isfinite(alt)) p.altitude = alt;
    }
    if (!okLon || !okLat || !validPosition(p.latitude, p.longitude)) return std::nullopt;
    return p;
}

// KML: a <Placemark> with a <TimeStamp><when> and a <Point><coordinates>, or a <gx:Track> whose
// <when> elements pair in order with its <gx:coord> elements.
void readKml(QXmlStreamReader& xml, QList<TrackPoint>& out) {
    int segment = 0;
    QList<qint64> whens;
    QList<std::optional<TrackPoint>> coords;
    qint64 stamp = std::numeric_limits<qint64>::min();  // none yet
    std::optional<TrackPoint> point;
    bool inTrack = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            if (xml.name() == u"Track") {
                inTrack = true;
                whens.clear();
                coords.clear();
            } else if (xml.name() == u"Placemark") {
                stamp = std::numeric_limits<qint64>::min();
                point.reset();
            } else if (xml.name() == u"when") {
                const auto t = isoTime(xml.readElementText());
                if (inTrack) whens << t.value_or(std::numeric_limits<qint64>::min());
                else stamp = t.value_or(std::numeric_limits<qint64>::min());
            } else if (xml.name() == u"coord" && inTrack) {
                coords << kmlCoordinate(xml.readElementText(), ' ');
            } else if (xml.name() == u"coordinates" && !inTrack) {
                point = kmlCoordinate(xml.readElementText().trimmed().section(QRegularExpression("\\s+"), 0, 0), ',');
            }
        } else if (xml.isEndElement()) {
            if (xml.name() == u"Track") {
                inTrack = false;
                ++segment;
                for (qsizetype i = 0; i < std::min(whens.size(), coords.size()); ++i) {
                    if (!coords[i] || whens[i] == std::numeric_limits<qint64>::min()) continue;
                    TrackPoint p = *coords[i];
                    p.msecs = whens[i];
                    p.segment = segment;
                    out << p;
                }
            } else if (xml.name() == u"Placemark" && stamp != std::numeric_limits<qint64>::min() && point) {
                TrackPoint p = *point;
                p.msecs = stamp;
                p.segment = -1 - int(out.size());  // a moment of its own, like a GPX waypoint
                out << p;
            }
        }
    }
}

// "ddmm.mmmm" with its hemisphere letter to signed degrees.
std::optional<double> nmeaDegrees(const QByteArray& value, const QByteArray& hemisphere, int degreeDigits) {
    if (value.size() < degreeDigits + 2) return std::nullopt;
    bool okD = false, okM = false;
    const double degrees = value.left(degreeDigits).toDouble(&okD), minutes = value.mid(degreeDigits).toDouble(&okM);
    if (!okD || !okM || minutes >= 60) return std::nullopt;
    const double d = degrees + minutes / 60;
    if (hemisphere == "S" || hemisphere == "W") return -d;
    if (hemisphere == "N" || hemisphere == "E") return d;
    return std::nullopt;
}

std::optional<QTime> nmeaTime(const QByteArray& t) {
    // hhmmss with up to three decimals of a second.
    if (t.size() < 6 || t.size() > 10) return std::nullopt;
    const QTime time(t.left(2).toInt(), t.mid(2, 2).toInt(), t.mid(4, 2).toInt(),
                     t.size() > 7 ? int(std::lround(t.mid(6).toDouble() * 1000)) % 1000 : 0);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

// NMEA 0183: RMC gives date, time and position; GGA gives time, position and altitude and takes
// its date from the last RMC. A sentence whose checksum is wrong is dropped.
void readNmea(const QByteArray& data, QList<TrackPoint>& out) {
    QDate date;
    for (QByteArray line : data.split('\n')) {
        line = line.trimmed();
        if (line.size() < 7 || line[0] != '$') continue;
        if (const qsizetype star = line.lastIndexOf('*'); star > 0) {
            quint8 sum = 0;
            for (qsizetype i = 1; i < star; ++i) sum ^= quint8(line[i]);
            bool ok = false;
            if (line.mid(star + 1, 2).toUInt(&ok, 16) != sum || !ok) continue;
            line.truncate(star);
        }
        const QList<QByteArray> f = line.split(',');
        const QByteArray type = f[0].mid(3);
        std::optional<QTime> time;
        std::optional<double> lat, lon, alt;
        if (type == "RMC" && f.size() >= 10) {
            if (f[2] != "A") continue;  // no fix
            const QByteArray d = f[9];
            if (d.size() == 6) {
                const QDate parsed(2000 + d.mid(4, 2).toInt(), d.mid(2, 2).toInt(), d.left(2).toInt());
                if (parsed.isValid()) date = parsed;
            }
            time = nmeaTime(f[1]);
            lat = nmeaDegrees(f[3], f[4], 2);
            lon = nmeaDegrees(f[5], f[6], 3);
        } else if (type == "GGA" && f.size() >= 10) {
            if (f[6].isEmpty() || f[6] == "0") continue;  // no fix
            time = nmeaTime(f[1]);
            lat = nmeaDegrees(f[2], f[3], 2);
            lon = nmeaDegrees(f[4], f[5], 3);
            bool ok = false;
            const double a = f[9].toDouble(&ok);
            if (ok && std::isfinite(a)) alt = a;
        } else {
            continue;
        }
        if (!date.isValid() || !time || !lat || !lon || !validPosition(*lat, *lon)) continue;
        TrackPoint p{QDateTime(date, *time, Qt::UTC).toMSecsSinceEpoch(), *lat, *lon, alt, 0};
        // RMC and GGA of one moment make one point, the altitude from whichever has it.
        if (!out.isEmpty() && out.last().msecs == p.msecs) {
            if (alt) out.last().altitude = alt;
            continue;
        }
        out << p;
    }
}

double radians(double d) { return d * M_PI / 180; }

// The initial great-circle bearing from a to b, 0 to 360 degrees.
double bearing(const TrackPoint& a, const TrackPoint& b) {
    const double f1 = radians(a.latitude), f2 = radians(b.latitude), dl = radians(b.longitude - a.longitude);
    const double y = std::sin(dl) * std::cos(f2);
    const double x = std::cos(f1) * std::sin(f2) - std::sin(f1) * std::cos(f2) * std::cos(dl);
    const double deg = std::atan2(y, x) * 180 / M_PI;
    return std::fmod(deg + 360, 360);
}

}  // namespace

std::optional<TrackLog> TrackLog::parse(const QByteArray& data, QString* error) {
    TrackLog log;
    const QByteArray head = data.left(4096).trimmed();
    if (head.startsWith('<') || head.startsWith("\xEF\xBB\xBF<")) {
        QXmlStreamReader xml(data);
        while (!xml.atEnd() && !xml.isStartElement()) xml.readNext();
        if (xml.name() == u"gpx") readGpx(xml, log.points_);
        else if (xml.name() == u"kml") readKml(xml, log.points_);
        else {
            if (error) *error = QStringLiteral("not a GPX or KML file");
            return std::nullopt;
        }
    } else {
        readNmea(data, log.points_);
    }
    if (log.points_.isEmpty()) {
        if (error) *error = QStringLiteral("no timed positions in the track log");
        return std::nullopt;
    }
    std::stable_sort(log.points_.begin(), log.points_.end(),
                     [](const TrackPoint& a, const TrackPoint& b) { return a.msecs < b.msecs; });
    return log;
}

std::optional<TrackLog> TrackLog::readFile(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = file.errorString();
        return std::nullopt;
    }
    if (file.size() > kMaxLogBytes) {
        if (error) *error = QStringLiteral("the track log is too large");
        return std::nullopt;
    }
    return parse(file.readAll(), error);
}

std::optional<TrackFix> TrackLog::at(qint64 msecs, qint64 maxGapMsecs) const {
    const auto later = std::lower_bound(points_.begin(), points_.end(), msecs,
                                        [](const TrackPoint& p, qint64 t) { return p.msecs < t; });
    if (later != points_.end() && later->msecs == msecs) {
        TrackFix fix{later->latitude, later->longitude, later->altitude, std::nullopt};
        // The direction of travel of a point of a track comes from its neighbours in the segment.
        const auto next = std::next(later);
        if (next != points_.end() && next->segment == later->segment && next->msecs - later->msecs <= maxGapMsecs)
            fix.track = bearing(*later, *next);
        else if (later != points_.begin() && std::prev(later)->segment == later->segment &&
                 later->msecs - std::prev(later)->msecs <= maxGapMsecs)
            fix.track = bearing(*std::prev(later), *later);
        return fix;
    }
    if (later == points_.begin() || later == points_.end()) return std::nullopt;
    const TrackPoint& a = *std::prev(later);
    const TrackPoint& b = *later;
    if (a.segment != b.segment || b.msecs - a.msecs > maxGapMsecs) return std::nullopt;
    // Linear in degrees: over the short gaps bridged this is within centimetres of the great
    // circle. The longitude goes the short way round, across the 180th meridian if that is shorter.
    const double f = double(msecs - a.msecs) / double(b.msecs - a.msecs);
    TrackFix fix;
    fix.latitude = a.latitude + (b.latitude - a.latitude) * f;
    double east = b.longitude - a.longitude;
    if (east > 180) east -= 360;
    else if (east < -180) east += 360;
    fix.longitude = a.longitude + east * f;
    if (fix.longitude > 180) fix.longitude -= 360;
    else if (fix.longitude < -180) fix.longitude += 360;
    if (a.altitude && b.altitude) fix.altitude = *a.altitude + (*b.altitude - *a.altitude) * f;
    if (a.latitude != b.latitude || a.longitude != b.longitude) fix.track = bearing(a, b);
    return fix;
}
