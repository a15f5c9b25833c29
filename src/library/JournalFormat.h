// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The journal's file format: what one item's line holds, and the whole file read and written.
//
// The file is JSON Lines, so that a cut or damaged one is read as far as it goes: a header
// {"journal":"Tessorin library","version":1}, then one item a line,
// {"id", "added", "favorite", "hidden", "userDate", "userOffset", "userLatitude",
//  "userLongitude", "editOriginal", "editAdjustment", "files":[{"path","size","head"}]},
// paths relative to the library folder, absent fields meaning none. A later line of an item takes
// the place of an earlier one; {"id", "removed": true} takes it out (version 2).
#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace library {

struct JournalFile {
    QString path;  // absolute in memory
    qint64 size = 0;
    QString head;  // headHash of the file
};

struct JournalItem {
    QString id;
    qint64 added = 0;
    bool favorite = false, hidden = false;
    std::optional<qint64> userDate;
    std::optional<int> userOffset;
    std::optional<double> userLat, userLon;
    QString editOriginal, editAdjustment;  // absolute, both or neither
    QList<JournalFile> files;
};

// Whether every field holds what the library itself would write.
// `roots` are the library folders the paths must lie in.
bool isSound(const JournalItem& item, const QStringList& roots);

namespace journal {
inline constexpr int version = 2;
QString pathFor(const QString& root);
// The header line, with its line feed.
QByteArray header();
// Whether `path` lies inside `folder` (not the folder itself).
bool under(const QString& path, const QString& folder);
// Appends UTF-8 text as a JSON string, quoted and escaped: for lines written straight from the
// index's rows.
void appendString(QByteArray& out, QByteArrayView utf8);
QByteArray serialize(const QString& root, const QList<JournalItem>& items);
struct Reading {
    QList<JournalItem> items;  // sound ones only
    int skipped = 0;           // lines that weren't a sound item
    int version = 0;           // of the header, 0 when it couldn't be read
};
Reading parse(const QString& root, const QByteArray& data);
}  // namespace journal

}  // namespace library
