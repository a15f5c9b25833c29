// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSSemaphore.h"

#include "Log.h"

bool TSSemaphore::Waiter::await_ready() const noexcept {
    --semaphore.counter_;
    Log::debug(QStringLiteral("🛰 >>>> counter: %1 <<<<").arg(semaphore.counter_));
    return semaphore.counter_ >= 0;
}

void TSSemaphore::release(int count) {
    if (count < 0) qFatal("TSSemaphore::release with a negative count");
    counter_ += count;
    Log::debug(QStringLiteral("🛰 <<<< counter: %1 >>>>").arg(counter_));
    for (int i = 0; i < count && !waiters_.empty(); ++i) {
        auto next = waiters_.front();
        waiters_.pop_front();
        next.resume();
    }
}
