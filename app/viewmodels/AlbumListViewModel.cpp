#include "AlbumListViewModel.h"

AlbumListViewModel::AlbumListViewModel(QObject* parent) : QAbstractListModel(parent) {}

int AlbumListViewModel::rowCount(const QModelIndex&) const { return 0; }

QVariant AlbumListViewModel::data(const QModelIndex&, int) const { return {}; }
