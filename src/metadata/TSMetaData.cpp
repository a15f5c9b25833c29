// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaData.h"

#include "Log.h"
#include "PropertyKeys.h"

#include <cmath>

namespace {

using PropertyDict = TSMetaData::PropertyDict;

bool isDictionary(const QVariant& value) { return value.typeId() == QMetaType::QVariantMap; }

std::optional<PropertyDict> dictionaryUnder(const std::optional<PropertyDict>& dic, const char* key) {
    if (!dic) return std::nullopt;
    const QVariant value = dic->value(QLatin1String(key));
    if (!isDictionary(value)) return std::nullopt;
    return value.toMap();
}

// A number gives its integer part; a text gives the decimal integer it spells, with an
// optional sign and nothing else around it.
std::optional<qint64> integerValue(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return value.toLongLong();
    case QMetaType::Float:
    case QMetaType::Double: {
        const double d = std::trunc(value.toDouble());
        // Out of range (or not finite) has no integer value; casting it would be undefined.
        if (!(d >= -0x1p63 && d < 0x1p63)) return std::nullopt;
        return static_cast<qint64>(d);
    }
    case QMetaType::QString: {
        const QString text = value.toString();
        const qsizetype digitsFrom = text.startsWith('+') || text.startsWith('-') ? 1 : 0;
        if (text.size() == digitsFrom) return std::nullopt;
        for (qsizetype i = digitsFrom; i < text.size(); ++i)
            if (text[i] < '0' || text[i] > '9') return std::nullopt;
        bool ok = false;
        const qint64 n = text.toLongLong(&ok, 10);
        return ok ? std::optional(n) : std::nullopt;
    }
    default: return std::nullopt;
    }
}

}  // namespace

TSMetaData::TSMetaData(const std::optional<QByteArray>& bytes) { split(metadata(bytes)); }

TSMetaData TSMetaData::fromProperties(std::optional<PropertyDict> properties) {
    TSMetaData record;
    record.split(std::move(properties));
    return record;
}

std::optional<PropertyDict> TSMetaData::metadata(const std::optional<QByteArray>& bytes) {
    if (!bytes) return std::nullopt;
    QString error;
    std::optional<PropertyDict> properties = imageio::readProperties(*bytes, &error);
    if (!properties) {
        const QString message = QStringLiteral("Can't read metadata");
        Log::error(error.isEmpty() ? QVariant(message) : QVariant(QVariantList{message, error}), "metadata(from:)");
    }
    return properties;
}

void TSMetaData::split(std::optional<PropertyDict> properties) {
    metaDataDic_ = std::move(properties);
    exifDic_ = dictionaryUnder(metaDataDic_, kCGImagePropertyExifDictionary);
    tiffDic_ = dictionaryUnder(metaDataDic_, kCGImagePropertyTIFFDictionary);
    gpsDic_ = dictionaryUnder(metaDataDic_, kCGImagePropertyGPSDictionary);
    iptcDic_ = dictionaryUnder(metaDataDic_, kCGImagePropertyIPTCDictionary);
    if (!metaDataDic_) return;

    for (auto it = metaDataDic_->cbegin(); it != metaDataDic_->cend(); ++it) {
        if (!isDictionary(it.value())) {
            generalData_.insert(it.key(), it.value());
        } else if (it.key() != QLatin1String(kCGImagePropertyExifDictionary) &&
                   it.key() != QLatin1String(kCGImagePropertyTIFFDictionary)) {
            otherGeneralGroupedData_.insert(it.key(), it.value());
        }
    }
    // The scalars show twice on purpose: as generalData and as a group of the tag table.
    if (!generalData_.isEmpty()) otherGeneralGroupedData_.insert(QStringLiteral("General"), generalData_);
}

std::optional<PropertyDict> TSMetaData::otherGroupsWithoutGPS() const {
    if (otherGeneralGroupedData_.isEmpty()) return std::nullopt;
    PropertyDict groups = otherGeneralGroupedData_;
    groups.remove(QLatin1String(kCGImagePropertyGPSDictionary));
    return groups;
}

std::optional<qint64> TSMetaData::orientation() const {
    const auto lookup = [](const std::optional<PropertyDict>& dic, const char* key) -> std::optional<QVariant> {
        if (!dic) return std::nullopt;
        const auto it = dic->constFind(QLatin1String(key));
        if (it == dic->cend()) return std::nullopt;
        return *it;
    };
    // The first value present decides, even when it has no integer value. The last step looks
    // at the grouping itself, not into its groups, and so finds nothing in ordinary files.
    std::optional<QVariant> found = lookup(tiffDic_, kCGImagePropertyTIFFOrientation);
    if (!found) found = lookup(metaDataDic_, kCGImagePropertyOrientation);
    if (!found) found = lookup(otherGroupsWithoutGPS(), kCGImagePropertyIPTCImageOrientation);
    return found ? integerValue(*found) : std::nullopt;
}
