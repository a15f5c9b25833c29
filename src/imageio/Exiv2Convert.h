// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns what exiv2 decoded into property dictionaries with the platform's key names and value
// conventions: rationals as doubles, GPS degrees unsigned beside their references, version tags
// as arrays of numbers, dates as text "yyyy:MM:dd HH:mm:ss", IPTC repeatables as arrays.
#include "ImageProperties.h"
#include "XmpPacket.h"

#include <exiv2/exif.hpp>
#include <exiv2/iptc.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <QHash>
#include <mutex>
#include <vector>

namespace imageio {

// Quiets exiv2's log and readies its XMP parser; call before any exiv2 work.
void initExiv2();
// exiv2's XMP namespace registry grows as packets name new namespaces and is read unguarded:
// whatever decodes, encodes or looks up XMP holds this, so threads take turns at it.
std::mutex& xmpMutex();

// The tables between tag numbers and property keys, read one way by the reader and the other
// way by the writer.
const QHash<uint16_t, const char*>& exifTagKeys();     // {Exif}, IFD "Photo"
const QHash<uint16_t, const char*>& tiffTagKeys();     // {TIFF}, IFD "Image"
const QHash<uint16_t, const char*>& gpsTagKeys();      // {GPS}
const QHash<uint16_t, const char*>& iptcDatasetKeys(); // {IPTC}, IIM record 2 dataset numbers
// IPTC fields that hold a list (repeated IIM datasets, XMP bags and sequences).
bool isRepeatableIptc(const QString& key);

// XMP homes of {IPTC} fields and of the creator contact fields.
struct XmpField { const char* xmpKey; const char* key; bool array; };
const std::vector<XmpField>& xmpIptcFields();
const std::vector<XmpField>& xmpContactFields();
// XMP fields that stand in for EXIF, TIFF and aux tags the binary blocks lack.
struct XmpFill {
    enum Kind { Text, Number, Date, Numbers };
    const char* xmpKey;
    const char* dict;
    const char* key;
    Kind kind;
};
const std::vector<XmpFill>& xmpFills();

// Adds {Exif}, {TIFF}, {GPS}, {ExifAux}, the maker groups and the top-level Orientation.
void addExif(const Exiv2::ExifData& exif, PropertyDict& top);
// Adds IPTC IIM records to {IPTC}.
void addIptc(const Exiv2::IptcData& iptc, PropertyDict& top);
// Merges XMP: IPTC Core and Extension fields into {IPTC} where IIM has none, and the
// EXIF/TIFF/aux fields that the binary blocks lack.
void addXmp(const XmpPacket& xmp, PropertyDict& top);

// Text from bytes that may be UTF-8 or, in older files, Latin-1.
QString decodeText(const std::string& bytes);

}  // namespace imageio
