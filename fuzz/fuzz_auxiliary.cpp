// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the auxiliary image finder (MPF index, XMP roles, libheif's auxiliary
// items) and both routes that turn a found image into BMP or grey JPEG: an image or none, never
// a crash, hang or read out of bounds.
#include "TSResourceAuxiliary.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    TSResourceAuxiliary auxiliary(bytes);
    for (AuxiliaryImageType type : allAuxiliaryImageTypes) auxiliary.auxiliaryData(type);
    return 0;
}
