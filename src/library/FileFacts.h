// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the library keeps of one file: read once by our own image and movie readers.
#include <QDateTime>
#include <QString>
#include <QtGlobal>
#include <optional>

namespace library {

enum class FileKind { image = 1, video = 2, raw = 3 };

struct FileFacts {
    FileKind kind = FileKind::image;
    bool readable = false;
    std::optional<qint64> date;    // ms since the epoch, UTC
    std::optional<int> offset;     // seconds east of UTC, when the file says
    std::optional<double> latitude, longitude, altitude;
    int width = 0, height = 0;
    double duration = 0;
    qint64 subtypes = 0;
    bool selfie = false;
    QString burst;
    QString contentIdentifier;  // ties a live photo's picture to its movie
};

// Whether the library holds a file of this name: one of the names cameras, phones and other
// programs give photos and movies, in any case (".HIF", ".cr3", ".3GP"). Only the name is looked
// at, so that a scan reads no file it won't keep; what the file is comes from its bytes.
bool hasMediaName(const QString& path);
// Reads the file; its first bytes say whether it is a picture, a raw file or a movie. One they
// don't tell (damaged, or a format the reader lacks) gives `readable` false and a kind by its name.
FileFacts readFileFacts(const QString& path);
// A hash of the file's first bytes, to know a moved file again.
QString headHash(const QString& path);
// How many times the two above opened a file in this process, so that what a scan reads can be
// told from what it only looked at.
qint64 filesReadSoFar();

}  // namespace library
