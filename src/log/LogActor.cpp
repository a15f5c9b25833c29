// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogActor.h"

#include <future>

LogActor& LogActor::shared() {
    static LogActor actor;
    return actor;
}

LogActor::LogActor() : thread_([this] { work(); }) {}

// Lines queued before exit still go out: the worker empties the queue before it stops.
LogActor::~LogActor() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_one();
    thread_.join();
}

void LogActor::enqueue(std::function<void()> job) {
    {
        std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
}

void LogActor::drain() {
    auto done = std::make_shared<std::promise<void>>();
    std::future<void> finished = done->get_future();
    enqueue([done] { done->set_value(); });
    finished.wait();
}

void LogActor::work() {
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
            if (jobs_.empty()) return;
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        job();
    }
}
