// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaceLookup.h"

#include "Log.h"
#include "TSGeocoder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QTimer>

#include <atomic>

namespace placelookup {

namespace {

std::function<int()>& indexSource() {
    static std::function<int()> source;
    return source;
}

// Atomic: items read on worker threads start their look-ups from there.
std::atomic<int>& runningCount() {
    static std::atomic<int> n = 0;
    return n;
}

QEventLoop* waiting = nullptr;  // waitForAll's loop, ended by the last look-up to end

// Counts a look-up from its start until its coroutine ends, whichever way it ends.
struct Running {
    Running() = default;
    Running(const Running&) = delete;
    ~Running() {
        if (--runningCount() == 0 && waiting) waiting->quit();
    }
};

int actualIndex() { return indexSource() ? indexSource()() : 0; }

QCoro::Task<> lookUp(GeoLocation location, std::weak_ptr<PlaceReceiver> item) {
    {
        auto s = item.lock();
        if (!s || !s->isShown()) co_return;
    }
    const int page = actualIndex();
    const std::optional<QList<Placemark>> placemarks = co_await TSGeocoder::reverse(location);
    if (actualIndex() != page) {
        Log::debug("🗺 page left: place dropped", "placeLookup");
        co_return;
    }
    auto s = item.lock();
    if (!s) co_return;
    if (placemarks && !placemarks->isEmpty()) s->setPlacemark(placemarks->first());
}

}  // namespace

void setActualIndexSource(std::function<int()> source) { indexSource() = std::move(source); }

int running() { return runningCount(); }

void start(const GeoLocation& location, std::weak_ptr<PlaceReceiver> item) {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || item.expired()) return;
    ++runningCount();
    QMetaObject::invokeMethod(
        app,
        [location, item] {
            [](GeoLocation l, std::weak_ptr<PlaceReceiver> s) -> QCoro::Task<> {
                Running counted;
                co_await lookUp(l, s);
            }(location, item);
        },
        Qt::QueuedConnection);
}

bool waitForAll(int timeoutMs) {
    if (runningCount() == 0) return true;
    QEventLoop loop;
    waiting = &loop;
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    loop.exec();
    waiting = nullptr;
    return runningCount() == 0;
}

}  // namespace placelookup
