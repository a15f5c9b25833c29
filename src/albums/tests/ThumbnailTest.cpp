// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageDecoder.h"
#include "ThumbnailCache.h"
#include "CameraFiles.h"
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
            const QImage image = library::thumbnails::picture(file, side);
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
    const QImage small = library::thumbnails::picture(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", 1000);
    EXPECT_EQ(small.size(), QSize(100, 68));
}

TEST(Thumbnail, EveryOrientationComesOutUpright) {
    const QString dir = testsupport::corpusDir() + "/jpeg/orientation/";
    for (const QString shape : {"landscape", "portrait"}) {
        const QImage upright = library::thumbnails::picture(dir + shape + "_1.jpg", 96);
        ASSERT_FALSE(upright.isNull());
        EXPECT_EQ(upright.width() > upright.height(), shape == "landscape");
        for (int orientation = 2; orientation <= 8; ++orientation) {
            const QString file = dir + shape + "_" + QString::number(orientation) + ".jpg";
            SCOPED_TRACE(file.toStdString());
            const QImage image = library::thumbnails::picture(file, 96);
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
            const QImage image = library::thumbnails::picture(corpus + file, side);
            ASSERT_FALSE(image.isNull());
            EXPECT_LT(image.width(), image.height());
            EXPECT_EQ(largerSide(image), side);
        }
    // A Fujifilm raw file: its Exif thumbnail for small asks, its full-size JPEG for large ones.
    QTemporaryDir dir;
    const QString raf = dir.filePath("DSCF0001.RAF");
    QFile out(raf);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(testsupport::fujifilmRaf(testsupport::readFile(corpus + "/jpeg/canon_hdr_YES.jpg")));
    out.close();
    for (int side : {100, 400}) {
        const QImage image = library::thumbnails::picture(raf, side);
        EXPECT_EQ(image.size(), QSize(side * 3 / 4, side)) << side;
    }
    // A movie's first frame follows its track's turn.
    const QImage turned = library::thumbnails::picture(testsupport::video("apple_meta_rot90.mov"), 160);
    const QImage straight = library::thumbnails::picture(testsupport::video("apple_meta.mov"), 160);
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
    EXPECT_TRUE(isRed(library::thumbnails::picture(fitting, 160)));
    EXPECT_TRUE(isRed(library::thumbnails::picture(fitting, 100)));
    const QImage decoded = library::thumbnails::picture(fitting, 200);  // too small: the image itself
    EXPECT_EQ(decoded.size(), QSize(200, 150));
    EXPECT_FALSE(isRed(decoded));
    // A square thumbnail of a 4:3 image would show bars.
    EXPECT_FALSE(isRed(library::thumbnails::picture(withRedThumbnail(dir, {160, 160}), 100)));
}

// A 400 x 300 JPEG, blue with its top left quarter `corner`, stored at `path`.
void writeCornered(const QString& path, QSize size, Qt::GlobalColor corner) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    for (int y = 0; y < size.height() / 2; ++y)
        for (int x = 0; x < size.width() / 2; ++x) image.setPixel(x, y, QColor(corner).rgb());
    ASSERT_TRUE(image.save(path, "JPEG", 95));
}

// Which quarter of a picture shows a colour close to `colour`.
QString quarterOf(const QImage& image, Qt::GlobalColor colour) {
    const QColor want(colour);
    const int w = image.width(), h = image.height();
    const QList<std::pair<QString, QPoint>> quarters{
        {"top left", {w / 4, h / 4}}, {"top right", {3 * w / 4, h / 4}},
        {"bottom left", {w / 4, 3 * h / 4}}, {"bottom right", {3 * w / 4, 3 * h / 4}}};
    for (const auto& [name, at] : quarters) {
        const QColor c = image.pixelColor(at);
        if (std::abs(c.red() - want.red()) + std::abs(c.green() - want.green()) + std::abs(c.blue() - want.blue()) < 120)
            return name;
    }
    return "none";
}

TEST(Thumbnail, EmbeddedAndDecodedPicturesAreTurnedByEveryOrientation) {
    QTemporaryDir dir;
    // Stored with a red top left quarter, and an EXIF thumbnail of the same shape whose top left
    // quarter is green: the colour tells which of the two a thumbnail came from. Where the
    // stored top left quarter shows for each orientation, worked out by hand from how EXIF
    // defines them (mirror, then turn clockwise).
    const QString thumb = dir.filePath("thumb.jpg");
    writeCornered(thumb, {160, 120}, Qt::green);
    const QStringList shown{"", "top left", "top right", "bottom right", "bottom left",
                            "top left", "top right", "bottom right", "bottom left"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        SCOPED_TRACE(orientation);
        const QString file = dir.filePath(QStringLiteral("o%1.jpg").arg(orientation));
        writeCornered(file, {400, 300}, Qt::red);
        const auto tagged = testsupport::run("exiftool", {"-q", "-overwrite_original", "-ThumbnailImage<=" + thumb,
                                                          QStringLiteral("-Orientation#=%1").arg(orientation), file});
        ASSERT_EQ(tagged.exitCode, 0) << tagged.err.toStdString();
        const bool portrait = orientation >= 5;
        const QImage embedded = library::thumbnails::picture(file, 100);
        const QImage decoded = library::thumbnails::picture(file, 300);
        ASSERT_FALSE(embedded.isNull());
        ASSERT_FALSE(decoded.isNull());
        EXPECT_EQ(embedded.size(), portrait ? QSize(75, 100) : QSize(100, 75));
        EXPECT_EQ(decoded.size(), portrait ? QSize(225, 300) : QSize(300, 225));
        EXPECT_EQ(quarterOf(embedded, Qt::green), shown[orientation]);
        EXPECT_EQ(quarterOf(decoded, Qt::red), shown[orientation]);
    }
}

TEST(Thumbnail, AHeifThumbnailIsTurnedAsItsPrimaryImage) {
    // Stored 4032 x 3024 and turned a quarter by 'irot': the 240 x 320 thumbnail item serves
    // small asks, the primary image large ones, and both show the same upright picture.
    const QString file = testsupport::corpusDir() + "/heif/iphone_13_pro_max.HEIC";
    const QImage fromThumbnail = library::thumbnails::picture(file, 200);
    const QImage fromPrimary = library::thumbnails::picture(file, 1000);
    ASSERT_EQ(fromThumbnail.size(), QSize(150, 200));
    ASSERT_EQ(fromPrimary.size(), QSize(750, 1000));
    const QImage primarySmall = fromPrimary.scaled(fromThumbnail.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double same = difference(fromThumbnail, primarySmall);
    EXPECT_LT(same, 12);
    EXPECT_LT(same, difference(fromThumbnail.mirrored(true, true), primarySmall) / 2);
    EXPECT_LT(same, difference(fromThumbnail.mirrored(true, false), primarySmall) / 2);
}

TEST(Thumbnail, BrokenAndHostileFilesNeverCrash) {
    ASSERT_EQ(testsupport::malformedFiles().size(), 13);
    for (const QString& file : testsupport::malformedFiles()) {
        SCOPED_TRACE(file.toStdString());
        const QImage image = library::thumbnails::picture(file, 200);
        EXPECT_LE(largerSide(image), 200);
    }
    EXPECT_TRUE(library::thumbnails::picture(testsupport::corpusDir() + "/jpeg/Canon_40D.jpg", 0).isNull());
    EXPECT_TRUE(library::thumbnails::picture("/no/such/file.jpg", 200).isNull());
    EXPECT_TRUE(imageio::thumbnail(QByteArray(), 200).isNull());
}

TEST(Thumbnail, ManyThreadsAtOnceGiveTheSamePictures) {
    const QStringList files = testsupport::corpusFiles();
    QList<QImage> alone;
    for (const QString& file : files) alone << library::thumbnails::picture(file, 80);
    QList<QImage> together(files.size());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (qsizetype i = t; i < files.size(); i += 4) together[i] = library::thumbnails::picture(files[i], 80);
        });
    for (auto& thread : threads) thread.join();
    for (qsizetype i = 0; i < files.size(); ++i) EXPECT_EQ(together[i], alone[i]) << files[i].toStdString();
}

}  // namespace
