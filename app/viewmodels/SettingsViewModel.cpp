#include "SettingsViewModel.h"

SettingsViewModel::SettingsViewModel(QObject* parent) : QAbstractListModel(parent) {}

int SettingsViewModel::rowCount(const QModelIndex&) const { return 0; }

QVariant SettingsViewModel::data(const QModelIndex&, int) const { return {}; }
