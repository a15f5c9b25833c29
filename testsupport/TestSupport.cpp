// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QMap>
#include <QProcess>

namespace testsupport {

// How many samples each folder of the corpus holds, counted from the corpus as it stands. A
// folder with fewer fails the test: a loop over a partial corpus would pass on what is left.
static const QMap<QString, int> kCorpusCounts{
    {"heif", 4}, {"jpeg", 12},    {"jpeg/edge", 12}, {"jpeg/gps", 3}, {"jpeg/orientation", 16}, {"malformed", 13},
    {"png", 4},  {"portrait", 1}, {"tiff", 3},       {"video", 4},    {"webp", 1}};

QString corpusDir() {
    QString dir = qEnvironmentVariable("TESSORIN_CORPUS");
    if (dir.isEmpty() || !QDir(dir).exists()) {
        ADD_FAILURE() << "sample media not found at '" << dir.toStdString()
                      << "': ../shared/corpus must sit beside the repository";
        return {};
    }
    for (auto it = kCorpusCounts.begin(); it != kCorpusCounts.end(); ++it) {
        const qsizetype found = QDir(dir + "/" + it.key()).entryList({"*"}, QDir::Files).size();
        if (found < it.value())
            ADD_FAILURE() << "the sample media are incomplete: " << dir.toStdString() << "/" << it.key().toStdString()
                          << " holds " << found << " files, " << it.value() << " expected";
    }
    return dir;
}

static QStringList filesUnder(const QString& dir, bool malformed) {
    QStringList out;
    if (dir.isEmpty()) return out;
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QString path = it.next();
        if (path.endsWith(".md")) continue;
        bool inMalformed = path.contains("/malformed/");
        if (inMalformed == malformed) out << path;
    }
    out.sort();
    return out;
}

QStringList corpusFiles() { return filesUnder(corpusDir(), false); }
QStringList malformedFiles() { return filesUnder(corpusDir(), true); }

QString video(const QString& name) {
    const QString path = corpusDir() + "/video/" + name;
    if (!QFileInfo(path).isFile()) ADD_FAILURE() << "sample movie missing: " << path.toStdString();
    return path;
}

QStringList movies() {
    QStringList out;
    for (const QString& f : corpusFiles())
        if (f.contains("/video/")) out << f;
    return out;
}

QString fullDateText(const QDateTime& date) {
    return QLocale::c().toString(date, QStringLiteral("dddd, d MMMM yyyy HH:mm:ss"));
}

QByteArray readFile(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return {};
    return f.readAll();
}

ProcessResult run(const QString& program, const QStringList& args) {
    QProcess p;
    p.start(program, args);
    ProcessResult r;
    if (!p.waitForStarted(10000)) {
        r.err = "could not start " + program.toUtf8();
        return r;
    }
    p.closeWriteChannel();
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        r.err = "timed out";
        return r;
    }
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

QJsonValue exiftoolJson(const QString& path, const QStringList& extraArgs) {
    QStringList args{"-j"};
    args << extraArgs << path;
    ProcessResult r = run("exiftool", args);
    QJsonDocument doc = QJsonDocument::fromJson(r.out);
    if (!doc.isArray() || doc.array().isEmpty()) {
        ADD_FAILURE() << "exiftool gave no JSON for " << path.toStdString() << ": " << r.err.toStdString();
        return {};
    }
    return doc.array().first();
}

void expectOtherTagsKept(const QJsonObject& before, const QJsonObject& after, const TagFilter& mayDiffer) {
    for (auto it = before.begin(); it != before.end(); ++it) {
        const QString& tag = it.key();
        if (tag == QLatin1String("SourceFile") || tag.startsWith(QLatin1String("System:")) || tag.startsWith(QLatin1String("File:")))
            continue;
        if (mayDiffer && mayDiffer(tag, it.value(), after.value(tag))) continue;
        EXPECT_TRUE(after.value(tag) == it.value())
            << tag.toStdString() << ": " << QJsonDocument(QJsonArray{it.value(), after.value(tag)}).toJson(QJsonDocument::Compact).toStdString();
    }
}

QJsonObject ffprobe(const QString& path) {
    const ProcessResult r = run("ffprobe", {"-v", "error", "-show_format", "-show_streams", "-of", "json", path});
    return QJsonDocument::fromJson(r.out).object();
}

QByteArray streamHashes(const QString& path) {
    const ProcessResult r = run("ffmpeg", {"-v", "error", "-i", path, "-map", "0", "-c", "copy", "-f", "streamhash", "-"});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_FALSE(r.out.isEmpty());
    return r.out;
}

}  // namespace testsupport
