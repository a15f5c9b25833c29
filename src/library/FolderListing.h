// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A scan's view of one folder: its media files with size and time, sorted by name byte by byte
// so that the index's rows of the folder are matched by a binary search, and its subfolders.
#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <string_view>

namespace library {

struct OnDisk { qint64 size, mtime; };
// A media file as listed: its name as the index keeps it (UTF-8), its size and time.
struct Entry { QByteArray name; OnDisk at; };
struct Listing {
    QList<Entry> files;  // sorted by name, byte by byte
    QStringList subfolders;  // by name
};

inline bool nameOrder(QByteArrayView x, QByteArrayView y) {
    return std::string_view(x.data(), x.size()) < std::string_view(y.data(), y.size());
}

// One folder, listed with readdir and one stat a file (a QFileInfo per entry costs several times
// that at a hundred thousand files); nothing when it can't be read.
std::optional<Listing> listFolder(const QString& dir);

}  // namespace library
