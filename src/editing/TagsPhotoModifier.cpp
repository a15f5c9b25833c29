// SPDX-License-Identifier: GPL-3.0-or-later
#include "TagsPhotoModifier.h"

#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"
#include "UserSettings.h"

#include <QSet>
#include <cmath>
#include <functional>

namespace {

// Tags with a second home that must always follow the first.
std::optional<TagCoord> coupledCoord(TSKey key) {
    switch (key) {
    case TSKey::EXIF_DATE: return TagCoord{kCGImagePropertyTIFFDateTime, SubDictionary::tiff};
    case TSKey::AUTHOR: return TagCoord{kCGImagePropertyIPTCByline, SubDictionary::iptc};
    case TSKey::COPYRIGHT: return TagCoord{kCGImagePropertyIPTCCopyrightNotice, SubDictionary::iptc};
    case TSKey::DESCRIPTION: return TagCoord{kCGImagePropertyIPTCCaptionAbstract, SubDictionary::iptc};
    default: return std::nullopt;
    }
}

QStringList textList(const QVariant& value) {
    QStringList out;
    for (const QVariant& v : value.toList())
        if (v.typeId() == QMetaType::QString) out << v.toString();
    return out;
}

void nullAll(QVariantMap& dict) {
    for (auto it = dict.begin(); it != dict.end(); ++it) it.value() = nullValue();
}

}  // namespace

TagsPhotoModifier::TagsPhotoModifier(const TSMetaData& record)
    : initialOrientation(record.orientation() ? int(*record.orientation()) : -1),
      metaData(record.metaDataDic()),
      fallbackData(record.metaDataDic()),
      exifData(record.exifDic().value_or(PropertyDict{})),
      tiffData(record.tiffDic().value_or(PropertyDict{})),
      iptcData(record.iptcDic().value_or(PropertyDict{})),
      gpsData(record.gpsDic().value_or(PropertyDict{})),
      other_NoGpsData(record.otherGroupsWithoutGPS().value_or(PropertyDict{})) {}

bool TagsPhotoModifier::isMultiValued(const QString& tag) {
    return tag == kCGImagePropertyIPTCKeywords || tag == kCGImagePropertyIPTCBylineTitle ||
           tag == kCGImagePropertyIPTCWriterEditor;
}

TagsPhotoModifier::PropertyDict* TagsPhotoModifier::dictionary(SubDictionary kind) {
    switch (kind) {
    case SubDictionary::exif: return &exifData;
    case SubDictionary::tiff: return &tiffData;
    case SubDictionary::iptc: return &iptcData;
    default: return nullptr;
    }
}

bool TagsPhotoModifier::setText(const QString& tag, SubDictionary kind, const std::optional<QString>& value) {
    PropertyDict* dict = dictionary(kind);
    if (!dict) return false;
    const bool real = value && !value->isEmpty() && *value != kRemovalMark;
    if (!real) {
        if (!dict->contains(tag)) return false;
        dict->insert(tag, nullValue());
        return true;
    }
    if (isMultiValued(tag)) {
        QStringList wished;
        for (const QString& piece : value->split(',')) wished << piece.trimmed();
        const QStringList present = textList(dict->value(tag));
        if (dict->contains(tag) && QSet<QString>(wished.begin(), wished.end()) == QSet<QString>(present.begin(), present.end()))
            return false;
        dict->insert(tag, QVariant(wished).toList());
        return true;
    }
    // A one-element list (IPTC by-line, as read) holding the same text is no change either.
    QVariant present = dict->value(tag);
    if (present.typeId() == QMetaType::QVariantList && present.toList().size() == 1) present = present.toList().first();
    if (present.typeId() == QMetaType::QString && present.toString() == *value) return false;
    dict->insert(tag, *value);
    return true;
}

void TagsPhotoModifier::apply(TSKey key, const UserSettings& settings, const TSMetaData& record) {
    apply(key, settings, record, Settings::flag(SettingsFlag::human));
}

void TagsPhotoModifier::apply(TSKey key, const UserSettings& settings, const TSMetaData& record, bool human) {
    const auto c = coord(key);
    // The creator contact dictionary is written field by field by applyCreatorContact.
    if (!c || key == TSKey::IPTC_CREATOR_CONTACT_INFO) return;
    std::optional<QString> value;
    const bool wished = settings.properties.properties.contains(c->key);
    if (wished) {
        const QString wish = settings.properties.properties.value(c->key);
        value = TSMeanings::valueText(wish, human).value_or(wish);
    } else {
        value = string(record, key, human);
    }
    // A key rewritten with its own value goes into a save that happens anyway, but is no reason
    // to save: its coupled tag (TIFF DateTime following DateTimeOriginal) or a blank comment
    // dropped are not what the user asked for.
    const bool primary = setText(c->key, c->dict, value);
    const auto coupled = coupledCoord(key);
    const bool second = coupled && setText(coupled->key, coupled->dict, value);
    if (wished && (primary || second)) changed = true;
}

void TagsPhotoModifier::applyCreatorContact(const UserSettings& settings, const TSMetaData& record) {
    QVariantMap wished = settings.creatorContactInfo.dictionary();
    const QVariant own = record.iptcDic() ? record.iptcDic()->value(kCGImagePropertyIPTCCreatorContactInfo) : QVariant();
    if (own.typeId() != QMetaType::QVariantMap) {
        // The removal mark on a field the file lacks has nothing to remove; it must not reach the
        // file as text.
        for (auto it = wished.begin(); it != wished.end(); ++it)
            if (it.value().toString() == kRemovalMark) it.value() = nullValue();
        iptcData.insert(kCGImagePropertyIPTCCreatorContactInfo, wished);
        return;
    }
    QVariantMap merged = own.toMap();
    for (auto it = wished.begin(); it != wished.end(); ++it) {
        if (it.value().isNull()) continue;
        merged.insert(it.key(), it.value().toString() == kRemovalMark ? nullValue() : it.value());
    }
    iptcData.insert(kCGImagePropertyIPTCCreatorContactInfo, merged);
}

void TagsPhotoModifier::removeLocation() {
    nullAll(gpsData);
    userLocation.reset();
    changed = true;
}

void TagsPhotoModifier::setLocation(const GeoLocation& location) {
    nullAll(gpsData);
    userLocation.reset();
    changed = true;
    const double lat = location.coordinate.latitude, lon = location.coordinate.longitude;
    gpsData.insert(kCGImagePropertyGPSLatitude, std::fabs(lat));
    // Strictly greater on purpose: zero is written as south and west.
    gpsData.insert(kCGImagePropertyGPSLatitudeRef, lat > 0 ? QStringLiteral("N") : QStringLiteral("S"));
    gpsData.insert(kCGImagePropertyGPSLongitude, std::fabs(lon));
    gpsData.insert(kCGImagePropertyGPSLongitudeRef, lon > 0 ? QStringLiteral("E") : QStringLiteral("W"));
    userLocation = location;
}

void TagsPhotoModifier::setOrientationTag(const QString& text) {
    if (!metaData || metaData->isEmpty()) return;
    tiffData.insert(kCGImagePropertyTIFFOrientation, text);
    tiffData.remove(kCGImagePropertyIPTCImageOrientation);
    metaData->insert(kCGImagePropertyTIFFDictionary, tiffData);
    metaData->insert(kCGImagePropertyOrientation, text);
}

void TagsPhotoModifier::removeAllTags() {
    nullAll(tiffData);
    nullAll(iptcData);
    if (!metaData || metaData->isEmpty()) {
        changed = true;
        return;
    }
    PropertyDict result;
    for (auto it = metaData->begin(); it != metaData->end(); ++it) {
        if (it.key() == kMotionPhotoDictionary) {  // a motion photo's movie is no tag
            result.insert(it.key(), it.value());
        } else if (it.value().typeId() == QMetaType::QVariantMap) {
            QVariantMap cleared = it.value().toMap();
            nullAll(cleared);
            result.insert(it.key(), cleared);
        } else {
            result.insert(it.key(), nullValue());
        }
    }
    metaData = result;
    changed = true;
}

void TagsPhotoModifier::commit(bool removeGPS) {
    for (TSKey key : {TSKey::IPTC_DATE_CREATED, TSKey::IPTC_TIME_CREATED, TSKey::IPTC_DIGITAL_CREATION_DATE,
                      TSKey::IPTC_DIGITAL_CREATION_TIME}) {
        const QString tag = coord(key)->key;
        if (!iptcData.contains(tag)) continue;
        iptcData.insert(tag, nullValue());
        changed = true;
    }
    if (!metaData || metaData->isEmpty()) return;
    metaData->insert(kCGImagePropertyExifDictionary, exifData);
    metaData->insert(kCGImagePropertyTIFFDictionary, tiffData);
    metaData->insert(kCGImagePropertyIPTCDictionary, iptcData);
    metaData->insert(kCGImagePropertyGPSDictionary, removeGPS ? nullValue() : QVariant(gpsData));
}

TagsPhotoModifier::PropertyDict TagsPhotoModifier::strippedFallback() const {
    PropertyDict out;
    if (!fallbackData) return out;
    // The orientation and a motion photo's movie are no tags: they stay.
    for (auto it = fallbackData->begin(); it != fallbackData->end(); ++it) {
        const bool kept = it.key() == kCGImagePropertyOrientation || it.key() == kMotionPhotoDictionary;
        out.insert(it.key(), kept ? it.value() : nullValue());
    }
    return out;
}

QStringList TagsPhotoModifier::changedTags() const {
    QStringList out;
    if (!metaData) return out;
    // Nested dictionaries are walked; a null on a tag the file lacks changes nothing.
    std::function<void(const QString&, const QVariant&, const QVariant&)> describe =
        [&](const QString& name, const QVariant& now, const QVariant& was) {
            // Most of a photo's tags are as they were: equal values are passed over before any
            // text is made of them.
            if (now.typeId() == was.typeId() && now == was) return;
            if (now.typeId() == QMetaType::QVariantMap) {
                const QVariantMap n = now.toMap(), o = was.toMap();
                for (auto f = n.begin(); f != n.end(); ++f)
                    describe(name.isEmpty() ? f.key() : name + "." + f.key(), f.value(), o.value(f.key()));
            } else if (now.isNull()) {
                if (was.isValid() && !was.isNull()) out << name + " removed";
            } else if (now.toString().isEmpty() ? now != was : now.toString() != was.toString()) {
                out << name;
            }
        };
    const PropertyDict before = fallbackData.value_or(PropertyDict{});
    for (auto it = metaData->begin(); it != metaData->end(); ++it) {
        const bool group = before.value(it.key()).typeId() == QMetaType::QVariantMap ||
                           it.value().typeId() == QMetaType::QVariantMap;
        if (group || it.key() == kCGImagePropertyOrientation) describe(it.key(), it.value(), before.value(it.key()));
    }
    return out;
}
