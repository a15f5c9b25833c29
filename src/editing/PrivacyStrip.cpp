// SPDX-License-Identifier: GPL-3.0-or-later
#include "PrivacyStrip.h"

#include "PropertyKeys.h"
#include "ExifModifier.h"
#include "ImageWriter.h"
#include "TSError.h"
#include "TagsPhotoModifier.h"

namespace PrivacyStrip {

namespace {

void remove(TagsPhotoModifier& tags, TagsPhotoModifier::PropertyDict& dict, std::initializer_list<QString> keys) {
    for (const QString& key : keys) {
        const QVariant v = dict.value(key);
        if (!v.isValid() || v.isNull()) continue;
        dict.insert(key, nullValue());
        tags.changed = true;
    }
}

}  // namespace

std::optional<Kind> parseKind(const QString& text) {
    if (text == QLatin1String("location")) return Kind::location;
    if (text == QLatin1String("dates")) return Kind::dates;
    if (text == QLatin1String("private")) return Kind::personal;
    if (text == QLatin1String("motion")) return Kind::motion;
    return std::nullopt;
}

void strip(TagsPhotoModifier& tags, Kind kind) {
    if (kind == Kind::motion) {
        if (tags.metaData && tags.metaData->value(kMotionPhotoDictionary).typeId() == QMetaType::QVariantMap) {
            tags.metaData->insert(kMotionPhotoDictionary, nullValue());
            tags.changed = true;
        }
        return;
    }
    if (kind == Kind::location || kind == Kind::personal) {
        bool any = false;
        for (const QVariant& v : std::as_const(tags.gpsData)) any = any || (v.isValid() && !v.isNull());
        if (any) tags.removeLocation();
    }
    if (kind == Kind::dates) {
        remove(tags, tags.exifData,
               {kCGImagePropertyExifDateTimeOriginal, kCGImagePropertyExifDateTimeDigitized,
                kCGImagePropertyExifOffsetTime, kCGImagePropertyExifOffsetTimeOriginal,
                kCGImagePropertyExifOffsetTimeDigitized, kCGImagePropertyExifSubsecTime,
                kCGImagePropertyExifSubsecTimeOriginal, kCGImagePropertyExifSubsecTimeDigitized});
        remove(tags, tags.tiffData, {kCGImagePropertyTIFFDateTime});
        remove(tags, tags.gpsData, {kCGImagePropertyGPSDateStamp, kCGImagePropertyGPSTimeStamp});
    }
    if (kind != Kind::personal) return;
    remove(tags, tags.exifData,
           {kCGImagePropertyExifCameraOwnerName, kCGImagePropertyExifBodySerialNumber,
            kCGImagePropertyExifLensSerialNumber, kCGImagePropertyExifImageUniqueID});
    if (!tags.metaData) return;
    // The XMP edit history names the documents and programs the photo passed through. Our reader
    // doesn't read it, so whether the file has one is unknown here: a private copy is always written.
    tags.metaData->insert(kXMPHistoryDictionary, nullValue());
    tags.changed = true;
    // Maker notes carry serial numbers and owner names in forms of their own; a group of nulls
    // takes the whole note. The XMP aux group goes whole for the same reason.
    for (auto it = tags.metaData->begin(); it != tags.metaData->end(); ++it) {
        if (!(it.key().startsWith(QLatin1String("{Maker")) || it.key() == kCGImagePropertyExifAuxDictionary) ||
            it.value().typeId() != QMetaType::QVariantMap)
            continue;
        QVariantMap cleared = it.value().toMap();
        for (auto f = cleared.begin(); f != cleared.end(); ++f) f.value() = nullValue();
        it.value() = cleared;
        tags.changed = true;
    }
}

std::optional<QByteArray> strippedCopy(const TSAsset& asset, Kind kind, QString* error) {
    const QByteArray& data = asset.imageData();
    if (!imageio::canWrite(imageio::detectFormat(data)) || !asset.metaData().metaDataDic()) {
        if (error) *error = QStringLiteral("can't write metadata into this file");
        return std::nullopt;
    }
    auto tags = std::make_shared<TagsPhotoModifier>(asset.metaData());
    strip(*tags, kind);
    if (!tags->changed) return data;
    tags->commit(false);
    // The copy is a new file: the asset is shared, not owned, so an alias that never deletes it.
    const std::shared_ptr<TSAsset> alias(std::shared_ptr<TSAsset>{}, const_cast<TSAsset*>(&asset));
    ExifModifier modifier({ModifyingPhotoAsset{alias, tags, data, 1}});
    try {
        return std::get<imageio::Rewritten>(modifier.rewrite().value(0).dataSource).joined();
    } catch (const TSError& e) {
        if (error) *error = e.message();
        return std::nullopt;
    }
}

}  // namespace PrivacyStrip
