#pragma once
// Thumbnails of library items in the freedesktop thumbnail cache (~/.cache/thumbnails), shared
// with file managers: a PNG named by the MD5 of the file's URI, valid while its Thumb::MTime
// matches the file's. Safe on any thread; made off the GUI thread by its callers.
#include <QImage>
#include <QString>

namespace library::thumbnails {

// An upright picture of a photo or a movie whose larger side is at most maxSide, made afresh: a
// photo's thumbnail turned by its orientation or HEIF transforms, a movie's first frame turned as
// its track is. Every list, grid, strip, picker and the full-screen view draw what this makes.
// A null image when the file can't be decoded.
QImage picture(const QString& path, int maxSide);
// The same through the cache, made and stored when missing or stale: "normal" (128) for sizes up
// to 128 pixels, "large" (256) up to 256. Larger ones (the strip, the full-screen view) are made
// afresh, since the cache has no size for them.
QImage forFile(const QString& path, int maxSide);
// Where the cache keeps a file's thumbnail of that size class.
QString cachePath(const QString& path, int maxSide);

}  // namespace library::thumbnails
