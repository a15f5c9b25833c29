// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one worker thread on which every resource loads: jobs run one at a time, in the order
// queued, so resources load strictly one after the other and never on the GUI thread.
#include <QObject>
#include <QThread>
#include <functional>

class ResourceActor {
public:
    static ResourceActor& shared();

    // Never blocks.
    void enqueue(std::function<void()> job);
    bool isCurrentThread() const { return QThread::currentThread() == &thread_; }

    ~ResourceActor();
    ResourceActor(const ResourceActor&) = delete;
    ResourceActor& operator=(const ResourceActor&) = delete;

private:
    ResourceActor();
    QThread thread_;
    QObject* worker_;
};
