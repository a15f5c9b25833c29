// SPDX-License-Identifier: GPL-3.0-or-later
#include "LocationModifierViewModel.h"

#include "Log.h"
#include "PlaceIndex.h"
#include "Recent.h"
#include "TSDataStore.h"
#include "TSFilesAlbum.h"
#include "TSGeocoder.h"
#include "TSPhotoAlbum.h"
#include "ThumbnailCache.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>

LocationModifierViewModel::LocationModifierViewModel(TSLocationManager::SourceFactory positionSource, QObject* parent)
    : QObject(parent), manager_(std::move(positionSource)) {
    connect(&manager_, &TSLocationManager::changed, this, &LocationModifierViewModel::changed);
    connect(&manager_, &TSLocationManager::denied, this, &LocationModifierViewModel::alert);
}

void LocationModifierViewModel::setPhotoLocation(const std::optional<HRLocation>& location) {
    photoLocation_ = location;
    emit changed();
}

void LocationModifierViewModel::appear() { manager_.start(); }

HRLocation LocationModifierViewModel::named(const GeoLocation& location, const Placemark& placemark) {
    HRLocation hr;
    hr.title = placeText(placemark);
    hr.subtitle = addressText(placemark).replace('\n', QLatin1String(", "));
    hr.location = location;
    return hr;
}

QList<HRLocation> LocationModifierViewModel::placesNamed(const QString& text) {
    const auto index = PlaceIndex::shared();
    return index ? fromMatches(index->search(text)) : QList<HRLocation>();
}

QList<HRLocation> LocationModifierViewModel::fromMatches(const QList<PlaceMatch>& matches) {
    QList<HRLocation> out;
    for (const PlaceMatch& m : matches) {
        // A street address (from the online service) reads like a named coordinate.
        if (m.placemark.thoroughfare) {
            out.append(named(GeoLocation(m.coordinate.latitude, m.coordinate.longitude), m.placemark));
            continue;
        }
        HRLocation hr;
        hr.title = m.placemark.locality;
        QStringList below;
        for (const auto& part : {m.placemark.administrativeArea, m.placemark.country})
            if (part && !part->isEmpty()) below << *part;
        hr.subtitle = below.join(QLatin1String(", "));
        hr.location = GeoLocation(m.coordinate.latitude, m.coordinate.longitude);
        out.append(hr);
    }
    return out;
}

void LocationModifierViewModel::search(const QString& text) {
    searched_.clear();
    const quint64 mine = ++searches_;
    std::optional<GeoLocation> coordinate = hrl::degreesLocation(text);
    if (!coordinate) coordinate = hrl::decimalLocation(text);
    if (coordinate) {
        QPointer<LocationModifierViewModel> self(this);
        const GeoLocation at = *coordinate;
        TSGeocoder::reverseGeocode(at, [self, mine, at](const GeocodeResult& r) {
            if (!self || mine != self->searches_) return;
            if (r.error || r.placemarks.isEmpty()) {
                if (self->checked_ == IndexPath{searched, 0}) self->checked_ = defaultIndexPath;
                emit self->changed();
                return;
            }
            for (const Placemark& p : r.placemarks) self->searched_.append(named(at, p));
            self->setChecked({searched, 0});
        });
    } else {
        queryFragment_ = text;
        // The offline place search answers at once; like a completer, it leaves the check alone.
        searched_ = placesNamed(text);
        // The online service, when one is set, answers later with streets and the towns above.
        if (TSGeocoder::isOnline()) {
            QPointer<LocationModifierViewModel> self(this);
            TSGeocoder::search(text, 10, [self, mine](const QList<PlaceMatch>& found) {
                if (!self || mine != self->searches_) return;
                self->searched_ = fromMatches(found);
                if (self->checked_.section == searched && self->checked_.row >= self->searched_.size()) self->checked_ = defaultIndexPath;
                emit self->changed();
            });
        }
    }
    if (checked_.section == searched && checked_.row >= searched_.size()) checked_ = defaultIndexPath;
    emit changed();
}

void LocationModifierViewModel::tap(int section, int row) {
    if (section == fromPhoto && row == 0) return emit photoPickerRequested();
    if (section == fromMap && row == 0) return emit mapPickerRequested();
    setChecked({section, row});
}

void LocationModifierViewModel::setChecked(IndexPath path) {
    checked_ = path;
    emit changed();
}

void LocationModifierViewModel::didChooseMapLocation(const HRLocation& location) {
    mapHRLocation_ = location;
    setChecked(location.location ? IndexPath{fromMap, 1} : defaultIndexPath);
}

void LocationModifierViewModel::choosePhoto(const QString& path) {
    const QString file = path.startsWith("file:") ? QUrl(path).toLocalFile() : path;
    QFile f(file);
    HRLocation hr;
    if (f.open(QIODevice::ReadOnly)) {
        TSDataStore store;
        store.fill(TSMetaData(f.read(64ll << 20)));
        hr.location = store.location;
    }
    hr.title = QFileInfo(file).fileName();
    hr.subtitle = hr.location ? hrl::coordinatesText(*hr.location, true) : QCoreApplication::translate("LocationModifierViewModel", "No location data in image");
    hr.thumbnail = library::thumbnails::picture(file, 88);
    imgHRLocation_ = hr;
    setChecked(hr.location ? IndexPath{fromPhoto, 1} : defaultIndexPath);
}

QVariantList LocationModifierViewModel::albumPhotos() const {
    QVariantList out;
    const auto album = TSEnvironment::currentAlbum();
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(album.get());
    const auto* files = dynamic_cast<const TSFilesAlbum*>(album.get());
    for (int i = 0; i < album->count(); ++i) {
        if (album->isVideo(i)) continue;
        QString path;
        if (photos && photos->fetchedAssets) path = photos->fetchedAssets->objectAt(i).mainPath();
        else if (files) path = files->imageUrl(i).value_or(QString());
        if (!path.isEmpty()) out.append(QVariantMap{{"path", path}, {"title", QFileInfo(path).fileName()}});
    }
    return out;
}

std::optional<HRLocation> LocationModifierViewModel::locationAt(IndexPath p) const {
    const auto& recents = recents::locations().arrayList;
    switch (p.section) {
    case searched: return p.row >= 0 && p.row < searched_.size() ? std::optional(searched_[p.row]) : std::nullopt;
    case actual: return p.row == 0 && manager_.locationAvailable() ? manager_.actualHRLocation() : std::nullopt;
    case fromPhoto: return p.row == 1 ? imgHRLocation_ : std::nullopt;
    case fromMap: return p.row == 1 ? mapHRLocation_ : std::nullopt;
    case current: return p.row == 0 ? photoLocation_ : std::nullopt;
    case recent: return p.row >= 0 && p.row < recents.size() ? std::optional(recents[p.row]) : std::nullopt;
    default: return std::nullopt;
    }
}

void LocationModifierViewModel::leave() {
    manager_.stop();
    const auto chosen = locationAt(checked_);
    Log::debug(QVariantList{"📍 chosen", checked_.section, checked_.row});
    if (chosen && locationDelegate) locationDelegate(*chosen);
}

QVariantList LocationModifierViewModel::sections() const {
    auto row = [&](IndexPath p, const std::optional<QString>& title, const std::optional<QString>& subtitle,
                   const QString& image = {}, bool disclosure = false, const QString& style = "default") {
        return QVariantMap{{"title", title.value_or(QString())}, {"subtitle", subtitle.value_or(QString())},
                           {"image", image}, {"disclosure", disclosure}, {"checked", checked_ == p}, {"style", style}};
    };
    auto withRows = [](const QString& header, const QVariantList& rows) {
        return QVariantMap{{"header", header}, {"rows", rows}};
    };
    QVariantList out;
    QVariantList results;
    for (int i = 0; i < searched_.size(); ++i)
        results << row({searched, i}, searched_[i].title, searched_[i].subtitle, {}, false, "subtitle");
    out << withRows({}, results);

    const auto& here = manager_.actualHRLocation();
    out << withRows({}, {manager_.locationAvailable()
                             ? row({actual, 0}, QCoreApplication::translate("LocationModifierViewModel", "Actual position"), here ? here->subtitle : std::nullopt, "location")
                             : row({actual, 0}, QCoreApplication::translate("LocationModifierViewModel", "Location not available"), std::nullopt)});

    QVariantList photo{row({fromPhoto, 0}, QCoreApplication::translate("LocationModifierViewModel", "From a photo"), std::nullopt, {}, true)};
    if (imgHRLocation_) photo << row({fromPhoto, 1}, imgHRLocation_->title, imgHRLocation_->subtitle, "thumbnail");
    out << withRows({}, photo);

    QVariantList map{row({fromMap, 0}, QCoreApplication::translate("LocationModifierViewModel", "From map"), std::nullopt, "mappin.and.ellipse", true)};
    if (mapHRLocation_) map << row({fromMap, 1}, mapHRLocation_->title, mapHRLocation_->subtitle);
    out << withRows({}, map);

    out << withRows(QCoreApplication::translate("LocationModifierViewModel", "From current photo"),
                    {row({current, 0}, photoLocation_ ? photoLocation_->title : std::nullopt,
                         photoLocation_ ? photoLocation_->subtitle : std::nullopt)});

    const auto& recents = recents::locations().arrayList;
    QVariantList recentRows;
    for (int i = 0; i < recents.size(); ++i)
        recentRows << row({recent, i}, recents[i].title, recents[i].subtitle, {}, false, "subtitle");
    out << withRows(recents.isEmpty() ? QString() : QCoreApplication::translate("LocationModifierViewModel", "Most recent"), recentRows);
    return out;
}
