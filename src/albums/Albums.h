// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the album list shows of the photo library: the all-photos fetch, the user albums, the
// smart albums and the album kinds this library never makes (events, synced, faces, imported,
// shared), in that order, under the user's fetch options.
#include "Library.h"
#include "TSEnvironment.h"

#include <QString>

struct TSCollection {
    enum class Kind { assetsFetched, collectionsFetched, assetsCollectionsFetched };
    Kind kind = Kind::assetsFetched;
    QString title;
    library::FetchResult assets;  // assetsFetched
    QList<library::Collection> collections;  // the other two kinds
};

namespace Albums {

// Sorted by creation date, newest first with "mostRecentFirst"; images only with "video" off.
library::FetchOptions fetchOptions();
// The smart albums with the user's own ones, the hidden and the special ones left out, and the
// video ones too when "video" is off. Smart albums that hold nothing are left out by the library.
QList<library::Collection> smartList(const library::Library& library);
QList<TSCollection> collections(const library::Library& library);
// "All Photos" with full access, "Selected Photos" with a limited one.
QString allPhotosTitle(bool fullAccess);
// The symbol of a smart album's subtype; empty for one that has none.
QString symbol(int smartSubtype);

}  // namespace Albums
