// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the motion photo finder (Google's container directory, MicroVideo,
// Samsung's trailer directory, a HEIF's movie box) and, when it finds a movie, to the cut that
// makes the photo a still: a movie or a reason, never a crash, hang or read out of bounds.
#include "MotionPhoto.h"
#include "Rewritten.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    if (const auto motion = imageio::findMotionPhoto(bytes, &error)) {
        if (motion->offset < 0 || motion->length <= 0 || motion->offset + motion->length > bytes.size()) __builtin_trap();
        imageio::Rewritten still = imageio::Rewritten::from(bytes);
        imageio::keepWithoutMovie(still, bytes, 0, *motion);
        if (still.size() >= bytes.size()) __builtin_trap();
        (void)still.joined();
    }
    return 0;
}
