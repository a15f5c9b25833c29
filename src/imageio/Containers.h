#pragma once
// What the container itself says about the primary image: size, depth, colour model, alpha,
// resolution, and the JFIF and PNG groups. These are read from headers and chunk lists only:
// exiv2 does not expose them, and decoding pixels to learn them would be far too slow.
#include "ImageProperties.h"

#include <optional>

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
// Where a JPEG's scan starts, after its start-of-scan header; -1 when `jpeg` holds no whole
// start-of-scan header.
qsizetype jpegScanStart(const QByteArray& jpeg);
ImageFacts probePng(const QByteArray& bytes);
ImageFacts probeWebP(const QByteArray& bytes);

// The description text of an ICC profile ('desc' of type 'desc' or 'mluc'), or empty.
QString iccDescription(const QByteArray& icc);

}  // namespace imageio
