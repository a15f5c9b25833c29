// SPDX-License-Identifier: GPL-3.0-or-later
// The movie writer: every packet of every stream stays the same (FFmpeg's stream hashes, run
// live), the items read back as written, offsets follow a header that grows or shrinks before
// the media, and a failed write leaves nothing behind.
#include "MovieReader.h"
#include "MovieWriter.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>

using namespace media;
using namespace testsupport;

namespace {

// One line per stream: its index, type and the SHA-256 of all its packets.
QString ffprobeTags(const QString& path) {
    return QString::fromUtf8(run("ffprobe", {"-v", "error", "-show_entries", "format_tags:stream_side_data", "-of", "flat", path}).out);
}

QList<MetadataItem> itemsOf(const QString& path) {
    auto info = readMovie(readFile(path));
    EXPECT_TRUE(info);
    return info ? info->metadata : QList<MetadataItem>();
}

void expectSameItems(const QList<MetadataItem>& a, const QList<MetadataItem>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (qsizetype i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].identifier, b[i].identifier);
        EXPECT_EQ(a[i].stored, b[i].stored);
        EXPECT_EQ(a[i].dataType, b[i].dataType);
        EXPECT_EQ(a[i].locale, b[i].locale);
        EXPECT_EQ(a[i].value, b[i].value);
    }
}

QStringList entries(const QString& dir) { return QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot); }

// Top-level atoms as "type@offset".
QStringList layout(const QByteArray& bytes) {
    QStringList out;
    const ByteView v(bytes);
    for (const Atom& a : children(v, 0, v.size()).atoms) out << QStringLiteral("%1@%2").arg(fourccText(a.type)).arg(a.offset);
    return out;
}

MetadataItem item(const char* space, const QByteArray& key, quint32 type, quint32 locale, const QByteArray& stored,
                  const QByteArray& keyNamespace = "mdta") {
    MetadataItem i;
    i.keySpace = space;
    i.key = key;
    i.identifier = makeIdentifier(space, key);
    i.commonKey = commonKeyFor(space, key);
    i.dataType = type;
    i.locale = locale;
    i.stored = stored;
    i.keyNamespace = keyNamespace;
    i.value = decodeData(type, stored);
    return i;
}

class Writer : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir_.isValid()); }
    QString path(const QString& name) const { return dir_.filePath(name); }
    // Makes a movie of the sample with FFmpeg's own options, in the test's folder.
    QString remux(const QString& sample, const QString& name, const QStringList& options) {
        const QString out = path(name);
        const ProcessResult r = run("ffmpeg", QStringList{"-v", "error", "-i", video(sample), "-map", "0", "-c", "copy"} +
                                                  options + QStringList{out});
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        return out;
    }
    QTemporaryDir dir_;
};

}  // namespace

TEST_F(Writer, SameItemsGiveTheSameMovie) {
    ASSERT_EQ(movies().size(), 4);
    for (const QString& file : movies()) {
        SCOPED_TRACE(file.toStdString());
        const QList<MetadataItem> items = itemsOf(file);
        const QString out = path(QFileInfo(file).completeBaseName() + ".out");
        QString error;
        ASSERT_TRUE(writeMovie(file, out, {items, true}, &error)) << error.toStdString();
        expectSameItems(itemsOf(out), items);
        EXPECT_EQ(streamHashes(out), streamHashes(file));
        EXPECT_EQ(ffprobeTags(out), ffprobeTags(file));
        // Nothing but the metadata is rebuilt, so the movie keeps its size.
        EXPECT_EQ(QFileInfo(out).size(), QFileInfo(file).size());
    }
}

TEST_F(Writer, HeaderBeforeTheMediaGrowsAndTheChunkOffsetsFollow) {
    const QString source = video("apple_meta_rot90.mov");  // moov before mdat
    QList<MetadataItem> items = itemsOf(source);
    const QString big(5000, u'x');
    items << MetadataItem::quickTimeText("com.apple.quicktime.description", big);
    const QString out = path("grown.mov");
    QString error;
    ASSERT_TRUE(writeMovie(source, out, {items, true}, &error)) << error.toStdString();
    const QByteArray before = readFile(source), after = readFile(out);
    EXPECT_EQ(layout(before), QStringList({"ftyp@0", "moov@20", "mdat@4108"}));
    const QStringList afterLayout = layout(after);
    ASSERT_EQ(afterLayout.size(), 3);
    EXPECT_NE(afterLayout[2], "mdat@4108");
    EXPECT_EQ(streamHashes(out), streamHashes(source));
    const QList<MetadataItem> read = itemsOf(out);
    ASSERT_EQ(read.size(), 7);
    EXPECT_EQ(read.last().stringValue(), big);
    EXPECT_EQ(read.last().commonKey, "description");
    // The matrix turns the picture as before.
    EXPECT_TRUE(ffprobeTags(out).contains("rotation=-90"));
}

TEST_F(Writer, HeaderBeforeTheMediaShrinksIntoPadding) {
    const QString source = video("apple_meta_rot90.mov");
    const QString out = path("bare.mov");
    ASSERT_TRUE(writeMovie(source, out, {{}, false}));
    const QByteArray after = readFile(out);
    // The media stay where they were, behind a free atom where the items were.
    EXPECT_EQ(layout(after), QStringList({"ftyp@0", "moov@20", "free@3606", "mdat@4108"}));
    EXPECT_TRUE(itemsOf(out).isEmpty());
    EXPECT_EQ(streamHashes(out), streamHashes(source));
}

TEST_F(Writer, GrowthTakesRoomFromAFreeAtomBehindTheHeader) {
    // FFmpeg reserves room for the header at the start of the file and fills the rest with a free atom.
    const QString source = remux("apple_meta.mov", "reserved.mov",
                                 {"-movflags", "use_metadata_tags", "-moov_size", "20000"});
    const QStringList before = layout(readFile(source));
    ASSERT_TRUE(before.contains("free@" + before[1].section('@', 1).split('@')[0]) || before.size() >= 3);
    QList<MetadataItem> items = itemsOf(source);
    items << MetadataItem::quickTimeText("com.apple.quicktime.description", QString(3000, u'y'));
    const QString out = path("reserved-out.mov");
    QString error;
    ASSERT_TRUE(writeMovie(source, out, {items, true}, &error)) << error.toStdString();
    const QStringList after = layout(readFile(out));
    // The media data start where they did.
    EXPECT_EQ(before.filter("mdat@"), after.filter("mdat@"));
    EXPECT_EQ(QFileInfo(out).size(), QFileInfo(source).size());
    EXPECT_EQ(streamHashes(out), streamHashes(source));
    EXPECT_EQ(itemsOf(out).last().stringValue(), QString(3000, u'y'));
}

TEST_F(Writer, NewItemsGoWhereThePlatformLooksForThem) {
    // No QuickTime metadata in the source: a new 'meta' under moov, which ffprobe and exiftool read.
    for (const QString& sample : {QStringLiteral("small_video.mp4"), QStringLiteral("sample_640x360.mov")}) {
        SCOPED_TRACE(sample.toStdString());
        const QString source = video(sample);
        QList<MetadataItem> items = itemsOf(source);
        items << MetadataItem::quickTimeText("com.apple.quicktime.location.ISO6709", "+45.5000-122.2500+10/");
        const QString out = path(sample + ".out");
        ASSERT_TRUE(writeMovie(source, out, {items, true}));
        EXPECT_TRUE(ffprobeTags(out).contains("format.tags.com_apple_quicktime_location_ISO6709=\"+45.5000-122.2500+10/\""))
            << ffprobeTags(out).toStdString();
        const QJsonValue et = exiftoolJson(out, {"-n", "-G1", "-Keys:GPSCoordinates"});
        EXPECT_EQ(et["Keys:GPSCoordinates"].toString(), "45.5 -122.25 10");
        // The reader lists QuickTime metadata first.
        items.prepend(items.takeLast());
        expectSameItems(itemsOf(out), items);
        EXPECT_EQ(streamHashes(out), streamHashes(source));
    }
}

TEST_F(Writer, FragmentedMovieKeepsItsFragments) {
    const QString source = remux("apple_meta.mov", "fragmented.mp4", {"-movflags", "frag_keyframe+empty_moov+use_metadata_tags"});
    // Dropping items shrinks the header into padding: the fragments stay where they are.
    const QString smaller = path("fragmented-smaller.mp4");
    QString error;
    ASSERT_TRUE(writeMovie(source, smaller, {{}, true}, &error)) << error.toStdString();
    EXPECT_EQ(streamHashes(smaller), streamHashes(source));
    // Growing it would move fragments whose offsets may be absolute: refused, nothing written.
    QList<MetadataItem> items = itemsOf(source);
    items << MetadataItem::quickTimeText("com.apple.quicktime.description", QString(3000, u'z'));
    const QString larger = path("fragmented-larger.mp4");
    EXPECT_FALSE(writeMovie(source, larger, {items, true}, &error));
    EXPECT_TRUE(error.contains("fragmented")) << error.toStdString();
    EXPECT_FALSE(QFile::exists(larger));
}

TEST_F(Writer, FailuresLeaveNoFileBehind) {
    const QString source = video("apple_meta.mov");
    const QList<MetadataItem> items = itemsOf(source);
    QString error;
    QTemporaryDir out;
    // A cut movie is refused before anything is written.
    const QString cut = path("cut.mov");
    {
        QFile f(cut);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(readFile(source).left(20000));
    }
    EXPECT_FALSE(writeMovie(cut, out.filePath("a.mov"), {items, true}, &error));
    EXPECT_TRUE(error.contains("cut short")) << error.toStdString();
    // An existing file is never replaced.
    QFile existing(out.filePath("b.mov"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("keep me");
    existing.close();
    EXPECT_FALSE(writeMovie(source, out.filePath("b.mov"), {items, true}, &error));
    EXPECT_EQ(readFile(out.filePath("b.mov")), "keep me");
    // A folder that isn't there.
    EXPECT_FALSE(writeMovie(source, out.filePath("no/such/folder/c.mov"), {items, true}, &error));
    // A write cut short by the file size limit: the temporary file goes, the source stays.
    const QByteArray original = readFile(source);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 16000;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool written = writeMovie(source, out.filePath("d.mov"), {items, true}, &error);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_FALSE(written);
    EXPECT_EQ(entries(out.path()), QStringList{"b.mov"});
    EXPECT_EQ(readFile(source), original);
}

TEST_F(Writer, InMemoryRewriteMatchesTheFileOne) {
    const QString source = video("apple_meta_rot90.mov");
    QList<MetadataItem> items = itemsOf(source);
    items.removeFirst();
    const QString out = path("mem.mov");
    ASSERT_TRUE(writeMovie(source, out, {items, true}));
    QString error;
    const auto bytes = rewriteMovie(readFile(source), {items, true}, &error);
    ASSERT_TRUE(bytes) << error.toStdString();
    EXPECT_EQ(*bytes, readFile(out));
    EXPECT_FALSE(rewriteMovie(QByteArray("\0\0\0\x08" "free", 8), {items, true}, &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST_F(Writer, EveryKeySpaceIsWrittenAsItsReadersExpect) {
    const QString source = video("apple_meta.mov");
    QList<MetadataItem> items = itemsOf(source);
    constexpr quint32 und = 0x55C4;  // "und", packed
    items << item("udta", "\xA9nam", DataType::utf8, und, "Udta title");
    items << item("itsk", "\xA9nam", DataType::utf8, 0, "iTunes title");
    items << item("itsk", "com.apple.iTunes:MOOD", DataType::utf8, 0, "calm", "----");
    items << item("uiso", "titl", DataType::reserved, und, QByteArray("\0\0\0\0\x55\xC4" "3GPP title\0", 17));
    const QByteArray body = QByteArray(1, 3) + "ID3 title";
    items << item("org.id3", "TIT2", 4, und, "TIT2" + QByteArray(3, 0) + char(body.size()) + QByteArray(2, 0) + body);
    const QString out = path("spaces.mov");
    QString error;
    ASSERT_TRUE(writeMovie(source, out, {items, true}, &error)) << error.toStdString();
    const QList<MetadataItem> read = itemsOf(out);
    ASSERT_EQ(read.size(), items.size());
    for (qsizetype i = 0; i < read.size(); ++i) {
        SCOPED_TRACE(read[i].identifier.toStdString());
        EXPECT_EQ(read[i].identifier, items[i].identifier);
        EXPECT_EQ(read[i].stored, items[i].stored);
        EXPECT_EQ(read[i].locale, items[i].locale);
    }
    EXPECT_EQ(read[6].stringValue(), "Udta title");
    EXPECT_EQ(read[9].stringValue(), "3GPP title");
    EXPECT_EQ(read[10].stringValue(), "ID3 title");
    EXPECT_EQ(read[10].commonKey, "title");
    const QJsonObject et = exiftoolJson(out, {"-a", "-G1", "-UserData:Title", "-ItemList:Title", "-iTunes:Mood"}).toObject();
    EXPECT_EQ(et["UserData:Title"].toString(), "Udta title");
    EXPECT_EQ(et["ItemList:Title"].toString(), "iTunes title");
    EXPECT_EQ(et["iTunes:Mood"].toString(), "calm");
    EXPECT_TRUE(ffprobeTags(out).contains("format.tags.title=\"iTunes title\""));
    EXPECT_EQ(streamHashes(out), streamHashes(source));
}
