// SPDX-License-Identifier: GPL-3.0-or-later
// `place` by position and by name, and the place names that `info` and `summary` show for the
// sample photos with GPS positions, checked against exiftool's reading of those positions.
#include "GeoLocation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QJsonObject>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

// Every test runs isolated: English names (the C locale) and empty settings, so no online
// service is configured and nothing here reaches the network.
class PlaceCommand : public ::testing::Test {
protected:
    static ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }
};

QStringList lines(const QByteArray& out) { return QString::fromUtf8(out).split(u'\n', Qt::SkipEmptyParts); }

}  // namespace

TEST_F(PlaceCommand, NamesThePlaceOfAPosition) {
    auto r = cli({"place", "41.8897", "12.4694"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(lines(r.out), (QStringList{"Trastevere, Rome, Italy (IT)", "Trastevere Rome, Lazio (IT)"}));

    r = cli({"place", "43°28'2\" N 11°53'6\" E"});  // any text that the location fields accept
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(lines(r.out).value(0), "Arezzo, Italy (IT)");

    r = cli({"place", "-33.8568", "151.2153"});
    EXPECT_EQ(lines(r.out).value(0), "Sydney, Australia (AU)");

    r = cli({"place", "30", "-40"});  // mid-Atlantic
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(lines(r.out), QStringList{"--"});

    EXPECT_EQ(cli({"place"}).exitCode, 2);
    EXPECT_EQ(cli({"place", "somewhere"}).exitCode, 2);
    EXPECT_EQ(cli({"place", "--search"}).exitCode, 2);
}

TEST_F(PlaceCommand, SearchPrintsTheBestMatchesWithCoordinates) {
    auto r = cli({"place", "--search", "rome"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QStringList found = lines(r.out);
    ASSERT_EQ(found.size(), 10);
    EXPECT_EQ(found.first(), "Rome, Lazio, Italy (IT)  41.89193 12.51133");
    EXPECT_TRUE(found.at(1).startsWith("Rome, Georgia, United States (US)  34."));
    r = cli({"place", "--search", "Zurich"});
    EXPECT_TRUE(lines(r.out).value(0).startsWith("Zürich, Zurich, Switzerland (CH)  47.3")) << r.out.toStdString();
    EXPECT_TRUE(cli({"place", "--search", "qqqxqqq"}).out.isEmpty());
}

TEST_F(PlaceCommand, InfoAndSummaryNameTheTownWhereExiftoolPutsThePhoto) {
    struct Photo {
        const char* file;
        const char* town;
        double latitude, longitude;  // the town's centre, within 6 km of the photo
    };
    const Photo photos[] = {
        {"jpeg/gps/DSCN0010.jpg", "Arezzo", 43.4628, 11.8807},
        {"jpeg/gps/DSCN0021.jpg", "Arezzo", 43.4628, 11.8807},
        {"jpeg/gps/DSCN0029.jpg", "Arezzo", 43.4628, 11.8807},
        {"heif/IMG_5195.HEIC", "Blue Springs", 39.0170, -94.2816},
        {"heif/Stonehenge.heic", "Amesbury", 51.1733, -1.7800},
        {"webp/exif.webp", "Amesbury", 51.1733, -1.7800},
        {"tiff/IMG_1361.dng", "Acworth", 34.0659, -84.6769},
        {"jpeg/iphone_hdr_YES.jpg", "Madrid", 40.4168, -3.7038},
        {"jpeg/edge/87_OSError.jpg", "Florence", 43.7696, 11.2558},
        {"portrait/image-with-matte.jpg", "Tokyo", 35.6895, 139.6917},
    };
    for (const Photo& p : photos) {
        SCOPED_TRACE(p.file);
        const QString path = corpusDir() + "/" + p.file;
        const QJsonObject tags = exiftoolJson(path, {"-n", "-GPSLatitude", "-GPSLongitude"}).toObject();
        ASSERT_TRUE(tags.contains("GPSLatitude"));
        const GeoLocation photo(tags["GPSLatitude"].toDouble(), tags["GPSLongitude"].toDouble());
        EXPECT_LT(photo.distance(GeoLocation(p.latitude, p.longitude)), 6000) << "exiftool puts it elsewhere";

        const auto info = cli({"info", path});
        ASSERT_EQ(info.exitCode, 0) << info.err.toStdString();
        const QStringList rows = lines(info.out).filter(QRegularExpression("^Location: "));
        ASSERT_EQ(rows.size(), 1) << info.out.toStdString();
        // The town, after the district where the data has one: "Chamberí, Madrid, Spain (ES)".
        const QRegularExpression named("^Location: ([^,]+, )?" + QRegularExpression::escape(p.town) + ", ");
        EXPECT_TRUE(named.match(rows.first()).hasMatch()) << rows.first().toStdString();

        const auto summary = cli({"summary", path});
        EXPECT_TRUE(summary.out.contains(QByteArray(p.town) + ", ")) << summary.out.toStdString();
    }
}
