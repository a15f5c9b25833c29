// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the thumbnail maker (embedded previews, scaled decoding through Qt's
// plugins and libheif, orientation): it must give a picture or none, never crash or hang.
#include "ImageDecoder.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const QImage image = imageio::thumbnail(bytes, 64);
    if (image.width() > 64 || image.height() > 64) __builtin_trap();
    return 0;
}
