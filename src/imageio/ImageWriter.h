// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The image metadata writer: the source's bytes and a property dictionary in, new bytes in the
// source's own format out, with the coded image copied as it is and only the metadata replaced.
#include "ImageProperties.h"
#include "Rewritten.h"

#include <optional>

namespace imageio {

// Whether new metadata can be written into files of this format.
bool canWrite(Format format);

// Merges `changes` over the source's metadata. A null value (QVariant::fromValue(nullptr))
// deletes its tag, a null group deletes the whole group; a missing key keeps the file's value,
// and so does a value equal to the one the file already reads. IPTC fields go to the IPTC block
// and to XMP in a JPEG or TIFF, to XMP elsewhere. Keys that are facts of the image (sizes, depth, colour
// profile) are not metadata and are left alone.
// Nothing, with the reason in `error`, when the format can't be written or the bytes are broken.
std::optional<QByteArray> writeProperties(const QByteArray& source, const PropertyDict& changes,
                                          QString* error = nullptr);
// The same for a caller that has read the source already (`before` is what readProperties gave),
// as pieces: the new metadata, and the ranges of `source` that stay as they are. `readBack`, when
// given, receives what the new file reads as.
std::optional<Rewritten> rewriteProperties(const QByteArray& source, const PropertyDict& before,
                                           const PropertyDict& changes, QString* error = nullptr,
                                           PropertyDict* readBack = nullptr);

}  // namespace imageio
