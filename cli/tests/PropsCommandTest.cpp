// SPDX-License-Identifier: GPL-3.0-or-later
// `tessorin-cli props` against exiftool, run live on the sample media: every field that both
// read from the same EXIF, TIFF, GPS or IPTC source must agree, converted to our conventions.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cmath>
#include <optional>

using namespace testsupport;

namespace {

bool isMovie(const QString& path) { return path.contains("/video/"); }

// Both readers run once over every sample, in one process each.
struct Readings {
    QStringList images, movies;
    ProcessResult ours;
    QHash<QString, QJsonObject> props;     // ours, by file
    QHash<QString, QJsonObject> exiftool;  // by file
};

const Readings& readings() {
    static const Readings r = [] {
        Readings r;
        for (const QString& f : corpusFiles()) (isMovie(f) ? r.movies : r.images) << f;
        if (r.images.isEmpty()) return r;
        r.ours = run(QStringLiteral(TESSORIN_CLI), QStringList{"props"} + r.images + r.movies);
        for (const QJsonValue& v : QJsonDocument::fromJson(r.ours.out).array())
            r.props.insert(v["file"].toString(), v.toObject());
        ProcessResult et = run("exiftool", QStringList{"-j", "-n", "-G1"} + r.images);
        for (const QJsonValue& v : QJsonDocument::fromJson(et.out).array())
            r.exiftool.insert(v["SourceFile"].toString(), v.toObject());
        return r;
    }();
    return r;
}

enum class Kind {
    Text,      // trimmed text
    Date,      // "yyyy:MM:dd HH:mm:ss"; exiftool adds a zone to XMP dates, which we drop
    Number,    // rationals and integers as numbers
    FirstIso,  // ours an array, exiftool the first value or all of them joined by spaces
    TextList,  // ours an array; exiftool a text when there is one item
};

struct Field {
    const char* dict;  // nullptr for the top level
    const char* key;
    Kind kind;
    QStringList sources;    // exiftool's tag for the EXIF, TIFF, GPS or IPTC source, by priority
    QStringList fallbacks;  // the XMP tags we read instead when the file has no such source
};

// clang-format off
const QList<Field>& fields() {
    static const QList<Field> f{
        {"{TIFF}", "Make", Kind::Text, {"IFD0:Make"}, {"XMP-tiff:Make"}},
        {"{TIFF}", "Model", Kind::Text, {"IFD0:Model"}, {"XMP-tiff:Model"}},
        {"{TIFF}", "Artist", Kind::Text, {"IFD0:Artist"}, {"XMP-tiff:Artist"}},
        {"{TIFF}", "Copyright", Kind::Text, {"IFD0:Copyright"}, {"XMP-tiff:Copyright"}},
        {"{TIFF}", "Software", Kind::Text, {"IFD0:Software"}, {"XMP-tiff:Software", "XMP-xmp:CreatorTool"}},
        {"{TIFF}", "DateTime", Kind::Date, {"IFD0:ModifyDate"}, {"XMP-tiff:DateTime", "XMP-xmp:ModifyDate"}},
        {"{TIFF}", "Orientation", Kind::Number, {"IFD0:Orientation"}, {"XMP-tiff:Orientation"}},
        {nullptr, "Orientation", Kind::Number, {"IFD0:Orientation"}, {"XMP-tiff:Orientation"}},
        {"{Exif}", "LensModel", Kind::Text, {"ExifIFD:LensModel", "IFD0:LensModel"}, {"XMP-exifEX:LensModel"}},
        {"{Exif}", "DateTimeOriginal", Kind::Date, {"ExifIFD:DateTimeOriginal", "IFD0:DateTimeOriginal"},
         {"XMP-exif:DateTimeOriginal", "XMP-photoshop:DateCreated"}},
        {"{Exif}", "DateTimeDigitized", Kind::Date, {"ExifIFD:CreateDate", "IFD0:CreateDate"},
         {"XMP-exif:DateTimeDigitized", "XMP-xmp:CreateDate"}},
        {"{Exif}", "OffsetTimeOriginal", Kind::Text, {"ExifIFD:OffsetTimeOriginal", "IFD0:OffsetTimeOriginal"}, {}},
        {"{Exif}", "ExposureTime", Kind::Number, {"ExifIFD:ExposureTime", "IFD0:ExposureTime"}, {"XMP-exif:ExposureTime"}},
        {"{Exif}", "FNumber", Kind::Number, {"ExifIFD:FNumber", "IFD0:FNumber"}, {"XMP-exif:FNumber"}},
        {"{Exif}", "ISOSpeedRatings", Kind::FirstIso, {"ExifIFD:ISO", "IFD0:ISO"}, {"XMP-exif:ISO"}},
        {"{Exif}", "FocalLength", Kind::Number, {"ExifIFD:FocalLength", "IFD0:FocalLength"}, {"XMP-exif:FocalLength"}},
        {"{Exif}", "FocalLenIn35mmFilm", Kind::Number,
         {"ExifIFD:FocalLengthIn35mmFormat", "IFD0:FocalLengthIn35mmFormat"}, {"XMP-exif:FocalLengthIn35mmFormat"}},
        {"{Exif}", "Flash", Kind::Number, {"ExifIFD:Flash", "IFD0:Flash"}, {}},
        {"{Exif}", "MeteringMode", Kind::Number, {"ExifIFD:MeteringMode", "IFD0:MeteringMode"}, {"XMP-exif:MeteringMode"}},
        {"{Exif}", "WhiteBalance", Kind::Number, {"ExifIFD:WhiteBalance", "IFD0:WhiteBalance"}, {"XMP-exif:WhiteBalance"}},
        {"{Exif}", "ExposureBiasValue", Kind::Number,
         {"ExifIFD:ExposureCompensation", "IFD0:ExposureCompensation"}, {"XMP-exif:ExposureCompensation"}},
        {"{Exif}", "PixelXDimension", Kind::Number, {"ExifIFD:ExifImageWidth", "IFD0:ExifImageWidth"}, {"XMP-exif:ExifImageWidth"}},
        {"{Exif}", "PixelYDimension", Kind::Number, {"ExifIFD:ExifImageHeight", "IFD0:ExifImageHeight"}, {"XMP-exif:ExifImageHeight"}},
        {"{Exif}", "UserComment", Kind::Text, {"ExifIFD:UserComment", "IFD0:UserComment"}, {"XMP-exif:UserComment"}},
        // exiftool -n gives GPS latitude and longitude unsigned in the GPS group, as we do.
        {"{GPS}", "Latitude", Kind::Number, {"GPS:GPSLatitude"}, {}},
        {"{GPS}", "LatitudeRef", Kind::Text, {"GPS:GPSLatitudeRef"}, {}},
        {"{GPS}", "Longitude", Kind::Number, {"GPS:GPSLongitude"}, {}},
        {"{GPS}", "LongitudeRef", Kind::Text, {"GPS:GPSLongitudeRef"}, {}},
        {"{GPS}", "Altitude", Kind::Number, {"GPS:GPSAltitude"}, {}},
        {"{GPS}", "AltitudeRef", Kind::Number, {"GPS:GPSAltitudeRef"}, {}},
        {"{GPS}", "ImgDirection", Kind::Number, {"GPS:GPSImgDirection"}, {}},
        {"{IPTC}", "Keywords", Kind::TextList, {"IPTC:Keywords"}, {"XMP-dc:Subject"}},
        {"{IPTC}", "City", Kind::Text, {"IPTC:City"}, {"XMP-photoshop:City"}},
        {"{IPTC}", "Headline", Kind::Text, {"IPTC:Headline"}, {"XMP-photoshop:Headline"}},
        {"{IPTC}", "Caption/Abstract", Kind::Text, {"IPTC:Caption-Abstract"}, {"XMP-dc:Description"}},
    };
    return f;
}
// clang-format on

QString text(const QJsonValue& v) {
    if (v.isDouble()) return QString::number(v.toDouble(), 'g', 15);
    return v.toVariant().toString().trimmed();
}

std::optional<double> number(const QJsonValue& v) {
    if (v.isDouble()) return v.toDouble();
    bool ok = false;
    double d = text(v).toDouble(&ok);
    return ok ? std::optional(d) : std::nullopt;
}

// Why two values disagree, or empty when they agree.
QString difference(Kind kind, const QJsonValue& ours, const QJsonValue& theirs) {
    switch (kind) {
    case Kind::Text: {
        auto a = number(ours), b = number(theirs);
        if (a && b ? *a == *b : text(ours) == text(theirs)) return {};
        break;
    }
    case Kind::Date: {
        // exiftool may give a date alone ("2019:05:02") where we give its midnight.
        QString a = text(ours), b = text(theirs).left(19);
        if (a == b || (b.size() == 10 && a == b + " 00:00:00")) return {};
        break;
    }
    case Kind::Number:
    case Kind::FirstIso: {
        auto a = number(kind == Kind::FirstIso ? ours.toArray().at(0) : ours);
        auto b = number(kind == Kind::FirstIso ? QJsonValue(text(theirs).section(' ', 0, 0)) : theirs);
        if (a && b && std::abs(*a - *b) <= 1e-6 * std::max(1.0, std::abs(*b))) return {};
        break;
    }
    case Kind::TextList: {
        QStringList a, b;
        for (const QJsonValue& v : ours.toArray()) a << text(v);
        if (theirs.isArray())
            for (const QJsonValue& v : theirs.toArray()) b << text(v);
        else
            b << text(theirs);
        if (a == b) return {};
        break;
    }
    }
    return QStringLiteral("ours %1, exiftool %2")
        .arg(QString::fromUtf8(QJsonDocument(QJsonArray{ours}).toJson(QJsonDocument::Compact)),
             QString::fromUtf8(QJsonDocument(QJsonArray{theirs}).toJson(QJsonDocument::Compact)));
}

void compareWithExiftool(const QString& file, const QJsonObject& props, const QJsonObject& et) {
    for (const Field& f : fields()) {
        const QJsonObject dict = f.dict ? props[f.dict].toObject() : props;
        const QString name = QStringLiteral("%1 %2").arg(f.dict ? f.dict : "top-level", f.key);
        QString source;
        for (const QString& tag : f.sources + f.fallbacks) {
            if (et.contains(tag)) {
                source = tag;
                break;
            }
        }
        if (source.isEmpty()) {
            EXPECT_FALSE(dict.contains(f.key)) << file.toStdString() << ": " << name.toStdString() << " is "
                                               << text(dict[f.key]).toStdString() << " but exiftool has no "
                                               << f.sources.join('/').toStdString();
            continue;
        }
        if (!dict.contains(f.key)) {
            ADD_FAILURE() << file.toStdString() << ": " << name.toStdString() << " missing; exiftool "
                          << source.toStdString() << " is " << text(et[source]).toStdString();
            continue;
        }
        QString diff = difference(f.kind, dict[f.key], et[source]);
        EXPECT_TRUE(diff.isEmpty()) << file.toStdString() << ": " << name.toStdString() << " vs "
                                    << source.toStdString() << ": " << diff.toStdString();
    }

    // The size of the primary image (for raw files the full-size one, as exiftool's composite).
    const QStringList size = et["Composite:ImageSize"].toString().split(' ');
    ASSERT_EQ(size.size(), 2) << file.toStdString() << ": exiftool gave no image size";
    EXPECT_EQ(props["PixelWidth"].toInteger(-1), size[0].toLongLong()) << file.toStdString() << ": PixelWidth";
    EXPECT_EQ(props["PixelHeight"].toInteger(-1), size[1].toLongLong()) << file.toStdString() << ": PixelHeight";
    EXPECT_EQ(props["FileSize"].toInteger(-1), QFileInfo(file).size()) << file.toStdString() << ": FileSize";
}

TEST(PropsCommand, AgreesWithExiftoolOnEveryImage) {
    const Readings& r = readings();
    ASSERT_FALSE(r.images.isEmpty());
    ASSERT_EQ(r.props.size(), r.images.size() + r.movies.size()) << r.ours.err.toStdString();
    ASSERT_EQ(r.exiftool.size(), r.images.size());
    for (const QString& file : r.images) {
        SCOPED_TRACE(file.toStdString());
        const QJsonObject entry = r.props.value(file);
        ASSERT_TRUE(entry.contains("properties")) << file.toStdString() << ": " << entry["error"].toString().toStdString();
        compareWithExiftool(file, entry["properties"].toObject(), r.exiftool.value(file));
    }
}

// Movies go to the movie reader: their tracks and items, not an image reader's error.
TEST(PropsCommand, ReadsMoviesWithTheMovieReader) {
    const Readings& r = readings();
    ASSERT_FALSE(r.movies.isEmpty());
    EXPECT_EQ(r.ours.exitCode, 0) << r.ours.err.toStdString();
    for (const QString& file : r.movies) {
        const QJsonObject props = r.props.value(file)["properties"].toObject();
        EXPECT_GT(props["Duration"].toDouble(), 0) << file.toStdString();
        EXPECT_FALSE(props["Tracks"].toArray().isEmpty()) << file.toStdString();
        EXPECT_FALSE(r.props.value(file).contains("error")) << file.toStdString();
    }
}

// A file is what its bytes say: a JPEG named .png is still read as a JPEG.
TEST(PropsCommand, TrustsBytesNotNames) {
    QTemporaryDir dir;
    const QString misnamed = dir.filePath("photo.png");
    ASSERT_TRUE(QFile::copy(corpusDir() + "/jpeg/Canon_40D.jpg", misnamed));
    ProcessResult r = run(QStringLiteral(TESSORIN_CLI), {"props", misnamed});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QJsonObject props = QJsonDocument::fromJson(r.out).array().at(0)["properties"].toObject();
    EXPECT_TRUE(props.contains("{JFIF}"));
    EXPECT_EQ(props["{TIFF}"]["Make"].toString(), "Canon");
    EXPECT_FALSE(props.contains("{PNG}"));
}

}  // namespace
