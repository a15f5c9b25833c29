// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Changing a video's tags. A video can only be changed by writing a new file: TagsVideoModifier
// edits the list of the movie's metadata items, ExifVideoModifier applies the wishes and writes
// the movie anew (a lossless rewrite of its metadata, see MovieWriter). The date and the
// location can be changed, the dates shifted or given a zone, private data or all tags dropped.
#include "GeoLocation.h"
#include "MetadataItem.h"
#include "PrivacyStrip.h"
#include "TSAsset.h"
#include "TimeZones.h"
#include "UserSettings.h"

#include <QDateTime>
#include <QDir>
#include <QList>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <variant>

class TagsVideoModifier {
public:
    explicit TagsVideoModifier(QList<media::MetadataItem> items) : items(std::move(items)) {}

    std::optional<QDateTime> userDate;
    std::optional<GeoLocation> userLocation;
    QList<media::MetadataItem> items;
    // All tags dropped: the movie's other metadata (XMP, makers' atoms) go as well.
    bool noTags = false;

    // Drops every date item (QuickTime metadata, user data, common).
    void removeDate();
    // One QuickTime metadata creation date in place of all date items: ISO 8601 in UTC.
    void setDate(const QDateTime& date);
    void removeLocation();
    // One QuickTime metadata ISO 6709 location in place of all location items.
    void setLocation(const GeoLocation& location);
    // Moves every date item by `seconds` on its own clock, keeping its zone and its form.
    void shiftDates(qint64 seconds);
    // Gives every date item the wished zone, keeping its local time or its instant. Nothing on
    // success; otherwise why the movie was left alone.
    std::optional<QString> setZone(const TimeZones::ZoneWish& wish);
    // Takes out the place, the dates, or the private data: the place, items naming a serial
    // number or an owner, and the movie's other metadata (XMP and its history, makers' atoms).
    void strip(PrivacyStrip::Kind kind);
    // The movie's other metadata go while its items stay.
    bool dropOtherMetadata = false;
};

// "+45.5000-122.2500+10/": latitude, longitude and altitude, as QuickTime writes a place.
QString iso6709Text(const GeoLocation& location);
// "2024-01-02T03:04:05Z": the instant in UTC, as a default ISO 8601 formatter writes it.
QString iso8601Text(const QDateTime& date);

// What the user wants of a video: the same switches and values as the edit screen's.
struct VideoWishes {
    bool noTags = false;      // drop all tags
    bool removeDate = false;  // the date switch
    bool removeLocation = false;
    std::optional<QDateTime> date;  // a changed date, in local time
    std::optional<GeoLocation> location;
    // Each movie from its own values, after the wishes above.
    std::optional<qint64> shiftSeconds;
    std::optional<TimeZones::ZoneWish> zone;
    std::optional<PrivacyStrip::Kind> strip;
};

// One video being edited: the item and its modifier.
struct ModifyingVideoAsset {
    std::shared_ptr<const TSAsset> asset;
    TagsVideoModifier modifier;
};

class ExifVideoModifier {
public:
    // Nothing when one of the items is no movie that could be read.
    static std::optional<ExifVideoModifier> make(const QList<std::shared_ptr<const TSAsset>>& assets);

    QList<ModifyingVideoAsset> modifing;

    // Returns what could not be done, one line each; the rest is done.
    QStringList modify(const VideoWishes& wishes);
    // The edit screen's wishes: its no-tags, date and location switches, its date and place.
    // The date switch also drops the date wishes from `settings`.
    void modify(UserSettings& settings);
    // True when a video's items differ from its own after modify.
    bool changed() const;

    // Mode 2 (files) writes the first video into `directory` as "video_yyMMdd_HHmmss.mp4" and
    // answers its path; mode 1 (in place) answers "Video editing not available"; mode 0 (a new
    // library item) has no library to go to yet. A message on any failure.
    std::variant<QStringList, QString> save(int mode, const QDir& directory) const;

    // The items that a save writes: the video's own, the software item naming this application.
    static QList<media::MetadataItem> exportItems(const QList<media::MetadataItem>& items);
    // "video_" + yyMMdd_HHmmss + ".mp4", made unique in `directory` with "_2", "_3", ... when a
    // file of that name is there already.
    static QString outputPath(const QDir& directory, const QDateTime& now);
};
