// SPDX-License-Identifier: GPL-3.0-or-later
// Collections: the folders under each library folder are the user's albums.
#include "Library.h"

#include <QDir>
#include <QFileInfo>
#include <functional>

namespace library {

QList<Collection> Library::userCollections() const {
    std::function<Collection(const QFileInfo&)> make = [&](const QFileInfo& dir) {
        Collection c{QStringLiteral("folder:") + dir.absoluteFilePath(), dir.fileName(), CollectionType::album, 2, {}};
        for (const QFileInfo& sub : QDir(dir.absoluteFilePath()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
            c.children << make(sub);
        if (!c.children.isEmpty()) c.type = CollectionType::folder;
        return c;
    };
    QList<Collection> list;
    for (const QString& root : folders_)
        for (const QFileInfo& dir : QDir(root).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) list << make(dir);
    return list;
}

std::optional<Collection> Library::album(const QString& title) const {
    std::function<std::optional<Collection>(const QList<Collection>&)> find = [&](const QList<Collection>& list) -> std::optional<Collection> {
        for (const Collection& c : list) {
            if (c.title == title) return c;
            if (auto inner = find(c.children)) return inner;
        }
        return std::nullopt;
    };
    return find(userCollections());
}

std::optional<Collection> Library::createAlbum(const QString& title, QString* error) {
    if (folders_.isEmpty() || title.isEmpty() || title.contains('/') || title.startsWith('.')) {
        if (error) *error = QStringLiteral("No album can be made with the name \"%1\"").arg(title);
        return std::nullopt;
    }
    const QString path = folders_.first() + '/' + title;
    if (!QDir().mkpath(path)) {
        if (error) *error = QStringLiteral("The album folder %1 can't be made").arg(path);
        return std::nullopt;
    }
    return Collection{QStringLiteral("folder:") + path, title, CollectionType::album, 2, {}};
}

}  // namespace library
