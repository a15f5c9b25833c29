// SPDX-License-Identifier: GPL-3.0-or-later
// Motion photos in the layouts phones write, made from corpus photos and movies: the movie is
// found where exiftool finds it, and a broken claim gives its reason and leaves a still.
#include "ImageProperties.h"
#include "Isolation.h"
#include "MotionPhoto.h"
#include "MotionPhotos.h"
#include "PropertyKeys.h"
#include "TestSupport.h"

#include <QFile>
#include <gtest/gtest.h>

using namespace imageio;
using namespace testsupport;

namespace {

class MotionPhotos : public IsolatedTest {
protected:
    QString path(const QString& name) { return isolation().root() + "/" + name; }
};

QVariantMap motionGroup(const std::optional<PropertyDict>& props) {
    return props ? props->value(kMotionPhotoDictionary).toMap() : QVariantMap();
}

}  // namespace

TEST_F(MotionPhotos, FindTheMovieWhereExiftoolDoesInEachLayout) {
    const QString mp4 = video("small_video.mp4"), mov = video("apple_meta.mov");
    struct Case {
        QString file, movie, exiftoolTag;
        MotionPhoto::Kind kind;
        std::optional<qint64> timestamp;
    };
    googleMotionPhoto(corpusDir() + "/jpeg/Canon_40D.jpg", mp4, path("google.jpg"));
    microVideo(corpusDir() + "/jpeg/Nikon_D70.jpg", mov, path("micro.jpg"));
    samsungMotionPhoto(corpusDir() + "/jpeg/BlueSquare.jpg", mp4, path("samsung.jpg"));
    googleMotionPhoto(corpusDir() + "/heif/Stonehenge.heic", mp4, path("google.heic"));
    const Case cases[] = {
        {path("google.jpg"), mp4, "-EmbeddedVideo", MotionPhoto::Kind::Google, 500000},
        {path("micro.jpg"), mov, "-EmbeddedVideo", MotionPhoto::Kind::MicroVideo, 250000},
        {path("samsung.jpg"), mp4, "-EmbeddedVideoFile", MotionPhoto::Kind::Samsung, std::nullopt},
        {path("google.heic"), mp4, "-MotionPhotoVideo", MotionPhoto::Kind::Google, 500000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file.toStdString());
        const QByteArray bytes = readFile(c.file);
        QString error;
        const auto motion = findMotionPhoto(bytes, &error);
        ASSERT_TRUE(motion) << error.toStdString();
        EXPECT_TRUE(error.isEmpty());
        EXPECT_EQ(motion->kind, c.kind);
        EXPECT_EQ(motion->presentationTimestampUs, c.timestamp);
        const QByteArray found = bytes.mid(motion->offset, motion->length);
        EXPECT_EQ(found, readFile(c.movie));
        EXPECT_EQ(found, run("exiftool", {"-ee", "-b", c.exiftoolTag, c.file}).out);
        // The reader tells of it, read whole or by pieces alike.
        for (const auto& props : {readProperties(bytes), readFileProperties(c.file)}) {
            const QVariantMap group = motionGroup(props);
            EXPECT_EQ(group.value("Kind").toString(), kindName(c.kind));
            EXPECT_EQ(group.value("VideoLength").toLongLong(), QFile(c.movie).size());
            EXPECT_EQ(group.contains("PresentationTimestampUs"), c.timestamp.has_value());
        }
    }
    // Photos without a movie claim none.
    for (const QString& still : {corpusDir() + "/jpeg/Canon_40D.jpg", corpusDir() + "/heif/IMG_5195.HEIC"}) {
        QString error;
        EXPECT_FALSE(findMotionPhoto(readFile(still), &error));
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
        EXPECT_FALSE(readFileProperties(still)->contains(kMotionPhotoDictionary));
    }
}

TEST_F(MotionPhotos, BrokenClaimsGiveTheirReasonAndLeaveAStill) {
    const QByteArray jpeg = readFile(corpusDir() + "/jpeg/Canon_40D.jpg");
    const QByteArray movie = readFile(video("small_video.mp4"));
    const QByteArray other = readFile(video("apple_meta.mov"));
    const auto google = [&](const QString& length, const QByteArray& tail) {
        return withXmp(jpeg, googleMotionXmp(length)) + tail;
    };
    const auto micro = [&](const QString& offset, const QByteArray& tail) {
        QByteArray xmp = googleMotionXmp(QString::number(movie.size()));
        xmp.replace("GCamera:MotionPhoto=\"1\"", "GCamera:MicroVideo=\"1\" GCamera:MicroVideoOffset=\"" + offset.toUtf8() + "\"");
        xmp.replace("Item:Semantic=\"MotionPhoto\"", "Item:Semantic=\"Other\"");
        return withXmp(jpeg, xmp) + tail;
    };
    QByteArray both = googleMotionXmp(QString::number(movie.size()));
    both.replace("GCamera:MotionPhoto=\"1\"", "GCamera:MotionPhoto=\"1\" GCamera:MicroVideo=\"1\" GCamera:MicroVideoOffset=\"" +
                                                  QByteArray::number(other.size() + movie.size()) + "\"");
    samsungMotionPhoto(corpusDir() + "/jpeg/Canon_40D.jpg", video("small_video.mp4"), path("samsung.jpg"));
    const QByteArray samsung = readFile(path("samsung.jpg"));
    const qint64 dirPos = samsung.size() - 8 - 36;  // two entries
    QByteArray farBack = samsung, noMovie = samsung;
    farBack.replace(dirPos + 16, 4, QByteArray("\xff\xff\xff\x7f", 4));
    noMovie.replace(noMovie.indexOf("MotionPhoto_Data") + 16 + 4, 4, "free");

    const struct {
        const char* what;
        QByteArray bytes;
        const char* reason;
    } cases[] = {
        {"a length longer than the file", google(QString::number(movie.size() + jpeg.size()), movie), "reaches past the start"},
        {"a negative length", google("-5", movie), "no usable length"},
        {"a length no number can hold", google("99999999999999999999999", movie), "no usable length"},
        {"a length that misses the movie", google(QString::number(movie.size() - 8), movie), "no movie where"},
        {"a movie cut short", google(QString::number(movie.size()), movie.left(100)), "reaches past the start"},
        {"a MicroVideoOffset past the start", micro("10000000", movie), "points outside the file"},
        {"a MicroVideoOffset of nothing", micro("0", movie), "points outside the file"},
        {"a MicroVideoOffset that is no number", micro("a lot", movie), "points outside the file"},
        {"directories that disagree", withXmp(jpeg, both) + other + movie, "disagree"},
        {"a Samsung entry before the file", farBack, "Samsung trailer's directory is broken"},
        {"a Samsung marker with no movie behind", noMovie, "no movie behind"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        QString error;
        EXPECT_FALSE(findMotionPhoto(c.bytes, &error));
        EXPECT_TRUE(error.contains(c.reason)) << error.toStdString();
        // The picture still reads, as a still, from bytes and from a file.
        const auto props = readProperties(c.bytes);
        ASSERT_TRUE(props);
        EXPECT_FALSE(props->contains(kMotionPhotoDictionary));
        QFile f(path("broken.jpg"));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(c.bytes);
        f.close();
        const auto fromFile = readFileProperties(f.fileName());
        ASSERT_TRUE(fromFile);
        EXPECT_FALSE(fromFile->contains(kMotionPhotoDictionary));
    }
}
