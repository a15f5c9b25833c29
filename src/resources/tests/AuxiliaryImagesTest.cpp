// SPDX-License-Identifier: GPL-3.0-or-later
// Auxiliary images of real files, checked against what exiftool and libheif's own tool take
// out of the same files, and hostile variants of those files.
#include "AuxiliaryData.h"
#include "TSResourceAuxiliary.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

using testsupport::corpusDir;
using testsupport::readFile;

namespace {

QString portraitPath() { return corpusDir() + "/portrait/image-with-matte.jpg"; }
QString gainMapHeic() { return corpusDir() + "/heif/iphone_13_pro_max.HEIC"; }

QImage decoded(const QByteArray& bytes, QByteArray* format = nullptr) {
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    if (format) *format = reader.format();
    return reader.read();
}

// Every type the bytes give an image for, in the order asked.
std::vector<AuxiliaryImageType> typesFound(const QByteArray& bytes) {
    std::vector<AuxiliaryImageType> found;
    TSResourceAuxiliary auxiliary(bytes);
    for (AuxiliaryImageType type : allAuxiliaryImageTypes)
        if (auxiliary.auxiliaryData(type)) found.push_back(type);
    return found;
}

QByteArray exiftoolBinary(const QString& tag, const QString& path) {
    const auto result = testsupport::run("exiftool", {"-b", "-" + tag, path});
    EXPECT_EQ(result.exitCode, 0) << result.err.constData();
    return result.out;
}

using AuxiliaryImages = testsupport::IsolatedTest;

}  // namespace

TEST_F(AuxiliaryImages, PortraitJpegGivesItsDisparityAsJpegThenItsMatteAsBmp) {
    const QByteArray bytes = readFile(portraitPath());
    ASSERT_FALSE(bytes.isEmpty()) << "corpus portrait missing";
    EXPECT_EQ(typesFound(bytes),
              (std::vector{AuxiliaryImageType::disparity, AuxiliaryImageType::portraitEffectsMatte}));

    TSResourceAuxiliary auxiliary(bytes);
    EXPECT_FALSE(auxiliary.hasAux());
    QByteArray format;
    const auto disparity = auxiliary.auxiliaryData(AuxiliaryImageType::disparity);
    ASSERT_TRUE(disparity);
    EXPECT_EQ(*auxiliary.hasAux(), true);
    QImage image = decoded(*disparity, &format);
    EXPECT_EQ(format, "jpeg");
    EXPECT_EQ(image.size(), QSize(576, 768));
    // Scaled to the map's own range: the nearest point is white, the farthest black.
    image = image.convertToFormat(QImage::Format_Grayscale8);
    int lo = 255, hi = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) lo = std::min<int>(lo, image.constScanLine(y)[x]), hi = std::max<int>(hi, image.constScanLine(y)[x]);
    EXPECT_LE(lo, 2);
    EXPECT_GE(hi, 253);

    const auto matte = auxiliary.auxiliaryData(AuxiliaryImageType::portraitEffectsMatte);
    ASSERT_TRUE(matte);
    EXPECT_TRUE(matte->startsWith("BM"));
    image = decoded(*matte, &format);
    EXPECT_EQ(format, "bmp");
    EXPECT_EQ(image.size(), QSize(1512, 2016));
}

TEST_F(AuxiliaryImages, JpegStreamsAndSamplesMatchWhatExiftoolTakesOut) {
    const QByteArray bytes = readFile(portraitPath());
    ASSERT_FALSE(bytes.isEmpty());
    const QByteArray mp2 = exiftoolBinary("MPImage2", portraitPath());
    const QByteArray mp3 = exiftoolBinary("MPImage3", portraitPath());
    ASSERT_FALSE(mp2.isEmpty());

    const auto disparity = imageio::auxiliaryDataInfo(bytes, imageio::AuxiliaryDataType::Disparity);
    ASSERT_TRUE(disparity);
    EXPECT_EQ(disparity->encoded, mp2);
    EXPECT_EQ(disparity->depthDataType, "hdis");  // NativeFormat 1751411059
    EXPECT_NEAR(disparity->minValue, 0.864746, 1e-6);
    EXPECT_NEAR(disparity->maxValue, 1.366211, 1e-6);
    EXPECT_TRUE(disparity->filtered);
    const QImage exiftoolMap = decoded(mp2).convertToFormat(QImage::Format_Grayscale8);
    ASSERT_EQ(QSize(disparity->width, disparity->height), exiftoolMap.size());
    for (int y = 0; y < exiftoolMap.height(); ++y)
        ASSERT_EQ(0, memcmp(disparity->data.constData() + qsizetype(y) * disparity->bytesPerRow,
                            exiftoolMap.constScanLine(y), size_t(exiftoolMap.width())))
            << "row " << y;

    const auto matte = imageio::auxiliaryDataInfo(bytes, imageio::AuxiliaryDataType::PortraitEffectsMatte);
    ASSERT_TRUE(matte);
    EXPECT_EQ(matte->encoded, mp3);
    EXPECT_EQ(QSize(matte->width, matte->height), decoded(mp3).size());
}

TEST_F(AuxiliaryImages, HeicGainMapHasTheSizeLibheifsToolWritesAndNothingElse) {
    const QByteArray bytes = readFile(gainMapHeic());
    ASSERT_FALSE(bytes.isEmpty());
    EXPECT_EQ(typesFound(bytes), (std::vector{AuxiliaryImageType::HDRGainMap}));
    EXPECT_EQ(label(AuxiliaryImageType::HDRGainMap), "HDR Gain Map");

    QTemporaryDir dir;
    const auto result = testsupport::run("heif-convert", {"--with-aux", "--no-colons", gainMapHeic(), dir.filePath("main.png")});
    ASSERT_EQ(result.exitCode, 0) << result.err.constData();
    const QStringList written = QDir(dir.path()).entryList({"*hdrgainmap*"});
    ASSERT_EQ(written.size(), 1);
    const QImage theirs(dir.filePath(written.first()));

    const auto info = imageio::auxiliaryDataInfo(bytes, imageio::AuxiliaryDataType::HDRGainMap);
    ASSERT_TRUE(info);
    EXPECT_EQ(QSize(info->width, info->height), theirs.size());
    const auto bmp = TSResourceAuxiliary(bytes).auxiliaryData(AuxiliaryImageType::HDRGainMap);
    ASSERT_TRUE(bmp);
    const QImage ours = decoded(*bmp).convertToFormat(QImage::Format_Grayscale8);
    ASSERT_EQ(ours.size(), theirs.size());
    // Same samples, give or take libheif's colour conversion to RGB.
    const QImage theirGrey = theirs.convertToFormat(QImage::Format_Grayscale8);
    int far = 0;
    for (int y = 0; y < ours.height(); y += 7)
        for (int x = 0; x < ours.width(); x += 7)
            if (std::abs(ours.constScanLine(y)[x] - theirGrey.constScanLine(y)[x]) > 2) ++far;
    EXPECT_EQ(far, 0);
}

TEST_F(AuxiliaryImages, PhotosWithoutAnyGiveNone) {
    for (const char* name : {"jpeg/Canon_40D.jpg", "jpeg/iphone_hdr_YES.jpg", "heif/IMG_5195.HEIC",
                             "heif/avif_exif_xmp.avif", "png/imagemagick.png", "tiff/BSG1.tiff"}) {
        const QByteArray bytes = readFile(corpusDir() + "/" + name);
        ASSERT_FALSE(bytes.isEmpty()) << name;
        EXPECT_TRUE(typesFound(bytes).empty()) << name;
        EXPECT_FALSE(TSResourceAuxiliary::hasAuxiliaryImage(bytes)) << name;
    }
    EXPECT_TRUE(TSResourceAuxiliary::hasAuxiliaryImage(readFile(portraitPath())));
    EXPECT_TRUE(TSResourceAuxiliary::hasAuxiliaryImage(readFile(gainMapHeic())));
    TSResourceAuxiliary empty{QByteArray()};
    EXPECT_FALSE(empty.auxiliaryData(AuxiliaryImageType::disparity));
    EXPECT_FALSE(empty.hasAux());
}

TEST_F(AuxiliaryImages, ADepthEntryIsItsRawBytesSeenAsEightBitGrey) {
    imageio::AuxiliaryDataInfo info;
    info.width = 2;
    info.height = 1;
    info.bitsPerSample = 16;
    info.bytesPerRow = 4;
    info.data = QByteArray("\x10\x20\x30\x40", 4);
    const auto bmp = bitmapRoute(info);
    ASSERT_TRUE(bmp);
    const QImage image = decoded(*bmp).convertToFormat(QImage::Format_Grayscale8);
    ASSERT_EQ(image.size(), QSize(2, 1));
    EXPECT_EQ(image.constScanLine(0)[0], 0x10);
    EXPECT_EQ(image.constScanLine(0)[1], 0x20);
}

namespace {

QByteArray jpegOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 95);
    return bytes;
}

// The JPEG with an XMP packet put in right behind its start.
QByteArray withXmp(const QByteArray& jpeg, const QByteArray& xmp) {
    const QByteArray payload = QByteArray("http://ns.adobe.com/xap/1.0/", 29) + xmp;
    QByteArray segment("\xFF\xE1");
    segment.append(char((payload.size() + 2) >> 8)).append(char((payload.size() + 2) & 0xFF)).append(payload);
    return jpeg.left(2) + segment + jpeg.mid(2);
}

}  // namespace

// An Android-style photo: a gain map appended behind the primary image, found through the
// container directory in the primary's XMP (no MPF index).
TEST_F(AuxiliaryImages, GainMapBehindAContainerDirectory) {
    QImage gain(40, 30, QImage::Format_Grayscale8);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x) gain.scanLine(y)[x] = uchar(x * 6);
    const QByteArray gainJpeg = withXmp(jpegOf(gain), R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF
        xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description
        xmlns:hdrgm="http://ns.adobe.com/hdr-gain-map/1.0/" hdrgm:Version="1.0"/></rdf:RDF></x:xmpmeta>)");
    QImage photo(80, 60, QImage::Format_RGB32);
    photo.fill(Qt::darkCyan);
    const QByteArray directory = QByteArray(R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF
        xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description
        xmlns:Container="http://ns.google.com/photos/1.0/container/"
        xmlns:Item="http://ns.google.com/photos/1.0/container/item/"><Container:Directory><rdf:Seq>
        <rdf:li rdf:parseType="Resource"><Container:Item Item:Semantic="Primary" Item:Mime="image/jpeg"/></rdf:li>
        <rdf:li rdf:parseType="Resource"><Container:Item Item:Semantic="GainMap" Item:Mime="image/jpeg" Item:Length=")") +
                                 QByteArray::number(gainJpeg.size()) +
                                 R"("/></rdf:li></rdf:Seq></Container:Directory></rdf:Description></rdf:RDF></x:xmpmeta>)";
    const QByteArray file = withXmp(jpegOf(photo), directory) + gainJpeg;

    const auto info = imageio::auxiliaryDataInfo(file, imageio::AuxiliaryDataType::HDRGainMap);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->encoded, gainJpeg);
    EXPECT_EQ(QSize(info->width, info->height), QSize(40, 30));
    EXPECT_NEAR(uchar(info->data[qsizetype(10) * info->bytesPerRow + 20]), 120, 3);
    EXPECT_EQ(typesFound(file), std::vector{AuxiliaryImageType::HDRGainMap});
    // A file cut short, or missing the image its directory lists, gives nothing.
    EXPECT_TRUE(typesFound(file.left(file.size() - 10)).empty());
    EXPECT_TRUE(typesFound(withXmp(jpegOf(photo), directory)).empty());
}

namespace {

// The byte offset of the MPF segment's TIFF header and of its MP entry list, found by hand.
struct MpfLayout {
    qsizetype tiff = -1;
    qsizetype entries = -1;
};
MpfLayout mpfLayout(const QByteArray& jpeg) {
    MpfLayout layout;
    layout.tiff = jpeg.indexOf(QByteArray("MPF\0", 4)) + 4;
    const bool big = jpeg.mid(layout.tiff, 2) == "MM";
    auto u32 = [&](qsizetype at) {
        return big ? qFromBigEndian<quint32>(jpeg.constData() + at) : qFromLittleEndian<quint32>(jpeg.constData() + at);
    };
    auto u16 = [&](qsizetype at) {
        return big ? qFromBigEndian<quint16>(jpeg.constData() + at) : qFromLittleEndian<quint16>(jpeg.constData() + at);
    };
    const qsizetype ifd = layout.tiff + u32(layout.tiff + 4);
    for (int i = 0; i < u16(ifd); ++i) {
        const qsizetype e = ifd + 2 + i * 12;
        if (u16(e) == 0xB002) layout.entries = layout.tiff + u32(e + 8);
    }
    return layout;
}

void putBigOrLittle(QByteArray& jpeg, qsizetype at, quint32 value, bool big) {
    if (big) qToBigEndian(value, jpeg.data() + at);
    else qToLittleEndian(value, jpeg.data() + at);
}

}  // namespace

TEST_F(AuxiliaryImages, HostileIndexesAndSizesGiveNoImage) {
    const QByteArray original = readFile(portraitPath());
    ASSERT_FALSE(original.isEmpty());
    const MpfLayout layout = mpfLayout(original);
    ASSERT_GT(layout.entries, 0);
    const bool big = original.mid(layout.tiff, 2) == "MM";

    // The second image's offset and length pointing past the end of the file.
    QByteArray pastEnd = original;
    putBigOrLittle(pastEnd, layout.entries + 16 + 8, quint32(original.size()), big);
    EXPECT_EQ(imageio::mpfImages(pastEnd).size(), 2u);
    EXPECT_FALSE(imageio::auxiliaryDataInfo(pastEnd, imageio::AuxiliaryDataType::Disparity));
    QByteArray hugeLength = original;
    putBigOrLittle(hugeLength, layout.entries + 16 + 4, 0xFFFFFFF0u, big);
    EXPECT_FALSE(imageio::auxiliaryDataInfo(hugeLength, imageio::AuxiliaryDataType::Disparity));

    // The matte claiming 65535 by 65535 samples in its frame header.
    QByteArray billions = original;
    const auto images = imageio::mpfImages(original);
    ASSERT_EQ(images.size(), 3u);
    const qsizetype sof = billions.indexOf("\xFF\xC0", images[2].offset);
    ASSERT_GT(sof, images[2].offset);
    billions[sof + 5] = billions[sof + 6] = billions[sof + 7] = billions[sof + 8] = char(0xFF);
    EXPECT_FALSE(TSResourceAuxiliary(billions).auxiliaryData(AuxiliaryImageType::portraitEffectsMatte));
    EXPECT_TRUE(TSResourceAuxiliary(billions).auxiliaryData(AuxiliaryImageType::disparity));

    // Truncated anywhere: no crash, and no image once the map itself is cut.
    for (qsizetype cut : {qsizetype(0), qsizetype(3), qsizetype(200), layout.entries + 20, images[1].offset + 1000,
                          images[2].offset + 10, original.size() - 1}) {
        const QByteArray truncated = original.left(cut);
        const auto found = typesFound(truncated);
        if (cut <= images[1].offset + 1000) {
            EXPECT_TRUE(found.empty()) << cut;
        }
    }
    const QByteArray heic = readFile(gainMapHeic());
    for (qsizetype cut : {qsizetype(100), heic.size() / 2, heic.size() - 10})
        EXPECT_TRUE(typesFound(heic.left(cut)).empty()) << cut;

    for (const QString& path : testsupport::malformedFiles()) {
        const QByteArray bytes = readFile(path);
        for (AuxiliaryImageType type : allAuxiliaryImageTypes) TSResourceAuxiliary(bytes).auxiliaryData(type);
    }
}
