// SPDX-License-Identifier: GPL-3.0-or-later
// The location tests run inside an application object, as the geocoder's answers come through
// the event loop; names are checked in English.
#include "Isolation.h"

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    testsupport::Isolation::setTestLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
