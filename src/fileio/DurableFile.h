// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Writes that outlive a power cut: the data is flushed before the rename that makes it the file,
// and the folder is flushed after it, so a crash leaves either the old file or the new one.
// Every replacement or creation of a user's file or of the library's journal goes through here.
#include <QByteArray>
#include <QString>

class QSaveFile;

namespace fileio {

// `data` as the file at `path`, through a temporary file beside it. A replaced file keeps its
// permissions; a new one gets what the umask allows. False with a reason on failure, and the
// file at `path` is then as it was.
bool writeDurably(const QString& path, const QByteArray& data, QString* error = nullptr);

// Commits a QSaveFile opened by the caller (which flushes the data and renames), then flushes
// the folder that holds it. False with the file's error text on failure.
bool commitDurably(QSaveFile& file, QString* error = nullptr);

// The open file's data on the disk.
bool syncFile(int fd);
// The folder that holds `path` on the disk, so that a rename or creation in it lasts.
bool syncFolderOf(const QString& path);

// Renames the finished file `from` over `to` and flushes the folder of `to` (and of `from`
// when it sits elsewhere). The data of `from` must have been flushed already.
bool renameDurably(const QString& from, const QString& to, QString* error = nullptr);

}  // namespace fileio
