#include "TSLibraryObserver.h"

#include "Log.h"
#include "TSMetaDataObservable.h"
#include "TSPhotoAlbum.h"

TSLibraryObserver::TSLibraryObserver(library::Library* library, QObject* parent) : QObject(parent), library_(library) {
    if (library) connect(library, &library::Library::libraryDidChange, this, &TSLibraryObserver::photoLibraryDidChange);
}

void TSLibraryObserver::photoLibraryDidChange() {
    Log::debug(QStringLiteral("<< refresh TSLibraryObserver"));
    auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
    std::optional<library::ChangeDetails> details;
    if (album && album->fetchedAssets && library_) details = library_->changeDetails(*album->fetchedAssets);
    if (details && !details->isEmpty()) {
        if (details->hasIncrementalChanges) {
            std::lock_guard lock(album->changes->semaphore);
            album->changes->incremental = *details;
        }
        auto* viewer = dynamic_cast<TSLibraryViewer*>(refreshableDelegate.data());
        if (viewer) viewer->libraryDidChange(*details);
        else updateAlbum(*details);
    }
    if (onChange) onChange(details);
}

void TSLibraryObserver::updateAlbum(const library::ChangeDetails& details) {
    auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
    if (!album) return;
    const auto& after = details.fetchResultAfterChanges;
    Log::debug(QStringLiteral("<< updateAlbum: %1").arg(after.count()));
    // The item on view keeps its place when it is still there; a deleted one leaves its
    // neighbour (the one that took its index) on view.
    int index = qMax(album->displayedIndex, 0);
    const library::FetchResult& before = details.fetchResultBeforeChanges;
    if (index < before.count())
        if (auto kept = after.indexOf(before.objectAt(index).localIdentifier)) index = int(*kept);
    album->setAlbum(after, index, album->title());
    Log::debug(QStringLiteral("albumChanged"));
    TSEnvironment::observable().sendAlbumChanged();
    Log::debug(QStringLiteral(">> updateAlbum: %1").arg(after.count()));
}
