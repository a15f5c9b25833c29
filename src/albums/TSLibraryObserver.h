// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Keeps the current album in step with the photo library: after every change of the library it
// compares the album's fetch with the same fetch made again. The group screen on view, as the
// observer's delegate, animates exactly what changed; without one the album takes the new fetch
// at once, so the detail never shows a stale one.
#include "Library.h"

#include <QObject>
#include <QPointer>
#include <functional>

class TSPhotoAlbum;

// The group screen's side: what to do with the details of a change.
class TSLibraryViewer {
public:
    virtual ~TSLibraryViewer() = default;
    virtual void libraryDidChange(const library::ChangeDetails& details) = 0;
};

class TSLibraryObserver : public QObject {
    Q_OBJECT
public:
    explicit TSLibraryObserver(library::Library* library, QObject* parent = nullptr);

    // Held weakly; must also be a TSLibraryViewer.
    QPointer<QObject> refreshableDelegate;
    // Runs after each change with the details for the current album (or nothing when the current
    // album is no library album). A save waiting for its new item (AddingPicture) is told
    // before, by the observer itself.
    std::function<void(const std::optional<library::ChangeDetails>&)> onChange;

    // The library changed: the current album's details go to the delegate or into the album.
    void photoLibraryDidChange();
    // The album takes the fetch after the changes, staying on its item when it is still there.
    static void updateAlbum(const library::ChangeDetails& details);

private:
    QPointer<library::Library> library_;
};
