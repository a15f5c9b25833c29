// SPDX-License-Identifier: GPL-3.0-or-later
// Change details between two fetch results of the same query.
#include "Library.h"

#include <QHash>

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

}  // namespace library
