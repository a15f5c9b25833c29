// SPDX-License-Identifier: GPL-3.0-or-later
#include "VideoLoading.h"

#include "HRLocation.h"
#include "Log.h"
#include "PlaceLookup.h"

#include <cmath>

namespace videoload {

QString durationText(double seconds) {
    const qint64 s = std::llround(seconds);
    QString prefix;
    qint64 rest = s;
    if (s < -3599 || s > 3599) {
        const qint64 hours = s / 3600;
        prefix = QString::number(hours) + ":";
        rest = s - hours * 3600;
    }
    return prefix + QString::asprintf("%02lld:%02lld", rest / 60, rest % 60);
}

QString videoFormat(const QList<media::FormatDescription>& descriptions) {
    QStringList all;
    for (const auto& d : descriptions) all << d.mediaType + "/" + d.mediaSubtype;
    Log::debug("🎥 format: " + all.join(","), "videoFormat(_:)");
    if (descriptions.isEmpty()) return {};
    const QString& subtype = descriptions.first().mediaSubtype;
    if (subtype == "avc1") return QStringLiteral("H.264");
    if (subtype == "hvc1") return QStringLiteral("HEVC");
    return subtype;
}

namespace {

void tracks(TSDataStore& store, const std::optional<media::MovieInfo>& movie) {
    if (!movie || !movie->duration || !std::isfinite(*movie->duration)) store.set(TSKey::DURATION, QStringLiteral("??"));
    else store.set(TSKey::DURATION, durationText(*movie->duration));
    const QList<media::Track> videoTracks = movie ? movie->tracksOfType("vide") : QList<media::Track>();
    if (videoTracks.isEmpty()) {
        store.set(TSKey::FPS, QStringLiteral("--"));
        return;
    }
    const media::Track& v = videoTracks.first();
    if (v.nominalFrameRate) store.set(TSKey::FPS, QString::asprintf("%.2f", *v.nominalFrameRate));
    // The codec says more about a movie than the container its name gives, so it replaces the
    // file's type row.
    store.datas[TSKey::FILETYPE] = videoFormat(v.formatDescriptions);
    const QList<media::Track> audioTracks = movie->tracksOfType("soun");
    if (audioTracks.isEmpty() || audioTracks.first().formatDescriptions.isEmpty()) return;
    const QString subtype = audioTracks.first().formatDescriptions.first().mediaSubtype;
    Log::debug("🎥 audioFormatDescriptions: " + subtype, "video(avAsset:)");
    store.set(TSKey::AUDIO_FORMAT, subtype);
}

std::optional<TSKey> rowOf(const QString& commonKey) {
    static const QHash<QString, TSKey> rows{
        {"software", TSKey::SOFTWARE}, {"model", TSKey::CAMERA},          {"make", TSKey::VIDEOCAM_MAKER},
        {"artist", TSKey::AUTHOR},     {"copyrights", TSKey::COPYRIGHT},  {"description", TSKey::DESCRIPTION},
        {"title", TSKey::USER_COMMENT},
    };
    auto it = rows.find(commonKey);
    if (it == rows.end()) return std::nullopt;
    return it.value();
}

}  // namespace

void metadataRows(TSDataStore& store, const QList<media::MetadataItem>& items) {
    for (const media::MetadataItem& item : items) {
        Log::debug(item.identifier + " = " + item.stringValue().value_or(QStringLiteral("?")), "video(metadata:)");
        Log::debug(item.keySpace + " key: " + QString::fromLatin1(item.key), "video(metadata:)");
        auto words = [](bool b) { return b ? QStringLiteral("yes") : QStringLiteral("no"); };
        Log::debug("🫥🫥 " + words(item.keySpace == QLatin1String(media::KeySpace::quickTimeMetadata)) + " " +
                       words(item.keySpace == QLatin1String(media::KeySpace::quickTimeUserData)),
                   "video(metadata:)");
        if (item.commonKey.isEmpty()) continue;
        if (auto row = rowOf(item.commonKey)) {
            store.set(*row, item.stringValue());
        } else if (item.commonKey == "creationDate") {
            // The item holds an instant; rows show it in the user's time.
            if (auto date = item.dateValue()) store.setDate(date->toLocalTime(), QStringLiteral("Video Recording"));
        } else if (item.commonKey == "location") {
            const auto text = item.stringValue();
            const auto loc = text ? hrl::iso6709Location(*text) : std::nullopt;
            if (!loc) continue;
            store.set(TSKey::EXIF_LOCATION, hrl::coordinatesText(*loc, false));
            store.locations.dict[QStringLiteral("GPS")] = *loc;
            store.locationSource = DataSource::fromExif;
            store.location = *loc;
            // The place's name replaces the coordinates when the look-up answers; a store that
            // no item holds has nobody to show it to.
            if (auto self = store.weak_from_this(); !self.expired()) placelookup::start(*loc, self);
            Log::debug("🎥 LOCATION: " + hrl::decimalCoordinatesText(*loc, false, true), "video(metadata:)");
        } else {
            Log::debug("item commonKey: " + item.commonKey, "video(metadata:)");
        }
    }
}

std::shared_ptr<TSMetaVideo> load(TSDataStore& store, const std::optional<media::MovieInfo>& movie) {
    if (movie) {
        Log::debug(QStringLiteral("🎥 %1, %2 tracks").arg(movie->containerName).arg(movie->tracks.size()), "video load");
        const QList<media::Track> videoTracks = movie->tracksOfType("vide");
        if (!videoTracks.isEmpty() && videoTracks.first().naturalSize) {
            const QSizeF size = media::presentationSize(videoTracks.first());
            store.setSizes(qint64(size.width()), qint64(size.height()));
        }
    }
    tracks(store, movie);
    auto metaVideo = std::make_shared<TSMetaVideo>();
    if (movie) {
        Log::debug("🎥 metadataFormats: " + movie->availableMetadataFormats().join(", "), "videoMetaData(avAsset:)");
        metadataRows(store, movie->metadata);
        metaVideo->add(movie->metadata);
    }
    store.datas[TSKey::SEPARATOR] = QString();
    store.completed = true;
    return metaVideo;
}

}  // namespace videoload
