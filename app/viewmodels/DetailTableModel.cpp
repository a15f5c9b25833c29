#include "DetailTableModel.h"

DetailTableModel::DetailTableModel(QObject* parent) : QAbstractListModel(parent) {}

int DetailTableModel::rowCount(const QModelIndex&) const { return 0; }

QVariant DetailTableModel::data(const QModelIndex&, int) const { return {}; }
