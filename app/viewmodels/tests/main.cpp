// SPDX-License-Identifier: GPL-3.0-or-later
// The view-model tests run inside a GUI application: images, the clipboard and the event loop
// need one, offscreen also when the test runner lists the tests without the tests' environment.
#include <QGuiApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
