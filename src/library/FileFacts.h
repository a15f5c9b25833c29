// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the library keeps of one file: read once by our own image and movie readers.
#include <QDateTime>
#include <QString>
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

// The kind by the file's extension; nothing for a file the library doesn't hold.
std::optional<FileKind> kindForPath(const QString& path);
// Reads the file; an unreadable one gives `readable` false with its kind.
FileFacts readFileFacts(const QString& path, FileKind kind);
// A hash of the file's first bytes, to know a moved file again.
QString headHash(const QString& path);

}  // namespace library
