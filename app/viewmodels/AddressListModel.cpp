// SPDX-License-Identifier: GPL-3.0-or-later
#include "AddressListModel.h"

#include "HRLocation.h"
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSAlbum.h"
#include "TSMetaDataGetters.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>

namespace {
QString orDashes(const std::optional<QString>& text) { return text && !text->isEmpty() ? *text : QStringLiteral("--"); }
}  // namespace

QList<AddressListModel::Section> AddressListModel::sectionsFor(const std::optional<GeoLocation>& location,
                                                               const std::optional<Placemark>& placemark,
                                                               const TSMetaData& metaData, bool human) {
    QList<Section> out;
    if (!location) return out;
    out.append({QString(), {QCoreApplication::translate("AddressListModel", "Show in Maps")}});
    if (placemark) out.append({QCoreApplication::translate("AddressListModel", "Address"), {orDashes(addressText(*placemark))}});
    out.append({QCoreApplication::translate("AddressListModel", "Coordinates"),
                {orDashes(hrl::coordinatesText(*location, false)), hrl::decimalCoordinatesText(*location, human, false)}});
    if (const auto degrees = facingGraAngle(metaData)) {
        const QString angle = human ? QString::asprintf("%.4f", std::abs(*degrees)) : hrl::shortest(*degrees);
        out.append({QCoreApplication::translate("AddressListModel", "Direction"), {angle + QStringLiteral("°"), orDashes(facingRef(metaData))}});
    }
    if (const auto altitude = gpsMeaning(metaData, kCGImagePropertyGPSAltitude))
        out.append({QCoreApplication::translate("AddressListModel", "Altitude"), {orDashes(altitude)}});
    if (const auto speed = gpsMeaning(metaData, kCGImagePropertyGPSSpeed))
        out.append({QCoreApplication::translate("AddressListModel", "Speed"), {orDashes(speed)}});
    return out;
}

void AddressListModel::load() {
    const auto album = TSEnvironment::currentAlbum();
    const auto asset = album ? album->currentAsset : nullptr;
    if (!asset) return show(std::nullopt, std::nullopt, TSMetaData());
    show(asset->ddStore().location, asset->ddStore().placemark, asset->metaData());
}

void AddressListModel::show(const std::optional<GeoLocation>& location, const std::optional<Placemark>& placemark,
                            const TSMetaData& metaData) {
    location_ = location;
    sections_ = sectionsFor(location, placemark, metaData, Settings::flag(SettingsFlag::human));
    emit sectionsChanged();
}

QVariantList AddressListModel::sections() const {
    QVariantList list;
    for (const Section& s : sections_) list.append(QVariantMap{{"title", s.title}, {"rows", s.rows}});
    return list;
}

void AddressListModel::openInMaps() const {
    if (!location_) return;
    QDesktopServices::openUrl(QUrl(geoUri(location_->coordinate)));
}
