// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screenshots.h"

#include "AlbumListViewModel.h"
#include "AppController.h"
#include "AppModels.h"
#include "ColorScheme.h"
#include "DetailViewModel.h"
#include "DateModifierViewModel.h"
#include "EditViewModel.h"
#include "GroupViewModel.h"
#include "LocationModifierViewModel.h"
#include "MapPickerViewModel.h"
#include "TSAlbum.h"
#include "Settings.h"
#include "IptcViewModel.h"
#include "ResourcesViewModel.h"
#include "ShareViewModel.h"
#include "TSMapView.h"
#include "TagTableModel.h"
#include "ToolBarModel.h"

#include <QDir>
#include <QEventLoop>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QThreadPool>
#include <QTimer>
#include <cstdio>

QStringList Screenshots::demoFiles(const QString& folder) {
    QStringList files;
    const QDir dir(folder);
    for (const QString& name :
         dir.entryList({"*.jpg", "*.jpeg", "*.png", "*.heic", "*.mov", "*.mp4"}, QDir::Files, QDir::Name))
        files << dir.absoluteFilePath(name);
    return files;
}

void Screenshots::settle(int ms) {
    // Twice: thumbnails finished on the pool are handed to the scene on the next turns.
    for (int round = 0; round < 2; ++round) {
        QEventLoop loop;
        QTimer::singleShot(ms / 2, &loop, &QEventLoop::quit);
        loop.exec();
        QThreadPool::globalInstance()->waitForDone(10000);
    }
}

void Screenshots::shoot(const QString& name) {
    settle();
    const QString path = dir_ + "/" + prefix_ + "-" + name + ".png";
    const QImage image = window_->grabWindow();
    if (image.isNull() || !image.save(path)) {
        std::fprintf(stderr, "could not write %s\n", qPrintable(path));
        ++failures_;
        return;
    }
    std::printf("%s\n", qPrintable(path));
}

void Screenshots::set(QObject* model, const char* property, const QVariant& value) {
    if (model->metaObject()->indexOfProperty(property) < 0 || !model->setProperty(property, value))
        std::fprintf(stderr, "note: %s has no property %s\n", model->metaObject()->className(), property);
}

void Screenshots::call(QObject* model, const char* method, int argument) {
    if (!QMetaObject::invokeMethod(model, method, Q_ARG(int, argument)))
        std::fprintf(stderr, "note: %s has no %s(int)\n", model->metaObject()->className(), method);
}

void Screenshots::drawAt(const QString& prefix, int width, int height, const QStringList& files) {
    prefix_ = prefix;
    engine_.setInitialProperties({{"width", width}, {"height", height}});
    engine_.load(QUrl(QStringLiteral("qrc:/qml/Main.qml")));
    if (engine_.rootObjects().isEmpty()) {
        ++failures_;
        return;
    }
    QObject* root = engine_.rootObjects().constLast();
    window_ = qobject_cast<QQuickWindow*>(root);
    if (!window_) {
        ++failures_;
        return;
    }
    AppController& app = *models_.app;
    settle();

    // The group as a list and as a grid, then one item (one with a place) in the detail.
    models_.albumList->openPaths(files);
    shoot("group-list");
    models_.group->toggleView();
    shoot("group-grid");
    models_.group->toggleView();
    models_.group->show(std::min<int>(1, int(files.size()) - 1));
    shoot("detail-table");
    // The map row at the table's end.
    if (QObject* table = root->findChild<QObject*>(QStringLiteral("detailTable"))) {
        QMetaObject::invokeMethod(table, "positionViewAtEnd");
        shoot("detail-map");
        if (QObject* popup = overlay("AddressListPopup {}")) {
            QMetaObject::invokeMethod(popup, "open");
            shoot("address-list");
            delete popup;
        }
        QMetaObject::invokeMethod(table, "positionViewAtBeginning");
    }
    drawMaps();

    set(models_.detail, "showTags", true);
    settle();
    call(models_.tagTable, "toggle", 0);
    shoot("tag-table");
    call(models_.tagTable, "toggle", 0);
    set(models_.detail, "showTags", false);

    set(models_.detail, "fullScreen", true);
    shoot("full-screen");
    set(models_.detail, "fullScreen", false);

    editScreens(files);

    set(models_.share, "menuOpen", true);
    shoot("share-menu");
    set(models_.share, "menuOpen", false);

    // The item's resource list once every step is counted, then its first auxiliary image.
    models_.resources->setOpen(true);
    for (int i = 0; i < 100 && models_.resources->showProgress(); ++i) settle(200);
    shoot("resources");
    const QVariantList rows = models_.resources->sections().value(0).toMap().value("rows").toList();
    if (rows.size() > 1) {
        models_.resources->showMedia(rows[1].toMap().value("url").toUrl());
        shoot("resource-media");
    }
    models_.resources->setOpen(false);

    // The album list with the files album in it; on a tablet the item stays beside it.
    app.rebuildRoot();
    shoot("album-list");
    app.openSettings();
    shoot("settings");
    app.openAbout();
    shoot("about");
    app.rebuildRoot();
    iptcScreens(files);
    libraryScreens();

    window_->close();
    delete root;
    window_ = nullptr;
    settle(100);
}

void Screenshots::libraryScreens() {
    // Only over a library named for the purpose: pictures never show the user's own photos.
    if (qEnvironmentVariableIsEmpty("TESSORIN_LIBRARY")) return;
    AppController& app = *models_.app;
    models_.openLibrary({}, false);
    app.rebuildRoot();
    shoot("library-albums");
    models_.albumList->selectEntry(0, 0);
    shoot("library-group");
    models_.group->show(2);  // newest first: the demo's live photo
    shoot("library-detail");
    models_.toolBar->favorite();
    shoot("library-favorite");
    models_.toolBar->favorite();
    app.rebuildRoot();
}

QObject* Screenshots::overlay(const QByteArray& qml) {
    QQmlComponent component(&engine_);
    component.setData("import QtQuick\nimport QtQuick.Controls\nimport Tessorin\n" + qml, QUrl("qrc:/qml/Overlay.qml"));
    QObject* object = component.create();
    if (!object) {
        std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
        ++failures_;
        return nullptr;
    }
    if (auto* item = qobject_cast<QQuickItem*>(object)) {
        item->setParentItem(window_->contentItem());
        item->setZ(1000);
        item->setSize(window_->contentItem()->size());
    } else {
        object->setParent(window_->contentItem());
        object->setProperty("parent", QVariant::fromValue(window_->contentItem()));
    }
    return object;
}

void Screenshots::drawMaps() {
    // The offline map at world, country and city zoom, with a pin and its arrow.
    if (QObject* view = overlay("MapView { place: ({latitude: 45.4642, longitude: 9.19, title: \"Milan\", heading: 211.2}) }")) {
        auto* map = qobject_cast<TSMapView*>(view->property("map").value<QObject*>());
        if (!map) return;
        for (const auto& [name, zoom] : {std::pair{"map-world", 1.5}, std::pair{"map-country", 5.5}, std::pair{"map-city", 12.0}}) {
            map->setZoom(zoom);
            shoot(name);
        }
        map->recenter();
        shoot("map-pin");
        delete view;
    }
    // The location screen for the item on view, after a search by name.
    const auto asset = TSEnvironment::currentAlbum()->currentAsset;
    if (asset && asset->ddStore().location) {
        HRLocation own;
        own.location = asset->ddStore().location;
        own.title = asset->ddStore().placemark ? placeText(*asset->ddStore().placemark) : QString();
        own.subtitle = hrl::coordinatesText(*own.location, true);
        models_.location->setPhotoLocation(own);
    }
    models_.location->search(QStringLiteral("Lisbon"));
    if (QObject* page = overlay("LocationPage {}")) {
        shoot("location");
        delete page;
    }
    if (QObject* page = overlay("MapPickerPage {}")) {
        models_.mapPicker->longPress(48.8584, 2.2945);
        shoot("map-picker");
        delete page;
    }
}

void Screenshots::iptcScreens(const QStringList& files) {
    QStringList photos;
    for (const QString& f : files)
        if (!f.endsWith(".mov", Qt::CaseInsensitive) && !f.endsWith(".mp4", Qt::CaseInsensitive)) photos << f;
    if (photos.isEmpty()) return;
    IptcViewModel editor;
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qml/IptcPage.qml")));
    auto open = [](QObject* page, const char* popup, int row) {
        page->setProperty("chosenRow", row);
        if (QObject* p = page->findChild<QObject*>(popup)) QMetaObject::invokeMethod(p, "open");
    };
    auto close = [](QObject* page, const char* popup) {
        if (QObject* p = page->findChild<QObject*>(popup)) QMetaObject::invokeMethod(p, "close");
    };
    for (const int count : {1, 3}) {
        if (!editor.openPhotos(photos.mid(0, count))) continue;
        std::unique_ptr<QObject> page(component.createWithInitialProperties({{"editor", QVariant::fromValue(&editor)}}));
        auto* item = qobject_cast<QQuickItem*>(page.get());
        if (!item) {
            std::fprintf(stderr, "IptcPage: %s\n", qPrintable(component.errorString()));
            ++failures_;
            return;
        }
        item->setParentItem(window_->contentItem());
        item->setSize(window_->size());
        item->setZ(1000);
        if (count == 1) {
            shoot("iptc-one");
            continue;
        }
        editor.setText(3, QStringLiteral("Fête de la Musique"));  // the headline, as an edit
        shoot("iptc-many");
        const int contact = 8, country = 17, sourceType = 18;
        open(item, "contactForm", contact);
        shoot("iptc-contact");
        close(item, "contactForm");
        open(item, "optionsChooser", sourceType);
        shoot("iptc-options-chooser");
        close(item, "optionsChooser");
        open(item, "listChooser", country);
        shoot("iptc-list-chooser");
        close(item, "listChooser");
        editor.editTemplate();
        open(item, "templateForm", -1);
        shoot("iptc-template");
        close(item, "templateForm");
        editor.finishTemplate(false);
    }
}

void Screenshots::editScreens(const QStringList& files) {
    EditViewModel& edit = *models_.edit;
    QObject* stack = window_->findChild<QObject*>(QStringLiteral("editScreen"));
    if (!stack || !edit.openCurrent()) {
        std::fprintf(stderr, "note: no edit screen\n");
        return;
    }
    auto pop = [&] {
        QMetaObject::invokeMethod(stack, "back");
        settle();
    };
    shoot("edit");
    QStringList photos, videos;
    const QString current = edit.selectedAssets().first()->path();
    for (const QString& f : files)
        if (f != current) (f.endsWith(".mov", Qt::CaseInsensitive) || f.endsWith(".mp4", Qt::CaseInsensitive) ? videos : photos) << f;
    edit.addFiles(photos.mid(0, 3));
    for (int i = 0; i < 100 && edit.loading(); ++i) settle(100);
    shoot("edit-many");
    edit.select(2, 1);
    edit.dateScreen()->tap(0, 0);
    shoot("edit-date");
    pop();
    edit.select(4, 0);
    shoot("edit-rotation");
    pop();
    edit.setShift(QStringLiteral("+0:52"));
    edit.select(2, 3);
    shoot("edit-shift");
    pop();
    edit.select(3, 2);
    shoot("edit-track");
    pop();
    edit.select(3, 1);
    shoot("edit-location");
    pop();
    if (QObject* sheet = window_->findChild<QObject*>(QStringLiteral("saveSheet"))) {
        QMetaObject::invokeMethod(sheet, "open");
        shoot("edit-save");
        QMetaObject::invokeMethod(sheet, "close");
    }
    edit.close();
    if (!videos.isEmpty() && edit.openFile(videos.first())) {
        shoot("edit-video");
        edit.close();
    }
    settle(300);
}

int Screenshots::run(const QString& outputDir, const QStringList& files) {
    // The maps draw offline, so that the pictures are the same on every machine.
    Settings::setProcessOverride(TSMapView::standardTilesKey, "none");
    if (files.isEmpty()) {
        std::fprintf(stderr, "no files to show: make the demo album first (cmake --build BUILD --target demo)\n");
        return 1;
    }
    if (!QDir().mkpath(outputDir)) {
        std::fprintf(stderr, "cannot make %s\n", qPrintable(outputDir));
        return 1;
    }
    dir_ = outputDir;
    drawAt(QStringLiteral("phone"), 390, 844, files);
    drawAt(QStringLiteral("tablet"), 1180, 820, files);
    // And again in the dark scheme.
    models_.colors->setPreference(QStringLiteral("dark"));
    drawAt(QStringLiteral("phone-dark"), 390, 844, files);
    drawAt(QStringLiteral("tablet-dark"), 1180, 820, files);
    return failures_ == 0 ? 0 : 1;
}
