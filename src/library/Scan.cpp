// SPDX-License-Identifier: GPL-3.0-or-later
// Scans: the folders walked, new and changed files read on worker threads, moves known by size,
// time and first bytes, files grouped into assets, written in one transaction (a background scan:
// one a batch).
#include "Library.h"

#include "FileFacts.h"
#include "FolderListing.h"
#include "FolderWatcher.h"
#include "Index.h"
#include "Journal.h"
#include "Log.h"
#include "Rows.h"
#include "ScanClaim.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QThread>
#include <QUuid>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <atomic>
#include <sqlite3.h>
#include <optional>
#include <sys/stat.h>
#include <tuple>
#include <utility>

namespace library {

ScanReport Library::scan() { return scan({}, folders_); }

ScanReport Library::scan(const QStringList& shallow, const QStringList& deep) {
    ScanReport report;
    if (!ensureOpen(nullptr)) {
        report.indexError = index_->error();
        report.problems << index_->error();
        return lastScan_ = report;
    }
    // A background scan's files are its own until it ends.
    ScanClaim claim(batchSize_ > 0 ? index_->path() : QString());
    journals_->check(index_->db());
    // What is on disk now, folder by folder, sorted by name so that the index's rows are matched
    // by a binary search instead of a path string and a hash entry per file. Folders we can't
    // read keep their files in the index: a missing disk or a locked folder must not cost the
    // user's marks.
    QHash<QString, Listing> listings;
    QHash<QString, FolderWatcher::Listed> listedNow;
    QStringList unreachable, vanished;
    int filesSeen = 0;
    auto isRoot = [&](const QString& dir) { return folders_.contains(dir); };
    auto inLibrary = [&](const QString& path) {
        return std::any_of(folders_.begin(), folders_.end(), [&](const QString& r) { return under(path, r); });
    };
    // The changes the watcher has seen and not yet told are this scan's to take. A scan of the
    // whole library leans on the watcher for the rest; folders asked for by name are read.
    QStringList pendingShallow, pendingDeep;
    if (watcher_) std::tie(pendingShallow, pendingDeep) = watcher_->takePending();
    const bool whole = shallow.isEmpty() && deep == folders_;
    QStringList shallowScope, deepScope;
    for (const QString& f : shallow + pendingShallow) if (inLibrary(f)) shallowScope << QDir::cleanPath(f);
    for (const QString& f : deep + pendingDeep) if (inLibrary(f)) deepScope << QDir::cleanPath(f);
    shallowScope.removeDuplicates();
    deepScope.removeDuplicates();
    // The folders are walked a level at a time, each level's folders listed in parallel: the
    // stat of every file is most of what a rescan costs. `told`: the caller or the watcher named
    // the folder, so it is listed even when its own time stayed.
    struct Visit { QString dir; bool into, told; };
    QList<Visit> level;
    for (const QString& dir : std::as_const(shallowScope)) level << Visit{dir, false, true};
    for (const QString& dir : std::as_const(deepScope)) level << Visit{dir, true, !(whole && isRoot(dir)) || pendingDeep.contains(dir)};
    while (!level.isEmpty()) {
        QList<Visit> next, toList;
        QSet<QString> queued;
        QList<qint64> times;
        QList<int> watches;
        auto below = [&](const Visit& v, const QStringList& subfolders) {
            if (v.into)
                for (const QString& sub : subfolders) next << Visit{v.dir + '/' + sub, true, v.told};
        };
        for (const Visit& v : std::as_const(level)) {
            // Listed already by this scan (shallow, then within a deep one): only its subfolders are left.
            if (const auto l = listings.constFind(v.dir); l != listings.cend()) {
                below(v, l->subfolders);
                continue;
            }
            if (queued.contains(v.dir)) continue;
            struct stat st {};
            if (stat(QFile::encodeName(v.dir).constData(), &st) != 0 && !isRoot(v.dir)) {
                vanished << v.dir;  // its files went with it
                continue;
            }
            const qint64 dirTime = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
            // A folder watched since it was last listed, its own time unmoved, holds the files it
            // held then: the watcher would have told of any change among them.
            if (!v.told && watcher_)
                if (const auto subfolders = watcher_->unchanged(v.dir, dirTime)) {
                    below(v, *subfolders);
                    continue;
                }
            toList << v;
            queued.insert(v.dir);
            times << dirTime;
            // Taken before the listing: what changes after it, the watch tells.
            watches << (watcher_ ? watcher_->watchOf(v.dir) : -1);
        }
        const QList<std::optional<Listing>> listed =
            QtConcurrent::blockingMapped(toList, [](const Visit& v) { return listFolder(v.dir); });
        for (qsizetype i = 0; i < toList.size(); ++i) {
            const Visit& v = toList[i];
            if (!listed[i]) {
                unreachable << v.dir;
                report.problems << QStringLiteral("The library folder %1 can't be read").arg(v.dir);
                continue;
            }
            filesSeen += int(listed[i]->files.size());
            listedNow.insert(v.dir, {times[i], listed[i]->subfolders, watches[i]});
            below(v, listed[i]->subfolders);
            listings.insert(v.dir, *listed[i]);
        }
        level = std::move(next);
    }
    auto inScope = [&](const QString& path) {
        const QString dir = folderOf(path);
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
    QHash<QString, OnDisk> disk;  // the new and changed files
    QStringList fresh, changed, gonePaths;
    auto goneRow = [&](QByteArrayView p) {
        const QString path = QString::fromUtf8(p);
        if (reachable(path)) gonePaths << path;
    };
    // Each folder listed against its own rows: the rows of a subfolder on disk are jumped over
    // (they are its own listing's, or left alone when it wasn't listed), those of a subfolder
    // that went are gone.
    Statement rows(db, "SELECT path, size, mtime FROM files WHERE path >= ? AND path < ?");
    for (auto l = listings.cbegin(); l != listings.cend(); ++l) {
        const QString& dir = l.key();
        const QList<Entry>& files = l->files;
        QList<bool> matched(files.size(), false);
        const QSet<QString> subfolders(l->subfolders.begin(), l->subfolders.end());
        const QByteArray prefix = QString(dir + '/').toUtf8();
        const QString past = dir + '0';  // '0' follows '/'
        QByteArray from = prefix;
        for (bool more = true; more;) {
            more = false;
            rows.bind({QString::fromUtf8(from), past});
            while (rows.step()) {
                const QByteArrayView path = rows.utf8(0), name = path.sliced(prefix.size());
                if (const qsizetype slash = name.indexOf('/'); slash >= 0) {
                    if (subfolders.contains(QString::fromUtf8(name.first(slash)))) {
                        from = prefix + name.first(slash).toByteArray() + '0';
                        more = true;
                        break;
                    }
                    goneRow(path);
                    continue;
                }
                const auto at = std::lower_bound(files.begin(), files.end(), name, [&](const Entry& e, QByteArrayView n) { return nameOrder(e.name, n); });
                if (at == files.end() || QByteArrayView(at->name) != name) {
                    goneRow(path);
                    continue;
                }
                matched[at - files.begin()] = true;
                if (rows.integer(1) == at->at.size && rows.integer(2) == at->at.mtime) {
                    ++report.filesUnchanged;
                    continue;
                }
                const QString p = QString::fromUtf8(path);
                changed << p;
                disk.insert(p, at->at);
            }
        }
        for (qsizetype i = 0; i < files.size(); ++i)
            if (!matched[i]) {
                const QString p = dir + '/' + QString::fromUtf8(files[i].name);
                fresh << p;
                disk.insert(p, files[i].at);
            }
    }
    for (const QString& dir : std::as_const(vanished)) {
        rows.bind({dir + '/', dir + '0'});
        while (rows.step()) goneRow(rows.utf8(0));
    }
    // A folder that went may be told of twice: by its own name and by its parent's listing.
    gonePaths.removeDuplicates();
    if (batchSize_ == 0) ScanClaim::leaveClaimed(index_->path(), fresh, changed);
    if (fresh.isEmpty() && changed.isEmpty() && gonePaths.isEmpty() && journals_->stale().isEmpty()) {
        if (watcher_) watcher_->remember(listedNow);
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
    const int seen = filesSeen;
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
            // A folder whose changes didn't reach the index is read again by the next scan.
            if (watcher_) watcher_->forget();
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
    // A stopped scan left files unread in folders it listed: the next one lists them again.
    if (watcher_ && report.cancelled) watcher_->forget();
    else if (watcher_) watcher_->remember(listedNow);
    lastScan_ = report;
    toldVersion_ = dataVersion();
    emit libraryDidChange();
    return report;
}

}  // namespace library
