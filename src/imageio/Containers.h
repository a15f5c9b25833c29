// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the container itself says about the primary image: size, depth, colour model, alpha,
// resolution, and the JFIF and PNG groups. These are read from headers and chunk lists only:
// exiv2 does not expose them, and decoding pixels to learn them would be far too slow.
#include "ImageProperties.h"

#include <optional>
#include <string>

namespace imageio {

struct ImageFacts {
    std::optional<int> width, height, depth;
    std::optional<bool> hasAlpha;
    QString colorModel;
    std::optional<double> dpiX, dpiY;
    PropertyDict jfif;  // {JFIF}
    PropertyDict png;   // {PNG}
    QByteArray icc;     // embedded colour profile, when the container carries it in a way we read
    qsizetype headersEnd = -1;  // JPEG: where the segments before the scan end
};

ImageFacts probeJpeg(const QByteArray& bytes);
// A JPEG's XMP packet and its other segments apart. exiv2 decodes the first XMP segment and skips
// any later one; that decoding must take turns (see xmpMutex), the rest of the reading and writing
// need not, so the XMP segments are taken out of what exiv2 sees and their packet is handled on
// its own. No packet, and `withoutXmp` the whole input, when there is no XMP segment or the
// segments can't be walked (fill bytes, markers without a length).
struct JpegXmp {
    QByteArray withoutXmp;
    std::optional<std::string> packet;
};
JpegXmp takeOutXmp(const QByteArray& jpeg, qsizetype headersEnd);
// The signature that starts a JPEG's XMP segment.
inline constexpr char kJpegXmpId[] = "http://ns.adobe.com/xap/1.0/";

// Where a JPEG's scan starts, after its start-of-scan header; -1 when `jpeg` holds no whole
// start-of-scan header.
qsizetype jpegScanStart(const QByteArray& jpeg);
ImageFacts probePng(const QByteArray& bytes);
ImageFacts probeWebP(const QByteArray& bytes);

// The description text of an ICC profile ('desc' of type 'desc' or 'mluc'), or empty.
QString iccDescription(const QByteArray& icc);

// The facts as top-level properties and the {JFIF} and {PNG} groups.
void setFacts(const ImageFacts& facts, PropertyDict& top);
// Resolution from the TIFF fields, where the container had none of its own.
void addTiffResolution(PropertyDict& top);
// The profile's name, when the profile has one.
void addProfile(const QByteArray& icc, PropertyDict& top);

}  // namespace imageio
