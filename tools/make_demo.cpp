// Writes a small demo library: photos drawn with Qt and tagged with exiv2, so that a fresh
// checkout has something real to show without shipping sample files.
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <exiv2/exiv2.hpp>

#include <cmath>
#include <cstdio>

#pragma GCC diagnostic ignored "-Wdeprecated-declarations"  // exiv2 0.27 hands out std::auto_ptr

namespace {

struct Demo {
    const char* name;
    const char* format;
    QColor color;
    const char* make;
    const char* model;
    const char* lens;
    const char* date;
    double lat, lon;  // NaN: no position
    int orientation;
    const char* caption;
    const char* keywords;
};

void rational3(Exiv2::ExifData& exif, const char* key, double degrees) {
    int d = int(degrees);
    double m = (degrees - d) * 60;
    int mi = int(m);
    int s100 = int((m - mi) * 60 * 100 + 0.5);
    Exiv2::URationalValue v;
    v.value_ = {{d, 1}, {mi, 1}, {s100, 100}};
    exif[key].setValue(&v);
}

bool writeTags(const QString& path, const Demo& d) {
    try {
        auto image = Exiv2::ImageFactory::open(path.toStdString());
        image->readMetadata();
        Exiv2::ExifData& exif = image->exifData();
        if (d.make) {
            exif["Exif.Image.Make"] = d.make;
            exif["Exif.Image.Model"] = d.model;
            exif["Exif.Photo.LensModel"] = d.lens;
            exif["Exif.Image.Orientation"] = uint16_t(d.orientation);
            exif["Exif.Photo.DateTimeOriginal"] = d.date;
            exif["Exif.Photo.DateTimeDigitized"] = d.date;
            exif["Exif.Photo.ExposureTime"] = Exiv2::URational(1, 250);
            exif["Exif.Photo.FNumber"] = Exiv2::URational(28, 10);
            exif["Exif.Photo.ISOSpeedRatings"] = uint16_t(200);
            exif["Exif.Photo.FocalLength"] = Exiv2::URational(35, 1);
            exif["Exif.Photo.Flash"] = uint16_t(16);
            exif["Exif.Image.Artist"] = "Tessorin demo";
            exif["Exif.Image.Copyright"] = "CC0";
        }
        if (d.lat == d.lat) {
            exif["Exif.GPSInfo.GPSVersionID"] = "2 3 0 0";
            exif["Exif.GPSInfo.GPSLatitudeRef"] = d.lat >= 0 ? "N" : "S";
            rational3(exif, "Exif.GPSInfo.GPSLatitude", std::abs(d.lat));
            exif["Exif.GPSInfo.GPSLongitudeRef"] = d.lon >= 0 ? "E" : "W";
            rational3(exif, "Exif.GPSInfo.GPSLongitude", std::abs(d.lon));
        }
        if (d.caption) {
            image->iptcData()["Iptc.Application2.Caption"] = d.caption;
            for (const QString& k : QString(d.keywords).split(',')) {
                Exiv2::StringValue v(k.trimmed().toStdString());
                image->iptcData().add(Exiv2::IptcKey("Iptc.Application2.Keywords"), &v);
            }
        }
        image->writeMetadata();
        return true;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "make-demo: %s: %s\n", qPrintable(path), e.what());
        return false;
    }
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    if (argc < 2) return 2;
    QDir dir(QString::fromLocal8Bit(argv[1]));
    dir.mkpath(".");
    const double none = std::nan("");
    const Demo demos[] = {
        {"rome.jpg", "JPEG", QColor(200, 120, 60), "Canon", "Canon EOS R6", "RF24-105mm F4 L IS USM",
         "2023:05:14 18:22:05", 41.8902, 12.4922, 1, "Evening at the Colosseum", "Rome, travel, history"},
        {"reykjavik.jpg", "JPEG", QColor(60, 120, 200), "NIKON CORPORATION", "NIKON Z 6_2", "NIKKOR Z 24-70mm f/4 S",
         "2022:11:02 10:05:44", 64.1466, -21.9426, 6, "Harbour in the morning", "Iceland, harbour"},
        {"sydney.jpg", "JPEG", QColor(60, 180, 120), "Apple", "iPhone 14 Pro", "iPhone 14 Pro back camera 6.86mm f/1.78",
         "2024:01:26 07:40:12", -33.8568, 151.2153, 1, nullptr, nullptr},
        {"untagged.png", "PNG", QColor(128, 128, 128), nullptr, nullptr, nullptr, nullptr, none, none, 1, nullptr, nullptr},
    };
    int failures = 0;
    for (const Demo& d : demos) {
        QImage image(640, 427, QImage::Format_RGB32);
        image.fill(d.color);
        QPainter p(&image);
        p.setPen(Qt::white);
        p.setFont(QFont("Sans", 28));
        p.drawText(image.rect(), Qt::AlignCenter, QString::fromLatin1(d.name));
        p.end();
        QString path = dir.filePath(d.name);
        if (!image.save(path, d.format, 90)) {
            std::fprintf(stderr, "make-demo: cannot write %s\n", qPrintable(path));
            ++failures;
            continue;
        }
        if (d.make || d.caption || d.lat == d.lat) failures += writeTags(path, d) ? 0 : 1;
    }
    return failures ? 1 : 0;
}
