// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// An observer that records what it hears, and a way to let the event loop run.
#include "TSAlbum.h"
#include "TSMetaDataObservable.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTest>
#include <QThread>
#include <functional>

class Recorder : public QObject, public TSMetaDataObserver, public TSCloudObserver, public TSViewControllerObserver,
                 public GroupObserver {
public:
    QStringList heard;
    // Not recorded: the rows of a new item arrive on their own schedule.
    QSet<QString> ignored;
    std::shared_ptr<TSAlbum> lastAlbum;
    // Runs inside a delivery, after the entry is recorded.
    std::function<void(const QString&)> onHear;

    void beginLoading(const std::shared_ptr<TSAlbum>& album) override { hear("begin", album); }
    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override { hear("processed", album); }
    void rowsChanged() override { hear("rows"); }
    void liveReady() override { hear("live"); }
    void progress(float value) override { hear("progress " + QString::number(value)); }
    void done(const std::shared_ptr<TSAlbum>& album) override { hear("done", album); }
    void failure(const QString& message) override { hear("failure " + message); }
    void albumChanged() override { hear("albumChanged"); }
    void reload(bool changed) override { hear(changed ? "reload changed" : "reload"); }

private:
    void hear(const QString& what, const std::shared_ptr<TSAlbum>& album = {}) {
        if (ignored.contains(what)) return;
        heard << what;
        if (album) lastAlbum = album;
        if (onHear) onHear(what);
    }
};

// Lets queued calls and timers run for about `ms` milliseconds.
inline void spin(int ms = 0) {
    QElapsedTimer clock;
    clock.start();
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        if (ms > 0) QThread::msleep(2);
    } while (clock.elapsed() < ms);
}
