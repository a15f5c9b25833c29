// SPDX-License-Identifier: GPL-3.0-or-later
#include "ToolBarModel.h"
#include <QCoreApplication>

#include "Albums.h"
#include "AppState.h"
#include "AssetModifier.h"
#include "Log.h"
#include "Settings.h"
#include "TSAlbum.h"
#include "TSPhotoAlbum.h"

namespace {

struct MoreEntry {
    const char* title;
    const char* symbol;
    SettingsFlag flag;
};
// On a tablet "Delete" stands before these.
const MoreEntry moreEntries[] = {
    {"Live Photo Preview", "livephoto", SettingsFlag::showLivePhotos},
    {"Human Readable Tags", "accessibility", SettingsFlag::human},
    {"Hide Empty Details", "text.redaction", SettingsFlag::hideEmptyTags},
};

constexpr int videoTimelapse = 0x40000;

}  // namespace

ToolBarModel::ToolBarModel(QObject* parent) : QObject(parent) {
    TSEnvironment::observable().addObserver(this);
    refresh();
}

QStringList ToolBarModel::toolsFor(const State& state) {
    if (state.albumEmpty) return {};
    QStringList tools;
    if (const auto& item = state.libraryItem) {
        // Shared albums and the like (subtypes past 1000) take no changes.
        const bool restricted = state.collectionSubtype && *state.collectionSubtype > 1000;
        if (!restricted) tools << "share";
        if (!state.burstAlbum) {
            if (item->representsBurst) tools << "burst";
            if (!restricted && item->canEdit) tools << "prefer";
            if (!restricted && item->canDelete) tools << "delete";
            tools << "more";
        }
        if (state.subtypesReady && !state.timeLapse) tools << "edit";
    } else {
        tools << "share";
    }
    tools << "tags";
    return tools;
}

ToolBarModel::State ToolBarModel::currentState() {
    const auto album = TSEnvironment::currentAlbum();
    State state;
    state.albumEmpty = album->isEmpty();
    if (const auto* photos = dynamic_cast<const TSPhotoAlbum*>(album.get()))
        if (const library::Asset* asset = photos->currentLibraryAsset()) {
            // The library's numbering of edit operations: 2 delete, 3 properties.
            state.libraryItem = LibraryItem{asset->canPerformEditOperation(2), asset->canPerformEditOperation(3),
                                            asset->representsBurst, asset->favorite};
        }
    state.burstAlbum = album->isBurst();
    state.collectionSubtype = album->subType();
    if (const auto& asset = album->currentAsset) {
        const auto subtypes = asset->ddStore().mediaSubtypes();
        state.subtypesReady = subtypes.ready;
        state.timeLapse = subtypes.isVideo && (subtypes.mask.value_or(0) & videoTimelapse);
    }
    return state;
}

void ToolBarModel::refresh() {
    const QStringList tools = toolsFor(currentState());
    const QString heart = favoriteSymbol();
    if (tools == tools_ && heart == favoriteSymbol_) return;
    tools_ = tools;
    favoriteSymbol_ = heart;
    emit toolsChanged();
}

QString ToolBarModel::favoriteSymbol() const {
    const auto item = currentState().libraryItem;
    return item && item->favorite ? QStringLiteral("heart.fill") : QStringLiteral("heart");
}

QVariantList ToolBarModel::moreMenu() const {
    QVariantList menu;
    if (appState().isPad && tools_.contains(QLatin1String("delete")))
        menu.append(QVariantMap{{"title", "Delete"}, {"symbol", "trash"}, {"checked", false}, {"action", true}});
    for (const MoreEntry& e : moreEntries)
        menu.append(QVariantMap{{"title", e.title}, {"symbol", e.symbol}, {"checked", Settings::flag(e.flag)}});
    return menu;
}

void ToolBarModel::toggleMore(int index) {
    if (appState().isPad && tools_.contains(QLatin1String("delete"))) {
        if (index == 0) return requestDelete();
        --index;
    }
    if (index < 0 || index >= int(std::size(moreEntries))) return;
    const SettingsFlag flag = moreEntries[index].flag;
    Settings::setFlag(flag, !Settings::flag(flag));
    Log::debug(QString(moreEntries[index].title) + " is " + (Settings::flag(flag) ? "on" : "off"));
    emit moreMenuChanged();
    emit reloadTables();
}

void ToolBarModel::beginLoading(const std::shared_ptr<TSAlbum>&) { refresh(); }
void ToolBarModel::processedMetaData(const std::shared_ptr<TSAlbum>&) { refresh(); }
void ToolBarModel::albumChanged() { refresh(); }

namespace {

// The library item on view, with the library it lives in.
const library::Asset* currentItem() {
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(TSEnvironment::currentAlbum().get());
    return photos && TSEnvironment::library() ? photos->currentLibraryAsset() : nullptr;
}

}  // namespace

void ToolBarModel::favorite() {
    const library::Asset* asset = currentItem();
    if (!asset) return;
    TSEnvironment::currentAlbum()->startFavoriting();
    QString error;
    if (!AssetModifier::favorite(*TSEnvironment::library(), asset->localIdentifier, &error))
        emit alert(QCoreApplication::translate("ToolBarModel", "Favorite"), error);
    refresh();
}

void ToolBarModel::requestDelete() {
    const library::Asset* asset = currentItem();
    if (!asset) return;
    pendingDelete_ = asset->localIdentifier;
    const bool video = asset->mediaType == library::MediaType::video;
    emit deleteConfirmationRequested(QString(), video ? QCoreApplication::translate("ToolBarModel", "Are you sure you want to delete this video?")
                                                      : QCoreApplication::translate("ToolBarModel", "Are you sure you want to delete this photo?"),
                                     video ? QCoreApplication::translate("ToolBarModel", "Delete Video") : QCoreApplication::translate("ToolBarModel", "Delete Photo"));
}

void ToolBarModel::confirmDelete() {
    if (pendingDelete_.isEmpty() || !TSEnvironment::library()) return;
    const QString id = std::exchange(pendingDelete_, QString());
    QString error;
    if (!AssetModifier::remove(*TSEnvironment::library(), id, &error)) emit alert(QCoreApplication::translate("ToolBarModel", "Delete"), error);
    refresh();
}

void ToolBarModel::burst() {
    const library::Asset* asset = currentItem();
    if (!asset || asset->burstIdentifier.isEmpty()) return;
    // Every item of the burst, in the library's order.
    QStringList ids;
    const library::FetchResult all = TSEnvironment::library()->fetchAssets(Albums::fetchOptions());
    for (const library::Asset& a : all.assets())
        if (a.burstIdentifier == asset->burstIdentifier) ids << a.localIdentifier;
    auto album = std::make_shared<TSPhotoAlbum>(true);
    const library::FetchResult fetch = TSEnvironment::library()->fetchAssets(ids);
    const int index = int(fetch.indexOf(asset->localIdentifier).value_or(0));
    TSEnvironment::setCurrentAlbum(album);
    album->setAlbum(fetch, index, QCoreApplication::translate("ToolBarModel", "Burst Photos"));
    emit burstOpened();
}

void ToolBarModel::edit() {
    if (tools_.contains(QLatin1String("edit"))) emit editRequested();
}
