// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The photo library, in place of the platform's one: folders of photos and movies indexed in one
// SQLite database. Files are grouped into assets the way the platform groups them (a photo with
// its paired movie, a raw file with its JPEG, an edit with its original), fetched with sort and
// type options, gathered into collections, and changed through the operations below.
// Knows nothing of the screens or of tags: it answers with plain values.
#include <QDateTime>
#include <QFuture>
#include <QHash>
#include <QList>
#include <QSet>
#include <QObject>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>

namespace library {

// The platform's media types and subtype bits, by value.
enum class MediaType { unknown = 0, image = 1, video = 2, audio = 3 };
namespace Subtype {
inline constexpr qint64 photoPanorama = 1 << 0;
inline constexpr qint64 photoHDR = 1 << 1;
inline constexpr qint64 photoScreenshot = 1 << 2;
inline constexpr qint64 photoLive = 1 << 3;
inline constexpr qint64 photoDepthEffect = 1 << 4;
inline constexpr qint64 videoStreamed = 1 << 16;
inline constexpr qint64 videoHighFrameRate = 1 << 17;
inline constexpr qint64 videoTimelapse = 1 << 18;
}  // namespace Subtype

// The platform's resource types, by value.
enum class ResourceType {
    photo = 1, video = 2, audio = 3, alternatePhoto = 4, fullSizePhoto = 5, fullSizeVideo = 6,
    adjustmentData = 7, adjustmentBasePhoto = 8, pairedVideo = 9, fullSizePairedVideo = 10,
    adjustmentBasePairedVideo = 11, adjustmentBaseVideo = 12, photoProxy = 19,
    xmpSidecar = 100  // ours: the XMP sidecar beside a photo, where other programs keep ratings and edits
};

struct Resource {
    ResourceType type = ResourceType::photo;
    QString originalFilename;
    QString path;  // absolute
    qint64 fileSize = 0;
    // A file on a network or FUSE mount is taken as one not kept on this device.
    bool locallyAvailable = true;
};

struct Location {
    double latitude = 0;
    double longitude = 0;
    std::optional<double> altitude;
};

struct Asset {
    QString localIdentifier;
    MediaType mediaType = MediaType::unknown;
    qint64 mediaSubtypes = 0;
    QDateTime creationDate;  // invalid when neither file nor file system tells
    QDateTime modificationDate;
    std::optional<Location> location;
    int pixelWidth = 0;
    int pixelHeight = 0;
    double duration = 0;  // seconds, movies only
    bool favorite = false;
    bool hidden = false;
    bool selfie = false;
    QString burstIdentifier;
    bool representsBurst = false;
    QDateTime addedDate;
    QString folder;  // absolute path of the folder that holds the main file
    QList<Resource> resources;  // the main resource first
    bool holdsRaw = false;  // one of its files is a camera raw file
    // Grows with every change of the asset, so change details can tell a changed one.
    qint64 version = 0;

    bool canPerformEditOperation(int operation) const;  // 1 content, 2 delete, 3 properties
    bool isEdited() const;
    // The file that shows the asset now: the edit when there is one, otherwise the photo or movie.
    QString mainPath() const;
};

enum class SortOrder { creationDateAscending, creationDateDescending };

struct FetchOptions {
    SortOrder sort = SortOrder::creationDateAscending;
    std::optional<MediaType> mediaType;  // only this type when set
    bool includeHidden = false;
    bool operator==(const FetchOptions&) const = default;
};

struct ChangeDetails;

// A snapshot of a fetch: it stays as it was when the library changes. Its items are shared with
// the library's other results and what it keeps loaded, so a result of a hundred thousand items
// is made without copying one.
class FetchResult {
public:
    using Item = std::shared_ptr<const Asset>;
    FetchResult() = default;
    // Items already at hand, in this order.
    explicit FetchResult(const QList<Asset>& assets);
    qsizetype count() const { return assets_.size(); }
    bool isEmpty() const { return assets_.isEmpty(); }
    const Asset& objectAt(qsizetype index) const { return *assets_.at(index); }
    std::optional<qsizetype> indexOf(const QString& localIdentifier) const;
    bool contains(const QString& localIdentifier) const { return indexOf(localIdentifier).has_value(); }
    // The items in order, for a range-for or the standard algorithms; it keeps them alive itself.
    class Items {
    public:
        class const_iterator {
        public:
            using iterator_category = std::forward_iterator_tag;
            using value_type = Asset;
            using difference_type = qsizetype;
            using pointer = const Asset*;
            using reference = const Asset&;
            const_iterator() = default;
            explicit const_iterator(QList<Item>::const_iterator at) : at_(at) {}
            reference operator*() const { return **at_; }
            pointer operator->() const { return at_->get(); }
            const_iterator& operator++() { ++at_; return *this; }
            const_iterator operator++(int) { const_iterator was = *this; ++at_; return was; }
            bool operator==(const const_iterator&) const = default;
        private:
            QList<Item>::const_iterator at_;
        };
        explicit Items(QList<Item> items) : items_(std::move(items)) {}
        const_iterator begin() const { return const_iterator(items_.cbegin()); }
        const_iterator end() const { return const_iterator(items_.cend()); }
        qsizetype size() const { return items_.size(); }
        operator QList<Asset>() const;  // a copy of each
    private:
        QList<Item> items_;
    };
    Items assets() const { return Items(assets_); }
    // What the fetch asked for, so it can be made again after a change.
    struct Query {
        FetchOptions options;
        QString album;  // collection identifier, or empty for all assets
        QStringList localIdentifiers;  // when non-empty: these assets only
        bool operator==(const Query&) const = default;
    };
    const Query& query() const { return query_; }
    bool operator==(const FetchResult& other) const;

private:
    friend class Library;
    friend ChangeDetails changeDetails(const FetchResult&, const FetchResult&, const QSet<QString>&,
                                       const std::function<Item(const QString&, qint64*)>&);
    QList<Item> assets_;
    QList<qint64> keys_;  // the sort key of each asset (creation date in milliseconds)
    Query query_;
    qint64 seq_ = -1;  // the index's change the result reflects; -1 when unknown
};

// How a fetch result changed: indexes of removed ones in the old result, of inserted and
// changed ones in the new one, and moves of kept ones.
struct ChangeDetails {
    FetchResult fetchResultBeforeChanges;
    FetchResult fetchResultAfterChanges;
    QList<qsizetype> removedIndexes;
    QList<qsizetype> insertedIndexes;
    QList<qsizetype> changedIndexes;
    QList<QPair<qsizetype, qsizetype>> moves;  // from the old index to the new one
    QList<Asset> removedObjects;
    QList<Asset> insertedObjects;
    QList<Asset> changedObjects;
    bool hasIncrementalChanges = true;
    bool hasMoves() const { return !moves.isEmpty(); }
    bool isEmpty() const { return removedIndexes.isEmpty() && insertedIndexes.isEmpty() && changedIndexes.isEmpty() && moves.isEmpty(); }
};

// Compares two fetch results by identifier and version.
ChangeDetails changeDetails(const FetchResult& before, const FetchResult& after);
// The same from `before` and the assets `touched` since, each as it is now (nothing when gone
// or no longer fetched, else the asset with its sort key): costs the change, not the result.
// `after` holds the query the new result answers.
ChangeDetails changeDetails(const FetchResult& before, const FetchResult& after, const QSet<QString>& touched,
                            const std::function<FetchResult::Item(const QString& id, qint64* key)>& now);

enum class CollectionType { album = 1, smartAlbum = 2, folder = 3 };

struct Collection {
    QString identifier;  // "folder:PATH" or "smart:SUBTYPE"
    QString title;
    CollectionType type = CollectionType::album;
    int subtype = 2;  // the platform's collection subtype: 2 a regular album
    QList<Collection> children;  // of a folder with subfolders
};

// The platform's smart album subtypes that this library computes.
namespace SmartAlbum {
inline constexpr int panoramas = 201, videos = 202, favorites = 203, timelapses = 204, allHidden = 205,
                     recentlyAdded = 206, bursts = 207, slomoVideos = 208, userLibrary = 209, selfPortraits = 210,
                     screenshots = 211, depthEffect = 212, livePhotos = 213, raw = 217;
}

struct ScanReport {
    int filesRead = 0;      // new or changed files read
    int filesUnchanged = 0;
    int filesRemoved = 0;
    int filesMoved = 0;
    QStringList problems;  // one line per folder or file that couldn't be read
    // Set when the index couldn't take the changes (locked, disk full): it stays as it was.
    QString indexError;
    // Stopped before the end: the batches written are kept, the next scan reads the rest.
    bool cancelled = false;
};

class Index;
class Journals;
class FolderWatcher;

// One library over a list of folders. Every method runs on the calling thread; one object per
// thread. Failures come back as texts, never as exceptions.
class Library : public QObject {
    Q_OBJECT
public:
    // Folders: TESSORIN_LIBRARY (separated by ':'), else the setting "libraryFolders", else the
    // user's Pictures folder.
    static QStringList defaultFolders();
    // The database file in the application's data folder.
    static QString defaultDatabasePath();

    Library(QStringList folders = defaultFolders(), QString databasePath = defaultDatabasePath(),
            QObject* parent = nullptr);
    ~Library() override;

    // False with a message when the database couldn't be opened even after rebuilding it.
    bool isOpen() const;
    QString openError() const;
    QStringList folders() const { return folders_; }

    // Reads new and changed files once; unchanged ones (path, size, modification time) are kept.
    ScanReport scan();
    // The same, for these folders only: `shallow` ones without their subfolders, `deep` ones
    // with them. A deep folder that is gone takes its files out of the library.
    ScanReport scan(const QStringList& shallow, const QStringList& deep);
    // What the last scan did, the watcher's included.
    const ScanReport& lastScanReport() const { return lastScan_; }
    // The same scan of every folder on a worker thread, through a connection of its own, written
    // in transactions of `batchSize` files or a quarter of those written before, whichever is
    // more: after each one this library sends
    // `libraryDidChange`, so the items appear as they are read, and `scanProgress` is told here.
    // Scans of this object in the meantime leave the files it is to read to it. Needs this
    // thread's event loop; at most one runs, and destroying the library stops it after the
    // batch at hand (a started batch is never half written).
    QFuture<ScanReport> scanInBackground(int batchSize = 1000);
    void cancelBackgroundScan();
    // Sends `libraryDidChange` when another connection changed the index since observers were
    // last told.
    void noticeChanges();

    FetchResult fetchAssets(const FetchOptions& options = {}) const;
    FetchResult fetchAssets(const QString& collectionIdentifier, const FetchOptions& options = {}) const;
    FetchResult fetchAssets(const QStringList& localIdentifiers) const;
    // The same query made again now, and how it differs from `before`.
    FetchResult refetch(const FetchResult& before) const;
    ChangeDetails changeDetails(const FetchResult& before) const;
    std::optional<Asset> asset(const QString& localIdentifier) const;
    // The asset that holds this file as any of its resources.
    std::optional<Asset> assetForPath(const QString& path) const;

    // The user albums (folders under each library folder, a folder with subfolders is a list),
    // then the smart albums that hold something.
    QList<Collection> userCollections() const;
    QList<Collection> smartAlbums() const;
    // Album by title among the user albums.
    std::optional<Collection> album(const QString& title) const;
    // A folder of that title in the first library folder.
    std::optional<Collection> createAlbum(const QString& title, QString* error = nullptr);
    // The application's own album, "Tessorin" in the first library folder, made on first use.
    static QString applicationAlbumTitle();

    // Changes. Each one ends with the index up to date and `libraryDidChange` sent.
    bool setFavorite(const QString& localIdentifier, bool favorite, QString* error = nullptr);
    bool setHidden(const QString& localIdentifier, bool hidden, QString* error = nullptr);
    // Moves every file of the asset to the desktop's trash; nothing is unlinked.
    bool deleteAsset(const QString& localIdentifier, QString* error = nullptr);
    // Puts `data` where the asset's photo is, keeping the original and the adjustment data
    // beside it in the library's hidden folder. The file's name takes `extension` (without dot).
    bool editInPlace(const QString& localIdentifier, const QByteArray& data, const QString& extension,
                     const QByteArray& adjustmentData, QString* error = nullptr);
    // Puts the original back and drops the edit.
    bool revert(const QString& localIdentifier, QString* error = nullptr);
    // A new item in the album folder `albumTitle` (the application's album when empty); the
    // date and place, when given, are the asset's own. The new identifier, or nothing.
    std::optional<QString> createAsset(const QByteArray& data, const QString& fileName,
                                       const std::optional<QDateTime>& creationDate,
                                       const std::optional<Location>& location,
                                       const QString& albumTitle = {}, QString* error = nullptr);

    // The adjustment data of an edit: format identifier, version and payload.
    static QString adjustmentFormatIdentifier() { return QStringLiteral("edu.self.Tessorin"); }
    static QString adjustmentFormatVersion() { return QStringLiteral("1.0"); }
    std::optional<QByteArray> adjustmentData(const QString& localIdentifier) const;

    // Watches the folders: a file another program adds, changes, moves or deletes leads to a
    // scan and `libraryDidChange`. Needs the thread's event loop.
    void startWatching();
    void stopWatching();

signals:
    // After a scan or a change of our own that altered the index.
    void libraryDidChange();
    // While a scan reads files: those found in the folders it looks at, those read so far and
    // those left to read.
    void scanProgress(int seen, int read, int left);

private:
    bool ensureOpen(QString* error) const;
    // Sets a mark column ("favorite", "hidden") of an item, through the journal.
    bool setMark(const char* column, const QString& localIdentifier, bool value, QString* error);
    QStringList folders_;
    std::unique_ptr<Index> index_;
    std::unique_ptr<Journals> journals_;  // what the user set, beside the photos
    std::unique_ptr<FolderWatcher> watcher_;
    ScanReport lastScan_;
    // A background scan, and on its worker's library the size of its batches and its stop flag.
    QFuture<ScanReport> background_;
    int batchSize_ = 0;
    std::shared_ptr<std::atomic<bool>> stop_;
    // Every asset as last loaded, with its creation date in milliseconds for sorting; after a
    // change only the assets it touched are loaded again.
    const QList<FetchResult::Item>& allAssets() const;
    void loadEverything() const;
    qint64 dataVersion() const;
    // The identifiers touched since the change `seq`, or nothing when that is too long ago.
    std::optional<QSet<QString>> touchedSince(qint64 seq) const;
    // `before` brought up to date, with how it changed.
    ChangeDetails update(const FetchResult& before) const;
    // The index's data_version when observers were last told of a change.
    qint64 toldVersion_ = -1;
    struct Cache {
        qint64 dataVersion = -1, changes = -1;
        qint64 seq = -1;  // the last change of the index's log the assets hold
        QList<FetchResult::Item> assets;
        QList<qint64> dates;
        QHash<QString, qsizetype> byId;  // into assets
        // The identifiers each change since `logFrom` touched, by the change that ends it.
        qint64 logFrom = -1;
        QList<QPair<qint64, QSet<QString>>> log;
        qsizetype logged = 0;  // identifiers in `log`
        QList<FetchResult> results;  // the last queries' results, newest first
    };
    mutable Cache cache_;
};

// Text of a resource type, as logs and the resource list show it.
QString resourceTypeText(ResourceType type);
QString resourceTypeText(int rawValue);

}  // namespace library
