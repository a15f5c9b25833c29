#pragma once
// Many files over a pool of worker threads, one per core: the work on each file runs on a
// worker, the results come back on the calling thread in the files' order, each as soon as it
// and those before it are done. TESSORIN_WORKERS=N sets the pool's size (1: no pool, all on
// the calling thread).
#include <QList>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentMap>

#include <functional>

namespace cli {

// Sizes the global pool from TESSORIN_WORKERS, when set; called once at start.
void setUpWorkers();

template <typename T, typename R>
void inOrder(const QList<T>& items, std::function<R(const T&)> work, const std::function<void(const T&, R&)>& take) {
    if (QThreadPool::globalInstance()->maxThreadCount() <= 1 || items.size() <= 1) {
        for (const T& item : items) {
            R result = work(item);
            take(item, result);
        }
        return;
    }
    QFuture<R> future = QtConcurrent::mapped(QThreadPool::globalInstance(), items, std::move(work));
    for (qsizetype i = 0; i < items.size(); ++i) {
        R result = future.resultAt(int(i));
        take(items[i], result);
    }
}

}  // namespace cli
