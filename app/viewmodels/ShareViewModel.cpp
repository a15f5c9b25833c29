#include "ShareViewModel.h"

ShareViewModel::ShareViewModel(QObject* parent) : QObject(parent) {}
