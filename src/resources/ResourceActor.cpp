// SPDX-License-Identifier: GPL-3.0-or-later
#include "ResourceActor.h"

#include <QMetaObject>

ResourceActor& ResourceActor::shared() {
    static ResourceActor actor;
    return actor;
}

ResourceActor::ResourceActor() : worker_(new QObject) {
    thread_.setObjectName("ResourceActor");
    worker_->moveToThread(&thread_);
    thread_.start();
}

ResourceActor::~ResourceActor() {
    QObject* worker = worker_;
    if (thread_.isRunning()) QMetaObject::invokeMethod(worker, [worker] { delete worker; }, Qt::BlockingQueuedConnection);
    else delete worker;
    thread_.quit();
    thread_.wait();
}

void ResourceActor::enqueue(std::function<void()> job) {
    QMetaObject::invokeMethod(worker_, std::move(job), Qt::QueuedConnection);
}
