// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The detail's strip of images: one row per item of the current album, with its picture and
// marks. A list model rather than a bare count, so that a change of the album's order (an edit
// that moves the item by its new date) redraws the strip even when the count stays the same.
#include "TSAlbum.h"

#include <QAbstractListModel>
#include <memory>

class ImageStripModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { SourceRole = Qt::UserRole + 1, VideoRole, LiveRole };
    Q_ENUM(Role)

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Follows the current album: starts over when another album (or another count) is on view,
    // or always with `force`, after the album's items changed in place or moved.
    void follow(bool force);

    // An item's picture in the strip, and its marks.
    static QString imageSource(int index);
    static bool isVideo(int index);
    static bool isLive(int index);

private:
    std::weak_ptr<TSAlbum> album_;
    int count_ = 0;
};
