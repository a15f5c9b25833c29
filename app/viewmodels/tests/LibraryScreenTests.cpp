// SPDX-License-Identifier: GPL-3.0-or-later
// The screens over a real photo library in the test's folder: the album list's sections, the
// group following changes of the library, the toolbar's library tools, the dialog after an add,
// and the launcher entry and metainfo as the desktop's own validators see them.
#include "AddingPicture.h"
#include "AlbumListViewModel.h"
#include "Albums.h"
#include "AppController.h"
#include "AppModels.h"
#include "AppState.h"
#include "DetailViewModel.h"
#include "EditViewModel.h"
#include "GroupViewModel.h"
#include "Isolation.h"
#include "Library.h"
#include "MotionPhotos.h"
#include "Settings.h"
#include "SettingsViewModel.h"
#include "TSPhotoAlbum.h"
#include "TestSupport.h"
#include "ToolBarModel.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

namespace {

class LibraryScreens : public testsupport::IsolatedTest {
protected:
    QString root;
    std::unique_ptr<AppModels> models;

    void SetUp() override {
        root = isolation().root() + "/Pictures";
        // By date: 2006, 2008-03, 2008-05, 2014, 2018; and an album folder with a subfolder.
        add("jpeg/Fujifilm_FinePix_E500.jpg", "a.jpg");
        add("jpeg/Nikon_D70.jpg", "b.jpg");
        add("jpeg/Canon_40D.jpg", "c.jpg");
        add("jpeg/jolla.jpg", "d.jpg");
        add("jpeg/DSC_3079.jpg", "Trips/Paris/e.jpg");
        TSEnvironment::setCurrentAlbum(nullptr);
        appState().isPad = false;
        appState().pendingQuickAction = false;
        Settings::setFlag(SettingsFlag::mostRecentFirst, false);
        models = std::make_unique<AppModels>();
        models->openLibrary({root}, false);
    }
    void TearDown() override {
        models.reset();
        TSEnvironment::setCurrentAlbum(nullptr);
        appState().isPad = false;
    }

    void add(const QString& corpus, const QString& relative) {
        const QString target = root + '/' + relative;
        QDir().mkpath(QFileInfo(target).absolutePath());
        ASSERT_TRUE(QFile::copy(testsupport::corpusDir() + '/' + corpus, target)) << corpus.toStdString();
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    }
    library::Library& lib() { return *models->library; }
    QStringList rows(const QAbstractItemModel& model, int role) {
        QStringList list;
        for (int r = 0; r < model.rowCount(); ++r) list << model.data(model.index(r, 0), role).toString();
        return list;
    }
    std::shared_ptr<TSPhotoAlbum> photoAlbum() { return std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum()); }
    QString currentName() {
        auto album = photoAlbum();
        return album && album->currentLibraryAsset() ? QFileInfo(album->currentLibraryAsset()->mainPath()).fileName() : QString();
    }
    void settle() {
        for (int i = 0; i < 20; ++i) QCoreApplication::processEvents();
    }
    // Opens "All Photos" at an index, as a tap in the list and the group would.
    void openAllPhotos(int index) {
        models->albumList->selectEntry(0, 0);
        models->group->show(index);
        settle();
    }
};

}  // namespace

TEST_F(LibraryScreens, AlbumListShowsTheLibrarySectionsAndFoldersOpenIntoTheList) {
    AlbumListViewModel& list = *models->albumList;
    EXPECT_EQ(rows(list, AlbumListViewModel::TitleRole),
              (QStringList{"All Photos", "Files", "ALBUMS", "Trips", "SMART ALBUMS", "Recently Added"}));
    EXPECT_EQ(list.data(list.index(0), AlbumListViewModel::CountRole), 5);
    EXPECT_EQ(list.data(list.index(3), AlbumListViewModel::SymbolRole), "folder.fill");

    // A favourite fills the favourites' smart album, and the list follows the library.
    ASSERT_TRUE(lib().setFavorite(lib().fetchAssets().objectAt(0).localIdentifier, true));
    const QStringList titles = rows(list, AlbumListViewModel::TitleRole);
    const int favourites = int(titles.indexOf("Favorites"));
    ASSERT_GE(favourites, 0) << titles.join(", ").toStdString();
    EXPECT_EQ(list.data(list.index(favourites), AlbumListViewModel::SymbolRole), "heart");
    EXPECT_EQ(list.data(list.index(favourites), AlbumListViewModel::CountRole), 1);

    QSignalSpy opened(&list, &AlbumListViewModel::albumOpened);
    list.select(3);  // Trips holds a folder: it opens into the list itself
    EXPECT_EQ(opened.count(), 0);
    EXPECT_TRUE(list.inFolder());
    EXPECT_EQ(list.title(), "Trips");
    EXPECT_EQ(rows(list, AlbumListViewModel::TitleRole), QStringList{"Paris"});
    EXPECT_EQ(list.data(list.index(0), AlbumListViewModel::CountRole), 1);
    list.select(0);
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "Paris");
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 1);
    list.upFolder();
    EXPECT_FALSE(list.inFolder());
    EXPECT_EQ(list.title(), "All albums");
}

TEST_F(LibraryScreens, UnreadableFoldersGiveTheAlertAndChosenFoldersANewLibrary) {
    AlbumListViewModel& list = *models->albumList;
    QSignalSpy alert(&list, &AlbumListViewModel::alert);
    models->openLibrary({isolation().root() + "/nowhere"}, false);
    ASSERT_EQ(alert.count(), 1);
    EXPECT_EQ(alert[0][0], "Photo Library Unavailable");
    EXPECT_EQ(alert[0][1], "Please check to see if device settings doesn't allow photo library access");
    EXPECT_EQ(rows(list, AlbumListViewModel::TitleRole), QStringList{"Files"});

    // One readable folder of two: only the selected photos.
    models->openLibrary({root, isolation().root() + "/nowhere"}, false);
    EXPECT_EQ(rows(list, AlbumListViewModel::TitleRole).first(), "Selected Photos");

    // The settings' row asks the view for the folder dialog, whose answer comes here.
    QSignalSpy access(models->settings, &SettingsViewModel::photoAccessRequested);
    models->settings->select(5);
    EXPECT_EQ(access.count(), 1);
    list.setLibraryFolders({QUrl::fromLocalFile(root + "/Trips")});
    EXPECT_EQ(Settings::value("libraryFolders").toStringList(), QStringList{root + "/Trips"});
    EXPECT_EQ(models->library->folders(), QStringList{root + "/Trips"});
    EXPECT_EQ(list.data(list.index(0), AlbumListViewModel::CountRole), 1);
}

TEST_F(LibraryScreens, LinksQuickActionAndLibraryFilesOpenLibraryAlbums) {
    appState().pendingUrlAlbumName = "TRIPS";
    models->albumList->load();
    EXPECT_TRUE(models->albumList->inFolder());  // a folder of albums opens into the list
    models->albumList->upFolder();
    appState().pendingUrlAlbumName = "paris";  // an album inside it
    models->albumList->load();
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "Paris");

    openAllPhotos(3);
    EXPECT_EQ(currentName(), "d.jpg");
    TSEnvironment::setCurrentAlbum(nullptr);
    appState().pendingQuickAction = true;
    QSignalSpy detail(models->app, &AppController::pushed);
    models->albumList->load();
    EXPECT_TRUE(detail.contains(QVariantList{"detail"}));  // on a phone the item opens at once
    EXPECT_FALSE(appState().pendingQuickAction);
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "All Photos");
    EXPECT_EQ(currentName(), "d.jpg");  // the item last viewed

    QSignalSpy opened(models->albumList, &AlbumListViewModel::albumOpened);
    models->albumList->openPaths({root + "/Trips/Paris/e.jpg"});
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "Paris");
    EXPECT_EQ(currentName(), "e.jpg");
    EXPECT_TRUE(models->albumList->pickedPaths().isEmpty());
    const QString outside = isolation().root() + "/x.jpg";
    ASSERT_TRUE(QFile::copy(root + "/a.jpg", outside));
    models->albumList->openPaths({outside});
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "From files");
}

TEST_F(LibraryScreens, ListFollowsRemovalsInsertionsAndChangesRowByRow) {
    Settings::setFlag(SettingsFlag::gridView, false);
    openAllPhotos(2);  // c.jpg
    GroupViewModel& group = *models->group;
    ASSERT_EQ(group.rowCount(), 5);
    QSignalSpy removed(&group, &QAbstractItemModel::rowsRemoved);
    QSignalSpy inserted(&group, &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(&group, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&group, &QAbstractItemModel::modelReset);

    ASSERT_TRUE(QFile::moveToTrash(root + "/b.jpg"));
    lib().scan();
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(group.rowCount(), 4);
    EXPECT_EQ(currentName(), "c.jpg");  // the detail stays on its item

    add("jpeg/Nikon_D70.jpg", "b2.jpg");
    lib().scan();
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted[0][1].toInt(), 1);
    EXPECT_EQ(group.data(group.index(1), GroupViewModel::NameRole), "b2.jpg");

    ASSERT_TRUE(lib().setFavorite(lib().fetchAssets().objectAt(3).localIdentifier, true));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 3);
    EXPECT_EQ(group.data(group.index(3), GroupViewModel::ItemsRole).toList()[0].toMap()["favorite"], true);
    EXPECT_EQ(reset.count(), 0);

    // A file rewritten with a later date moves: the whole list is read again.
    QFile::remove(root + "/a.jpg");
    add("heif/IMG_5195.HEIC", "a.jpg");  // 2021, after every other
    lib().scan();
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(group.data(group.index(4), GroupViewModel::NameRole), "a.jpg");
}

TEST_F(LibraryScreens, GridReloadsOnlyTheRowsOfChangedItems) {
    Settings::setFlag(SettingsFlag::gridView, true);
    openAllPhotos(0);
    GroupViewModel& group = *models->group;
    ASSERT_EQ(group.rowCount(), 2);
    QSignalSpy changed(&group, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&group, &QAbstractItemModel::modelReset);
    const library::FetchResult all = lib().fetchAssets();
    // Two favourites in one change: items 1 and 3 share the first row, which reloads once.
    lib().blockSignals(true);
    ASSERT_TRUE(lib().setFavorite(all.objectAt(1).localIdentifier, true));
    lib().blockSignals(false);
    ASSERT_TRUE(lib().setFavorite(all.objectAt(3).localIdentifier, true));
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 0);
    EXPECT_EQ(reset.count(), 0);

    ASSERT_TRUE(lib().setFavorite(all.objectAt(4).localIdentifier, true));
    ASSERT_EQ(changed.count(), 2);
    EXPECT_EQ(changed[1][0].toModelIndex().row(), 1);

    // A removal in the grid takes the full refresh.
    ASSERT_TRUE(QFile::moveToTrash(root + "/a.jpg"));
    lib().scan();
    EXPECT_EQ(reset.count(), 1);
    EXPECT_EQ(group.rowCount(), 1);
}

TEST_F(LibraryScreens, ToolbarOffersTheLibraryToolsAndTheyWorkEndToEnd) {
    ToolBarModel& tools = *models->toolBar;
    openAllPhotos(1);  // b.jpg
    ASSERT_TRUE(QTest::qWaitFor([&] { return tools.tools().contains("edit"); }, 5000));
    EXPECT_EQ(tools.tools(), (QStringList{"share", "prefer", "delete", "more", "edit", "tags"}));
    EXPECT_EQ(tools.favoriteSymbol(), "heart");

    tools.favorite();
    EXPECT_EQ(tools.favoriteSymbol(), "heart.fill");
    EXPECT_TRUE(lib().fetchAssets().objectAt(1).favorite);
    QSignalSpy heart(&tools, &ToolBarModel::toolsChanged);  // the same tools, another heart
    tools.favorite();
    EXPECT_FALSE(lib().fetchAssets().objectAt(1).favorite);
    EXPECT_GE(heart.count(), 1);
    EXPECT_EQ(tools.favoriteSymbol(), "heart");

    QSignalSpy ask(&tools, &ToolBarModel::deleteConfirmationRequested);
    const QString path = root + "/b.jpg";
    tools.requestDelete();
    ASSERT_EQ(ask.count(), 1);
    EXPECT_EQ(ask[0][1], "Are you sure you want to delete this photo?");
    EXPECT_EQ(ask[0][2], "Delete Photo");
    EXPECT_TRUE(QFile::exists(path));  // nothing happens before the answer
    tools.confirmDelete();
    EXPECT_FALSE(QFile::exists(path));
    bool trashed = false;
    for (QDirIterator it(isolation().root(), {"b.jpg"}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        trashed = trashed || it.next().contains("/Trash/files/");
    EXPECT_TRUE(trashed);
    EXPECT_EQ(TSEnvironment::currentAlbum()->count(), 4);
    EXPECT_EQ(currentName(), "c.jpg");  // the neighbour takes the deleted item's place
    tools.confirmDelete();  // asked once, done once
    EXPECT_EQ(lib().fetchAssets().count(), 4);

    // On a tablet "Delete" leads the more menu.
    appState().isPad = true;
    EXPECT_EQ(tools.moreMenu().first().toMap()["title"], "Delete");
    tools.toggleMore(0);
    EXPECT_EQ(ask.count(), 2);

    QSignalSpy edit(&tools, &ToolBarModel::editRequested);
    tools.edit();
    EXPECT_EQ(edit.count(), 1);
}

TEST_F(LibraryScreens, AMotionPhotoIsALivePhotoWhoseMoviePlaysFromItsStill) {
    const QString movie = testsupport::video("small_video.mp4");
    testsupport::googleMotionPhoto(testsupport::corpusDir() + "/jpeg/BlueSquare.jpg", movie, root + "/PXL_0001.MP.jpg");
    lib().scan();
    settle();
    int index = 0;
    for (; index < 6 && currentName() != "PXL_0001.MP.jpg"; ++index) openAllPhotos(index);
    ASSERT_EQ(currentName(), "PXL_0001.MP.jpg");
    EXPECT_TRUE(photoAlbum()->currentLibraryAsset()->mediaSubtypes & library::Subtype::photoLive);
    DetailViewModel& detail = *models->detail;
    const QUrl source = detail.liveVideoSource();
    ASSERT_TRUE(source.isLocalFile());
    EXPECT_EQ(testsupport::readFile(source.toLocalFile()), testsupport::readFile(movie));
    EXPECT_EQ(detail.liveStartMs(), 500);  // the 500000 µs the photo names
    detail.setLivePlaying(true);
    EXPECT_TRUE(detail.livePlaying());
}

TEST_F(LibraryScreens, AfterAnAddTheDialogOffersTheAlbumsWhereThePictureLanded) {
    openAllPhotos(0);
    DetailViewModel& detail = *models->detail;
    const DetailViewModel::Landing all{lib().fetchAssets(), 4, "All Photos"};
    const DetailViewModel::Landing own{lib().fetchAssets(QStringList{lib().fetchAssets().objectAt(4).localIdentifier}), 0, "Tessorin"};
    Settings::setFlag(SettingsFlag::saveInTessorin, false);
    detail.offerAddedPicture(all, own);
    ASSERT_TRUE(detail.addedDialog());
    EXPECT_EQ(detail.addedDialog()->title, "All Photos");
    EXPECT_EQ(detail.addedDialog()->message, "The Photo was added in a different album. Go to see it?");
    EXPECT_EQ(detail.addedDialog()->actions, (QStringList{"In the \u201CAll Photos\u201D Album", "Cancel"}));

    Settings::setFlag(SettingsFlag::saveInTessorin, true);
    detail.offerAddedPicture(all, own);
    EXPECT_EQ(detail.addedDialog()->actions,
              (QStringList{"In the \u201CAll Photos\u201D Album", "In the \u201CTessorin\u201D Album", "Cancel"}));
    detail.chooseAdded(1);
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "Tessorin");
    EXPECT_EQ(currentName(), "e.jpg");
    detail.offerAddedPicture(all, own);
    detail.chooseAdded(2);  // Cancel
    EXPECT_EQ(TSEnvironment::currentAlbum()->title(), "Tessorin");
}

TEST_F(LibraryScreens, ANewItemSavedIsShownOrOfferedWhereItLanded) {
    const QByteArray photo = testsupport::readFile(testsupport::corpusDir() + "/jpeg/Nikon_D70.jpg");
    // What the edit screen does before it saves a new picture.
    const auto saving = [this] {
        AddingPicture& adding = TSEnvironment::addingPicture();
        adding.start(lib(), Albums::fetchOptions());
        adding.adding = true;
    };
    // The album on view doesn't hold it: the dialog offers all photos and, with the setting, our album.
    appState().pendingUrlAlbumName = "paris";
    models->albumList->load();
    ASSERT_EQ(TSEnvironment::currentAlbum()->title(), "Paris");
    Settings::setFlag(SettingsFlag::saveInTessorin, true);
    saving();
    const auto id = lib().createAsset(photo, "new.jpg", std::nullopt, std::nullopt);
    ASSERT_TRUE(id);
    emit models->edit->newItemSaved(*id);
    ASSERT_TRUE(models->detail->addedDialog());
    EXPECT_EQ(models->detail->addedDialog()->title, "Paris");
    EXPECT_EQ(models->detail->addedDialog()->actions,
              (QStringList{"In the \u201CAll Photos\u201D Album", "In the \u201CTessorin\u201D Album", "Cancel"}));
    models->detail->chooseAdded(0);
    settle();
    EXPECT_EQ(currentName(), "new.jpg");

    // All photos on view holds the next one: it goes straight there.
    saving();
    const auto next = lib().createAsset(photo, "next.jpg", std::nullopt, std::nullopt);
    ASSERT_TRUE(next);
    models->detail->chooseAdded(-1);
    emit models->edit->newItemSaved(*next);
    settle();
    EXPECT_FALSE(models->detail->addedDialog());
    EXPECT_EQ(currentName(), "next.jpg");
}

TEST(DesktopFiles, LauncherEntryAndMetainfoPassTheDesktopValidators) {
    QProcess desktop;
    desktop.start("desktop-file-validate", {TESSORIN_DESKTOP_FILE});
    ASSERT_TRUE(desktop.waitForFinished(30000)) << "desktop-file-validate must be installed";
    EXPECT_EQ(desktop.exitCode(), 0) << desktop.readAllStandardOutput().toStdString();
    QProcess appstream;
    appstream.start("appstreamcli", {"validate", "--no-net", TESSORIN_METAINFO_FILE});
    ASSERT_TRUE(appstream.waitForFinished(60000)) << "appstreamcli must be installed";
    EXPECT_EQ(appstream.exitCode(), 0) << appstream.readAllStandardOutput().toStdString();
    const QString entry = QString::fromUtf8(testsupport::readFile(TESSORIN_DESKTOP_FILE));
    EXPECT_TRUE(entry.contains("[Desktop Action LastPhotoAction]\nName=Last Photo\nExec=tessorin --last-photo"));
    EXPECT_TRUE(QString::fromUtf8(testsupport::readFile(TESSORIN_METAINFO_FILE)).contains("<launchable type=\"desktop-id\">org.tessorin.Tessorin.desktop</launchable>"));
}

TEST(AppInstance, ASecondStartHandsItsFilesToTheRunningApp) {
    const QString app = TESSORIN_APP_BINARY;
    ASSERT_TRUE(QFileInfo(app).isExecutable()) << "the app must be built: " << app.toStdString();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    env.insert("QT_QUICK_BACKEND", "software");
    QProcess first;
    first.setProcessEnvironment(env);
    first.start(app, {});
    ASSERT_TRUE(first.waitForStarted(10000));
    const QString socket = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/org.tessorin.Tessorin";
    EXPECT_TRUE(QTest::qWaitFor([&] { return QFileInfo::exists(socket); }, 60000)) << "the first start listens";

    QProcess second;
    second.setProcessEnvironment(env);
    second.start(app, {testsupport::corpusDir() + "/jpeg/Canon_40D.jpg"});
    EXPECT_TRUE(second.waitForFinished(30000)) << "the second start ends once it has handed over";
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_EQ(first.state(), QProcess::Running);
    first.terminate();
    if (!first.waitForFinished(10000)) first.kill();
}
