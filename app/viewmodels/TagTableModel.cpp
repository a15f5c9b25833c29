#include "TagTableModel.h"

TagTableModel::TagTableModel(QObject* parent) : QAbstractListModel(parent) {}

int TagTableModel::rowCount(const QModelIndex&) const { return 0; }

QVariant TagTableModel::data(const QModelIndex&, int) const { return {}; }
