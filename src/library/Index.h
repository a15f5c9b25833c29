// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The library's SQLite database: a thin layer over SQLite's C API (statements, transactions,
// opening with the schema brought up to date). The tables are described in Index.cpp.
#include "Journal.h"

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <functional>

struct sqlite3;
struct sqlite3_stmt;

namespace library {

class Statement {
public:
    Statement(sqlite3* db, const char* sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    // Binds in order; QVariant() binds NULL.
    Statement& bind(const QVariantList& values);
    bool step();  // true while a row is there
    bool exec(const QVariantList& values = {});  // bind, run to the end, reset; false on error
    void reset();
    qint64 integer(int column) const;
    double real(int column) const;
    QString text(int column) const;
    QByteArrayView utf8(int column) const;  // valid until the next step
    bool isNull(int column) const;
    bool ok() const { return stmt_ != nullptr && !failed_; }

private:
    sqlite3* db_;
    sqlite3_stmt* stmt_ = nullptr;
    bool failed_ = false;
};

class Index {
public:
    static constexpr int schemaVersion = 3;

    // Opens or makes the database. A file that isn't a sound database gives what rows it still
    // reads (`salvaged`), is moved aside (named in the log) and a new one made; `error` says why
    // nothing could be opened.
    explicit Index(const QString& path);
    ~Index();
    bool isOpen() const { return db_ != nullptr; }
    QString error() const { return error_; }
    sqlite3* db() const { return db_; }
    // The items a damaged index still gave, paths as it held them.
    const QList<JournalItem>& salvaged() const { return salvaged_; }
    QString path() const { return path_; }

    // Runs `body` in one write transaction; rolled back when it returns false.
    bool transaction(const std::function<bool()>& body);
    // In a transaction: the last entry of the change log before it began.
    qint64 changesBefore() const { return began_; }
    // Drops the change log's entries but the newest, which readers a few changes behind use.
    void trimChanges();
    bool exec(const char* sql);
    QString lastError() const;

private:
    bool openAndCheck(QString* problem, bool* corrupt);
    bool migrate(QString* problem);
    void salvage();
    QString path_;
    QString error_;
    QString failure_;  // of the last failed transaction
    sqlite3* db_ = nullptr;
    qint64 began_ = -1;
    QList<JournalItem> salvaged_;
};

}  // namespace library
