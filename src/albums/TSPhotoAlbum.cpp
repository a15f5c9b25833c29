// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSPhotoAlbum.h"

#include "Log.h"
#include "Settings.h"
#include "ThumbnailCache.h"
#include "TSMetaDataObservable.h"

#include <QCoreApplication>
#include <QThreadPool>
#include <atomic>

// The item on view while its bytes come from off the device. The album owns both this and the
// requester that calls it, so the album outlives every call.
class AlbumItemRequest : public TSAssetRequestManager {
public:
    AlbumItemRequest(const library::Asset& asset, TSPhotoAlbum* album) : asset_(asset), album_(album) {}
    const library::Asset* libraryAsset() const override { return &asset_; }
    void setData(const std::optional<QByteArray>& data, const std::optional<QString>&) override { album_->received(asset_, data); }

private:
    library::Asset asset_;
    TSPhotoAlbum* album_;
};

void TSPhotoAlbum::setAlbum(const library::FetchResult& fetch, int index, const QString& title) {
    if (fetchedAssets && *fetchedAssets == fetch && displayedIndex == index) return;
    const bool changed = !fetchedAssets || !(*fetchedAssets == fetch);
    fetchedAssets = fetch;
    displayedIndex = -1;
    precProcessed = -1;
    title_ = title;
    setActualIndex(index);
    if (GroupObserver* group = lastGroupObserver()) group->reload(changed);
}

std::shared_ptr<TSAlbum> TSPhotoAlbum::self() {
    if (auto held = weak_from_this().lock()) return held;
    return TSEnvironment::currentAlbum();
}

const library::Asset* TSPhotoAlbum::assetAt(int index) const {
    if (!fetchedAssets || index < 0 || index >= fetchedAssets->count()) return nullptr;
    return &fetchedAssets->objectAt(index);
}

void TSPhotoAlbum::setActualIndex(int index) {
    if (!fetchedAssets) return;
    if (count() <= index) index = count() - 1;
    const int v = qMax(index, 0);
    if (displayedIndex == v && !needDownload()) return;
    displayedIndex = v;
    std::weak_ptr<TSAlbum> weak = weak_from_this();
    const bool held = !weak.expired();
    auto& observable = TSEnvironment::observable();
    QTimer::singleShot(0, &observable, [weak, held] {
        std::shared_ptr<TSAlbum> album = held ? weak.lock() : TSEnvironment::currentAlbum();
        if (!album) return;
        TSEnvironment::observable().sendMetaData(MetaSelector::begin, album);
        if (auto photo = std::dynamic_pointer_cast<TSPhotoAlbum>(album)) photo->process();
    });
    Log::info(QStringLiteral(">> setActualIndex: %1 <<").arg(v));
}

void TSPhotoAlbum::process() {
    if (precProcessed == displayedIndex && !needDownload()) return;
    precProcessed = displayedIndex;
    dropRequest();
    const library::Asset* asset = assetAt(displayedIndex);
    if (!asset) {
        currentAsset.reset();
        return;
    }
    const auto resource = ImageRequester::chosenResource(*asset);
    if (resource && !ImageRequester::isLocallyAvailable(*resource)) {
        // Reading a network or FUSE mount may take long: no rows of the item left meanwhile.
        currentAsset.reset();
        imageRequester_ = std::make_unique<ImageRequester>(TSEnvironment::sharedObservable());
        request_ = std::make_shared<AlbumItemRequest>(*asset, this);
        imageRequester_->dataRequest(request_);
        return;
    }
    // The bytes of the resource on view are read from the disk at once.
    currentAsset = std::make_shared<TSAsset>(*asset, TSEnvironment::sharedObservable());
    Settings::setValue(QString::fromLatin1(lastViewedKey), asset->localIdentifier);
    TSEnvironment::observable().sendMetaData(MetaSelector::processed, self());
}

void TSPhotoAlbum::received(const library::Asset& asset, const std::optional<QByteArray>& data) {
    currentAsset = std::make_shared<TSAsset>(asset, data, TSEnvironment::sharedObservable());
    Settings::setValue(QString::fromLatin1(lastViewedKey), asset.localIdentifier);
    TSEnvironment::observable().sendMetaData(MetaSelector::processed, self());
}

void TSPhotoAlbum::dropRequest() {
    if (!imageRequester_) return;
    const bool running = imageRequester_->needDownload;
    imageRequester_->onProgressCanceled();
    imageRequester_.reset();
    request_.reset();
    // Its bar would otherwise stay on view over the next item.
    if (running) TSEnvironment::observable().interrupted();
}

std::optional<int> TSPhotoAlbum::indexOfAsset(const std::optional<QString>& localIdentifier) const {
    if (!localIdentifier || !fetchedAssets) return std::nullopt;
    auto index = fetchedAssets->indexOf(*localIdentifier);
    if (!index) {
        Log::warning(">>>> assetIndex: not found");
        return std::nullopt;
    }
    Log::debug(QStringLiteral(">>>> assetIndex: %1").arg(*index));
    return int(*index);
}

qint32 TSPhotoAlbum::requestImage(int index, QSize targetSize, ImageClosure closure) {
    static std::atomic<qint32> lastId{0};
    if (!fetchedAssets) {
        if (closure) closure(QImage(), false);
        return 0;
    }
    Q_ASSERT(index >= 0);
    const library::Asset* asset = assetAt(qMin(index, count() - 1));
    if (!asset) {
        if (closure) closure(QImage(), false);
        return 0;
    }
    const qint32 id = ++lastId;
    const QString path = asset->mainPath();
    const int maxSide = qMax(targetSize.width(), targetSize.height());
    QPointer<QCoreApplication> app = QCoreApplication::instance();
    // Decoding takes milliseconds to seconds: never on the GUI thread.
    QThreadPool::globalInstance()->start([path, maxSide, app, closure = std::move(closure)] {
        // Through the desktop's thumbnail cache, which file managers share.
        QImage image = library::thumbnails::forFile(path, maxSide);
        if (image.isNull()) Log::warning(QStringLiteral("🧨 no image for %1").arg(path));
        if (!app || !closure) return;
        QMetaObject::invokeMethod(app.data(), [closure, image] { closure(image, false); }, Qt::QueuedConnection);
    });
    return id;
}

bool TSPhotoAlbum::isVideo(int index) const {
    const library::Asset* asset = assetAt(qMin(index, count() - 1));
    return asset && asset->mediaType == library::MediaType::video;
}

size_t TSPhotoAlbum::hash() const {
    if (!fetchedAssets) return 0;
    size_t h = 0;
    for (const auto& a : fetchedAssets->assets()) h = qHashMulti(h, a.localIdentifier);
    return h;
}

void TSPhotoAlbum::startFavoriting() {
    favoriting_ = true;
    QTimer::singleShot(2000, &TSEnvironment::observable(), [weak = weak_from_this()] {
        if (auto album = std::dynamic_pointer_cast<TSPhotoAlbum>(weak.lock())) album->favoriting_ = false;
    });
}

std::optional<QDateTime> TSPhotoAlbum::date(int index) const {
    const library::Asset* asset = assetAt(index);
    if (!asset) return std::nullopt;
    return asset->creationDate;
}
