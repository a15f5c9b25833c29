// SPDX-License-Identifier: GPL-3.0-or-later
// Assets, fetch results and resources: the plain values the library answers with.
#include "Library.h"
#include "Rows.h"
#include "Sidecar.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QStorageInfo>
#include <algorithm>
#include <dirent.h>
#include <strings.h>
#include <sys/stat.h>

namespace library {

namespace {

// File systems whose files stand for ones kept off the device.
bool isRemoteFileSystem(const QByteArray& type) {
    static const QList<QByteArray> remote{"nfs", "nfs4", "cifs", "smb3", "smbfs", "sshfs", "9p", "afs", "davfs"};
    return type.startsWith("fuse") || remote.contains(type);
}

}  // namespace

bool under(const QString& path, const QString& folder) {
    return path.startsWith(folder) && (path.size() == folder.size() || path.at(folder.size()) == '/');
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

namespace {
QVariant opt(const auto& value) { return value ? QVariant(*value) : QVariant(); }
}  // namespace

QVariantList fileValues(const QString& path, const QString& asset, qint64 size, qint64 mtime, const QString& head,
                        const FileFacts& f) {
    return {path, asset, size, mtime, head, int(f.kind), int(f.readable), opt(f.date), opt(f.offset),
            opt(f.latitude), opt(f.longitude), opt(f.altitude), f.width, f.height, f.duration, f.subtypes,
            int(f.selfie), f.burst, f.contentIdentifier};
}

const char insertFile[] =
    "INSERT OR REPLACE INTO files(path, asset, size, mtime, head, kind, readable, date, offset, lat, lon, alt, "
    "width, height, duration, subtypes, selfie, burst, content_id) VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)";

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

QString SidecarLookup::of(const QString& photoPath) {
    const QString folder = folderOf(photoPath);
    auto names = folders_.find(folder);
    if (names == folders_.end()) {
        // Listed with readdir: a QDir listing with a name filter costs a tenth of loading a large
        // library, one folder at a time. Visible files of any case of .xmp, as QDir's would be.
        QSet<QString> found;
        if (DIR* d = opendir(QFile::encodeName(folder).constData())) {
            while (const dirent* e = readdir(d)) {
                const size_t length = strlen(e->d_name);
                if (e->d_name[0] == '.' || length < 4 || strcasecmp(e->d_name + length - 4, ".xmp") != 0) continue;
                struct stat st {};
                if (fstatat(dirfd(d), e->d_name, &st, 0) == 0 && S_ISREG(st.st_mode)) found.insert(QFile::decodeName(e->d_name));
            }
            closedir(d);
        }
        names = folders_.insert(folder, found);
    }
    if (names->isEmpty()) return {};
    for (const QString& candidate : imageio::sidecarCandidates(photoPath))
        if (names->contains(fileNameOf(candidate))) return candidate;
    return {};
}

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

FetchResult::FetchResult(const QList<Asset>& assets) {
    assets_.reserve(assets.size());
    for (const Asset& a : assets) assets_ << std::make_shared<Asset>(a);
}

FetchResult::Items::operator QList<Asset>() const {
    QList<Asset> copy;
    copy.reserve(items_.size());
    for (const Item& a : items_) copy << *a;
    return copy;
}

std::optional<qsizetype> FetchResult::indexOf(const QString& localIdentifier) const {
    for (qsizetype i = 0; i < assets_.size(); ++i)
        if (assets_[i]->localIdentifier == localIdentifier) return i;
    return std::nullopt;
}

bool FetchResult::operator==(const FetchResult& other) const {
    if (assets_.size() != other.assets_.size()) return false;
    // A kept result handed out again shares its items: nothing to compare.
    if (assets_.constData() == other.assets_.constData()) return true;
    for (qsizetype i = 0; i < assets_.size(); ++i)
        if (assets_[i]->localIdentifier != other.assets_[i]->localIdentifier || assets_[i]->version != other.assets_[i]->version)
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

}  // namespace library
