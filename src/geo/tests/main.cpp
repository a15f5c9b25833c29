// SPDX-License-Identifier: GPL-3.0-or-later
// The geo tests run inside an application object, as the geocoder's answers come through the
// event loop (a GUI one: the offline map draws text); names are checked in English.
#include "Isolation.h"

#include <QGuiApplication>
#include <QLocale>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    testsupport::Isolation::setTestLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
