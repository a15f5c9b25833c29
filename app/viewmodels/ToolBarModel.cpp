#include "ToolBarModel.h"

#include "Log.h"
#include "Settings.h"
#include "TSAlbum.h"

namespace {

struct MoreEntry {
    const char* title;
    const char* symbol;
    SettingsFlag flag;
};
// "Delete" joins these on a tablet once items can be deleted from the library.
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
    if (tools == tools_) return;
    tools_ = tools;
    emit toolsChanged();
}

QVariantList ToolBarModel::moreMenu() const {
    QVariantList menu;
    for (const MoreEntry& e : moreEntries)
        menu.append(QVariantMap{{"title", e.title}, {"symbol", e.symbol}, {"checked", Settings::flag(e.flag)}});
    return menu;
}

void ToolBarModel::toggleMore(int index) {
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
