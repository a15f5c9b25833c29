// SPDX-License-Identifier: GPL-3.0-or-later
// `library` and `edit --library` run as a script would, in a library of the test's own, with
// exiftool, run live, reading back what the saves wrote.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>

using namespace testsupport;

namespace {

class LibraryCommand : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        // The tool's library, index, settings and trash are all inside the isolation's folder.
        QDir().mkpath(lib() + "/Trip");
        ASSERT_TRUE(QFile::copy(corpusDir() + "/jpeg/Canon_40D.jpg", photo()));
        QFile::setPermissions(photo(), QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    }
    QString lib() { return qEnvironmentVariable("TESSORIN_LIBRARY"); }
    QString photo() { return lib() + "/Trip/IMG_1.jpg"; }
    ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }
    QJsonArray list(const QString& album = {}) {
        QStringList args{"library", "list", "--json"};
        if (!album.isEmpty()) args << album;
        const ProcessResult r = cli(args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        return QJsonDocument::fromJson(r.out).array();
    }
    QJsonObject exif(const QString& file) { return exiftoolJson(file, {"-n", "-EXIF:all"}).toObject(); }
    // The one item of the library's journal as its last line says (a change appends the item's
    // line anew): its identifier, and whether it holds an edit.
    QJsonObject journalItem() {
        const QList<QByteArray> lines = readFile(lib() + "/.tessorin/journal.jsonl").trimmed().split('\n');
        EXPECT_GE(lines.size(), 2);  // the header and the item's lines
        for (qsizetype i = 2; i < lines.size(); ++i)
            EXPECT_EQ(QJsonDocument::fromJson(lines[i]).object()["id"], QJsonDocument::fromJson(lines[1]).object()["id"]);
        const QJsonObject item = QJsonDocument::fromJson(lines.last()).object();
        return {{"id", item["id"]}, {"edited", item.contains("editOriginal")}};
    }

};

}  // namespace

TEST_F(LibraryCommand, EditInPlaceThenRevertGivesTheOriginalBack) {
    const QByteArray original = readFile(photo());
    const QJsonObject before = exif(photo());
    ASSERT_EQ(cli({"library", "scan"}).exitCode, 0);
    const QString id = list().at(0)["localIdentifier"].toString();
    ASSERT_FALSE(id.isEmpty());

    ProcessResult edit = cli({"edit", "--date", "2001:02:03 04:05:06", "--library", "modify", id});
    ASSERT_EQ(edit.exitCode, 0) << edit.err.toStdString();
    QJsonObject after = exif(photo());
    EXPECT_EQ(after["DateTimeOriginal"].toString(), "2001:02:03 04:05:06");
    for (const char* kept : {"Make", "Model", "ExposureTime", "FNumber", "ISO", "FocalLength"})
        EXPECT_EQ(after[kept], before[kept]) << kept;

    const QJsonObject shown = QJsonDocument::fromJson(cli({"library", "show", id}).out).object();
    EXPECT_TRUE(shown["edited"].toBool());
    const QJsonArray resources = shown["resources"].toArray();
    ASSERT_EQ(resources.size(), 3);
    EXPECT_EQ(resources[0]["typeText"].toString(), "Original Photo");
    EXPECT_EQ(resources[1]["typeText"].toString(), "Actual Photo");
    EXPECT_EQ(resources[2]["typeText"].toString(), "Adjustment Data");
    EXPECT_EQ(readFile(resources[0]["path"].toString()), original);
    const QJsonObject adjustment = QJsonDocument::fromJson(readFile(resources[2]["path"].toString())).object();
    EXPECT_EQ(adjustment["formatIdentifier"].toString(), "edu.self.Tessorin");
    EXPECT_EQ(adjustment["formatVersion"].toString(), "1.0");
    const QJsonObject payload = QJsonDocument::fromJson(QByteArray::fromBase64(adjustment["data"].toString().toLatin1())).object();
    EXPECT_EQ(payload, (QJsonObject{{"key1", "Tessorin"}, {"key2", "value2"}}));

    ProcessResult revert = cli({"library", "revert", id});
    ASSERT_EQ(revert.exitCode, 0) << revert.err.toStdString();
    EXPECT_EQ(readFile(photo()), original);
    EXPECT_EQ(list().at(0)["localIdentifier"].toString(), id);
    EXPECT_EQ(cli({"library", "revert", id}).exitCode, 1);
}

TEST_F(LibraryCommand, SaveAsNewItemLandsInTessorinAndLeavesTheSourceAlone) {
    const QString source = corpusDir() + "/jpeg/Nikon_D70.jpg";
    const QByteArray sourceBytes = readFile(source);
    ProcessResult save = cli({"edit", "--location", "48.8584, 2.2945", source, "--library", "new"});
    ASSERT_EQ(save.exitCode, 0) << save.err.toStdString();
    EXPECT_EQ(readFile(source), sourceBytes);
    const QString saved = lib() + "/Tessorin/Nikon_D70.jpg";
    const QJsonObject gps = exiftoolJson(saved, {"-n", "-GPSLatitude", "-GPSLongitude", "-Model"}).toObject();
    EXPECT_NEAR(gps["GPSLatitude"].toDouble(), 48.8584, 1e-4);
    EXPECT_NEAR(gps["GPSLongitude"].toDouble(), 2.2945, 1e-4);
    EXPECT_EQ(gps["Model"].toString(), "NIKON D70");
    const QJsonArray inAlbum = list("Tessorin");
    ASSERT_EQ(inAlbum.size(), 1);
    EXPECT_NEAR(inAlbum[0]["location"]["latitude"].toDouble(), 48.8584, 1e-4);
}

TEST_F(LibraryCommand, MarksDeletionAndBadUsage) {
    cli({"library", "scan"});
    const QString id = list().at(0)["localIdentifier"].toString();
    EXPECT_EQ(cli({"library", "favorite", id}).exitCode, 0);
    EXPECT_EQ(list("Favorites").size(), 1);
    EXPECT_EQ(cli({"library", "favorite", id}).exitCode, 0);  // the second turns it off
    EXPECT_EQ(cli({"library", "list", "Favorites"}).exitCode, 1);  // no such album while empty
    EXPECT_EQ(cli({"library", "show", "NO-SUCH-ID"}).exitCode, 1);
    EXPECT_EQ(cli({"edit", "--date", "2001:02:03 04:05:06", "--library", "modify", "NO-SUCH-ID"}).exitCode, 2);
    EXPECT_EQ(cli({"library", "frobnicate", id}).exitCode, 2);

    ASSERT_EQ(cli({"library", "delete", id}).exitCode, 0);
    EXPECT_FALSE(QFile::exists(photo()));
    EXPECT_TRUE(QFile::exists(qEnvironmentVariable("XDG_DATA_HOME") + "/Trash/files/IMG_1.jpg"));
    EXPECT_EQ(list().size(), 0);
}

TEST_F(LibraryCommand, KilledAtAnyPointOfAnEditTheOriginalStaysWhole) {
    const QByteArray original = readFile(photo());
    ASSERT_EQ(cli({"library", "scan"}).exitCode, 0);
    const QString id = list().at(0)["localIdentifier"].toString();
    // Kills spread over the run of one edit: before it opens the index, while it copies the
    // original, while it writes the new file, and after.
    for (int delay = 0; delay <= 300; delay += 20) {
        SCOPED_TRACE(delay);
        QProcess edit;
        edit.start(QStringLiteral(TESSORIN_CLI), {"edit", "--date", "2001:02:03 04:05:06", "--library", "modify", id});
        ASSERT_TRUE(edit.waitForStarted());
        QThread::msleep(delay);
        edit.kill();
        edit.waitForFinished();

        const QByteArray now = readFile(photo());
        if (now != original) {
            // A whole new file, and the original kept beside it.
            const QJsonObject read = exiftoolJson(photo(), {"-DateTimeOriginal", "-Warning", "-Error"}).toObject();
            EXPECT_EQ(read["DateTimeOriginal"].toString(), "2001:02:03 04:05:06");
            EXPECT_FALSE(read.contains("Error"));
            const QJsonObject shown = QJsonDocument::fromJson(cli({"library", "show", id}).out).object();
            EXPECT_EQ(readFile(shown["resources"][0]["path"].toString()), original);
        }
        const QJsonArray items = list();
        ASSERT_EQ(items.size(), 1);
        EXPECT_EQ(items[0]["localIdentifier"].toString(), id);
        // The journal beside the photos says what the index says.
        EXPECT_EQ(journalItem(), QJsonObject({{"id", id}, {"edited", items[0]["edited"].toBool()}}));
        if (items[0]["edited"].toBool()) {
            EXPECT_EQ(cli({"library", "revert", id}).exitCode, 0);
        }
        EXPECT_EQ(readFile(photo()), original);
        EXPECT_EQ(journalItem(), QJsonObject({{"id", id}, {"edited", false}}));
    }
}

TEST_F(LibraryCommand, DiskFullDuringAScanFailsClearlyAndLosesNothing) {
    ASSERT_EQ(cli({"library", "scan"}).exitCode, 0);
    const QString id = list().at(0)["localIdentifier"].toString();
    ASSERT_EQ(cli({"library", "favorite", id}).exitCode, 0);
    // Enough new files that their rows outgrow the room the tool is given.
    const QStringList jpegs = QDir(corpusDir() + "/jpeg").entryList({"*.jpg"}, QDir::Files);
    ASSERT_GE(jpegs.size(), 10);
    for (int copy = 0; copy < 20; ++copy) {
        const QString dir = lib() + QStringLiteral("/Roll%1").arg(copy);
        QDir().mkpath(dir);
        for (const QString& j : jpegs) ASSERT_TRUE(QFile::copy(corpusDir() + "/jpeg/" + j, dir + '/' + j));
    }
    // No file of the tool may grow past 40 KiB: the index's shared memory (32 KiB) still fits,
    // its journal does not. The signal for it is ignored, so the write fails as on a full disk.
    const ProcessResult full = run("prlimit", {"--fsize=40960", "sh", "-c", "trap '' XFSZ; exec \"$0\" \"$@\"",
                                               QStringLiteral(TESSORIN_CLI), "library", "scan"});
    EXPECT_NE(full.exitCode, 0);
    EXPECT_TRUE(full.err.contains("index couldn't be updated")) << full.err.toStdString();

    // The index is as it was, nothing moved aside, and a scan with room reads everything.
    EXPECT_TRUE(QDir(qEnvironmentVariable("XDG_DATA_HOME") + "/Tessorin").entryList({"*corrupt*"}).isEmpty());
    const ProcessResult show = cli({"library", "show", id});
    EXPECT_TRUE(QJsonDocument::fromJson(show.out).object()["favorite"].toBool()) << show.err.toStdString();
    const ProcessResult again = cli({"library", "scan"});
    EXPECT_EQ(again.exitCode, 0) << again.err.toStdString();
    EXPECT_EQ(list().size(), 1 + 20 * jpegs.size());
}
