// SPDX-License-Identifier: GPL-3.0-or-later
// Fetches: every asset loaded once and kept until the index changes, then filtered and sorted
// per query; smart albums computed from the same assets.
#include "Library.h"

#include "Index.h"
#include "Rows.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QScopeGuard>
#include <QSet>
#include <algorithm>
#include <sqlite3.h>
#include <vector>

namespace library {

namespace {

const char selectAsset[] =
    "SELECT id, favorite, hidden, added, version, user_date, user_offset, user_lat, user_lon, edit_original, "
    "edit_adjustment FROM assets";

AssetRow assetRow(const Statement& s) {
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
    return a;
}

// The same columns as `selectFiles` less those only a scan needs (the hash of the first bytes,
// the content identifier): fewer strings to make.
const QByteArray fetchFiles =
    "SELECT path, asset, size, mtime, NULL, kind, readable, date, offset, lat, lon, alt, width, height, "
    "duration, subtypes, selfie, burst, NULL FROM files ";

// Turns rows into assets, one folder's volume and sidecars looked up once.
class AssetMaker {
public:
    explicit AssetMaker(const QStringList& roots) : roots_(roots), local_(QTimeZone::systemTimeZone()) {}
    // The asset of these files, unless it lies outside the library's folders.
    std::optional<Asset> make(const QString& id, const AssetRow& row, const QList<const FileRow*>& files, qint64* date) {
        const bool inRoots = std::any_of(roots_.begin(), roots_.end(), [&](const QString& r) { return under(files.first()->path, r); });
        if (!inRoots) return std::nullopt;
        Asset a = makeAsset(id, row, files, remoteFolders_, sidecars_, local_, date);
        // One string for the folder of its hundreds of items.
        a.folder = *folders_.insert(a.folder);
        return a;
    }

private:
    const QStringList& roots_;
    QTimeZone local_;
    QHash<QString, bool> remoteFolders_;
    SidecarLookup sidecars_;
    QSet<QString> folders_;
};

// Every asset of the library's folders, loaded in two statements, with their creation dates
// in milliseconds.
QList<FetchResult::Item> loadAll(Index& index, const QStringList& roots, QList<qint64>& dates) {
    dates.clear();
    // Both tables in identifier order, merged as they are read: no row is held longer than
    // its asset takes to make.
    // Both are walked through their indexes, so their pages come in no order: SQLite's own small
    // cache would read most of them from the file again and again. A larger one for the load
    // alone: 16 MB cut the time spent reading at 100,000 items by a third, for 10 MB more held.
    index.exec("PRAGMA cache_size = -16384");
    const auto restore = qScopeGuard([&] { index.exec("PRAGMA cache_size = -2000"); });
    Statement a(index.db(), QByteArray(selectAsset) + " ORDER BY id");
    bool moreAssets = a.step();
    Statement s(index.db(), fetchFiles + "ORDER BY asset");
    QList<FetchResult::Item> assets;
    AssetMaker maker(roots);
    QList<FileRow> group;
    auto flush = [&] {
        if (group.isEmpty()) return;
        const QString id = group.first().asset;
        const QByteArray key = id.toUtf8();
        while (moreAssets && a.utf8(0) < QByteArrayView(key)) moreAssets = a.step();  // items without files
        qint64 date = 0;
        QList<const FileRow*> files;
        for (const FileRow& f : std::as_const(group)) files << &f;
        if (moreAssets && a.utf8(0) == QByteArrayView(key))
            if (auto made = maker.make(id, assetRow(a), files, &date)) {
                assets << std::make_shared<Asset>(std::move(*made));
                dates << date;
            }
        group.clear();
    };
    while (s.step()) {
        FileRow f = fileRow(s);
        if (!group.isEmpty() && group.first().asset != f.asset) flush();
        group << std::move(f);
    }
    flush();
    return assets;
}

// One asset as the index holds it now; nothing when it is gone or outside the library.
std::optional<Asset> loadOne(Index& index, AssetMaker& maker, const QString& id, qint64* date) {
    Statement a(index.db(), QByteArray(selectAsset) + " WHERE id = ?");
    a.bind({id});
    if (!a.step()) return std::nullopt;
    const AssetRow row = assetRow(a);
    Statement f(index.db(), fetchFiles + "WHERE asset = ?");
    f.bind({id});
    QList<FileRow> files;
    while (f.step()) files << fileRow(f);
    if (files.isEmpty()) return std::nullopt;
    QList<const FileRow*> group;
    for (const FileRow& r : files) group << &r;
    return maker.make(id, row, group, date);
}

// The first of each burst by date stands for it (the smaller identifier on the same date).
// Only the bursts in `bursts` are looked at, all when it is empty. The identifiers whose mark
// changed go into `flipped`.
void markBursts(QList<FetchResult::Item>& assets, const QList<qint64>& dates, const QSet<QString>& bursts, QSet<QString>* flipped) {
    QHash<QString, qsizetype> first;
    for (qsizetype i = 0; i < assets.size(); ++i) {
        const Asset& a = *assets[i];
        if (a.burstIdentifier.isEmpty() || (!bursts.isEmpty() && !bursts.contains(a.burstIdentifier))) continue;
        auto it = first.find(a.burstIdentifier);
        if (it == first.end()) first.insert(a.burstIdentifier, i);
        else if (dates[i] < dates[*it] || (dates[i] == dates[*it] && a.localIdentifier < assets[*it]->localIdentifier)) *it = i;
    }
    for (qsizetype i = 0; i < assets.size(); ++i) {
        const Asset& a = *assets[i];
        if (a.burstIdentifier.isEmpty() || !first.contains(a.burstIdentifier)) continue;
        const bool represents = first.value(a.burstIdentifier) == i;
        if (represents == a.representsBurst) continue;
        if (flipped) flipped->insert(a.localIdentifier);
        // Results hold the item as it was: the mark goes on a copy.
        auto marked = std::make_shared<Asset>(a);
        marked->representsBurst = represents;
        assets[i] = std::move(marked);
    }
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

qint64 Library::dataVersion() const {
    // Moves only with the commits of other connections, never with this one's own.
    Statement version(index_->db(), "PRAGMA data_version");
    return version.step() ? version.integer(0) : -1;
}

void Library::loadEverything() const {
    Statement last(index_->db(), "SELECT coalesce(max(seq), 0) FROM changes");
    cache_.seq = last.step() ? last.integer(0) : 0;
    cache_.assets = loadAll(*index_, folders_, cache_.dates);
    markBursts(cache_.assets, cache_.dates, {}, nullptr);
    cache_.byId.clear();
    cache_.byId.reserve(cache_.assets.size());
    for (qsizetype i = 0; i < cache_.assets.size(); ++i) cache_.byId.insert(cache_.assets[i]->localIdentifier, i);
    cache_.logFrom = cache_.seq;
    cache_.log.clear();
    cache_.logged = 0;
    cache_.results.clear();
}

const QList<FetchResult::Item>& Library::allAssets() const {
    // Loading and grouping every row costs far more than a fetch needs: the assets are kept
    // until the index changes, by this connection (its change count) or another (data_version),
    // and then only the assets the index's log names are loaded again.
    const qint64 dataVersion = this->dataVersion();
    const qint64 changes = sqlite3_total_changes64(index_->db());
    if (dataVersion == cache_.dataVersion && changes == cache_.changes && dataVersion >= 0) return cache_.assets;
    cache_.dataVersion = dataVersion;
    cache_.changes = changes;
    if (cache_.seq < 0) {
        loadEverything();
        return cache_.assets;
    }
    Statement bounds(index_->db(), "SELECT min(seq), max(seq) FROM changes");
    if (!bounds.step() || bounds.isNull(1) || bounds.integer(1) < cache_.seq || bounds.integer(0) > cache_.seq + 1) {
        // The log was cut short past what we hold, or the index is another one.
        if (bounds.isNull(1) || bounds.integer(1) != cache_.seq) loadEverything();
        return cache_.assets;
    }
    const qint64 upTo = bounds.integer(1);
    if (upTo == cache_.seq) return cache_.assets;
    QSet<QString> touched;
    {
        Statement s(index_->db(), "SELECT DISTINCT asset FROM changes WHERE seq > ? AND seq <= ?");
        s.bind({cache_.seq, upTo});
        while (s.step()) touched.insert(s.text(0));
    }
    // A change of most of the library is loaded whole: one statement beats one per asset.
    if (touched.size() > 1000 && touched.size() > cache_.assets.size() / 8) {
        loadEverything();
        return cache_.assets;
    }
    AssetMaker maker(folders_);
    QSet<QString> bursts;
    for (const QString& id : std::as_const(touched)) {
        qint64 date = 0;
        std::optional<Asset> now = loadOne(*index_, maker, id, &date);
        auto at = cache_.byId.constFind(id);
        if (at != cache_.byId.cend()) {
            const qsizetype i = *at;
            if (!cache_.assets[i]->burstIdentifier.isEmpty()) bursts.insert(cache_.assets[i]->burstIdentifier);
            if (now) {
                cache_.assets[i] = std::make_shared<Asset>(std::move(*now));
                cache_.dates[i] = date;
            } else {
                // The last one takes its place, so nothing else moves.
                const qsizetype last = cache_.assets.size() - 1;
                if (i != last) {
                    cache_.assets[i] = std::move(cache_.assets[last]);
                    cache_.dates[i] = cache_.dates[last];
                    cache_.byId[cache_.assets[i]->localIdentifier] = i;
                }
                cache_.assets.removeLast();
                cache_.dates.removeLast();
                cache_.byId.remove(id);
            }
        } else if (now) {
            cache_.byId.insert(id, cache_.assets.size());
            cache_.assets << std::make_shared<Asset>(std::move(*now));
            cache_.dates << date;
        }
        if (auto i = cache_.byId.constFind(id); i != cache_.byId.cend() && !cache_.assets[*i]->burstIdentifier.isEmpty())
            bursts.insert(cache_.assets[*i]->burstIdentifier);
    }
    if (!bursts.isEmpty()) markBursts(cache_.assets, cache_.dates, bursts, &touched);
    cache_.seq = upTo;
    cache_.logged += touched.size();
    cache_.log.append({upTo, std::move(touched)});
    // The log is kept for results a few changes old; older ones are compared whole.
    while (cache_.logged > 10000 && !cache_.log.isEmpty()) {
        cache_.logged -= cache_.log.first().second.size();
        cache_.logFrom = cache_.log.first().first;
        cache_.log.removeFirst();
    }
    return cache_.assets;
}

std::optional<QSet<QString>> Library::touchedSince(qint64 seq) const {
    if (seq < cache_.logFrom || seq > cache_.seq) return std::nullopt;
    QSet<QString> ids;
    for (const auto& [end, touched] : std::as_const(cache_.log))
        if (end > seq) ids.unite(touched);
    return ids;
}

namespace {

struct Filter {
    const FetchResult::Query& q;
    int smart = 0;
    QString folder;
    qint64 recent = 0;
    QSet<QString> ids;
    explicit Filter(const FetchResult::Query& query) : q(query), recent(recentSince()) {
        if (q.album.startsWith(QLatin1String("smart:"))) smart = q.album.mid(6).toInt();
        if (q.album.startsWith(QLatin1String("folder:"))) folder = q.album.mid(7);
        ids = QSet<QString>(q.localIdentifiers.begin(), q.localIdentifiers.end());
    }
    bool operator()(const Asset& a) const {
        if (!ids.isEmpty() && !ids.contains(a.localIdentifier)) return false;
        // The hidden album shows what every other fetch leaves out.
        if (a.hidden && !q.options.includeHidden && smart != SmartAlbum::allHidden) return false;
        if (q.options.mediaType && a.mediaType != *q.options.mediaType) return false;
        if (smart && !inSmartAlbum(smart, a, recent)) return false;
        if (!folder.isEmpty() && a.folder != folder) return false;
        return true;
    }
};

}  // namespace

namespace {

// Keeps a result as the newest; the oldest go when there are more than eight or they hold more
// than twice the library's items, each item's copy costing some two hundred bytes.
template <typename Cache>
void keepResult(Cache& cache, const FetchResult& result) {
    cache.results.prepend(result);
    qsizetype items = 0;
    for (const FetchResult& r : std::as_const(cache.results)) items += r.count();
    while (cache.results.size() > 1 && (cache.results.size() > 8 || items > 2 * cache.assets.size() + 1000)) {
        items -= cache.results.last().count();
        cache.results.removeLast();
    }
}

}  // namespace

ChangeDetails Library::update(const FetchResult& before) const {
    const QList<FetchResult::Item>& all = allAssets();
    const Filter filter(before.query_);
    // Recently added loses assets with the clock, which no log tells.
    const bool byClock = filter.smart == SmartAlbum::recentlyAdded;
    if (before.seq_ == cache_.seq && !byClock) {
        ChangeDetails same;
        same.fetchResultBeforeChanges = same.fetchResultAfterChanges = before;
        return same;
    }
    FetchResult after;
    after.query_ = before.query_;
    after.seq_ = cache_.seq;
    const std::optional<QSet<QString>> touched = byClock || before.seq_ < 0 ? std::nullopt : touchedSince(before.seq_);
    if (touched) {
        return library::changeDetails(before, after, *touched, [&](const QString& id, qint64* key) -> FetchResult::Item {
            auto i = cache_.byId.constFind(id);
            if (i == cache_.byId.cend() || !filter(*all[*i])) return nullptr;
            *key = cache_.dates[*i];
            return all[*i];
        });
    }
    if (!filter.ids.isEmpty() && filter.ids.size() < all.size() / 16) {
        // A few named ones are looked up, not filtered from all.
        for (const QString& id : std::as_const(before.query_.localIdentifiers))
            if (auto i = cache_.byId.constFind(id); i != cache_.byId.cend() && filter(*all[*i])) after.keys_ << *i;
    } else if (filter.ids.isEmpty() && !filter.folder.isEmpty()) {
        // A folder's items from the index's paths: an album costs its size, not the library's.
        Statement s(index_->db(), "SELECT DISTINCT asset FROM files WHERE path > ? AND path < ?");
        s.bind({filter.folder + '/', filter.folder + '0'});
        while (s.step())
            if (auto i = cache_.byId.constFind(s.text(0)); i != cache_.byId.cend() && filter(*all[*i])) after.keys_ << *i;
    } else {
        for (qsizetype i = 0; i < all.size(); ++i)
            if (filter(*all[i])) after.keys_ << i;
    }
    // Sorted on keys computed once per load: comparing QDateTime values converts them at
    // every step.
    const bool ascending = after.query_.options.sort == SortOrder::creationDateAscending;
    std::sort(after.keys_.begin(), after.keys_.end(), [&](qsizetype x, qsizetype y) {
        const qint64 dx = cache_.dates[x], dy = cache_.dates[y];
        if (dx != dy) return ascending ? dx < dy : dy < dx;
        return all[x]->localIdentifier < all[y]->localIdentifier;
    });
    after.keys_.erase(std::unique(after.keys_.begin(), after.keys_.end()), after.keys_.end());
    after.assets_.reserve(after.keys_.size());
    for (qint64& k : after.keys_) {
        after.assets_.append(all[k]);
        k = cache_.dates[k];
    }
    return before.seq_ < 0 && before.assets_.isEmpty() ? ChangeDetails{before, after}
                                                      : library::changeDetails(before, after);
}

FetchResult Library::refetch(const FetchResult& before) const {
    if (!index_->isOpen()) {
        FetchResult empty;
        empty.query_ = before.query_;
        return empty;
    }
    allAssets();
    // The last queries' results are kept and brought up to date by the change, so fetching
    // the same again costs nothing, and after a change what it touched. A folder's is made
    // from its paths quickly; the album list's counts of every folder would push out the rest.
    const bool keep = before.query_.localIdentifiers.isEmpty() && !before.query_.album.startsWith(QLatin1String("folder:"));
    qsizetype found = -1;
    for (qsizetype i = 0; keep && i < cache_.results.size(); ++i)
        if (cache_.results[i].query_ == before.query_) found = i;
    FetchResult start;
    start.query_ = before.query_;
    if (found >= 0) start = cache_.results.takeAt(found);
    FetchResult result = update(start).fetchResultAfterChanges;
    if (keep) keepResult(cache_, result);
    return result;
}

ChangeDetails Library::changeDetails(const FetchResult& before) const {
    if (!index_->isOpen()) return library::changeDetails(before, refetch(before));
    ChangeDetails details = update(before);
    // Kept as the latest of its query, the next fetch of it costs nothing.
    if (before.query_.localIdentifiers.isEmpty() && !before.query_.album.startsWith(QLatin1String("folder:"))) {
        for (qsizetype i = 0; i < cache_.results.size(); ++i)
            if (cache_.results[i].query_ == before.query_) {
                cache_.results.removeAt(i);
                break;
            }
        keepResult(cache_, details.fetchResultAfterChanges);
    }
    return details;
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

QList<Collection> Library::smartAlbums() const {
    QList<Collection> list;
    if (!index_->isOpen()) return list;
    const QList<FetchResult::Item>& all = allAssets();
    const qint64 recent = recentSince();
    for (const auto& s : smartAlbumNames) {
        const bool any = std::any_of(all.begin(), all.end(), [&](const FetchResult::Item& a) {
            return (!a->hidden || s.subtype == SmartAlbum::allHidden) && inSmartAlbum(s.subtype, *a, recent);
        });
        if (any) list << Collection{QStringLiteral("smart:%1").arg(s.subtype), QString::fromLatin1(s.title), CollectionType::smartAlbum, s.subtype, {}};
    }
    return list;
}

}  // namespace library
