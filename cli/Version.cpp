#include "Version.h"

#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>
extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
}

namespace cli {

QString versionText() {
    return QStringLiteral("tessorin-cli %1\nexiv2 %2\nlibheif %3\nFFmpeg %4 (libavformat %5.%6.%7)\n")
        .arg(QStringLiteral(TESSORIN_VERSION), QString::fromStdString(Exiv2::versionString()),
             QString::fromLatin1(heif_get_version()), QString::fromLatin1(av_version_info()))
        .arg(AV_VERSION_MAJOR(avformat_version()))
        .arg(AV_VERSION_MINOR(avformat_version()))
        .arg(AV_VERSION_MICRO(avformat_version()));
}

}  // namespace cli
