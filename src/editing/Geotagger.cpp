// SPDX-License-Identifier: GPL-3.0-or-later
#include "Geotagger.h"

#include "DateShift.h"
#include "PropertyKeys.h"
#include "TagsPhotoModifier.h"
#include "TimeZones.h"

#include <QRegularExpression>
#include <QTimeZone>

#include <cmath>

namespace Geotagger {

std::optional<QDateTime> captureInstant(const TagsPhotoModifier& tags) {
    const std::pair<QString, QString> sources[] = {
        {kCGImagePropertyExifDateTimeOriginal, kCGImagePropertyExifOffsetTimeOriginal},
        {kCGImagePropertyExifDateTimeDigitized, kCGImagePropertyExifOffsetTimeDigitized},
        {kCGImagePropertyTIFFDateTime, kCGImagePropertyExifOffsetTime},
    };
    const std::pair<QString, QString> subSeconds[] = {
        {kCGImagePropertyExifDateTimeOriginal, kCGImagePropertyExifSubsecTimeOriginal},
        {kCGImagePropertyExifDateTimeDigitized, kCGImagePropertyExifSubsecTimeDigitized},
        {kCGImagePropertyTIFFDateTime, kCGImagePropertyExifSubsecTime},
    };
    for (int i = 0; i < 3; ++i) {
        const auto& [dateKey, offsetKey] = sources[i];
        const auto& dict = dateKey == kCGImagePropertyTIFFDateTime ? tags.tiffData : tags.exifData;
        const QString text = dict.value(dateKey).toString().trimmed().left(19);
        QDateTime local = QDateTime::fromString(text, QStringLiteral("yyyy:MM:dd HH:mm:ss"));
        if (!local.isValid()) continue;
        const QString digits = tags.exifData.value(subSeconds[i].second).toString().trimmed();
        bool ok = false;
        if (!digits.isEmpty() && digits.size() <= 9 && digits.toLongLong(&ok) >= 0 && ok)
            local = local.addMSecs(qint64(std::llround(QString("0." + digits).toDouble() * 1000)));
        if (const auto offset = TimeZones::parseOffsetText(tags.exifData.value(offsetKey).toString()))
            local.setOffsetFromUtc(*offset);
        else
            local.setTimeZone(QTimeZone::systemTimeZone());
        return local.toUTC();
    }
    return std::nullopt;
}

std::optional<QString> geotag(TagsPhotoModifier& tags, const TrackLog& log, const Options& options) {
    const auto instant = captureInstant(tags);
    if (!instant) return QStringLiteral("no capture date to find in the track log");
    const QDateTime loggerTime = instant->addSecs(options.clockOffsetSeconds);
    const auto fix = log.at(loggerTime.toMSecsSinceEpoch(), options.maxGapSeconds * 1000);
    if (!fix) return QStringLiteral("outside the track log at %1").arg(loggerTime.toString(Qt::ISODate));

    tags.setLocation(GeoLocation(fix->latitude, fix->longitude));
    auto& gps = tags.gpsData;
    if (fix->altitude) {
        gps.insert(kCGImagePropertyGPSAltitude, std::fabs(*fix->altitude));
        gps.insert(kCGImagePropertyGPSAltitudeRef, *fix->altitude < 0 ? 1 : 0);
    }
    if (fix->track) {
        gps.insert(kCGImagePropertyGPSTrack, *fix->track);
        gps.insert(kCGImagePropertyGPSTrackRef, QStringLiteral("T"));
    }
    // The GPS clock tells UTC: the instant the position belongs to, to the second.
    const QDateTime utc = loggerTime.toUTC();
    gps.insert(kCGImagePropertyGPSDateStamp, utc.toString(QStringLiteral("yyyy:MM:dd")));
    gps.insert(kCGImagePropertyGPSTimeStamp, utc.toString(QStringLiteral("HH:mm:ss")));
    return std::nullopt;
}

std::optional<qint64> parseDuration(const QString& text) {
    static const QRegularExpression unit(QStringLiteral(R"(^\s*(\d+(?:\.\d+)?)\s*([smhd])\s*$)"));
    if (const auto m = unit.match(text); m.hasMatch()) {
        const double n = m.captured(1).toDouble();
        const QChar u = m.captured(2)[0];
        const double factor = u == 's' ? 1 : u == 'm' ? 60 : u == 'h' ? 3600 : 86400;
        if (n * factor > 1e9) return std::nullopt;
        return qint64(std::llround(n * factor));
    }
    const auto seconds = DateShift::parseOffset(text);
    if (!seconds || *seconds < 0) return std::nullopt;
    return seconds;
}

}  // namespace Geotagger
