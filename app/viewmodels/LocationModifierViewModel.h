// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The location screen: where the user picks a new place for the photos, in six sections: search
// results, the present position, a place from another photo, a place from the map, the photo's
// own place, the recent places. Leaving it delivers the checked row's place.
#include "HRLocation.h"
#include "PlaceIndex.h"
#include "TSLocationManager.h"

#include <QObject>
#include <QVariantList>
#include <functional>
#include <optional>

class LocationModifierViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    // [{header, rows: [{title, subtitle, image, disclosure, checked, style}]}], six of them.
    Q_PROPERTY(QVariantList sections READ sections NOTIFY changed)
    // The pictures of the album on view, for "From a photo": [{path, title}].
    Q_PROPERTY(QVariantList albumPhotos READ albumPhotos NOTIFY photoPickerRequested)
public:
    struct IndexPath {
        int section = 0, row = 0;
        bool operator==(const IndexPath&) const = default;
    };
    static constexpr IndexPath defaultIndexPath{4, 0};
    enum Section { searched = 0, actual = 1, fromPhoto = 2, fromMap = 3, current = 4, recent = 5 };

    explicit LocationModifierViewModel(TSLocationManager::SourceFactory positionSource = {}, QObject* parent = nullptr);

    QString title() const { return QStringLiteral("Location"); }
    QString placeholder() const { return tr("Search or insert an address"); }

    // The place of the photo being edited (nothing when it has none).
    void setPhotoLocation(const std::optional<HRLocation>& location);
    // Told the chosen place when the screen is left.
    std::function<void(const HRLocation&)> locationDelegate;

    QVariantList sections() const;
    IndexPath checkedIndexPath() const { return checked_; }
    const QList<HRLocation>& searchedLocations() const { return searched_; }
    // The text last handed to the place search; typed coordinates never reach it.
    const QString& queryFragment() const { return queryFragment_; }
    std::optional<HRLocation> locationAt(IndexPath path) const;
    TSLocationManager& locationManager() { return manager_; }

    // The search button: typed coordinates are named by the geocoder, anything else is a place
    // search by name.
    Q_INVOKABLE void search(const QString& text);
    Q_INVOKABLE void tap(int section, int row);
    // The place from a picture file (section 2) and from the map picker (section 3).
    Q_INVOKABLE void choosePhoto(const QString& path);
    QVariantList albumPhotos() const;
    // The position alert's "Settings": the program's settings screen.
    Q_INVOKABLE void openSettings() { emit settingsRequested(); }
    void didChooseMapLocation(const HRLocation& location);
    Q_INVOKABLE void appear();
    // Leaving: the checked row's place goes to the delegate.
    Q_INVOKABLE void leave();

    // Places whose name matches, best first, as search results: the place, its area and country.
    static QList<HRLocation> placesNamed(const QString& text);
    static QList<HRLocation> fromMatches(const QList<PlaceMatch>& matches);
    // A coordinate named by a placemark: the place as title, the address on one line below.
    static HRLocation named(const GeoLocation& location, const Placemark& placemark);

signals:
    void changed();
    void photoPickerRequested();
    void mapPickerRequested();
    void settingsRequested();
    void alert(const QString& title, const QString& message);

private:
    void setChecked(IndexPath path);

    QList<HRLocation> searched_;
    std::optional<HRLocation> imgHRLocation_, mapHRLocation_, photoLocation_;
    IndexPath checked_ = defaultIndexPath;
    QString queryFragment_;
    TSLocationManager manager_;
    quint64 searches_ = 0;  // an answer to an older search is dropped
};
