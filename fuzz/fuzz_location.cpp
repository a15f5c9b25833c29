// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary text to the three coordinate parsers: each must answer or refuse, never
// crash or spin.
#include "HRLocation.h"
#include "Log.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool quiet = [] {
        Log::setLevel(0);  // the parsers log every token at debug level
        return true;
    }();
    (void)quiet;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    hrl::degreesLocation(text);
    hrl::decimalLocation(text);
    hrl::iso6709Location(text);
    return 0;
}
