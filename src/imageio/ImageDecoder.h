#pragma once
// Pixels of the primary image, for the roads that redraw a photo. HEIF and AVIF decode through
// libheif (Qt has no plugin for them here), everything else through Qt's image plugins.
#include <QByteArray>
#include <QImage>

namespace imageio {

// The stored pixels, with no orientation applied: a null image when the bytes can't be decoded.
QImage decodeImage(const QByteArray& bytes);

}  // namespace imageio
