// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Thumbnails of library items in the freedesktop thumbnail cache (~/.cache/thumbnails), shared
// with file managers: a PNG named by the MD5 of the file's URI, valid while its Thumb::MTime
// matches the file's. Safe on any thread; made off the GUI thread by its callers.
#include <QImage>
#include <QString>

namespace library::thumbnails {

// The cached thumbnail for a file, made and stored when missing or stale: "normal" (128) for
// sizes up to 128 pixels, "large" (256) above. A null image when the file can't be decoded.
QImage forFile(const QString& path, int maxSide);
// Where the cache keeps a file's thumbnail of that size class.
QString cachePath(const QString& path, int maxSide);

}  // namespace library::thumbnails
