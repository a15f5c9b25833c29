#include <QGuiApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Temporary files, settings and caches go to a folder of this run only.
int main(int argc, char** argv) {
    QTemporaryDir root;
    for (const char* name : {"TMPDIR", "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(name, root.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
