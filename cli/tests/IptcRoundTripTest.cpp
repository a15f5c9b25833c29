// SPDX-License-Identifier: GPL-3.0-or-later
// Every field of the IPTC editor and the creator contact group, set on three photos at once by
// `tessorin-cli edit`: exiftool and exiv2, run live, must read each value back in IIM and XMP
// (XMP alone for HEIC), non-ASCII text intact, and every other tag as it was.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

struct Field {
    QString set;                 // KEY=VALUE for --set
    QStringList values;          // what every reader must give, in order
    QString exiftoolIim;         // "" when IIM has no home for it
    QString exiftoolXmp;
    QString exiv2Iim;
    QString exiv2Xmp;
};

const QList<Field>& fields() {
    // clang-format off
    static const QList<Field> all{
        {"IPTC_DOC_TITLE=Fête de la Musique", {"Fête de la Musique"}, "IPTC:ObjectName", "XMP-dc:Title", "Iptc.Application2.ObjectName", "Xmp.dc.title"},
        {"DESCRIPTION=Crowd in 東京 at night 🎉", {"Crowd in 東京 at night 🎉"}, "IPTC:Caption-Abstract", "XMP-dc:Description", "Iptc.Application2.Caption", "Xmp.dc.description"},
        {"IPTC_KEYWORDS=café, 東京,🎉", {"café", "東京", "🎉"}, "IPTC:Keywords", "XMP-dc:Subject", "Iptc.Application2.Keywords", "Xmp.dc.subject"},
        {"IPTC_HEADLINE=Ünïcödé headline", {"Ünïcödé headline"}, "IPTC:Headline", "XMP-photoshop:Headline", "Iptc.Application2.Headline", "Xmp.photoshop.Headline"},
        {"AUTHOR=Zoë Ångström", {"Zoë Ångström"}, "IPTC:By-line", "XMP-dc:Creator", "Iptc.Application2.Byline", "Xmp.dc.creator"},
        {"IPTC_AUTHOR_TITLE=Fotógrafa", {"Fotógrafa"}, "IPTC:By-lineTitle", "XMP-photoshop:AuthorsPosition", "Iptc.Application2.BylineTitle", "Xmp.photoshop.AuthorsPosition"},
        {"IPTC_DESCRIPTION_WRITER=Jürgen, 李", {"Jürgen", "李"}, "IPTC:Writer-Editor", "XMP-photoshop:CaptionWriter", "Iptc.Application2.Writer", "Xmp.photoshop.CaptionWriter"},
        {"IPTC_RIGHTS_USAGE_TERM=Editorial use only ©", {"Editorial use only ©"}, "", "XMP-xmpRights:UsageTerms", "", "Xmp.xmpRights.UsageTerms"},
        {"IPTC_CREDIT=Agence Française", {"Agence Française"}, "IPTC:Credit", "XMP-photoshop:Credit", "Iptc.Application2.Credit", "Xmp.photoshop.Credit"},
        {"IPTC_SOURCE=Archives 北京", {"Archives 北京"}, "IPTC:Source", "XMP-photoshop:Source", "Iptc.Application2.Source", "Xmp.photoshop.Source"},
        {"COPYRIGHT=© 2026 Zoë", {"© 2026 Zoë"}, "IPTC:CopyrightNotice", "XMP-dc:Rights", "Iptc.Application2.Copyright", "Xmp.dc.rights"},
        {"IPTC_EVENT=Fête 2026 🎶", {"Fête 2026 🎶"}, "", "XMP-iptcExt:Event", "", "Xmp.iptcExt.Event"},
        {"IPTC_CITY=Kraków", {"Kraków"}, "IPTC:City", "XMP-photoshop:City", "Iptc.Application2.City", "Xmp.photoshop.City"},
        {"IPTC_SUBLOCATION=Stare Miasto", {"Stare Miasto"}, "IPTC:Sub-location", "XMP-iptcCore:Location", "Iptc.Application2.SubLocation", "Xmp.iptc.Location"},
        {"IPTC_PROVINCE=Małopolskie", {"Małopolskie"}, "IPTC:Province-State", "XMP-photoshop:State", "Iptc.Application2.ProvinceState", "Xmp.photoshop.State"},
        {"IPTC_COUNTRY=Polska", {"Polska"}, "IPTC:Country-PrimaryLocationName", "XMP-photoshop:Country", "Iptc.Application2.CountryName", "Xmp.photoshop.Country"},
        {"IPTC_COUNTRYCODE=POL", {"POL"}, "IPTC:Country-PrimaryLocationCode", "XMP-iptcCore:CountryCode", "Iptc.Application2.CountryCode", "Xmp.iptc.CountryCode"},
        {"IPTC_SOURCE_TYPE=http://cv.iptc.org/newscodes/digitalsourcetype/digitalCapture", {"http://cv.iptc.org/newscodes/digitalsourcetype/digitalCapture"}, "", "XMP-iptcExt:DigitalSourceType", "", "Xmp.iptcExt.DigitalSourceType"},
        {"IPTC_CREATOR_CONTACT_INFO_ADDRESS=ul. Długa 1", {"ul. Długa 1"}, "", "XMP-iptcCore:CreatorAddress", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrExtadr"},
        {"IPTC_CREATOR_CONTACT_INFO_CITY=Gdańsk", {"Gdańsk"}, "", "XMP-iptcCore:CreatorCity", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCity"},
        {"CiAdrPcode=80-831", {"80-831"}, "", "XMP-iptcCore:CreatorPostalCode", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrPcode"},
        {"IPTC_CREATOR_CONTACT_INFO_REGION=Pomorskie", {"Pomorskie"}, "", "XMP-iptcCore:CreatorRegion", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrRegion"},
        {"IPTC_CREATOR_CONTACT_INFO_COUNTRY=Polska", {"Polska"}, "", "XMP-iptcCore:CreatorCountry", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCtry"},
        {"IPTC_CREATOR_CONTACT_INFO_EMAILS=zoë@example.org", {"zoë@example.org"}, "", "XMP-iptcCore:CreatorWorkEmail", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiEmailWork"},
        {"IPTC_CREATOR_CONTACT_INFO_PHONES=+48 58 000 00 00", {"+48 58 000 00 00"}, "", "XMP-iptcCore:CreatorWorkTelephone", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiTelWork"},
        {"CiUrlWork=https://example.org/zoë", {"https://example.org/zoë"}, "", "XMP-iptcCore:CreatorWorkURL", "", "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiUrlWork"},
    };
    // clang-format on
    return all;
}

QStringList texts(const QJsonValue& v) {
    QStringList out;
    if (v.isArray())
        for (const QJsonValue& e : v.toArray()) out << e.toVariant().toString();
    else if (!v.isUndefined())
        out << v.toVariant().toString();
    return out;
}

// exiv2's reading of every key: key → values in file order, the language mark of XMP
// alternatives taken off.
QMultiMap<QString, QString> exiv2Values(const QString& path) {
    QMultiMap<QString, QString> out;
    const QList<QByteArray> lines = run("exiv2", {"-q", "-Pkt", path}).out.split('\n');
    for (auto it = lines.crbegin(); it != lines.crend(); ++it) {  // insert keeps the newest first
        QString text = QString::fromUtf8(*it);
        const qsizetype space = text.indexOf(' ');
        if (space <= 0) continue;
        QString value = text.mid(space).trimmed();
        if (value.startsWith(QLatin1String("lang=\"x-default\" "))) value = value.mid(17);
        out.insert(text.left(space), value);
    }
    return out;
}

// The tool saves recent places and dates: each test runs with folders and settings of its own.
using IptcRoundTrip = IsolatedTest;

QJsonObject tagsOf(const QString& path) { return exiftoolJson(path, {"-n", "-G1", "-a"}).toObject(); }

// What the edit may change beyond the fields: the groups it writes, the TIFF homes of author,
// copyright and caption, the IPTC dates that every save drops, an empty user comment (no value to
// every save), the software and modification date of the save, and what moves with the data.
bool mayChange(const QString& tag) {
    static const QStringList fragments{"IPTC:", "XMP-", "IFD0:Artist", "IFD0:Copyright", "IFD0:ImageDescription",
                                       "ExifTool:", "Composite:", "Offset", "ImageStart",
                                       "MediaData", "Software", "CreatorTool", "ModifyDate", "UserComment"};
    for (const QString& f : fragments)
        if (tag.contains(f)) return true;
    return false;
}

TEST_F(IptcRoundTrip, EveryFieldOnThreePhotosAtOnce) {
    const QStringList sources{corpusDir() + "/jpeg/Canon_40D.jpg", corpusDir() + "/heif/IMG_5195.HEIC",
                              corpusDir() + "/tiff/Arbitro.tiff"};
    for (const QString& s : sources) ASSERT_TRUE(QFileInfo::exists(s)) << "corpus file missing: " << s.toStdString();
    QTemporaryDir out;
    ASSERT_TRUE(out.isValid());
    QStringList args{"edit"};
    for (const Field& f : fields()) args << "--set" << f.set;
    args << sources << "-o" << out.path();
    const ProcessResult r = cli(args);
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();

    for (const QString& source : sources) {
        SCOPED_TRACE(source.toStdString());
        const QString written = QDir(out.path()).filePath(QFileInfo(source).fileName());
        ASSERT_TRUE(QFileInfo::exists(written));
        const bool iim = !source.endsWith(".HEIC");
        const QJsonObject after = tagsOf(written);
        const auto exiv2 = exiv2Values(written);
        for (const Field& f : fields()) {
            SCOPED_TRACE(f.set.toStdString());
            // A list in IIM is one text in XMP where the XMP property is a single text.
            EXPECT_EQ(texts(after.value(f.exiftoolXmp)).join(", "), f.values.join(", "));
            const QStringList xmp = exiv2.values(f.exiv2Xmp);
            EXPECT_EQ(xmp, QStringList{f.values.join(", ")});
            if (!iim || f.exiftoolIim.isEmpty()) continue;
            EXPECT_EQ(texts(after.value(f.exiftoolIim)), f.values);
            EXPECT_EQ(exiv2.values(f.exiv2Iim), f.values);
        }
        if (iim) {
            // UTF-8, and the envelope says so; without the mark readers take the bytes for Latin-1.
            EXPECT_EQ(after.value("IPTC:CodedCharacterSet").toString(), "\x1b%G");
            EXPECT_EQ(after.value("IFD0:Artist").toString(), "Zoë Ångström");
            EXPECT_EQ(after.value("IFD0:Copyright").toString(), "© 2026 Zoë");
            EXPECT_EQ(after.value("IFD0:ImageDescription").toString(), "Crowd in 東京 at night 🎉");
        } else {
            for (auto it = after.begin(); it != after.end(); ++it) EXPECT_FALSE(it.key().startsWith("IPTC:")) << it.key().toStdString();
        }

        const QJsonObject before = tagsOf(source);
        expectOtherTagsKept(before, after, [](const QString& tag, auto&&...) { return mayChange(tag); });
        // XMP and IIM the source had beyond our fields stay too, but for the dates every save
        // drops and the XMP writer's names.
        expectOtherTagsKept(before, after, [](const QString& tag, auto&&...) {
            if (!(tag.startsWith("XMP-") || tag.startsWith("IPTC:")) || tag.contains("Date") || tag.contains("Time") ||
                tag == "XMP-x:XMPToolkit" || tag == "XMP-xmp:CreatorTool")
                return true;
            bool ours = tag == "IPTC:CodedCharacterSet";
            for (const Field& f : fields()) ours |= tag == f.exiftoolIim || tag == f.exiftoolXmp;
            return ours;
        });
    }
}

TEST_F(IptcRoundTrip, TemplateFileThenSetAndRemove) {
    const QString source = corpusDir() + "/jpeg/Canon_40D.jpg";
    ASSERT_TRUE(QFileInfo::exists(source));
    QTemporaryDir dir;
    const QString templ = dir.filePath("t.json");
    QFile f(templ);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(R"(["Headline","From the template","City","Łódź","Email(s):","a@example.org"])");
    f.close();
    const QString out = dir.filePath("out");
    ASSERT_TRUE(QDir().mkpath(out));
    // --set wins over the template for the same field.
    ProcessResult r = cli({"edit", "--template", templ, "--set", "City=Poznań", source, "-o", out});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QString written = QDir(out).filePath("Canon_40D.jpg");
    QJsonObject a = tagsOf(written);
    EXPECT_EQ(a.value("IPTC:Headline").toString(), "From the template");
    EXPECT_EQ(a.value("XMP-photoshop:Headline").toString(), "From the template");
    EXPECT_EQ(a.value("IPTC:City").toString(), "Poznań");
    EXPECT_EQ(a.value("XMP-iptcCore:CreatorWorkEmail").toString(), "a@example.org");

    // Removing a field and a contact field takes them out of both homes.
    r = cli({"edit", "--remove", "IPTC_HEADLINE", "--remove", "CiEmailWork", written, "--in-place"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    a = tagsOf(written);
    EXPECT_FALSE(a.contains("IPTC:Headline"));
    EXPECT_FALSE(a.contains("XMP-photoshop:Headline"));
    EXPECT_FALSE(a.contains("XMP-iptcCore:CreatorWorkEmail"));
    EXPECT_EQ(a.value("IPTC:City").toString(), "Poznań");

    // A template with an unknown key is refused as a whole, before any file is touched.
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(R"(["Headline","x","Nonsense","y"])");
    f.close();
    r = cli({"edit", "--template", templ, written, "--in-place"});
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(r.err.contains("no template file")) << r.err.toStdString();
    EXPECT_EQ(tagsOf(written).value("IPTC:City").toString(), "Poznań");
}

TEST_F(IptcRoundTrip, OlderLatin1TextsReadTheSameOnceTheEnvelopeSaysUtf8) {
    const QString source = corpusDir() + "/jpeg/Canon_40D.jpg";
    ASSERT_TRUE(QFileInfo::exists(source));
    QTemporaryDir dir;
    const QString file = dir.filePath("latin1.jpg");
    ASSERT_TRUE(QFile::copy(source, file));
    // A file from an older tool: IIM in Latin-1, with no character set named.
    ProcessResult r = run("exiftool", {"-q", "-overwrite_original", "-charset", "iptc=Latin1", QString::fromUtf8("-IPTC:City=Zürich"), file});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    QJsonObject a = tagsOf(file);
    ASSERT_FALSE(a.contains("IPTC:CodedCharacterSet"));
    ASSERT_EQ(a.value("IPTC:City").toString(), QString::fromUtf8("Zürich"));

    r = cli({"edit", "--set", QString::fromUtf8("IPTC_HEADLINE=東京"), file, "--in-place"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    a = tagsOf(file);
    EXPECT_EQ(a.value("IPTC:CodedCharacterSet").toString(), "\x1b%G");
    EXPECT_EQ(a.value("IPTC:Headline").toString(), QString::fromUtf8("東京"));
    EXPECT_EQ(a.value("IPTC:City").toString(), QString::fromUtf8("Zürich"));
    EXPECT_EQ(exiv2Values(file).value("Iptc.Application2.City"), QString::fromUtf8("Zürich"));
}

}  // namespace
