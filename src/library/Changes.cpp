// SPDX-License-Identifier: GPL-3.0-or-later
// Change details between two fetch results of the same query.
#include "Library.h"

#include <QHash>
#include <algorithm>
#include <numeric>

namespace library {

ChangeDetails changeDetails(const FetchResult& before, const FetchResult& after) {
    ChangeDetails d;
    d.fetchResultBeforeChanges = before;
    d.fetchResultAfterChanges = after;
    QHash<QString, qsizetype> oldIndex, newIndex;
    for (qsizetype i = 0; i < before.count(); ++i) oldIndex.insert(before.objectAt(i).localIdentifier, i);
    for (qsizetype i = 0; i < after.count(); ++i) newIndex.insert(after.objectAt(i).localIdentifier, i);

    for (qsizetype i = 0; i < before.count(); ++i)
        if (!newIndex.contains(before.objectAt(i).localIdentifier)) {
            d.removedIndexes << i;
            d.removedObjects << before.objectAt(i);
        }
    for (qsizetype i = 0; i < after.count(); ++i) {
        const Asset& a = after.objectAt(i);
        auto old = oldIndex.constFind(a.localIdentifier);
        if (old == oldIndex.cend()) {
            d.insertedIndexes << i;
            d.insertedObjects << a;
        } else if (before.objectAt(*old).version != a.version) {
            d.changedIndexes << i;
            d.changedObjects << a;
        }
    }

    // The kept assets in their old order, with their new places. Those on a longest increasing
    // run of new places stay; every other one has moved.
    QList<qsizetype> from, to;
    for (qsizetype i = 0; i < before.count(); ++i)
        if (auto it = newIndex.constFind(before.objectAt(i).localIdentifier); it != newIndex.cend()) {
            from << i;
            to << *it;
        }
    const qsizetype n = to.size();
    QList<qsizetype> tails, prev(n, -1);  // patience sorting, O(n log n)
    for (qsizetype i = 0; i < n; ++i) {
        auto pos = std::lower_bound(tails.begin(), tails.end(), to[i], [&](qsizetype t, qsizetype v) { return to[t] < v; });
        const qsizetype k = pos - tails.begin();
        if (k > 0) prev[i] = tails[k - 1];
        if (pos == tails.end()) tails << i;
        else *pos = i;
    }
    QList<bool> stays(n, false);
    for (qsizetype i = tails.isEmpty() ? -1 : tails.last(); i >= 0; i = prev[i]) stays[i] = true;
    for (qsizetype i = 0; i < n; ++i)
        if (!stays[i]) d.moves << qMakePair(from[i], to[i]);
    return d;
}

ChangeDetails changeDetails(const FetchResult& before, const FetchResult& query, const QSet<QString>& touched,
                            const std::function<FetchResult::Item(const QString& id, qint64* key)>& now) {
    ChangeDetails d;
    d.fetchResultBeforeChanges = before;
    FetchResult after = query;
    after.assets_.clear();
    after.keys_.clear();
    const bool ascending = before.query_.options.sort == SortOrder::creationDateAscending;
    auto precedes = [ascending](qint64 kx, const QString& x, qint64 ky, const QString& y) {
        if (kx != ky) return ascending ? kx < ky : ky < kx;
        return x < y;
    };
    // Where the touched ones were: one pass over the old result, no map of all of it.
    QHash<QString, qsizetype> oldAt;
    QList<qsizetype> oldTouched;
    for (qsizetype i = 0; i < before.assets_.size() && oldAt.size() < touched.size(); ++i)
        if (touched.contains(before.assets_[i]->localIdentifier)) {
            oldAt.insert(before.assets_[i]->localIdentifier, i);
            oldTouched << i;
        }
    struct Now { qint64 key; FetchResult::Item asset; };
    QList<Now> fresh;
    for (const QString& id : touched) {
        qint64 key = 0;
        if (FetchResult::Item a = now(id, &key)) fresh << Now{key, std::move(a)};
    }
    std::sort(fresh.begin(), fresh.end(), [&](const Now& x, const Now& y) {
        return precedes(x.key, x.asset->localIdentifier, y.key, y.asset->localIdentifier);
    });
    // The untouched ones keep their order; the touched ones go in where their keys say.
    after.assets_.reserve(before.assets_.size() - oldTouched.size() + fresh.size());
    after.keys_.reserve(after.assets_.capacity());
    QList<qsizetype> newAt;  // of each in `fresh`
    qsizetype next = 0, skip = 0;
    auto takeFresh = [&] {
        newAt << after.assets_.size();
        after.assets_ << fresh[next].asset;
        after.keys_ << fresh[next].key;
        ++next;
    };
    for (qsizetype i = 0; i < before.assets_.size(); ++i) {
        if (skip < oldTouched.size() && oldTouched[skip] == i) {
            ++skip;
            continue;
        }
        const FetchResult::Item& a = before.assets_[i];
        while (next < fresh.size() && precedes(fresh[next].key, fresh[next].asset->localIdentifier, before.keys_[i], a->localIdentifier))
            takeFresh();
        after.assets_ << a;
        after.keys_ << before.keys_[i];
    }
    while (next < fresh.size()) takeFresh();

    QSet<QString> kept;
    QList<qsizetype> keptFrom, keptTo;  // in new order
    for (qsizetype j = 0; j < fresh.size(); ++j) {
        const Asset& a = *fresh[j].asset;
        auto old = oldAt.constFind(a.localIdentifier);
        if (old == oldAt.cend()) {
            d.insertedIndexes << newAt[j];
            d.insertedObjects << a;
            continue;
        }
        kept.insert(a.localIdentifier);
        if (before.assets_[*old]->version != a.version) {
            d.changedIndexes << newAt[j];
            d.changedObjects << a;
        }
        // Among the untouched it moved when the number of them before it did.
        const qsizetype oldRank = *old - (std::lower_bound(oldTouched.begin(), oldTouched.end(), *old) - oldTouched.begin());
        const qsizetype newRank = newAt[j] - j;
        if (oldRank != newRank) d.moves << qMakePair(*old, newAt[j]);
        else {
            keptFrom << *old;
            keptTo << newAt[j];
        }
    }
    for (qsizetype i : std::as_const(oldTouched))
        if (!kept.contains(before.assets_[i]->localIdentifier)) {
            d.removedIndexes << i;
            d.removedObjects << *before.assets_[i];
        }
    // Touched ones that kept their place among the untouched but swapped among themselves:
    // those off the longest run in order moved.
    for (qsizetype i = 1; i < keptFrom.size(); ++i)
        if (keptFrom[i] < keptFrom[i - 1]) {
            QList<qsizetype> order(keptFrom.size());
            std::iota(order.begin(), order.end(), 0);
            std::sort(order.begin(), order.end(), [&](qsizetype x, qsizetype y) { return keptFrom[x] < keptFrom[y]; });
            QList<qsizetype> best(order.size(), 1), prev(order.size(), -1);
            qsizetype end = 0;
            for (qsizetype x = 0; x < order.size(); ++x) {
                for (qsizetype y = 0; y < x; ++y)
                    if (keptTo[order[y]] < keptTo[order[x]] && best[y] + 1 > best[x]) best[x] = best[y] + 1, prev[x] = y;
                if (best[x] > best[end]) end = x;
            }
            QSet<qsizetype> stays;
            for (qsizetype x = end; x >= 0; x = prev[x]) stays.insert(x);
            for (qsizetype x = 0; x < order.size(); ++x)
                if (!stays.contains(x)) d.moves << qMakePair(keptFrom[order[x]], keptTo[order[x]]);
            break;
        }
    std::sort(d.moves.begin(), d.moves.end());
    d.fetchResultAfterChanges = after;
    return d;
}

}  // namespace library
