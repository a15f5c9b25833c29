// SPDX-License-Identifier: GPL-3.0-or-later
// `info`, `tags` and `location` over the sample media, with exiftool, run live, as the oracle for
// what the details must show.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

bool isMovie(const QString& path) { return path.contains("/video/"); }

QStringList images() {
    QStringList out;
    for (const QString& f : corpusFiles())
        if (!isMovie(f)) out << f;
    return out;
}

// The groups our reader found in a file, as `props` reports them.
QStringList groupsOf(const QString& file) {
    const QJsonObject props = QJsonDocument::fromJson(cli({"props", file}).out).array().at(0)["properties"].toObject();
    QStringList groups;
    for (auto it = props.begin(); it != props.end(); ++it)
        if (it.value().isObject()) groups << it.key();
    return groups;
}

}  // namespace

TEST(TagsCommand, EveryFileExportsValidJsonAndEveryGroup) {
    const QStringList files = corpusFiles();
    ASSERT_EQ(files.size(), 60);
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const ProcessResult json = cli({"tags", "--json", file});
        EXPECT_EQ(json.exitCode, 0) << json.err.toStdString();
        QJsonParseError error{};
        const QJsonDocument doc = QJsonDocument::fromJson(json.out, &error);
        EXPECT_EQ(error.error, QJsonParseError::NoError) << json.out.left(200).toStdString();
        EXPECT_TRUE(doc.isArray() && doc.array().at(0)["tags"].isObject());
        if (isMovie(file)) continue;

        const QString human = QString::fromUtf8(cli({"tags", file}).out);
        const QString raw = QString::fromUtf8(cli({"tags", "--raw", file}).out);
        for (const QString& group : groupsOf(file)) {
            QString title = group == "{TIFF}" ? "Tiff" : group;
            title.remove('{').remove('}');
            EXPECT_TRUE(human.contains("**" + title + "**\n")) << group.toStdString();
            EXPECT_TRUE(raw.contains(group + ".")) << group.toStdString();
        }
    }
}

TEST(InfoCommand, ShowsTheCameraLensAndDateThatExiftoolReads) {
    const QStringList files = images();
    ASSERT_EQ(files.size(), 56);
    const ProcessResult et = run("exiftool", QStringList{"-j", "-G1", "-IFD0:Model", "-ExifIFD:LensModel",
                                                         "-ExifIFD:DateTimeOriginal", "-XMP-exif:DateTimeOriginal",
                                                         "-XMP-photoshop:DateCreated", "-IFD0:ModifyDate"} + files);
    QHash<QString, QJsonObject> oracle;
    for (const QJsonValue& v : QJsonDocument::fromJson(et.out).array()) oracle.insert(v["SourceFile"].toString(), v.toObject());
    ASSERT_EQ(oracle.size(), files.size());

    const ProcessResult info = cli(QStringList{"info"} + files);
    const QString out = QString::fromUtf8(info.out);
    int checkedDates = 0;
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const qsizetype start = out.indexOf("==> " + file + " <==\n");
        ASSERT_GE(start, 0);
        const qsizetype end = out.indexOf("\n==> ", start + 1);
        const QString details = out.mid(start, end < 0 ? -1 : end - start);
        auto line = [&](const QString& label) {
            const qsizetype at = details.indexOf("\n" + label + " ");
            return at < 0 ? QString() : details.mid(at + label.size() + 2).section('\n', 0, 0);
        };
        const QJsonObject o = oracle.value(file);
        const QString model = o["IFD0:Model"].toVariant().toString().trimmed();
        EXPECT_EQ(line("Camera:"), model.isEmpty() ? "--" : model);
        const QString lens = o["ExifIFD:LensModel"].toVariant().toString().trimmed();
        if (!lens.isEmpty()) {
            EXPECT_EQ(line("Lens:"), lens);
        }
        // The date row shows the original date (from XMP when the file has no EXIF one), else the
        // TIFF date, as the user's locale writes it.
        std::optional<QDateTime> d;
        for (const char* tag : {"ExifIFD:DateTimeOriginal", "XMP-exif:DateTimeOriginal", "XMP-photoshop:DateCreated",
                                "IFD0:ModifyDate"}) {
            QString text = o[tag].toString().left(19);  // XMP dates may carry a zone
            if (text.size() == 10) text += " 00:00:00";
            if (const QDateTime t = QDateTime::fromString(text, "yyyy:MM:dd HH:mm:ss"); t.isValid()) {
                d = t;
                break;
            }
        }
        if (d) {
            EXPECT_EQ(line("Original Date:"), fullDateText(*d));
            ++checkedDates;
        } else {
            EXPECT_EQ(line("Original Date:"), "--");
        }
    }
    EXPECT_GT(checkedDates, 20);
}

TEST(InfoCommand, ReportsUnreadableFilesAndGoesOn) {
    QTemporaryDir dir;
    const QString good = corpusDir() + "/jpeg/Canon_40D.jpg";
    const ProcessResult r = cli({"info", dir.filePath("missing.jpg"), good});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("missing.jpg: no such file"));
    EXPECT_TRUE(r.out.contains("Camera: Canon EOS 40D"));
}

TEST(HumanSwitch, NoHumanShowsRawValues) {
    const QString file = corpusDir() + "/jpeg/Canon_40D.jpg";
    EXPECT_TRUE(cli({"tags", file}).out.contains("Flash: Flash fired, Compulsory flash firing"));
    EXPECT_TRUE(cli({"--no-human", "tags", file}).out.contains("Flash: 9\n"));
    EXPECT_TRUE(cli({"--no-human", "tags", file}).out.contains("**{Exif}**"));
}

TEST(LocationCommand, ReadsDegreesThenDecimals) {
    const ProcessResult dms = cli({"location", "12°30'15\" N 9°10'5\" E"});
    EXPECT_EQ(dms.exitCode, 0);
    // Seconds are truncated, so a value a hair below 15" shows 14".
    EXPECT_EQ(dms.out, "12° 30' 14\" N 9° 10' 4\" E\n12.5042 N 9.1681 E\n");
    EXPECT_EQ(cli({"--no-human", "location", "45.5S", "9.2"}).out, "45° 30' 0\" S 9° 11' 59\" E\n-45.5 S 9.2 E\n");
    EXPECT_EQ(cli({"location", ",45.5 9.2,"}).exitCode, 0);
    const ProcessResult none = cli({"location", "Rome"});
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.out, "\"Rome\" is no coordinate\n");
}
