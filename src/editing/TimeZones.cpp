// SPDX-License-Identifier: GPL-3.0-or-later
#include "TimeZones.h"

#include "PropertyKeys.h"
#include "TagsPhotoModifier.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTimeZone>

namespace TimeZones {

namespace {

const QString kDateFormat = QStringLiteral("yyyy:MM:dd HH:mm:ss");

}  // namespace

int offsetAt(const ZoneWish& wish, const QDateTime& localOrInstant, bool isInstant) {
    if (wish.offsetSeconds) return *wish.offsetSeconds;
    const QTimeZone zone(wish.zoneName.toUtf8());
    if (isInstant) return zone.offsetFromUtc(localOrInstant);
    QDateTime local(localOrInstant.date(), localOrInstant.time(), zone);
    return local.isValid() ? local.offsetFromUtc() : zone.offsetFromUtc(localOrInstant);
}

std::optional<int> parseOffsetText(const QString& text) {
    static const QRegularExpression form(QStringLiteral(R"(^\s*([+-])(\d{1,2}):?(\d{2})?\s*$)"));
    const QString t = text.trimmed();
    if (t == QLatin1String("Z") || t.compare(QLatin1String("UTC"), Qt::CaseInsensitive) == 0) return 0;
    const auto m = form.match(t);
    if (!m.hasMatch()) return std::nullopt;
    const int hours = m.captured(2).toInt(), minutes = m.captured(3).toInt();
    if (hours > 14 || minutes > 59) return std::nullopt;
    const int seconds = (hours * 60 + minutes) * 60;
    return m.captured(1) == QLatin1String("-") ? -seconds : seconds;
}

QString offsetText(int seconds) {
    const int a = std::abs(seconds) / 60;
    return QStringLiteral("%1%2:%3")
        .arg(seconds < 0 ? '-' : '+')
        .arg(a / 60, 2, 10, QLatin1Char('0'))
        .arg(a % 60, 2, 10, QLatin1Char('0'));
}

std::optional<ZoneWish> parseZone(const QString& text) {
    if (const auto offset = parseOffsetText(text)) return ZoneWish{offset, {}, false};
    if (QTimeZone::isTimeZoneIdAvailable(text.trimmed().toUtf8())) return ZoneWish{std::nullopt, text.trimmed(), false};
    return std::nullopt;
}

std::optional<QString> applyZone(TagsPhotoModifier& tags, const ZoneWish& wish) {
    struct Pair {
        TagsPhotoModifier::PropertyDict* dict;
        QString dateKey;
        QString offsetKey;
    };
    const Pair pairs[] = {
        {&tags.exifData, kCGImagePropertyExifDateTimeOriginal, kCGImagePropertyExifOffsetTimeOriginal},
        {&tags.exifData, kCGImagePropertyExifDateTimeDigitized, kCGImagePropertyExifOffsetTimeDigitized},
        {&tags.tiffData, kCGImagePropertyTIFFDateTime, kCGImagePropertyExifOffsetTime},
    };
    // Worked out for all dates first: one that can't be moved leaves the photo as it was.
    QList<std::pair<const Pair*, std::pair<QString, QString>>> results;
    for (const Pair& p : pairs) {
        const QVariant value = p.dict->value(p.dateKey);
        if (value.typeId() != QMetaType::QString) continue;
        QDateTime local = QDateTime::fromString(value.toString().trimmed().left(19), kDateFormat);
        if (!local.isValid()) continue;
        local.setTimeSpec(Qt::UTC);  // a wall clock, moved without jumps
        if (!wish.keepInstant) {
            results.append({&p, {value.toString(), offsetText(offsetAt(wish, local, false))}});
            continue;
        }
        // A date without its own zone was taken in the photo's zone, as the capture date says.
        auto old = parseOffsetText(tags.exifData.value(p.offsetKey).toString());
        for (const QString& k : {QString(kCGImagePropertyExifOffsetTimeOriginal), QString(kCGImagePropertyExifOffsetTime)})
            if (!old) old = parseOffsetText(tags.exifData.value(k).toString());
        if (!old) return QStringLiteral("the photo has no time zone to keep the instant from");
        const QDateTime instant = local.addSecs(-*old);
        const int now = offsetAt(wish, instant, true);
        results.append({&p, {instant.addSecs(now).toString(kDateFormat), offsetText(now)}});
    }
    for (const auto& [p, values] : results) {
        if (p->dict->value(p->dateKey).toString() != values.first) {
            p->dict->insert(p->dateKey, values.first);
            tags.changed = true;
        }
        if (tags.exifData.value(p->offsetKey).toString() != values.second) {
            tags.exifData.insert(p->offsetKey, values.second);
            tags.changed = true;
        }
    }
    return std::nullopt;
}

}  // namespace TimeZones
