// SPDX-License-Identifier: GPL-3.0-or-later
#include "Index.h"

#include "Log.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

namespace library {

Statement::Statement(sqlite3* db, const char* sql) : db_(db) {
    if (sqlite3_prepare_v2(db, sql, -1, &stmt_, nullptr) != SQLITE_OK) {
        Log::error(QStringLiteral("🗂 SQL: %1 in %2").arg(QString::fromUtf8(sqlite3_errmsg(db)), QString::fromUtf8(sql)));
        stmt_ = nullptr;
    }
}

Statement::~Statement() { sqlite3_finalize(stmt_); }

Statement& Statement::bind(const QVariantList& values) {
    if (!stmt_) return *this;
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
    for (int i = 0; i < values.size(); ++i) {
        const QVariant& v = values[i];
        int rc = SQLITE_OK;
        if (v.isNull()) rc = sqlite3_bind_null(stmt_, i + 1);
        else if (v.typeId() == QMetaType::Double) rc = sqlite3_bind_double(stmt_, i + 1, v.toDouble());
        else if (v.typeId() == QMetaType::QString) {
            QByteArray utf8 = v.toString().toUtf8();
            rc = sqlite3_bind_text(stmt_, i + 1, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
        } else rc = sqlite3_bind_int64(stmt_, i + 1, v.toLongLong());
        if (rc != SQLITE_OK) failed_ = true;
    }
    return *this;
}

bool Statement::step() {
    if (!stmt_ || failed_) return false;
    int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) return true;
    if (rc != SQLITE_DONE) {
        failed_ = true;
        Log::error(QStringLiteral("🗂 SQL step: %1").arg(QString::fromUtf8(sqlite3_errmsg(db_))));
    }
    return false;
}

bool Statement::exec(const QVariantList& values) {
    if (!stmt_) return false;
    failed_ = false;
    bind(values);
    while (step()) {
    }
    sqlite3_reset(stmt_);
    return !failed_;
}

void Statement::reset() {
    if (stmt_) sqlite3_reset(stmt_);
}

qint64 Statement::integer(int column) const { return sqlite3_column_int64(stmt_, column); }
double Statement::real(int column) const { return sqlite3_column_double(stmt_, column); }
bool Statement::isNull(int column) const { return sqlite3_column_type(stmt_, column) == SQLITE_NULL; }
QString Statement::text(int column) const {
    auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return p ? QString::fromUtf8(p, sqlite3_column_bytes(stmt_, column)) : QString();
}

// Version 1. Times are milliseconds since the epoch in UTC; offsets are seconds east of UTC.
// assets: one row per asset; what the user set (favourite, hidden, the date and place a save
//   gave) and the edit, whose original and adjustment data sit in the library's hidden folder.
// files: one row per file of the library folders, with what its reader found, so that an
//   unchanged file (same path, size and modification time) is never read again.
static const char* const migrations[] = {
    R"(CREATE TABLE assets(
         id TEXT PRIMARY KEY, favorite INTEGER NOT NULL DEFAULT 0, hidden INTEGER NOT NULL DEFAULT 0,
         added INTEGER NOT NULL, version INTEGER NOT NULL DEFAULT 0,
         user_date INTEGER, user_offset INTEGER, user_lat REAL, user_lon REAL,
         edit_original TEXT, edit_adjustment TEXT);
       CREATE TABLE files(
         path TEXT PRIMARY KEY, asset TEXT NOT NULL, size INTEGER NOT NULL, mtime INTEGER NOT NULL,
         head TEXT NOT NULL, kind INTEGER NOT NULL, readable INTEGER NOT NULL,
         date INTEGER, offset INTEGER, lat REAL, lon REAL, alt REAL,
         width INTEGER, height INTEGER, duration REAL, subtypes INTEGER NOT NULL DEFAULT 0,
         selfie INTEGER NOT NULL DEFAULT 0, burst TEXT, content_id TEXT);
       CREATE INDEX files_asset ON files(asset);
       CREATE INDEX files_move ON files(size, mtime);)",
};

Index::Index(const QString& path) : path_(path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QString problem;
    bool corrupt = false;
    if (openAndCheck(&problem, &corrupt) && migrate(&problem)) return;
    if (db_) sqlite3_close(db_);
    db_ = nullptr;
    if (!corrupt) {
        error_ = QStringLiteral("The library's index can't be opened: %1").arg(problem);
        Log::error(error_);
        return;
    }
    // A damaged index is rebuilt from the folders; the old file is kept for a look.
    const QString aside = path + QStringLiteral(".corrupt-") + QDateTime::currentDateTimeUtc().toString("yyyyMMddHHmmss");
    QFile::remove(path + "-wal");
    QFile::remove(path + "-shm");
    if (!QFile::rename(path, aside)) {
        error_ = QStringLiteral("The library's index is damaged and can't be moved aside: %1").arg(path);
        Log::error(error_);
        return;
    }
    Log::error(QStringLiteral("🗂 The library's index was damaged (%1); moved to %2, rebuilding").arg(problem, aside));
    if (!openAndCheck(&problem, &corrupt) || !migrate(&problem)) {
        if (db_) sqlite3_close(db_);
        db_ = nullptr;
        error_ = QStringLiteral("The library's index can't be made: %1").arg(problem);
        Log::error(error_);
    }
}

Index::~Index() {
    if (db_) sqlite3_close(db_);
}

bool Index::openAndCheck(QString* problem, bool* corrupt) {
    *corrupt = false;
    int rc = sqlite3_open_v2(path_.toUtf8().constData(), &db_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (rc != SQLITE_OK) {
        *problem = db_ ? QString::fromUtf8(sqlite3_errmsg(db_)) : QStringLiteral("out of memory");
        *corrupt = rc == SQLITE_CORRUPT || rc == SQLITE_NOTADB;
        return false;
    }
    // Another process holding the database gets a few seconds before we give up.
    sqlite3_busy_timeout(db_, 5000);
    Statement check(db_, "PRAGMA quick_check");
    if (!check.ok()) {
        int code = sqlite3_errcode(db_);
        *problem = QString::fromUtf8(sqlite3_errmsg(db_));
        *corrupt = code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
        return false;
    }
    if (!check.step()) {
        int code = sqlite3_errcode(db_);
        *problem = QString::fromUtf8(sqlite3_errmsg(db_));
        *corrupt = code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
        return false;
    }
    if (check.text(0) != QLatin1String("ok")) {
        *problem = check.text(0);
        *corrupt = true;
        return false;
    }
    check.reset();
    // WAL lets readers go on while a scan writes; NORMAL sync keeps a commit atomic in WAL mode.
    if (!exec("PRAGMA journal_mode=WAL") || !exec("PRAGMA synchronous=NORMAL") || !exec("PRAGMA foreign_keys=ON")) {
        *problem = lastError();
        return false;
    }
    return true;
}

bool Index::migrate(QString* problem) {
    Statement version(db_, "PRAGMA user_version");
    int current = version.step() ? int(version.integer(0)) : 0;
    version.reset();
    if (current > schemaVersion) {
        *problem = QStringLiteral("made by a newer version (schema %1)").arg(current);
        return false;
    }
    for (int v = current; v < schemaVersion; ++v) {
        bool ok = transaction([&] {
            return exec(migrations[v]) &&
                   exec(QStringLiteral("PRAGMA user_version=%1").arg(v + 1).toUtf8().constData());
        });
        if (!ok) {
            *problem = lastError();
            return false;
        }
    }
    return true;
}

bool Index::exec(const char* sql) {
    char* message = nullptr;
    int rc = sqlite3_exec(db_, sql, nullptr, nullptr, &message);
    if (rc != SQLITE_OK) {
        Log::error(QStringLiteral("🗂 SQL: %1").arg(QString::fromUtf8(message ? message : "?")));
        sqlite3_free(message);
        return false;
    }
    return true;
}

QString Index::lastError() const {
    if (!failure_.isEmpty()) return failure_;
    return db_ ? QString::fromUtf8(sqlite3_errmsg(db_)) : error_;
}

bool Index::transaction(const std::function<bool()>& body) {
    failure_.clear();
    // The wait for another writer is the busy timeout's; then it fails as "database is locked".
    if (body && exec("BEGIN IMMEDIATE") && body() && exec("COMMIT")) return true;
    // Kept before the rollback, whose success would clear it.
    failure_ = QString::fromUtf8(sqlite3_errmsg(db_));
    if (!sqlite3_get_autocommit(db_)) exec("ROLLBACK");
    return false;
}

}  // namespace library
