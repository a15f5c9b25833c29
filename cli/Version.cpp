#include "Version.h"

#include "MovieReader.h"

#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>

namespace cli {

QString versionText() {
    return QStringLiteral("tessorin-cli %1\nexiv2 %2\nlibheif %3\n%4\n")
        .arg(QStringLiteral(TESSORIN_VERSION), QString::fromStdString(Exiv2::versionString()),
             QString::fromLatin1(heif_get_version()), media::ffmpegVersions());
}

}  // namespace cli
