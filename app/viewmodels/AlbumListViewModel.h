// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The root list "All albums": sections of entries, flattened for a ListView into header rows
// and entry rows. Section 0 has no header (so it can't collapse) and holds the library's
// all-photos entry, the entry that opens files and, once files were picked, the files album.
// Later sections (the library's albums and smart albums) collapse by a tap on their header;
// the collapsed ones are kept in "HiddenSections". A folder with subfolders opens into the list
// itself, showing its children, until upFolder().
#include "ModuleTexts.h"
#include "Library.h"

#include <QAbstractListModel>
#include <QSet>
#include <QStringList>
#include <QUrl>

class AlbumListViewModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY folderChanged)
    // Inside a folder of albums: the way back up is offered.
    Q_PROPERTY(bool inFolder READ inFolder NOTIFY folderChanged)
    // The document picker's name filters: images, plus videos while "video" is on.
    Q_PROPERTY(QStringList nameFilters READ nameFilters NOTIFY nameFiltersChanged)
    // Where the document picker starts: the Pictures folder, else home.
    Q_PROPERTY(QUrl pickerFolder READ pickerFolder CONSTANT)
public:
    enum Role { KindRole = Qt::UserRole + 1, SectionRole, TitleRole, SymbolRole, CountRole, CollapsedRole };
    Q_ENUM(Role)

    // What selecting an entry does.
    enum class Action { none, documentPicker, filesAlbum, allPhotos, album, folder };
    struct Entry {
        QString title;
        QString symbol;
        int count = -1;  // -1: no count shown
        Action action = Action::none;
        library::Collection collection;  // album and folder
    };
    struct Section {
        QString title;
        QList<Entry> entries;
    };

    explicit AlbumListViewModel(QObject* parent = nullptr);

    QString title() const { return folders_.isEmpty() ? tr("All albums") : folders_.last().title; }
    bool inFolder() const { return !folders_.isEmpty(); }
    static QStringList nameFilters();
    static QUrl pickerFolder();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QList<Section>& sections() const { return sections_; }
    // The sections after the first (the library's, when there is one).
    void setLibrarySections(const QList<Section>& sections);
    bool isHidden(int section) const;

    // Rebuilds the list (the library's sections from TSEnvironment::library()) and acts on a
    // pending quick action (all photos opens) or tessorin:// album name: the album whose title
    // matches it, whatever the case, opens; no match leaves the list on screen.
    Q_INVOKABLE void load();
    // The library changed: counts and albums are read again, nothing opens.
    void reloadLibrary();
    Q_INVOKABLE void upFolder();
    // The folders the user chose in place of the platform's access dialog: they become the
    // library's ("libraryFolders"); libraryFoldersChanged asks for a new library over them.
    Q_INVOKABLE void setLibraryFolders(const QList<QUrl>& folders);
    // The library's folders when some can't be read: "All Photos" becomes "Selected Photos",
    // and with none readable the alert shows.
    static bool readable(const QString& folder);
    // A tap on a section's header; section 0 has none and stays open.
    Q_INVOKABLE void toggle(int section);
    // A tap on the row of the flat list.
    Q_INVOKABLE void select(int row);
    // The document picker's answer.
    Q_INVOKABLE void documentPicked(const QList<QUrl>& urls);
    // Files given on the command line: opened as if picked.
    void openPaths(const QStringList& paths);
    // Opens an entry by its place in the sections.
    void selectEntry(int section, int index);

    // The files of the last pick, kept for the "From files" entry.
    const QStringList& pickedPaths() const { return pickedPaths_; }

signals:
    void nameFiltersChanged();
    // The entry that opens files was chosen: the view shows the file dialog.
    void documentPickerRequested();
    // A new album is current: the group screen shows it.
    void albumOpened();
    // The "open the last item" action: the group shows this item at once.
    void itemRequested(int index);
    void folderChanged();
    void libraryFoldersChanged();
    void alert(const QString& title, const QString& message);

private:
    QList<Section> sections_;
    QList<Section> librarySections_;
    std::optional<Entry> allPhotos_;
    library::FetchResult allPhotosFetch_;
    QList<library::Collection> folders_;  // the folders opened into the list, outermost first
    void buildLibrarySections();
    void openCollection(const library::Collection& collection);
    QStringList pickedPaths_;
    // Read once from the settings, written at each toggle.
    QSet<int> hiddenSections_;

    struct Row {
        bool header;
        int section;
        int entry;
    };
    QList<Row> rows_;
    void rebuild();
    void openFilesAlbum();
};
