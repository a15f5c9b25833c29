// SPDX-License-Identifier: GPL-3.0-or-later
// How every command takes its files and reports back, run against the built tool: folders with
// and without -r, lists from -@, --ext, `--`, exit codes, error lines and the JSON array.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

// As `cli`, with `input` on standard input.
ProcessResult cliWithInput(const QStringList& args, const QByteArray& input) {
    QProcess p;
    p.start(QStringLiteral(TESSORIN_CLI), args);
    ProcessResult r;
    if (!p.waitForStarted(10000)) return r;
    p.write(input);
    p.closeWriteChannel();
    if (!p.waitForFinished(120000)) p.kill();
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

QJsonArray jsonArray(const ProcessResult& r) {
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(r.out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << r.out.left(300).toStdString();
    EXPECT_TRUE(doc.isArray());
    return doc.array();
}

QStringList filesOf(const QJsonArray& entries) {
    QStringList out;
    for (const QJsonValue& e : entries) out << e["file"].toString();
    return out;
}

QStringList errorLines(const ProcessResult& r) { return QString::fromUtf8(r.err).split(u'\n', Qt::SkipEmptyParts); }

// Each test (isolated like every test) makes its files in a tree of its own.
class CommandLine : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(tree_.isValid()); }

    // A copy of a sample file at `relative` under the tree.
    QString copy(const QString& sample, const QString& relative) {
        const QString source = corpusDir() + "/" + sample;
        const QString target = tree_.filePath(relative);
        QDir().mkpath(QFileInfo(target).absolutePath());
        EXPECT_TRUE(QFile::copy(source, target)) << source.toStdString();
        return target;
    }
    QString write(const QString& relative, const QByteArray& bytes) {
        const QString target = tree_.filePath(relative);
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile f(target);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return target;
    }
    QString photo() { return corpusDir() + "/jpeg/gps/DSCN0010.jpg"; }
    QString missing() { return tree_.filePath("no such photo.jpg"); }

    QTemporaryDir tree_;
};

}  // namespace

TEST_F(CommandLine, FoldersGiveTheirPhotosAndMoviesByTheirBytesSortedAndWithRTheirSubfolders) {
    const QString root = tree_.filePath("pictures");
    const QString a = copy("heif/Stonehenge.heic", "pictures/a.heic");
    const QString b = copy("jpeg/gps/DSCN0010.jpg", "pictures/b.jpg");
    const QString noSuffix = copy("png/1343_exif.png", "pictures/c");  // known by its bytes alone
    write("pictures/fake.jpg", "no picture at all\n");
    write("pictures/notes.txt", "a shopping list\n");
    copy("jpeg/Canon_40D.jpg", "pictures/.hidden.jpg");
    const QString movie = copy("video/small_video.mp4", "pictures/sub/movie.mp4");
    const QString deep = copy("webp/exif.webp", "pictures/sub/deeper/d.webp");
    const QString other = copy("tiff/Arbitro.tiff", "pictures/z-sub/e.tiff");

    ProcessResult r = cli({"props", root});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(filesOf(jsonArray(r)), (QStringList{a, b, noSuffix}));

    // A folder's own files first, then each subfolder's, in name order.
    r = cli({"props", "-r", root});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(filesOf(jsonArray(r)), (QStringList{a, b, noSuffix, movie, deep, other}));

    // --ext ignores case and a leading dot, and may be repeated.
    r = cli({"props", "--recursive", "--ext", "JPG", "--ext", ".webp", root});
    EXPECT_EQ(filesOf(jsonArray(r)), (QStringList{b, deep}));

    // The text of each command follows the same order, files named outright first as given.
    r = cli({"summary", b, "-r", tree_.filePath("pictures/sub")});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    const QString out = QString::fromUtf8(r.out);
    const qsizetype first = out.indexOf("==> " + b + " <=="), second = out.indexOf("==> " + movie + " <=="),
                    third = out.indexOf("==> " + deep + " <==");
    EXPECT_TRUE(first >= 0 && first < second && second < third) << out.toStdString();

    // A file named outright is taken whatever it is, and its failure reported.
    r = cli({"props", tree_.filePath("pictures/notes.txt")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(errorLines(r).size(), 1);

    // An empty folder is no failure: nothing to do.
    QDir().mkpath(tree_.filePath("empty"));
    r = cli({"info", "--json", tree_.filePath("empty")});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(jsonArray(r).isEmpty());
}

TEST_F(CommandLine, ListsFromAFileOrStandardInputAddToTheOperands) {
    const QString b = copy("jpeg/gps/DSCN0010.jpg", "b.jpg");
    const QString c = copy("jpeg/Canon_40D.jpg", "folder/c.jpg");
    const QString d = copy("png/1343_exif.png", "d.png");
    write("folder/skip.txt", "text");

    // Blank lines and Windows line ends are forgiven; a folder in a list is walked as well.
    ProcessResult r = cliWithInput({"props", d, "-@", "-"}, (b + "\r\n\n" + tree_.filePath("folder") + "\n").toUtf8());
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(filesOf(jsonArray(r)), (QStringList{d, b, c}));

    const QString list = write("list.txt", (c + "\n" + missing() + "\n").toUtf8());
    r = cli({"tags", "--json", "-@", list});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(filesOf(jsonArray(r)), (QStringList{c, missing()}));

    // A list that can't be read stops the run before any file.
    r = cli({"info", b, "-@", tree_.filePath("no list.txt")});
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_EQ(r.out, "");
    EXPECT_TRUE(r.err.contains("no list.txt"));
}

TEST_F(CommandLine, ExitCodesAndErrorLinesAreTheSameForEveryCommand) {
    const QString good = photo();
    const QString bad = write("broken.jpg", "no picture, whatever its name says");
    QDir().mkpath(tree_.filePath("out"));
    const QStringList editTail{"--orientation", "6", "-o", tree_.filePath("out")};

    for (const QString& command : QStringList{"props", "info", "summary", "tags", "resources", "edit"}) {
        SCOPED_TRACE(command.toStdString());
        const QStringList tail = command == "edit" ? editTail : QStringList();
        auto runWith = [&](const QStringList& files) { return cli(QStringList{command} + files + tail); };

        ProcessResult r = runWith({good});
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(r.err, "");

        // The failed files each get one line naming them and the cause; the good one is still done.
        r = runWith({missing(), good, bad});
        EXPECT_EQ(r.exitCode, 1);
        const QStringList errors = errorLines(r);
        ASSERT_EQ(errors.size(), 2) << r.err.toStdString();
        EXPECT_TRUE(errors[0].startsWith(missing() + ": ") && errors[0].size() > missing().size() + 2);
        EXPECT_TRUE(errors[1].startsWith(bad + ": ") && errors[1].size() > bad.size() + 2);
        EXPECT_TRUE(r.out.contains(command == "props" || command == "edit" ? good.toUtf8() : QByteArray("==> " + good.toUtf8())))
            << r.out.left(300).toStdString();

        r = runWith({missing(), bad});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(errorLines(r).size(), 2);

        // Bad usage: nothing done, the problem and the usage on standard error.
        QDir(tree_.filePath("out")).removeRecursively();
        QDir().mkpath(tree_.filePath("out"));
        for (const QStringList& usage : {QStringList{good, "--no-such-option"}, QStringList{}}) {
            r = runWith(usage);
            EXPECT_EQ(r.exitCode, 2) << usage.join(' ').toStdString();
            EXPECT_EQ(r.out, "");
            EXPECT_TRUE(r.err.contains("usage: tessorin-cli " + command.toUtf8())) << r.err.toStdString();
        }
        EXPECT_TRUE(QDir(tree_.filePath("out")).isEmpty());
    }

    EXPECT_EQ(cli({"location", "48.8584, 2.2945"}).exitCode, 0);
    EXPECT_EQ(cli({"location", "the Eiffel tower"}).exitCode, 1);
    EXPECT_EQ(cli({"location"}).exitCode, 2);
    EXPECT_EQ(cli({"place", "not a place"}).exitCode, 2);
    EXPECT_EQ(cli({"place", "--search"}).exitCode, 2);
    EXPECT_EQ(cli({"place", "--no-such-option", "1", "2"}).exitCode, 2);
    const ProcessResult unknown = cli({"frobnicate", good});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_TRUE(unknown.err.contains("frobnicate"));
    EXPECT_EQ(cli({}).exitCode, 2);
}

TEST_F(CommandLine, DoubleDashEndsTheOptions) {
    // A negative latitude after `--`, and without it: a number is never taken for an option.
    for (const QStringList& args : {QStringList{"place", "--", "-33.8688", "151.2093"},
                                    QStringList{"place", "-33.8688", "151.2093"}}) {
        const ProcessResult r = cli(args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_TRUE(r.out.startsWith("Sydney")) << r.out.toStdString();
    }
    ProcessResult r = cli({"location", "--json", "--", "-33.8688", "-151.2093"});
    EXPECT_EQ(r.exitCode, 0);
    const QJsonObject loc = jsonArray(r).at(0).toObject();
    EXPECT_DOUBLE_EQ(loc["latitude"].toDouble(), -33.8688);
    EXPECT_DOUBLE_EQ(loc["longitude"].toDouble(), -151.2093);

    // A file whose name starts with a dash.
    const QString dashed = copy("jpeg/gps/DSCN0010.jpg", "-photo.jpg");
    const QString before = QDir::currentPath();
    QDir::setCurrent(tree_.path());
    r = cli({"summary", "--", "-photo.jpg", "--help"});
    EXPECT_EQ(r.exitCode, 1);  // `--help` is a file here, and there is none
    EXPECT_TRUE(r.out.contains("==> -photo.jpg <=="));
    EXPECT_TRUE(r.err.startsWith("--help: "));
    EXPECT_EQ(cli({"summary", "-photo.jpg"}).exitCode, 2);
    QDir::setCurrent(before);
}

TEST_F(CommandLine, JsonIsOneArrayForAllFilesWithTheFailedOnesInside) {
    const QString good = photo();
    for (const QString& command : QStringList{"props", "info", "summary", "tags", "resources"}) {
        SCOPED_TRACE(command.toStdString());
        const ProcessResult r = cli({command, "-j", good, missing()});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(r.out.count('\n'), 1);  // compact: one line
        const QJsonArray entries = jsonArray(r);
        ASSERT_EQ(entries.size(), 2);
        EXPECT_EQ(entries.at(0)["file"].toString(), good);
        EXPECT_FALSE(entries[0].toObject().contains("error"));
        EXPECT_EQ(entries.at(1)["file"].toString(), missing());
        EXPECT_FALSE(entries.at(1)["error"].toString().isEmpty());
        EXPECT_EQ(errorLines(r).size(), 1);
        EXPECT_GT(cli({command, "--json", "--pretty", good}).out.count('\n'), 3);
    }
    // What each command puts in, as exiftool reads the photo: taken 2008:10:22 16:28:39 by a
    // NIKON COOLPIX P6000, near Arezzo.
    const QJsonValue exif = exiftoolJson(good);
    ASSERT_EQ(exif["Model"].toString(), "COOLPIX P6000");
    EXPECT_EQ(jsonArray(cli({"info", "--json", good})).at(0)["details"]["Camera"].toString(), exif["Model"].toString());
    EXPECT_TRUE(jsonArray(cli({"summary", "--json", good})).at(0)["summary"].toString().contains("Arezzo"));
    EXPECT_EQ(jsonArray(cli({"tags", "--json", good})).at(0)["tags"]["{TIFF}"]["Model"].toString(), exif["Model"].toString());
    EXPECT_EQ(jsonArray(cli({"props", good})).at(0)["properties"]["{Exif}"]["DateTimeOriginal"].toString(),
              exif["DateTimeOriginal"].toString());

    QJsonArray entries = jsonArray(cli({"location", "-j", "nowhere"}));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_FALSE(entries.at(0)["error"].toString().isEmpty());

    entries = jsonArray(cli({"place", "--json", "41.8897", "12.4694"}));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries.at(0)["locality"].toString(), "Rome");
    EXPECT_EQ(entries.at(0)["ISOcountryCode"].toString(), "IT");
    EXPECT_TRUE(jsonArray(cli({"place", "--json", "0", "-30"})).isEmpty());  // the open Atlantic

    entries = jsonArray(cli({"place", "-j", "--search", "Arezzo"}));
    ASSERT_FALSE(entries.isEmpty());
    EXPECT_EQ(entries.at(0)["locality"].toString(), "Arezzo");
    EXPECT_NEAR(entries.at(0)["latitude"].toDouble(), 43.46, 0.05);
}
