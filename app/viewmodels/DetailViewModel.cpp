#include "DetailViewModel.h"

DetailViewModel::DetailViewModel(QObject* parent) : QObject(parent) {}
