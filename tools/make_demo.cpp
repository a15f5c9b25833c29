// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the demo album: photos and a short movie drawn here, tagged by our own writers (the
// image metadata writer and the movie writer), so that a fresh checkout has something real to
// show without shipping sample files. Usage: make-demo DIR
#include "demo.h"

#include "ImageProperties.h"
#include "ImageWriter.h"
#include "MovieReader.h"
#include "MovieWriter.h"
#include "PropertyKeys.h"
#include "VideoModifier.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QSaveFile>
#include <QTimeZone>

#include <libheif/heif.h>

extern "C" {
#include <libavutil/log.h>
}

#include <cstdio>
#include <optional>

bool fail(const QString& what) {
    std::fprintf(stderr, "make-demo: %s\n", qPrintable(what));
    return false;
}

namespace {

struct Camera {
    const char* make;
    const char* model;
    const char* lens;
    const char* lensMake;
    const char* software;
    double exposure, fNumber, focal;
    int iso, focal35, flash;
};

struct Demo {
    const char* file;
    const char* place;
    Scene scene;
    std::optional<Camera> camera;
    const char* date;  // "yyyy:MM:dd HH:mm:ss", local time of the place
    const char* offset;
    std::optional<QPointF> position;  // latitude, longitude
    double altitude;
    int orientation;
    const char* caption;
    const char* keywords;
    const char* artist;
    const char* city;
    const char* country;
    const char* comment = nullptr;
};


imageio::PropertyDict tagsFor(const Demo& d) {
    imageio::PropertyDict changes;
    imageio::PropertyDict exif, tiff, gps, iptc;
    if (d.camera) {
        const Camera& c = *d.camera;
        tiff.insert(kCGImagePropertyTIFFMake, c.make);
        tiff.insert(kCGImagePropertyTIFFModel, c.model);
        tiff.insert(kCGImagePropertyTIFFOrientation, qint64(d.orientation));
        tiff.insert(kCGImagePropertyTIFFDateTime, d.date);
        if (c.software) tiff.insert(kCGImagePropertyTIFFSoftware, c.software);
        tiff.insert(kCGImagePropertyTIFFXResolution, 72.0);
        tiff.insert(kCGImagePropertyTIFFYResolution, 72.0);
        tiff.insert(kCGImagePropertyTIFFResolutionUnit, qint64(2));
        exif.insert(kCGImagePropertyExifLensModel, c.lens);
        exif.insert(kCGImagePropertyExifLensMake, c.lensMake);
        exif.insert(kCGImagePropertyExifDateTimeOriginal, d.date);
        exif.insert(kCGImagePropertyExifDateTimeDigitized, d.date);
        exif.insert(kCGImagePropertyExifOffsetTimeOriginal, d.offset);
        exif.insert(kCGImagePropertyExifExposureTime, c.exposure);
        exif.insert(kCGImagePropertyExifFNumber, c.fNumber);
        exif.insert(kCGImagePropertyExifExposureProgram, qint64(2));
        exif.insert(kCGImagePropertyExifISOSpeedRatings, QVariantList{qint64(c.iso)});
        exif.insert(kCGImagePropertyExifFocalLength, c.focal);
        exif.insert(kCGImagePropertyExifFocalLenIn35mmFilm, qint64(c.focal35));
        exif.insert(kCGImagePropertyExifFlash, qint64(c.flash));
        exif.insert(kCGImagePropertyExifMeteringMode, qint64(5));
        exif.insert(kCGImagePropertyExifWhiteBalance, qint64(0));
        exif.insert(kCGImagePropertyExifExposureBiasValue, 0.0);
    }
    if (d.comment) exif.insert(kCGImagePropertyExifUserComment, QString::fromUtf8(d.comment));
    if (d.artist) {
        tiff.insert(kCGImagePropertyTIFFArtist, d.artist);
        tiff.insert(kCGImagePropertyTIFFCopyright, QStringLiteral("© %1").arg(QString::fromUtf8(d.artist)));
    }
    if (d.position) {
        const double lat = d.position->x(), lon = d.position->y();
        gps.insert(kCGImagePropertyGPSLatitude, std::fabs(lat));
        gps.insert(kCGImagePropertyGPSLatitudeRef, lat >= 0 ? "N" : "S");
        gps.insert(kCGImagePropertyGPSLongitude, std::fabs(lon));
        gps.insert(kCGImagePropertyGPSLongitudeRef, lon >= 0 ? "E" : "W");
        gps.insert(kCGImagePropertyGPSAltitude, d.altitude);
        gps.insert(kCGImagePropertyGPSAltitudeRef, qint64(0));
    }
    if (d.caption) {
        iptc.insert(kCGImagePropertyIPTCCaptionAbstract, QString::fromUtf8(d.caption));
        iptc.insert(kCGImagePropertyIPTCObjectName, QString::fromUtf8(d.place));
    }
    if (d.keywords) {
        QVariantList words;
        for (const QString& k : QString::fromUtf8(d.keywords).split(',')) words << k.trimmed();
        iptc.insert(kCGImagePropertyIPTCKeywords, words);
    }
    if (d.city) iptc.insert(kCGImagePropertyIPTCCity, QString::fromUtf8(d.city));
    if (d.country) iptc.insert(kCGImagePropertyIPTCCountryPrimaryLocationName, QString::fromUtf8(d.country));
    if (d.artist && d.caption) iptc.insert(kCGImagePropertyIPTCByline, QVariantList{QString::fromUtf8(d.artist)});
    if (!exif.isEmpty()) changes.insert(kCGImagePropertyExifDictionary, exif);
    if (!tiff.isEmpty()) changes.insert(kCGImagePropertyTIFFDictionary, tiff);
    if (!gps.isEmpty()) changes.insert(kCGImagePropertyGPSDictionary, gps);
    if (!iptc.isEmpty()) changes.insert(kCGImagePropertyIPTCDictionary, iptc);
    return changes;
}

// A copied camera file keeps the time it was taken as its modification time; so do ours, so that
// lists sorted or labelled by file date read like a real album.
bool stampTime(const QString& path, const QDateTime& taken) {
    QFile file(path);
    return (file.open(QIODevice::ReadWrite) && file.setFileTime(taken, QFileDevice::FileModificationTime)) ||
           fail(path + ": cannot set its time");
}

QDateTime takenAt(const Demo& d) {
    if (!d.date) return QDateTime(QDate(2024, 6, 1), QTime(10, 0), Qt::UTC);
    const QDateTime local = QDateTime::fromString(QString::fromLatin1(d.date), "yyyy:MM:dd HH:mm:ss");
    const QString offset = QString::fromLatin1(d.offset);
    const int seconds = (offset.mid(1, 2).toInt() * 60 + offset.mid(4, 2).toInt()) * 60;
    return QDateTime(local.date(), local.time(), QTimeZone(offset.startsWith('-') ? -seconds : seconds));
}

bool saveBytes(const QString& path, const QByteArray& bytes) {
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit())
        return fail(path + ": " + out.errorString());
    return true;
}

// HEIC through libheif's encoder (x265); Qt has no writer for it.
std::optional<QByteArray> encodeHeic(const QImage& picture) {
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    heif_context* ctx = heif_context_alloc();
    heif_encoder* encoder = nullptr;
    heif_image* image = nullptr;
    heif_image_handle* handle = nullptr;
    std::optional<QByteArray> result;
    struct Writer {
        static heif_error write(heif_context*, const void* data, size_t size, void* userdata) {
            static_cast<QByteArray*>(userdata)->append(static_cast<const char*>(data), qsizetype(size));
            return heif_error{heif_error_Ok, heif_suberror_Unspecified, ""};
        }
    };
    if (heif_context_get_encoder_for_format(ctx, heif_compression_HEVC, &encoder).code == heif_error_Ok &&
        heif_image_create(rgb.width(), rgb.height(), heif_colorspace_RGB, heif_chroma_interleaved_RGB, &image).code ==
            heif_error_Ok &&
        heif_image_add_plane(image, heif_channel_interleaved, rgb.width(), rgb.height(), 8).code == heif_error_Ok) {
        int stride = 0;
        uint8_t* plane = heif_image_get_plane(image, heif_channel_interleaved, &stride);
        for (int y = 0; y < rgb.height(); ++y) memcpy(plane + y * stride, rgb.constScanLine(y), size_t(rgb.width()) * 3);
        heif_encoder_set_lossy_quality(encoder, 60);
        heif_writer writer{1, &Writer::write};
        QByteArray bytes;
        if (heif_context_encode_image(ctx, image, encoder, nullptr, &handle).code == heif_error_Ok &&
            heif_context_write(ctx, &writer, &bytes).code == heif_error_Ok)
            result = bytes;
    }
    if (handle) heif_image_handle_release(handle);
    if (image) heif_image_release(image);
    if (encoder) heif_encoder_release(encoder);
    heif_context_free(ctx);
    return result;
}

bool makePhoto(const QDir& dir, const Demo& d) {
    const bool portrait = d.orientation == 6 || d.orientation == 8;
    const QString file = QString::fromLatin1(d.file);
    const bool heic = file.endsWith(".heic");
    QSize size = heic ? QSize(1024, 768) : QSize(1200, 800);
    if (portrait) size.transpose();
    const QString subtitle = d.caption ? QString::fromUtf8(d.caption)
                             : d.camera ? QString::fromUtf8(d.camera->model)
                                        : QStringLiteral("No tags at all");
    const QImage upright = drawScene(size, d.scene, QString::fromUtf8(d.place), subtitle);
    const QImage stored = storedFor(upright, d.orientation);

    QByteArray bytes;
    if (heic) {
        auto encoded = encodeHeic(stored);
        if (!encoded) return fail(file + ": HEIC encoding failed");
        bytes = *encoded;
    } else {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        const char* format = file.endsWith(".png") ? "PNG" : "JPEG";
        if (!stored.save(&buffer, format, 88)) return fail(file + ": encoding failed");
    }
    const imageio::PropertyDict changes = tagsFor(d);
    if (!changes.isEmpty()) {
        QString error;
        auto tagged = imageio::writeProperties(bytes, changes, &error);
        if (!tagged) return fail(file + ": " + error);
        bytes = *tagged;
    }
    return saveBytes(dir.filePath(file), bytes) && stampTime(dir.filePath(file), takenAt(d));
}


// The movie's date, place and camera go in through the movie writer, as an edit would put them.
bool makeMovie(const QDir& dir) {
    const Scene sunset{QColor(70, 60, 140), QColor(250, 160, 90), QColor(255, 226, 150), QColor(30, 70, 110),
                       Land::bridge, 0.55, 0.3};
    const QString plain = dir.filePath(".lisbon-untagged.mov"), tagged = dir.filePath("lisbon.mov");
    QFile::remove(plain);
    if (!encodeMovie(plain, sunset, QStringLiteral("Lisbon"))) return false;
    QFile source(plain);
    if (!source.open(QIODevice::ReadOnly)) return fail(plain + ": " + source.errorString());
    const QByteArray bytes = source.readAll();
    source.close();
    QString error;
    auto movie = media::readMovie(bytes, &error);
    if (!movie) return fail(plain + ": " + error);
    TagsVideoModifier modifier(movie->metadata);
    const QDateTime taken(QDate(2023, 9, 21), QTime(19, 32, 10), QTimeZone(3600));
    modifier.setDate(taken);
    GeoLocation place(38.7075, -9.1364);
    place.altitude = 12;
    place.verticalAccuracy = 5;
    modifier.setLocation(place);
    modifier.items << media::MetadataItem::quickTimeText("com.apple.quicktime.make", "Apple")
                   << media::MetadataItem::quickTimeText("com.apple.quicktime.model", "iPhone 15 Pro")
                   << media::MetadataItem::quickTimeText("com.apple.quicktime.software", "17.0.2");
    QFile::remove(tagged);
    const bool ok = media::writeMovie(plain, tagged, {modifier.items, true}, &error);
    QFile::remove(plain);
    return ok ? stampTime(tagged, taken) : fail(tagged + ": " + error);
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: make-demo DIR\n");
        return 2;
    }
    QDir dir(QString::fromLocal8Bit(argv[1]));
    dir.mkpath(".");
    av_log_set_level(AV_LOG_ERROR);  // the encoders' statistics are noise in a build log
    const auto at = [](double lat, double lon) { return std::optional<QPointF>(QPointF(lat, lon)); };
    const Camera canon{"Canon", "Canon EOS R6", "RF24-105mm F4 L IS USM", "Canon", "Firmware Version 1.8.1",
                       1.0 / 250, 8, 58, 200, 58, 16};
    const Camera nikon{"NIKON CORPORATION", "NIKON Z 6_2", "NIKKOR Z 24-70mm f/4 S", "Nikon", "Ver.01.50",
                       1.0 / 500, 5.6, 24, 100, 24, 16};
    const Camera iphone14{"Apple", "iPhone 14 Pro", "iPhone 14 Pro back triple camera 6.86mm f/1.78", "Apple",
                          "17.2.1", 1.0 / 1000, 1.78, 6.86, 80, 24, 24};
    const Camera iphone13{"Apple", "iPhone 13", "iPhone 13 back dual wide camera 5.1mm f/1.6", "Apple", "16.4",
                          1.0 / 320, 1.6, 5.1, 50, 26, 24};
    const Camera fuji{"FUJIFILM", "X-T4", "XF16-55mmF2.8 R LM WR", "FUJIFILM", "Digital Camera X-T4 Ver2.01",
                      1.0 / 125, 11, 16, 160, 24, 16};
    const Camera sony{"SONY", "ILCE-7M4", "FE 24-70mm F2.8 GM II", "Sony", "ILCE-7M4 v2.00", 1.0 / 60, 2.8, 35,
                      3200, 35, 16};
    const Camera om{"OM Digital Solutions", "OM-1", "M.Zuiko Digital ED 12-40mm F2.8 PRO", "OLYMPUS", "Version 1.5",
                    1.0 / 400, 6.3, 12, 200, 24, 16};
    const Demo demos[] = {
        {"rome.jpg", "Rome",
         {QColor(245, 150, 90), QColor(255, 214, 150), QColor(255, 240, 200), QColor(150, 90, 60), Land::arches, .78, .22},
         canon, "2023:05:14 19:42:05", "+02:00", at(41.8902, 12.4922), 32, 1, "Evening light on the Colosseum",
         "Rome, Colosseum, travel, history", "Giulia Conti", "Rome", "Italy"},
        {"reykjavik.jpg", "Reykjavík",
         {QColor(120, 160, 210), QColor(210, 225, 240), QColor(255, 250, 235), QColor(40, 70, 110), Land::harbour, .7, .25},
         nikon, "2022:11:02 10:05:44", "+00:00", at(64.1505, -21.9402), 4, 6, "Boats in the old harbour",
         "Iceland, harbour, boats, winter", "Jón Sigurðsson", "Reykjavík", "Iceland"},
        {"sydney.jpg", "Sydney",
         {QColor(250, 190, 140), QColor(255, 235, 200), QColor(255, 250, 220), QColor(30, 110, 150), Land::ocean, .25, .3},
         iphone14, "2024:01:26 07:40:12", "+11:00", at(-33.8568, 151.2153), 6, 3, nullptr, nullptr, nullptr, nullptr,
         nullptr},
        {"kyoto.heic", "Kyoto",
         {QColor(170, 200, 240), QColor(235, 240, 250), QColor(255, 255, 240), QColor(120, 160, 90), Land::blossom, .5, .15},
         iphone13, "2023:04:02 14:18:51", "+09:00", at(35.0116, 135.7681), 40, 1, "Cherry blossoms along the Kamo river",
         "Kyoto, sakura, spring", "Haruki Tanaka", "Kyoto", "Japan", "Seen from the Sanjō bridge"},
        {"torres-del-paine.jpg", "Torres del Paine",
         {QColor(110, 90, 160), QColor(250, 180, 170), QColor(255, 230, 200), QColor(60, 50, 80), Land::peaks, .82, .3},
         fuji, "2021:02:18 06:55:30", "-03:00", at(-50.9423, -72.9682), 120, 1, "First light on the towers",
         "Patagonia, Chile, mountains, sunrise", "Lucía Ortega", "Torres del Paine", "Chile"},
        {"new-york.jpg", "New York",
         {QColor(15, 20, 50), QColor(60, 50, 110), QColor(235, 235, 250), QColor(25, 25, 40), Land::city, .8, .15},
         sony, "2023:12:09 21:14:03", "-05:00", at(40.7580, -73.9855), 10, 1, "Times Square at night",
         "New York, city, night, lights", "Sam Rivera", "New York", "United States"},
        {"cape-town.jpg", "Cape Town",
         {QColor(80, 150, 220), QColor(190, 220, 245), QColor(255, 250, 225), QColor(70, 90, 70), Land::tableMountain, .15, .2},
         om, "2024:03:03 17:02:40", "+02:00", at(-33.9628, 18.4037), 1085, 1, nullptr, nullptr, "Thandi Mokoena", nullptr,
         nullptr},
        {"untagged.png", "Untitled",
         {QColor(235, 238, 245), QColor(210, 215, 230), QColor(255, 255, 255), QColor(0, 0, 0), Land::shapes, .5, .4},
         std::nullopt, nullptr, nullptr, std::nullopt, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr},
    };
    int failures = 0;
    for (const Demo& d : demos) failures += makePhoto(dir, d) ? 0 : 1;
    failures += makeMovie(dir) ? 0 : 1;
    return failures ? 1 : 0;
}
