// SPDX-License-Identifier: GPL-3.0-or-later
#include "VideoModifier.h"

#include "Log.h"
#include "MovieWriter.h"

#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

using media::MetadataItem;

namespace {

bool isDateItem(const MetadataItem& item) {
    return item.identifier == QLatin1String(media::Identifier::commonCreationDate) ||
           item.identifier == QLatin1String(media::Identifier::quickTimeMetadataCreationDate) ||
           item.identifier == QLatin1String(media::Identifier::quickTimeUserDataCreationDate);
}

bool isLocationItem(const MetadataItem& item) {
    return item.identifier == QLatin1String(media::Identifier::quickTimeMetadataLocationISO6709) ||
           item.identifier == QLatin1String(media::Identifier::quickTimeUserDataLocationISO6709);
}

// A date item's text as its wall clock (a QDateTime in UTC standing for the clock), its
// fraction of a second and its zone: "2023-05-14T10:20:30+0200".
struct DateText {
    QDateTime clock;
    QString fraction, zone;

    QString text(const QDateTime& newClock, const QString& newZone) const {
        return QLocale::c().toString(newClock, QStringLiteral("yyyy-MM-dd'T'HH:mm:ss")) + fraction + newZone;
    }
};

std::optional<DateText> dateText(const MetadataItem& item) {
    static const QRegularExpression form(QStringLiteral(R"(^(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)(\.\d+)?(.*)$)"));
    const auto text = item.stringValue();
    // Only a text stored as it reads can be rewritten in its own form.
    if (!text || item.stored != text->toUtf8()) return std::nullopt;
    const auto m = form.match(*text);
    if (!m.hasMatch()) return std::nullopt;
    QDateTime clock = QDateTime::fromString(m.captured(1), QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"));
    if (!clock.isValid()) return std::nullopt;
    clock.setTimeSpec(Qt::UTC);
    return DateText{clock, m.captured(2), m.captured(3)};
}

void setText(MetadataItem& item, const QString& text) {
    item.value = text;
    item.stored = text.toUtf8();
}

// A zone in the form of the one it replaces: "+0200" where the movie wrote that, else "+02:00".
QString zoneText(int seconds, const QString& like) {
    static const QRegularExpression compact(QStringLiteral(R"(^[+-]\d{4}$)"));
    const QString text = TimeZones::offsetText(seconds);
    return compact.match(like).hasMatch() ? QString(text).remove(u':') : text;
}

}  // namespace

QString iso6709Text(const GeoLocation& location) {
    return QString::asprintf("%+08.4f%+09.4f%+.0f/", location.coordinate.latitude, location.coordinate.longitude,
                             location.altitude);
}

QString iso8601Text(const QDateTime& date) {
    return QLocale::c().toString(date.toUTC(), QStringLiteral("yyyy-MM-dd'T'HH:mm:ss")) + u'Z';
}

void TagsVideoModifier::removeDate() {
    items.removeIf(isDateItem);
    userDate.reset();
}

void TagsVideoModifier::setDate(const QDateTime& date) {
    removeDate();
    userDate = date;
    items.append(MetadataItem::quickTimeText("com.apple.quicktime.creationdate", iso8601Text(date)));
}

void TagsVideoModifier::removeLocation() {
    items.removeIf(isLocationItem);
    userLocation.reset();
}

void TagsVideoModifier::setLocation(const GeoLocation& location) {
    removeLocation();
    userLocation = location;
    items.append(MetadataItem::quickTimeText("com.apple.quicktime.location.ISO6709", iso6709Text(location)));
}

void TagsVideoModifier::shiftDates(qint64 seconds) {
    for (MetadataItem& item : items)
        if (const auto d = isDateItem(item) ? dateText(item) : std::nullopt)
            setText(item, d->text(d->clock.addSecs(seconds), d->zone));
}

std::optional<QString> TagsVideoModifier::setZone(const TimeZones::ZoneWish& wish) {
    // Worked out for all dates first: one that can't be moved leaves the movie as it was.
    QList<std::pair<MetadataItem*, QString>> results;
    for (MetadataItem& item : items) {
        const auto d = isDateItem(item) ? dateText(item) : std::nullopt;
        if (!d) continue;
        if (!wish.keepInstant) {
            results.append({&item, d->text(d->clock, zoneText(TimeZones::offsetAt(wish, d->clock, false), d->zone))});
            continue;
        }
        const auto old = TimeZones::parseOffsetText(d->zone);
        if (!old) return QStringLiteral("the movie has no time zone to keep the instant from");
        const QDateTime instant = d->clock.addSecs(-*old);
        const int now = TimeZones::offsetAt(wish, instant, true);
        results.append({&item, d->text(instant.addSecs(now), zoneText(now, d->zone))});
    }
    for (auto& [item, text] : results) setText(*item, text);
    return std::nullopt;
}

void TagsVideoModifier::strip(PrivacyStrip::Kind kind) {
    if (kind == PrivacyStrip::Kind::motion) return;  // a movie is no motion photo
    if (kind == PrivacyStrip::Kind::dates) {
        removeDate();
        return;
    }
    removeLocation();
    if (kind != PrivacyStrip::Kind::personal) return;
    items.removeIf([](const MetadataItem& item) {
        const QByteArray key = item.key.toLower();
        return key.contains("serial") || key.contains("owner");
    });
    dropOtherMetadata = true;
}

std::optional<ExifVideoModifier> ExifVideoModifier::make(const QList<std::shared_ptr<const TSAsset>>& assets) {
    ExifVideoModifier modifier;
    for (const auto& asset : assets) {
        if (!asset || !asset->video()) return std::nullopt;
        modifier.modifing.append({asset, TagsVideoModifier(asset->video()->metadata)});
    }
    return modifier;
}

QStringList ExifVideoModifier::modify(const VideoWishes& wishes) {
    if (wishes.noTags) {
        for (auto& m : modifing) {
            m.modifier.items.clear();
            m.modifier.noTags = true;
        }
        return {};
    }
    if (wishes.removeDate) {
        for (auto& m : modifing) m.modifier.removeDate();
    } else if (wishes.date) {
        // A video that shows this date already keeps its own items.
        for (auto& m : modifing)
            if (m.asset->ddStore().date != wishes.date) m.modifier.setDate(*wishes.date);
    }
    if (wishes.removeLocation) {
        for (auto& m : modifing) m.modifier.removeLocation();
    } else if (wishes.location) {
        for (auto& m : modifing) m.modifier.setLocation(*wishes.location);
    }
    QStringList problems;
    for (auto& m : modifing) {
        if (wishes.shiftSeconds) m.modifier.shiftDates(*wishes.shiftSeconds);
        if (wishes.zone)
            if (auto problem = m.modifier.setZone(*wishes.zone)) problems << *problem;
        if (wishes.strip) m.modifier.strip(*wishes.strip);
    }
    return problems;
}

void ExifVideoModifier::modify(UserSettings& settings) {
    VideoWishes wishes;
    wishes.noTags = settings.switchers[Sections::noTags];
    wishes.removeDate = settings.switchers[Sections::dateTime];
    wishes.removeLocation = settings.switchers[Sections::location];
    if (settings.isDateChanged()) wishes.date = settings.date(TSKey::EXIF_DATE);
    if (settings.isLocationChanged() && settings.finalLoc) wishes.location = settings.finalLoc->location;
    modify(wishes);
    if (!wishes.noTags && wishes.removeDate) settings.dropDateWishes();
}

bool ExifVideoModifier::changed() const {
    auto same = [](const MetadataItem& a, const MetadataItem& b) {
        return a.identifier == b.identifier && a.stored == b.stored && a.dataType == b.dataType && a.locale == b.locale;
    };
    for (const auto& m : modifing) {
        const QList<MetadataItem>& own = m.asset->video()->metadata;
        if (m.modifier.noTags || m.modifier.dropOtherMetadata || m.modifier.items.size() != own.size() ||
            !std::equal(own.begin(), own.end(), m.modifier.items.begin(), same))
            return true;
    }
    return false;
}

QList<MetadataItem> ExifVideoModifier::exportItems(const QList<MetadataItem>& items) {
    QList<MetadataItem> out = items;
    out.removeIf([](const MetadataItem& i) { return i.identifier == QLatin1String(media::Identifier::quickTimeMetadataSoftware); });
    out.append(MetadataItem::quickTimeText("com.apple.quicktime.software", QStringLiteral(TESSORIN_APP_NAME)));
    return out;
}

QString ExifVideoModifier::outputPath(const QDir& directory, const QDateTime& now) {
    const QString stem = "video_" + QLocale::c().toString(now, QStringLiteral("yyMMdd_HHmmss"));
    QString path = directory.filePath(stem + ".mp4");
    for (int n = 2; QFileInfo::exists(path); ++n) path = directory.filePath(QStringLiteral("%1_%2.mp4").arg(stem).arg(n));
    return path;
}

std::variant<QStringList, QString> ExifVideoModifier::save(int mode, const QDir& directory) const {
    if (modifing.isEmpty()) return QStringLiteral("Error getting the video asset");
    if (mode == 1) return QStringLiteral("Video editing not available");
    if (mode != 2) return QStringLiteral("Error: Exporting Data (2)");
    // The edit screen holds one video at a time: the first is the one saved.
    const ModifyingVideoAsset& video = modifing.first();
    const QString path = outputPath(directory, QDateTime::currentDateTime());
    media::MetadataRewrite rewrite{exportItems(video.modifier.items),
                                   !video.modifier.noTags && !video.modifier.dropOtherMetadata};
    QString error;
    if (!media::writeMovie(video.asset->path(), path, rewrite, &error)) {
        Log::error("🎥 export of " + video.asset->path() + " failed: " + error, "save(mode:onCompletition:)");
        return "Error: Exporting Session: " + error;
    }
    Log::info("🎥 exported " + path, "save(mode:onCompletition:)");
    return QStringList{path};
}
