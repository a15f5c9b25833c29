// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSLibraryObserver.h"

#include "AddingPicture.h"
#include "Log.h"
#include "TSMetaDataObservable.h"
#include "TSPhotoAlbum.h"

TSLibraryObserver::TSLibraryObserver(library::Library* library, QObject* parent) : QObject(parent), library_(library) {
    if (library) connect(library, &library::Library::libraryDidChange, this, &TSLibraryObserver::photoLibraryDidChange);
}

void TSLibraryObserver::photoLibraryDidChange() {
    Log::debug(QStringLiteral("<< refresh TSLibraryObserver"));
    auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
    AddingPicture& adding = TSEnvironment::addingPicture();
    const library::FetchResult* fetch = album && album->fetchedAssets ? &*album->fetchedAssets : nullptr;
    std::optional<library::ChangeDetails> details;
    if (fetch && library_) details = library_->changeDetails(*fetch);
    // A save waiting for its new item learns where it landed, also when no library album is on view.
    if (library_) adding.update(*library_, fetch);
    if (details && !details->isEmpty()) {
        if (details->hasIncrementalChanges) {
            std::lock_guard lock(album->changes->semaphore);
            album->changes->incremental = *details;
        }
        auto* viewer = dynamic_cast<TSLibraryViewer*>(refreshableDelegate.data());
        if (viewer) viewer->libraryDidChange(*details);
        else updateAlbum(*details);
    }
    // The album on view jumped to the new item: nothing is left to offer.
    if (adding.actualIndex) adding.clearLanding();
    // Details or none, the change was told: a waiting save goes on.
    if (adding.adding) {
        adding.adding = false;
        adding.complete();
    }
    if (onChange) onChange(details);
}

void TSLibraryObserver::updateAlbum(const library::ChangeDetails& details) {
    auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
    if (!album) return;
    const auto& after = details.fetchResultAfterChanges;
    Log::debug(QStringLiteral("<< updateAlbum: %1").arg(after.count()));
    // A new picture saved from here is shown; otherwise the item on view keeps its place when
    // it is still there, and a deleted one leaves its neighbour (the one that took its index).
    int index = qMax(album->displayedIndex, 0);
    const library::FetchResult& before = details.fetchResultBeforeChanges;
    if (const auto added = TSEnvironment::addingPicture().actualIndex) index = *added;
    else if (index < before.count())
        if (auto kept = after.indexOf(before.objectAt(index).localIdentifier)) index = int(*kept);
    album->setAlbum(after, index, album->title());
    Log::debug(QStringLiteral("albumChanged"));
    TSEnvironment::observable().sendAlbumChanged();
    Log::debug(QStringLiteral(">> updateAlbum: %1").arg(after.count()));
}
