// SPDX-License-Identifier: GPL-3.0-or-later
#include "DurableFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace fileio {

bool syncFile(int fd) {
    if (fd < 0) return false;
    int r;
    do r = ::fsync(fd);
    while (r != 0 && errno == EINTR);
    return r == 0;
}

bool syncFolderOf(const QString& path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return false;
    const bool ok = syncFile(fd);
    ::close(fd);
    return ok;
}

bool commitDurably(QSaveFile& file, QString* error) {
    // QSaveFile flushes the data to the disk itself before it renames.
    if (!file.commit()) {
        if (error) *error = QStringLiteral("%1 can't be written: %2").arg(file.fileName(), file.errorString());
        return false;
    }
    if (!syncFolderOf(file.fileName())) {
        if (error) *error = QStringLiteral("%1 can't be flushed to the disk: %2").arg(file.fileName(), QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    return true;
}

bool writeDurably(const QString& path, const QByteArray& data, QString* error) {
    QSaveFile file(path);
    // No direct write where the folder can't take a temporary file: the old file must stay whole.
    file.setDirectWriteFallback(false);
    // Unbuffered, so that a short write (a full disk, a size limit) fails here: a buffered one
    // fails only in the flush that commit does, and commit goes on to rename all the same.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(data) != data.size()) {
        if (error) *error = QStringLiteral("%1 can't be written: %2").arg(path, file.errorString());
        file.cancelWriting();
        return false;
    }
    return commitDurably(file, error);
}

bool renameDurably(const QString& from, const QString& to, QString* error) {
    if (::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0) {
        if (error) *error = QStringLiteral("%1 can't be renamed to %2: %3").arg(from, to, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    const QString fromFolder = QFileInfo(from).absolutePath();
    bool ok = syncFolderOf(to);
    if (fromFolder != QFileInfo(to).absolutePath()) ok = syncFolderOf(from) && ok;
    if (!ok && error) *error = QStringLiteral("%1 can't be flushed to the disk: %2").arg(to, QString::fromLocal8Bit(std::strerror(errno)));
    return ok;
}

}  // namespace fileio
