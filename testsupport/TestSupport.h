#pragma once
// Helpers shared by the test executables: where the sample media are, and running the
// independent command-line readers that check our output.
#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

namespace testsupport {

// The folder of sample media. A test that needs it fails (never skips) when it is missing.
QString corpusDir();
// Every file of the corpus outside malformed/, sorted, as absolute paths.
QStringList corpusFiles();
// Files in malformed/.
QStringList malformedFiles();
// A sample movie by name, and every sample movie.
QString video(const QString& name);
QStringList movies();
// The folder of our built executables (build/bin).
QString binDir();

QByteArray readFile(const QString& path);

struct ProcessResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};
// Runs a program to its end (or a 120 s limit) and collects its output.
ProcessResult run(const QString& program, const QStringList& args);

// exiftool's reading of one file as JSON (-j -n -G1 style flags chosen by the caller).
QJsonValue exiftoolJson(const QString& path, const QStringList& extraArgs = {"-n"});

// ffprobe's reading of a file's format and streams.
QJsonObject ffprobe(const QString& path);

}  // namespace testsupport
