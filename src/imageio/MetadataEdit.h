// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Applies a property dictionary to exiv2's three metadata blocks: the reverse of Exiv2Convert.
// Shared by the exiv2 road and the HEIF rewriter, which differ only in how the blocks reach the
// file.
#include "ImageProperties.h"

#include <exiv2/exif.hpp>
#include <exiv2/iptc.hpp>
#include <exiv2/xmp_exiv2.hpp>

namespace imageio {

struct MetadataBlocks {
    Exiv2::ExifData& exif;
    Exiv2::IptcData& iptc;
    Exiv2::XmpData& xmp;
    bool writeIim = false;           // IPTC fields also go to IIM records, not only to XMP
    bool keepImageStructure = false; // TIFF files: tags that describe the pixels are never touched
};

// Whether `changes` make a motion photo a still: {MotionPhoto} removed, whole or field by field.
bool removesMotionPhoto(const PropertyDict& changes);

// `before` is what the reader made of the source; values equal to it are left as they are.
// Throws what exiv2 throws for a value it refuses.
void applyChanges(const PropertyDict& before, const PropertyDict& changes, MetadataBlocks blocks);

}  // namespace imageio
