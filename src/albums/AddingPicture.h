// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A save of a new picture waits until the library has told of the change, then knows where the
// new item landed: in the album on view, or else in all photos and the application's album,
// which the screens offer to go to.
#include "Library.h"
#include "TSEnvironment.h"
#include "TSSemaphore.h"

#include <QCoro/QCoroTask>
#include <optional>

class AddingPicture {
public:
    TSSemaphore addingSemaphore;
    bool adding = false;
    std::optional<int> allPhotosIndex;
    std::optional<int> actualIndex;
    std::optional<int> tessorinIndex;
    std::optional<library::FetchResult> allPhotosAlbum;
    std::optional<library::FetchResult> tessorinAlbum;

    // Before a save: the fetches the new item will be looked for in. The save flow then sets
    // `adding`.
    void start(const library::Library& library, const library::FetchOptions& options);
    // Around the save: the flow awaits `wait()`; the library's change calls `complete()`.
    QCoro::Task<> wait();
    void complete();
    // On a change of the library, while adding: where the new item is in the album on view
    // (when a library album is on view), else in the two kept fetches, which then become the
    // fetches after the change that the indexes point into.
    void update(const library::Library& library, const library::FetchResult* currentAlbum);
    // The indexes and fetches, once used.
    void clearLanding();

    // The index in the fetch after the change of the first inserted item, if it is there.
    static std::optional<int> indexTest(const library::ChangeDetails& details);
};
