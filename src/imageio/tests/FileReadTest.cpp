// SPDX-License-Identifier: GPL-3.0-or-later
// Reading a file by its metadata parts only, and reading and writing from many threads at once.
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "PropertyKeys.h"
#include "TestSupport.h"
#include "Isolation.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QtEndian>

#include <atomic>
#include <thread>
#include <vector>

using namespace imageio;
using namespace testsupport;

namespace {

struct Answer {
    std::optional<PropertyDict> props;
    QString error;
    bool operator==(const Answer&) const = default;
};

Answer fromBytes(const QString& path) {
    Answer a;
    a.props = readProperties(readFile(path), &a.error);
    return a;
}

Answer fromFile(const QString& path, qint64* bytesRead = nullptr) {
    Answer a;
    a.props = readFileProperties(path, &a.error, bytesRead);
    return a;
}

QString write(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()) ADD_FAILURE() << "can't write " << path.toStdString();
    return path;
}

constexpr qint64 fiftyMB = 50LL * 1024 * 1024;

class FileRead : public IsolatedTest {};

// Whatever part of a file the reader skips, it answers as it does from the whole file: every
// sample, the broken ones with their reasons too.
TEST_F(FileRead, AnswersAsFromTheWholeFileForEverySample) {
    const QStringList files = corpusFiles() + malformedFiles();
    ASSERT_EQ(files.size(), 73);
    for (const QString& file : files) {
        const Answer whole = fromBytes(file), pieces = fromFile(file);
        EXPECT_TRUE(whole == pieces) << file.toStdString() << ": " << whole.error.toStdString() << " / "
                                     << pieces.error.toStdString();
    }
}

// A 50 MB JPEG: its metadata segments come first, the scan makes up the rest.
TEST_F(FileRead, ReadsLittleOfALargeJpeg) {
    const QString source = corpusDir() + "/jpeg/gps/DSCN0010.jpg";
    const QByteArray original = readFile(source);
    ASSERT_TRUE(original.endsWith("\xFF\xD9"));
    QByteArray big = original.chopped(2) + QByteArray(fiftyMB, '\x55') + QByteArray("\xFF\xD9", 2);
    const QString path = write(isolation().root() + "/big.jpg", big);

    qint64 read = 0;
    const Answer a = fromFile(path, &read);
    ASSERT_TRUE(a.props) << a.error.toStdString();
    EXPECT_LT(read, 1024 * 1024);
    EXPECT_EQ(a.props->value(kCGImagePropertyFileSize).toLongLong(), big.size());
    PropertyDict expected = *fromBytes(source).props;
    expected.insert(kCGImagePropertyFileSize, big.size());
    EXPECT_EQ(*a.props, expected);
    const PropertyDict gps = a.props->value(kCGImagePropertyGPSDictionary).toMap();
    EXPECT_NEAR(gps.value(kCGImagePropertyGPSLatitude).toDouble(), 43.4674, 1e-3);  // exiftool -n: 43.4674483
}

// A HEIF whose media data grew to 50 MB behind its boxes: only the boxes and the metadata items
// are read. A TIFF's directories may follow its pixels: read whole, it still gives every tag.
TEST_F(FileRead, ReadsLittleOfALargeHeifAndAllOfATiffWithTrailingDirectories) {
    const QString heic = corpusDir() + "/heif/IMG_5195.HEIC";
    QByteArray box(8, '\0');
    box += QByteArray(fiftyMB, '\0');
    qToBigEndian<quint32>(quint32(box.size()), box.data());
    std::memcpy(box.data() + 4, "free", 4);
    const QString big = write(isolation().root() + "/big.heic", readFile(heic) + box);
    qint64 read = 0;
    const Answer a = fromFile(big, &read);
    ASSERT_TRUE(a.props) << a.error.toStdString();
    EXPECT_LT(read, 1024 * 1024);
    PropertyDict expected = *fromBytes(heic).props;
    expected.insert(kCGImagePropertyFileSize, QFile(big).size());
    EXPECT_EQ(*a.props, expected);
    EXPECT_FALSE(a.props->value(kCGImagePropertyExifDictionary).toMap().isEmpty());

    for (const QString& tiff : corpusFiles().filter("/tiff/")) {
        const Answer t = fromFile(tiff, &read);
        ASSERT_TRUE(t.props) << tiff.toStdString();
        EXPECT_TRUE(t == fromBytes(tiff)) << tiff.toStdString();
    }
}

// Many threads reading and writing at once give what one thread gives (run under ThreadSanitizer
// by `make test-tsan`).
TEST(Threads, ReadAndWriteAtOnce) {
    const QStringList files = corpusFiles() + malformedFiles();
    ASSERT_EQ(files.size(), 73);
    std::vector<Answer> serial;
    for (const QString& f : files) serial.push_back(fromFile(f));

    const QStringList writable = corpusFiles().filter(QRegularExpression("\\.(jpg|JPG|HEIC|heic|tif|png)$"));
    ASSERT_GE(writable.size(), 10);
    // A date for the Exif block and a caption that also goes to XMP: the XMP work takes turns,
    // the rest runs side by side, and each written file must read as the one written alone.
    PropertyDict changes;
    changes.insert(kCGImagePropertyExifDictionary,
                   PropertyDict{{kCGImagePropertyExifDateTimeOriginal, QStringLiteral("2021:06:01 12:00:00")}});
    changes.insert(kCGImagePropertyIPTCDictionary,
                   PropertyDict{{kCGImagePropertyIPTCCaptionAbstract, QStringLiteral("Written side by side")}});
    std::vector<std::optional<PropertyDict>> alone;
    for (const QString& f : writable) {
        const auto out = writeProperties(readFile(f), changes);
        alone.push_back(out ? readProperties(*out) : std::nullopt);
        ASSERT_TRUE(alone.back()) << f.toStdString();
        ASSERT_EQ(alone.back()->value(kCGImagePropertyExifDictionary).toMap().value(kCGImagePropertyExifDateTimeOriginal),
                  QStringLiteral("2021:06:01 12:00:00")) << f.toStdString();
    }

    std::atomic<int> next{0}, mismatches{0}, unwritten{0};
    auto work = [&] {
        for (int i; (i = next++) < files.size() + writable.size();) {
            if (i < files.size()) {
                if (!(fromFile(files[i]) == serial[size_t(i)])) ++mismatches;
                continue;
            }
            const qsizetype w = i - files.size();
            const auto out = writeProperties(readFile(writable[w]), changes);
            if (!out || readProperties(*out) != alone[size_t(w)]) ++unwritten;
        }
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) threads.emplace_back(work);
    for (auto& t : threads) t.join();
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(unwritten, 0);
}

}  // namespace
