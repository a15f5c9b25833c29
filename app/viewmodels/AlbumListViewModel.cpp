// SPDX-License-Identifier: GPL-3.0-or-later
#include "AlbumListViewModel.h"

#include "AppState.h"
#include "ModuleTexts.h"
#include "Albums.h"
#include "Folders.h"
#include "Log.h"
#include "Settings.h"
#include "TSFilesAlbum.h"
#include "TSPhotoAlbum.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <functional>

namespace {

// Both cases: file dialogs match name filters case-sensitively here, and cameras write ".JPG".
QString patterns(std::initializer_list<const char*> extensions) {
    QStringList list;
    for (const char* e : extensions) list << QStringLiteral("*.") + e;
    for (const char* e : extensions) list << QStringLiteral("*.") + QString::fromLatin1(e).toUpper();
    return list.join(u' ');
}

}  // namespace

AlbumListViewModel::AlbumListViewModel(QObject* parent) : QAbstractListModel(parent) {
    const QList<int> stored = Settings::hiddenSections();
    hiddenSections_ = QSet<int>(stored.begin(), stored.end());
    rebuild();
}

QUrl AlbumListViewModel::pickerFolder() { return firstExistingFolder({QStandardPaths::PicturesLocation}); }

QStringList AlbumListViewModel::nameFilters() {
    const QString images = patterns({"jpg", "jpeg", "heic", "heif", "avif", "png", "tif", "tiff", "gif", "webp",
                                     "dng", "cr2", "cr3", "nef", "arw", "orf", "rw2", "pef"});
    const QString videos = patterns({"mov", "mp4", "m4v"});
    if (!Settings::flag(SettingsFlag::video)) return {QCoreApplication::translate("AlbumListViewModel", "Images (%1)").arg(images)};
    return {QCoreApplication::translate("AlbumListViewModel", "Images and videos (%1 %2)").arg(images, videos), QCoreApplication::translate("AlbumListViewModel", "Images (%1)").arg(images),
            QCoreApplication::translate("AlbumListViewModel", "Videos (%1)").arg(videos)};
}

void AlbumListViewModel::setLibrarySections(const QList<Section>& sections) {
    librarySections_ = sections;
    rebuild();
}

bool AlbumListViewModel::isHidden(int section) const {
    return section > 0 && section < sections_.size() && hiddenSections_.contains(section);
}

bool AlbumListViewModel::readable(const QString& folder) {
    const QFileInfo info(folder);
    return info.isDir() && info.isReadable() && info.isExecutable();
}

void AlbumListViewModel::buildLibrarySections() {
    library::Library* lib = TSEnvironment::library();
    allPhotos_.reset();
    if (!lib || !lib->isOpen()) return;
    const QStringList folders = lib->folders();
    const auto count = std::count_if(folders.begin(), folders.end(), readable);
    if (count == 0) {
        Log::warning(QStringLiteral("!! not authorized !!"));
        emit alert(QCoreApplication::translate("AlbumListViewModel", "Photo Library Unavailable"),
                   QCoreApplication::translate("AlbumListViewModel", "Please check to see if device settings doesn't allow photo library access"));
        librarySections_.clear();
        return;
    }
    const library::FetchOptions options = Albums::fetchOptions();
    QList<Section> sections;
    for (const TSCollection& c : Albums::collections(*lib)) {
        if (c.kind == TSCollection::Kind::assetsFetched) {
            allPhotosFetch_ = c.assets;
            allPhotos_ = Entry{Albums::allPhotosTitle(count == folders.size()), QStringLiteral("photo.fill.on.rectangle.fill"),
                               int(c.assets.count()), Action::allPhotos, {}};
            continue;
        }
        Section section{c.title, {}};
        for (const library::Collection& a : c.collections) {
            Entry e{a.title, {}, -1, Action::album, a};
            if (a.type == library::CollectionType::folder) {
                e.symbol = QStringLiteral("folder.fill");
                e.action = Action::folder;
            } else {
                e.symbol = a.type == library::CollectionType::smartAlbum ? Albums::symbol(a.subtype) : QStringLiteral("folder");
                if (e.symbol.isEmpty()) e.symbol = QStringLiteral("photo.fill.on.rectangle.fill");
                e.count = int(lib->fetchAssets(a.identifier, options).count());
            }
            section.entries << e;
        }
        sections << section;
    }
    librarySections_ = sections;
}

void AlbumListViewModel::rebuild() {
    beginResetModel();
    if (!folders_.isEmpty()) {
        // Inside a folder: its albums and subfolders, under no header.
        Section inner;
        for (const library::Collection& c : folders_.last().children) {
            const bool list = c.type == library::CollectionType::folder;
            Entry e{c.title, list ? QStringLiteral("folder.fill") : QStringLiteral("folder"), -1,
                    list ? Action::folder : Action::album, c};
            if (!list && TSEnvironment::library())
                e.count = int(TSEnvironment::library()->fetchAssets(c.identifier, Albums::fetchOptions()).count());
            inner.entries << e;
        }
        sections_ = {inner};
        rows_.clear();
        for (int e = 0; e < inner.entries.size(); ++e) rows_.append({false, 0, e});
        endResetModel();
        return;
    }
    Section files;
    if (allPhotos_) files.entries.append(*allPhotos_);
    files.entries.append({QString::fromLatin1(QT_TRANSLATE_NOOP("Albums", "Files")), QStringLiteral("folder"), -1, Action::documentPicker, {}});
    if (!pickedPaths_.isEmpty())
        files.entries.append({QString::fromLatin1(QT_TRANSLATE_NOOP("Albums", "From files")), QStringLiteral("doc.on.doc"), int(pickedPaths_.size()),
                              Action::filesAlbum, {}});
    sections_ = QList<Section>{files} + librarySections_;
    rows_.clear();
    for (int s = 0; s < sections_.size(); ++s) {
        if (s > 0) rows_.append({true, s, -1});
        if (isHidden(s)) continue;
        for (int e = 0; e < sections_[s].entries.size(); ++e) rows_.append({false, s, e});
    }
    endResetModel();
}

int AlbumListViewModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(rows_.size()); }

QVariant AlbumListViewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size()) return {};
    const Row& row = rows_[index.row()];
    const Section& section = sections_[row.section];
    switch (role) {
    case KindRole: return row.header ? QStringLiteral("header") : QStringLiteral("entry");
    case SectionRole: return row.section;
    case CollapsedRole: return isHidden(row.section);
    case Qt::DisplayRole:
    case TitleRole: {
        // The library's own names in the user's language; the user's albums by their names.
        if (row.header) return moduletexts::album(section.title).toUpper();
        const Entry& entry = section.entries[row.entry];
        const bool named = entry.action == Action::album || entry.action == Action::folder;
        return named && entry.collection.type != library::CollectionType::smartAlbum ? entry.title : moduletexts::album(entry.title);
    }
    case SymbolRole: return row.header ? QStringLiteral("chevron.down") : section.entries[row.entry].symbol;
    case CountRole: return row.header ? int(section.entries.size()) : section.entries[row.entry].count;
    default: return {};
    }
}

QHash<int, QByteArray> AlbumListViewModel::roleNames() const {
    return {{KindRole, "kind"},     {SectionRole, "section"}, {TitleRole, "title"},
            {SymbolRole, "symbol"}, {CountRole, "count"},     {CollapsedRole, "collapsed"}};
}

void AlbumListViewModel::load() {
    buildLibrarySections();
    rebuild();
    emit nameFiltersChanged();
    if (appState().pendingQuickAction && allPhotos_ && folders_.isEmpty()) {
        selectEntry(0, 0);
        return;
    }
    std::optional<QString>& pending = appState().pendingUrlAlbumName;
    if (!pending) return;
    const QString wanted = pending->toLower();
    pending.reset();
    for (int s = 0; s < sections_.size(); ++s)
        for (int e = 0; e < sections_[s].entries.size(); ++e) {
            const Entry& entry = sections_[s].entries[e];
            if (entry.action != Action::documentPicker && entry.title.toLower() == wanted) {
                selectEntry(s, e);
                return;
            }
        }
    // An album inside a folder of albums.
    std::function<std::optional<library::Collection>(const QList<library::Collection>&)> find =
        [&](const QList<library::Collection>& list) -> std::optional<library::Collection> {
        for (const library::Collection& c : list) {
            if (c.type == library::CollectionType::album && c.title.toLower() == wanted) return c;
            if (auto inner = find(c.children)) return inner;
        }
        return std::nullopt;
    };
    if (TSEnvironment::library())
        if (auto album = find(TSEnvironment::library()->userCollections())) openCollection(*album);
}

void AlbumListViewModel::toggle(int section) {
    if (section <= 0 || section >= sections_.size()) return;
    if (!hiddenSections_.remove(section)) hiddenSections_.insert(section);
    QList<int> stored(hiddenSections_.begin(), hiddenSections_.end());
    std::sort(stored.begin(), stored.end());
    Settings::setHiddenSections(stored);
    rebuild();
}

void AlbumListViewModel::select(int row) {
    if (row < 0 || row >= rows_.size()) return;
    const Row& r = rows_[row];
    if (r.header) toggle(r.section);
    else selectEntry(r.section, r.entry);
}

void AlbumListViewModel::selectEntry(int section, int index) {
    if (section < 0 || section >= sections_.size() || index < 0 || index >= sections_[section].entries.size()) return;
    switch (sections_[section].entries[index].action) {
    case Action::documentPicker: emit documentPickerRequested(); break;
    case Action::filesAlbum: openFilesAlbum(); break;
    case Action::allPhotos: {
        auto album = std::make_shared<TSPhotoAlbum>();
        TSEnvironment::setCurrentAlbum(album);
        // The quick action opens the item last viewed, or else the newest.
        int index = -1;
        if (appState().pendingQuickAction) {
            appState().pendingQuickAction = false;
            const bool newestFirst = Settings::flag(SettingsFlag::mostRecentFirst);
            index = newestFirst ? 0 : int(allPhotosFetch_.count()) - 1;
            if (auto last = allPhotosFetch_.indexOf(Settings::value(TSPhotoAlbum::lastViewedKey).toString())) index = int(*last);
        }
        album->setAlbum(allPhotosFetch_, index, allPhotos_->title);
        emit albumOpened();
        if (index >= 0) emit itemRequested(index);
        break;
    }
    case Action::album: openCollection(sections_[section].entries[index].collection); break;
    case Action::folder:
        folders_ << sections_[section].entries[index].collection;
        rebuild();
        emit folderChanged();
        break;
    case Action::none: break;
    }
}

void AlbumListViewModel::openCollection(const library::Collection& collection) {
    library::Library* lib = TSEnvironment::library();
    if (!lib) return;
    auto album = std::make_shared<TSPhotoAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    if (collection.type == library::CollectionType::smartAlbum) album->setSubType(collection.subtype);
    album->setAlbum(lib->fetchAssets(collection.identifier, Albums::fetchOptions()), -1, collection.title);
    emit albumOpened();
}

void AlbumListViewModel::upFolder() {
    if (folders_.isEmpty()) return;
    folders_.removeLast();
    rebuild();
    emit folderChanged();
}

void AlbumListViewModel::reloadLibrary() {
    buildLibrarySections();
    // A folder on view is read again from the library's albums, or left when it is gone.
    if (!folders_.isEmpty() && TSEnvironment::library()) {
        std::function<std::optional<library::Collection>(const QList<library::Collection>&, const QString&)> find =
            [&](const QList<library::Collection>& list, const QString& id) -> std::optional<library::Collection> {
            for (const auto& c : list) {
                if (c.identifier == id) return c;
                if (auto inner = find(c.children, id)) return inner;
            }
            return std::nullopt;
        };
        const QList<library::Collection> all = TSEnvironment::library()->userCollections();
        QList<library::Collection> kept;
        for (const auto& f : folders_) {
            auto now = find(all, f.identifier);
            if (!now) break;
            kept << *now;
        }
        folders_ = kept;
        emit folderChanged();
    }
    rebuild();
}

void AlbumListViewModel::setLibraryFolders(const QList<QUrl>& folders) {
    QStringList paths;
    for (const QUrl& url : folders)
        if (url.isLocalFile()) paths << QDir::cleanPath(url.toLocalFile());
    if (paths.isEmpty()) return;
    Log::info(QStringLiteral("photoAccess folders: ") + paths.join(u':'));
    Settings::setValue(QStringLiteral("libraryFolders"), paths);
    folders_.clear();
    emit folderChanged();
    emit libraryFoldersChanged();
}

void AlbumListViewModel::documentPicked(const QList<QUrl>& urls) {
    Log::info(QStringLiteral("documentPicker urls: ") + QString::number(urls.size()));
    QStringList paths;
    for (const QUrl& url : urls)
        if (url.isLocalFile()) paths << url.toLocalFile();
    if (!paths.isEmpty()) openPaths(paths);
}

void AlbumListViewModel::openPaths(const QStringList& paths) {
    // A file of the library opens as its item, in its folder's album, with every library tool.
    if (library::Library* lib = TSEnvironment::library(); lib && paths.size() == 1)
        if (auto asset = lib->assetForPath(QFileInfo(paths.first()).absoluteFilePath())) {
            const bool top = lib->folders().contains(asset->folder);
            const library::FetchResult fetch =
                top ? lib->fetchAssets(Albums::fetchOptions())
                    : lib->fetchAssets(QStringLiteral("folder:") + asset->folder, Albums::fetchOptions());
            if (auto index = fetch.indexOf(asset->localIdentifier)) {
                auto album = std::make_shared<TSPhotoAlbum>();
                TSEnvironment::setCurrentAlbum(album);
                album->setAlbum(fetch, int(*index), top ? Albums::allPhotosTitle(true) : QFileInfo(asset->folder).fileName());
                emit albumOpened();
                return;
            }
        }
    pickedPaths_ = paths;
    rebuild();
    openFilesAlbum();
}

void AlbumListViewModel::openFilesAlbum() {
    // A new album for every visit, as for every pick: its position starts afresh.
    auto album = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    album->loadBookmarks(pickedPaths_, appState().isPad);
    emit albumOpened();
}
