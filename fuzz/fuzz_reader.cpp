// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the image metadata reader: it must answer or refuse, never crash,
// hang or touch memory it does not own.
#include "ImageProperties.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    imageio::readProperties(bytes, &error);
    return 0;
}
