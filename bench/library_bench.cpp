// SPDX-License-Identifier: GPL-3.0-or-later
// The photo library over 10,000 files made from the sample media (hard links, so the disk holds
// them once): the first scan beside exiftool -fast2 over the same folder, a rescan of the
// unchanged library (and of the watched one), a fetch of all photos by date, the time from a file written on disk to its
// change details, a favourite set (its journal line appended), and the peak memory of the process.
// usage: library_bench CORPUS_DIR [FILES] [--no-exiftool]   (FILES 100000 for a large library)
// TESSORIN_WORKERS=N reads the files on N threads (default: one per core).
#include "Library.h"
#include "Rows.h"
#include "SampleLibrary.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>
#include <cstdio>
#include <sys/resource.h>

using namespace library;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: library_bench CORPUS_DIR [FILES]\n");
        return 2;
    }
    const int wanted = argc > 2 ? std::atoi(argv[2]) : 10000;
    if (const int workers = qEnvironmentVariableIntValue("TESSORIN_WORKERS"); workers > 0)
        QThreadPool::globalInstance()->setMaxThreadCount(workers);
    std::printf("workers: %d\n", QThreadPool::globalInstance()->maxThreadCount());
    QTemporaryDir tmp;
    const QString root = tmp.path() + "/lib";
    const auto samples = bench::makeSampleLibrary(QString::fromLocal8Bit(argv[1]), root, wanted);
    if (!samples) return 2;
    qputenv("XDG_CONFIG_HOME", (tmp.path() + "/config").toUtf8());
    Library lib({root}, tmp.path() + "/library.sqlite");
    QElapsedTimer t;

    t.start();
    const ScanReport first = lib.scan();
    const double scanSeconds = t.nsecsElapsed() / 1e9;
    const int files = first.filesRead;
    rusage afterScan{};
    getrusage(RUSAGE_SELF, &afterScan);

    t.start();
    QProcess exiftool;
    exiftool.setStandardOutputFile(QProcess::nullDevice());
    exiftool.setStandardErrorFile(QProcess::nullDevice());
    const bool withExiftool = !(argc > 3 && QByteArray(argv[3]) == "--no-exiftool");
    if (withExiftool) {
        exiftool.start("exiftool", {"-fast2", "-j", "-r", root});
        exiftool.waitForFinished(-1);
    }
    const double exiftoolSeconds = t.nsecsElapsed() / 1e9;

    t.start();
    const ScanReport again = lib.scan();
    const double rescanSeconds = t.nsecsElapsed() / 1e9;

    // The first fetch loads the index; later ones reuse what it loaded, and after a change load
    // what the change touched.
    t.start();
    qsizetype photos = lib.fetchAssets(FetchOptions{SortOrder::creationDateDescending, MediaType::image, false}).count();
    const double firstFetchSeconds = t.nsecsElapsed() / 1e9;
    double fetchSeconds = 1e9;
    for (int i = 0; i < 5; ++i) {
        t.start();
        photos = lib.fetchAssets(FetchOptions{SortOrder::creationDateDescending, MediaType::image, false}).count();
        fetchSeconds = std::min(fetchSeconds, t.nsecsElapsed() / 1e9);
    }

    // One mark set: the index's update and the folder's journal.
    const QString marked = lib.fetchAssets().objectAt(0).localIdentifier;
    t.start();
    lib.setFavorite(marked, true);
    const double favoriteSeconds = t.nsecsElapsed() / 1e9;
    // The fetch after that change: what it touched is loaded again, not the library.
    t.start();
    lib.fetchAssets(FetchOptions{SortOrder::creationDateDescending, MediaType::image, false});
    const double changedFetchSeconds = t.nsecsElapsed() / 1e9;

    // Once watched, a rescan lists only the folders the watcher told of or whose own time moved:
    // the first one under the watch lists them all, the next none.
    lib.startWatching();
    lib.scan();
    const qint64 listedBefore = foldersListedSoFar();
    t.start();
    lib.scan();
    const double watchedRescanSeconds = t.nsecsElapsed() / 1e9;
    const qint64 watchedListed = foldersListedSoFar() - listedBefore;

    const FetchResult before = lib.fetchAssets();
    QEventLoop loop;
    QObject::connect(&lib, &Library::libraryDidChange, &loop, &QEventLoop::quit);
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    t.start();
    QFile::copy(samples->first(), root + "/000/new." + QFileInfo(samples->first()).suffix());
    loop.exec();
    const ChangeDetails details = lib.changeDetails(before);
    const double changeSeconds = t.nsecsElapsed() / 1e9;

    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("library of %d files (%lld photos), %lld unreadable\n", files, static_cast<long long>(photos),
                static_cast<long long>(first.problems.size()));
    std::printf("first scan     %8.2f s  %8.0f files/s\n", scanSeconds, files / scanSeconds);
    std::printf("exiftool -fast2%8.2f s  %8.0f files/s  (we are %.1f times as fast)\n", exiftoolSeconds,
                files / exiftoolSeconds, exiftoolSeconds / scanSeconds);
    std::printf("rescan         %8.3f s  (%d unchanged, %d read)\n", rescanSeconds, again.filesUnchanged, again.filesRead);
    std::printf("rescan watched %8.3f s  (%lld folders listed)\n", watchedRescanSeconds, static_cast<long long>(watchedListed));
    std::printf("fetch photos   %8.1f ms, by date (%.1f ms the first after a change, %.1f ms the first after opening)\n",
                fetchSeconds * 1000, changedFetchSeconds * 1000, firstFetchSeconds * 1000);
    std::printf("favourite set  %8.1f ms  (journal of %.1f MB)\n", favoriteSeconds * 1000,
                QFileInfo(root + "/.tessorin/journal.jsonl").size() / 1e6);
    std::printf("change noticed %8.3f s  (%lld inserted)\n", changeSeconds, static_cast<long long>(details.insertedIndexes.size()));
    std::printf("peak memory    %8.1f MB  (%.1f MB after the first scan)\n", usage.ru_maxrss / 1024.0,
                afterScan.ru_maxrss / 1024.0);
    return 0;
}
