// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What is known of a photo's place, in up to six sections, each shown when it has a value:
// a link to the desktop's map, the address, the coordinates, the camera's direction, the
// altitude and the speed.
#include "GeoLocation.h"
#include "TSMetaData.h"

#include <QObject>
#include <QVariantList>
#include <optional>

class AddressListModel : public QObject {
    Q_OBJECT
    // [{title, rows: [text...]}], in order; the first section's one row opens the map.
    Q_PROPERTY(QVariantList sections READ sections NOTIFY sectionsChanged)
public:
    struct Section {
        QString title;  // empty: no header
        QStringList rows;
        bool operator==(const Section&) const = default;
    };

    explicit AddressListModel(QObject* parent = nullptr) : QObject(parent) {}

    static QList<Section> sectionsFor(const std::optional<GeoLocation>& location,
                                      const std::optional<Placemark>& placemark, const TSMetaData& metaData,
                                      bool human);

    // The current item's place; called when the list opens.
    Q_INVOKABLE void load();
    void show(const std::optional<GeoLocation>& location, const std::optional<Placemark>& placemark,
              const TSMetaData& metaData);
    QVariantList sections() const;
    Q_INVOKABLE void openInMaps() const;

signals:
    void sectionsChanged();

private:
    QList<Section> sections_;
    std::optional<GeoLocation> location_;
};
