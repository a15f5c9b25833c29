// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The log's one worker thread. Jobs run one at a time in the order they were queued; the list
// of providers and the level threshold belong to it and are touched only by its jobs.
#include "LogLevel.h"
#include "LogProvider.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class LogActor {
public:
    static LogActor& shared();

    // Never blocks beyond taking the queue's lock.
    void enqueue(std::function<void()> job);
    // Returns once every job queued before the call has run. Not to be called from a job.
    void drain();

    // Only from jobs.
    std::vector<std::shared_ptr<LogProvider>> providers;
    int level = rawValue(LogLevel::verbose);

    ~LogActor();
    LogActor(const LogActor&) = delete;
    LogActor& operator=(const LogActor&) = delete;

private:
    LogActor();
    void work();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    bool stopping_ = false;
    std::thread thread_;  // last, so that it starts after the members it uses
};
