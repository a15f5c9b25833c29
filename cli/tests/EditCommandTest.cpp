// SPDX-License-Identifier: GPL-3.0-or-later
// `edit` over every writable sample: exiftool and exiv2, run live, must read exactly what was
// wished; every other tag exiftool read before must read the same; the image data must not move.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>

#include <sys/stat.h>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

QStringList writableSamples() {
    QStringList out;
    for (const QString& f : corpusFiles())
        for (const char* dir : {"/jpeg/", "/tiff/", "/png/", "/webp/", "/heif/"})
            if (f.contains(dir) && !f.contains("/jpeg/orientation/") && !f.contains("/jpeg/gps/") &&
                !f.contains("/jpeg/edge/"))
                out << f;
    return out;
}

bool isJpeg(const QString& f) { return f.endsWith(".jpg", Qt::CaseInsensitive); }

QJsonObject tagsOf(const QString& path) { return exiftoolJson(path, {"-n", "-G1", "-a"}).toObject(); }

// exiv2's reading of some keys: key → values, in file order.
QMultiMap<QString, QString> exiv2Values(const QString& path, const QStringList& keys) {
    QStringList args{"-q", "-Pkt"};
    for (const QString& k : keys) args << "-K" << k;
    args << path;
    QMultiMap<QString, QString> out;
    for (const QByteArray& line : run("exiv2", args).out.split('\n')) {
        const QString text = QString::fromUtf8(line);
        const qsizetype space = text.indexOf(' ');
        if (space > 0) out.insert(text.left(space), text.mid(space).trimmed());
    }
    return out;
}

QSet<QString> textSet(const QJsonValue& v) {
    QSet<QString> out;
    if (v.isArray())
        for (const QJsonValue& e : v.toArray()) out << e.toVariant().toString();
    else if (!v.isUndefined())
        out << v.toVariant().toString();
    return out;
}

struct Scenario {
    const char* name;
    QStringList args;
    // What this wish changes beyond what every save may: exiftool's "Group:Name", or "Group:" for
    // a whole group.
    QStringList touches;
    std::function<void(const QString& file, const QJsonObject& after)> check;
};

// What every save may change, by exiftool's group and name, and why. Anything else that reads
// differently after a save is a fault.
const QMap<QString, const char*> kEverySave{
    {"IFD0:Software", "names the program that saved the file"},
    {"XMP-xmp:CreatorTool", "names the program that saved the file"},
    {"XMP-x:XMPToolkit", "names the library that wrote the XMP packet"},
    {"IFD0:ModifyDate", "set by each save"},
    {"XMP-xmp:ModifyDate", "set by each save"},
    {"IPTC:DateCreated", "the IPTC dates are dropped at each save"},
    {"IPTC:TimeCreated", "the IPTC dates are dropped at each save"},
    {"IPTC:DigitalCreationDate", "the IPTC dates are dropped at each save"},
    {"IPTC:DigitalCreationTime", "the IPTC dates are dropped at each save"},
    {"IPTC:By-line", "takes the artist's value when it has none of its own"},
    {"XMP-dc:Description", "takes the image description's value when it has none of its own"},
    {"IFD1:ThumbnailOffset", "where the thumbnail sits after the metadata grew or shrank"},
    {"IFD0:StripOffsets", "where the image data sit after the metadata grew or shrank"},
    {"SubIFD:TileOffsets", "where the image data sit after the metadata grew or shrank"},
    {"IFD0:PreviewImageStart", "where the preview sits after the metadata grew or shrank"},
    {"SubIFD1:OtherImageStart", "where the preview sits after the metadata grew or shrank"},
    {"QuickTime:MediaDataOffset", "where the coded images sit after the metadata box changed size"},
    {"QuickTime:MediaDataSize", "the media box ends where the coded images end"},
};

QString str(const QJsonObject& o, const char* key) { return o.value(key).toVariant().toString(); }

QList<Scenario> scenarios() {
    QList<Scenario> s;
    s << Scenario{"date", {"--date", "2020:01:02 03:04:05"}, {"ExifIFD:DateTimeOriginal", "XMP-exif:DateTimeOriginal", "XMP-photoshop:DateCreated"},
                  [](const QString& f, const QJsonObject& a) {
                      EXPECT_EQ(str(a, "ExifIFD:DateTimeOriginal"), "2020:01:02 03:04:05");
                      EXPECT_EQ(str(a, "IFD0:ModifyDate"), "2020:01:02 03:04:05");
                      EXPECT_EQ(exiv2Values(f, {"Exif.Photo.DateTimeOriginal"}).value("Exif.Photo.DateTimeOriginal"),
                                "2020:01:02 03:04:05");
                  }};
    s << Scenario{"location", {"--location", "48.8584, -2.2945"}, {"GPS:", "XMP-exif:GPSVersionID"}, [](const QString& f, const QJsonObject& a) {
                      EXPECT_NEAR(a.value("GPS:GPSLatitude").toDouble(), 48.8584, 1e-6);
                      EXPECT_EQ(str(a, "GPS:GPSLatitudeRef"), "N");
                      EXPECT_NEAR(a.value("GPS:GPSLongitude").toDouble(), 2.2945, 1e-6);
                      EXPECT_EQ(str(a, "GPS:GPSLongitudeRef"), "W");
                      int gps = 0;
                      for (auto it = a.begin(); it != a.end(); ++it) gps += it.key().startsWith("GPS:");
                      EXPECT_EQ(gps, 4) << "the old position's other GPS tags go";
                      EXPECT_EQ(exiv2Values(f, {"Exif.GPSInfo.GPSLongitudeRef"}).value("Exif.GPSInfo.GPSLongitudeRef"),
                                "West");
                  }};
    s << Scenario{"comment", {"--set", "USER_COMMENT=hello wörld"}, {"ExifIFD:UserComment"},
                  [](const QString& f, const QJsonObject& a) {
                      EXPECT_EQ(str(a, "ExifIFD:UserComment"), "hello wörld");
                      // exiv2 names the character set in front of the text for some containers.
                      EXPECT_TRUE(exiv2Values(f, {"Exif.Photo.UserComment"}).value("Exif.Photo.UserComment").endsWith("hello wörld"));
                  }};
    s << Scenario{"keywords", {"--set", "Keywords=alpha, beta,gamma"}, {"IPTC:Keywords", "XMP-dc:Subject"},
                  [](const QString& f, const QJsonObject& a) {
                      const QSet<QString> wished{"alpha", "beta", "gamma"};
                      EXPECT_EQ(textSet(a.value("XMP-dc:Subject")), wished);
                      if (isJpeg(f)) {
                          EXPECT_EQ(textSet(a.value("IPTC:Keywords")), wished);
                      }
                      EXPECT_EQ(exiv2Values(f, {"Xmp.dc.subject"}).value("Xmp.dc.subject"), "alpha, beta, gamma");
                  }};
    s << Scenario{"author", {"--set", "AUTHOR=Jane Doe"}, {"IFD0:Artist", "XMP-dc:Creator"},
                  [](const QString& f, const QJsonObject& a) {
                      EXPECT_EQ(str(a, "IFD0:Artist"), "Jane Doe");
                      EXPECT_EQ(textSet(a.value("XMP-dc:Creator")), QSet<QString>{"Jane Doe"});
                      if (isJpeg(f)) {
                          EXPECT_EQ(textSet(a.value("IPTC:By-line")), QSet<QString>{"Jane Doe"});
                      }
                      EXPECT_EQ(exiv2Values(f, {"Exif.Image.Artist"}).value("Exif.Image.Artist"), "Jane Doe");
                  }};
    s << Scenario{"copyright", {"--set", "COPYRIGHT=(c) 2020 Jane Doe"}, {"IFD0:Copyright", "IPTC:CopyrightNotice", "XMP-dc:Rights"},
                  [](const QString& f, const QJsonObject& a) {
                      EXPECT_EQ(str(a, "IFD0:Copyright"), "(c) 2020 Jane Doe");
                      EXPECT_EQ(str(a, "XMP-dc:Rights"), "(c) 2020 Jane Doe");
                      if (isJpeg(f)) {
                          EXPECT_EQ(str(a, "IPTC:CopyrightNotice"), "(c) 2020 Jane Doe");
                      }
                      EXPECT_EQ(exiv2Values(f, {"Exif.Image.Copyright"}).value("Exif.Image.Copyright"), "(c) 2020 Jane Doe");
                  }};
    s << Scenario{"description", {"--set", "DESCRIPTION=A quiet morning"}, {"IFD0:ImageDescription", "IPTC:Caption-Abstract"},
                  [](const QString& f, const QJsonObject& a) {
                      EXPECT_EQ(str(a, "IFD0:ImageDescription"), "A quiet morning");
                      EXPECT_EQ(str(a, "XMP-dc:Description"), "A quiet morning");
                      if (isJpeg(f)) {
                          EXPECT_EQ(str(a, "IPTC:Caption-Abstract"), "A quiet morning");
                      }
                      EXPECT_EQ(exiv2Values(f, {"Exif.Image.ImageDescription"}).value("Exif.Image.ImageDescription"),
                                "A quiet morning");
                  }};
    s << Scenario{"no location", {"--no-location"}, {"GPS:", "XMP-exif:GPSVersionID"}, [](const QString& f, const QJsonObject& a) {
                      for (auto it = a.begin(); it != a.end(); ++it)
                          EXPECT_FALSE(it.key().startsWith("GPS:") || it.key().startsWith("XMP-exif:GPS"))
                              << it.key().toStdString();
                      for (const QString& k : exiv2Values(f, {"Exif.GPSInfo.GPSLatitude", "Xmp.exif.GPSLatitude"}).keys())
                          ADD_FAILURE() << "exiv2 still reads " << k.toStdString();
                  }};
    return s;
}

// Tags that read differently for reasons of the sample, not of the edit.
bool knownException(const QString& file, const QString& tag) {
    // exiv2 reads this Canon maker note at the wrong base (exiftool shifts it by -128 bytes) and
    // writes back what it read.
    if (file.endsWith("canon_hdr_YES.jpg") && tag.startsWith("Canon:")) return true;
    // exiv2 leaves image-structure tags out of a JPEG's first directory: they describe no JPEG pixels.
    if (isJpeg(file) && tag == "IFD0:PhotometricInterpretation") return true;
    return false;
}

void expectOthersKept(const QString& file, const QJsonObject& before, const QJsonObject& after, const QStringList& touches) {
    expectOtherTagsKept(before, after, [&](const QString& tag, const QJsonValue& was, const QJsonValue& now) {
        if (tag.startsWith("ExifTool:") || tag.startsWith("Composite:") || knownException(file, tag)) return true;
        if (kEverySave.contains(tag) || touches.contains(tag) || touches.contains(tag.section(':', 0, 0) + ':')) return true;
        // Blank texts are cleared and texts trimmed by the modifier's rules.
        const QString old = was.toVariant().toString();
        return was.isString() && ((old.trimmed().isEmpty() && now.isUndefined()) || now.toString() == old.trimmed());
    });
}

}  // namespace

// The tool keeps recent dates and places in the settings: each test has its own, isolated.
class EditCommand : public ::testing::Test {};

TEST_F(EditCommand, EveryWishReadsBackAndNothingElseChanges) {
    const QStringList files = writableSamples();
    ASSERT_EQ(files.size(), 24);  // jpeg 12, heif 4, png 4, tiff 3, webp 1
    for (const QString& file : files) {
        const QJsonObject before = tagsOf(file);
        for (const Scenario& s : scenarios()) {
            SCOPED_TRACE(QString(file + " / " + s.name).toStdString());
            QTemporaryDir out;
            const ProcessResult r = cli(QStringList{"edit"} + s.args + QStringList{file, "-o", out.path()});
            const QString written = QDir(out.path()).filePath(QFileInfo(file).fileName());
            ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
            if (!QFileInfo::exists(written)) {
                // Only taking away a position the file lacks may change nothing: any other wish
                // that writes no file was dropped.
                bool hadPosition = false;
                for (auto it = before.begin(); it != before.end(); ++it)
                    hadPosition |= it.key().startsWith("GPS:") || it.key().startsWith("XMP-exif:GPS");
                EXPECT_TRUE(QByteArray(s.name) == "no location" && !hadPosition)
                    << "no file written: " << r.out.toStdString();
                EXPECT_TRUE(r.out.contains("Nothing changed")) << r.out.toStdString();
                continue;
            }
            const QJsonObject after = tagsOf(written);
            s.check(written, after);
            expectOthersKept(file, before, after, s.touches);
            if (QByteArray(s.name) == "location") expectSameImage(file, written);
        }
    }
}

TEST_F(EditCommand, NoTagsLeavesNoTagsAndTheSameImage) {
    const QStringList files = writableSamples();
    ASSERT_EQ(files.size(), 24);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        QTemporaryDir out;
        const ProcessResult r = cli({"edit", "--no-tags", file, "-o", out.path()});
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QString written = QDir(out.path()).filePath(QFileInfo(file).fileName());
        const QJsonObject after = tagsOf(written);
        // What describes the pixels stays (a raw file's colour matrices too); what describes the picture goes.
        static const QSet<QString> described{"ImageDescription", "Make", "Model", "Orientation", "Software",
                                             "ModifyDate", "Artist", "HostComputer", "Copyright", "DocumentName",
                                             "XPTitle", "XPComment", "XPAuthor", "XPKeywords", "XPSubject"};
        for (auto it = after.begin(); it != after.end(); ++it) {
            const QString group = it.key().section(':', 0, 0), name = it.key().section(':', 1);
            EXPECT_FALSE(group == "IFD0" && described.contains(name)) << it.key().toStdString();
            // The sample DNG's XMP sits with its auxiliary sky matte, and the iPhone HEIC's with its
            // HDR gain map: each describes that image and stays.
            const bool auxiliaryXmp =
                (file.endsWith(".dng") || file.endsWith("iphone_13_pro_max.HEIC")) && group.startsWith("XMP");
            EXPECT_FALSE(group == "ExifIFD" || group == "GPS" || group == "IPTC" || (group.startsWith("XMP") && !auxiliaryXmp))
                << it.key().toStdString();
        }
        expectSameImage(file, written);
        // The colour profile is part of the image.
        const QJsonObject before = tagsOf(file);
        EXPECT_EQ(after.value("XMP-HDRGainMap:HDRGainMapVersion"), before.value("XMP-HDRGainMap:HDRGainMapVersion"));
        EXPECT_EQ(after.value("ICC_Profile:ProfileDescription"), before.value("ICC_Profile:ProfileDescription"));
    }
}

TEST_F(EditCommand, OrientationIsWrittenAsANumberInBothPlaces) {
    QTemporaryDir out;
    const QString file = corpusDir() + "/jpeg/orientation/landscape_1.jpg";
    ASSERT_EQ(cli({"edit", "--orientation", "6", file, "-o", out.path()}).exitCode, 0);
    const QString written = out.filePath("landscape_1.jpg");
    EXPECT_EQ(tagsOf(written).value("IFD0:Orientation").toInt(), 6);
    EXPECT_EQ(exiv2Values(written, {"Exif.Image.Orientation"}).value("Exif.Image.Orientation"), "right, top");
    expectSameImage(file, written);
}

TEST_F(EditCommand, InPlaceKeepsTheOriginalBesideWhenAsked) {
    QTemporaryDir dir;
    const QString source = corpusDir() + "/heif/Stonehenge.heic";
    const QString copy = dir.filePath("Stonehenge.heic");
    ASSERT_TRUE(QFile::copy(source, copy));
    const ProcessResult r = cli({"edit", "--set", "IPTC_CITY=Amesbury", "--in-place", "--keep-original", copy});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(readFile(dir.filePath("Stonehenge_original.heic")), readFile(source));
    EXPECT_EQ(str(tagsOf(copy), "XMP-photoshop:City"), "Amesbury");
    expectSameImage(source, copy);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 2);

    // A second edit would overwrite the kept original: refused before anything is written.
    const QByteArray edited = readFile(copy);
    const ProcessResult refused =
        cli({"edit", "--set", "IPTC_CITY=Salisbury", "--in-place", "--keep-original", copy});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(refused.err.contains("can't keep the original")) << refused.err.toStdString();
    EXPECT_EQ(readFile(copy), edited);
    EXPECT_EQ(readFile(dir.filePath("Stonehenge_original.heic")), readFile(source));

    // The same wish again changes nothing and writes nothing.
    const ProcessResult again = cli({"edit", "--set", "IPTC_CITY=Amesbury", "--in-place", copy});
    EXPECT_EQ(again.exitCode, 0);
    EXPECT_TRUE(again.out.contains("Nothing changed")) << again.out.toStdString();
    EXPECT_EQ(readFile(copy), edited);
}

TEST_F(EditCommand, DigitizedDateAndRemovalReadBack) {
    QTemporaryDir out;
    const QString file = corpusDir() + "/jpeg/iptc-psAPP13-wIPTCmid.jpg";
    ASSERT_EQ(str(tagsOf(file), "IPTC:By-line"), "This is a by-line");
    const ProcessResult r =
        cli({"edit", "--digitized-date", "2019:05:06 07:08:09", "--remove", "By-line", file, "-o", out.path()});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QString written = out.filePath("iptc-psAPP13-wIPTCmid.jpg");
    const QJsonObject after = tagsOf(written);
    EXPECT_EQ(str(after, "ExifIFD:CreateDate"), "2019:05:06 07:08:09");
    EXPECT_EQ(exiv2Values(written, {"Exif.Photo.DateTimeDigitized"}).value("Exif.Photo.DateTimeDigitized"),
              "2019:05:06 07:08:09");
    for (const char* gone : {"IPTC:By-line", "IFD0:Artist", "XMP-dc:Creator"})
        EXPECT_FALSE(after.contains(gone)) << gone;
    expectSameImage(file, written);
}

TEST_F(EditCommand, RenderDrawsUprightAndHeifBecomesJpeg) {
    QTemporaryDir out;
    const QString heic = corpusDir() + "/heif/Stonehenge.heic";
    const QString rotated = corpusDir() + "/jpeg/orientation/portrait_6.jpg";
    const ProcessResult r = cli({"edit", "--render", "--set", "IPTC_CITY=Amesbury", heic, rotated, "-o", out.path()});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QImage fromHeic(out.filePath("Stonehenge.jpg"));
    EXPECT_FALSE(fromHeic.isNull());
    // Drawn anew, every tag is written afresh and must read as it did: the one-byte codes too.
    const QStringList exifGroups{"-n", "-G1", "-a", "-ExifIFD:all", "-IFD0:all", "-GPS:all"};
    const QJsonObject after = exiftoolJson(out.filePath("Stonehenge.jpg"), exifGroups).toObject();
    EXPECT_EQ(after.value("ExifIFD:FileSource").toInt(), 3);
    EXPECT_EQ(after.value("ExifIFD:SceneType").toInt(), 1);
    expectOthersKept(heic, exiftoolJson(heic, exifGroups).toObject(), after, {});
    const QImage stored = QImage::fromData(readFile(rotated));
    const QString upright = out.filePath("portrait_6.jpg");
    const QImage drawn(upright);
    ASSERT_FALSE(drawn.isNull());
    EXPECT_EQ(drawn.size(), stored.size().transposed());
    EXPECT_EQ(tagsOf(upright).value("IFD0:Orientation").toInt(), 1);
}

TEST_F(EditCommand, FailuresLeaveTheSourceAndNoStrayFile) {
    const QString source = corpusDir() + "/jpeg/iphone_hdr_YES.jpg";
    const QByteArray original = readFile(source);

    // A target that refuses the write even for root: a folder already holds the name. The
    // finished file can't take its place, and nothing else is left beside it.
    QTemporaryDir taken;
    ASSERT_TRUE(QDir(taken.path()).mkdir("iphone_hdr_YES.jpg"));
    ProcessResult r = cli({"edit", "--date", "2020:01:02 03:04:05", source, "-o", taken.path()});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("iphone_hdr_YES.jpg")) << r.err.toStdString();
    EXPECT_EQ(QDir(taken.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"iphone_hdr_YES.jpg"});
    EXPECT_TRUE(QDir(taken.filePath("iphone_hdr_YES.jpg")).isEmpty());

    // -o into the file's own folder would replace it: refused, the file untouched.
    QTemporaryDir own;
    const QString mine = own.filePath("iphone_hdr_YES.jpg");
    ASSERT_TRUE(QFile::copy(source, mine));
    r = cli({"edit", "--date", "2020:01:02 03:04:05", mine, "-o", own.path()});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("use --in-place")) << r.err.toStdString();
    EXPECT_EQ(readFile(mine), original);
    EXPECT_EQ(QDir(own.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"iphone_hdr_YES.jpg"});

    // A write cut short by a file size limit (it holds for root too), in place, in place keeping
    // the original, and to a folder. The limit lets a copy of the original through, so keeping it
    // succeeds, but not the edited file, which a long description makes larger.
    QTemporaryDir dir;
    const QString copy = dir.filePath("iphone_hdr_YES.jpg");
    ASSERT_TRUE(QFile::copy(source, copy));
    QFile::setPermissions(copy, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    QTemporaryDir out;
    const QString limit = "--fsize=" + QString::number(original.size() + 1024);
    for (const QStringList& where :
         {QStringList{"--in-place"}, QStringList{"--in-place", "--keep-original"}, QStringList{"-o", out.path()}}) {
        SCOPED_TRACE(where.join(' ').toStdString());
        r = run("prlimit", QStringList{limit, QStringLiteral(TESSORIN_CLI), "edit", "--set",
                                       "DESCRIPTION=" + QString(4000, 'x'), copy} + where);
        EXPECT_EQ(r.exitCode, 1) << r.err.toStdString();
        EXPECT_TRUE(r.err.contains("Error writing data to file")) << r.err.toStdString();
        EXPECT_EQ(readFile(copy), original);
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"iphone_hdr_YES.jpg"});
        EXPECT_TRUE(QDir(out.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
    }
    EXPECT_EQ(readFile(source), original);
}

TEST_F(EditCommand, BadInputIsReportedAndTheOthersGoOn) {
    QTemporaryDir out;
    const QString good = corpusDir() + "/jpeg/Canon_40D.jpg";
    const ProcessResult r = cli({"edit", "--set", "LensModel=EF 50mm", corpusDir() + "/malformed", "/no/such/file.jpg",
                                 corpusDir() + "/tiff/IMG_1361.dng", good, "-o", out.path()});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("/no/such/file.jpg")) << r.err.toStdString();
    EXPECT_EQ(str(tagsOf(out.filePath("Canon_40D.jpg")), "ExifIFD:LensModel"), "EF 50mm");

    for (const QStringList& bad : {QStringList{"edit", good}, QStringList{"edit", "--date", "yesterday", good, "-o", "/tmp"},
                                   QStringList{"edit", "--set", "FNumber=2", good, "-o", "/tmp"},
                                   QStringList{"edit", "--orientation", "9", good, "-o", "/tmp"},
                                   QStringList{"edit", "--location", "somewhere", good, "-o", "/tmp"}})
        EXPECT_EQ(cli(bad).exitCode, 2) << bad.join(' ').toStdString();
}

// A file edited in place keeps its own mode; a file the edit creates gets what the umask allows,
// never the private mode of the temporary file it was written as.
TEST_F(EditCommand, OutputFilesKeepTheSourcesModeOrFollowTheUmask) {
    const auto modeOf = [](const QString& path) {
        struct stat st {};
        return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? int(st.st_mode & 07777) : -1;
    };
    // The CLI under umask 027: a new file is 0666 & ~027 = 0640.
    const auto underUmask = [](const QStringList& args) {
        return run("sh", QStringList{"-c", "umask 027; exec \"$0\" \"$@\"", QStringLiteral(TESSORIN_CLI)} + args);
    };
    QTemporaryDir dir, out;
    const QString photo = dir.filePath("Canon_40D.jpg");
    ASSERT_TRUE(QFile::copy(corpusDir() + "/jpeg/Canon_40D.jpg", photo));
    ASSERT_EQ(::chmod(QFile::encodeName(photo).constData(), 0604), 0);

    ProcessResult r = underUmask({"edit", "--set", "LensModel=EF 50mm", photo, "-o", out.path()});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(modeOf(out.filePath("Canon_40D.jpg")), 0640);

    r = underUmask({"edit", "--set", "LensModel=EF 85mm", photo, "--in-place", "--keep-original"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(str(tagsOf(photo), "ExifIFD:LensModel"), "EF 85mm");
    EXPECT_EQ(modeOf(photo), 0604);
    EXPECT_EQ(modeOf(dir.filePath("Canon_40D_original.jpg")), 0604) << "the kept original is the file as it was";

    const QString movie = video("apple_meta.mov");
    r = underUmask({"edit", "--date", "2020:01:02 03:04:05", movie, "-o", out.path()});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QStringList movies = QDir(out.path()).entryList({"*.mp4", "*.mov"}, QDir::Files);
    ASSERT_EQ(movies.size(), 1);
    EXPECT_EQ(modeOf(out.filePath(movies[0])), 0640);

    // A new item of the photo library (the isolation's library folder).
    const QString library = qEnvironmentVariable("TESSORIN_LIBRARY");
    r = underUmask({"edit", "--set", "LensModel=EF 50mm", photo, "--library", "new"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QStringList added;
    for (QDirIterator it(library, {"*.jpg"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();) added << it.next();
    ASSERT_EQ(added.size(), 1) << r.out.toStdString();
    EXPECT_EQ(modeOf(added[0]), 0640);
}

// Modify edits library items in place without drawing them anew: each keeps its name, its format,
// its coded image, its maker notes and every tag the wish doesn't touch, and revert brings the
// original back byte for byte.
TEST_F(EditCommand, ModifyInTheLibraryIsALosslessMetadataEdit) {
    const QString library = qEnvironmentVariable("TESSORIN_LIBRARY");
    ASSERT_TRUE(QDir().mkpath(library + "/Trip"));
    // Turned upright by its Orientation tag; a camera's maker notes and Exif thumbnail; a phone
    // HEIC turned by its 'irot' property; a TIFF; a PNG.
    const QStringList sources{"jpeg/orientation/portrait_6.jpg", "jpeg/Canon_40D.jpg", "heif/iphone_13_pro_max.HEIC",
                              "tiff/BSG1.tiff", "png/1343_exif.png"};
    for (const QString& s : sources) ASSERT_TRUE(QFile::copy(corpusDir() + "/" + s, library + "/Trip/" + QFileInfo(s).fileName()));
    ASSERT_EQ(cli({"library", "scan"}).exitCode, 0);
    const QJsonArray items = QJsonDocument::fromJson(cli({"library", "list", "--json"}).out).array();
    ASSERT_EQ(items.size(), sources.size());
    QStringList ids;
    QMap<QString, QString> idOf;  // file name -> identifier
    for (const QJsonValue& item : items) {
        ids << item["localIdentifier"].toString();
        idOf.insert(QFileInfo(item["resources"][0]["path"].toString()).fileName(), ids.last());
    }

    const ProcessResult r = cli(QStringList{"edit", "--date", "2020:01:02 03:04:05", "--library", "modify"} + ids);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QStringList names;
    for (const QString& s : sources) names << QFileInfo(s).fileName();
    names.sort();
    EXPECT_EQ(QDir(library + "/Trip").entryList(QDir::Files, QDir::Name), names) << "each keeps its name, no other file appears";

    for (const QString& s : sources) {
        SCOPED_TRACE(s.toStdString());
        const QString source = corpusDir() + "/" + s, edited = library + "/Trip/" + QFileInfo(s).fileName();
        const QJsonObject before = tagsOf(source), after = tagsOf(edited);
        EXPECT_EQ(str(after, "ExifIFD:DateTimeOriginal"), "2020:01:02 03:04:05");
        EXPECT_EQ(str(after, "File:FileType"), str(before, "File:FileType"));
        expectOthersKept(source, before, after, {"ExifIFD:DateTimeOriginal", "XMP-exif:DateTimeOriginal", "XMP-photoshop:DateCreated"});
        expectSameImage(source, edited);
    }
    // The one turned by its tag still is.
    EXPECT_EQ(tagsOf(library + "/Trip/portrait_6.jpg").value("IFD0:Orientation").toInt(), 6);

    const QString heic = library + "/Trip/iphone_13_pro_max.HEIC";
    ASSERT_EQ(cli({"library", "revert", idOf.value("iphone_13_pro_max.HEIC")}).exitCode, 0);
    EXPECT_EQ(readFile(heic), readFile(corpusDir() + "/heif/iphone_13_pro_max.HEIC"));
}

// An orientation wish on a HEIF turns it where HEIF readers look, its 'irot' and 'imir'
// properties, and in its Exif tag, the two alike. libheif (through heif-convert) must draw it as
// Qt draws a JPEG of the same pixels carrying that Exif orientation.
TEST_F(EditCommand, AnOrientationWishTurnsAHeifByItsTransformsAndItsTag) {
    QTemporaryDir dir;
    const QString source = corpusDir() + "/heif/Stonehenge.heic";
    auto drawnByLibheif = [&](const QString& heif) {
        const QString png = dir.filePath("drawn.png");
        QFile::remove(png);
        const ProcessResult r = run("heif-convert", {heif, png});
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        return QImage(png).scaled(64, 64, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    };
    const QImage stored = QImage(drawnByLibheif(source));
    ASSERT_FALSE(stored.isNull());
    const QString jpeg = dir.filePath("stored.jpg");
    ASSERT_TRUE(stored.save(jpeg, "JPEG", 100));
    auto difference = [](const QImage& a, const QImage& b) {
        if (a.size() != b.size()) return 255.0;
        const QImage x = a.convertToFormat(QImage::Format_RGB888), y = b.convertToFormat(QImage::Format_RGB888);
        double sum = 0;
        for (int row = 0; row < x.height(); ++row)
            for (int i = 0; i < x.width() * 3; ++i) sum += std::abs(int(x.constScanLine(row)[i]) - int(y.constScanLine(row)[i]));
        return sum / (double(x.width()) * x.height() * 3);
    };

    // Each wish starts from the last one's result: a turn replaces the one before.
    const QString previous = dir.filePath("in/Stonehenge.heic");
    ASSERT_TRUE(QDir().mkpath(dir.filePath("in")));
    ASSERT_TRUE(QFile::copy(source, previous));
    for (int o : {6, 2, 3, 4, 5, 7, 8, 1}) {
        SCOPED_TRACE(o);
        QTemporaryDir out;
        const ProcessResult r = cli({"edit", "--orientation", QString::number(o), previous, "-o", out.path()});
        ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
        const QString turned = out.filePath("Stonehenge.heic");
        const QJsonObject tags = tagsOf(turned);
        EXPECT_EQ(tags.value("IFD0:Orientation").toInt(), o);
        // As an iPhone turns a photo shot upright: Exif orientation 6 with a turn of 270 degrees.
        if (o == 6) EXPECT_EQ(tags.value("QuickTime:Rotation").toInt(), 270);

        ASSERT_TRUE(run("exiftool", {"-n", "-Orientation=" + QString::number(o), "-overwrite_original", jpeg}).exitCode == 0);
        QImageReader reader(jpeg);
        reader.setAutoTransform(true);
        const QImage expected = reader.read();
        EXPECT_LT(difference(drawnByLibheif(turned), expected), 6);
        expectOthersKept(source, tagsOf(source), tags, {"IFD0:Orientation", "QuickTime:"});
        QFile::remove(previous);
        ASSERT_TRUE(QFile::copy(turned, previous));
    }
}
