// SPDX-License-Identifier: GPL-3.0-or-later
// `edit` with the per-photo options: what they parse, what they report, and that the written
// files read back through exiftool as wished.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonObject>

using namespace testsupport;

namespace {

// Isolated, with TZ=UTC: the tool and exiftool read camera clocks without a zone alike.
class BatchCommand : public IsolatedTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(isolation().root()).mkpath("work/out"));
        dir_ = QDir(isolation().root() + "/work");
    }
    QString copy(const QString& name, const QStringList& exiftoolArgs) {
        const QString path = dir_.filePath(name);
        EXPECT_TRUE(QFile::copy(corpusDir() + "/jpeg/Canon_40D.jpg", path));
        EXPECT_EQ(run("exiftool", QStringList{"-q", "-overwrite_original"} + exiftoolArgs + QStringList{path}).exitCode, 0);
        return path;
    }
    ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), QStringList{"edit"} + args); }
    QDir dir_;
};

}  // namespace

TEST_F(BatchCommand, ShiftGeotagAndStripFromTheCommandLine) {
    const QString a = copy("a.jpg", {"-DateTimeOriginal=2024:02:28 23:30:00", "-ExifIFD:SerialNumber=42"});
    const QString b = copy("b.jpg", {"-DateTimeOriginal=2024:03:05 10:00:00"});
    QFile gpx(dir_.filePath("t.gpx"));
    ASSERT_TRUE(gpx.open(QIODevice::WriteOnly));
    gpx.write(R"(<gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>
        <trkpt lat="41.9" lon="12.5"><time>2024-02-29T00:00:00Z</time></trkpt>
        <trkpt lat="41.91" lon="12.5"><time>2024-02-29T00:04:00Z</time></trkpt></trkseg></trk></gpx>)");
    gpx.close();

    // The shift comes first, so the track log sees the corrected clock: 23:30 + 0:32 = 00:02.
    const auto r = cli({"--shift", "+0:32", "--geotag", gpx.fileName(), "--max-gap", "5m", "--strip", "private", a, b,
                        "-o", dir_.filePath("out")});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.contains("b.jpg: no place set: outside the track log")) << r.out.toStdString();
    const QJsonObject t = exiftoolJson(dir_.filePath("out/a.jpg"), {"-n", "-G1"}).toObject();
    EXPECT_EQ(t["ExifIFD:DateTimeOriginal"].toString(), "2024:02:29 00:02:00");
    // The private strip runs after geotagging and takes the new place with it.
    EXPECT_FALSE(t.contains("GPS:GPSLatitude"));
    EXPECT_FALSE(t.contains("ExifIFD:SerialNumber"));
    EXPECT_EQ(exiftoolJson(dir_.filePath("out/b.jpg"), {"-n", "-G1"}).toObject()["ExifIFD:DateTimeOriginal"].toString(),
              "2024:03:05 10:32:00");

    QDir(dir_.filePath("out")).removeRecursively();
    dir_.mkpath("out");
    const auto g = cli({"--geotag", gpx.fileName(), "--geotag-offset", "+0:32", a, "-o", dir_.filePath("out")});
    EXPECT_EQ(g.exitCode, 0) << g.err.toStdString();
    EXPECT_NEAR(exiftoolJson(dir_.filePath("out/a.jpg"), {"-n", "-G1"}).toObject()["GPS:GPSLatitude"].toDouble(), 41.905,
                1e-5);

    // Bad values are usage errors; nothing is written.
    for (const QStringList& bad : {QStringList{"--shift", "soon"}, {"--zone", "Nowhere/Land"}, {"--keep-instant"},
                                   {"--max-gap", "-5m"}, {"--strip", "all"}, {"--geotag", dir_.filePath("none.gpx")}})
        EXPECT_EQ(cli(bad + QStringList{a, "-o", dir_.filePath("out")}).exitCode, 2) << bad.join(' ').toStdString();
}
