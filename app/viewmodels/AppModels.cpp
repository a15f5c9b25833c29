// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModels.h"

#include "AddingPicture.h"
#include "AddressListModel.h"
#include "AlbumListViewModel.h"
#include "AppController.h"
#include "Albums.h"
#include "AppState.h"
#include "ColorScheme.h"
#include "Library.h"
#include "Log.h"
#include "Settings.h"
#include "TSLibraryObserver.h"
#include "TSPhotoAlbum.h"
#include "DetailTableModel.h"
#include "DetailViewModel.h"
#include "EditViewModel.h"
#include "GroupViewModel.h"
#include "LocationModifierViewModel.h"
#include "MapPickerViewModel.h"
#include "SettingsViewModel.h"
#include "ShareViewModel.h"
#include "ResourcesViewModel.h"
#include "ScanProgressViewModel.h"
#include "TagTableModel.h"
#include "ToolBarModel.h"

#include <QFutureWatcher>
#include <QQmlEngine>

AppModels::AppModels(QObject* parent)
    : QObject(parent),
      app(new AppController(this)),
      albumList(new AlbumListViewModel(this)),
      group(new GroupViewModel(this)),
      settings(new SettingsViewModel(this)),
      detail(new DetailViewModel(this)),
      detailTable(new DetailTableModel(this)),
      tagTable(new TagTableModel(this)),
      toolBar(new ToolBarModel(this)),
      share(new ShareViewModel(this)),
      addressList(new AddressListModel(this)),
      location(new LocationModifierViewModel({}, this)),
      mapPicker(new MapPickerViewModel(this)),
      resources(new ResourcesViewModel(this)),
      edit(new EditViewModel(this)),
      colors(new ColorScheme(this)),
      scanProgress(new ScanProgressViewModel(this)) {
    // The edit screen's location row opens the location screen on the edit's wishes.
    edit->setLocationScreen(location);
    // The map picker hands its place back to the location screen.
    mapPicker->locationDelegate = [this](const HRLocation& l) { location->didChooseMapLocation(l); };
    connect(location, &LocationModifierViewModel::settingsRequested, app, &AppController::openSettings);
    // Navigation between the browsing screens.
    connect(app, &AppController::filesOpened, albumList, &AlbumListViewModel::openPaths);
    connect(app, &AppController::rootRebuilt, albumList, &AlbumListViewModel::load);
    connect(app, &AppController::groupLeft, group, &GroupViewModel::leave);
    connect(albumList, &AlbumListViewModel::albumOpened, app, &AppController::openGroup);
    connect(albumList, &AlbumListViewModel::albumOpened, group, &GroupViewModel::attach);
    connect(albumList, &AlbumListViewModel::itemRequested, group, &GroupViewModel::show);
    connect(group, &GroupViewModel::detailRequested, app, &AppController::openDetail);
    connect(settings, &SettingsViewModel::aboutRequested, app, &AppController::openAbout);
    connect(settings, &SettingsViewModel::closed, albumList, &AlbumListViewModel::load);
    // A window grown to a tablet's width with the group on top shows its current item beside it
    // (with the detail on top, the detail is popped and the group appears again below).
    connect(app, &AppController::padChanged, this, [this] {
        if (appState().isPad && app->screens().last() == QLatin1String("group")) group->appear();
    });
    connect(app, &AppController::popped, this, [this](const QString& screen) {
        if (screen == QLatin1String("settings")) settings->close();
        if (screen == QLatin1String("detail")) group->appear();
    });
    // A setting that changes what the detail tables show, or another album in the strip.
    connect(toolBar, &ToolBarModel::reloadTables, detailTable, &DetailTableModel::reload);
    connect(toolBar, &ToolBarModel::reloadTables, tagTable, &TagTableModel::reload);
    connect(detail, &DetailViewModel::reloadTables, detailTable, &DetailTableModel::reload);
    connect(detail, &DetailViewModel::reloadTables, tagTable, &TagTableModel::reload);
    connect(settings, &SettingsViewModel::humanChanged, detailTable, &DetailTableModel::reload);
    connect(settings, &SettingsViewModel::humanChanged, tagTable, &TagTableModel::reload);
    // The library tools.
    connect(toolBar, &ToolBarModel::burstOpened, app, &AppController::openGroup);
    connect(toolBar, &ToolBarModel::burstOpened, group, &GroupViewModel::attach);
    connect(albumList, &AlbumListViewModel::libraryFoldersChanged, this,
            [this] { openLibrary(Settings::value(QStringLiteral("libraryFolders")).toStringList(), true, true); });
    // The edit tool opens the edit screen on the item in view; a save in place or of a new item
    // is read into the library at once rather than when the folder watcher notices it. A new
    // item: the album on view jumps to it when it holds it, otherwise the detail offers the
    // albums where it landed.
    connect(toolBar, &ToolBarModel::editRequested, edit, &EditViewModel::openCurrent);
    connect(edit, &EditViewModel::newItemSaved, this, [this] { pictureAdded(); });
    connect(edit, &EditViewModel::saved, this, [this](int mode) {
        if (library && mode == 1) library->scan();
    });
}

QCoro::Task<> AppModels::pictureAdded() {
    if (!library) co_return;
    AddingPicture& adding = TSEnvironment::addingPicture();
    // The save wrote through a library object of its own: this one reads the change now rather
    // than when the folder watcher notices it, and tells the library observer.
    library->scan();
    // The watcher was first, or there was nothing to tell: no change is still to come.
    if (adding.adding) {
        adding.adding = false;
        adding.complete();
    }
    co_await adding.wait();
    if (adding.allPhotosIndex && adding.allPhotosAlbum) {
        std::optional<DetailViewModel::Landing> own;
        if (adding.tessorinIndex && adding.tessorinAlbum)
            own = DetailViewModel::Landing{*adding.tessorinAlbum, *adding.tessorinIndex, library::Library::applicationAlbumTitle()};
        detail->offerAddedPicture({*adding.allPhotosAlbum, *adding.allPhotosIndex, Albums::allPhotosTitle(true)}, own);
    }
    adding.clearLanding();
}

AppModels::~AppModels() {
    if (TSEnvironment::library() == library.get()) TSEnvironment::setLibrary(nullptr);
}

void AppModels::openLibrary(const QStringList& folders, bool watch, bool inBackground) {
    delete libraryObserver;
    TSEnvironment::setLibrary(nullptr);
    // An album of the old library would show items of folders no longer chosen.
    if (std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum())) {
        TSEnvironment::observable().albumChangedReset();
        group->leave();
    }
    // The old library stops its scan after the batch at hand as it goes.
    library.reset();
    scanProgress->finish();
    const int opened = ++opened_;
    library = folders.isEmpty() ? std::make_unique<library::Library>()
                                : std::make_unique<library::Library>(folders);
    if (!library->isOpen()) Log::error(QStringLiteral("library: ") + library->openError());
    auto logProblems = [](const library::ScanReport& report) {
        for (const QString& problem : report.problems) Log::warning(QStringLiteral("library: ") + problem);
    };
    if (!inBackground) logProblems(library->scan());
    // A change another program makes meanwhile is read at once; the files the background scan
    // is still to read are left to it.
    if (watch) library->startWatching();
    TSEnvironment::setLibrary(library.get());
    libraryObserver = new TSLibraryObserver(library.get(), this);
    libraryObserver->refreshableDelegate = group;
    connect(library.get(), &library::Library::libraryDidChange, albumList, &AlbumListViewModel::reloadLibrary);
    connect(library.get(), &library::Library::libraryDidChange, toolBar, &ToolBarModel::refresh);
    albumList->load();
    if (!inBackground) return;
    scanProgress->start(library.get());
    auto* watcher = new QFutureWatcher<library::ScanReport>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, opened, logProblems] {
        watcher->deleteLater();
        if (opened != opened_) return;  // other folders were chosen meanwhile
        logProblems(watcher->result());
        scanProgress->finish();
    });
    watcher->setFuture(library->scanInBackground());
}

void AppModels::registerWithQml() {
    const char* uri = "Tessorin";
    qmlRegisterSingletonInstance(uri, 1, 0, "App", app);
    qmlRegisterSingletonInstance(uri, 1, 0, "AlbumList", albumList);
    qmlRegisterSingletonInstance(uri, 1, 0, "Group", group);
    qmlRegisterSingletonInstance(uri, 1, 0, "SettingsScreen", settings);
    qmlRegisterSingletonInstance(uri, 1, 0, "Detail", detail);
    qmlRegisterSingletonInstance(uri, 1, 0, "DetailTable", detailTable);
    qmlRegisterSingletonInstance(uri, 1, 0, "TagTable", tagTable);
    qmlRegisterSingletonInstance(uri, 1, 0, "ToolBar", toolBar);
    qmlRegisterSingletonInstance(uri, 1, 0, "Share", share);
    qmlRegisterSingletonInstance(uri, 1, 0, "AddressList", addressList);
    qmlRegisterSingletonInstance(uri, 1, 0, "LocationScreen", location);
    qmlRegisterSingletonInstance(uri, 1, 0, "MapPicker", mapPicker);
    qmlRegisterSingletonInstance(uri, 1, 0, "Resources", resources);
    qmlRegisterSingletonInstance(uri, 1, 0, "Edit", edit);
    qmlRegisterSingletonInstance(uri, 1, 0, "Theme", colors);
    qmlRegisterSingletonInstance(uri, 1, 0, "ScanProgress", scanProgress);
}
