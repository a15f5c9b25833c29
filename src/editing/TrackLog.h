// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The positions a GPS logger or a phone recorded over a day, read from GPX 1.0 and 1.1 (tracks,
// segments, waypoints), KML (placemarks with a time stamp, gx:Track) and NMEA sentences (RMC,
// GGA), and the position at any instant between them.
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

struct TrackPoint {
    qint64 msecs = 0;  // since the epoch, UTC
    double latitude = 0, longitude = 0;
    std::optional<double> altitude;  // metres above sea level
    int segment = 0;                 // points are only joined within one segment
};

// Where the log puts a photo.
struct TrackFix {
    double latitude = 0, longitude = 0;
    std::optional<double> altitude;
    std::optional<double> track;  // direction of travel, degrees from true north
};

class TrackLog {
public:
    // Reads any of the three formats, told apart by content. Nothing, with the reason, when the
    // data holds no timed point.
    static std::optional<TrackLog> parse(const QByteArray& data, QString* error = nullptr);
    static std::optional<TrackLog> readFile(const QString& path, QString* error = nullptr);

    // Points in time order.
    const QList<TrackPoint>& points() const { return points_; }

    // The position at `msecs`: interpolated between the two points around it when they belong to
    // one segment and lie at most `maxGapMsecs` apart, a point's own when it falls on one.
    // Nothing outside the log or across a larger gap.
    std::optional<TrackFix> at(qint64 msecs, qint64 maxGapMsecs) const;

private:
    QList<TrackPoint> points_;
};
