// SPDX-License-Identifier: GPL-3.0-or-later
// The library tests run inside an application object: file-system notices come through the
// event loop.
#include <QCoreApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
