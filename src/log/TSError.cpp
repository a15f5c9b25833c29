// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSError.h"

#include <QCoreApplication>

QString TSError::localizedDescription() const { return QCoreApplication::translate("", utf8_.constData()); }
