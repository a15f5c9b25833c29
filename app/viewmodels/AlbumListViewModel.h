#pragma once
// (placeholder: filled in by the screen's own change)
#include <QAbstractListModel>

class AlbumListViewModel : public QAbstractListModel {
    Q_OBJECT
public:
    explicit AlbumListViewModel(QObject* parent = nullptr);
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
};
