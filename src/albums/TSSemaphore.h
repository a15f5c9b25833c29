// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A counting semaphore for coroutines: a waiter suspends, no thread blocks. Used on the GUI
// thread only, so its operations run one at a time; waiters resume in the order they came.
#include <coroutine>
#include <deque>

class TSSemaphore {
public:
    struct Waiter {
        TSSemaphore& semaphore;
        bool await_ready() const noexcept;
        void await_suspend(std::coroutine_handle<> handle) { semaphore.waiters_.push_back(handle); }
        void await_resume() const noexcept {}
    };

    // `co_await semaphore.wait()`: takes one from the counter, and waits while it is below 0.
    Waiter wait() { return Waiter{*this}; }
    // Adds `count` and resumes up to that many waiters. A negative count is a programming error.
    void release(int count = 1);
    int counter() const { return counter_; }
    int waiting() const { return int(waiters_.size()); }

private:
    int counter_ = 0;
    std::deque<std::coroutine_handle<>> waiters_;
};
