// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of video items: the texts of durations and codecs, the rows of the sample movies,
// and what cut, audio-only and misnamed movies show.
#include "TSAsset.h"
#include "TestSupport.h"
#include "VideoLoading.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

class VideoAsset : public ::testing::Test {
protected:
    QString write(const QString& name, const QByteArray& bytes) {
        QFile f(dir_.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return f.fileName();
    }
    QTemporaryDir dir_;
};

QString row(const TSAsset& a, TSKey key) { return a.ddStore().value(key).first; }

}  // namespace

TEST(VideoTexts, DurationAndFormat) {
    using videoload::durationText;
    EXPECT_EQ(durationText(0), "00:00");
    EXPECT_EQ(durationText(59), "00:59");
    EXPECT_EQ(durationText(59.5), "01:00");
    EXPECT_EQ(durationText(3599), "59:59");
    EXPECT_EQ(durationText(3600), "1:00:00");
    EXPECT_EQ(durationText(36000 + 61), "10:01:01");
    EXPECT_EQ(durationText(-3600), "-1:00:00");

    using media::FormatDescription;
    EXPECT_EQ(videoload::videoFormat({{"vide", "avc1"}}), "H.264");
    EXPECT_EQ(videoload::videoFormat({{"vide", "hvc1"}, {"vide", "avc1"}}), "HEVC");
    EXPECT_EQ(videoload::videoFormat({{"vide", "hev1"}}), "hev1");
    EXPECT_EQ(videoload::videoFormat({}), "");
}

TEST_F(VideoAsset, AppleMovieFillsItsRows) {
    TSAsset a(video("apple_meta.mov"));
    ASSERT_TRUE(a.isVideo());
    const TSDataStore& s = a.ddStore();
    EXPECT_TRUE(s.completed);
    EXPECT_EQ(row(a, TSKey::DURATION), "00:02");
    EXPECT_EQ(row(a, TSKey::FPS), "30.00");
    EXPECT_EQ(row(a, TSKey::FILETYPE), "H.264");
    EXPECT_EQ(row(a, TSKey::AUDIO_FORMAT), "mp4a");
    EXPECT_EQ(row(a, TSKey::CAMERA), "iPhone 12");
    EXPECT_EQ(row(a, TSKey::VIDEOCAM_MAKER), "Apple");
    EXPECT_EQ(row(a, TSKey::SOFTWARE), "16.5");
    EXPECT_EQ(row(a, TSKey::WxH), "320 x 240 (0.1MP)");
    EXPECT_EQ(row(a, TSKey::ASPECT_RATIO), "4 : 3");
    const QDateTime recorded(QDate(2023, 5, 14), QTime(8, 20, 30), Qt::UTC);
    EXPECT_EQ(row(a, TSKey::EXIF_DATE), "Sunday, 14 May 2023 08:20:30");  // the tests run in UTC
    EXPECT_EQ(s.dates.dict.value("Video Recording"), recorded);
    ASSERT_TRUE(s.location);
    EXPECT_DOUBLE_EQ(s.location->coordinate.latitude, 45.464);
    EXPECT_DOUBLE_EQ(s.location->coordinate.longitude, 9.19);
    EXPECT_EQ(s.locationSource, DataSource::fromExif);
    EXPECT_EQ(row(a, TSKey::EXIF_LOCATION), "45° 27' 50\" N\n9° 11' 23\" E");
    ASSERT_TRUE(a.metaVideo());
    EXPECT_EQ(a.metaVideo()->keySpaces(), QStringList{"mdta"});
    EXPECT_TRUE(s.summaryText().startsWith("This video was taken on "));
    EXPECT_TRUE(s.detailsText().contains("Is video: true\n"));
    EXPECT_FALSE(s.detailsText().contains("Flash"));
}

TEST_F(VideoAsset, RotatedMovieShowsItsUprightSize) {
    TSAsset a(video("apple_meta_rot90.mov"));
    EXPECT_EQ(row(a, TSKey::WxH), "240 x 320 (0.1MP)");
    EXPECT_EQ(TSAsset::firstFrame(video("apple_meta_rot90.mov")).size(), QSize(240, 320));
}

TEST_F(VideoAsset, MovieWithoutSoundOrTags) {
    TSAsset a(video("sample_640x360.mov"));
    EXPECT_EQ(row(a, TSKey::FPS), "29.97");
    EXPECT_EQ(row(a, TSKey::DURATION), "00:13");
    EXPECT_EQ(row(a, TSKey::AUDIO_FORMAT), "--");
    EXPECT_EQ(row(a, TSKey::SOFTWARE), "Lavf57.83.100");
    EXPECT_EQ(row(a, TSKey::CAMERA), "--");
    EXPECT_FALSE(a.ddStore().location);
    TSAsset hevc(video("small_video.mp4"));
    EXPECT_EQ(row(hevc, TSKey::FILETYPE), "hev1");
    EXPECT_EQ(row(hevc, TSKey::WxH), "216 x 384 (0.1MP)");
}

TEST_F(VideoAsset, AudioOnlyMovieEndsBeforeTheAudioRow) {
    const QString m4a = dir_.filePath("sound.mov");
    const ProcessResult r = run("ffmpeg", {"-v", "error", "-i", video("apple_meta.mov"), "-vn", "-c", "copy", m4a});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    TSAsset a(m4a);
    EXPECT_EQ(row(a, TSKey::FPS), "--");
    EXPECT_EQ(row(a, TSKey::AUDIO_FORMAT), "--");
    EXPECT_EQ(row(a, TSKey::DURATION), "00:02");
}

TEST_F(VideoAsset, CutAndMisnamedMovies) {
    const QByteArray whole = readFile(video("apple_meta_rot90.mov"));
    // The header alone: tracks and tags, but no media.
    TSAsset header(write("header.mov", whole.left(4108)));
    EXPECT_TRUE(header.ddStore().completed);
    EXPECT_EQ(row(header, TSKey::CAMERA), "iPhone 12");
    // Too little for a header: placeholders only.
    TSAsset stub(write("stub.mov", whole.left(24)));
    EXPECT_TRUE(stub.ddStore().completed);
    EXPECT_EQ(row(stub, TSKey::DURATION), "??");
    EXPECT_EQ(row(stub, TSKey::FPS), "--");
    ASSERT_TRUE(stub.metaVideo());
    EXPECT_EQ(stub.metaVideo()->keySpaces(), QStringList());
    // A movie named as a photo is read as the movie it is.
    TSAsset misnamed(write("clip.jpg", whole));
    EXPECT_TRUE(misnamed.isVideo());
    EXPECT_EQ(row(misnamed, TSKey::FPS), "30.00");
}
