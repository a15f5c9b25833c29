// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The place look-up of an item on view: its position to a place name through TSGeocoder, the
// answer written into its store's location row. Runs on the GUI thread's event loop and never
// blocks it.
#include "GeoLocation.h"

#include <QCoro/QCoroTask>
#include <functional>
#include <memory>

class TSDataStore;

namespace placelookup {

// The page on view (the album's actualIndex), asked before and after the wait; an answer that
// arrives for a page the user has left is dropped. Without a source every answer counts.
void setActualIndexSource(std::function<int()> source);

// Ends at once when the store has no display delegate. The store is held weakly: an answer for
// a store that is gone is dropped too. The first placemark goes to setPlacemark.
QCoro::Task<> lookUp(GeoLocation location, std::weak_ptr<TSDataStore> store);

// Starts lookUp in a task of its own on the event loop of the application's thread.
void start(const GeoLocation& location, std::weak_ptr<TSDataStore> store);

// Look-ups started and not yet ended.
int running();
// Runs the event loop until every look-up has ended or `timeoutMs` has passed: for callers
// with no event loop of their own, such as the command line. True when all have ended.
bool waitForAll(int timeoutMs);

}  // namespace placelookup
