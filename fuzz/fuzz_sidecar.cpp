// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the XMP sidecar reader, and what it accepts to the sidecar writer: the
// reader must answer or refuse (not XML, too deep, entities), never crash, hang or touch memory
// it does not own; a sidecar it accepts must be rewritten, and the rewritten one read back.
#include "PropertyKeys.h"
#include "Sidecar.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    const auto packet = imageio::parseXmpPacket(bytes, &error);
    if (!packet) return 0;
    imageio::PropertyDict read;
    imageio::laySidecarOver(*packet, QStringLiteral("fuzz.xmp"), read);
    // Only what the reader took is handed to exiv2's XMP toolkit, as the writer does.
    const imageio::PropertyDict changes{
        {kCGImagePropertyIPTCDictionary, QVariantMap{{kCGImagePropertyIPTCHeadline, QStringLiteral("Fuzzed")},
                                                     {kCGImagePropertyIPTCKeywords, QVariantList{QStringLiteral("a"), QStringLiteral("b")}}}},
        {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifDateTimeOriginal, QStringLiteral("2020:01:02 03:04:05")}}},
        {kCGImagePropertyGPSDictionary, QVariant::fromValue(nullptr)},
    };
    if (const auto written = imageio::rewriteSidecar(bytes, read, changes, QStringLiteral("JPG"), &error))
        if (!imageio::parseXmpPacket(*written, &error)) std::abort();
    return 0;
}
