// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Every screen's view model, made once for the process and handed to QML as singletons of the
// module "Tessorin" (AlbumList, Group, Detail, ...). The app and the QML load test share it.
#include <QCoro/QCoroTask>
#include <QObject>
#include <QStringList>
#include <memory>

namespace library {
class Library;
}
class TSLibraryObserver;

class AppController;
class AlbumListViewModel;
class GroupViewModel;
class SettingsViewModel;
class DetailViewModel;
class ColorScheme;
class DetailTableModel;
class TagTableModel;
class ToolBarModel;
class ShareViewModel;
class AddressListModel;
class LocationModifierViewModel;
class MapPickerViewModel;
class ResourcesViewModel;
class EditViewModel;
class ScanProgressViewModel;

class AppModels : public QObject {
    Q_OBJECT
public:
    explicit AppModels(QObject* parent = nullptr);
    ~AppModels() override;

    // Opens the photo library over these folders (the default ones when empty), reads what
    // changed since the last run, and has the screens show it; `watch` follows other programs'
    // changes. Again with other folders when the user chooses them. `inBackground` reads on a
    // worker thread while the screens show the items as they come, the scan's progress in
    // `scanProgress`; otherwise this returns once all is read.
    void openLibrary(const QStringList& folders = {}, bool watch = true, bool inBackground = false);
    // A picture the edit screen saved as a new item: the library reads it and the library
    // observer finds where it landed; the album on view shows it when it holds it, otherwise
    // the detail offers the albums where it landed.
    QCoro::Task<> pictureAdded();
    std::unique_ptr<library::Library> library;
    TSLibraryObserver* libraryObserver = nullptr;

    AppController* app;
    AlbumListViewModel* albumList;
    GroupViewModel* group;
    SettingsViewModel* settings;
    DetailViewModel* detail;
    DetailTableModel* detailTable;
    TagTableModel* tagTable;
    ToolBarModel* toolBar;
    ShareViewModel* share;
    AddressListModel* addressList;
    LocationModifierViewModel* location;
    MapPickerViewModel* mapPicker;
    ResourcesViewModel* resources;
    EditViewModel* edit;
    ColorScheme* colors;
    ScanProgressViewModel* scanProgress;

    // Registers the models with QML under the names App, AlbumList, Group, SettingsScreen,
    // Detail, DetailTable, TagTable, ToolBar, Share, AddressList, LocationScreen, MapPicker,
    // Resources, Edit and ScanProgress. Call once, before loading QML.
    void registerWithQml();

private:
    // Counts the libraries opened, so that the end of an older one's scan is told apart.
    int opened_ = 0;
};
