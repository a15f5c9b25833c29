// SPDX-License-Identifier: GPL-3.0-or-later
#include "GeocoderActor.h"

#include <QMetaObject>

GeocoderActor& GeocoderActor::shared() {
    static GeocoderActor actor;
    return actor;
}

GeocoderActor::GeocoderActor() : worker_(new QObject) {
    thread_.setObjectName("GeocoderActor");
    worker_->moveToThread(&thread_);
    thread_.start();
}

// Objects the jobs made (the network access) are children of the worker and go with it, on
// its own thread, before the thread stops.
GeocoderActor::~GeocoderActor() {
    QObject* worker = worker_;
    if (thread_.isRunning()) QMetaObject::invokeMethod(worker, [worker] { delete worker; }, Qt::BlockingQueuedConnection);
    else delete worker;
    thread_.quit();
    thread_.wait();
}

void GeocoderActor::enqueue(std::function<void()> job) {
    QMetaObject::invokeMethod(worker_, std::move(job), Qt::QueuedConnection);
}
