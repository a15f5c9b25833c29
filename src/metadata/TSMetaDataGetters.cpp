// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaDataGetters.h"

#include "HRLocation.h"
#include "Log.h"
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"

namespace {

std::optional<QVariant> gpsValue(const TSMetaData& metaData, const char* key) {
    const QVariant value = metaData.gpsDic()->value(QLatin1String(key));
    if (!value.isValid() || value.isNull()) return std::nullopt;
    return value;
}

}  // namespace

std::optional<QVariant> facingData(const TSMetaData& metaData) {
    if (!metaData.gpsDic()) return std::nullopt;
    if (auto direction = gpsValue(metaData, kCGImagePropertyGPSImgDirection)) return direction;
    Log::debug("📐 Bearing");
    return gpsValue(metaData, kCGImagePropertyGPSDestBearing);
}

std::optional<double> facingGraAngle(const TSMetaData& metaData) {
    const auto data = facingData(metaData);
    if (!data) return std::nullopt;
    const auto text = TSMeanings::valueText(*data, Settings::flag(SettingsFlag::human));
    const auto degrees = text ? hrl::number(*text) : std::nullopt;
    if (!degrees) return std::nullopt;
    Log::debug(QVariantList{"📐 gra", *degrees});
    return degrees;
}

std::optional<QString> facingRef(const TSMetaData& metaData) {
    if (!metaData.gpsDic()) return std::nullopt;
    auto value = gpsValue(metaData, kCGImagePropertyGPSImgDirectionRef);
    if (!value) {
        Log::debug("📐 BearingRef");
        value = gpsValue(metaData, kCGImagePropertyGPSDestBearingRef);
    }
    if (!value) return std::nullopt;
    // Both references share one table, so the image direction's key stands for either.
    return TSMeanings::shared().meaning(kCGImagePropertyGPSImgDirectionRef, *value,
                                        Settings::flag(SettingsFlag::human));
}

std::optional<QString> gpsMeaning(const TSMetaData& metaData, const QString& key) {
    if (!metaData.gpsDic()) return std::nullopt;
    const QVariant value = metaData.gpsDic()->value(key);
    if (!value.isValid() || value.isNull()) return std::nullopt;
    return TSMeanings::shared().meaning(key, value, Settings::flag(SettingsFlag::human));
}
