// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One save of photos from their wishes to their files, the same for the edit screen and
// `tessorin-cli edit`: each photo's tags taken into a modifier, the wishes and then the per-photo
// wishes applied, the bytes rewritten and read back against the wishes, and the result handed on
// to files, the library, or the photos' XMP sidecars. Runs on the calling thread.
#include "BatchEdit.h"
#include "ExifModifier.h"

#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

class TSAsset;

struct PhotoSave {
    SaveMode mode = SaveMode::files;
    // The files road's folder; the system's temporary folder when empty.
    QString filesDirectory;
    // For the library roads.
    library::Library* library = nullptr;
    bool render = false;
    // See ExifModifier::keepOriginals.
    bool keepOriginals = false;
    BatchWishes batch;
    // A still cut from a motion photo with nothing else wished: the tags a save sets on its way
    // (the software, the date that follows the capture date, a blank comment dropped) stay as the
    // file has them, so the edit model's wishes are not applied at all.
    bool motionCutOnly = false;
    // What a per-photo wish could not do to a photo, one line each; called on the saving thread.
    std::function<void(const QString& path, const QString& problem)> problem;
    // Photos done so far, those kept in sidecars first, after each; called on the saving thread.
    std::function<void(int done)> progress;

    struct Result {
        bool nothingChanged = false;
        std::optional<QString> failure;
        // The written files' URLs, or the library items' identifiers.
        QStringList written;
        // The sidecars written, in the order of their photos.
        QStringList sidecars;
        // "{Group}.Tag" of what changed in each photo: those kept in sidecars, then the others.
        QList<QStringList> changes;
    };

    // `inPhotos` are rewritten and handed on by `mode`; `inSidecars` keep their changes in their
    // XMP sidecars, their bytes untouched, and are saved first: a failure there saves nothing else.
    // Each list takes its own copy of `wishes`.
    Result run(const UserSettings& wishes, const QList<std::shared_ptr<TSAsset>>& inPhotos,
               const QList<std::shared_ptr<TSAsset>>& inSidecars = {}) const;
};
