// SPDX-License-Identifier: GPL-3.0-or-later
// The save: the question of how, and the photos or the video saved off the GUI thread.
#include "EditViewModel.h"

#include "AddingPicture.h"
#include "Albums.h"
#include "EditViewModelParts.h"
#include "Library.h"
#include "Log.h"
#include "PhotoSave.h"
#include "Settings.h"
#include "Sidecars.h"
#include "TSAlbum.h"
#include "TSAsset.h"
#include "TSEnvironment.h"
#include "VideoModifier.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTemporaryDir>
#include <QUrl>

using editparts::runOffThread;

namespace {

// Removes a folder made by newExportFolder; an empty path (none was made) is no folder at all,
// never the current one.
void removeFolder(const QString& folder) {
    if (!folder.isEmpty()) QDir(folder).removeRecursively();
}

// The folders of the library the screens show (the user may have chosen others than the
// default); a save opens its own library object over them on its thread.
QStringList libraryFolders() {
    const library::Library* shown = TSEnvironment::library();
    return shown ? shown->folders() : library::Library::defaultFolders();
}

// Before a save: a new item is looked for in the library the screens show once that library
// tells of the change (the album on view then jumps to it, or the detail offers where it landed).
void prepareAdding(int mode) {
    AddingPicture& adding = TSEnvironment::addingPicture();
    adding.adding = false;
    const library::Library* shown = TSEnvironment::library();
    if (mode != int(SaveMode::newItem) || !shown) return;
    adding.start(*shown, Albums::fetchOptions());
    adding.adding = true;
}

// A folder of its own for the files of one "Save to Files", so that names never clash.
QString newExportFolder() {
    QTemporaryDir dir(QDir(QDir::tempPath()).filePath(QStringLiteral("tessorin-export-XXXXXX")));
    dir.setAutoRemove(false);
    return dir.isValid() ? dir.path() : QString();
}

}  // namespace

bool EditViewModel::uneditable() const {
    library::Library lib(libraryFolders());
    for (const auto& a : assets_)
        if (a->isVideo()) return true;
        else if (const auto item = lib.assetForPath(a->path()); !item) return true;
        // A photo that can't be rewritten in place keeps its changes in its sidecar.
        else if (!item->canPerformEditOperation(1) && !Sidecars::whyNotInPhoto(a->path(), a->imageData())) return true;
    return false;
}

QVariantMap EditViewModel::saveAlert() const {
    bool photos = false;
    for (const auto& a : assets_) photos |= !a->isVideo();
    const bool many = assets_.size() > 1;
    const bool locked = uneditable();
    QString message;
    if (!photos) message = QCoreApplication::translate("EditViewModel", "Save a new video");
    else if (!many) message = locked ? QCoreApplication::translate("EditViewModel", "Save a new picture") : QCoreApplication::translate("EditViewModel", "Save a new picture or modify the current one?");
    else message = locked ? QCoreApplication::translate("EditViewModel", "Save new pictures") : QCoreApplication::translate("EditViewModel", "Save new pictures or modify the current ones?");
    QVariantList actions{QVariantMap{{"title", photos ? QCoreApplication::translate("EditViewModel", "New Picture") : QCoreApplication::translate("EditViewModel", "New Video")}, {"mode", 0}}};
    if (photos && !locked) actions << QVariantMap{{"title", QCoreApplication::translate("EditViewModel", "Modify")}, {"mode", 1}};
    actions << QVariantMap{{"title", QCoreApplication::translate("EditViewModel", "Save to Files")}, {"mode", 2}};
    actions << QVariantMap{{"title", QCoreApplication::translate("EditViewModel", "Cancel")}, {"mode", -1}};
    return {{"message", message}, {"actions", actions}};
}

void EditViewModel::save(int mode) {
    if (!settings_ || mode < 0 || mode > 2 || !activity_.isEmpty()) return;
    bool allVideos = true;
    for (const auto& a : assets_) allVideos &= a->isVideo();
    if (allVideos) saveVideo(mode);
    else savePhotos(mode);
}

void EditViewModel::savePhotos(int mode) {
    QList<std::shared_ptr<TSAsset>> photos;
    for (const auto& a : assets_)
        if (!a->isVideo() && !a->readError() && !a->imageData().isEmpty()) photos << a;
    if (photos.size() != assets_.size()) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error getting image data"));
        return;
    }
    // "Modify" keeps the changes in the photos' XMP sidecars when the setting says so, and those
    // of photos that can't take them (raw files, read-only ones) in any case, telling why.
    QList<std::shared_ptr<TSAsset>> inSidecars;
    QStringList notices;
    if (mode == int(SaveMode::modify)) {
        const bool always = Settings::value(SettingsKey::saveChangesIn).toString() == QLatin1String("sidecar");
        for (qsizetype i = 0; i < photos.size();) {
            const auto why = always ? std::nullopt : Sidecars::whyNotInPhoto(photos[i]->path(), photos[i]->imageData());
            if (!always && !why) {
                ++i;
                continue;
            }
            if (why) notices << QFileInfo(photos[i]->path()).fileName() + ": " + *why;
            inSidecars << photos.takeAt(i);
        }
    }
    const QString notice = notices.isEmpty() ? QString()
                                             : QCoreApplication::translate("EditViewModel", "Saved in XMP sidecars, the photos left as they are:") +
                                                   "\n" + notices.join('\n');
    // The wishes are applied on the saving thread, to a copy: the screen's stay as they are for a
    // save that changed nothing.
    auto wishes = std::make_shared<UserSettings>(*settings_);
    const QString folder = mode == int(SaveMode::files) ? newExportFolder() : QString();
    if (mode == int(SaveMode::files) && folder.isEmpty()) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error writing data to file"));
        return;
    }
    setActivity(QCoreApplication::translate("EditViewModel", "Saving Photo..."), int(photos.size() + inSidecars.size()));
    prepareAdding(mode);
    QPointer<EditViewModel> self(this);
    PhotoSave save;
    save.mode = SaveMode(mode);
    save.filesDirectory = folder;
    save.batch = batch_;
    save.problem = [](const QString& path, const QString& problem) { Log::info(path + ": " + problem); };
    save.progress = [self](int done) {
        QMetaObject::invokeMethod(self, [self, done] {
            if (!self) return;
            self->progressDone_ = done;
            emit self->activityChanged();
        }, Qt::QueuedConnection);
    };
    runOffThread<Result>(
        this,
        [save, wishes, photos, inSidecars, folder, notice, folders = libraryFolders()]() mutable {
            // The library is opened on the thread that uses it.
            library::Library lib(folders);
            save.library = &lib;
            const PhotoSave::Result saved = save.run(*wishes, photos, inSidecars);
            if (saved.nothingChanged || saved.failure) {
                removeFolder(folder);
                return saved.failure ? Result{{}, saved.failure} : Result{{}, std::nullopt, true};
            }
            Result r;
            if (!saved.sidecars.isEmpty()) {
                for (const auto& photo : inSidecars)
                    if (const auto item = lib.assetForPath(photo->path())) r.urls << item->localIdentifier;
                r.notice = notice;
            }
            r.urls << saved.written;
            return r;
        },
        [this, mode](const Result& r) { ended(mode, r); });
}

void EditViewModel::saveVideo(int mode) {
    QList<std::shared_ptr<const TSAsset>> videos;
    for (const auto& a : assets_) videos << a;
    auto made = ExifVideoModifier::make(videos);
    if (!made) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error getting video data"));
        return;
    }
    auto modifier = std::make_shared<ExifVideoModifier>(std::move(*made));
    modifier->modify(*settings_);
    const QString folder = newExportFolder();
    if (folder.isEmpty()) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error: Exporting Data"));
        return;
    }
    setActivity(QCoreApplication::translate("EditViewModel", "Saving Video..."), 1);
    prepareAdding(mode);
    runOffThread<Result>(
        this,
        [modifier, mode, folder, folders = libraryFolders()]() -> Result {
            // A new library item is written as a file first and then added.
            const auto written = modifier->save(mode == 0 ? 2 : mode, QDir(folder));
            if (const QString* message = std::get_if<QString>(&written)) {
                removeFolder(folder);
                return {{}, *message};
            }
            const QStringList paths = std::get<QStringList>(written);
            if (mode == 2) {
                QStringList urls;
                for (const QString& p : paths) urls << QUrl::fromLocalFile(p).toString();
                return {urls, std::nullopt};
            }
            QFile file(paths.value(0));
            const QByteArray data = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            removeFolder(folder);
            if (data.isEmpty()) return {{}, QCoreApplication::translate("EditViewModel", "Error: Exporting Data")};
            const TagsVideoModifier& tags = modifier->modifing.first().modifier;
            std::optional<library::Location> place;
            if (tags.userLocation) place = library::Location{tags.userLocation->coordinate.latitude, tags.userLocation->coordinate.longitude, std::nullopt};
            library::Library lib(folders);
            QString error;
            const auto id = lib.createAsset(data, QFileInfo(paths.value(0)).fileName(), tags.userDate, place, {}, &error);
            if (!id) {
                Log::error("Error saving the video: " + error);
                return {{}, QCoreApplication::translate("EditViewModel", "Error: Exporting Data (2)")};
            }
            return {{*id}, std::nullopt};
        },
        [this, mode](const Result& r) { ended(mode, r); });
}

void EditViewModel::ended(int mode, const Result& r) {
    setActivity({});
    // Unless a new item was saved, nothing will come to wait for.
    if (r.nothingChanged || r.message || r.urls.isEmpty() || !settings_) TSEnvironment::addingPicture().adding = false;
    if (!settings_) return;
    if (r.nothingChanged) {
        emit alert(QCoreApplication::translate("EditViewModel", "Nothing changed"), QCoreApplication::translate("EditViewModel", "No changes to save."));
        return;
    }
    if (r.message) {
        if (!r.message->isEmpty()) emit alert(QString(), *r.message);
        return;
    }
    Log::info("Success");
    settings_->saveRecents();
    if (mode == int(SaveMode::files)) {
        exportingUrls_ = r.urls;
        emit exportRequested(r.urls);
        return;
    }
    if (mode == int(SaveMode::newItem) && !r.urls.isEmpty()) emit newItemSaved(r.urls.last());
    if (!r.notice.isEmpty()) emit alert(QCoreApplication::translate("EditViewModel", "Saved in XMP Sidecars"), r.notice);
    emit saved(mode, r.urls);
    close();
}

