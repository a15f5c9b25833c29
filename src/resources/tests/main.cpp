// SPDX-License-Identifier: GPL-3.0-or-later
#include <QGuiApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The application's temporary folder is made once per process: it goes into a folder of this
// run only. Each test isolates the rest itself.
int main(int argc, char** argv) {
    QTemporaryDir root;
    qputenv("TMPDIR", root.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
