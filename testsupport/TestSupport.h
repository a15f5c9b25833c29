// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Helpers shared by the test executables: where the sample media are, and running the
// independent command-line readers that check our output.
#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <functional>

namespace testsupport {

// The folder of sample media. A test that needs it fails (never skips) when it is missing or
// any of its folders holds fewer files than it should.
QString corpusDir();
// Every file of the corpus outside malformed/, sorted, as absolute paths.
QStringList corpusFiles();
// Files in malformed/.
QStringList malformedFiles();
// A sample movie by name (the test fails if it is missing), and every sample movie.
QString video(const QString& name);
QStringList movies();

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

// Every tag exiftool read in `before` (keys grouped as with -G1) reads the same in `after`, but
// for the file's own name, times and sizes on disk (SourceFile, System:, File:) and the tags
// `mayDiffer` accepts: each caller names those with its reasons. A failure names the tag and
// both readings.
using TagFilter = std::function<bool(const QString& tag, const QJsonValue& before, const QJsonValue& after)>;
void expectOtherTagsKept(const QJsonObject& before, const QJsonObject& after, const TagFilter& mayDiffer = {});

// A date written out in full as the details show it under the tests' C locale, typed here rather
// than taken from our formatter: "Friday, 30 May 2008 15:56:01".
QString fullDateText(const QDateTime& date);

// The image data of a file written from `source` are the same: a JPEG's coded image byte for
// byte, a HEIF's decoded pixels of every image it holds, other formats' decoded pixels.
void expectSameImage(const QString& source, const QString& written);

// ffprobe's reading of a file's format and streams.
QJsonObject ffprobe(const QString& path);
// FFmpeg's hash of each stream's packets, copied, not decoded: equal when the media are.
QByteArray streamHashes(const QString& path);

}  // namespace testsupport
