// SPDX-License-Identifier: GPL-3.0-or-later
// Help, version, the manual page and the shell completions, as a user and the shells meet them.
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

const QStringList commands{"props", "info", "summary", "tags", "location", "place", "edit", "resources"};

QString pkgVersion(const QString& module) {
    return QString::fromUtf8(run("pkg-config", {"--modversion", module}).out).trimmed();
}

}  // namespace

TEST(Help, ToolAndEveryCommandHelpOnStandardOutput) {
    for (const QString& flag : QStringList{"-h", "--help"}) {
        const ProcessResult r = cli({flag});
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.err, "");
        EXPECT_TRUE(r.out.startsWith("usage: tessorin-cli"));
        for (const QString& command : commands) EXPECT_TRUE(r.out.contains("  " + command.toUtf8() + " ")) << command.toStdString();
    }
    for (const QString& command : commands) {
        SCOPED_TRACE(command.toStdString());
        // Help wins over everything else given, even arguments that would be bad usage.
        for (const QStringList& args : {QStringList{command, "--help"}, QStringList{command, "--bogus", "-h"}}) {
            const ProcessResult r = cli(args);
            EXPECT_EQ(r.exitCode, 0);
            EXPECT_EQ(r.err, "");
            EXPECT_TRUE(r.out.startsWith("usage: tessorin-cli " + command.toUtf8() + " ")) << r.out.toStdString();
        }
    }
}

TEST(Help, VersionNamesTheLibrariesInUse) {
    const ProcessResult r = cli({"--version"});
    EXPECT_EQ(r.exitCode, 0);
    const QStringList lines = QString::fromUtf8(r.out).split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << r.out.toStdString();
    EXPECT_TRUE(lines[0].startsWith("tessorin-cli "));
    // The libraries the build was linked against, as their packages name them.
    EXPECT_EQ(lines[1], "exiv2 " + pkgVersion("exiv2"));
    EXPECT_EQ(lines[2], "libheif " + pkgVersion("libheif"));
    EXPECT_TRUE(lines[3].startsWith("FFmpeg ")) << lines[3].toStdString();
    EXPECT_TRUE(lines[3].contains("libavformat " + pkgVersion("libavformat"))) << lines[3].toStdString();
}

TEST(Help, CreditsNameTheLicenceTheLibrariesAndTheData) {
    const ProcessResult r = cli({"--credits"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.err, "");
    const QString text = QString::fromUtf8(r.out);
    EXPECT_TRUE(text.startsWith("tessorin-cli " TESSORIN_VERSION ", GPL-3.0-or-later\n")) << text.toStdString();
    // The package's version up to its Debian revision: 2.0.9+ds-2 is mimalloc 2.0.9. The
    // sanitizer builds keep the C library's allocator and must not credit it.
    const QString mimalloc = "\n  mimalloc " + QString::fromUtf8(run("dpkg-query", {"-W", "-f=${Version}", "libmimalloc2.0"}).out).section('+', 0, 0) + ", MIT";
#ifdef TESSORIN_MIMALLOC
    EXPECT_TRUE(text.contains(mimalloc)) << text.toStdString();
#else
    EXPECT_FALSE(text.contains("mimalloc")) << text.toStdString();
#endif
    // Fresh settings: the standard map's tiles come from OpenStreetMap.
    for (const QString& line : {"  exiv2 " + pkgVersion("exiv2") + ", GPL-2.0-or-later",
                                "  libheif " + pkgVersion("libheif") + ", LGPL-3.0-or-later",
                                QString("  Place names: GeoNames (geonames.org), CC BY 4.0"),
                                QString("  World map: Natural Earth (naturalearthdata.com), public domain"),
                                QString("  Digital source types: IPTC NewsCodes (iptc.org), IPTC, CC BY 4.0"),
                                QString("  Map tiles: © OpenStreetMap contributors")})
        EXPECT_TRUE(text.contains("\n" + line)) << line.toStdString() << "\n" << text.toStdString();
}

TEST(Manual, RendersWithoutWarningsAndCoversEveryCommand) {
    const QString page = QStringLiteral(MANUAL_PAGE);
    ASSERT_TRUE(QFile::exists(page));
    Isolation::current()->setEnv("MANWIDTH", "80");
    const ProcessResult man = run("man", {"-l", page});
    EXPECT_EQ(man.exitCode, 0) << man.err.toStdString();
    EXPECT_EQ(man.err, "");
    const QString text = QString::fromUtf8(man.out);
    for (const QString& section : QStringList{"NAME", "SYNOPSIS", "COMMANDS", "OPTIONS", "EXIT STATUS", "EXAMPLES"})
        EXPECT_TRUE(text.contains("\n" + section + "\n")) << section.toStdString();
    for (const QString& command : commands) EXPECT_TRUE(text.contains("       " + command + " ")) << command.toStdString();
    // groff's own warnings: every macro known, no bad escapes.
    const ProcessResult groff = run("groff", {"-man", "-Tutf8", "-ww", "-z", page});
    EXPECT_EQ(groff.exitCode, 0);
    EXPECT_EQ(groff.err, "");
}

TEST(Completion, BashCompletesCommandsOptionsAndMediaFiles) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QDir(dir.path()).mkdir("album");
    for (const QString& name : QStringList{"photo.jpg", "PHOTO2.HEIC", "clip.mov", "notes.txt", "noext"}) {
        QFile f(dir.filePath(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
    // Each case: the words typed, then what the completion offers, one per line.
    const QString script = QStringLiteral(
        "set -u\n"
        "export LC_ALL=C\n"
        "source '%1/completion/tessorin-cli.bash' || exit 3\n"
        "[ \"$(complete -p tessorin-cli)\" = 'complete -F _tessorin_cli tessorin-cli' ] || exit 4\n"
        "cd '%2'\n"
        "offer() { COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); _tessorin_cli;\n"
        "  printf '%s\\n' \"${COMPREPLY[@]}\" | sort | paste -sd' '; }\n"
        "offer tessorin-cli s\n"
        "offer tessorin-cli --v\n"
        "offer tessorin-cli tags --r\n"
        "offer tessorin-cli --no-human info ''\n"
        "offer tessorin-cli edit --orientation ''\n"
        "offer tessorin-cli place --s\n").arg(QStringLiteral(CLI_SOURCE_DIR), dir.path());
    const ProcessResult r = run("bash", {"--norc", "--noprofile", "-c", script});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(QString::fromUtf8(r.out).split(u'\n'),
              (QStringList{"summary", "--version", "--raw --recursive", "PHOTO2.HEIC album/ clip.mov photo.jpg",
                           "1 2 3 4 5 6 7 8", "--search", ""}));
}

TEST(Completion, ZshLoadsTheCompletionAndBindsItToTheTool) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(QFile::copy(QStringLiteral(CLI_SOURCE_DIR "/completion/_tessorin-cli"), dir.filePath("_tessorin-cli")));
    // compinit finds the function on the path by its #compdef line; autoload +X then reads it,
    // which fails on any syntax error.
    const QString script = QStringLiteral(
        "fpath=('%1' $fpath)\n"
        "autoload -Uz compinit && compinit -u -d '%1/zcompdump' || exit 3\n"
        "print -r -- ${_comps[tessorin-cli]}\n"
        "autoload +X _tessorin-cli || exit 4\n"
        "(( ${+functions[_tessorin-cli]} )) && print loaded\n").arg(dir.path());
    const ProcessResult r = run("zsh", {"-f", "-c", script});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.out, "_tessorin-cli\nloaded\n");
}

// FFmpeg loads with the first movie, from lib/tessorin/modules beside the tool's folder: photos never
// load it, and a tool whose module is missing still reads photos and says why movies fail.
TEST(MovieModule, LoadsWithTheFirstMovieOnly) {
    const ProcessResult needed = run("ldd", {QStringLiteral(TESSORIN_CLI)});
    ASSERT_EQ(needed.exitCode, 0);
    EXPECT_FALSE(needed.out.contains("libavformat")) << needed.out.toStdString();

    const QString photo = corpusDir() + "/jpeg/Canon_40D.jpg", movie = corpusDir() + "/video/small_video.mp4";
    EXPECT_EQ(cli({"props", movie}).exitCode, 0);

    QTemporaryDir alone;
    QDir(alone.path()).mkpath("bin");
    const QString copy = alone.filePath("bin/tessorin-cli");
    ASSERT_TRUE(QFile::copy(QStringLiteral(TESSORIN_CLI), copy));
    EXPECT_EQ(run(copy, {"props", photo}).exitCode, 0);
    const ProcessResult r = run(copy, {"props", movie});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.contains("movie support can't be loaded")) << r.err.toStdString();
    EXPECT_TRUE(run(copy, {"--version"}).out.contains("movie support can't be loaded"));
}
