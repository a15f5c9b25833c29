// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditViewModel.h"

#include "AppState.h"
#include "ModuleTexts.h"
#include "AddingPicture.h"
#include "Albums.h"
#include "DateModifierViewModel.h"
#include "DateShift.h"
#include "ExifModifier.h"
#include "Formatter.h"
#include "Geotagger.h"
#include "IptcEditorModel.h"
#include "IptcViewModel.h"
#include "Library.h"
#include "LocationModifierViewModel.h"
#include "Log.h"
#include "RotationModifierViewModel.h"
#include "Settings.h"
#include "Sidecars.h"
#include "TSAlbum.h"
#include "TSFilesAlbum.h"
#include "TSPhotoAlbum.h"
#include "TSAsset.h"
#include "TSMeanings.h"
#include "TagsPhotoModifier.h"
#include "VideoModifier.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QPointer>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>
#include <QtConcurrent>
#include <utility>

namespace {

// A label as a row shows it: "Original Date:" → "Original Date".
QString bare(const std::optional<QString>& label) {
    QString text = moduletexts::tagLabel(label.value_or(QString()));
    if (text.endsWith(':')) text.chop(1);
    return text;
}

QString thumbnailOf(const QString& path) {
    return QStringLiteral("image://thumb/") + QString::fromLatin1(QUrl::toPercentEncoding(path));
}

// A picker's answer may be a file URL.
QString localPath(const QString& text) { return text.startsWith(QLatin1String("file:")) ? QUrl(text).toLocalFile() : text; }

QString canonical(const QString& path) {
    const QString c = QFileInfo(path).canonicalFilePath();
    return c.isEmpty() ? QFileInfo(path).absoluteFilePath() : c;
}

// Runs `work` on the thread pool and hands its answer to `done` on `context`'s thread, unless
// `context` is gone by then.
template <typename T>
void runOffThread(QObject* context, std::function<T()> work, std::function<void(const T&)> done) {
    auto* watcher = new QFutureWatcher<T>(context);
    QObject::connect(watcher, &QFutureWatcher<T>::finished, context, [watcher, done] {
        done(watcher->result());
        watcher->deleteLater();
    });
    watcher->setFuture(QtConcurrent::run(std::move(work)));
}

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

EditViewModel::EditViewModel(QObject* parent)
    : QObject(parent),
      date_(new DateModifierViewModel(this)),
      rotation_(new RotationModifierViewModel(this)),
      iptc_(new IptcViewModel(this)) {}

EditViewModel::~EditViewModel() = default;

bool EditViewModel::openCurrent() {
    auto current = TSEnvironment::currentAlbum()->currentAsset;
    return current && open(current);
}

bool EditViewModel::openFile(const QString& path) {
    auto asset = std::make_shared<TSAsset>(path);
    return !asset->readError() && open(asset);
}

bool EditViewModel::open(std::shared_ptr<TSAsset> first) {
    if (!first) return false;
    ++visit_;
    settings_ = std::make_unique<UserSettings>(first->metaData(), first->ddStore());
    assets_ = {first};
    pending_.clear();
    loadingNow_ = false;
    isVideo_ = first->isVideo();
    batch_ = {};
    trackPath_.clear();
    shiftPreview_.clear();
    trackMatches_.clear();
    exportingUrls_.clear();
    setActivity({});
    emit activeChanged();
    emit changed();
    return true;
}

void EditViewModel::close() {
    if (!settings_) return;
    ++visit_;
    settings_.reset();
    assets_.clear();
    pending_.clear();
    loadingNow_ = false;
    emit activeChanged();
    emit changed();
}

QString EditViewModel::title() const { return isVideo_ ? QCoreApplication::translate("EditViewModel", "Change Video Tags") : QString(); }

QVariantList EditViewModel::sections() const {
    if (!settings_) return {};
    const bool multiple = assets_.size() > 1;
    const UserSettings& s = *settings_;
    const IptcEditorModel editors(*settings_, int(assets_.size()));
    auto row = [](const QString& kind, const QString& title, const QString& detail = {}) {
        return QVariantMap{{"kind", kind}, {"title", title}, {"detail", detail}, {"value", QString()},
                           {"placeholder", QString()}, {"dimmed", false}, {"checked", false}, {"key", QString()}};
    };
    auto switchRow = [&](const QString& title, Sections section, const QString& detail = {}) {
        QVariantMap r = row(QStringLiteral("switch"), title, detail);
        r["checked"] = s.switchers[section];
        return r;
    };
    auto editor = [&](const EMRowData& data) {
        QVariantMap r = row(QStringLiteral("editor"), bare(data.header));
        const auto v = editors.value(*data.key);
        r["key"] = EditKeys::caseName(*data.key);
        r["value"] = v == kRemovalMark ? QCoreApplication::translate("EditViewModel", "%1 [removed]").arg(data.header.value_or(QString())) : v.value_or(QString());
        r["placeholder"] = multiple ? QCoreApplication::translate("EditViewModel", "Unchanged")
                                    : QCoreApplication::translate("EditViewModel", "Add %1 here").arg(bare(data.placeholder));
        return r;
    };

    const int count = s.switchers[Sections::noTags] ? 2 : isVideo_ ? 4 : 8;
    QVariantList out;
    for (int n = 0; n < count; ++n) {
        const auto section = Sections(n);
        QString title;
        QVariantList rows;
        switch (section) {
        case Sections::selected: rows << row(QStringLiteral("images"), {}); break;
        case Sections::noTags:
            title = QCoreApplication::translate("EditViewModel", "No Tags");
            rows << (isVideo_ ? switchRow(QCoreApplication::translate("EditViewModel", "No extra data"), section, QCoreApplication::translate("EditViewModel", "May result in a different rotation"))
                              : switchRow(QCoreApplication::translate("EditViewModel", "Image structure tags only"), section));
            break;
        case Sections::dateTime: {
            title = QCoreApplication::translate("EditViewModel", "Date and time");
            rows << switchRow(QCoreApplication::translate("EditViewModel", "No Date and Time tags"), section);
            if (s.switchers[section]) break;
            const QList<EMRowData> dates = EMSections::rows(section);
            for (int i = 0; i < (isVideo_ ? 1 : dates.size()); ++i) {
                QVariantMap r = row(QStringLiteral("disclosure"), {}, bare(dates[i].header));
                const auto text = s.value(dates[i].key);
                auto date = text ? Formatter::exifDate(*text) : std::nullopt;
                if (text && !date) date = Formatter::parse(*text, Formatter::Style::fullDate);
                if (date) r["title"] = Formatter::format(*date, Formatter::Style::fullDate);
                else if (text && !text->isEmpty()) r["title"] = *text;
                else {
                    r["title"] = multiple ? QCoreApplication::translate("EditViewModel", "Unchanged")
                                          : QCoreApplication::translate("EditViewModel", "Add %1 here").arg(bare(dates[i].placeholder));
                    r["dimmed"] = true;
                }
                rows << r;
            }
            if (!isVideo_) {
                QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "Shift by..."), shiftPreview_);
                r["key"] = QStringLiteral("shift");
                rows << r;
            }
            break;
        }
        case Sections::location:
            title = QCoreApplication::translate("EditViewModel", "Location");
            rows << switchRow(QCoreApplication::translate("EditViewModel", "No location tag"), section);
            if (s.switchers[section]) break;
            rows << row(QStringLiteral("disclosure"), moduletexts::editText(s.locationText(multiple)));
            if (!isVideo_) {
                QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "From a track log..."),
                                    trackPath_.isEmpty() ? QString() : QFileInfo(trackPath_).fileName());
                r["key"] = QStringLiteral("track");
                rows << r;
            }
            break;
        case Sections::rotation:
            title = QCoreApplication::translate("EditViewModel", "Orientation");
            rows << row(QStringLiteral("disclosure"), moduletexts::editText(s.rotationText()));
            break;
        case Sections::userComment:
            title = QCoreApplication::translate("EditViewModel", "User Comment");
            rows << editor(EMSections::rows(section).first());
            break;
        case Sections::iptc: {
            title = QCoreApplication::translate("EditViewModel", "IPTC tags");
            QVariantMap r = row(QStringLiteral("disclosure"), QCoreApplication::translate("EditViewModel", "Edit IPTC tags"));
            r["symbol"] = QStringLiteral("text.below.photo.fill");
            rows << r;
            break;
        }
        case Sections::camera:
            title = QCoreApplication::translate("EditViewModel", "Camera");
            for (const EMRowData& data : EMSections::rows(section)) rows << editor(data);
            break;
        }
        out << QVariantMap{{"section", n}, {"title", title}, {"rows", rows}};
    }
    return out;
}

QStringList EditViewModel::thumbnails() const {
    QStringList out;
    for (const auto& a : assets_) out << thumbnailOf(a->path());
    return out;
}

QString EditViewModel::maxImagesText() const { return QCoreApplication::translate("EditViewModel", "max %1").arg(appState().maxImages); }
bool EditViewModel::addVisible() const { return settings_ && !isVideo_; }
bool EditViewModel::addEnabled() const { return addVisible() && assets_.size() + pending_.size() < appState().maxImages; }
int EditViewModel::room() const { return qMax(0, int(appState().maxImages - assets_.size() - pending_.size())); }

void EditViewModel::setActivity(const QString& text, int total) {
    activity_ = text;
    progressDone_ = 0;
    progressTotal_ = total;
    emit activityChanged();
}

void EditViewModel::addFiles(const QStringList& paths) {
    if (!addEnabled()) return;
    QStringList chosen;
    for (const auto& a : assets_) chosen << canonical(a->path());
    for (const QString& p : pending_) chosen << canonical(p);
    bool duplicate = false;
    int room = this->room();
    for (const QString& picked : paths) {
        const QString path = localPath(picked);
        const QString c = canonical(path);
        if (chosen.contains(c)) {
            duplicate = true;
            continue;
        }
        if (room-- <= 0) break;
        chosen << c;
        pending_ << path;
    }
    emit changed();
    // The alert first; the loading goes on once it is dismissed.
    if (duplicate) emit alert(QCoreApplication::translate("EditViewModel", "Alert"), QCoreApplication::translate("EditViewModel", "One or more selected photos are already among the chosen set"));
    else requestAsset();
}

QVariantList EditViewModel::albumChoices() const {
    const auto album = TSEnvironment::currentAlbum();
    const auto* files = dynamic_cast<const TSFilesAlbum*>(album.get());
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(album.get());
    QStringList chosen;
    for (const auto& a : assets_) chosen << canonical(a->path());
    QVariantList out;
    for (int i = 0; i < album->count(); ++i) {
        if (album->isVideo(i)) continue;
        QString path;
        if (files) path = files->imageUrl(i).value_or(QString());
        else if (photos && photos->fetchedAssets) path = photos->fetchedAssets->objectAt(i).mainPath();
        if (path.isEmpty()) continue;
        out << QVariantMap{{"path", path}, {"image", thumbnailOf(path)}, {"chosen", chosen.contains(canonical(path))}};
    }
    return out;
}

void EditViewModel::alertDismissed() { requestAsset(); }

void EditViewModel::requestAsset() {
    if (loadingNow_) return;
    if (pending_.isEmpty()) {
        if (activity_ == QLatin1String("Loading Photo...")) setActivity({});
        emit changed();
        return;
    }
    const QString path = pending_.takeFirst();
    loadingNow_ = true;
    Log::info("🔄 " + path);
    if (activity_.isEmpty()) setActivity(QCoreApplication::translate("EditViewModel", "Loading Photo..."));
    const quint64 visit = visit_;
    runOffThread<std::shared_ptr<TSAsset>>(
        this, [path] { return std::make_shared<TSAsset>(path); },
        [this, visit](const std::shared_ptr<TSAsset>& asset) {
            if (visit != visit_) return;
            Log::info("Adding image");
            assets_ << asset;
            loadingNow_ = false;
            refreshPreviews();
            emit changed();
            requestAsset();
        });
}

void EditViewModel::setSwitch(int section, bool on) {
    if (!settings_) return;
    const auto key = Sections(section);
    settings_->switchers.set(key, on);
    Log::info(QStringLiteral("Switch #%1: %2 [%3]").arg(section).arg(on).arg(settings_->switchers[key]));
    emit changed();
}

void EditViewModel::setText(const QString& key, const QString& text) {
    if (!settings_) return;
    const auto k = EditKeys::editableKey(key);
    if (!k) return;
    IptcEditorModel(*settings_, int(assets_.size())).setText(*k, text);
    emit changed();
}

void EditViewModel::select(int section, int row) {
    if (!settings_) return;
    const quint64 visit = visit_;
    // The sub-screens deliver into this visit's settings only.
    auto live = [this, visit]() -> UserSettings* { return visit == visit_ ? settings_.get() : nullptr; };
    const auto s = Sections(section);
    if (s == Sections::dateTime && row >= 1) {
        const QList<EMRowData> dates = EMSections::rows(s);
        const int dateRows = isVideo_ ? 1 : int(dates.size());
        if (row > dateRows) {
            emit pushRequested(QStringLiteral("shift"));
            return;
        }
        const EMRowData& data = dates[row - 1];
        date_->start(bare(data.header), *data.key, settings_->date(data.key), assets_.first(),
                     [live](const QDateTime& d, TSKey k) {
                         if (auto* st = live()) st->setDate(d, k);
                     });
        emit pushRequested(QStringLiteral("date"));
    } else if (s == Sections::location && row == 1) {
        if (locationScreen_) {
            locationScreen_->setPhotoLocation(settings_->initialLoc && settings_->initialLoc->location ? settings_->initialLoc
                                                                                                      : std::nullopt);
            locationScreen_->locationDelegate = [live](const HRLocation& l) {
                if (auto* st = live()) st->setLocation(l);
            };
        }
        emit pushRequested(QStringLiteral("location"));
    } else if (s == Sections::location && row == 2) {
        emit pushRequested(QStringLiteral("track"));
    } else if (s == Sections::rotation) {
        rotation_->start(settings_->initialOrientation, [live](int o) {
            if (auto* st = live()) st->setOrientation(o);
        });
        emit pushRequested(QStringLiteral("rotation"));
    } else if (s == Sections::iptc) {
        iptc_->attach(settings_.get(), int(assets_.size()));
        emit pushRequested(QStringLiteral("iptc"));
    }
}

void EditViewModel::reappear() {
    if (!settings_ || !settings_->disclosureChanged) return;
    refreshPreviews();
    emit changed();
}

bool EditViewModel::setShift(const QString& text) {
    if (text.trimmed().isEmpty()) {
        batch_.shiftSeconds.reset();
    } else {
        const auto seconds = DateShift::parseOffset(text.trimmed());
        if (!seconds) return false;
        batch_.shiftSeconds = *seconds;
    }
    refreshPreviews();
    emit changed();
    return true;
}

bool EditViewModel::setTrackLog(const QString& picked, const QString& offset, const QString& maxGap) {
    const QString path = localPath(picked);
    if (path.isEmpty()) {
        batch_.trackLog.reset();
        trackPath_.clear();
        refreshPreviews();
        emit changed();
        return true;
    }
    Geotagger::Options options;
    if (!offset.trimmed().isEmpty()) {
        const auto o = DateShift::parseOffset(offset.trimmed());
        if (!o) {
            emit alert(QString(), QCoreApplication::translate("EditViewModel", "Not a clock offset: %1").arg(offset));
            return false;
        }
        options.clockOffsetSeconds = *o;
    }
    if (!maxGap.trimmed().isEmpty()) {
        const auto g = Geotagger::parseDuration(maxGap.trimmed());
        if (!g) {
            emit alert(QString(), QCoreApplication::translate("EditViewModel", "Not a duration: %1").arg(maxGap));
            return false;
        }
        options.maxGapSeconds = *g;
    }
    QString error;
    auto log = TrackLog::readFile(path, &error);
    if (!log) {
        emit alert(QString(), QFileInfo(path).fileName() + QStringLiteral(": ") + error);
        return false;
    }
    batch_.trackLog = std::make_shared<const TrackLog>(std::move(*log));
    batch_.geotag = options;
    trackPath_ = path;
    refreshPreviews();
    emit changed();
    return true;
}

void EditViewModel::refreshPreviews() {
    shiftPreview_.clear();
    trackMatches_.clear();
    if (assets_.isEmpty()) return;
    if (batch_.shiftSeconds) {
        const auto own = string(assets_.first()->metaData(), TSKey::EXIF_DATE, false);
        const auto moved = own ? DateShift::shifted(*own, *batch_.shiftSeconds) : std::nullopt;
        auto shown = [](const QString& exif) {
            const auto d = Formatter::exifDate(exif);
            return d ? Formatter::format(*d, Formatter::Style::fullDate) : exif;
        };
        shiftPreview_ = own && moved ? shown(*own) + QStringLiteral(" → ") + shown(*moved) : QCoreApplication::translate("EditViewModel", "No date to shift");
    }
    if (batch_.trackLog) {
        for (const auto& a : assets_) {
            if (a->isVideo()) continue;
            TagsPhotoModifier tags(a->metaData());
            QString place;
            if (const auto problem = Geotagger::geotag(tags, *batch_.trackLog, batch_.geotag)) {
                place = *problem;
            } else if (const auto instant = Geotagger::captureInstant(tags)) {
                const qint64 at = instant->toMSecsSinceEpoch() + batch_.geotag.clockOffsetSeconds * 1000;
                if (const auto fix = batch_.trackLog->at(at, batch_.geotag.maxGapSeconds * 1000))
                    place = hrl::coordinatesText(GeoLocation(fix->latitude, fix->longitude), true).value_or(QString());
            }
            trackMatches_ << QVariantMap{{"name", QFileInfo(a->path()).fileName()}, {"place", place}};
        }
    }
}

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
    QList<ModifyingPhotoAsset> photos;
    for (const auto& a : assets_)
        if (!a->isVideo() && !a->readError() && !a->imageData().isEmpty())
            photos << ModifyingPhotoAsset{a, std::make_shared<TagsPhotoModifier>(a->metaData()), a->imageData(), 1};
    if (photos.size() != assets_.size()) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error getting image data"));
        return;
    }
    // "Modify" keeps the changes in the photos' XMP sidecars when the setting says so, and those
    // of photos that can't take them (raw files, read-only ones) in any case, telling why.
    QList<ModifyingPhotoAsset> inSidecars;
    QStringList notices;
    if (mode == int(SaveMode::modify)) {
        const bool always = Settings::value(SettingsKey::saveChangesIn).toString() == QLatin1String("sidecar");
        for (qsizetype i = 0; i < photos.size();) {
            const auto why = always ? std::nullopt : Sidecars::whyNotInPhoto(photos[i].tsAsset->path(), photos[i].tsAsset->imageData());
            if (!always && !why) {
                ++i;
                continue;
            }
            if (why) notices << QFileInfo(photos[i].tsAsset->path()).fileName() + ": " + *why;
            inSidecars << photos.takeAt(i);
        }
    }
    auto modifier = std::make_shared<ExifModifier>(photos);
    auto sidecarModifier = std::make_shared<ExifModifier>(inSidecars);
    if (batch_.any()) {
        const BatchWishes batch = batch_;
        modifier->eachPhoto = [batch](ModifyingPhotoAsset& p) {
            for (const QString& problem : applyBatch(*p.tags, batch)) Log::info(p.tsAsset->path() + ": " + problem);
        };
        sidecarModifier->eachPhoto = modifier->eachPhoto;
    }
    const QString notice = notices.isEmpty() ? QString()
                                             : QCoreApplication::translate("EditViewModel", "Saved in XMP sidecars, the photos left as they are:") +
                                                   "\n" + notices.join('\n');
    // The wishes are applied on the saving thread too, to a copy: the screen's stay as they are
    // for a save that changed nothing.
    auto wishes = std::make_shared<UserSettings>(*settings_);
    const QString folder = mode == int(SaveMode::files) ? newExportFolder() : QString();
    if (mode == int(SaveMode::files) && folder.isEmpty()) {
        emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error writing data to file"));
        return;
    }
    setActivity(QCoreApplication::translate("EditViewModel", "Saving Photo..."), int(photos.size() + inSidecars.size()));
    prepareAdding(mode);
    QPointer<EditViewModel> self(this);
    const int sidecarCount = int(inSidecars.size());
    modifier->progress = [self, sidecarCount](int done) {
        QMetaObject::invokeMethod(self, [self, done = done + sidecarCount] {
            if (!self) return;
            self->progressDone_ = done;
            emit self->activityChanged();
        }, Qt::QueuedConnection);
    };
    sidecarModifier->progress = [self](int done) {
        QMetaObject::invokeMethod(self, [self, done] {
            if (!self) return;
            self->progressDone_ = done;
            emit self->activityChanged();
        }, Qt::QueuedConnection);
    };
    runOffThread<Result>(
        this,
        [modifier, sidecarModifier, wishes, mode, folder, notice, folders = libraryFolders()] {
            // A copy each: the wishes are applied anew to every photo.
            UserSettings forSidecars = *wishes;
            modifier->modify(*wishes);
            sidecarModifier->modify(forSidecars);
            if (!modifier->anyChanged() && !sidecarModifier->anyChanged()) {
                removeFolder(folder);
                return Result{{}, std::nullopt, true};
            }
            // The library is opened on the thread that uses it.
            library::Library lib(folders);
            Result r;
            if (sidecarModifier->anyChanged()) {
                QStringList sidecars;
                if (auto failure = sidecarModifier->saveToSidecars(Settings::value(SettingsKey::sidecarBaseName).toBool(), sidecars))
                    return Result{{}, failure};
                for (const auto& photo : sidecarModifier->modifing)
                    if (const auto item = lib.assetForPath(photo.tsAsset->path())) r.urls << item->localIdentifier;
                r.notice = notice;
            }
            if (!modifier->anyChanged()) return r;
            modifier->library = &lib;
            if (!folder.isEmpty()) modifier->filesDirectory = folder;
            modifier->save(SaveMode(mode), [&r](const QStringList& urls, const std::optional<QString>& message) {
                r.urls << urls;
                r.message = message;
            });
            if (r.message) removeFolder(folder);
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

QUrl EditViewModel::exportFolder() const {
    // The pictures folder, or home where there is none: the file dialog lists the working
    // folder under a missing folder's name.
    const QDir pictures(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    return QUrl::fromLocalFile(pictures.exists() ? pictures.path() : QDir::homePath());
}

QUrl EditViewModel::exportSuggestion() const {
    if (exportingUrls_.size() != 1) return exportFolder();
    return QUrl::fromLocalFile(QDir(exportFolder().toLocalFile()).filePath(QUrl(exportingUrls_.first()).fileName()));
}

void EditViewModel::finishExport(const QUrl& target) {
    const QStringList urls = std::exchange(exportingUrls_, {});
    if (urls.isEmpty()) return;
    QString failed;
    if (target.isValid() && target.isLocalFile()) {
        const QString to = target.toLocalFile();
        const bool folder = QFileInfo(to).isDir();
        for (const QString& u : urls) {
            const QString from = QUrl(u).toLocalFile();
            const QString dest = folder ? QDir(to).filePath(QFileInfo(from).fileName()) : to;
            // Chosen in the save dialog, which asked before replacing.
            if (QFileInfo::exists(dest) && dest != from) QFile::remove(dest);
            if (!QFile::copy(from, dest)) failed = QFileInfo(dest).fileName();
        }
    }
    for (const QString& u : urls) {
        const QString path = QUrl(u).toLocalFile();
        if (!QFile::remove(path)) Log::error("Error deleting file " + path);
        // The folder made for this export goes with its last file.
        QDir().rmdir(QFileInfo(path).absolutePath());
    }
    if (!failed.isEmpty()) emit alert(QString(), QCoreApplication::translate("EditViewModel", "Error writing data to file") + QStringLiteral(" (") + failed + ')');
}
