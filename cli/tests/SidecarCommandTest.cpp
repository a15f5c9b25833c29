// SPDX-License-Identifier: GPL-3.0-or-later
// XMP sidecars through the command line: what a sidecar says wins over the photo in props, info
// and tags; `edit --sidecar` (and a raw file edited in place) writes the wishes into the sidecar,
// as exiftool reads it, with every other property kept and the photo's bytes untouched; a broken
// sidecar or a read-only folder gets a clear message and leaves every file as it was.
#include "CameraFiles.h"
#include "Isolation.h"
#include "Settings.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <sys/stat.h>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly)) << qPrintable(path);
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// A sidecar as a catalogue writes one; `rating` and `description` tell two apart.
QByteArray sidecarText(int rating, const QString& description) {
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<x:xmpmeta xmlns:x="adobe:ns:meta/">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about=""
    xmlns:xmp="http://ns.adobe.com/xap/1.0/"
    xmlns:dc="http://purl.org/dc/elements/1.1/"
    xmlns:lr="http://ns.adobe.com/lightroom/1.0/"
    xmlns:exif="http://ns.adobe.com/exif/1.0/"
    xmlns:crs="http://ns.adobe.com/camera-raw-settings/1.0/"
    xmp:Rating="%1"
    xmp:Label="Red"
    exif:DateTimeOriginal="2021-07-04T10:11:12"
    exif:GPSLatitude="46,30.6N"
    exif:GPSLongitude="8,0.3E"
    crs:Exposure2012="+0.50"
    crs:Contrast2012="+12">
   <dc:subject><rdf:Bag><rdf:li>Alps</rdf:li><rdf:li>Snow</rdf:li></rdf:Bag></dc:subject>
   <dc:description><rdf:Alt><rdf:li xml:lang="x-default">%2</rdf:li></rdf:Alt></dc:description>
   <lr:hierarchicalSubject><rdf:Bag><rdf:li>Places|Europe|Alps</rdf:li></rdf:Bag></lr:hierarchicalSubject>
  </rdf:Description>
 </rdf:RDF>
</x:xmpmeta>
)").arg(rating).arg(description).toUtf8();
}

QJsonObject propsOf(const QString& path) {
    const ProcessResult r = cli({"props", path});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    return QJsonDocument::fromJson(r.out).array().at(0).toObject().value("properties").toObject();
}

// exiftool's tags of a file by group and name, without the file system's own and those exiftool
// works out from others.
QJsonObject exiftoolTags(const QString& path) {
    QJsonObject tags = exiftoolJson(path, {"-n", "-G1", "-a"}).toObject();
    for (const QString& key : tags.keys())
        if (key.startsWith("System:") || key.startsWith("ExifTool:") || key.startsWith("Composite:") || key == "SourceFile")
            tags.remove(key);
    return tags;
}

class SidecarTest : public IsolatedTest {
protected:
    QString folder() {
        const QString dir = isolation().root() + "/photos";
        QDir().mkpath(dir);
        return dir;
    }
    // A corpus JPEG as `name` in the folder.
    QString photo(const QString& name, const QString& source = "jpeg/Canon_40D.jpg") {
        const QString path = folder() + "/" + name;
        QFile::remove(path);
        EXPECT_TRUE(QFile::copy(corpusDir() + "/" + source, path));
        return path;
    }
    // Every file of the folder with its bytes.
    QMap<QString, QByteArray> snapshot() {
        QMap<QString, QByteArray> out;
        for (const QString& f : QDir(folder()).entryList(QDir::Files | QDir::Hidden)) out.insert(f, readFile(folder() + "/" + f));
        return out;
    }
};

TEST_F(SidecarTest, SidecarValuesWinInBothNamingStylesAndTheFirstStyleWinsOverTheSecond) {
    const QString path = photo("IMG_1.jpg");
    const QString make = exiftoolTags(path).value("IFD0:Make").toString();
    ASSERT_EQ(make, "Canon");
    const QString date = exiftoolTags(path).value("ExifIFD:DateTimeOriginal").toString();
    ASSERT_NE(date, "2021:07:04 10:11:12");

    struct Case {
        QStringList sidecars;  // written in this order, with ratings 4, 2
        QString counted;       // the one that wins
    };
    const QList<Case> cases{{{"IMG_1.jpg.xmp"}, "IMG_1.jpg.xmp"},
                            {{"IMG_1.xmp"}, "IMG_1.xmp"},
                            {{"IMG_1.JPG.XMP"}, "IMG_1.JPG.XMP"},
                            {{"IMG_1.jpg.xmp", "IMG_1.xmp"}, "IMG_1.jpg.xmp"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.sidecars.join(" + ").toStdString());
        for (const QString& f : QDir(folder()).entryList({"*.xmp", "*.XMP"}, QDir::Files)) QFile::remove(folder() + "/" + f);
        int rating = 4;
        for (const QString& name : c.sidecars) {
            writeFile(folder() + "/" + name, sidecarText(rating, name == c.counted ? "the counted one" : "the other"));
            rating = 2;
        }
        const QJsonObject props = propsOf(path);
        const QJsonObject iptc = props.value("{IPTC}").toObject();
        EXPECT_EQ(iptc.value("StarRating").toString(), "4");
        EXPECT_EQ(iptc.value("Keywords").toArray(), (QJsonArray{"Alps", "Snow"}));
        EXPECT_EQ(iptc.value("Caption/Abstract").toString(), "the counted one");
        EXPECT_EQ(props.value("{Exif}").toObject().value("DateTimeOriginal").toString(), "2021:07:04 10:11:12");
        const QJsonObject gps = props.value("{GPS}").toObject();
        EXPECT_NEAR(gps.value("Latitude").toDouble(), 46.51, 1e-9);
        EXPECT_EQ(gps.value("LatitudeRef").toString(), "N");
        EXPECT_NEAR(gps.value("Longitude").toDouble(), 8.005, 1e-9);
        // What only the photo says stays.
        EXPECT_EQ(props.value("{TIFF}").toObject().value("Make").toString(), make);
        const QJsonObject own = props.value("{XMP Sidecar}").toObject();
        EXPECT_EQ(own.value("File").toString(), c.counted);
        EXPECT_EQ(own.value("Xmp.lr.hierarchicalSubject").toArray(), QJsonArray{"Places|Europe|Alps"});
    }

    // The detail, the tag table and the summary read the same record.
    const ProcessResult info = cli({"info", path});
    EXPECT_TRUE(info.out.contains(fullDateText(QDateTime(QDate(2021, 7, 4), QTime(10, 11, 12))).toUtf8())) << info.out.toStdString();
    EXPECT_TRUE(info.out.contains("the counted one")) << info.out.toStdString();
    const ProcessResult tags = cli({"tags", path});
    EXPECT_TRUE(tags.out.contains("XMP Sidecar")) << tags.out.toStdString();
    EXPECT_TRUE(tags.out.contains("Places|Europe|Alps")) << tags.out.toStdString();
}

TEST_F(SidecarTest, SidecarWriteKeepsEveryOtherPropertyAndThePhoto) {
    const QString path = photo("IMG_2.jpg");
    const QString sidecar = folder() + "/IMG_2.xmp";
    writeFile(sidecar, sidecarText(3, "before"));
    const QByteArray photoBytes = readFile(path);
    const QJsonObject before = exiftoolTags(sidecar);
    ASSERT_EQ(before.value("XMP-crs:Exposure2012").toString(), "+0.50");

    const ProcessResult r = cli({"edit", "--sidecar", "--set", "Headline=On the ridge", "--set", "Keywords=Ridge",
                                 "--date", "2022:01:02 03:04:05", "--location", "45.5, 7.25", path});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString() << r.out.toStdString();
    EXPECT_TRUE(r.out.contains("IMG_2.xmp")) << r.out.toStdString();
    EXPECT_EQ(readFile(path), photoBytes);
    EXPECT_FALSE(QFileInfo::exists(path + ".xmp"));  // the existing sidecar took the write

    QJsonObject after = exiftoolTags(sidecar);
    EXPECT_EQ(after.take("XMP-photoshop:Headline").toString(), "On the ridge");
    EXPECT_EQ(after.take("XMP-dc:Subject").toString(), "Ridge");
    EXPECT_EQ(after.take("XMP-exif:DateTimeOriginal").toString().left(19), "2022:01:02 03:04:05");
    EXPECT_NEAR(after.take("XMP-exif:GPSLatitude").toDouble(), 45.5, 1e-6);
    EXPECT_NEAR(after.take("XMP-exif:GPSLongitude").toDouble(), 7.25, 1e-6);
    QJsonObject kept = before;
    for (const char* changed : {"XMP-dc:Subject", "XMP-exif:DateTimeOriginal", "XMP-exif:GPSLatitude", "XMP-exif:GPSLongitude"})
        kept.remove(changed);
    for (auto it = kept.begin(); it != kept.end(); ++it)
        EXPECT_EQ(after.value(it.key()), it.value()) << it.key().toStdString();
    // What the reader shows is the sidecar's new values over the photo's.
    const QJsonObject props = propsOf(path);
    EXPECT_EQ(props.value("{IPTC}").toObject().value("Headline").toString(), "On the ridge");
    EXPECT_EQ(props.value("{Exif}").toObject().value("DateTimeOriginal").toString(), "2022:01:02 03:04:05");
}

TEST_F(SidecarTest, RawFileInPlaceGetsANewSidecarAndKeepsItsBytes) {
    const QByteArray raw = canonCr3(readFile(corpusDir() + "/tiff/IMG_1361.dng"));
    for (const bool baseName : {false, true}) {
        SCOPED_TRACE(baseName ? "NAME.xmp" : "NAME.EXT.xmp");
        Settings::setValue(SettingsKey::sidecarBaseName, baseName);
        const QString path = folder() + (baseName ? "/RAW_B.CR3" : "/RAW_A.CR3");
        writeFile(path, raw);
        const ProcessResult r = cli({"edit", "--in-place", "--set", "Headline=Raw day", "--date", "2020:02:03 04:05:06", path});
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_TRUE(r.out.contains("Tessorin can't write metadata into CR3 files; the changes go to its XMP sidecar"))
            << r.out.toStdString();
        EXPECT_EQ(readFile(path), raw);
        const QString sidecar = baseName ? folder() + "/RAW_B.xmp" : path + ".xmp";
        ASSERT_TRUE(QFileInfo::exists(sidecar));
        const QJsonObject tags = exiftoolTags(sidecar);
        EXPECT_EQ(tags.value("XMP-photoshop:SidecarForExtension").toString(), "CR3");
        EXPECT_EQ(tags.value("XMP-photoshop:Headline").toString(), "Raw day");
        EXPECT_EQ(tags.value("XMP-exif:DateTimeOriginal").toString().left(19), "2020:02:03 04:05:06");
    }
    // Without a place to go (-o), a raw file is still refused in words.
    const ProcessResult refused = cli({"edit", "--set", "Headline=x", "-o", isolation().root(), folder() + "/RAW_A.CR3"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("can't write metadata into CR3 files")) << refused.err.toStdString();
}

// A sidecar the reader refuses is left out of what the photo reads and never rewritten; a
// read-only folder is not written into; a sidecar can't take away the photo's own place. Every
// file stays as it was, and nothing is added.
TEST_F(SidecarTest, BadSidecarsAndReadOnlyFoldersAreRefusedInWordsAndLeaveEveryFile) {
    QByteArray deep = "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                      "<rdf:Description xmlns:dc='http://purl.org/dc/elements/1.1/'>";
    for (int i = 0; i < 20000; ++i) deep += "<dc:title rdf:parseType='Resource'>";
    QByteArray laughs = "<?xml version='1.0'?><!DOCTYPE lolz [<!ENTITY lol 'lol'>";
    for (int i = 1; i < 10; ++i)
        laughs += QStringLiteral("<!ENTITY lol%1 '%2'>").arg(i).arg(QString("&lol%1;").arg(i == 1 ? QString() : QString::number(i - 1)).repeated(10)).toUtf8();
    laughs += "]><x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
              "<rdf:Description xmlns:dc='http://purl.org/dc/elements/1.1/' dc:format='&lol9;'/></rdf:RDF></x:xmpmeta>";
    struct Case {
        const char* name;
        QByteArray sidecar;  // empty: none
        bool readOnly;
        const char* message;
        QStringList wish = {"--set", "Headline=Changed"};
        QString source = "jpeg/Canon_40D.jpg";
    };
    const QList<Case> cases{
        {"not XML", "\x89PNG\r\n\x1a\n this is no XML at all", false, "is not well-formed XML"},
        {"half an XMP packet", sidecarText(1, "x").left(300), false, "is not well-formed XML"},
        {"entity expansion", laughs, false, "declares a document type"},
        {"deep nesting", deep, false, "nests deeper than 64 levels"},
        {"read-only folder", {}, true, "read-only"},
        {"read-only folder with a sidecar", sidecarText(5, "kept"), true, "read-only"},
        {"the photo's own place taken away", {}, false, "a sidecar can't take away what the photo holds itself",
         {"--no-location"}, "jpeg/gps/DSCN0010.jpg"},
        // exiftool: Canon_40D.jpg holds DateTimeOriginal 2008:05:30 15:56:01.
        {"the photo's own date taken away", {}, false, "a sidecar can't take away what the photo holds itself",
         {"--no-date"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = photo("IMG_3.jpg", c.source);
        for (const QString& f : QDir(folder()).entryList({"*.xmp"}, QDir::Files)) QFile::remove(folder() + "/" + f);
        if (!c.sidecar.isEmpty()) writeFile(path + ".xmp", c.sidecar);
        const QMap<QString, QByteArray> files = snapshot();
        if (c.readOnly) { ASSERT_EQ(chmod(QFile::encodeName(folder()).constData(), 0555), 0); }

        const QJsonObject props = propsOf(path);
        EXPECT_EQ(props.value("{TIFF}").toObject().value("Make").toString(), exiftoolTags(path).value("IFD0:Make").toString());
        EXPECT_EQ(props.contains("{XMP Sidecar}"), c.readOnly && !c.sidecar.isEmpty());
        const ProcessResult r = cli(QStringList{"edit", "--sidecar"} + c.wish + QStringList{path});
        EXPECT_EQ(r.exitCode, 1) << r.out.toStdString();
        EXPECT_TRUE(r.err.contains(c.message)) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains("nothing was saved")) << r.err.toStdString();

        if (c.readOnly) { ASSERT_EQ(chmod(QFile::encodeName(folder()).constData(), 0755), 0); }
        EXPECT_EQ(snapshot(), files);
    }
}

}  // namespace
