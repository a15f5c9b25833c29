// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Reads a written photo back with our own reader and compares it with what was wished, before
// the photo replaces anything: a writer that dropped or changed a value must not pass silently.
#include "ImageProperties.h"
#include "Rewritten.h"

#include <QByteArray>
#include <optional>

namespace WriteCheck {

// `before` is what the source read, `wished` the dictionary laid over it, `read` what the
// written file reads as. Only values that the wish changes in the EXIF, TIFF, GPS and IPTC
// groups are compared (IPTC from its records, or from XMP where the format keeps it there): a
// removed tag must be gone, a set one must read the same (numbers to the precision of their
// rationals, a list kept as one text as its items joined). Nothing when all agree; otherwise the
// first difference in words.
std::optional<QString> readBackDifference(const imageio::PropertyDict& before, const imageio::PropertyDict& wished,
                                          const imageio::Rewritten& written, const imageio::PropertyDict& read);

}  // namespace WriteCheck
