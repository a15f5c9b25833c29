// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The process-wide objects every browsing screen shares: the one current album, the notification
// hub, the library on view and the save of a new picture. What only the app's screens keep
// (window size, pending links, the cap of selected items) lives in the app.
#include <QString>
#include <memory>

class TSAlbum;
class TSMetaDataObservable;
class AddingPicture;
namespace library {
class Library;
}

namespace TSEnvironment {
// Never null: with no album set, one shared empty album.
std::shared_ptr<TSAlbum> currentAlbum();
void setCurrentAlbum(std::shared_ptr<TSAlbum> album);
TSMetaDataObservable& observable();
std::shared_ptr<TSMetaDataObservable> sharedObservable();
// The library the screens show, or null when there is none.
library::Library* library();
void setLibrary(library::Library* library);
AddingPicture& addingPicture();
// The cap of selected items for the memory size as the desktop writes it ("7.99 GB"): the whole
// number before the first punctuation, 12 a unit, at most 48.
int ramCheck(qint64 physicalMemory);
// The machine's memory in bytes.
qint64 physicalMemory();
}  // namespace TSEnvironment
