#include "ImageProperties.h"

namespace imageio {

Format detectFormat(const QByteArray&) { return Format::Unknown; }
QString formatName(Format) { return {}; }
std::optional<PropertyDict> readProperties(const QByteArray&, QString*) { return std::nullopt; }

}  // namespace imageio
