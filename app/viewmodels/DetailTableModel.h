// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The rows of the detail table for the current item of the current album: date, location,
// badges, the exposure stack, camera, file, user fields and the place. All text comes from the
// item's TSDataStore; with no item there are no rows.
#include "TSAlbum.h"
#include "TSMetaDataObservable.h"

#include <QAbstractListModel>
#include <QVariantList>
#include <memory>

class DetailTableModel : public QAbstractListModel, public TSMetaDataObserver, public TSViewControllerObserver {
    Q_OBJECT
public:
    enum Role {
        KindRole = Qt::UserRole + 1,  // "date", "location", "badges", "stack", "sizes", "map", "separator", "details"
        KeyRole,                      // the row's TSKey raw value
        LabelRole,
        ValueRole,
        AlphaRole,
        CollapsedRole,  // an empty row hidden by "hideEmptyTags": it stays, at height 0
        InfoMarkRole,   // the sources of the date or location disagree
        StackRole,      // the five texts of the exposure stack
        FocalAccentRole,
        FileNameRole,
        FileTypeRole,
        SizesRole,
        BadgesRole,  // list of {symbol, text}
        CoordinateRole,
        MapPlaceRole,  // for the map: {latitude, longitude, title, heading}, empty without a place
    };

    struct Badge {
        QString symbol;
        QString text;
        bool operator==(const Badge&) const = default;
    };

    explicit DetailTableModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // The key of a row: rows 0 and 1 are the date and the location, then the item's row list;
    // past its end a separator.
    TSKey key(int row) const;
    // The badges shown for an item, in the order the strip shows them.
    static QList<Badge> badges(const TSDataStore& store, const TSAlbum& album);

    // "From <source>:\n<value>" for each date (row 0) or location (row 1) that was read.
    Q_INVOKABLE QStringList sources(int row) const;
    // Both focal lengths, for when the stack shows one that differs from the other.
    Q_INVOKABLE QString focalLengthText() const;
    // The whole details text, not the row's own, as sharing gives it.
    Q_INVOKABLE void copy() const;
    Q_INVOKABLE void reload();

    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;
    void rowsChanged() override;
    // Another album, or none after going back to the list: the table shows no stale item.
    void albumChanged() override { reload(); }

private:
    std::shared_ptr<TSAlbum> album_;
    std::shared_ptr<TSAsset> asset_;
    TSDataStore empty_;
    int rows_ = 0;

    const TSDataStore& store() const;
    QVariantMap mapPlace() const;
    bool isVideo() const;
};
