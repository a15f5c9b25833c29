// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the movie reader (FFmpeg's demuxer and our own atom walker): it must
// answer or refuse, never crash, hang or touch memory it does not own.
#include "MovieReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QString error;
    if (auto movie = media::readMovie(bytes, &error)) {
        for (const media::MetadataItem& item : movie->metadata) {
            item.stringValue();
            item.dateValue();
            item.numberValue();
        }
        for (const media::Track& t : movie->tracks) media::presentationSize(t);
        movie->availableMetadataFormats();
    }
    return 0;
}
