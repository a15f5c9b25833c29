// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A file's content for the readers: whole and mapped (FileBytes), or piece by piece at chosen
// offsets (FilePieces), for a reader that needs only the parts holding metadata.
#include <QByteArray>
#include <QFile>
#include <QString>

namespace imageio {

class FileBytes {
public:
    // False with a reason naming the cause when the file is missing or unreadable.
    bool open(const QString& path, QString* error = nullptr);
    // Valid while this object lives.
    const QByteArray& bytes() const { return bytes_; }
    // The open file, -1 when there is none.
    int handle() const { return file_.handle(); }

private:
    QFile file_;
    QByteArray bytes_;
};

// Positioned reads that count the bytes they bring in.
class FilePieces {
public:
    // False with the same reasons as FileBytes::open.
    bool open(const QString& path, QString* error = nullptr);
    qint64 size() const { return size_; }
    // Up to `n` bytes from `at` into `into`; fewer at the end of the file, -1 on a read error.
    qint64 read(qint64 at, char* into, qint64 n);
    // The first `n` bytes of the file (fewer when it is shorter), read once and kept: each call
    // for more reads only what the last one lacked.
    const QByteArray& head(qint64 n);
    qint64 bytesRead() const { return bytesRead_; }
    const QString& path() const { return path_; }

private:
    QFile file_;
    QString path_;
    QByteArray head_;
    qint64 size_ = 0;
    qint64 bytesRead_ = 0;
};

}  // namespace imageio
