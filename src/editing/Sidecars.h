// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Saving a photo's changes in its XMP sidecar instead of in the photo, whose bytes then stay as
// they are: asked for, or because the photo can't take them (a raw format, a read-only file).
#include <QByteArray>
#include <QString>
#include <optional>

namespace Sidecars {

// Why the changes of the photo at `path` (its bytes `bytes`) go to its sidecar though the photo
// was asked for; nothing when the photo can take them.
std::optional<QString> whyNotInPhoto(const QString& path, const QByteArray& bytes);

// Whether a file can be written at `path`: its folder (and the file, when there is one) allows it.
// The mode bits count even for a user whom the system would let through, so that a folder made
// read-only is left alone by everyone.
bool writable(const QString& path);

}  // namespace Sidecars
