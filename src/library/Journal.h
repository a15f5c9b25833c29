// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user set, kept beside the photos as well as in the index: one journal per library
// folder, `.tessorin/journal.jsonl`, written durably before every index transaction that changes
// it commits: the lines of the items a change touched appended, or, when it has grown to twice
// its size or isn't the one the index wrote, whole. A lost or damaged index takes the identifiers, marks, dates, places
// and edits back from it, and from what the damaged index still reads.
#include "JournalFormat.h"

#include <QHash>
#include <QSet>
#include <functional>

struct sqlite3;

namespace library {

// The journals of one library's folders, and the items taken back from them or from a damaged
// index that the index doesn't hold yet. Runs on the library's thread.
class Journals {
public:
    explicit Journals(QStringList roots);

    // Items that a damaged index still gave.
    void addSalvaged(const QList<JournalItem>& items);
    // Once per folder: a journal that isn't the one the index last wrote (a new or rebuilt
    // index, a kill between the two writes) is read, and written again at the next transaction.
    void check(sqlite3* db);
    // Folders whose journal waits to be written.
    QStringList stale() const;
    // Inside a write transaction, for a file read anew: the identifier it had, when a
    // recovered item holds it (same path, size and first bytes, or same size and first bytes
    // elsewhere) and the index doesn't use it for another item. The item's marks, dates, place
    // and edit come back with it.
    std::optional<QString> take(sqlite3* db, const QString& path, qint64 size, const QString& head, qint64 now);
    // Inside a write transaction: writes the journal of each folder in `roots` (and the stale
    // ones) from the index, with the recovered items not taken yet, less those `settled`
    // tells are gone, and records what was written. A folder that can't take it is logged and
    // tried again later; the index still changes. With `since`, the index's change log entry
    // the transaction began after, the items it touched are appended where that will do.
    void write(sqlite3* db, const QSet<QString>& roots, const std::function<bool(const QString& path)>& settled = {},
               qint64 since = -1);
    // After the transaction committed: forgets the recovered items `settled` tells are gone,
    // and says in the log what the index took back.
    void committed(const std::function<bool(const QString& path)>& settled = {});
    // After it failed: the journals may be ahead of the index, so they are written again.
    void failed(const QSet<QString>& roots);

    QString rootOf(const QString& path) const;
    QSet<QString> rootsOf(const QStringList& paths) const;
    // The folders that hold the files of an item.
    QSet<QString> rootsOfAsset(sqlite3* db, const QString& id) const;

private:
    // The lines of the items the index holds in `root` (of the item `only` when given), their
    // identifiers into `ids`.
    QByteArray lines(sqlite3* db, const QString& root, QSet<QString>* ids, const QString& only = {}) const;
    // Appends the lines of the items touched since the change `since` to the journal whose
    // digest and size when last written whole the index holds; false when it must be written
    // whole instead.
    bool append(sqlite3* db, const QString& root, const QString& digest, qint64 whole, qint64 since);
    QStringList roots_;
    QSet<QString> checked_, stale_;
    QList<JournalItem> pending_;  // recovered, not in the index yet
    QHash<QString, QList<qsizetype>> byPath_;  // into pending_
    QHash<QString, QList<qsizetype>> byContent_;  // "size:head"
    QSet<QString> takenNow_;  // identifiers given back in the open transaction
    void reindex();
};

}  // namespace library
