#pragma once
// Turns what exiv2 decoded into property dictionaries with the platform's key names and value
// conventions: rationals as doubles, GPS degrees unsigned beside their references, version tags
// as arrays of numbers, dates as text "yyyy:MM:dd HH:mm:ss", IPTC repeatables as arrays.
#include "ImageProperties.h"

#include <exiv2/exif.hpp>
#include <exiv2/iptc.hpp>
#include <exiv2/xmp_exiv2.hpp>

namespace imageio {

// Adds {Exif}, {TIFF}, {GPS}, {ExifAux}, the maker groups and the top-level Orientation.
void addExif(const Exiv2::ExifData& exif, PropertyDict& top);
// Adds IPTC IIM records to {IPTC}.
void addIptc(const Exiv2::IptcData& iptc, PropertyDict& top);
// Merges XMP: IPTC Core and Extension fields into {IPTC} where IIM has none, and the
// EXIF/TIFF/aux fields that the binary blocks lack.
void addXmp(const Exiv2::XmpData& xmp, PropertyDict& top);

// Text from bytes that may be UTF-8 or, in older files, Latin-1.
QString decodeText(const std::string& bytes);

}  // namespace imageio
