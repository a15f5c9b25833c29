// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Metadata writing for HEIF and AVIF: the Exif and XMP items of the container are replaced, and
// every coded image item, auxiliary image and thumbnail is carried over byte for byte.
#include "ImageProperties.h"
#include "Rewritten.h"

#include <optional>

namespace imageio {

std::optional<Rewritten> rewriteHeif(const QByteArray& source, const PropertyDict& before,
                                     const PropertyDict& changes, QString* error);

}  // namespace imageio
