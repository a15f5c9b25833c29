// SPDX-License-Identifier: GPL-3.0-or-later
#include "AddingPicture.h"

#include "Log.h"

void AddingPicture::start(const library::Library& library, const library::FetchOptions& options) {
    clearLanding();
    allPhotosAlbum = library.fetchAssets(options);
    // The application's album may not exist yet: its folder is fetched all the same, and a
    // refetch after the save finds the new item in it.
    const auto album = library.album(library::Library::applicationAlbumTitle());
    const QString identifier = album ? album->identifier
                                     : QStringLiteral("folder:%1/%2").arg(library.folders().value(0), library::Library::applicationAlbumTitle());
    tessorinAlbum = library.fetchAssets(identifier, options);
}

QCoro::Task<> AddingPicture::wait() {
    Log::debug("🛰 >>>> semaphore.wait() <<<<");
    co_await addingSemaphore.wait();
    Log::debug("🛰 #### semaphore.wait() ####");
}

void AddingPicture::complete() {
    addingSemaphore.release(1);
    Log::debug("🛰 #### semaphore.signal() ####");
}

std::optional<int> AddingPicture::indexTest(const library::ChangeDetails& details) {
    if (details.insertedObjects.isEmpty()) return std::nullopt;
    const auto index = details.fetchResultAfterChanges.indexOf(details.insertedObjects.first().localIdentifier);
    return index ? std::optional<int>(int(*index)) : std::nullopt;
}

void AddingPicture::update(const library::Library& library, const library::FetchResult* currentAlbum) {
    if (!adding) return;
    actualIndex = currentAlbum ? indexTest(library.changeDetails(*currentAlbum)) : std::nullopt;
    if (actualIndex) return;
    const auto land = [&library](std::optional<library::FetchResult>& album, std::optional<int>& index) {
        if (!album) return;
        const library::ChangeDetails details = library.changeDetails(*album);
        index = indexTest(details);
        album = details.fetchResultAfterChanges;
    };
    land(allPhotosAlbum, allPhotosIndex);
    land(tessorinAlbum, tessorinIndex);
}

void AddingPicture::clearLanding() {
    allPhotosIndex.reset();
    actualIndex.reset();
    tessorinIndex.reset();
    allPhotosAlbum.reset();
    tessorinAlbum.reset();
}

AddingPicture& TSEnvironment::addingPicture() {
    static AddingPicture shared;
    return shared;
}
