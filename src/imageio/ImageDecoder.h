// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Pixels of the primary image, for the roads that redraw a photo. HEIF and AVIF decode through
// libheif (Qt has no plugin for them here), everything else through Qt's image plugins.
#include <QByteArray>
#include <QImage>

namespace imageio {

// The stored pixels, with no EXIF orientation applied (HEIF and AVIF come turned by their own
// rotation and mirror properties, which libheif applies): a null image when the bytes can't be
// decoded.
QImage decodeImage(const QByteArray& bytes);

// An upright picture of the primary image whose larger side is at most maxSide, for lists and
// grids: an embedded thumbnail or preview when one is at least that big, otherwise the image
// decoded at a reduced size (JPEG scales in the DCT). Safe on any thread. A null image when the
// bytes can't be decoded or maxSide is below 1.
QImage thumbnail(const QByteArray& bytes, int maxSide);

// The image scaled down, keeping its aspect, until its larger side is at most maxSide.
QImage scaledToFit(const QImage& image, int maxSide);

// Stored pixels turned upright by an EXIF orientation (1 to 8; other values leave them).
QImage applyOrientation(const QImage& image, int orientation);

}  // namespace imageio
