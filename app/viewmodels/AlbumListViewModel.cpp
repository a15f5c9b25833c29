#include "AlbumListViewModel.h"

#include "Folders.h"
#include "Log.h"
#include "Settings.h"
#include "TSFilesAlbum.h"

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
    if (!Settings::flag(SettingsFlag::video)) return {QStringLiteral("Images (%1)").arg(images)};
    return {QStringLiteral("Images and videos (%1 %2)").arg(images, videos), QStringLiteral("Images (%1)").arg(images),
            QStringLiteral("Videos (%1)").arg(videos)};
}

void AlbumListViewModel::setLibrarySections(const QList<Section>& sections) {
    librarySections_ = sections;
    rebuild();
}

bool AlbumListViewModel::isHidden(int section) const {
    return section > 0 && section < sections_.size() && hiddenSections_.contains(section);
}

void AlbumListViewModel::rebuild() {
    beginResetModel();
    Section files;
    files.entries.append({QStringLiteral("Files"), QStringLiteral("folder"), -1, Action::documentPicker});
    if (!pickedPaths_.isEmpty())
        files.entries.append({QStringLiteral("From files"), QStringLiteral("doc.on.doc"), int(pickedPaths_.size()),
                              Action::filesAlbum});
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
    case TitleRole: return row.header ? section.title.toUpper() : section.entries[row.entry].title;
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
    rebuild();
    emit nameFiltersChanged();
    std::optional<QString>& pending = TSEnvironment::pendingUrlAlbumName();
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
    case Action::none: break;
    }
}

void AlbumListViewModel::documentPicked(const QList<QUrl>& urls) {
    Log::info(QStringLiteral("documentPicker urls: ") + QString::number(urls.size()));
    QStringList paths;
    for (const QUrl& url : urls)
        if (url.isLocalFile()) paths << url.toLocalFile();
    if (!paths.isEmpty()) openPaths(paths);
}

void AlbumListViewModel::openPaths(const QStringList& paths) {
    pickedPaths_ = paths;
    rebuild();
    openFilesAlbum();
}

void AlbumListViewModel::openFilesAlbum() {
    // A new album for every visit, as for every pick: its position starts afresh.
    auto album = std::make_shared<TSFilesAlbum>();
    TSEnvironment::setCurrentAlbum(album);
    album->loadBookmarks(pickedPaths_);
    emit albumOpened();
}
