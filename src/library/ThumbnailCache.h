// SPDX-License-Identifier: GPL-3.0-or-later
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
// The same through the cache, made and stored when missing or stale, in the smallest of its sizes
// that holds it: "normal" (128), "large" (256), "x-large" (512), "xx-large" (1024). Larger ones
// (the full-screen view) are made afresh.
QImage forFile(const QString& path, int maxSide);
// Where the cache keeps a file's thumbnail of that size class; empty above the largest.
QString cachePath(const QString& path, int maxSide);

}  // namespace library::thumbnails
