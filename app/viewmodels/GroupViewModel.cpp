#include "GroupViewModel.h"

GroupViewModel::GroupViewModel(QObject* parent) : QAbstractListModel(parent) {}

int GroupViewModel::rowCount(const QModelIndex&) const { return 0; }

QVariant GroupViewModel::data(const QModelIndex&, int) const { return {}; }
