// SPDX-License-Identifier: GPL-3.0-or-later
// Saving 24 photos (the cap of selected items) from the edit screen in each mode, as a user
// would: a new date and place on all of them, then "New Picture", "Modify" or "Save to Files".
// Beside the wall time it reports the longest stall of the GUI thread's event loop while the
// save ran, measured by a 5 ms timer, and how much of that stall the GUI thread itself spent
// working (its CPU time): on a shared machine the rest is waiting for a core.
// usage: edit_screen_bench CORPUS_DIR
#include "EditViewModel.h"
#include "Library.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <cstdio>
#include <ctime>

namespace {

double msSince(const QElapsedTimer& clock) { return double(clock.nsecsElapsed()) / 1e6; }

double threadCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: edit_screen_bench CORPUS_DIR\n");
        return 2;
    }
    const QString corpus = QString::fromLocal8Bit(argv[1]);
    // A library, settings and data folder of the bench's own.
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/config").toUtf8());
    qputenv("TESSORIN_LIBRARY", (home.path() + "/lib").toUtf8());
    const QString sources[] = {corpus + "/jpeg/Canon_40D.jpg", corpus + "/jpeg/Nikon_D70.jpg", corpus + "/heif/Stonehenge.heic"};
    const int count = 24;

    std::printf("save of %d photos (JPEG and HEIC), new date and place\n", count);
    std::printf("%-16s %10s %22s %16s\n", "mode", "wall ms", "longest GUI stall ms", "of it busy ms");
    for (int mode : {0, 1, 2}) {
        // Fresh copies in the library for every mode, so that "Modify" edits originals.
        const QString folder = home.path() + QStringLiteral("/lib/round%1").arg(mode);
        QDir().mkpath(folder);
        QStringList paths;
        for (int i = 0; i < count; ++i) {
            const QString& source = sources[i % 3];
            const QString target = folder + QStringLiteral("/%1_%2").arg(i).arg(QFileInfo(source).fileName());
            QFile::copy(source, target);
            QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
            paths << target;
        }
        library::Library().scan();

        EditViewModel edit;
        QString problem;
        QObject::connect(&edit, &EditViewModel::alert, [&](const QString& t, const QString& m) { problem = t + " " + m; });
        edit.openFile(paths.first());
        edit.addFiles(paths.mid(1));
        while (edit.loading()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        GeoLocation where(45.4642, 9.19);
        HRLocation place;
        place.location = where;
        edit.settings()->setLocation(place);
        edit.settings()->setDate(QDateTime(QDate(2021, 6, 1), QTime(12, 34, 56)), TSKey::EXIF_DATE);

        QElapsedTimer clock, tick;
        double longest = 0, longestBusy = 0, cpuAtTick = threadCpuMs();
        QTimer timer;
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, [&] {
            const double gap = msSince(tick), cpu = threadCpuMs();
            if (gap > longest) {
                longest = gap;
                longestBusy = cpu - cpuAtTick;
            }
            tick.restart();
            cpuAtTick = cpu;
        });
        clock.start();
        tick.start();
        cpuAtTick = threadCpuMs();
        timer.start();
        edit.save(mode);
        while (!edit.activity().isEmpty()) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        const double wall = msSince(clock);
        timer.stop();
        if (!problem.isEmpty()) {
            std::fprintf(stderr, "mode %d: %s\n", mode, qPrintable(problem));
            return 1;
        }
        if (mode == 2) edit.finishExport(QUrl());
        const char* names[] = {"0 New Picture", "1 Modify", "2 Save to Files"};
        std::printf("%-16s %10.0f %22.1f %16.1f\n", names[mode], wall, longest, longestBusy);
    }
    return 0;
}
