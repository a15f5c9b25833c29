// SPDX-License-Identifier: GPL-3.0-or-later
#include "Library.h"

#include "FileFacts.h"
#include "FolderWatcher.h"
#include "Index.h"
#include "Journal.h"
#include "Log.h"
#include "Settings.h"
#include "Sidecar.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QProcessEnvironment>
#include <QSet>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTimeZone>
#include <QUuid>
#include <QtConcurrent/QtConcurrentMap>
#include <algorithm>
#include <sqlite3.h>
#include <utility>
#include <vector>

namespace library {

namespace {

struct FileRow {
    QString path, asset, head, contentId, burst;
    qint64 size = 0, mtime = 0, subtypes = 0;
    FileKind kind = FileKind::image;
    bool readable = false, selfie = false;
    std::optional<qint64> date;
    std::optional<int> offset;
    std::optional<double> lat, lon, alt;
    int width = 0, height = 0;
    double duration = 0;
};

struct AssetRow {
    bool favorite = false, hidden = false;
    qint64 added = 0, version = 0;
    std::optional<qint64> userDate;
    std::optional<int> userOffset;
    std::optional<double> userLat, userLon;
    QString editOriginal, editAdjustment;
};

// Paths in the index are absolute and clean: their parts are found without QFileInfo, which
// costs an allocation and a parse per call.
QString folderOf(const QString& path) { return path.left(path.lastIndexOf('/')); }
QString fileNameOf(const QString& path) { return path.mid(path.lastIndexOf('/') + 1); }

bool under(const QString& path, const QString& folder) {
    return path.startsWith(folder) && (path.size() == folder.size() || path.at(folder.size()) == '/');
}

// File systems whose files stand for ones kept off the device.
bool isRemoteFileSystem(const QByteArray& type) {
    static const QList<QByteArray> remote{"nfs", "nfs4", "cifs", "smb3", "smbfs", "sshfs", "9p", "afs", "davfs"};
    return type.startsWith("fuse") || remote.contains(type);
}

// The mounted volumes, read once per fetch: one look at the mount table, not one per folder.
bool isOnRemoteVolume(const QString& dir) {
    thread_local QList<QStorageInfo> volumes;
    thread_local qint64 readAt = 0;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    if (now - readAt > 1000) {
        volumes = QStorageInfo::mountedVolumes();
        readAt = now;
    }
    const QStorageInfo* best = nullptr;
    for (const QStorageInfo& v : volumes)
        if (under(dir, v.rootPath()) || v.rootPath() == "/")
            if (!best || v.rootPath().size() > best->rootPath().size()) best = &v;
    return best && isRemoteFileSystem(best->fileSystemType());
}

QDateTime toDateTime(qint64 ms, std::optional<int> offset, const QTimeZone& local) {
    // A fixed offset when the file gives one. Otherwise the system's zone, made once per load:
    // Qt::LocalTime goes through mktime, which looks at /etc/localtime on every call.
    return offset ? QDateTime::fromMSecsSinceEpoch(ms, Qt::OffsetFromUTC, *offset) : QDateTime::fromMSecsSinceEpoch(ms, local);
}

const char selectFiles[] =
    "SELECT path, asset, size, mtime, head, kind, readable, date, offset, lat, lon, alt, width, height, duration, "
    "subtypes, selfie, burst, content_id FROM files";

FileRow fileRow(const Statement& s) {
    FileRow r;
    r.path = s.text(0);
    r.asset = s.text(1);
    r.size = s.integer(2);
    r.mtime = s.integer(3);
    r.head = s.text(4);
    r.kind = FileKind(s.integer(5));
    r.readable = s.integer(6) != 0;
    if (!s.isNull(7)) r.date = s.integer(7);
    if (!s.isNull(8)) r.offset = int(s.integer(8));
    if (!s.isNull(9)) r.lat = s.real(9);
    if (!s.isNull(10)) r.lon = s.real(10);
    if (!s.isNull(11)) r.alt = s.real(11);
    r.width = int(s.integer(12));
    r.height = int(s.integer(13));
    r.duration = s.real(14);
    r.subtypes = s.integer(15);
    r.selfie = s.integer(16) != 0;
    r.burst = s.text(17);
    r.contentId = s.text(18);
    return r;
}

QVariant opt(const auto& value) { return value ? QVariant(*value) : QVariant(); }

QVariantList fileValues(const QString& path, const QString& asset, qint64 size, qint64 mtime, const QString& head,
                        const FileFacts& f) {
    return {path, asset, size, mtime, head, int(f.kind), int(f.readable), opt(f.date), opt(f.offset),
            opt(f.latitude), opt(f.longitude), opt(f.altitude), f.width, f.height, f.duration, f.subtypes,
            int(f.selfie), f.burst, f.contentIdentifier};
}

const char insertFile[] =
    "INSERT OR REPLACE INTO files(path, asset, size, mtime, head, kind, readable, date, offset, lat, lon, alt, "
    "width, height, duration, subtypes, selfie, burst, content_id) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";

// The sidecars of a folder's photos, from one listing of each folder.
class SidecarLookup {
public:
    // The sidecar of `photoPath`, or empty.
    QString of(const QString& photoPath) {
        auto names = folders_.find(folderOf(photoPath));
        if (names == folders_.end()) {
            QSet<QString> found;
            for (const QString& n : QDir(folderOf(photoPath)).entryList({QStringLiteral("*.xmp")}, QDir::Files)) found.insert(n);
            names = folders_.insert(folderOf(photoPath), found);
        }
        if (names->isEmpty()) return {};
        for (const QString& candidate : imageio::sidecarCandidates(photoPath))
            if (names->contains(fileNameOf(candidate))) return candidate;
        return {};
    }

private:
    QHash<QString, QSet<QString>> folders_;
};

// Turns the rows of one asset into the asset the platform would show.
// `date` receives the creation date in milliseconds, the key fetches sort on.
Asset makeAsset(const QString& id, const AssetRow& a, QList<const FileRow*> files,
                QHash<QString, bool>& remoteFolders, SidecarLookup& sidecars, const QTimeZone& local, qint64* date) {
    // The main file first: a picture before a raw file before a movie, then by name.
    std::sort(files.begin(), files.end(), [](const FileRow* x, const FileRow* y) {
        auto rank = [](FileKind k) { return k == FileKind::image ? 0 : k == FileKind::raw ? 1 : 2; };
        return rank(x->kind) != rank(y->kind) ? rank(x->kind) < rank(y->kind) : x->path < y->path;
    });
    const FileRow& main = *files.first();
    Asset asset;
    asset.localIdentifier = id;
    asset.mediaType = main.kind == FileKind::video ? MediaType::video : MediaType::image;
    asset.holdsRaw = std::any_of(files.begin(), files.end(), [](const FileRow* f) { return f->kind == FileKind::raw; });
    asset.mediaSubtypes = main.subtypes;
    asset.folder = folderOf(main.path);
    asset.modificationDate = QDateTime::fromMSecsSinceEpoch(main.mtime, Qt::UTC);
    if (a.userDate) asset.creationDate = toDateTime(*a.userDate, a.userOffset, local);
    else if (main.date) asset.creationDate = toDateTime(*main.date, main.offset, local);
    else asset.creationDate = toDateTime(main.mtime, std::nullopt, local);
    *date = a.userDate ? *a.userDate : main.date ? *main.date : main.mtime;
    if (a.userLat && a.userLon) asset.location = Location{*a.userLat, *a.userLon, std::nullopt};
    else if (main.lat && main.lon) asset.location = Location{*main.lat, *main.lon, main.alt};
    asset.pixelWidth = main.width;
    asset.pixelHeight = main.height;
    asset.duration = main.duration;
    asset.favorite = a.favorite;
    asset.hidden = a.hidden;
    asset.selfie = main.selfie;
    asset.burstIdentifier = main.burst;
    asset.addedDate = QDateTime::fromMSecsSinceEpoch(a.added, Qt::UTC);
    asset.version = a.version;

    auto remote = [&](const QString& path) {
        const QString dir = folderOf(path);
        auto it = remoteFolders.find(dir);
        if (it == remoteFolders.end()) it = remoteFolders.insert(dir, isOnRemoteVolume(dir));
        return *it;
    };
    auto resource = [&](ResourceType type, const QString& path, qint64 size, const QString& name = {}) {
        asset.resources << Resource{type, name.isEmpty() ? fileNameOf(path) : name, path, size, !remote(path)};
    };
    const bool isVideo = asset.mediaType == MediaType::video;
    if (!a.editOriginal.isEmpty()) {
        // The name the item had before the edit: the original's copy is named after it.
        resource(isVideo ? ResourceType::video : ResourceType::photo, a.editOriginal, QFileInfo(a.editOriginal).size());
        resource(isVideo ? ResourceType::fullSizeVideo : ResourceType::fullSizePhoto, main.path, main.size);
        resource(ResourceType::adjustmentData, a.editAdjustment, QFileInfo(a.editAdjustment).size());
    } else {
        resource(isVideo ? ResourceType::video : ResourceType::photo, main.path, main.size);
    }
    for (qsizetype i = 1; i < files.size(); ++i) {
        const FileRow& f = *files[i];
        if (f.kind == FileKind::video && !isVideo) {
            resource(ResourceType::pairedVideo, f.path, f.size);
            asset.mediaSubtypes |= Subtype::photoLive;
        } else if (f.kind != FileKind::video) {
            resource(ResourceType::alternatePhoto, f.path, f.size);
        }
    }
    // A sidecar belongs to its photo; a raw file and its JPEG may share one NAME.xmp.
    QStringList sidecarPaths;
    for (const FileRow* f : files)
        if (const QString s = f->kind == FileKind::video ? QString() : sidecars.of(f->path); !s.isEmpty() && !sidecarPaths.contains(s))
            sidecarPaths << s;
    for (const QString& s : sidecarPaths) resource(ResourceType::xmpSidecar, s, QFileInfo(s).size());
    return asset;
}

}  // namespace

// ---- Asset and fetch result ----

bool Asset::canPerformEditOperation(int operation) const {
    // Content edits need a photo file we can rewrite; marks and deletion work on anything.
    if (operation != 1) return operation == 2 || operation == 3;
    if (mediaType != MediaType::image || resources.isEmpty()) return false;
    return QFileInfo(mainPath()).isWritable() && QFileInfo(folder).isWritable();
}

bool Asset::isEdited() const {
    return std::any_of(resources.begin(), resources.end(), [](const Resource& r) { return r.type == ResourceType::adjustmentData; });
}

QString Asset::mainPath() const {
    for (const auto& r : resources)
        if (r.type == ResourceType::fullSizePhoto || r.type == ResourceType::fullSizeVideo) return r.path;
    return resources.isEmpty() ? QString() : resources.first().path;
}

std::optional<qsizetype> FetchResult::indexOf(const QString& localIdentifier) const {
    for (qsizetype i = 0; i < assets_.size(); ++i)
        if (assets_[i].localIdentifier == localIdentifier) return i;
    return std::nullopt;
}

bool FetchResult::operator==(const FetchResult& other) const {
    if (assets_.size() != other.assets_.size()) return false;
    for (qsizetype i = 0; i < assets_.size(); ++i)
        if (assets_[i].localIdentifier != other.assets_[i].localIdentifier || assets_[i].version != other.assets_[i].version)
            return false;
    return true;
}

QString resourceTypeText(ResourceType type) { return resourceTypeText(int(type)); }

QString resourceTypeText(int rawValue) {
    switch (rawValue) {
    case 1: return QStringLiteral("Original Photo");
    case 2: return QStringLiteral("Original Video");
    case 3: return QStringLiteral("Original Audio");
    case 4: return QStringLiteral("Alternate Photo");
    case 5: return QStringLiteral("Actual Photo");
    case 6: return QStringLiteral("Actual Video");
    case 7: return QStringLiteral("Adjustment Data");
    case 8: return QStringLiteral("Adjustment Base Photo");
    case 9: return QStringLiteral("Original Live Photo");
    case 10: return QStringLiteral("Actual Live Photo");
    case 11: return QStringLiteral("Adjustment Base Live Photo");
    case 12: return QStringLiteral("Adjustment Base Video");
    case 19: return QStringLiteral("proxy");
    case 100: return QStringLiteral("XMP Sidecar");
    default: return QStringLiteral("Unknown");
    }
}

// ---- Library ----

QStringList Library::defaultFolders() {
    const QString env = qEnvironmentVariable("TESSORIN_LIBRARY");
    if (!env.isEmpty()) return env.split(':', Qt::SkipEmptyParts);
    const QStringList set = Settings::value(QStringLiteral("libraryFolders")).toStringList();
    if (!set.isEmpty()) return set;
    return {QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)};
}

QString Library::defaultDatabasePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Tessorin/library.sqlite");
}

QString Library::applicationAlbumTitle() { return QStringLiteral(TESSORIN_APP_NAME); }

Library::Library(QStringList folders, QString databasePath, QObject* parent) : QObject(parent) {
    for (const QString& f : folders) folders_ << QDir::cleanPath(QFileInfo(f).absoluteFilePath());
    index_ = std::make_unique<Index>(databasePath);
    journals_ = std::make_unique<Journals>(folders_);
    journals_->addSalvaged(index_->salvaged());
    if (index_->isOpen()) toldVersion_ = dataVersion();
}

Library::~Library() = default;

bool Library::isOpen() const { return index_->isOpen(); }
QString Library::openError() const { return index_->error(); }

bool Library::ensureOpen(QString* error) const {
    if (index_->isOpen()) return true;
    if (error) *error = index_->error();
    return false;
}

ScanReport Library::scan() { return scan({}, folders_); }

ScanReport Library::scan(const QStringList& shallow, const QStringList& deep) {
    ScanReport report;
    if (!ensureOpen(nullptr)) {
        report.indexError = index_->error();
        report.problems << index_->error();
        return lastScan_ = report;
    }
    journals_->check(index_->db());
    // What is on disk now. Folders we can't read keep their files in the index: a missing
    // disk or a locked folder must not cost the user's marks.
    struct OnDisk { qint64 size, mtime; };
    QHash<QString, OnDisk> disk;
    QHash<QString, qint64> sidecarTimes;  // the XMP sidecars seen, by path
    QStringList unreachable;
    auto isRoot = [&](const QString& dir) { return folders_.contains(dir); };
    std::function<void(const QString&, bool)> walk = [&](const QString& dir, bool into) {
        QDir d(dir);
        const QFileInfo info(dir);
        if (!info.exists() && !isRoot(dir)) return;  // a subfolder that went: its files went too
        if (!info.isDir() || !info.isReadable() || !info.isExecutable()) {
            unreachable << dir;
            report.problems << QStringLiteral("The library folder %1 can't be read").arg(dir);
            return;
        }
        // Hidden entries (our own folder of originals among them) aren't part of the library.
        const auto filter = (into ? QDir::Dirs : QDir::Filter(0)) | QDir::Files | QDir::NoDotAndDotDot;
        for (const QFileInfo& e : d.entryInfoList(filter, QDir::Name)) {
            if (e.isDir()) walk(e.absoluteFilePath(), true);
            else if (hasMediaName(e.fileName())) disk.insert(e.absoluteFilePath(), {e.size(), e.lastModified().toMSecsSinceEpoch()});
            else if (e.suffix().compare(QLatin1String("xmp"), Qt::CaseInsensitive) == 0)
                sidecarTimes.insert(e.absoluteFilePath(), e.lastModified().toMSecsSinceEpoch());
        }
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

    QHash<QString, FileRow> known;
    {
        Statement s(index_->db(), selectFiles);
        while (s.step()) {
            FileRow r = fileRow(s);
            known.insert(r.path, r);
        }
    }
    QStringList fresh, changed;
    for (auto it = disk.cbegin(); it != disk.cend(); ++it) {
        auto k = known.constFind(it.key());
        if (k == known.cend()) fresh << it.key();
        else if (k->size != it->size || k->mtime != it->mtime) changed << it.key();
        else ++report.filesUnchanged;
    }
    QList<FileRow> gone;
    for (const FileRow& r : std::as_const(known))
        if (!disk.contains(r.path) && reachable(r.path)) gone << r;
    if (fresh.isEmpty() && changed.isEmpty() && gone.isEmpty() && journals_->stale().isEmpty()) {
        // Another Library on this index (a save's worker has its own) may have brought it up to
        // date already: its writes are still news to this one's observers.
        const qint64 told = std::exchange(toldVersion_, dataVersion());
        lastScan_ = report;
        if (told != toldVersion_) emit libraryDidChange();
        return report;
    }
    std::sort(fresh.begin(), fresh.end());

    // The reading is done before the transaction, so the database is held only for the writes.
    // Files are read on worker threads, one file each; matching them up stays here, in order.
    struct Read { QString path, head; FileFacts facts; };
    QList<Read> reads;
    QHash<QString, QString> moved;  // new path to the asset it keeps
    QSet<QString> goneTaken;
    const QStringList freshHeads = QtConcurrent::blockingMapped(fresh, [](const QString& p) { return headHash(p); });
    for (qsizetype i = 0; i < fresh.size(); ++i) {
        const QString& path = fresh[i];
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
    QtConcurrent::blockingMap(reads, [](Read& r) {
        if (r.head.isNull()) r.head = headHash(r.path);
        r.facts = readFileFacts(r.path);
    });
    for (qsizetype i = 0; i < freshReads; ++i)
        if (!reads[i].facts.readable)
            report.problems << QStringLiteral("%1 couldn't be read; kept with what the file system knows").arg(reads[i].path);

    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    QStringList paths = moved.keys();
    for (const FileRow& g : std::as_const(gone)) paths << g.path;
    for (const Read& r : std::as_const(reads)) paths << r.path;
    const QSet<QString> touched = journals_->rootsOf(paths);
    bool ok = index_->transaction([&] {
        sqlite3* db = index_->db();
        Statement bump(db, "UPDATE assets SET version = version + 1 WHERE id = ?");
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
        // Partners for grouping: same folder and base name, or the same content identifier.
        QHash<QString, QString> byName, byContent;
        QHash<QString, QSet<int>> kindsOf;
        auto nameKey = [](const QString& path) {
            QFileInfo fi(path);
            return fi.absolutePath() + '/' + fi.completeBaseName().toLower();
        };
        for (const FileRow& r : std::as_const(known)) {
            byName.insert(nameKey(r.path), r.asset);
            if (!r.contentId.isEmpty()) byContent.insert(r.contentId, r.asset);
            kindsOf[r.asset].insert(int(r.kind));
        }
        Statement insert(db, insertFile);
        Statement newAsset(db, "INSERT INTO assets(id, added) VALUES(?, ?)");
        for (const Read& r : reads) {
            const OnDisk od = disk.value(r.path);
            QString asset = known.contains(r.path) ? known.value(r.path).asset : QString();
            if (asset.isEmpty()) asset = journals_->take(db, r.path, od.size, r.head, now).value_or(QString());
            if (asset.isEmpty()) {
                auto fits = [&](const QString& candidate) {
                    return !candidate.isEmpty() && !kindsOf.value(candidate).contains(int(r.facts.kind));
                };
                QString partner = byContent.value(r.facts.contentIdentifier);
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
            kindsOf[asset].insert(int(r.facts.kind));
            ++report.filesRead;
        }
        journals_->write(db, touched, reachable);
        return true;
    });
    if (ok) journals_->committed(reachable);
    else journals_->failed(touched);
    if (!ok) {
        report.indexError = QStringLiteral("The library's index couldn't be updated: %1").arg(index_->lastError());
        report.problems << report.indexError;
        Log::error(QStringLiteral("🗂 %1").arg(report.indexError));
        return lastScan_ = report;
    }
    lastScan_ = report;
    toldVersion_ = dataVersion();
    emit libraryDidChange();
    return report;
}

namespace {

// Every asset of the library's folders, loaded in two statements, with their creation dates
// in milliseconds.
QList<Asset> loadAll(Index& index, const QStringList& roots, QList<qint64>& dates) {
    dates.clear();
    const QTimeZone local = QTimeZone::systemTimeZone();
    QHash<QString, AssetRow> rows;
    {
        Statement s(index.db(),
                    "SELECT id, favorite, hidden, added, version, user_date, user_offset, user_lat, user_lon, "
                    "edit_original, edit_adjustment FROM assets");
        while (s.step()) {
            AssetRow a;
            a.favorite = s.integer(1) != 0;
            a.hidden = s.integer(2) != 0;
            a.added = s.integer(3);
            a.version = s.integer(4);
            if (!s.isNull(5)) a.userDate = s.integer(5);
            if (!s.isNull(6)) a.userOffset = int(s.integer(6));
            if (!s.isNull(7)) a.userLat = s.real(7);
            if (!s.isNull(8)) a.userLon = s.real(8);
            a.editOriginal = s.text(9);
            a.editAdjustment = s.text(10);
            rows.insert(s.text(0), a);
        }
    }
    QList<FileRow> files;
    {
        // The same columns less those only a scan needs (the hash of the first bytes, the
        // content identifier): fewer strings to make.
        Statement s(index.db(),
                    "SELECT path, asset, size, mtime, NULL, kind, readable, date, offset, lat, lon, alt, width, height, "
                    "duration, subtypes, selfie, burst, NULL FROM files ORDER BY asset");
        while (s.step()) files << fileRow(s);
    }
    QList<Asset> assets;
    QHash<QString, bool> remoteFolders;
    SidecarLookup sidecars;
    QList<const FileRow*> group;
    auto flush = [&] {
        if (group.isEmpty()) return;
        const QString id = group.first()->asset;
        const bool inRoots = std::any_of(roots.begin(), roots.end(), [&](const QString& r) { return under(group.first()->path, r); });
        auto row = rows.constFind(id);
        if (inRoots && row != rows.cend()) {
            qint64 date = 0;
            assets << makeAsset(id, *row, group, remoteFolders, sidecars, local, &date);
            dates << date;
        }
        group.clear();
    };
    for (const FileRow& f : files) {
        if (!group.isEmpty() && group.first()->asset != f.asset) flush();
        group << &f;
    }
    flush();
    // The first of each burst by date stands for it.
    QHash<QString, qsizetype> firstOfBurst;
    for (qsizetype i = 0; i < assets.size(); ++i) {
        const Asset& a = assets[i];
        if (a.burstIdentifier.isEmpty()) continue;
        auto it = firstOfBurst.find(a.burstIdentifier);
        if (it == firstOfBurst.end() || dates[i] < dates[*it]) firstOfBurst[a.burstIdentifier] = i;
    }
    for (qsizetype i : std::as_const(firstOfBurst)) assets[i].representsBurst = true;
    return assets;
}

// Which assets a smart album holds.
bool inSmartAlbum(int subtype, const Asset& a, qint64 recentSince) {
    switch (subtype) {
    case SmartAlbum::panoramas: return a.mediaSubtypes & Subtype::photoPanorama;
    case SmartAlbum::videos: return a.mediaType == MediaType::video;
    case SmartAlbum::favorites: return a.favorite;
    case SmartAlbum::timelapses: return a.mediaSubtypes & Subtype::videoTimelapse;
    case SmartAlbum::allHidden: return a.hidden;
    case SmartAlbum::recentlyAdded: return a.addedDate.toMSecsSinceEpoch() >= recentSince;
    case SmartAlbum::bursts: return !a.burstIdentifier.isEmpty();
    case SmartAlbum::slomoVideos: return a.mediaSubtypes & Subtype::videoHighFrameRate;
    case SmartAlbum::userLibrary: return true;
    case SmartAlbum::selfPortraits: return a.selfie;
    case SmartAlbum::screenshots: return a.mediaSubtypes & Subtype::photoScreenshot;
    case SmartAlbum::depthEffect: return a.mediaSubtypes & Subtype::photoDepthEffect;
    case SmartAlbum::livePhotos: return a.mediaSubtypes & Subtype::photoLive;
    case SmartAlbum::raw: return a.holdsRaw;
    default: return false;
    }
}

struct SmartAlbumName { int subtype; const char* title; };
const SmartAlbumName smartAlbumNames[] = {
    {SmartAlbum::userLibrary, "Recents"}, {SmartAlbum::favorites, "Favorites"}, {SmartAlbum::videos, "Videos"},
    {SmartAlbum::livePhotos, "Live Photos"}, {SmartAlbum::depthEffect, "Portrait"}, {SmartAlbum::panoramas, "Panoramas"},
    {SmartAlbum::screenshots, "Screenshots"}, {SmartAlbum::selfPortraits, "Selfies"}, {SmartAlbum::bursts, "Bursts"},
    {SmartAlbum::slomoVideos, "Slo-mo"}, {SmartAlbum::timelapses, "Time-lapse"}, {SmartAlbum::raw, "RAW"},
    {SmartAlbum::recentlyAdded, "Recently Added"}, {SmartAlbum::allHidden, "Hidden"},
};

// Recently added: the last thirty days.
qint64 recentSince() { return QDateTime::currentMSecsSinceEpoch() - 30LL * 24 * 3600 * 1000; }

}  // namespace

FetchResult Library::fetchAssets(const FetchOptions& options) const { return fetchAssets(QString(), options); }

FetchResult Library::fetchAssets(const QString& collectionIdentifier, const FetchOptions& options) const {
    FetchResult result;
    result.query_.options = options;
    result.query_.album = collectionIdentifier;
    return refetch(result);
}

FetchResult Library::fetchAssets(const QStringList& localIdentifiers) const {
    FetchResult result;
    result.query_.localIdentifiers = localIdentifiers;
    result.query_.options.includeHidden = true;
    if (localIdentifiers.isEmpty()) return result;
    return refetch(result);
}

const QList<Asset>& Library::allAssets() const {
    // Loading and grouping every row costs far more than a fetch needs: the assets are kept
    // until the index changes, by this connection (its change count) or another (data_version).
    const qint64 dataVersion = this->dataVersion();
    const qint64 changes = sqlite3_total_changes64(index_->db());
    if (dataVersion != cache_.dataVersion || changes != cache_.changes || dataVersion < 0) {
        cache_.assets = loadAll(*index_, folders_, cache_.dates);
        cache_.dataVersion = dataVersion;
        cache_.changes = changes;
    }
    return cache_.assets;
}

qint64 Library::dataVersion() const {
    // Moves only with the commits of other connections, never with this one's own.
    Statement version(index_->db(), "PRAGMA data_version");
    return version.step() ? version.integer(0) : -1;
}

FetchResult Library::refetch(const FetchResult& before) const {
    FetchResult result;
    result.query_ = before.query_;
    if (!index_->isOpen()) return result;
    const auto& q = result.query_;
    const QString& album = q.album;
    int smart = album.startsWith(QLatin1String("smart:")) ? album.mid(6).toInt() : 0;
    const QString folder = album.startsWith(QLatin1String("folder:")) ? album.mid(7) : QString();
    const qint64 recent = recentSince();
    const QSet<QString> ids(q.localIdentifiers.begin(), q.localIdentifiers.end());
    const QList<Asset>& all = allAssets();
    // Sorted on keys computed once per load: comparing QDateTime values converts them at
    // every step.
    std::vector<std::pair<qint64, qsizetype>> keys;
    keys.reserve(size_t(all.size()));
    for (qsizetype i = 0; i < all.size(); ++i) {
        const Asset& a = all[i];
        if (!ids.isEmpty() && !ids.contains(a.localIdentifier)) continue;
        // The hidden album shows what every other fetch leaves out.
        if (a.hidden && !q.options.includeHidden && smart != SmartAlbum::allHidden) continue;
        if (q.options.mediaType && a.mediaType != *q.options.mediaType) continue;
        if (smart && !inSmartAlbum(smart, a, recent)) continue;
        if (!folder.isEmpty() && a.folder != folder) continue;
        keys.emplace_back(cache_.dates[i], i);
    }
    const bool ascending = q.options.sort == SortOrder::creationDateAscending;
    std::sort(keys.begin(), keys.end(), [&](const auto& x, const auto& y) {
        if (x.first != y.first) return ascending ? x.first < y.first : y.first < x.first;
        return all[x.second].localIdentifier < all[y.second].localIdentifier;
    });
    result.assets_.reserve(qsizetype(keys.size()));
    for (const auto& k : keys) result.assets_.append(all[k.second]);
    return result;
}

std::optional<Asset> Library::asset(const QString& localIdentifier) const {
    FetchResult r = fetchAssets(QStringList{localIdentifier});
    if (r.isEmpty()) return std::nullopt;
    return r.objectAt(0);
}

std::optional<Asset> Library::assetForPath(const QString& path) const {
    if (!index_->isOpen()) return std::nullopt;
    const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    Statement s(index_->db(), "SELECT asset FROM files WHERE path = ? UNION SELECT id FROM assets WHERE edit_original = ?");
    s.bind({clean, clean});
    if (!s.step()) return std::nullopt;
    return asset(s.text(0));
}

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

QList<Collection> Library::smartAlbums() const {
    QList<Collection> list;
    if (!index_->isOpen()) return list;
    const QList<Asset>& all = allAssets();
    const qint64 recent = recentSince();
    for (const auto& s : smartAlbumNames) {
        const bool any = std::any_of(all.begin(), all.end(), [&](const Asset& a) {
            return (!a.hidden || s.subtype == SmartAlbum::allHidden) && inSmartAlbum(s.subtype, a, recent);
        });
        if (any) list << Collection{QStringLiteral("smart:%1").arg(s.subtype), QString::fromLatin1(s.title), CollectionType::smartAlbum, s.subtype, {}};
    }
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

namespace library {

void Library::startWatching() {
    if (watcher_) return;
    watcher_ = std::make_unique<FolderWatcher>();
    watcher_->watch(folders_);
    connect(watcher_.get(), &FolderWatcher::changed, this, [this](const QStringList& shallow, const QStringList& deep) {
        scan(shallow, deep);
        watcher_->watch(folders_);  // folders made since
    });
}

void Library::stopWatching() { watcher_.reset(); }

}  // namespace library
