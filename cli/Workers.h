// SPDX-License-Identifier: GPL-3.0-or-later
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

// `parallel` false runs everything on the calling thread, for work that must see what the
// results before it did (the same file named twice and edited in place).
template <typename T, typename R>
void inOrder(const QList<T>& items, std::function<R(const T&)> work, const std::function<void(const T&, R&)>& take,
             bool parallel = true) {
    QThreadPool* pool = QThreadPool::globalInstance();
    if (!parallel || pool->maxThreadCount() <= 1 || items.size() <= 1) {
        for (const T& item : items) {
            R result = work(item);
            take(item, result);
        }
        return;
    }
    // Results wait in batches, at most two at a time: a result may hold its file open, and the
    // workers must not run so far ahead that a long run runs out of open files.
    const qsizetype batch = 16 * qsizetype(pool->maxThreadCount());
    auto start = [&](qsizetype from) { return QtConcurrent::mapped(pool, items.mid(from, batch), work); };
    QFuture<R> current = start(0);
    for (qsizetype from = 0; from < items.size(); from += batch) {
        QFuture<R> next = from + batch < items.size() ? start(from + batch) : QFuture<R>();
        for (qsizetype i = 0; i < batch && from + i < items.size(); ++i) {
            R result = current.resultAt(int(i));
            take(items[from + i], result);
        }
        current = next;
    }
}

}  // namespace cli
