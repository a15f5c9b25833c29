// SPDX-License-Identifier: GPL-3.0-or-later
// The credits against what the system reports: pkg-config for the versions the build links,
// ffmpeg's own licence notice, and the map's settings for OpenStreetMap's terms.
#include "Credits.h"
#include "Settings.h"
#include "TestSupport.h"
#include "TileSource.h"

#include <gtest/gtest.h>

#include <QHash>

using namespace testsupport;

namespace {

QString pkgVersion(const QString& module) {
    return QString::fromUtf8(run("pkg-config", {"--modversion", module}).out).trimmed();
}

bool creditsTiles() {
    for (const credits::Credit& c : credits::data())
        if (c.name == "Map tiles") return c.detail.startsWith("© OpenStreetMap contributors");
    return false;
}

}  // namespace

TEST(Credits, LibrariesAtTheVersionsInUseWithTheirLicences) {
    QHash<QString, credits::Credit> byName;
    for (const credits::Credit& c : credits::libraries()) byName.insert(c.name, c);
    EXPECT_EQ(byName["Qt"].detail, pkgVersion("Qt6Core"));
    EXPECT_EQ(byName["exiv2"].detail, pkgVersion("exiv2"));
    EXPECT_EQ(byName["libheif"].detail, pkgVersion("libheif"));
    EXPECT_EQ(byName["SQLite"].detail, pkgVersion("sqlite3"));
    EXPECT_EQ(byName["zlib"].detail, pkgVersion("zlib"));
    EXPECT_TRUE(byName["FFmpeg"].detail.contains("(libavformat " + pkgVersion("libavformat") + ")"))
        << byName["FFmpeg"].detail.toStdString();
    // Debian builds FFmpeg with the GPL parts: `ffmpeg -L` says "either version 2 of the
    // License, or (at your option) any later version" of the GNU General Public License.
    const QString notice = QString::fromUtf8(run("ffmpeg", {"-hide_banner", "-L"}).out).simplified();
    ASSERT_TRUE(notice.contains("GNU General Public License") && notice.contains("either version 2 of the License"));
    EXPECT_EQ(byName["FFmpeg"].licence, "GPL version 2 or later");
    for (const credits::Credit& c : credits::libraries()) {
        EXPECT_FALSE(c.detail.isEmpty()) << c.name.toStdString();
        EXPECT_FALSE(c.licence.isEmpty()) << c.name.toStdString();
    }
}

TEST(Credits, OpenStreetMapTermsOnlyWhileItsServersGiveTheTiles) {
    EXPECT_TRUE(creditsTiles()) << "the standard map's tiles come from OpenStreetMap by default";
    Settings::setValue(TileSource::standardTilesKey, "none");
    EXPECT_FALSE(creditsTiles());
    Settings::setValue(TileSource::standardTilesKey, "https://tiles.example.org/{z}/{x}/{y}.png");
    EXPECT_FALSE(creditsTiles());
    Settings::setValue(TileSource::standardTilesKey, "https://a.tile.openstreetmap.org/{z}/{x}/{y}.png");
    EXPECT_TRUE(creditsTiles());
}
