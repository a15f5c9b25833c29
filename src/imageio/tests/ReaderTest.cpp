// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageProperties.h"
#include "PropertyKeys.h"
#include "CameraFiles.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <vector>

using namespace imageio;
using namespace testsupport;

namespace {

// The reader either answers or says why not; "nothing" without a reason is a fault.
void expectAnswerOrReason(const QByteArray& bytes, const std::string& what) {
    // An exact-size copy: QByteArray keeps a terminating zero that would hide a read one past the end.
    const std::vector<char> exact(bytes.begin(), bytes.end());
    QString error;
    auto props = readProperties(QByteArray::fromRawData(exact.data(), qsizetype(exact.size())), &error);
    if (!props) {
        EXPECT_FALSE(error.isEmpty()) << what << ": nothing read and no reason given";
    }
}

// Hostile, cut short and damaged inputs: no crash, hang or sanitizer report, whatever the bytes.
TEST(ReaderRobustness, MalformedFiles) {
    const QStringList files = malformedFiles();
    ASSERT_EQ(files.size(), 13);
    for (const QString& file : files) expectAnswerOrReason(readFile(file), file.toStdString());
}

TEST(ReaderRobustness, TruncatedAndDamagedFiles) {
    const QStringList files = corpusFiles() + malformedFiles();
    ASSERT_EQ(files.size(), 73);
    for (const QString& file : files) {
        const QByteArray whole = readFile(file);
        const qsizetype n = whole.size();
        for (qsizetype cut : {qsizetype(0), qsizetype(1), qsizetype(2), qsizetype(4), qsizetype(8), qsizetype(16),
                              qsizetype(64), qsizetype(512), qsizetype(4096), n / 2, n - 1}) {
            if (cut < 0 || cut >= n) continue;
            expectAnswerOrReason(whole.left(cut), file.toStdString() + " cut at " + std::to_string(cut));
        }
        // Damage spread over the whole file, and damage in the headers where the offsets are.
        for (qsizetype step : {n / 7 + 1, qsizetype(13)}) {
            QByteArray damaged = whole;
            for (qsizetype at = 5; at < qMin(n, step * 64); at += step) damaged[at] = char(~damaged[at]);
            expectAnswerOrReason(damaged, file.toStdString() + " flipped every " + std::to_string(step));
        }
    }
}

QByteArray ftyp(const QByteArray& major, const QList<QByteArray>& compatible) {
    QByteArray box(4, '\0');
    box += "ftyp" + major + QByteArray(4, '\0');
    for (const QByteArray& c : compatible) box += c;
    qToBigEndian<quint32>(quint32(box.size()), box.data());
    return box + QByteArray(8, '\0');
}

TEST(Reader, DetectsTheFormatFromTheBytes) {
    EXPECT_EQ(detectFormat(ftyp("heic", {"mif1", "heic"})), Format::Heif);
    EXPECT_EQ(detectFormat(ftyp("mif1", {"mif1", "miaf"})), Format::Heif);  // brand only among the compatible ones
    EXPECT_EQ(detectFormat(ftyp("avif", {"mif1", "avif"})), Format::Avif);
    EXPECT_EQ(detectFormat(ftyp("crx ", {"crx "})), Format::Cr3);
    EXPECT_EQ(detectFormat(ftyp("qt  ", {"qt  "})), Format::Movie);
    EXPECT_EQ(detectFormat(ftyp("isom", {"isom", "mp41"})), Format::Movie);
    EXPECT_EQ(detectFormat("\xFF\xD8\xFF"), Format::Jpeg);
    EXPECT_EQ(detectFormat("\x89PNG\r\n\x1a\n"), Format::Png);
    EXPECT_EQ(detectFormat("GIF89a"), Format::Unknown);

    // Names play no part: every sample is known by its bytes, whatever its extension.
    for (const QString& file : corpusFiles()) {
        const Format f = detectFormat(readFile(file));
        const QString ext = file.section('.', -1).toLower();
        const Format expected = file.contains("/video/")             ? Format::Movie
                                : ext == "jpg" || ext == "jpeg"      ? Format::Jpeg
                                : ext == "png"                       ? Format::Png
                                : ext == "webp"                      ? Format::WebP
                                : ext == "heic"                      ? Format::Heif
                                : ext == "avif"                      ? Format::Avif
                                                                     : Format::Tiff;
        EXPECT_EQ(f, expected) << file.toStdString() << " read as " << formatName(f).toStdString();
    }
}

TEST(Reader, ReadsAFujifilmRawFileAsExiftoolDoes) {
    const QByteArray raf = fujifilmRaf(readFile(corpusDir() + "/jpeg/canon_hdr_YES.jpg"));
    ASSERT_EQ(detectFormat(raf), Format::Raf);
    QTemporaryDir dir;
    const QString path = dir.filePath("DSCF0001.RAF");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(raf);
    file.close();
    // What `exiftool -n` reads of this file (FileType RAF), typed here: these tests also run under
    // ThreadSanitizer, which can't follow a process started from a threaded one.
    QString error;
    const auto props = readFileProperties(path, &error);
    ASSERT_TRUE(props) << error.toStdString();
    EXPECT_EQ(props->value(kCGImagePropertyPixelWidth).toInt(), 2048);
    EXPECT_EQ(props->value(kCGImagePropertyPixelHeight).toInt(), 1536);
    EXPECT_EQ(props->value(kCGImagePropertyOrientation).toInt(), 6);
    EXPECT_EQ(props->value(kCGImagePropertyExifDictionary).toMap().value(kCGImagePropertyExifDateTimeOriginal).toString(),
              "2015:02:09 22:48:10");
}

TEST(Reader, RefusesMoviesAndEmptyBytesWithAReason) {
    QString error;
    EXPECT_FALSE(readProperties(QByteArray(), &error));
    EXPECT_FALSE(error.isEmpty());

    QStringList movies = corpusFiles().filter("/video/");
    ASSERT_EQ(movies.size(), 4);
    for (const QString& file : movies) {
        error.clear();
        EXPECT_FALSE(readProperties(readFile(file), &error)) << file.toStdString();
        EXPECT_FALSE(error.isEmpty()) << file.toStdString();
    }
}

// A little-endian TIFF structure, written field by field, for an Exif block of known content.
class TiffWriter {
public:
    struct Entry {
        quint16 tag, type;
        quint32 count;
        QByteArray data;  // the value bytes, little-endian
    };
    static Entry ascii(quint16 tag, const QByteArray& s) { return {tag, 2, quint32(s.size() + 1), s + '\0'}; }
    static Entry shortValue(quint16 tag, quint16 v) { return {tag, 3, 1, le(v) + QByteArray(2, '\0')}; }
    static Entry longValue(quint16 tag, quint32 v) { return {tag, 4, 1, le(v)}; }
    static Entry rationals(quint16 tag, std::initializer_list<std::pair<quint32, quint32>> rs, quint16 type = 5) {
        QByteArray d;
        for (auto [num, den] : rs) d += le(num) + le(den);
        return {tag, type, quint32(rs.size()), d};
    }
    static Entry undefined(quint16 tag, const QByteArray& d) { return {tag, 7, quint32(d.size()), d}; }

    // Lays out the directory at `at` (offset from the TIFF header); its big values follow it.
    static QByteArray directory(quint32 at, QList<Entry> entries) {
        std::sort(entries.begin(), entries.end(), [](auto& a, auto& b) { return a.tag < b.tag; });
        QByteArray dir = le(quint16(entries.size())), extra;
        const quint32 extraAt = at + 2 + 12 * quint32(entries.size()) + 4;
        for (const Entry& e : entries) {
            dir += le(e.tag) + le(e.type) + le(e.count);
            if (e.data.size() <= 4) {
                dir += e.data.leftJustified(4, '\0');
            } else {
                dir += le(quint32(extraAt + extra.size()));
                extra += e.data;
                if (extra.size() % 2) extra += '\0';
            }
        }
        return dir + le(quint32(0)) + extra;
    }

    template <typename T>
    static QByteArray le(T v) {
        QByteArray b(sizeof(T), '\0');
        qToLittleEndian(v, b.data());
        return b;
    }
};

QByteArray jpegWithExif(const QByteArray& tiff) {
    QByteArray app1 = "Exif" + QByteArray(2, '\0') + tiff;
    QByteArray out("\xFF\xD8\xFF\xE1", 4);
    out += char((app1.size() + 2) >> 8);
    out += char((app1.size() + 2) & 0xFF);
    out += app1;
    // A baseline frame header, 3 × 2 pixels, three components, then the end.
    out += QByteArray::fromHex("FFC0001108000200030301220002110103110100");
    out += QByteArray::fromHex("FFD9");
    return out;
}

TEST(Reader, ReadsAKnownExifBlockExactly) {
    using T = TiffWriter;
    // IFD0 at 8, then the Exif and GPS directories at fixed places further on.
    const quint32 exifAt = 400, gpsAt = 700;
    QByteArray ifd0 = T::directory(8, {T::ascii(0x010f, "Tessorin"), T::ascii(0x0110, "Test Camera"),
                                       T::shortValue(0x0112, 6), T::ascii(0x0132, "2021:03:04 05:06:07"),
                                       T::longValue(0x8769, exifAt), T::longValue(0x8825, gpsAt)});
    QByteArray exif = T::directory(
        exifAt, {T::rationals(0x829a, {{1, 250}}), T::rationals(0x829d, {{28, 10}}), T::shortValue(0x8827, 400),
                 T::undefined(0x9000, "0232"), T::ascii(0x9003, "2021:03:04 05:06:07"),
                 T::ascii(0x9011, "+02:00"), T::rationals(0x9204, {{quint32(-2), 3}}, 10),
                 T::undefined(0x9286, QByteArray("ASCII\0\0\0Hello there", 19)), T::shortValue(0x9209, 16)});
    QByteArray gps = T::directory(
        gpsAt, {T::Entry{0x0000, 1, 4, QByteArray("\x02\x03\x00\x00", 4)}, T::ascii(0x0001, "S"),
                T::rationals(0x0002, {{33, 1}, {52, 1}, {3036, 100}}), T::ascii(0x0003, "E"),
                T::rationals(0x0004, {{151, 1}, {12, 1}, {3000, 100}}), T::rationals(0x0006, {{585, 10}})});
    ASSERT_LE(8 + ifd0.size(), exifAt);
    ASSERT_LE(exifAt + exif.size(), gpsAt);
    QByteArray tiff = QByteArray("II*\0", 4) + T::le(quint32(8)) + ifd0;
    tiff = tiff.leftJustified(exifAt, '\0') + exif;
    tiff = tiff.leftJustified(gpsAt, '\0') + gps;
    const QByteArray jpeg = jpegWithExif(tiff);

    QString error;
    auto props = readProperties(jpeg, &error);
    ASSERT_TRUE(props) << error.toStdString();
    const QVariantMap p = *props, t = p["{TIFF}"].toMap(), e = p["{Exif}"].toMap(), g = p["{GPS}"].toMap();
    EXPECT_EQ(p["PixelWidth"].toInt(), 3);
    EXPECT_EQ(p["PixelHeight"].toInt(), 2);
    EXPECT_EQ(p["Orientation"].toInt(), 6);
    EXPECT_EQ(p["FileSize"].toLongLong(), jpeg.size());
    EXPECT_EQ(t["Make"].toString(), "Tessorin");
    EXPECT_EQ(t["Model"].toString(), "Test Camera");
    EXPECT_EQ(t["DateTime"].toString(), "2021:03:04 05:06:07");
    EXPECT_DOUBLE_EQ(e["ExposureTime"].toDouble(), 0.004);
    EXPECT_DOUBLE_EQ(e["FNumber"].toDouble(), 2.8);
    EXPECT_EQ(e["ISOSpeedRatings"].toList(), QVariantList{400});
    EXPECT_EQ(e["ExifVersion"].toList(), (QVariantList{2, 3, 2}));
    EXPECT_EQ(e["DateTimeOriginal"].toString(), "2021:03:04 05:06:07");
    EXPECT_EQ(e["OffsetTimeOriginal"].toString(), "+02:00");
    EXPECT_DOUBLE_EQ(e["ExposureBiasValue"].toDouble(), -2.0 / 3);
    EXPECT_EQ(e["UserComment"].toString(), "Hello there");
    EXPECT_EQ(e["Flash"].toInt(), 16);
    EXPECT_EQ(g["GPSVersion"].toList(), (QVariantList{2, 3, 0, 0}));
    EXPECT_EQ(g["LatitudeRef"].toString(), "S");
    EXPECT_NEAR(g["Latitude"].toDouble(), 33 + 52 / 60.0 + 30.36 / 3600, 1e-9);
    EXPECT_EQ(g["LongitudeRef"].toString(), "E");
    EXPECT_NEAR(g["Longitude"].toDouble(), 151 + 12 / 60.0 + 30 / 3600.0, 1e-9);
    EXPECT_DOUBLE_EQ(g["Altitude"].toDouble(), 58.5);
}

}  // namespace
