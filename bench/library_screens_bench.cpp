// SPDX-License-Identifier: GPL-3.0-or-later
// Opening an album of 10,000 library items as the group screen does: the fetch under the user's
// options, the album and its grid, and the thumbnails of the first screen (seven rows of four)
// from the desktop's thumbnail cache, first cold (an empty cache) and then warm.
// usage: library_screens_bench CORPUS_DIR [FILES]
#include "Albums.h"
#include "GroupViewModel.h"
#include "Library.h"
#include "SampleLibrary.h"
#include "Settings.h"
#include "TSPhotoAlbum.h"
#include "ThumbnailCache.h"

#include <QElapsedTimer>
#include <QFuture>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QUrl>
#include <QtConcurrent/QtConcurrentMap>
#include <cstdio>

namespace {

constexpr int firstScreen = 7 * GroupViewModel::columns;

// Milliseconds from the tap on the album to the first screen of thumbnails.
double openAlbum(library::Library& lib) {
    QElapsedTimer t;
    t.start();
    auto album = std::make_shared<TSPhotoAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    album->setAlbum(lib.fetchAssets(Albums::fetchOptions()), -1, QStringLiteral("All Photos"));
    GroupViewModel group;
    group.attach();
    QStringList paths;
    for (int row = 0; row * GroupViewModel::columns < firstScreen && row < group.rowCount(); ++row)
        for (const QVariant& item : group.data(group.index(row), GroupViewModel::ItemsRole).toList()) {
            const QString source = item.toMap().value("thumbnail").toString();
            paths << QUrl::fromPercentEncoding(source.mid(QStringLiteral("image://thumb/lib/").size()).toUtf8());
        }
    // As the thumbnail provider does: the pool decodes, the screen waits for all of them.
    QtConcurrent::blockingMap(paths, [](const QString& path) { library::thumbnails::forFile(path, 190); });
    const double ms = t.nsecsElapsed() / 1e6;
    TSEnvironment::setCurrentAlbum(nullptr);
    return ms;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir tmp;
    qputenv("XDG_CONFIG_HOME", (tmp.path() + "/config").toUtf8());
    qputenv("XDG_CACHE_HOME", (tmp.path() + "/cache").toUtf8());
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: library_screens_bench CORPUS_DIR [FILES]\n");
        return 2;
    }
    const int wanted = argc > 2 ? std::atoi(argv[2]) : 10000;
    const QString root = tmp.path() + "/lib";
    if (!bench::makeSampleLibrary(QString::fromLocal8Bit(argv[1]), root, wanted)) return 2;
    library::Library lib({root}, tmp.path() + "/library.sqlite");
    lib.scan();
    Settings::setFlag(SettingsFlag::gridView, true);
    const qsizetype items = lib.fetchAssets(Albums::fetchOptions()).count();
    const double cold = openAlbum(lib);
    double warm = 1e9;
    for (int i = 0; i < 5; ++i) warm = std::min(warm, openAlbum(lib));
    std::printf("album of %lld items, first screen of %d thumbnails\n", qlonglong(items), firstScreen);
    std::printf("  cold thumbnail cache: %8.1f ms   (goal < 1000 ms)\n", cold);
    std::printf("  warm thumbnail cache: %8.1f ms   (goal <  100 ms)\n", warm);
    return 0;
}
