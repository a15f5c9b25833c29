// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A small bounded list, newest first, and the two process-wide lists of recent dates and
// places that the edit screens offer. Both live in the settings.
#include "HRLocation.h"

#include <QDateTime>
#include <QList>
#include <cassert>

template <typename T>
struct Recent {
    int maxCounter;
    QList<T> arrayList;

    explicit Recent(int capacity) : maxCounter(capacity) { assert(capacity > 0); }

    // Puts the element in front; an equal element moves there, replaced by the new one.
    void add(const T& element) {
        const qsizetype at = arrayList.indexOf(element);
        if (at == 0) return;
        if (at > 0) arrayList.removeAt(at);
        else if (arrayList.size() >= maxCounter) arrayList.removeLast();
        arrayList.prepend(element);
    }

    auto begin() const { return arrayList.begin(); }
    auto end() const { return arrayList.end(); }
};

namespace recents {

Recent<QDateTime>& dates();
Recent<HRLocation>& locations();

// Fills both lists from the settings. Each entry goes to the front as it is read, so a list
// saved newest-first comes back oldest-first until the next save writes the new order.
void loadRecents();

// After a save: the wanted dates and the wanted place of the finished edit. A place with no
// location whose title is absent or "--" marks a removed location and is not kept.
void saveRecents(const std::optional<QDateTime>& date, const std::optional<QDateTime>& digitizedDate,
                 const std::optional<HRLocation>& location);

}  // namespace recents
