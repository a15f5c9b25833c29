// SPDX-License-Identifier: GPL-3.0-or-later
#include "Version.h"

#include "Credits.h"
#include "MovieReader.h"

#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>
#ifdef TESSORIN_MIMALLOC
#include <mimalloc.h>
#endif

namespace cli {

QString versionText() {
    return QStringLiteral("tessorin-cli %1\nexiv2 %2\nlibheif %3\n%4\n")
        .arg(QStringLiteral(TESSORIN_VERSION), QString::fromStdString(Exiv2::versionString()),
             QString::fromLatin1(heif_get_version()), media::ffmpegVersions());
}

QString creditsText() {
    QList<credits::Credit> own;
#ifdef TESSORIN_MIMALLOC
    // 209 is 2.0.9.
    const int v = mi_version();
    own.append({"mimalloc", QStringLiteral("%1.%2.%3").arg(v / 100).arg(v / 10 % 10).arg(v % 10), "MIT"});
#endif
    return credits::text(QStringLiteral("tessorin-cli " TESSORIN_VERSION), own);
}

}  // namespace cli
