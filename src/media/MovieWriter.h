// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The movie writer, in place of the platform's export session: a lossless rewrite of a
// QuickTime or MP4 file's movie-level metadata. Every track (chapter and timed-metadata tracks
// too), every sample byte and every matrix stay as they were; only the metadata atoms are
// rebuilt from a list of items, and the chunk offsets follow when the movie header changes size.
#include "MetadataItem.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace media {

struct MetadataRewrite {
    // Every movie-level item of the new movie, in order. Items read from the file are written
    // back as they were stored; new items as their data type, locale and stored bytes say.
    QList<MetadataItem> items;
    // False also drops movie-level metadata that no item stands for (XMP, makers' atoms in the
    // user data, a top-level XMP box), keeping only what playback uses (chapter lists, hints).
    bool keepOtherMetadata = true;
};

// The new movie's bytes; nothing, with the reason in `error`, when the source is no movie that
// can be rewritten safely (damaged atoms, chunk offsets outside the media data, ...).
std::optional<QByteArray> rewriteMovie(const QByteArray& source, const MetadataRewrite& rewrite,
                                       QString* error = nullptr);

// The same from file to file, streaming the media data. The new file appears under
// `destination` only when it is complete (a temporary file in the same folder, then a rename
// that never replaces an existing file); on any failure no file is left and the source is
// untouched.
bool writeMovie(const QString& source, const QString& destination, const MetadataRewrite& rewrite,
                QString* error = nullptr);

}  // namespace media
