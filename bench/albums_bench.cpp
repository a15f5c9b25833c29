// SPDX-License-Identifier: GPL-3.0-or-later
// How long the files album keeps the user waiting: from choosing an item until the detail
// table, told by the processed notification, has given every cell of its rows, for a
// 12-megapixel HEIC and JPEG; and the first 100 grid thumbnails of the sample media.
// usage: albums_bench CORPUS_DIR [ROUNDS]
#include "DetailTableModel.h"
#include "TSFilesAlbum.h"
#include "ThumbnailCache.h"
#include "TSMetaDataObservable.h"

#include <QGuiApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>
#include <QThreadPool>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

// What a table view asks of the model after a reset: every role of every row.
int readAllCells(const QAbstractItemModel& model) {
    const QList<int> roles = model.roleNames().keys();
    int filled = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        for (int role : roles) filled += model.data(model.index(row, 0), role).isValid() ? 1 : 0;
    return filled;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

double msSince(const QElapsedTimer& clock) { return double(clock.nsecsElapsed()) / 1e6; }

// The process's CPU time (decoders may use threads of their own): on a shared machine the
// wall clock also counts other people's work.
double cpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

// Every sample image and movie, sorted, as the grid of a files album would list them.
QStringList samples(const QString& corpus) {
    QStringList out;
    QDirIterator it(corpus, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!path.endsWith(".md") && !path.contains("/malformed/")) out << path;
    }
    out.sort();
    return out;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: albums_bench CORPUS_DIR [ROUNDS]\n");
        return 2;
    }
    const QString corpus = QString::fromLocal8Bit(argv[1]);
    const int rounds = argc > 2 ? std::max(1, atoi(argv[2])) : 15;
    // The user's settings stay untouched.
    QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());

    const QString heic = corpus + "/heif/iphone_13_pro_max.HEIC";  // 4032 x 3024
    const QString jpeg = corpus + "/jpeg/edge/42_IndexError.jpg";   // 4032 x 3024
    const QStringList all = samples(corpus);
    if (!QFile::exists(heic) || !QFile::exists(jpeg) || all.isEmpty()) {
        std::fprintf(stderr, "sample media not found at %s\n", qPrintable(corpus));
        return 2;
    }

    // Choosing an item: a new asset reads the file and fills its rows; the detail table hears
    // processed on the next turn of the event loop and reloads.
    auto album = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    album->loadBookmarks({heic, jpeg});
    DetailTableModel table;
    int resets = 0;
    QObject::connect(&table, &QAbstractItemModel::modelReset, [&] { ++resets; });
    QCoreApplication::processEvents();
    std::vector<double> wall[2], cpu[2];
    for (int round = 0; round < rounds + 1; ++round)
        for (int index : {0, 1}) {
            const int before = resets;
            QElapsedTimer clock;
            clock.start();
            const double start = cpuMs();
            album->setActualIndex(index);
            while (resets == before) QCoreApplication::processEvents(QEventLoop::AllEvents);
            if (readAllCells(table) == 0) return 1;
            if (round == 0) continue;  // the first round warms the caches
            wall[index].push_back(msSince(clock));
            cpu[index].push_back(cpuMs() - start);
        }
    for (int index : {0, 1})
        std::printf("choose item -> detail rows, 12 MP %s: %6.2f ms wall, %6.2f ms CPU, medians of %d   (goal: under 100 ms)\n",
                    index == 0 ? "HEIC" : "JPEG", median(wall[index]), median(cpu[index]), rounds);

    // The first 100 grid thumbnails, the samples repeated to fill them: at about 200 pixels, and
    // at the 96 of a phone grid's cell, (390 - 3 x 2) / 4, where camera thumbnails are enough.
    constexpr int gridCount = 100, side = 200;
    QStringList grid;
    while (grid.size() < gridCount) grid += all;
    grid = grid.mid(0, gridCount);
    for (const QString& file : all) {  // into the page cache
        QFile f(file);
        if (f.open(QIODevice::ReadOnly)) f.readAll();
    }
    for (int cell : {side, 96}) {
        std::vector<double> each;
        QElapsedTimer serial;
        serial.start();
        const double cpuStart = cpuMs();
        for (const QString& file : grid) {
            const double start = cpuMs();
            library::thumbnails::picture(file, cell);
            each.push_back(cpuMs() - start);
            if (qEnvironmentVariableIsSet("BENCH_VERBOSE")) std::printf("  %7.2f ms CPU %s\n", each.back(), qPrintable(file));
        }
        const double serialMs = msSince(serial), serialCpu = cpuMs() - cpuStart;
        const auto worst = std::max_element(each.begin(), each.end());
        std::printf("%d thumbnails of %3d px, one thread: %5.0f ms wall, %5.0f ms CPU: %5.2f ms CPU each (median %.2f; "
                    "slowest %s, %.0f ms)   (goal: under 10 ms each)\n",
                    gridCount, cell, serialMs, serialCpu, serialCpu / gridCount, median(each),
                    qPrintable(QFileInfo(grid[int(worst - each.begin())]).fileName()), *worst);
    }

    auto gridAlbum = std::make_shared<TSFilesAlbum>();
    gridAlbum->loadBookmarks(grid);
    int answered = 0;
    QElapsedTimer pooled;
    pooled.start();
    for (int i = 0; i < gridCount; ++i) gridAlbum->requestImage(i, {side, side}, [&](const QImage&, bool) { ++answered; });
    while (answered < gridCount) QCoreApplication::processEvents(QEventLoop::AllEvents);
    const double pooledMs = msSince(pooled);
    std::printf("%d thumbnails through requestImage (%d threads): %8.1f ms, %.2f ms each\n", gridCount,
                QThreadPool::globalInstance()->maxThreadCount(), pooledMs, pooledMs / gridCount);

    for (const QString& file : {heic, jpeg}) {
        std::vector<double> t;
        for (int round = 0; round < 5; ++round) {
            const double start = cpuMs();
            library::thumbnails::picture(file, side);
            t.push_back(cpuMs() - start);
        }
        std::printf("thumbnail of a 12 MP %s: %6.2f ms CPU median\n", file == heic ? "HEIC" : "JPEG", median(t));
    }
    return 0;
}
