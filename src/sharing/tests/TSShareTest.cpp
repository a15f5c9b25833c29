// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSShare.h"

#include "ImageDecoder.h"
#include "ImageProperties.h"
#include "ImageWriter.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>

using namespace sharing;
using namespace testsupport;

namespace {

const ShareAction kAllActions[] = {ShareAction::shareMeta, ShareAction::shareWithoutMeta, ShareAction::shareWithoutLocation, ShareAction::shareDetails,
                                   ShareAction::hrShare,   ShareAction::jsonShare,        ShareAction::rawShare};

// One item on view, as the detail screen has it from the files album (which needs no download).
std::shared_ptr<TSAsset> itemAt(const QString& path) { return std::make_shared<TSAsset>(path); }

QString writeFile(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    const QString path = dir.filePath(name);
    QFile f(path);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size()) << path.toStdString();
    return path;
}

// A small greyscale thumbnail, to compare pictures whatever their encoding.
QImage fingerprint(const QImage& image) {
    return image.scaled(24, 24, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).convertToFormat(QImage::Format_Grayscale8);
}

double meanDifference(const QImage& a, const QImage& b) {
    const QImage fa = fingerprint(a), fb = fingerprint(b);
    double sum = 0;
    for (int y = 0; y < fa.height(); ++y)
        for (int x = 0; x < fa.width(); ++x) sum += std::abs(int(fa.constScanLine(y)[x]) - int(fb.constScanLine(y)[x]));
    return sum / (fa.width() * fa.height());
}

}  // namespace

// The copy without metadata, read by exiftool: a JPEG with no EXIF, IPTC, XMP or maker notes,
// standing upright, from every kind of source the files album opens.
TEST(StrippedCopy, HoldsNoTagsAndStandsUpright) {
    struct Case {
        const char* file;
        int width, height;
    };
    const Case cases[] = {
        {"jpeg/orientation/portrait_6.jpg", 450, 600},  // stored 600 x 450, turned by EXIF
        {"jpeg/orientation/landscape_8.jpg", 600, 450},
        {"jpeg/iptc-psAPP13-wIPTCmid.jpg", 420, 300},     // IPTC in Photoshop's APP13
        {"jpeg/BlueSquare.jpg", 360, 216},                 // EXIF, IPTC and XMP
        {"jpeg/gps/DSCN0010.jpg", 640, 480},
        {"heif/iphone_13_pro_max.HEIC", 3024, 4032},      // turned by its container, EXIF says the same
        {"png/1343_exif.png", 200, 100},
        {"png/1343_comment.png", 200, 100},               // a text chunk must not become a JPEG comment
        {"webp/exif.webp", 1200, 800},
    };
    QTemporaryDir out;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const auto item = itemAt(corpusDir() + "/" + c.file);
        QString error;
        const auto items = shareItems(ShareAction::shareWithoutMeta, item.get(), false, &error);
        ASSERT_TRUE(items) << error.toStdString();
        EXPECT_TRUE(items->text.isEmpty());
        EXPECT_TRUE(items->fileName.endsWith("-no-metadata.jpg")) << items->fileName.toStdString();
        const QString path = writeFile(out, QFileInfo(c.file).fileName() + ".jpg", items->data);
        const QJsonObject tags = exiftoolJson(path, {"-G0", "-a", "-n"}).toObject();
        EXPECT_EQ(tags.value("File:FileType").toString(), "JPEG");
        EXPECT_EQ(tags.value("File:ImageWidth").toInt(), c.width);
        EXPECT_EQ(tags.value("File:ImageHeight").toInt(), c.height);
        for (const QString& key : tags.keys()) {
            const QString group = key.section(':', 0, 0);
            EXPECT_FALSE(group == "EXIF" || group == "IPTC" || group == "XMP" || group == "Photoshop" ||
                         group == "MakerNotes" || key == "File:Comment")
                << "left in the stripped copy: " << key.toStdString();
        }
    }
}

// Without Location: no GPS tag is left, every other tag and the coded picture stay.
TEST(StrippedCopy, WithoutLocationKeepsAllButThePlace) {
    QTemporaryDir out;
    for (const char* file : {"jpeg/gps/DSCN0010.jpg", "heif/Stonehenge.heic"}) {
        SCOPED_TRACE(file);
        const QString source = corpusDir() + "/" + file;
        QString error;
        const auto items = shareItems(ShareAction::shareWithoutLocation, itemAt(source).get(), false, &error);
        ASSERT_TRUE(items) << error.toStdString();
        const QString path = writeFile(out, items->fileName, items->data);
        EXPECT_EQ(QFileInfo(path).suffix(), QFileInfo(source).suffix());
        const QJsonObject before = exiftoolJson(source, {"-G1", "-a", "-n"}).toObject();
        const QJsonObject after = exiftoolJson(path, {"-G1", "-a", "-n"}).toObject();
        ASSERT_TRUE(before.contains("GPS:GPSLatitude"));
        for (auto it = before.begin(); it != before.end(); ++it)
            if (it.key().contains("GPS")) EXPECT_FALSE(after.contains(it.key())) << it.key().toStdString();
        // Where the blocks sit and which XMP library wrote them may change; nothing else.
        expectOtherTagsKept(before, after, [](const QString& k, auto&&...) {
            const QString group = k.section(':', 0, 0);
            return k.contains("GPS") || group == "ExifTool" || group.startsWith("Composite") ||
                   QSet<QString>{"IFD0:Software", "IFD1:ThumbnailOffset", "QuickTime:MediaDataOffset", "QuickTime:MediaDataSize",
                                 "XMP-x:XMPToolkit"}
                       .contains(k);
        });
        EXPECT_EQ(imageio::decodeImage(items->data), imageio::decodeImage(readFile(source)));
    }
}

// All eight EXIF orientations of one scene come out upright: each is closer to the upright
// picture than to any mirrored or turned form of it (the samples differ only in a drawn digit).
TEST(StrippedCopy, EveryOrientationStandsUpright) {
    for (const QString shape : {"landscape", "portrait"}) {
        const QString dir = corpusDir() + "/jpeg/orientation/";
        const auto reference = strippedJpeg(readFile(dir + shape + "_1.jpg"), 1);
        ASSERT_TRUE(reference);
        const QImage upright = QImage::fromData(*reference);
        for (int n = 2; n <= 8; ++n) {
            const QString file = dir + shape + "_" + QString::number(n) + ".jpg";
            SCOPED_TRACE(file.toStdString());
            const auto item = itemAt(file);
            const auto items = shareItems(ShareAction::shareWithoutMeta, item.get(), false);
            ASSERT_TRUE(items);
            const QImage picture = QImage::fromData(items->data);
            ASSERT_EQ(picture.size(), upright.size());
            const double right = meanDifference(picture, upright);
            for (int wrong = 2; wrong <= 8; ++wrong) {
                const QImage other = imageio::applyOrientation(upright, wrong);
                if (other.size() == upright.size()) {
                    EXPECT_LT(right * 1.5, meanDifference(picture, other)) << "closer to orientation " << wrong;
                }
            }
        }
    }
}

// A JPEG has no transparency: what was transparent comes out white, not black.
TEST(StrippedCopy, TransparencyBecomesWhite) {
    QImage picture(64, 48, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    for (int y = 16; y < 32; ++y)
        for (int x = 24; x < 40; ++x) picture.setPixel(x, y, qRgb(200, 30, 30));
    QByteArray png;
    QBuffer buffer(&png);
    ASSERT_TRUE(buffer.open(QIODevice::WriteOnly) && picture.save(&buffer, "PNG"));
    const auto jpeg = strippedJpeg(png);
    ASSERT_TRUE(jpeg);
    const QImage out = QImage::fromData(*jpeg, "JPEG");
    ASSERT_EQ(out.size(), QSize(64, 48));
    EXPECT_GT(qGray(out.pixel(2, 2)), 245);
    EXPECT_GT(qRed(out.pixel(32, 24)), 180);
    EXPECT_LT(qGreen(out.pixel(32, 24)), 60);
}

// "With Metadata": the file's bytes as they are, and the summary sentence beside them.
TEST(ShareItems, WithMetadataIsTheFileUnchangedWithItsSummary) {
    // The dates and places exiftool reads, in the tests' UTC; seconds of arc truncated, and
    // 9.19° in doubles leaves 23.99..." of arc.
    for (const auto& [file, summary] :
         {std::pair{"jpeg/gps/DSCN0010.jpg", "This photo was taken on 22 Oct 2008 at 16:28:39 in 43° 28' 2\" N\n11° 53' 6\" E"},
          {"heif/iphone_13_pro_max.HEIC", "This photo was taken on 16 Feb 2022 at 12:55:41"},
          {"video/apple_meta.mov", "This video was taken on 14 May 2023 at 08:20:30 in 45° 27' 50\" N\n9° 11' 23\" E"}}) {
        SCOPED_TRACE(file);
        const QString path = corpusDir() + "/" + file;
        const auto item = itemAt(path);
        const auto items = shareItems(ShareAction::shareMeta, item.get(), false);
        ASSERT_TRUE(items);
        EXPECT_EQ(items->data, readFile(path));
        EXPECT_EQ(items->fileName, QFileInfo(path).fileName());
        EXPECT_EQ(items->text, QString::fromUtf8(summary));
    }
}

// No item, an empty file, unreadable bytes: nothing is shared, and only a failed strip is an error.
TEST(ShareItems, NothingToShareAndBrokenItems) {
    for (ShareAction action : kAllActions) {
        QString error;
        EXPECT_FALSE(shareItems(action, nullptr, false, &error));
        EXPECT_TRUE(error.isEmpty());
    }

    QTemporaryDir dir;
    const auto nothing = itemAt(writeFile(dir, "empty.jpg", {}));
    QString error;
    EXPECT_FALSE(shareItems(ShareAction::shareMeta, nothing.get(), false, &error));
    EXPECT_FALSE(shareItems(ShareAction::shareWithoutMeta, nothing.get(), false, &error));
    EXPECT_TRUE(error.isEmpty());

    const auto junk = itemAt(writeFile(dir, "junk.jpg", "plain text, no picture at all"));
    EXPECT_FALSE(shareItems(ShareAction::shareWithoutMeta, junk.get(), false, &error));
    EXPECT_EQ(error, "Error while stripping Metadata");
    // A photo with no dictionary at all: one raw line.
    const auto raw = shareItems(ShareAction::rawShare, junk.get(), false);
    ASSERT_TRUE(raw);
    EXPECT_EQ(raw->text.toStdString(), "Tags: empty;\n");
    EXPECT_TRUE(raw->data.isEmpty());
}

// A video's exports come from its key spaces; its JSON export is "{}"; it can't be stripped.
TEST(ShareItems, VideoExports) {
    const auto item = itemAt(video("apple_meta.mov"));
    ASSERT_TRUE(item->ddStore().completed);

    const auto human = shareItems(ShareAction::hrShare, item.get(), false);
    ASSERT_TRUE(human);
    EXPECT_TRUE(human->text.startsWith("**")) << human->text.toStdString();
    const auto raw = shareItems(ShareAction::rawShare, item.get(), false);
    ASSERT_TRUE(raw);
    EXPECT_TRUE(raw->text.contains("com.apple.quicktime.location.ISO6709")) << raw->text.toStdString();
    const auto json = shareItems(ShareAction::jsonShare, item.get(), false);
    ASSERT_TRUE(json);
    EXPECT_EQ(json->text, "{}");
    EXPECT_TRUE(json->fileName.endsWith("-tags.json"));
    const auto details = shareItems(ShareAction::shareDetails, item.get(), false);
    ASSERT_TRUE(details);
    EXPECT_TRUE(details->text.contains("Is video: true\n"));
    EXPECT_FALSE(details->text.contains("Flash"));

    QString error;
    EXPECT_FALSE(shareItems(ShareAction::shareWithoutMeta, item.get(), false, &error));
    EXPECT_EQ(error, "Error while stripping Metadata");
}

// The JSON export of every sample photo is valid JSON; a quote inside a text makes it "{}".
TEST(ShareItems, JsonExportIsAlwaysValid) {
    int withTags = 0;
    for (const QString& file : corpusFiles()) {
        const auto item = itemAt(file);
        if (item->isVideo()) continue;
        const auto items = shareItems(ShareAction::jsonShare, item.get(), false);
        ASSERT_TRUE(items) << file.toStdString();
        QJsonParseError parse;
        const QJsonDocument doc = QJsonDocument::fromJson(items->text.toUtf8(), &parse);
        EXPECT_EQ(parse.error, QJsonParseError::NoError) << file.toStdString() << ": " << items->text.left(200).toStdString();
        if (doc.isObject() && !doc.object().isEmpty()) ++withTags;
    }
    EXPECT_GT(withTags, 10);

    QString error;
    const auto quoted = imageio::writeProperties(
        readFile(corpusDir() + "/jpeg/gps/DSCN0010.jpg"),
        imageio::PropertyDict{{"{Exif}", QVariantMap{{"UserComment", QStringLiteral("the \"best\" view")}}}}, &error);
    ASSERT_TRUE(quoted) << error.toStdString();
    QTemporaryDir dir;
    const auto item = itemAt(writeFile(dir, "quoted.jpg", *quoted));
    const auto json = shareItems(ShareAction::jsonShare, item.get(), false);
    ASSERT_TRUE(json);
    EXPECT_EQ(json->text, "{}");
    // The other exports still carry the comment.
    EXPECT_TRUE(shareItems(ShareAction::hrShare, item.get(), false)->text.contains("the \"best\" view"));
}
