#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

namespace testsupport {

QString corpusDir() {
    QString dir = qEnvironmentVariable("TESSORIN_CORPUS");
    if (dir.isEmpty() || !QDir(dir).exists()) {
        ADD_FAILURE() << "sample media not found at '" << dir.toStdString()
                      << "': ../shared/corpus must sit beside the repository";
        return {};
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

QString video(const QString& name) { return corpusDir() + "/video/" + name; }

QStringList movies() {
    QStringList out;
    for (const QString& f : corpusFiles())
        if (f.contains("/video/")) out << f;
    return out;
}

QString binDir() { return qEnvironmentVariable("TESSORIN_BIN"); }

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

QJsonObject ffprobe(const QString& path) {
    const ProcessResult r = run("ffprobe", {"-v", "error", "-show_format", "-show_streams", "-of", "json", path});
    return QJsonDocument::fromJson(r.out).object();
}

}  // namespace testsupport
