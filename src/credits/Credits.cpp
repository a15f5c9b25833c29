// SPDX-License-Identifier: GPL-3.0-or-later
#include "Credits.h"

#include "MovieReader.h"
#include "TileSource.h"

#include <QtGlobal>
#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>
#include <sqlite3.h>
#include <zlib.h>

namespace credits {

QList<Credit> libraries() {
    QString ffmpeg = media::ffmpegVersions();
    if (ffmpeg.startsWith(QLatin1String("FFmpeg "))) ffmpeg = ffmpeg.mid(7);
    QList<Credit> out{
        {"Qt", QString::fromLatin1(qVersion()), "LGPL-3.0-only"},
        {"exiv2", QString::fromStdString(Exiv2::versionString()), "GPL-2.0-or-later"},
        {"libheif", QString::fromLatin1(heif_get_version()), "LGPL-3.0-or-later"},
        {"FFmpeg", ffmpeg, media::ffmpegLicence()},
        {"SQLite", QString::fromLatin1(sqlite3_libversion()), "public domain"},
        {"zlib", QString::fromLatin1(zlibVersion()), "Zlib"},
        // Header-only or without a version call: the version built against.
        {"QCoro", QStringLiteral(TESSORIN_QCORO_VERSION), "MIT"},
    };
#ifdef TESSORIN_SYSTEMD_VERSION
    out.append({"libsystemd", QStringLiteral(TESSORIN_SYSTEMD_VERSION), "LGPL-2.1-or-later"});
#endif
    return out;
}

QList<Credit> data() {
    QList<Credit> out{
        {"Place names", "GeoNames (geonames.org)", "CC BY 4.0"},
        {"Country names and their translations", "iso-codes (Debian)", "LGPL-2.1-or-later"},
        {"Currencies and continents", "Unicode CLDR (unicode.org)", "Unicode License"},
        {"World map", "Natural Earth (naturalearthdata.com)", "public domain"},
        {"Digital source types", "IPTC NewsCodes (iptc.org), IPTC", "CC BY 4.0"},
    };
    if (!TileSource::attribution(TileSource::standardTemplate()).isEmpty())
        out.append({"Map tiles",
                    "© OpenStreetMap contributors (openstreetmap.org/copyright), used under the "
                    "OpenStreetMap Foundation's tile usage policy (operations.osmfoundation.org/policies/tiles)",
                    "map data ODbL 1.0"});
    return out;
}

QString libraryLine(const Credit& c) { return c.name + ' ' + c.detail + ", " + c.licence; }

QString dataLine(const Credit& c) { return c.name + ": " + c.detail + ", " + c.licence; }

QString text(const QString& program, const QList<Credit>& moreLibraries) {
    QString out = program + ", " + programLicence + "\n\nLibraries:\n";
    for (const Credit& c : libraries() + moreLibraries) out += "  " + libraryLine(c) + '\n';
    out += "\nData:\n";
    for (const Credit& c : data()) out += "  " + dataLine(c) + '\n';
    return out;
}

}  // namespace credits
