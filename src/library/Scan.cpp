// SPDX-License-Identifier: GPL-3.0-or-later
// Scans: the folders walked, new and changed files read on worker threads, moves known by size,
// time and first bytes, files grouped into assets, all written in one transaction.
#include "Library.h"

#include "FileFacts.h"
#include "Index.h"
#include "Journal.h"
#include "Log.h"
#include "Rows.h"
#include "Sidecar.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QSet>
#include <QThread>
#include <QUuid>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <atomic>
#include <sqlite3.h>
#include <dirent.h>
#include <sys/stat.h>
#include <utility>

namespace library {

namespace {
// The files a background scan is still to read, by database: other scans of the same index in
// this process leave them to it, so that no file is read twice or given two items.
// Until it has listed them, every file the index doesn't hold yet.
struct Pending {
    QMutex mutex;
    struct Files {
        bool listed = false;
        QSet<QString> paths;
    };
    QHash<QString, Files> byDatabase;
};
Pending& pending() {
    static Pending p;
    return p;
}

// A background scan's hold on its files, from its start to its end.
class Claim {
public:
    explicit Claim(QString database) : database_(std::move(database)) {
        if (database_.isEmpty()) return;
        QMutexLocker lock(&pending().mutex);
        pending().byDatabase.insert(database_, {});
    }
    ~Claim() {
        if (database_.isEmpty()) return;
        QMutexLocker lock(&pending().mutex);
        pending().byDatabase.remove(database_);
    }
    bool active() const { return !database_.isEmpty(); }
    template <typename Reads> void list(const Reads& reads) {
        QMutexLocker lock(&pending().mutex);
        Pending::Files& mine = pending().byDatabase[database_];
        for (const auto& r : reads) mine.paths.insert(r.path);
        mine.listed = true;
    }
    // What another scan of `database` must leave alone among the files it found.
    static void leaveClaimed(const QString& database, QStringList& fresh, QStringList& changed) {
        QMutexLocker lock(&pending().mutex);
        const auto claimed = pending().byDatabase.constFind(database);
        if (claimed == pending().byDatabase.cend()) return;
        if (!claimed->listed) {
            fresh.clear();
            changed.clear();
            return;
        }
        fresh.removeIf([&](const QString& p) { return claimed->paths.contains(p); });
        changed.removeIf([&](const QString& p) { return claimed->paths.contains(p); });
    }

private:
    QString database_;
};
}  // namespace

ScanReport Library::scan() { return scan({}, folders_); }

ScanReport Library::scan(const QStringList& shallow, const QStringList& deep) {
    ScanReport report;
    if (!ensureOpen(nullptr)) {
        report.indexError = index_->error();
        report.problems << index_->error();
        return lastScan_ = report;
    }
    // A background scan's files are its own until it ends.
    Claim claim(batchSize_ > 0 ? index_->path() : QString());
    journals_->check(index_->db());
    // What is on disk now. Folders we can't read keep their files in the index: a missing
    // disk or a locked folder must not cost the user's marks.
    struct OnDisk { qint64 size, mtime; };
    QHash<QString, OnDisk> disk;
    QHash<QString, qint64> sidecarTimes;  // the XMP sidecars seen, by path
    QStringList unreachable;
    auto isRoot = [&](const QString& dir) { return folders_.contains(dir); };
    // Listed with readdir and one stat a file: a QFileInfo per entry costs several times that
    // at a hundred thousand files.
    std::function<void(const QString&, bool)> walk = [&](const QString& dir, bool into) {
        const QFileInfo info(dir);
        if (!info.exists() && !isRoot(dir)) return;  // a subfolder that went: its files went too
        DIR* d = info.isDir() && info.isReadable() && info.isExecutable() ? opendir(QFile::encodeName(dir).constData()) : nullptr;
        if (!d) {
            unreachable << dir;
            report.problems << QStringLiteral("The library folder %1 can't be read").arg(dir);
            return;
        }
        QStringList subfolders;
        while (const dirent* e = readdir(d)) {
            // Hidden entries (our own folder of originals among them) aren't part of the library.
            if (e->d_name[0] == '.') continue;
            const QString name = QFile::decodeName(e->d_name);
            const bool media = hasMediaName(name), sidecar = name.endsWith(QLatin1String(".xmp"), Qt::CaseInsensitive);
            if (!media && !sidecar && e->d_type != DT_DIR && e->d_type != DT_UNKNOWN && e->d_type != DT_LNK) continue;
            struct stat st {};
            if (fstatat(dirfd(d), e->d_name, &st, 0) != 0) continue;
            if (S_ISDIR(st.st_mode)) {
                if (into) subfolders << dir + '/' + name;
                continue;
            }
            if (!S_ISREG(st.st_mode)) continue;
            const qint64 mtime = qint64(st.st_mtim.tv_sec) * 1000 + st.st_mtim.tv_nsec / 1000000;
            if (media) disk.insert(dir + '/' + name, {qint64(st.st_size), mtime});
            else if (sidecar) sidecarTimes.insert(dir + '/' + name, mtime);
        }
        closedir(d);
        for (const QString& sub : std::as_const(subfolders)) walk(sub, true);
    };
    auto inLibrary = [&](const QString& path) {
        return std::any_of(folders_.begin(), folders_.end(), [&](const QString& r) { return under(path, r); });
    };
    QStringList shallowScope, deepScope;
    for (const QString& f : shallow) if (inLibrary(f)) shallowScope << QDir::cleanPath(f);
    for (const QString& f : deep) if (inLibrary(f)) deepScope << QDir::cleanPath(f);
    for (const QString& dir : std::as_const(shallowScope)) walk(dir, false);
    for (const QString& dir : std::as_const(deepScope)) walk(dir, true);
    // A photo counts as changed when its sidecar does, or comes or goes: its time is the later of
    // the two, so another program's rating or keywords in the sidecar are read like a change to
    // the photo, and a photo moved with its sidecar is still known by size, time and first bytes.
    if (!sidecarTimes.isEmpty()) {
        for (auto it = disk.begin(); it != disk.end(); ++it)
            for (const QString& candidate : imageio::sidecarCandidates(it.key()))
                if (const auto s = sidecarTimes.constFind(candidate); s != sidecarTimes.cend()) {
                    it->mtime = std::max(it->mtime, *s);
                    break;
                }
    }
    auto inScope = [&](const QString& path) {
        const QString dir = QFileInfo(path).absolutePath();
        return shallowScope.contains(dir) ||
               std::any_of(deepScope.begin(), deepScope.end(), [&](const QString& d) { return under(path, d); });
    };
    auto reachable = [&](const QString& path) {
        return inLibrary(path) && inScope(path) &&
               std::none_of(unreachable.begin(), unreachable.end(), [&](const QString& u) { return under(path, u); });
    };

    // The index's rows of the folders a scan looks at, found by ranges of the path key, so a
    // scan of one folder costs that folder. First only what tells a change.
    sqlite3* db = index_->db();
    auto rowsIn = [&](const QByteArray& select, const QStringList& shallowFolders, const QStringList& deepFolders,
                      const std::function<void(const Statement&)>& take) {
        Statement s(db, select + " WHERE path > ? AND path < ?");
        for (const QStringList* list : {&shallowFolders, &deepFolders})
            for (const QString& f : *list) {
                s.bind({f + '/', f + '0'});  // '0' follows '/'
                while (s.step())
                    if (list == &deepFolders || folderOf(s.text(0)) == f) take(s);
            }
    };
    struct Stamp { qint64 size, mtime; };
    QHash<QString, Stamp> stamps;
    rowsIn("SELECT path, size, mtime FROM files", shallowScope, deepScope,
           [&](const Statement& s) { stamps.insert(s.text(0), {s.integer(1), s.integer(2)}); });
    QStringList fresh, changed, gonePaths;
    for (auto it = disk.cbegin(); it != disk.cend(); ++it) {
        auto k = stamps.constFind(it.key());
        if (k == stamps.cend()) fresh << it.key();
        else if (k->size != it->size || k->mtime != it->mtime) changed << it.key();
        else ++report.filesUnchanged;
    }
    if (batchSize_ == 0) Claim::leaveClaimed(index_->path(), fresh, changed);
    for (auto it = stamps.cbegin(); it != stamps.cend(); ++it)
        if (!disk.contains(it.key()) && reachable(it.key())) gonePaths << it.key();
    stamps = {};
    if (fresh.isEmpty() && changed.isEmpty() && gonePaths.isEmpty() && journals_->stale().isEmpty()) {
        // Another Library on this index (a save's worker has its own) may have brought it up to
        // date already: its writes are still news to this one's observers.
        lastScan_ = report;
        noticeChanges();
        return report;
    }
    // Then the whole rows of the folders where something changed: what the gone files were,
    // and the partners a new file may join.
    QHash<QString, FileRow> known;
    {
        QSet<QString> folders;
        for (const QStringList* list : {&fresh, &changed, &gonePaths})
            for (const QString& p : *list) folders.insert(folderOf(p));
        rowsIn(selectFiles, QStringList(folders.begin(), folders.end()), {}, [&](const Statement& s) {
            FileRow r = fileRow(s);
            known.insert(r.path, r);
        });
    }
    QList<FileRow> gone;
    for (const QString& p : std::as_const(gonePaths)) gone << known.value(p);
    std::sort(fresh.begin(), fresh.end());

    // The reading is done before each transaction, so the database is held only for the writes.
    // Files are read on worker threads, one file each; matching them up stays here, in order.
    struct Read { QString path, head; FileFacts facts; };
    QList<Read> reads;
    QHash<QString, QString> moved;  // new path to the asset it keeps
    QSet<QString> goneTaken;
    // A new file's first bytes tell a moved one. They are read in a pass of their own even when
    // no file went: their small strings made among the reader's large passing ones left a
    // first scan of 100,000 files with some 400 MB more held.
    // A background scan with no file gone has no move to find: it reads them batch by batch,
    // so that the first items show at once.
    const bool headsFirst = !claim.active() || !gone.isEmpty();
    const QStringList freshHeads =
        headsFirst ? QtConcurrent::blockingMapped(fresh, [](const QString& p) { return headHash(p); }) : QStringList();
    for (qsizetype i = 0; i < fresh.size(); ++i) {
        const QString& path = fresh[i];
        if (!headsFirst) {
            reads << Read{path, {}, {}};
            continue;
        }
        const QString& head = freshHeads[i];
        const OnDisk od = disk.value(path);
        auto match = std::find_if(gone.begin(), gone.end(), [&](const FileRow& g) {
            return !goneTaken.contains(g.path) && g.size == od.size && g.mtime == od.mtime && g.head == head;
        });
        if (match != gone.end()) {
            goneTaken.insert(match->path);
            moved.insert(path, match->path);
            continue;
        }
        reads << Read{path, head, {}};
    }
    const qsizetype freshReads = reads.size();
    for (const QString& path : changed) reads << Read{path, {}, {}};
    if (claim.active()) claim.list(reads);
    const int seen = int(disk.size());
    const int toRead = int(reads.size());
    if (toRead > 0) emit scanProgress(seen, 0, toRead);
    std::atomic<int> done{0};
    const auto stopped = [this] { return stop_ && stop_->load(); };
    QThread* const caller = QThread::currentThread();
    QElapsedTimer told;
    told.start();
    // Partners for grouping: same folder and base name (the folder's rows are at hand), or the
    // same content identifier (anywhere, asked of the index). Made in the first transaction,
    // once the moves and removals are in `known`, and kept up to date batch by batch.
    QHash<QString, QString> byName, byContent;
    QHash<QString, QSet<int>> kindsOf;
    auto nameKey = [](const QString& path) {
        QFileInfo fi(path);
        return fi.absolutePath() + '/' + fi.completeBaseName().toLower();
    };
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // One transaction for everything, or for each batch of a background scan, the first also
    // taking the moves and removals. A batch is at least a quarter of what is written already:
    // each one has the screens fetch anew, which costs more as the library grows.
    for (qsizetype from = 0, to = 0, batches = 0; batches == 0 || from < reads.size(); from = to, ++batches) {
        to = claim.active() ? std::min(reads.size(), from + std::max<qsizetype>(batchSize_, from / 4)) : reads.size();
        // One blocking map over the batch, the calling thread among the workers (a map it only
        // waited for left tens of megabytes more behind at a hundred thousand files); that thread
        // tells the files seen, read and left a few times a second.
        QtConcurrent::blockingMap(reads.begin() + from, reads.begin() + to, [&](Read& r) {
            if (stopped()) return;
            if (r.head.isNull()) r.head = headHash(r.path);
            r.facts = readFileFacts(r.path);
            const int n = ++done;
            if (QThread::currentThread() == caller && n < toRead && told.elapsed() >= 100) {
                told.restart();
                emit scanProgress(seen, n, toRead - n);
            }
        });
        if (stopped()) {
            report.cancelled = true;
            break;
        }
        // Each batch tells where it ended, as quick ones leave no time for the map to.
        if (toRead > 0) emit scanProgress(seen, int(to), toRead - int(to));
        for (qsizetype i = from; i < std::min(to, freshReads); ++i)
            if (!reads[i].facts.readable)
                report.problems << QStringLiteral("%1 couldn't be read; kept with what the file system knows").arg(reads[i].path);

        QStringList paths;
        if (from == 0) {
            paths = moved.keys();
            for (const FileRow& g : std::as_const(gone)) paths << g.path;
        }
        for (qsizetype i = from; i < to; ++i) paths << reads[i].path;
        const QSet<QString> touched = journals_->rootsOf(paths);
        // Items taken back from a journal whose files a later batch reads are not gone yet: only
        // the last batch may settle which of them have no file any more.
        const std::function<bool(const QString&)> settled =
            to == reads.size() ? std::function<bool(const QString&)>(reachable) : [](const QString&) { return false; };
        const bool ok = index_->transaction([&] {
            Statement bump(db, "UPDATE assets SET version = version + 1 WHERE id = ?");
            if (from == 0) {
                Statement move(db, "UPDATE files SET path = ? WHERE path = ?");
                for (auto it = moved.cbegin(); it != moved.cend(); ++it) {
                    if (!move.exec({it.key(), it.value()}) || !bump.exec({known.value(it.value()).asset})) return false;
                    known.insert(it.key(), known.take(it.value()));
                    known[it.key()].path = it.key();
                    ++report.filesMoved;
                }
                Statement removeFile(db, "DELETE FROM files WHERE path = ?");
                Statement orphans(db, "DELETE FROM assets WHERE id = ? AND NOT EXISTS (SELECT 1 FROM files WHERE asset = ?)");
                for (const FileRow& g : gone) {
                    if (goneTaken.contains(g.path)) continue;
                    if (!removeFile.exec({g.path}) || !orphans.exec({g.asset, g.asset}) || !bump.exec({g.asset})) return false;
                    known.remove(g.path);
                    ++report.filesRemoved;
                }
                for (const FileRow& r : std::as_const(known)) {
                    byName.insert(nameKey(r.path), r.asset);
                    if (!r.contentId.isEmpty()) byContent.insert(r.contentId, r.asset);
                }
            }
            Statement contentPartner(db, "SELECT asset FROM files WHERE content_id = ? AND content_id <> ''");
            Statement kinds(db, "SELECT kind FROM files WHERE asset = ?");
            auto partnerByContent = [&](const QString& contentId) {
                if (contentId.isEmpty()) return QString();
                auto it = byContent.constFind(contentId);
                if (it != byContent.cend()) return *it;
                contentPartner.bind({contentId});
                const QString asset = contentPartner.step() ? contentPartner.text(0) : QString();
                contentPartner.reset();
                return asset;
            };
            auto kindsOfAsset = [&](const QString& asset) -> const QSet<int>& {
                auto it = kindsOf.find(asset);
                if (it == kindsOf.end()) {
                    QSet<int> found;
                    kinds.bind({asset});
                    while (kinds.step()) found.insert(int(kinds.integer(0)));
                    kinds.reset();
                    it = kindsOf.insert(asset, found);
                }
                return *it;
            };
            Statement insert(db, insertFile);
            Statement newAsset(db, "INSERT INTO assets(id, added) VALUES(?, ?)");
            for (qsizetype i = from; i < to; ++i) {
                const Read& r = reads[i];
                const OnDisk od = disk.value(r.path);
                QString asset = known.contains(r.path) ? known.value(r.path).asset : QString();
                if (asset.isEmpty()) asset = journals_->take(db, r.path, od.size, r.head, now).value_or(QString());
                if (asset.isEmpty()) {
                    auto fits = [&](const QString& candidate) {
                        return !candidate.isEmpty() && !kindsOfAsset(candidate).contains(int(r.facts.kind));
                    };
                    QString partner = partnerByContent(r.facts.contentIdentifier);
                    if (r.facts.contentIdentifier.isEmpty() || !fits(partner)) partner = byName.value(nameKey(r.path));
                    if (fits(partner)) asset = partner;
                }
                if (asset.isEmpty()) {
                    asset = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
                    if (!newAsset.exec({asset, now})) return false;
                } else if (!bump.exec({asset})) {
                    return false;
                }
                if (!insert.exec(fileValues(r.path, asset, od.size, od.mtime, r.head, r.facts))) return false;
                byName.insert(nameKey(r.path), asset);
                if (!r.facts.contentIdentifier.isEmpty()) byContent.insert(r.facts.contentIdentifier, asset);
                if (auto k = kindsOf.find(asset); k != kindsOf.end()) k->insert(int(r.facts.kind));
            }
            journals_->write(db, touched, settled, index_->changesBefore());
            index_->trimChanges();
            return true;
        });
        if (ok) journals_->committed(settled);
        else journals_->failed(touched);
        if (!ok) {
            report.indexError = QStringLiteral("The library's index couldn't be updated: %1").arg(index_->lastError());
            report.problems << report.indexError;
            Log::error(QStringLiteral("🗂 %1").arg(report.indexError));
            return lastScan_ = report;
        }
        report.filesRead += int(to - from);
        // What is written needs no more room here.
        for (qsizetype i = from; i < to; ++i) reads[i] = Read{};
        // Each batch is news for the screens; the last one is told below.
        if (to < reads.size()) {
            toldVersion_ = dataVersion();
            emit libraryDidChange();
        }
    }
    lastScan_ = report;
    toldVersion_ = dataVersion();
    emit libraryDidChange();
    return report;
}

}  // namespace library
