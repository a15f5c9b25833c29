// SPDX-License-Identifier: GPL-3.0-or-later
// Motion photos through `resources` and `edit`, made from corpus photos and movies in each
// layout phones write: the movie is listed and extracted byte for byte, survives every edit
// where exiftool and ffprobe find it, and `--strip motion` leaves the still and nothing else.
#include "Isolation.h"
#include "MotionPhotos.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

QJsonObject tagsOf(const QString& path) { return exiftoolJson(path, {"-n", "-G1", "-a"}).toObject(); }

// One motion photo of the test and how exiftool extracts its movie.
struct Layout {
    QString file, movie, exiftoolTag, label, movieName, still;
};

class MotionPhotoCommands : public IsolatedTest {
protected:
    QString at(const QString& name) { return isolation().root() + "/" + name; }

    std::vector<Layout> makeAll() {
        const QString mp4 = video("small_video.mp4"), mov = video("apple_meta.mov");
        googleMotionPhoto(corpusDir() + "/jpeg/Canon_40D.jpg", mp4, at("google.jpg"));
        microVideo(corpusDir() + "/jpeg/Nikon_D70.jpg", mov, at("micro.jpg"));
        samsungMotionPhoto(corpusDir() + "/jpeg/BlueSquare.jpg", mp4, at("samsung.jpg"));
        googleMotionPhoto(corpusDir() + "/heif/Stonehenge.heic", mp4, at("google.heic"));
        return {{at("google.jpg"), mp4, "-EmbeddedVideo", "Motion Photo", "google_MotionPhoto.mp4", corpusDir() + "/jpeg/Canon_40D.jpg"},
                {at("micro.jpg"), mov, "-EmbeddedVideo", "MicroVideo", "micro_MicroVideo.mov", corpusDir() + "/jpeg/Nikon_D70.jpg"},
                {at("samsung.jpg"), mp4, "-EmbeddedVideoFile", "Samsung Motion Photo", "samsung_SamsungMotionPhoto.mp4",
                 corpusDir() + "/jpeg/BlueSquare.jpg"},
                {at("google.heic"), mp4, "-MotionPhotoVideo", "Motion Photo", "google_MotionPhoto.mp4",
                 corpusDir() + "/heif/Stonehenge.heic"}};
    }
};

QByteArray exiftoolMovie(const QString& file, const QString& tag) { return run("exiftool", {"-ee", "-b", tag, file}).out; }

QString pixelSizeByFfprobe(const QString& movie) {
    for (const QJsonValue& s : ffprobe(movie).value("streams").toArray()) {
        const QJsonObject stream = s.toObject();
        if (stream.value("codec_type").toString() == "video")
            return QString("%1 x %2").arg(stream.value("width").toInt()).arg(stream.value("height").toInt());
    }
    return {};
}

// The tags exiftool reads differently in two files, but for the motion photo's own, what tells of
// the file itself, where the thumbnail and a HEIF's last data box now sit and the program that
// wrote the XMP.
QStringList differentTags(const QJsonObject& a, const QJsonObject& b) {
    QStringList out;
    for (const QString& key : a.keys() + b.keys()) {
        if (key.startsWith("XMP-GCamera:") || key.startsWith("XMP-Container:") || key.startsWith("File:") ||
            key.startsWith("System:") || key == "SourceFile" || key.startsWith("ExifTool:") || key.contains("EmbeddedVideo") ||
            key.endsWith("MotionPhotoVideo") || key == "IFD1:ThumbnailOffset" || key == "XMP-x:XMPToolkit" ||
            key.startsWith("QuickTime:MediaData"))
            continue;
        if (a.value(key) != b.value(key) && !out.contains(key)) out << key;
    }
    return out;
}

QList<qint64> directoryLengths(const QString& file) {
    QList<qint64> out;
    for (const QByteArray& line : run("exiftool", {"-a", "-s3", "-n", "-XMP-Container:DirectoryItemLength", file}).out.split('\n'))
        if (!line.isEmpty()) out << line.toLongLong();
    return out;
}

}  // namespace

TEST_F(MotionPhotoCommands, ResourcesListAndExtractEachLayoutsMovieByteForByte) {
    const std::vector<Layout> layouts = makeAll();
    QTemporaryDir out;
    QStringList args{"resources"};
    for (const Layout& l : layouts) args << l.file;
    const ProcessResult r = cli(args + QStringList{"--extract", out.path()});
    ASSERT_EQ(r.exitCode, 0) << r.err.constData();
    const QString text = QString::fromUtf8(r.out);
    // The HEIC and the JPEG of Google's layout give the same name; the later one stays.
    for (const Layout& l : layouts) {
        SCOPED_TRACE(l.file.toStdString());
        const QString line = "  " + l.label + "  " + l.movieName + "  ";
        EXPECT_TRUE(text.contains(line)) << text.toStdString();
        const qsizetype from = text.indexOf(line);
        EXPECT_TRUE(text.mid(from, text.indexOf('\n', from) - from).endsWith(pixelSizeByFfprobe(l.movie))) << text.toStdString();
        const QByteArray extracted = readFile(out.filePath(l.movieName));
        EXPECT_EQ(extracted, exiftoolMovie(l.file, l.exiftoolTag));
        EXPECT_EQ(extracted, readFile(l.movie));
    }
    EXPECT_EQ(QDir(out.path()).entryList(QDir::Files).size(), 3);

    const ProcessResult json = cli({"resources", "--json", layouts[0].file});
    const QJsonObject movie = QJsonDocument::fromJson(json.out).array().first().toObject().value("movie").toObject();
    EXPECT_EQ(movie.value("presentationTimestampUs").toInteger(), 500000);
    EXPECT_EQ(movie.value("bytes").toInteger(), QFile(layouts[0].movie).size());
}

TEST_F(MotionPhotoCommands, ABrokenClaimIsNamedAndTheOtherFilesAreStillDone) {
    const QString mp4 = video("small_video.mp4");
    googleMotionPhoto(corpusDir() + "/jpeg/Canon_40D.jpg", mp4, at("broken.jpg"), QFile(mp4).size() * 10);
    googleMotionPhoto(corpusDir() + "/jpeg/Canon_40D.jpg", mp4, at("good.jpg"));
    const QByteArray broken = readFile(at("broken.jpg"));
    QTemporaryDir out;
    const ProcessResult r = cli({"resources", at("broken.jpg"), at("good.jpg"), "--extract", out.path()});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(QString::fromUtf8(r.err).trimmed(),
              at("broken.jpg") + ": the motion photo's directory reaches past the start of the file's attachments");
    EXPECT_EQ(QDir(out.path()).entryList(QDir::Files), QStringList{"good_MotionPhoto.mp4"});
    EXPECT_EQ(readFile(at("broken.jpg")), broken);
    // An edit of it goes on as of a still, and keeps what follows the picture as it was.
    QTemporaryDir edited;
    ASSERT_EQ(cli({"edit", "--date", "2021:02:03 04:05:06", at("broken.jpg"), "-o", edited.path()}).exitCode, 0);
    EXPECT_TRUE(readFile(edited.filePath("broken.jpg")).endsWith(readFile(mp4)));
}

TEST_F(MotionPhotoCommands, EveryEditKeepsTheMovieWhereExiftoolAndFfprobeFindIt) {
    const QString longEvent = QString("An event long enough to grow the XMP before the movie. ").repeated(40);
    for (const Layout& l : makeAll()) {
        SCOPED_TRACE(l.file.toStdString());
        const QString name = QFileInfo(l.file).fileName();
        const QByteArray hashes = streamHashes(l.movie);
        const QList<QStringList> edits{
            {"--date", "2021:02:03 04:05:06", "--set", "IPTC_EVENT=" + longEvent},
            {"--no-tags"},
            {"--shift", "+1 2:00", "--strip", "location"},
        };
        for (const QStringList& wishes : edits) {
            SCOPED_TRACE(wishes.join(' ').left(40).toStdString());
            QTemporaryDir out;
            const ProcessResult r = cli(QStringList{"edit"} + wishes + QStringList{l.file, "-o", out.path()});
            ASSERT_EQ(r.exitCode, 0) << r.err.constData();
            const QString written = out.filePath(name);
            const QByteArray movie = exiftoolMovie(written, l.exiftoolTag);
            EXPECT_EQ(movie, readFile(l.movie));
            QFile extracted(out.filePath("movie"));
            ASSERT_TRUE(extracted.open(QIODevice::WriteOnly));
            extracted.write(movie);
            extracted.close();
            EXPECT_EQ(streamHashes(extracted.fileName()), hashes);
            expectSameImage(l.file, written);
            const QJsonObject tags = tagsOf(written);
            if (wishes.first() == "--date") {
                EXPECT_EQ(tags.value("ExifIFD:DateTimeOriginal").toString(), "2021:02:03 04:05:06");
            } else if (wishes.first() == "--no-tags") {
                EXPECT_FALSE(tags.contains("ExifIFD:DateTimeOriginal"));
            }
            // Google's directory still counts the movie from the end of the file.
            if (l.label == "Motion Photo") {
                EXPECT_EQ(tags.value("XMP-GCamera:MotionPhoto").toInt(), 1);
                EXPECT_EQ(directoryLengths(written), (QList<qint64>{0, movie.size()}));
                EXPECT_TRUE(readFile(written).endsWith(movie));
            }
            if (l.label == "MicroVideo") {
                EXPECT_EQ(tags.value("XMP-GCamera:MicroVideoOffset").toInteger(), movie.size());
            } else if (l.label.startsWith("Samsung")) {
                EXPECT_TRUE(tags.value("Samsung:TimeStamp").toString().startsWith("2023:11:14 22:13:20"));
            }
        }
    }
}

TEST_F(MotionPhotoCommands, StripMotionLeavesTheStillAndEveryOtherTag) {
    for (const Layout& l : makeAll()) {
        SCOPED_TRACE(l.file.toStdString());
        const QString name = QFileInfo(l.file).fileName();
        QTemporaryDir out;
        const ProcessResult r = cli({"edit", "--strip", "motion", l.file, "-o", out.path()});
        ASSERT_EQ(r.exitCode, 0) << r.err.constData();
        EXPECT_TRUE(r.out.contains("{MotionPhoto} removed")) << r.out.constData();
        const QString still = out.filePath(name);
        const QByteArray bytes = readFile(still);
        EXPECT_TRUE(exiftoolMovie(still, l.exiftoolTag).isEmpty());
        EXPECT_FALSE(bytes.contains(readFile(l.movie).mid(64, 64)));
        // The picture is the photo the movie was added to; a Samsung trailer's other blocks stay behind it.
        if (l.label.startsWith("Samsung")) {
            EXPECT_TRUE(tagsOf(still).value("Samsung:TimeStamp").toString().startsWith("2023:11:14 22:13:20"));
            QFile cut(out.filePath("cut.jpg"));
            ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
            cut.write(bytes.left(bytes.indexOf("Image_UTC_Data") - 8));
            cut.close();
            expectSameImage(l.still, cut.fileName());
        } else {
            expectSameImage(l.still, still);
        }
        EXPECT_EQ(differentTags(tagsOf(l.file), tagsOf(still)).join(", "), "");
        for (const QString& key : tagsOf(still).keys())
            EXPECT_FALSE(key.startsWith("XMP-GCamera:") || key.startsWith("XMP-Container:")) << key.toStdString();
        // The still is no motion photo any more, and a second strip finds nothing to do.
        const ProcessResult again = cli({"resources", "--json", still});
        EXPECT_FALSE(QJsonDocument::fromJson(again.out).array().first().toObject().contains("movie"));
        QTemporaryDir twice;
        EXPECT_TRUE(cli({"edit", "--strip", "motion", still, "-o", twice.path()}).out.contains("Nothing changed"));
    }
}
