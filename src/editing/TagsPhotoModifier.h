// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Applies wishes to working copies of one photo's property dictionaries and ends with the one
// merged dictionary that the writer lays over the file. A tag is removed by a null value, never
// by dropping its key: a missing key keeps what the file has.
#include "GeoLocation.h"
#include "TSKey.h"
#include "TSMetaData.h"

#include <QDateTime>
#include <optional>

class UserSettings;

// The value that deletes a tag.
inline QVariant nullValue() { return QVariant::fromValue(nullptr); }

class TagsPhotoModifier {
public:
    using PropertyDict = imageio::PropertyDict;

    bool changed = false;
    int initialOrientation = -1;
    std::optional<int> userOrientation;
    std::optional<QDateTime> userDate;
    std::optional<GeoLocation> userLocation;
    std::optional<PropertyDict> destMutable;
    std::optional<PropertyDict> metaData;
    std::optional<PropertyDict> fallbackData;
    PropertyDict exifData, tiffData, iptcData, gpsData;
    PropertyDict other_NoGpsData;

    explicit TagsPhotoModifier(const TSMetaData& record);

    void removeAllTags();
    void setLocation(const GeoLocation& location);
    // Every GPS tag the photo has becomes null.
    void removeLocation();
    void apply(TSKey key, const UserSettings& settings, const TSMetaData& record);
    // The same with the "human" setting read once by the caller for its whole walk.
    void apply(TSKey key, const UserSettings& settings, const TSMetaData& record, bool human);
    void applyCreatorContact(const UserSettings& settings, const TSMetaData& record);
    void setOrientationTag(const QString& text);
    // Writes one text value; true when that changed the dictionary.
    bool setText(const QString& tag, SubDictionary dictionary, const std::optional<QString>& value);
    void commit(bool removeGPS);
    PropertyDict strippedFallback() const;

    // "{Group}.Tag" of every tag the committed dictionary changes against the file, for reports.
    QStringList changedTags() const;

    static bool isMultiValued(const QString& tag);

private:
    PropertyDict* dictionary(SubDictionary kind);
};
