// SPDX-License-Identifier: GPL-3.0-or-later
#include "Index.h"

#include "Log.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <limits>
#include <optional>
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
QByteArrayView Statement::utf8(int column) const {
    auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return p ? QByteArrayView(p, sqlite3_column_bytes(stmt_, column)) : QByteArrayView();
}
bool Statement::isNull(int column) const { return sqlite3_column_type(stmt_, column) == SQLITE_NULL; }
QString Statement::text(int column) const {
    auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
    return p ? QString::fromUtf8(p, sqlite3_column_bytes(stmt_, column)) : QString();
}

// Times are milliseconds since the epoch in UTC; offsets are seconds east of UTC.
// assets: one row per asset; what the user set (favourite, hidden, the date and place a save
//   gave) and the edit, whose original and adjustment data sit in the library's hidden folder.
// files: one row per file of the library folders, with what its reader found, so that an
//   unchanged file (same path, size and modification time) is never read again.
// journals (version 2): for each library folder, what tells the journal last written there
//   (its size and the SHA-1 of its last 64 KiB), so that a journal the index didn't write (new
//   index, cut-short write) is known and read; `whole` (version 3), its size when last written
//   whole, so it is written whole again when appends have doubled it.
// changes (version 3): the identifiers of the assets each write touched, in order, filled by
//   triggers whichever connection writes (a file added to the index always adds or bumps its
//   asset, so inserts into files need none: a first scan's rows are logged once). A reader
//   that knows where it stopped reloads those assets alone, and a journal takes their lines
//   appended. Old entries are dropped (`trimChanges`), the newest always kept, so a plain
//   rowid key only grows; a reader behind them loads everything.
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
    "CREATE TABLE journals(root TEXT PRIMARY KEY, digest TEXT NOT NULL);",
    R"(CREATE TABLE changes(seq INTEGER PRIMARY KEY, asset TEXT NOT NULL);
       CREATE TRIGGER assets_added AFTER INSERT ON assets BEGIN INSERT INTO changes(asset) VALUES(NEW.id); END;
       CREATE TRIGGER assets_changed AFTER UPDATE ON assets BEGIN INSERT INTO changes(asset) VALUES(NEW.id); END;
       CREATE TRIGGER assets_removed AFTER DELETE ON assets BEGIN INSERT INTO changes(asset) VALUES(OLD.id); END;
       CREATE TRIGGER files_changed AFTER UPDATE ON files BEGIN
         INSERT INTO changes(asset) VALUES(OLD.asset);
         INSERT INTO changes(asset) SELECT NEW.asset WHERE NEW.asset <> OLD.asset;
       END;
       CREATE TRIGGER files_removed AFTER DELETE ON files BEGIN INSERT INTO changes(asset) VALUES(OLD.asset); END;
       CREATE INDEX files_content ON files(content_id) WHERE content_id <> '';
       ALTER TABLE journals ADD COLUMN whole INTEGER NOT NULL DEFAULT 0;)",
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
    // A damaged index is rebuilt from the folders and the journals, with what it still reads;
    // the old file is kept for a look.
    salvage();
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

namespace {

// Every row of `table` that SQLite can still give: read in rowid order, and past a page it
// can't read by trying the rowids after the last good one, one by one. Errors are counted,
// not logged one by one.
int readRows(sqlite3* db, const char* table, const char* columns, const std::function<void(sqlite3_stmt*)>& take) {
    auto single = [&](const QByteArray& sql) -> std::optional<qint64> {
        sqlite3_stmt* s = nullptr;
        std::optional<qint64> v;
        if (sqlite3_prepare_v2(db, sql.constData(), -1, &s, nullptr) == SQLITE_OK && sqlite3_step(s) == SQLITE_ROW &&
            sqlite3_column_type(s, 0) != SQLITE_NULL)
            v = sqlite3_column_int64(s, 0);
        sqlite3_finalize(s);
        return v;
    };
    const QByteArray from = " FROM " + QByteArray(table);
    const std::optional<qint64> last = single("SELECT max(rowid)" + from);
    qint64 next = single("SELECT min(rowid)" + from).value_or(1);
    // The search past unreadable rows gives up this far past the last row read.
    constexpr qint64 reach = 100000;
    const qint64 bound = last.value_or(std::numeric_limits<qint64>::max() - 1);
    const QByteArray sql = "SELECT rowid, " + QByteArray(columns) + from + " WHERE rowid >= ? ORDER BY rowid";
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v2(db, sql.constData(), -1, &s, nullptr) != SQLITE_OK) {
        sqlite3_finalize(s);
        return 1;
    }
    int errors = 0;
    qint64 failedInARow = 0;
    while (next <= bound && failedInARow < reach) {
        sqlite3_reset(s);
        sqlite3_bind_int64(s, 1, next);
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            // A damaged tree could lead back to rows already read: that ends the walk here.
            const qint64 rowid = sqlite3_column_int64(s, 0);
            if (rowid < next) {
                rc = SQLITE_CORRUPT;
                break;
            }
            next = rowid + 1;
            failedInARow = 0;
            take(s);
        }
        if (rc == SQLITE_DONE) break;
        ++errors;
        ++failedInARow;
        ++next;
    }
    sqlite3_finalize(s);
    return errors;
}

QString textAt(sqlite3_stmt* s, int column) {
    if (sqlite3_column_type(s, column) != SQLITE_TEXT) return {};
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(s, column)), sqlite3_column_bytes(s, column));
}

std::optional<qint64> integerAt(sqlite3_stmt* s, int column) {
    if (sqlite3_column_type(s, column) != SQLITE_INTEGER) return std::nullopt;
    return sqlite3_column_int64(s, column);
}

std::optional<double> realAt(sqlite3_stmt* s, int column) {
    const int type = sqlite3_column_type(s, column);
    if (type != SQLITE_FLOAT && type != SQLITE_INTEGER) return std::nullopt;
    return sqlite3_column_double(s, column);
}

}  // namespace

void Index::salvage() {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path_.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return;
    }
    QHash<QString, JournalItem> items;
    int assetRows = 0, fileRows = 0;
    const int assetErrors = readRows(db, "assets",
        "id, added, favorite, hidden, user_date, user_offset, user_lat, user_lon, edit_original, edit_adjustment",
        [&](sqlite3_stmt* s) {
            const QString id = textAt(s, 1);
            if (id.isEmpty()) return;
            JournalItem& item = items[id];
            item.id = id;
            item.added = integerAt(s, 2).value_or(0);
            item.favorite = integerAt(s, 3).value_or(0) != 0;
            item.hidden = integerAt(s, 4).value_or(0) != 0;
            item.userDate = integerAt(s, 5);
            if (auto offset = integerAt(s, 6); offset && item.userDate) item.userOffset = int(qBound(qint64(-1000000), *offset, qint64(1000000)));
            item.userLat = realAt(s, 7);
            item.userLon = realAt(s, 8);
            item.editOriginal = textAt(s, 9);
            item.editAdjustment = textAt(s, 10);
            ++assetRows;
        });
    const int fileErrors = readRows(db, "files", "path, asset, size, head", [&](sqlite3_stmt* s) {
        const QString path = textAt(s, 1), id = textAt(s, 2);
        const auto size = integerAt(s, 3);
        if (path.isEmpty() || id.isEmpty() || !size) return;
        JournalItem& item = items[id];
        item.id = id;
        item.files << JournalFile{path, *size, textAt(s, 4)};
        ++fileRows;
    });
    sqlite3_close(db);
    for (JournalItem& item : items)
        if (!item.files.isEmpty()) salvaged_ << item;
    Log::info(QStringLiteral("🗂 The damaged index still gave %1 items, %2 rows of items and %3 of files; %4 reads failed")
                  .arg(salvaged_.size())
                  .arg(assetRows)
                  .arg(fileRows)
                  .arg(assetErrors + fileErrors));
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

void Index::trimChanges() {
    constexpr qint64 kept = 20000;
    Statement bounds(db_, "SELECT min(seq), max(seq) FROM changes");
    if (bounds.step() && bounds.integer(1) - bounds.integer(0) > 2 * kept) {
        Statement trim(db_, "DELETE FROM changes WHERE seq <= ?");
        trim.exec({bounds.integer(1) - kept});
    }
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
    if (body && exec("BEGIN IMMEDIATE")) {
        // Where the change log stood, so the journals know what this transaction touched.
        sqlite3_stmt* s = nullptr;
        began_ = -1;
        if (sqlite3_prepare_v2(db_, "SELECT coalesce(max(seq), 0) FROM changes", -1, &s, nullptr) == SQLITE_OK &&
            sqlite3_step(s) == SQLITE_ROW)
            began_ = sqlite3_column_int64(s, 0);
        sqlite3_finalize(s);
        if (body() && exec("COMMIT")) return true;
    }
    // Kept before the rollback, whose success would clear it.
    failure_ = QString::fromUtf8(sqlite3_errmsg(db_));
    if (!sqlite3_get_autocommit(db_)) exec("ROLLBACK");
    return false;
}

}  // namespace library
