// SPDX-License-Identifier: GPL-3.0-or-later
// The movie reader over the sample movies, with ffprobe and exiftool, run live, as the oracles;
// and over cut and damaged movies, which must give what they can and never crash.
#include "MovieReader.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTimeZone>

using namespace media;
using namespace testsupport;

namespace {

const MetadataItem* find(const MovieInfo& info, const QString& identifier) {
    for (const MetadataItem& i : info.metadata)
        if (i.identifier == identifier) return &i;
    return nullptr;
}

}  // namespace

TEST(MovieReader, TracksAgreeWithFfprobe) {
    const QStringList files = movies();
    ASSERT_EQ(files.size(), 4);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const QByteArray bytes = readFile(file);
        QString error;
        const auto info = readMovie(bytes, &error);
        ASSERT_TRUE(info) << error.toStdString();
        const QJsonObject probe = ffprobe(file);
        ASSERT_TRUE(info->duration);
        EXPECT_NEAR(*info->duration, probe["format"]["duration"].toString().toDouble(), 0.001);
        const QJsonArray streams = probe["streams"].toArray();
        ASSERT_EQ(info->tracks.size(), streams.size());
        for (qsizetype i = 0; i < streams.size(); ++i) {
            const QJsonObject s = streams[i].toObject();
            const Track& t = info->tracks[i];
            ASSERT_EQ(t.formatDescriptions.size(), 1);
            EXPECT_EQ(t.formatDescriptions[0].mediaSubtype, s["codec_tag_string"].toString());
            if (s["codec_type"] == "video") {
                EXPECT_EQ(t.mediaType, "vide");
                EXPECT_EQ(t.naturalSize, QSizeF(s["width"].toInt(), s["height"].toInt()));
                const QStringList rate = s["avg_frame_rate"].toString().split('/');
                ASSERT_TRUE(t.nominalFrameRate);
                EXPECT_NEAR(*t.nominalFrameRate, rate[0].toDouble() / rate[1].toDouble(), 1e-9);
            } else {
                EXPECT_EQ(t.mediaType, "soun");
            }
        }
    }
}

TEST(MovieReader, QuickTimeMetadataItems) {
    const auto info = readMovie(readFile(video("apple_meta.mov")));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->availableMetadataFormats(), QStringList{"com.apple.quicktime.mdta"});
    ASSERT_EQ(info->metadata.size(), 6);
    struct Expected {
        const char *identifier, *common, *text;
    };
    const Expected expected[] = {
        {"mdta/com.apple.quicktime.location.ISO6709", "location", "+45.4640+009.1900+120.000/"},
        {"mdta/com.apple.quicktime.creationdate", "creationDate", "2023-05-14T10:20:30+0200"},
        {"mdta/com.apple.quicktime.make", "make", "Apple"},
        {"mdta/com.apple.quicktime.model", "model", "iPhone 12"},
        {"mdta/com.apple.quicktime.software", "software", "16.5"},
        {"mdta/encoder", "", "Lavf59.27.100"},
    };
    for (qsizetype i = 0; i < 6; ++i) {
        const MetadataItem& item = info->metadata[i];
        EXPECT_EQ(item.keySpace, "mdta");
        EXPECT_EQ(item.identifier, expected[i].identifier);
        EXPECT_EQ(item.commonKey, expected[i].common);
        EXPECT_EQ(item.stringValue(), expected[i].text);
        EXPECT_EQ(item.dataType, DataType::utf8);
    }
    // The date is an instant: 10:20:30 at +02:00.
    const auto date = info->metadata[1].dateValue();
    ASSERT_TRUE(date);
    EXPECT_EQ(date->toUTC(), QDateTime(QDate(2023, 5, 14), QTime(8, 20, 30), Qt::UTC));
}

TEST(MovieReader, UserDataAndITunesItems) {
    // FFmpeg's muxer leaves its name as QuickTime user data in a .mov, as an iTunes item in .mp4.
    const auto mov = readMovie(readFile(video("sample_640x360.mov")));
    ASSERT_TRUE(mov);
    const MetadataItem* swr = find(*mov, "udta/%A9swr");
    ASSERT_TRUE(swr);
    EXPECT_EQ(swr->keySpace, "udta");
    EXPECT_EQ(swr->key, QByteArray("\xA9swr"));
    EXPECT_EQ(swr->commonKey, "software");
    EXPECT_EQ(swr->stringValue(), "Lavf57.83.100");

    const auto mp4 = readMovie(readFile(video("small_video.mp4")));
    ASSERT_TRUE(mp4);
    const MetadataItem* too = find(*mp4, "itsk/%A9too");
    ASSERT_TRUE(too);
    EXPECT_EQ(too->commonKey, "software");
    EXPECT_EQ(too->stringValue(), "Lavf59.27.100");
    EXPECT_EQ(mp4->availableMetadataFormats(), QStringList{"com.apple.itunes"});
}

TEST(MovieReader, RotationComesFromTheTrackMatrix) {
    const auto plain = readMovie(readFile(video("apple_meta.mov")));
    const auto turned = readMovie(readFile(video("apple_meta_rot90.mov")));
    ASSERT_TRUE(plain && turned);
    const Track v = turned->tracksOfType("vide").first();
    EXPECT_EQ(v.preferredTransform, QTransform(0, 1, -1, 0, 240, 0));
    EXPECT_EQ(presentationSize(v), QSizeF(240, 320));
    EXPECT_EQ(presentationSize(plain->tracksOfType("vide").first()), QSizeF(320, 240));
}

TEST(MovieReader, FirstFrameIsTurnedUpright) {
    const QImage plain = firstFrame(readFile(video("apple_meta.mov")));
    const QImage turned = firstFrame(readFile(video("apple_meta_rot90.mov")));
    ASSERT_FALSE(plain.isNull());
    ASSERT_FALSE(turned.isNull());
    EXPECT_EQ(plain.size(), QSize(320, 240));
    EXPECT_EQ(turned.size(), QSize(240, 320));
    // Both files hold the same pictures; one is to be shown a quarter turn clockwise.
    EXPECT_EQ(turned, plain.transformed(QTransform().rotate(90)));
    const QImage hevc = firstFrame(readFile(video("small_video.mp4")));
    EXPECT_EQ(hevc.size(), QSize(216, 384));
    QString error;
    EXPECT_TRUE(firstFrame(QByteArray("not a movie at all"), &error).isNull());
    EXPECT_FALSE(error.isEmpty());
}

TEST(MovieReader, CutAndDamagedMoviesNeverCrash) {
    ASSERT_EQ(movies().size(), 4);
    for (const QString& file : movies()) {
        SCOPED_TRACE(file.toStdString());
        const QByteArray whole = readFile(file);
        // Exact-size copies, so a read one past the end is a read outside the bytes.
        for (qsizetype n = 0; n < whole.size(); n += std::max<qsizetype>(1, whole.size() / 200)) {
            const QByteArray cut(whole.constData(), n);
            readMovie(cut);
        }
        QRandomGenerator random(42);
        for (int round = 0; round < 100; ++round) {
            QByteArray damaged = whole;
            for (int k = 0; k < 8; ++k) damaged[random.bounded(int(damaged.size()))] = char(random.bounded(256));
            readMovie(damaged);
        }
    }
    for (const QString& file : malformedFiles()) readMovie(readFile(file));
    EXPECT_FALSE(readMovie(QByteArray()));
}

TEST(MovieReader, AtomSizesAreCheckedAgainstTheirParent) {
    // An item list whose entry claims more bytes than its parent holds gives no item, and no read
    // outside the bytes.
    QByteArray ilstEntry = makeAtom(1, makeAtom(fourcc("data"), QByteArray("\0\0\0\1\0\0\0\0abc", 11)));
    ilstEntry[3] = char(0x7F);  // entry size far beyond the list
    QByteArray keys;
    appendBe32(keys, 0);
    appendBe32(keys, 1);
    appendBe32(keys, 8 + 4);
    keys += "mdtaname";
    QByteArray meta;
    appendBe32(meta, 0);
    meta += makeAtom(fourcc("hdlr"), QByteArray(8, '\0') + "mdta" + QByteArray(13, '\0'));
    meta += makeAtom(fourcc("keys"), keys) + makeAtom(fourcc("ilst"), ilstEntry);
    const QByteArray moovBytes = makeAtom(fourcc("moov"), makeAtom(fourcc("meta"), meta));
    const ByteView view(moovBytes);
    const auto top = children(view, 0, view.size());
    ASSERT_EQ(top.atoms.size(), 1);
    EXPECT_TRUE(readMetadataItems(view, top.atoms[0]).isEmpty());
}

TEST(MovieReader, HostileKeyCountStillGivesTheTracks) {
    // A 'keys' atom that claims 128 million entries: FFmpeg is shown the count that is there, so
    // it neither clears a gigabyte nor gives up on the movie.
    QByteArray bytes = readFile(video("apple_meta.mov"));
    const qsizetype keys = bytes.indexOf("keys");
    ASSERT_GT(keys, 0);
    bytes.replace(keys + 8, 4, QByteArray("\x08\x00\x00\x00", 4));
    const auto info = readMovie(bytes);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->tracks.size(), 2);
    EXPECT_EQ(info->metadata.size(), 6);
    EXPECT_EQ(bytes.mid(keys + 8, 4), QByteArray("\x08\x00\x00\x00", 4));  // the bytes themselves are left alone
    // The same with the atom claiming more than its parent holds, which FFmpeg cuts to size.
    bytes.replace(keys - 4, 4, QByteArray("\x00\x01\x19\x6b", 4));
    const auto cut = readMovie(bytes);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->tracks.size(), 2);
}
