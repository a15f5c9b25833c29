#include "TSError.h"

#include <QCoreApplication>

QString TSError::localizedDescription() const { return QCoreApplication::translate("", utf8_.constData()); }
