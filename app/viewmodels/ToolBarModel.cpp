#include "ToolBarModel.h"

ToolBarModel::ToolBarModel(QObject* parent) : QObject(parent) {}
