// SPDX-License-Identifier: GPL-3.0-or-later
#include "MapPickerViewModel.h"

#include "LocationModifierViewModel.h"
#include "TSGeocoder.h"

#include <QPointer>

QVariantMap MapPickerViewModel::pin() const {
    if (!curAnnotation_ || !curAnnotation_->location) return {};
    return {{"latitude", curAnnotation_->location->coordinate.latitude},
            {"longitude", curAnnotation_->location->coordinate.longitude},
            {"title", curAnnotation_->title.value_or(curAnnotation_->subtitle.value_or(QString()))}};
}

QVariantList MapPickerViewModel::choices() const {
    QVariantList list;
    for (const HRLocation& l : searchedLocations_)
        list.append(QVariantMap{{"title", l.title.value_or(QString())}, {"subtitle", l.subtitle.value_or(QString())}});
    return list;
}

void MapPickerViewModel::setPin(const HRLocation& location) {
    curAnnotation_ = location;
    emit pinChanged();
}

void MapPickerViewModel::longPress(double latitude, double longitude) {
    HRLocation l;
    l.title = QString::fromLatin1(selectedTitle);
    l.location = GeoLocation(latitude, longitude);
    setPin(l);
}

void MapPickerViewModel::search(const QString& text) {
    std::optional<GeoLocation> coordinate = hrl::degreesLocation(text);
    if (!coordinate) coordinate = hrl::decimalLocation(text);
    if (coordinate) {
        HRLocation l;
        l.subtitle = hrl::coordinatesText(*coordinate, true);
        l.location = coordinate;
        return setPin(l);
    }
    const quint64 mine = ++searches_;
    if (TSGeocoder::isOnline()) {
        QPointer<MapPickerViewModel> self(this);
        TSGeocoder::search(text, 10, [self, mine](const QList<PlaceMatch>& found) {
            if (self && mine == self->searches_) self->showFound(LocationModifierViewModel::fromMatches(found));
        });
        return;
    }
    showFound(LocationModifierViewModel::placesNamed(text));
}

void MapPickerViewModel::showFound(const QList<HRLocation>& found) {
    if (found.isEmpty()) return emit alert(nothingTitle, nothingMessage);
    if (found.size() == 1) return setPin(found.first());
    searchedLocations_ = found;
    emit choicesChanged();
}

void MapPickerViewModel::choose(int index) {
    if (index >= 0 && index < searchedLocations_.size()) setPin(searchedLocations_[index]);
    cancelChoices();
}

void MapPickerViewModel::cancelChoices() {
    searchedLocations_.clear();
    emit choicesChanged();
}

void MapPickerViewModel::finish() {
    if (!curAnnotation_ || !curAnnotation_->location) {
        emit done();
        return;
    }
    // The place's name and address, when the geocoder knows them; the pin as it is otherwise.
    QPointer<MapPickerViewModel> self(this);
    const GeoLocation at = *curAnnotation_->location;
    TSGeocoder::reverseGeocode(at, [self, at](const GeocodeResult& r) {
        if (!self) return;
        HRLocation chosen = *self->curAnnotation_;
        if (!r.placemarks.isEmpty()) chosen = LocationModifierViewModel::named(at, r.placemarks.first());
        if (self->locationDelegate) self->locationDelegate(chosen);
        emit self->done();
    });
}
