// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Where the file dialogs start: the first of the user's usual folders that exists, else home.
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <initializer_list>

inline QUrl firstExistingFolder(std::initializer_list<QStandardPaths::StandardLocation> locations) {
    for (auto location : locations) {
        const QString folder = QStandardPaths::writableLocation(location);
        if (!folder.isEmpty() && QFileInfo(folder).isDir()) return QUrl::fromLocalFile(folder);
    }
    return QUrl::fromLocalFile(QDir::homePath());
}
