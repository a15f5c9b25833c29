// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The geocoder's one worker thread. Jobs run one at a time, in the order queued, inside the
// thread's event loop, so that a job may start network requests whose answers arrive later
// on the same thread.
#include <QObject>
#include <QThread>
#include <functional>

class GeocoderActor {
public:
    static GeocoderActor& shared();

    // Never blocks.
    void enqueue(std::function<void()> job);
    // An object that lives on the worker thread: parent for objects that jobs create there.
    QObject* context() const { return worker_; }
    bool isCurrentThread() const { return QThread::currentThread() == &thread_; }

    ~GeocoderActor();
    GeocoderActor(const GeocoderActor&) = delete;
    GeocoderActor& operator=(const GeocoderActor&) = delete;

private:
    GeocoderActor();
    QThread thread_;
    QObject* worker_;
};
