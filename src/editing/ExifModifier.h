// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Runs a save of photos: turns the wishes into per-photo changes, rewrites each photo's bytes and
// hands them on by the chosen mode. Here the road that ends in files; the road into the photo
// library comes with the library.
#include "ImageModifier.h"
#include "UserSettings.h"

#include <QStringList>
#include <functional>

namespace library {
class Library;
}

// How a save ends: new library item, modified in place, or files.
enum class SaveMode { newItem = 0, modify = 1, files = 2 };

class ExifModifier {
public:
    QList<ModifyingPhotoAsset> modifing;
    // Where the files road writes; the system's temporary folder unless set.
    QString filesDirectory;
    // Where the library roads save; without one they answer "Image is not editable".
    library::Library* library = nullptr;
    // Draws the pixels anew, upright with the orientation wish applied, as JPEG (`edit --render`).
    // Otherwise, in every mode, the coded image is copied and only the metadata change.
    bool render = false;
    // The files road into the photos' own folders: each photo's file is first copied to
    // NAME_original.EXT beside it, on the disk before anything replaces it, and that copy goes
    // again when the write fails.
    bool keepOriginals = false;

    // Per-photo wishes run after the shared ones and before each photo's tags are committed:
    // those that start from each photo's own values (a date shift, a track log).
    std::function<void(ModifyingPhotoAsset&)> eachPhoto;
    // Told the number of photos rewritten so far, after each one; called on the saving thread.
    std::function<void(int done)> progress;

    explicit ExifModifier(QList<ModifyingPhotoAsset> modifing);

    // Applies the wishes to every photo.
    void modify(UserSettings& settings);
    // Whether any photo has something to save.
    bool anyChanged() const;

    // The completion gets the written files' URLs (the library items' identifiers for the
    // library roads), or a message.
    using Completion = std::function<void(const QStringList& urls, const std::optional<QString>& message)>;
    // Every photo is rewritten before any is handed on: one failure saves none of them.
    void save(SaveMode mode, const Completion& onCompletition);

    // The stages of a save. Rewrites the bytes of every photo and reads each back to compare it
    // with the wishes; throws TSError on a failure or a difference.
    QList<ModifyingPhotoAsset> rewrite();
    // The files road: each photo's bytes under its own name in `filesDirectory`, through a
    // temporary file and a rename. A message on the first failure; files written before stay.
    std::optional<QString> dataToTempFile(const QList<ModifyingPhotoAsset>& assets, QStringList& urls) const;
    // The sidecar road: each photo's changes in its XMP sidecar (the one it has, else a new
    // NAME.EXT.xmp, or NAME.xmp with `baseName`), the photo's bytes untouched. Each sidecar is
    // read back and compared with the wishes before it replaces anything. `sidecars` gets the
    // paths written; a message on the first failure, and the sidecars written before stay.
    std::optional<QString> saveToSidecars(bool baseName, QStringList& sidecars);
    // The library roads: each photo as a new item in the application's album, or as an edit of
    // the library item it was read from. A message on the first failure.
    std::optional<QString> saveNewImages(const QList<ModifyingPhotoAsset>& assets, QStringList& identifiers) const;
    std::optional<QString> modifyImages(const QList<ModifyingPhotoAsset>& assets, QStringList& identifiers) const;
};
