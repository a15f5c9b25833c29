// SPDX-License-Identifier: GPL-3.0-or-later
// The commands over movies, with exiftool and ffprobe, run live, as the oracles: what `info`
// shows, what `props` and `tags` give, and what `edit` writes.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

// The text after "Label: " on its line of a details text.
QString line(const QString& details, const QString& label) {
    const qsizetype at = details.indexOf("\n" + label + " ");
    return at < 0 ? QString() : details.mid(at + label.size() + 2).section('\n', 0, 0);
}

QDateTime exiftoolInstant(QString text) {
    text.replace(10, 1, u'T');
    text.replace(4, 1, u'-').replace(7, 1, u'-');
    return QDateTime::fromString(text, Qt::ISODate);
}

QString durationText(double seconds) {
    const qint64 s = std::llround(seconds);
    return QString::asprintf("%02lld:%02lld", s / 60, s % 60);
}

// The new file that one `edit` run reports: "SOURCE -> NEW: changes".
QString editedFile(const ProcessResult& r) {
    const QString out = QString::fromUtf8(r.out);
    const qsizetype arrow = out.indexOf(" -> ");
    if (arrow < 0) return {};
    return out.mid(arrow + 4).section(": ", 0, 0);
}

}  // namespace

TEST(VideoInfo, ShowsWhatFfprobeAndExiftoolRead) {
    const QStringList files = movies();
    ASSERT_EQ(files.size(), 4);
    // Without place data the location row keeps the coordinates, which exiftool can confirm.
    Isolation::current()->setEnv("TESSORIN_PLACES", "/nonexistent/places.bin");
    const ProcessResult info = cli(QStringList{"info"} + files);
    Isolation::current()->unsetEnv("TESSORIN_PLACES");
    ASSERT_EQ(info.exitCode, 0) << info.err.toStdString();
    const QString out = QString::fromUtf8(info.out);
    int withTags = 0;
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const qsizetype start = out.indexOf("==> " + file + " <==\n");
        ASSERT_GE(start, 0);
        const qsizetype end = out.indexOf("\n==> ", start + 1);
        const QString details = out.mid(start, end < 0 ? -1 : end - start);
        EXPECT_TRUE(details.contains("\nIs video: true\n"));

        const QJsonObject probe = ffprobe(file);
        EXPECT_EQ(line(details, "Duration:"), durationText(probe["format"]["duration"].toString().toDouble()));
        QJsonObject v, a;
        for (const QJsonValue& s : probe["streams"].toArray()) (s["codec_type"] == "video" ? v : a) = s.toObject();
        const QStringList rate = v["avg_frame_rate"].toString().split('/');
        EXPECT_EQ(line(details, "FPS:"), QString::asprintf("%.2f", rate[0].toDouble() / rate[1].toDouble()));
        const QString tag = v["codec_tag_string"].toString();
        EXPECT_EQ(line(details, "File type:"), tag == "avc1" ? "H.264" : tag == "hvc1" ? "HEVC" : tag);
        EXPECT_EQ(line(details, "Audio Coding:"), a.isEmpty() ? "--" : a["codec_tag_string"].toString());

        const QJsonValue et = exiftoolJson(file, {"-n", "-G1", "-Keys:all", "-UserData:all", "-ItemList:all"});
        auto expect = [&](const char* label, const char* tag) {
            const QString value = et[tag].toVariant().toString();
            EXPECT_EQ(line(details, label), value.isEmpty() ? "--" : value) << tag;
        };
        expect("Camera:", "Keys:Model");
        expect("Maker:", "Keys:Make");
        const QString software = et["Keys:Software"].toVariant().toString();
        const QString encoder = et["UserData:SoftwareVersion"].toString() + et["ItemList:Encoder"].toString();
        EXPECT_EQ(line(details, "Software:"), !software.isEmpty() ? software : encoder.isEmpty() ? "--" : encoder);
        const QString created = et["Keys:CreationDate"].toString();
        if (created.isEmpty()) {
            EXPECT_EQ(line(details, "Original Date:"), "--");
            continue;
        }
        ++withTags;
        EXPECT_EQ(line(details, "Original Date:"),
                  fullDateText(exiftoolInstant(created).toLocalTime()));
        // Both sample movies stand at exiftool's 45.464 9.19: the place takes two lines, seconds
        // of arc truncated (9.19° in doubles leaves 23.99...").
        EXPECT_EQ(et["Keys:GPSCoordinates"].toString().section(' ', 0, 1), "45.464 9.19");
        EXPECT_TRUE(details.contains("\nLocation: 45° 27' 50\" N\n9° 11' 23\" E\n")) << details.toStdString();
    }
    EXPECT_EQ(withTags, 2);
    // With place data the position reads as a place, also in the sentence.
    const ProcessResult named = cli({"info", video("apple_meta.mov")});
    EXPECT_TRUE(named.out.contains("\nLocation: Milan, ")) << named.out.toStdString();
    EXPECT_TRUE(cli({"summary", video("apple_meta.mov")}).out.contains(" in Milan, "));
}

TEST(VideoInfo, CutMovieShowsPlaceholders) {
    QTemporaryDir dir;
    const QString cut = dir.filePath("cut.mov");
    QFile f(cut);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(readFile(video("sample_640x360.mov")).left(5000));  // media only: the header is at the end
    f.close();
    const ProcessResult r = cli({"info", cut});
    EXPECT_EQ(r.exitCode, 0);
    const QString out = QString::fromUtf8(r.out);
    EXPECT_EQ(line(out, "Duration:"), "??");
    EXPECT_EQ(line(out, "FPS:"), "--");
    EXPECT_EQ(QJsonDocument::fromJson(cli({"tags", "--json", cut}).out).array().at(0)["tags"], QJsonObject());
}

TEST(VideoProps, DescribesTracksAndItems) {
    const ProcessResult r = cli({"props", video("apple_meta_rot90.mov")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QJsonObject props = QJsonDocument::fromJson(r.out).array()[0].toObject()["properties"].toObject();
    EXPECT_DOUBLE_EQ(props["Duration"].toDouble(), 2.0);
    const QJsonObject track = props["Tracks"][0].toObject();
    EXPECT_EQ(track["FormatDescriptions"][0].toString(), "vide/avc1");
    EXPECT_EQ(track["PreferredTransform"].toArray(), QJsonArray({0, 1, -1, 0, 240, 0}));
    EXPECT_EQ(props["Metadata"][2]["Identifier"].toString(), "mdta/com.apple.quicktime.make");
    EXPECT_EQ(props["Metadata"][2]["CommonKey"].toString(), "make");
    EXPECT_EQ(props["Metadata"][2]["Value"].toString(), "Apple");
}

TEST(VideoTags, ExportsByKeySpace) {
    const QString file = video("apple_meta.mov");
    const QString human = QString::fromUtf8(cli({"tags", file}).out);
    EXPECT_TRUE(human.startsWith("**mdta**\nlocation.ISO6709: \n\tLatitude: 45.464°\n\tLongitude: 9.19°\n")) << human.toStdString();
    EXPECT_TRUE(human.contains("\nmake: Apple\n"));
    const QString raw = QString::fromUtf8(cli({"tags", "--raw", file}).out);
    EXPECT_TRUE(raw.startsWith("mdta\n====\nmdta/com.apple.quicktime.location.ISO6709: +45.4640+009.1900+120.000/\n"));
    EXPECT_EQ(QJsonDocument::fromJson(cli({"tags", "--json", file}).out).array().at(0)["tags"], QJsonObject());
    EXPECT_TRUE(cli({"summary", file}).out.contains("This video was taken on "));
}

TEST(VideoEdit, DateAndPlaceReadBackExactlyAndTheStreamsStay) {
    // The wished date is the user's local time; the file holds the instant.
    Isolation::current()->setEnv("TZ", "Asia/Kolkata");
    QTemporaryDir out;
    ASSERT_EQ(movies().size(), 4);
    for (const QString& file : movies()) {
        SCOPED_TRACE(file.toStdString());
        const ProcessResult r = cli({"edit", "--date", "2024:01:02 03:04:05", "--location", "45°30'0\" N 122°15'0\" W", file,
                                     "-o", out.path()});
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QString edited = editedFile(r);
        ASSERT_TRUE(QFileInfo::exists(edited)) << r.out.toStdString();
        EXPECT_TRUE(QFileInfo(edited).fileName().contains(QRegularExpression("^video_\\d{6}_\\d{6}(_\\d+)?\\.mp4$")));
        const QDateTime wished(QDate(2024, 1, 1), QTime(21, 34, 5), Qt::UTC);
        const QJsonValue et = exiftoolJson(edited, {"-n", "-G1", "-Keys:CreationDate", "-Keys:GPSCoordinates"});
        EXPECT_EQ(exiftoolInstant(et["Keys:CreationDate"].toString()), wished);
        EXPECT_EQ(et["Keys:GPSCoordinates"].toString(), "45.5 -122.25 0");
        const QJsonObject tags = ffprobe(edited)["format"].toObject()["tags"].toObject();
        EXPECT_EQ(tags["com.apple.quicktime.creationdate"].toString(), "2024-01-01T21:34:05Z");
        EXPECT_EQ(tags["com.apple.quicktime.location.ISO6709"].toString(), "+45.5000-122.2500+0/");
        EXPECT_EQ(streamHashes(edited), streamHashes(file));
        // info reads the new file back as the user wished it.
        const QString details = QString::fromUtf8(cli({"info", edited}).out);
        EXPECT_EQ(line(details, "Original Date:"), "Tuesday, 2 January 2024 03:04:05");
    }
}

TEST(VideoEdit, RemovalsAndNoTags) {
    QTemporaryDir out;
    const QString file = video("apple_meta_rot90.mov");
    const ProcessResult bare = cli({"edit", "--no-date", "--no-location", file, "-o", out.path()});
    ASSERT_EQ(bare.exitCode, 0) << bare.err.toStdString();
    const QJsonObject probe = ffprobe(editedFile(bare));
    const QJsonObject tags = probe["format"].toObject()["tags"].toObject();
    EXPECT_FALSE(tags.contains("com.apple.quicktime.creationdate"));
    EXPECT_FALSE(tags.contains("com.apple.quicktime.location.ISO6709"));
    EXPECT_EQ(tags["com.apple.quicktime.make"].toString(), "Apple");
    EXPECT_EQ(probe["streams"][0]["side_data_list"][0]["rotation"].toInt(), -90);

    const ProcessResult none = cli({"edit", "--no-tags", file, "-o", out.path()});
    ASSERT_EQ(none.exitCode, 0) << none.err.toStdString();
    const QJsonObject et = exiftoolJson(editedFile(none), {"-G1", "-Keys:all", "-UserData:all", "-ItemList:all"}).toObject();
    EXPECT_EQ(et.keys(), QStringList({"Keys:Software", "SourceFile"}));
    EXPECT_EQ(et["Keys:Software"].toString(), "Tessorin");
}

TEST(VideoEdit, WhatAMovieCantDo) {
    QTemporaryDir out;
    const QString file = video("apple_meta.mov");
    const ProcessResult inPlace = cli({"edit", "--no-date", "--in-place", file});
    EXPECT_EQ(inPlace.exitCode, 1);
    EXPECT_TRUE(inPlace.err.contains("Video editing not available")) << inPlace.err.toStdString();
    const ProcessResult orientation = cli({"edit", "--orientation", "6", file, "-o", out.path()});
    EXPECT_EQ(orientation.exitCode, 1);
    EXPECT_TRUE(orientation.err.contains("a movie takes only")) << orientation.err.toStdString();
    const ProcessResult same = cli({"edit", "--no-location", video("sample_640x360.mov"), "-o", out.path()});
    EXPECT_EQ(same.exitCode, 0);
    EXPECT_TRUE(same.out.endsWith(": Nothing changed\n"));
    // Cut movies are reported, and nothing is left in the folder: one without its header, one
    // whose media end early.
    QTemporaryDir in;
    auto cut = [&](const QString& name, const QString& from, qsizetype size) {
        QFile f(in.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(readFile(from).left(size));
        return f.fileName();
    };
    const ProcessResult headless = cli({"edit", "--no-date", cut("a.mov", file, 30000), "-o", out.path()});
    EXPECT_EQ(headless.exitCode, 1);
    EXPECT_TRUE(headless.err.contains("Error getting video data")) << headless.err.toStdString();
    const ProcessResult shortMedia =
        cli({"edit", "--no-date", cut("b.mov", video("apple_meta_rot90.mov"), 20000), "-o", out.path()});
    EXPECT_EQ(shortMedia.exitCode, 1);
    EXPECT_TRUE(shortMedia.err.contains("cut short")) << shortMedia.err.toStdString();
    EXPECT_TRUE(QDir(out.path()).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot).isEmpty());
}

// Each movie from its own date: shifted, given a zone keeping its clock or its instant, and the
// place, dates or private data taken out, as exiftool and ffprobe read them; the streams stay.
TEST(VideoEdit, ShiftZoneAndStripReadBackAndTheStreamsStay) {
    QTemporaryDir out;
    const QString file = video("apple_meta.mov");  // 2023-05-14T10:20:30+0200 at +45.4640+009.1900
    struct Case {
        QStringList args;
        const char* date;  // exiftool's Keys:CreationDate, or nothing when it must be gone
        bool place;
    };
    const QList<Case> cases{
        {{"--shift", "+1 2:00:00"}, "2023:05:15 12:20:30+02:00", true},
        {{"--shift", "-0:30"}, "2023:05:14 09:50:30+02:00", true},
        {{"--zone", "+05:30"}, "2023:05:14 10:20:30+05:30", true},
        // 08:20:30 UTC, in London's summer time.
        {{"--zone", "Europe/London", "--keep-instant"}, "2023:05:14 09:20:30+01:00", true},
        {{"--strip", "location"}, "2023:05:14 10:20:30+02:00", false},
        {{"--strip", "dates"}, nullptr, true},
        {{"--strip", "private"}, "2023:05:14 10:20:30+02:00", false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const ProcessResult r = cli(QStringList{"edit"} + c.args + QStringList{file, "-o", out.path()});
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QString edited = editedFile(r);
        ASSERT_TRUE(QFileInfo::exists(edited)) << r.out.toStdString();
        const QJsonValue et = exiftoolJson(edited, {"-G1", "-Keys:CreationDate", "-Keys:GPSCoordinates"});
        EXPECT_EQ(et["Keys:CreationDate"].toString(), c.date ? QString(c.date) : QString());
        EXPECT_EQ(et["Keys:GPSCoordinates"].isString(), c.place);
        EXPECT_EQ(streamHashes(edited), streamHashes(file));
    }
    // The movie's own form of the date stays: no colon in its zone.
    const ProcessResult shifted = cli({"edit", "--shift", "+0:01", file, "-o", out.path()});
    const QJsonObject tags = ffprobe(editedFile(shifted))["format"].toObject()["tags"].toObject();
    EXPECT_EQ(tags["com.apple.quicktime.creationdate"].toString(), "2023-05-14T10:21:30+0200");

    // A track log is for photos: the movie is reported and left alone.
    QFile gpx(out.filePath("t.gpx"));
    ASSERT_TRUE(gpx.open(QIODevice::WriteOnly));
    gpx.write(R"(<gpx version="1.1"><trk><trkseg><trkpt lat="1" lon="2"><time>2023-05-14T08:20:30Z</time></trkpt></trkseg></trk></gpx>)");
    gpx.close();
    const QStringList before = QDir(out.path()).entryList(QDir::Files);
    const ProcessResult geotag = cli({"edit", "--geotag", gpx.fileName(), file, "-o", out.path()});
    EXPECT_EQ(geotag.exitCode, 1);
    EXPECT_TRUE(geotag.err.contains("movies take no track log")) << geotag.err.toStdString();
    EXPECT_EQ(QDir(out.path()).entryList(QDir::Files), before);
}
