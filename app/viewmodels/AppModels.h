#pragma once
// Every screen's view model, made once for the process and handed to QML as singletons of the
// module "Tessorin" (AlbumList, Group, Detail, ...). The app and the QML load test share it.
#include <QObject>

class AppController;
class AlbumListViewModel;
class GroupViewModel;
class SettingsViewModel;
class DetailViewModel;
class DetailTableModel;
class TagTableModel;
class ToolBarModel;
class ShareViewModel;
class AddressListModel;
class LocationModifierViewModel;
class MapPickerViewModel;
class ResourcesViewModel;
class EditViewModel;

class AppModels : public QObject {
    Q_OBJECT
public:
    explicit AppModels(QObject* parent = nullptr);

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

    // Registers the models with QML under the names App, AlbumList, Group, SettingsScreen,
    // Detail, DetailTable, TagTable, ToolBar, Share, AddressList, LocationScreen, MapPicker,
    // Resources and Edit. Call once, before loading QML.
    void registerWithQml();
};
