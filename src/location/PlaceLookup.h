// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The place look-up of an item on view: its position to a place name through TSGeocoder, the
// answer handed to the item. Runs on the GUI thread's event loop and never blocks it. The item
// is known only as a PlaceReceiver, so that what holds an item needs nothing of the geocoder.
#include "GeoLocation.h"

#include <functional>
#include <memory>

// What a place is named for: an item's store.
class PlaceReceiver {
public:
    virtual ~PlaceReceiver() = default;
    // Whether the item is shown; a look-up for one nobody shows ends at once.
    virtual bool isShown() const = 0;
    virtual void setPlacemark(const Placemark& placemark) = 0;
};

namespace placelookup {

// The page on view (the album's actualIndex), asked before and after the wait; an answer that
// arrives for a page the user has left is dropped. Without a source every answer counts.
void setActualIndexSource(std::function<int()> source);

// Names the place of `location` for the item, in a task of its own on the event loop of the
// application's thread. Ends at once when the item is not shown. The item is held weakly: an
// answer for an item that is gone is dropped too. The first placemark goes to setPlacemark.
void start(const GeoLocation& location, std::weak_ptr<PlaceReceiver> item);

// Look-ups started and not yet ended.
int running();
// Runs the event loop until every look-up has ended or `timeoutMs` has passed: for callers
// with no event loop of their own, such as the command line. True when all have ended.
bool waitForAll(int timeoutMs);

}  // namespace placelookup
