// SPDX-License-Identifier: GPL-3.0-or-later
// Per-photo wishes on real files: date shifts, time zones, places from track logs written here,
// the lossless privacy strip and the read-back check, with exiftool as the independent reader.
#include "BatchEdit.h"
#include "DateShift.h"
#include "ExifModifier.h"
#include "ImageDecoder.h"
#include "PropertyKeys.h"
#include "TSError.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonObject>

#include <cmath>
#include <functional>

using namespace testsupport;

namespace {

// Isolated: settings, folders, locale and TZ=UTC, in which camera clocks without a zone are read
// by us and by exiftool alike.
class BatchEdit : public IsolatedTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(isolation().root()).mkpath("work/out"));
        dir_ = QDir(isolation().root() + "/work");
    }

    // A copy of a sample with tags set by exiftool, so that inputs don't come from our writer.
    QString sample(const QString& name, const QString& corpusFile, const QStringList& exiftoolArgs = {}) {
        const QString path = dir_.filePath(name);
        EXPECT_TRUE(QFile::copy(corpusDir() + "/" + corpusFile, path));
        if (!exiftoolArgs.isEmpty()) {
            const auto r = run("exiftool", QStringList{"-q", "-overwrite_original"} + exiftoolArgs + QStringList{path});
            EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        }
        return path;
    }

    // Saves one photo with the wishes through the save pipeline into out/. The written path, or
    // empty with the reason in `failure`.
    QString edit(const QString& path, const BatchWishes& wishes, QStringList* problems = nullptr,
                 QString* failure = nullptr) {
        auto asset = std::make_shared<TSAsset>(path);
        ModifyingPhotoAsset photo{asset, std::make_shared<TagsPhotoModifier>(asset->metaData()), asset->imageData(), 1};
        UserSettings settings(asset->metaData(), asset->ddStore());
        ExifModifier modifier({photo});
        modifier.filesDirectory = dir_.filePath("out");
        modifier.eachPhoto = [&](ModifyingPhotoAsset& p) {
            const QStringList found = applyBatch(*p.tags, wishes);
            if (problems) *problems << found;
        };
        modifier.modify(settings);
        if (!modifier.anyChanged()) return {};
        try {
            QStringList urls;
            if (auto f = modifier.dataToTempFile(modifier.rewrite(), urls)) {
                if (failure) *failure = *f;
                return {};
            }
            return QUrl(urls.value(0)).toLocalFile();
        } catch (const TSError& e) {
            if (failure) *failure = e.message();
            return {};
        }
    }

    static QJsonObject tags(const QString& path) { return exiftoolJson(path, {"-n", "-G1", "-a"}).toObject(); }

    QString write(const QString& name, const QByteArray& text) {
        QFile f(dir_.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
        return f.fileName();
    }

    QDir dir_;  // the test's files, apart from the isolated HOME and XDG folders
};

BatchWishes with(const std::function<void(BatchWishes&)>& set) {
    BatchWishes w;
    set(w);
    return w;
}

// The bytes of a JPEG from its first scan on: the coded image.
QByteArray codedImage(const QByteArray& jpeg) {
    qsizetype at = 2;
    while (at + 4 <= jpeg.size() && quint8(jpeg[at]) == 0xFF) {
        const quint8 marker = quint8(jpeg[at + 1]);
        if (marker == 0xDA) return jpeg.mid(at);
        at += 2 + ((quint8(jpeg[at + 2]) << 8) | quint8(jpeg[at + 3]));
    }
    return {};
}

const double kMetre = 1.0 / 111320;  // a metre of latitude, in degrees

}  // namespace

TEST_F(BatchEdit, ShiftOffsetsAndCalendar) {
    EXPECT_EQ(DateShift::parseOffset("+0:52"), 52 * 60);
    EXPECT_EQ(DateShift::parseOffset("-1 2:00:00"), -(24 + 2) * 3600);
    EXPECT_EQ(DateShift::parseOffset("3"), 3 * 3600);
    EXPECT_EQ(DateShift::parseOffset("-0:00:30"), -30);
    for (const char* bad : {"", "+", "0:60", "1:2:3:4", "abc", "+-1"}) EXPECT_FALSE(DateShift::parseOffset(bad)) << bad;

    // Across midnight and the year, a month end, a leap day both ways, a common year's February.
    EXPECT_EQ(DateShift::shifted("2023:12:31 23:30:00", 52 * 60), "2024:01:01 00:22:00");
    EXPECT_EQ(DateShift::shifted("2023:04:30 23:59:30", 30), "2023:05:01 00:00:00");
    EXPECT_EQ(DateShift::shifted("2024:02:28 23:00:00", 2 * 3600), "2024:02:29 01:00:00");
    EXPECT_EQ(DateShift::shifted("2024:03:01 00:10:00", -20 * 60), "2024:02:29 23:50:00");
    EXPECT_EQ(DateShift::shifted("2023:02:28 23:00:00", 2 * 3600), "2023:03:01 01:00:00");
    // A wall clock: no hour is lost or doubled on a summer-time night.
    EXPECT_EQ(DateShift::shifted("2024:03:31 01:30:00", 3600), "2024:03:31 02:30:00");
    EXPECT_FALSE(DateShift::shifted("    :  :     :  :  ", 60));
    EXPECT_FALSE(DateShift::shifted("9999:12:31 23:59:59", 1)) << "past the last year an EXIF date can hold";
}

TEST_F(BatchEdit, ShiftMovesEachDateFromItsOwnValue) {
    const QString a = sample("a.jpg", "jpeg/Canon_40D.jpg",
                             {"-DateTimeOriginal=2023:12:31 23:30:00", "-CreateDate=2023:12:31 23:29:58",
                              "-ModifyDate=2024:02:28 23:59:00"});
    const QJsonObject before = tags(a);
    const QString out = edit(a, with([](BatchWishes& w) { w.shiftSeconds = 52 * 60; }));
    ASSERT_FALSE(out.isEmpty());
    const QJsonObject after = tags(out);
    EXPECT_EQ(after["ExifIFD:DateTimeOriginal"].toString(), "2024:01:01 00:22:00");
    EXPECT_EQ(after["ExifIFD:CreateDate"].toString(), "2024:01:01 00:21:58");
    // Every save makes DateTime follow DateTimeOriginal and drops an empty user comment.
    EXPECT_EQ(after["IFD0:ModifyDate"].toString(), "2024:01:01 00:22:00");
    // Every other tag reads as before, but the software of the save and where the thumbnail now sits.
    expectOtherTagsKept(before, after, [](const QString& k, auto&&...) {
        return k.contains("Date") || k == "IFD0:Software" || k == "ExifIFD:UserComment" || k == "IFD1:ThumbnailOffset";
    });
    EXPECT_EQ(codedImage(readFile(out)), codedImage(readFile(a)));
}

TEST_F(BatchEdit, ZoneKeepingLocalTimeOrInstant) {
    const QString summer = sample("s.jpg", "jpeg/Canon_40D.jpg",
                                  {"-DateTimeOriginal=2024:07:01 12:00:00", "-OffsetTimeOriginal=+02:00",
                                   "-CreateDate=2024:07:01 12:00:00", "-OffsetTimeDigitized=+02:00"});
    const QString winter = sample("w.jpg", "jpeg/Canon_40D.jpg", {"-DateTimeOriginal=2024:01:15 12:00:00"});

    // Keeping the local time: only the zone changes, by the zone's rule on each photo's own date.
    auto local = TimeZones::parseZone("Europe/Rome");
    ASSERT_TRUE(local);
    QString out = edit(winter, with([&](BatchWishes& w) { w.zone = local; }));
    ASSERT_FALSE(out.isEmpty());
    QJsonObject t = tags(out);
    EXPECT_EQ(t["ExifIFD:DateTimeOriginal"].toString(), "2024:01:15 12:00:00");
    EXPECT_EQ(t["ExifIFD:OffsetTimeOriginal"].toString(), "+01:00");

    // Keeping the instant: 12:00 at +02:00 is 11:00 in London's summer and 06:00 in New York.
    auto instant = TimeZones::parseZone("Europe/London");
    instant->keepInstant = true;
    out = edit(summer, with([&](BatchWishes& w) { w.zone = instant; }));
    ASSERT_FALSE(out.isEmpty());
    t = tags(out);
    EXPECT_EQ(t["ExifIFD:DateTimeOriginal"].toString(), "2024:07:01 11:00:00");
    EXPECT_EQ(t["ExifIFD:OffsetTimeOriginal"].toString(), "+01:00");
    EXPECT_EQ(t["ExifIFD:CreateDate"].toString(), "2024:07:01 11:00:00");
    EXPECT_EQ(t["ExifIFD:OffsetTimeDigitized"].toString(), "+01:00");

    auto fixed = TimeZones::parseZone("-05:30");
    ASSERT_TRUE(fixed);
    fixed->keepInstant = true;
    QFile::remove(out);
    out = edit(summer, with([&](BatchWishes& w) { w.zone = fixed; }));
    t = tags(out);
    EXPECT_EQ(t["ExifIFD:DateTimeOriginal"].toString(), "2024:07:01 04:30:00");
    EXPECT_EQ(t["ExifIFD:OffsetTimeOriginal"].toString(), "-05:30");

    // Without a zone on the photo the instant is unknown: reported, the photo left alone.
    QStringList problems;
    QFile::remove(dir_.filePath("out/w.jpg"));
    EXPECT_TRUE(edit(winter, with([&](BatchWishes& w) { w.zone = fixed; }), &problems).isEmpty());
    t = tags(winter);
    EXPECT_EQ(problems.size(), 1);
    EXPECT_EQ(t["ExifIFD:DateTimeOriginal"].toString(), "2024:01:15 12:00:00");
    EXPECT_FALSE(t.contains("ExifIFD:OffsetTimeOriginal"));
    EXPECT_FALSE(TimeZones::parseZone("Mars/Olympus"));
    EXPECT_FALSE(TimeZones::parseZone("+15:00"));
}

TEST_F(BatchEdit, TrackLogsOfEveryFormat) {
    // Two segments of a GPX 1.1 track with a waypoint; the hour between segments is never bridged.
    const QByteArray gpx = R"(<?xml version="1.0"?>
<gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1">
 <wpt lat="10" lon="20"><time>2024-05-01T08:00:00Z</time></wpt>
 <trk><trkseg>
  <trkpt lat="45.0" lon="9.0"><ele>100</ele><time>2024-05-01T10:00:00Z</time></trkpt>
  <trkpt lat="45.001" lon="9.0"><ele>200</ele><time>2024-05-01T10:01:40Z</time></trkpt>
 </trkseg><trkseg>
  <trkpt lat="46.0" lon="10.0"><time>2024-05-01T11:01:40Z</time></trkpt>
  <trkpt lat="46.0" lon="10.002"><time>2024-05-01T11:02:00Z</time></trkpt>
 </trkseg></trk></gpx>)";
    const auto log = TrackLog::parse(gpx);
    ASSERT_TRUE(log);
    EXPECT_EQ(log->points().size(), 5);
    const qint64 ten = QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC).toMSecsSinceEpoch();
    // A quarter of the way: latitude and altitude a quarter along, heading due north.
    auto fix = log->at(ten + 25'000, 300'000);
    ASSERT_TRUE(fix);
    EXPECT_NEAR(fix->latitude, 45.00025, 1e-9);
    EXPECT_NEAR(fix->longitude, 9.0, 1e-9);
    EXPECT_NEAR(*fix->altitude, 125, 1e-9);
    EXPECT_NEAR(*fix->track, 0, 1e-6);
    // Heading east in the second segment, without altitude.
    fix = log->at(ten + 3710'000, 300'000);
    ASSERT_TRUE(fix);
    EXPECT_NEAR(fix->longitude, 10.001, 1e-9);
    EXPECT_FALSE(fix->altitude);
    EXPECT_NEAR(*fix->track, 90, 0.01);
    EXPECT_FALSE(log->at(ten - 1000, 300'000)) << "before the first track point";
    EXPECT_FALSE(log->at(ten + 1800'000, 1e9)) << "between segments";
    EXPECT_FALSE(log->at(ten + 25'000, 60'000)) << "a gap larger than the maximum";
    EXPECT_FALSE(log->at(ten + 4000'000, 300'000)) << "after the last point";
    EXPECT_TRUE(log->at(ten - 7200'000, 0)) << "on the waypoint";

    // GPX 1.0 in its own namespace.
    EXPECT_TRUE(TrackLog::parse(R"(<gpx version="1.0" xmlns="http://www.topografix.com/GPX/1/0"><trk><trkseg>
        <trkpt lat="1" lon="2"><time>2024-05-01T10:00:00Z</time></trkpt></trkseg></trk></gpx>)"));

    // KML: a gx:Track and a timed placemark.
    const auto kml = TrackLog::parse(R"(<kml xmlns="http://www.opengis.net/kml/2.2" xmlns:gx="http://www.google.com/kml/ext/2.2">
      <Document><Placemark><gx:Track>
        <when>2024-05-01T10:00:00Z</when><when>2024-05-01T10:00:10Z</when>
        <gx:coord>9.0 45.0 10</gx:coord><gx:coord>9.001 45.0 20</gx:coord>
      </gx:Track></Placemark>
      <Placemark><TimeStamp><when>2024-05-01T13:00:00+02:00</when></TimeStamp>
        <Point><coordinates>-3.5,40.25,0</coordinates></Point></Placemark></Document></kml>)");
    ASSERT_TRUE(kml);
    fix = kml->at(ten + 5000, 60'000);
    ASSERT_TRUE(fix);
    EXPECT_NEAR(fix->longitude, 9.0005, 1e-9);
    EXPECT_NEAR(*fix->altitude, 15, 1e-9);
    EXPECT_NEAR(kml->points().last().latitude, 40.25, 1e-9);
    EXPECT_EQ(kml->points().last().msecs, ten + 3600'000);

    // Across the 180th meridian the short way: 0.2° east over ten seconds, not 359.8° west.
    const auto dateLine = TrackLog::parse(R"(<gpx version="1.1"><trk><trkseg>
        <trkpt lat="-17" lon="179.9"><time>2024-05-01T10:00:00Z</time></trkpt>
        <trkpt lat="-17" lon="-179.9"><time>2024-05-01T10:00:10Z</time></trkpt></trkseg></trk></gpx>)");
    ASSERT_TRUE(dateLine);
    EXPECT_NEAR(dateLine->at(ten + 2500, 60'000)->longitude, 179.95, 1e-9);
    EXPECT_NEAR(std::fabs(dateLine->at(ten + 5000, 60'000)->longitude), 180, 1e-9);
    EXPECT_NEAR(dateLine->at(ten + 7500, 60'000)->longitude, -179.95, 1e-9);
    EXPECT_NEAR(*dateLine->at(ten + 7500, 60'000)->track, 90, 0.1);

    // NMEA: RMC then GGA of one second make one point; a wrong checksum drops its sentence.
    const auto nmea = TrackLog::parse("$GPRMC,100000,A,4500.000,N,00900.000,E,0.0,0.0,010524,,*16\r\n"
                                      "$GPGGA,100000,4500.000,N,00900.000,E,1,08,1.0,50.0,M,0,M,,*59\r\n"
                                      "$GPRMC,100010,A,4500.600,N,00900.000,E,0.0,0.0,010524,,*00\r\n"
                                      "$GNRMC,100020,A,4501.200,S,00900.000,W,0.0,0.0,010524,,\r\n");
    ASSERT_TRUE(nmea);
    ASSERT_EQ(nmea->points().size(), 2);
    EXPECT_EQ(nmea->points()[0].msecs, ten);
    EXPECT_NEAR(*nmea->points()[0].altitude, 50, 1e-9);
    EXPECT_NEAR(nmea->points()[1].latitude, -45.02, 1e-9);
    EXPECT_NEAR(nmea->points()[1].longitude, -9.0, 1e-9);

    // Broken logs give a reason, never a crash.
    QString error;
    EXPECT_FALSE(TrackLog::parse("<gpx><trk><trkseg><trkpt lat=\"1\" lon=", &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(TrackLog::parse("<html/>", &error));
    EXPECT_FALSE(TrackLog::parse(QByteArray(4096, '\0'), &error));
    EXPECT_FALSE(TrackLog::parse("$GPRMC,1,A,45,N,9,E,0,0,999999,,\n$GPGGA,,,,,,,,,\n", &error));
    // Every cut of a good log reads as far as it goes (the sanitizers watch the reading).
    for (qsizetype n = 0; n < gpx.size(); n += 5) TrackLog::parse(gpx.left(n));
}

// Our geotagging and exiftool's on the same photos and log agree within a metre and a second.
TEST_F(BatchEdit, GeotagAgreesWithExiftool) {
    QByteArray gpx = R"(<?xml version="1.0"?><gpx version="1.1" xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>)";
    // A walk north-east past Rome, one point every 20 seconds with an altitude.
    for (int i = 0; i <= 60; ++i)
        gpx += QStringLiteral(R"(<trkpt lat="%1" lon="%2"><ele>%3</ele><time>%4</time></trkpt>)")
                   .arg(41.9 + i * 0.0003, 0, 'f', 7)
                   .arg(12.5 + i * 0.0002 + (i % 3) * 0.00005, 0, 'f', 7)
                   .arg(20 + i % 7)
                   .arg(QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC).addSecs(i * 20).toString(Qt::ISODate))
                   .toUtf8();
    gpx += "</trkseg></trk></gpx>";
    const QString track = write("walk.gpx", gpx);
    const auto log = TrackLog::readFile(track);
    ASSERT_TRUE(log);
    const auto trackLog = std::make_shared<const TrackLog>(*log);

    const QStringList times{"2024:05:01 10:00:07", "2024:05:01 10:05:33", "2024:05:01 10:19:59"};
    for (int i = 0; i < times.size(); ++i) {
        const QString ours = sample(QString("p%1.jpg").arg(i), "jpeg/Canon_40D.jpg", {"-DateTimeOriginal=" + times[i]});
        // exiftool geotags by the date the file has before the command: set first, then placed.
        const QString theirs = sample(QString("x%1.jpg").arg(i), "jpeg/Canon_40D.jpg", {"-DateTimeOriginal=" + times[i]});
        ASSERT_EQ(run("exiftool", {"-q", "-overwrite_original", "-geotag=" + track, theirs}).exitCode, 0);
        const QString out = edit(ours, with([&](BatchWishes& w) { w.trackLog = trackLog; }));
        ASSERT_FALSE(out.isEmpty()) << times[i].toStdString();
        const QJsonObject a = tags(out), b = tags(theirs);
        EXPECT_NEAR(a["GPS:GPSLatitude"].toDouble(), b["GPS:GPSLatitude"].toDouble(), kMetre);
        EXPECT_NEAR(a["GPS:GPSLongitude"].toDouble(), b["GPS:GPSLongitude"].toDouble(), kMetre / std::cos(0.73));
        EXPECT_NEAR(a["GPS:GPSAltitude"].toDouble(), b["GPS:GPSAltitude"].toDouble(), 1);
        EXPECT_EQ(a["GPS:GPSDateStamp"], b["GPS:GPSDateStamp"]);
        EXPECT_NEAR(a["GPS:GPSTimeStamp"].toString().section(':', 2).toDouble() +
                        a["GPS:GPSTimeStamp"].toString().section(':', 1, 1).toDouble() * 60,
                    b["GPS:GPSTimeStamp"].toString().section(':', 2).toDouble() +
                        b["GPS:GPSTimeStamp"].toString().section(':', 1, 1).toDouble() * 60,
                    1);
    }

    // A camera 52 minutes late: its 09:08:07 is the logger's 10:00:07.
    const QString late = sample("late.jpg", "jpeg/Canon_40D.jpg", {"-DateTimeOriginal=2024:05:01 09:08:07"});
    QStringList problems;
    const QString out = edit(late, with([&](BatchWishes& w) {
                                 w.trackLog = trackLog;
                                 w.geotag.clockOffsetSeconds = 52 * 60;
                             }),
                             &problems);
    EXPECT_TRUE(problems.isEmpty());
    EXPECT_NEAR(tags(out)["GPS:GPSLatitude"].toDouble(), tags(dir_.filePath("x0.jpg"))["GPS:GPSLatitude"].toDouble(),
                kMetre);

    // Outside the log: reported, and left alone: nothing else was asked, so nothing is written.
    const QString outside = sample("outside.jpg", "jpeg/Canon_40D.jpg", {"-DateTimeOriginal=2024:05:01 09:59:00"});
    problems.clear();
    EXPECT_TRUE(edit(outside, with([&](BatchWishes& w) { w.trackLog = trackLog; }), &problems).isEmpty());
    EXPECT_EQ(problems.size(), 1);
    EXPECT_FALSE(tags(outside).contains("GPS:GPSLatitude"));
}

// Private data goes, the look stays: profile, orientation, sizes, every coded byte.
TEST_F(BatchEdit, PrivacyStripIsLossless) {
    const QString a = sample("a.jpg", "jpeg/Canon_40D.jpg",
                             {"-Orientation#=6", "-ExifIFD:SerialNumber=123456", "-ExifIFD:OwnerName=Jane Roe",
                              "-ExifIFD:LensSerialNumber=L99", "-GPSLatitude=41.9", "-GPSLatitudeRef=N",
                              "-GPSLongitude=12.5", "-GPSLongitudeRef=E", "-XMP-aux:SerialNumber=123456",
                              "-XMP-xmpMM:DocumentID=xmp.did:146E0D5C", "-XMP-xmpMM:HistoryAction=saved",
                              "-XMP-xmpMM:HistorySoftwareAgent=Photo Editor 5", "-XMP-photoshop:DocumentAncestors=xmp.did:1"});
    const QJsonObject before = tags(a);
    for (const char* planted : {"ExifIFD:SerialNumber", "ExifIFD:OwnerName", "XMP-aux:SerialNumber", "GPS:GPSLatitude",
                                "XMP-xmpMM:DocumentID", "XMP-xmpMM:HistoryAction", "XMP-photoshop:DocumentAncestors"})
        ASSERT_TRUE(before.contains(planted)) << planted;

    const QString out = edit(a, with([](BatchWishes& w) { w.strip = PrivacyStrip::Kind::personal; }));
    ASSERT_FALSE(out.isEmpty());
    const QJsonObject after = tags(out);
    for (auto it = after.begin(); it != after.end(); ++it) {
        const QString key = it.key();
        EXPECT_FALSE(key.startsWith("GPS:") || key.startsWith("Canon") || key.contains("Serial") ||
                     key.contains("OwnerName") || key.startsWith("XMP-aux:") || key.endsWith(":MakerNotes") ||
                     key.startsWith("XMP-xmpMM:") || key.endsWith(":DocumentAncestors"))
            << key.toStdString() << " is left";
    }
    for (const char* kept : {"ICC_Profile:ProfileDescription", "IFD0:Orientation", "File:ImageWidth",
                             "File:ImageHeight", "ExifIFD:DateTimeOriginal", "IFD0:Model", "ExifIFD:FNumber"})
        EXPECT_EQ(after.value(kept), before.value(kept)) << kept;
    EXPECT_EQ(codedImage(readFile(out)), codedImage(readFile(a)));
    EXPECT_FALSE(codedImage(readFile(a)).isEmpty());
    EXPECT_EQ(imageio::decodeImage(readFile(out)), imageio::decodeImage(readFile(a)));

    // Location only: the serial number stays.
    const QString loc = sample("b.jpg", "jpeg/Canon_40D.jpg",
                               {"-ExifIFD:SerialNumber=123456", "-GPSLatitude=41.9", "-GPSLatitudeRef=N", "-GPSLongitude=12.5",
                                "-GPSLongitudeRef=E"});
    const QJsonObject l = tags(edit(loc, with([](BatchWishes& w) { w.strip = PrivacyStrip::Kind::location; })));
    EXPECT_FALSE(l.contains("GPS:GPSLatitude"));
    EXPECT_EQ(l.value("ExifIFD:SerialNumber").toVariant().toString(), "123456");
}

// A write that doesn't read back as wished stops that photo before anything is replaced.
TEST_F(BatchEdit, ReadBackDifferenceLeavesOriginal) {
    const QString a = sample("a.jpg", "jpeg/Canon_40D.jpg");
    const QByteArray original = readFile(a);
    // A tag no writer knows can't be carried into the file: the read-back misses it, in the EXIF
    // group and in the IPTC records alike.
    for (const bool iptc : {false, true}) {
        SCOPED_TRACE(iptc ? "IPTC" : "EXIF");
        auto asset = std::make_shared<TSAsset>(a);
        ModifyingPhotoAsset photo{asset, std::make_shared<TagsPhotoModifier>(asset->metaData()), asset->imageData(), 1};
        UserSettings settings(asset->metaData(), asset->ddStore());
        ExifModifier modifier({photo});
        modifier.filesDirectory = dir_.path();  // in place
        modifier.eachPhoto = [iptc](ModifyingPhotoAsset& p) {
            (iptc ? p.tags->iptcData : p.tags->exifData).insert("NoSuchTag", "x");
            p.tags->changed = true;
        };
        modifier.modify(settings);
        try {
            modifier.rewrite();
            ADD_FAILURE() << "the difference went unnoticed";
        } catch (const TSError& e) {
            EXPECT_TRUE(e.message().contains(iptc ? "{IPTC}.NoSuchTag" : "{Exif}.NoSuchTag")) << e.message().toStdString();
        }
        EXPECT_EQ(readFile(a), original);
        EXPECT_EQ(QDir(dir_.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"a.jpg"});
    }
}
