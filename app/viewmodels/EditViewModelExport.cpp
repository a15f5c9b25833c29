// SPDX-License-Identifier: GPL-3.0-or-later
// "Save to Files": where the save dialog starts, and the written files copied where it says.
#include "EditViewModel.h"

#include "Log.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

QUrl EditViewModel::exportFolder() const {
    // The pictures folder, or home where there is none: the file dialog lists the working
    // folder under a missing folder's name.
    const QDir pictures(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    return QUrl::fromLocalFile(pictures.exists() ? pictures.path() : QDir::homePath());
}

QUrl EditViewModel::exportSuggestion() const {
    if (exportingUrls_.size() != 1) return exportFolder();
    return QUrl::fromLocalFile(QDir(exportFolder().toLocalFile()).filePath(QUrl(exportingUrls_.first()).fileName()));
}

void EditViewModel::finishExport(const QUrl& target) {
    const QStringList urls = std::exchange(exportingUrls_, {});
    if (urls.isEmpty()) return;
    QString failed;
    if (target.isValid() && target.isLocalFile()) {
        const QString to = target.toLocalFile();
        const bool folder = QFileInfo(to).isDir();
        for (const QString& u : urls) {
            const QString from = QUrl(u).toLocalFile();
            const QString dest = folder ? QDir(to).filePath(QFileInfo(from).fileName()) : to;
            // Chosen in the save dialog, which asked before replacing.
            if (QFileInfo::exists(dest) && dest != from) QFile::remove(dest);
            if (!QFile::copy(from, dest)) failed = QFileInfo(dest).fileName();
        }
    }
    for (const QString& u : urls) {
        const QString path = QUrl(u).toLocalFile();
        if (!QFile::remove(path)) Log::error("Error deleting file " + path);
        // The folder made for this export goes with its last file.
        QDir().rmdir(QFileInfo(path).absolutePath());
    }
    if (!failed.isEmpty()) emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error writing data to file") + QStringLiteral(" (") + failed + ')');
}
