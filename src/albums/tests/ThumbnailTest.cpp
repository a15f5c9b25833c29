// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageDecoder.h"
#include "TSFilesAlbum.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>
#include <exiv2/exiv2.hpp>
#include <thread>

namespace {

int largerSide(const QImage& image) { return qMax(image.width(), image.height()); }

// Mean difference per channel, 0 to 255, of two pictures of the same size.
double difference(const QImage& a, const QImage& b) {
    const QImage x = a.convertToFormat(QImage::Format_RGB32), y = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0;
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col) {
            const QRgb p = x.pixel(col, row), q = y.pixel(col, row);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / (3.0 * x.width() * x.height());
}

TEST(Thumbnail, EverySampleGivesAPictureNoLargerThanAsked) {
    const QStringList files = testsupport::corpusFiles();
    ASSERT_EQ(files.size(), 60);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        for (int side : {64, 200}) {
            const QImage image = TSFilesAlbum::thumbnail(file, side);
            // This raw file keeps its tags only: its image data was cut away.
            if (file.endsWith("IMG_1361.dng")) {
                EXPECT_TRUE(image.isNull());
                continue;
            }
            ASSERT_FALSE(image.isNull()) << side;
            EXPECT_LE(largerSide(image), side);
            EXPECT_GT(qMin(image.width(), image.height()), 0);
        }
    }
    // A small picture is never blown up.
    const QImage small = TSFilesAlbum::thumbnail(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", 1000);
    EXPECT_EQ(small.size(), QSize(100, 68));
}

TEST(Thumbnail, EveryOrientationComesOutUpright) {
    const QString dir = testsupport::corpusDir() + "/jpeg/orientation/";
    for (const QString shape : {"landscape", "portrait"}) {
        const QImage upright = TSFilesAlbum::thumbnail(dir + shape + "_1.jpg", 96);
        ASSERT_FALSE(upright.isNull());
        EXPECT_EQ(upright.width() > upright.height(), shape == "landscape");
        for (int orientation = 2; orientation <= 8; ++orientation) {
            const QString file = dir + shape + "_" + QString::number(orientation) + ".jpg";
            SCOPED_TRACE(file.toStdString());
            const QImage image = TSFilesAlbum::thumbnail(file, 96);
            ASSERT_EQ(image.size(), upright.size());
            // Each sample shows its own number, so none matches exactly; a wrong turn of the
            // right shape (mirrored either way, or upside down) must match worse.
            const double right = difference(image, upright);
            EXPECT_LT(right, difference(image.mirrored(true, false), upright));
            EXPECT_LT(right, difference(image.mirrored(false, true), upright));
            EXPECT_LT(right, difference(image.mirrored(true, true), upright));
        }
    }
}

TEST(Thumbnail, TurnedCameraFilesAreUprightFromEmbeddedAndDecodedPictures) {
    const QString corpus = testsupport::corpusDir();
    // Stored sideways with orientation 6; small asks are met by the embedded thumbnail, large
    // ones by decoding.
    for (const QString file : {"/jpeg/canon_hdr_YES.jpg", "/heif/iphone_13_pro_max.HEIC"})
        for (int side : {100, 400}) {
            SCOPED_TRACE((file + " " + QString::number(side)).toStdString());
            const QImage image = TSFilesAlbum::thumbnail(corpus + file, side);
            ASSERT_FALSE(image.isNull());
            EXPECT_LT(image.width(), image.height());
            EXPECT_EQ(largerSide(image), side);
        }
    // A movie's first frame follows its track's turn.
    const QImage turned = TSFilesAlbum::thumbnail(testsupport::video("apple_meta_rot90.mov"), 160);
    const QImage straight = TSFilesAlbum::thumbnail(testsupport::video("apple_meta.mov"), 160);
    EXPECT_EQ(turned.size(), straight.size().transposed());
}

QByteArray jpeg(QSize size, Qt::GlobalColor colour) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG", 90);
    return bytes;
}

// A blue 400 x 300 JPEG that carries a red EXIF thumbnail of the given size.
QString withRedThumbnail(const QTemporaryDir& dir, QSize thumbSize) {
    const QString path = dir.filePath(QStringLiteral("thumb_%1x%2.jpg").arg(thumbSize.width()).arg(thumbSize.height()));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(jpeg({400, 300}, Qt::blue));
    file.close();
    auto image = Exiv2::ImageFactory::open(path.toStdString());
    image->readMetadata();
    const QByteArray thumb = jpeg(thumbSize, Qt::red);
    Exiv2::ExifThumb(image->exifData()).setJpegThumbnail(reinterpret_cast<const Exiv2::byte*>(thumb.constData()),
                                                          long(thumb.size()));
    image->writeMetadata();
    return path;
}

bool isRed(const QImage& image) { return qRed(image.pixel(image.width() / 2, image.height() / 2)) > 200; }

TEST(Thumbnail, TheEmbeddedThumbnailServesWhenBigEnoughAndOfTheImagesShape) {
    QTemporaryDir dir;
    const QString fitting = withRedThumbnail(dir, {160, 120});
    EXPECT_TRUE(isRed(TSFilesAlbum::thumbnail(fitting, 160)));
    EXPECT_TRUE(isRed(TSFilesAlbum::thumbnail(fitting, 100)));
    const QImage decoded = TSFilesAlbum::thumbnail(fitting, 200);  // too small: the image itself
    EXPECT_EQ(decoded.size(), QSize(200, 150));
    EXPECT_FALSE(isRed(decoded));
    // A square thumbnail of a 4:3 image would show bars.
    EXPECT_FALSE(isRed(TSFilesAlbum::thumbnail(withRedThumbnail(dir, {160, 160}), 100)));
}

TEST(Thumbnail, BrokenAndHostileFilesNeverCrash) {
    ASSERT_EQ(testsupport::malformedFiles().size(), 13);
    for (const QString& file : testsupport::malformedFiles()) {
        SCOPED_TRACE(file.toStdString());
        const QImage image = TSFilesAlbum::thumbnail(file, 200);
        EXPECT_LE(largerSide(image), 200);
    }
    EXPECT_TRUE(TSFilesAlbum::thumbnail(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", 0).isNull());
    EXPECT_TRUE(TSFilesAlbum::thumbnail("/no/such/file.jpg", 200).isNull());
    EXPECT_TRUE(imageio::thumbnail(QByteArray(), 200).isNull());
}

TEST(Thumbnail, ManyThreadsAtOnceGiveTheSamePictures) {
    const QStringList files = testsupport::corpusFiles();
    QList<QImage> alone;
    for (const QString& file : files) alone << TSFilesAlbum::thumbnail(file, 80);
    QList<QImage> together(files.size());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (qsizetype i = t; i < files.size(); i += 4) together[i] = TSFilesAlbum::thumbnail(files[i], 80);
        });
    for (auto& thread : threads) thread.join();
    for (qsizetype i = 0; i < files.size(); ++i) EXPECT_EQ(together[i], alone[i]) << files[i].toStdString();
}

}  // namespace
