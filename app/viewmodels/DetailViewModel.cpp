// SPDX-License-Identifier: GPL-3.0-or-later
#include "DetailViewModel.h"

#include "AppState.h"
#include "FileBytes.h"
#include "Log.h"
#include "Resources.h"
#include "Settings.h"
#include "TSPhotoAlbum.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>
#include <algorithm>
#include <cmath>

DetailViewModel::DetailViewModel(QObject* parent) : QObject(parent), strip_(new ImageStripModel(this)) {
    TSEnvironment::observable().addObserver(this);
}

void DetailViewModel::setShowTags(bool on) {
    if (on == showTags_) return;
    showTags_ = on;
    emit showTagsChanged();
}

// -- heights of the strip --

void DetailViewModel::setScreenSize(const QSizeF& size) {
    if (size == screenSize_) return;
    screenSize_ = size;
    layoutChanged();
}

void DetailViewModel::layoutChanged() {
    stripHeight_ = -1;
    emit geometryChanged();
    emit stripHeightChanged();
}

qreal DetailViewModel::defaultHeight(const QSizeF& screen, bool pad) {
    // A tablet's strip follows its short side, a phone's its long side.
    const qreal s = pad ? std::min(screen.width(), screen.height()) : std::max(screen.width(), screen.height());
    const qreal k = pad ? 0.12 : 0.15;
    return s * 0.5 - k * s - 44.0;
}

qreal DetailViewModel::defaultHeight() const {
    return std::max(minimumHeight(), defaultHeight(screenSize_, appState().isPad));
}

void DetailViewModel::setAvailableHeight(qreal height) {
    if (height == availableHeight_) return;
    availableHeight_ = height;
    emit geometryChanged();
}

void DetailViewModel::setStripHeight(qreal height) {
    if (height == stripHeight()) return;
    // At the default the strip keeps following it.
    stripHeight_ = height == defaultHeight() ? -1 : height;
    emit stripHeightChanged();
}

qreal DetailViewModel::stripHeight() const { return stripHeight_ < 0 ? defaultHeight() : stripHeight_; }

void DetailViewModel::offsetChanged(qreal dy) {
    if (bouncing_) return;
    const qreal c = stripHeight();
    const qreal h = dy <= 0 ? c - dy : std::max(c - std::abs(dy - precOffset_), minimumHeight());
    precOffset_ = dy;
    setStripHeight(h);
    if (h > maximumHeight()) setFullScreen(true);
}

void DetailViewModel::panChanged(qreal translationY) { offsetChanged(-std::min(translationY, 0.0)); }

qreal DetailViewModel::bounceTarget() const {
    return stripHeight() < defaultHeight() ? minimumHeight() : defaultHeight();
}

void DetailViewModel::dragEnded() {
    precOffset_ = 0;
    const qreal target = bounceTarget();
    if (target == stripHeight()) return;
    bouncing_ = true;
    emit bouncingChanged();
    Log::debug("bounceTo: " + QString::number(target));
    setStripHeight(target);
}

void DetailViewModel::bounceFinished() {
    if (!bouncing_) return;
    bouncing_ = false;
    emit bouncingChanged();
}

// -- full screen --

void DetailViewModel::setFullScreen(bool on) {
    if (on == fullScreen_) return;
    fullScreen_ = on;
    emit fullScreenChanged();
    setLivePlaying(on && Settings::flag(SettingsFlag::showLivePhotos));
    // Behind the full-screen view the strip goes back to its default height, so that coming
    // back does not open it again.
    if (on) QTimer::singleShot(400, this, [this] { setStripHeight(defaultHeight()); });
}

qreal DetailViewModel::minimumZoom(qreal viewWidth, qreal viewHeight, qreal imageWidth, qreal imageHeight) {
    if (imageWidth <= 0 || imageHeight <= 0) return 1.0;
    return std::min(viewWidth / imageWidth, viewHeight / imageHeight);
}

qreal DetailViewModel::maximumZoom(qreal viewWidth, qreal viewHeight, qreal imageWidth, qreal imageHeight) {
    return std::min(minimumZoom(viewWidth, viewHeight, imageWidth, imageHeight) * 7, 1.5);
}

// -- the current item --

int DetailViewModel::currentIndex() const { return TSEnvironment::currentAlbum()->actualIndex(); }

int DetailViewModel::count() const { return TSEnvironment::currentAlbum()->count(); }

bool DetailViewModel::currentIsVideo() const {
    const auto asset = TSEnvironment::currentAlbum()->currentAsset;
    return asset && asset->isVideo();
}

QUrl DetailViewModel::currentSource() const {
    const auto asset = TSEnvironment::currentAlbum()->currentAsset;
    return asset ? QUrl::fromLocalFile(asset->path()) : QUrl();
}

int DetailViewModel::indexAt(qreal offset, qreal inset, qreal itemWidth) {
    const int index = int(std::lround((offset + inset) / (itemWidth + lineSpacing)));
    Log::debug("🗂 CurrentIndex: " + QString::number(index));
    return index;
}

void DetailViewModel::setActualIndex(int index) {
    const auto album = TSEnvironment::currentAlbum();
    if (album->isEmpty()) return;
    album->setActualIndex(std::clamp(index, 0, album->count() - 1));
}

void DetailViewModel::dragBegan() { setBar(false, true); }

void DetailViewModel::decelerationEnded(qreal offset, qreal inset, qreal itemWidth) {
    const auto album = TSEnvironment::currentAlbum();
    if (album->isEmpty()) return;
    const int index = std::clamp(indexAt(offset, inset, itemWidth), 0, album->count() - 1);
    if (index != album->actualIndex() || !album->hasValidIndex()) {
        album->setActualIndex(index);
        emit alignRequested();
    } else {
        setBar(true, false);
    }
    if (!albumId_.isSameAlbum(*album)) emit reloadTables();
    albumId_.update(*album);
}

void DetailViewModel::next() { setActualIndex(currentIndex() + 1); }

void DetailViewModel::previous() { setActualIndex(currentIndex() - 1); }

void DetailViewModel::setBar(bool enabled, bool overlay) {
    if (enabled == barEnabled_ && overlay == overlayShown_) return;
    barEnabled_ = enabled;
    overlayShown_ = overlay;
    emit barChanged();
}

// -- notifications --

void DetailViewModel::beginLoading(const std::shared_ptr<TSAlbum>& album) {
    const auto a = album ? album : TSEnvironment::currentAlbum();
    setBar(false, !(albumId_.isSameAlbum(*a) && albumId_.isSameIndex(*a)));
}

void DetailViewModel::processedMetaData(const std::shared_ptr<TSAlbum>&) {
    setLivePlaying(false);
    setBar(true, false);
    albumId_.update(*TSEnvironment::currentAlbum());
    strip_->follow(false);
    emit currentChanged();
    emit alignRequested();
}

void DetailViewModel::progress(float value) {
    // Only a download that the album waits for shows its bar.
    cloudProgress_ = TSEnvironment::currentAlbum()->needDownload() ? value : -1;
    emit cloudChanged();
}

void DetailViewModel::done(const std::shared_ptr<TSAlbum>&) {
    cloudProgress_ = -1;
    emit cloudChanged();
    emit alignRequested();
}

void DetailViewModel::failure(const QString& message) {
    cloudProgress_ = -1;
    emit cloudChanged();
    if (!message.isEmpty()) emit alert(QCoreApplication::translate("DetailViewModel", "Alert"), message);
}

void DetailViewModel::takeIncremental() {
    // The strip shows the album as it is now; details the library observer left are spent.
    if (auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum())) {
        std::lock_guard lock(album->changes->semaphore);
        album->changes->incremental.reset();
    }
}

void DetailViewModel::albumChanged() {
    takeIncremental();
    Log::debug("## InTabViewController albumChanged() ##");
    // The items may have moved without the count changing.
    strip_->follow(true);
    emit currentChanged();
    emit alignRequested();
}

void DetailViewModel::offerAddedPicture(const Landing& allPhotos, const std::optional<Landing>& ownAlbum) {
    landings_ = {allPhotos};
    if (ownAlbum && Settings::flag(SettingsFlag::saveInTessorin)) landings_ << *ownAlbum;
    AddedDialog dialog{TSEnvironment::currentAlbum()->title(),
                       QCoreApplication::translate("DetailViewModel", "The Photo was added in a different album. Go to see it?"), {}};
    for (const Landing& l : landings_) dialog.actions << QCoreApplication::translate("DetailViewModel", "In the \u201C%1\u201D Album").arg(l.title);
    dialog.actions << QCoreApplication::translate("DetailViewModel", "Cancel");
    addedDialog_ = dialog;
    emit addedDialogRequested(dialog.title, dialog.message, dialog.actions);
}

void DetailViewModel::chooseAdded(int action) {
    addedDialog_.reset();
    if (action < 0 || action >= landings_.size()) return;
    const Landing landing = landings_[action];
    landings_.clear();
    auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(TSEnvironment::currentAlbum());
    if (!album) {
        album = std::make_shared<TSPhotoAlbum>();
        TSEnvironment::setCurrentAlbum(album);
    }
    album->setSubType(std::nullopt);
    album->setAlbum(landing.fetch, landing.index, landing.title);
    strip_->follow(true);
    emit reloadTables();
    emit currentChanged();
    emit alignRequested();
}

QUrl DetailViewModel::liveVideoSource() const {
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(TSEnvironment::currentAlbum().get());
    const library::Asset* asset = photos ? photos->currentLibraryAsset() : nullptr;
    if (!asset || !(asset->mediaSubtypes & library::Subtype::photoLive)) return {};
    for (const library::Resource& r : asset->resources)
        if (r.type == library::ResourceType::pairedVideo || r.type == library::ResourceType::fullSizePairedVideo)
            return QUrl::fromLocalFile(r.path);
    const EmbeddedLive* live = embeddedLive();
    return live ? live->url : QUrl();
}

qint64 DetailViewModel::liveStartMs() const {
    const EmbeddedLive* live = liveVideoSource().isEmpty() ? nullptr : embeddedLive();
    return live ? live->startMs : 0;
}

const DetailViewModel::EmbeddedLive* DetailViewModel::embeddedLive() const {
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(TSEnvironment::currentAlbum().get());
    const library::Asset* asset = photos ? photos->currentLibraryAsset() : nullptr;
    if (!asset || !(asset->mediaSubtypes & library::Subtype::photoLive)) return nullptr;
    const QString path = asset->mainPath();
    if (embeddedLive_.path == path && embeddedLive_.version == asset->version)
        return embeddedLive_.url.isEmpty() ? nullptr : &embeddedLive_;
    embeddedLive_ = {path, asset->version, {}, 0};
    imageio::FileBytes file;
    QString error;
    std::optional<EmbeddedMovie> movie;
    if (file.open(path, &error)) movie = embeddedMovie(file.bytes(), QFileInfo(path).fileName(), &error);
    if (!movie) {
        if (!error.isEmpty()) Log::error("No movie in the motion photo " + path + ": " + error);
        return nullptr;
    }
    if (auto copy = dataToTempFile(movie->data, movie->fileName)) embeddedLive_.url = QUrl::fromLocalFile(*copy);
    embeddedLive_.startMs = movie->presentationTimestampUs.value_or(0) / 1000;
    return embeddedLive_.url.isEmpty() ? nullptr : &embeddedLive_;
}

void DetailViewModel::setLivePlaying(bool on) {
    on = on && !liveVideoSource().isEmpty();
    if (on == livePlaying_) return;
    livePlaying_ = on;
    emit livePlayingChanged();
}
