// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The album over a fetch of the photo library. Moving the position builds the item's TSAsset
// from the asset's file on disk (the edit when there is one); the library's dates and places
// are those the file itself gives. An item kept off the device is fetched first, with progress.
#include "ImageRequester.h"
#include "Library.h"
#include "TSAlbum.h"

#include <QTimer>
#include <mutex>

// Change details the library observer handed over and the detail strip has not yet applied;
// the mutex guards them between the two.
struct TSAlbumChanges {
    std::mutex semaphore;
    std::optional<library::ChangeDetails> incremental;
    std::optional<QString> addedImageLocalId;
};

class TSPhotoAlbum : public AbstractAlbum {
public:
    explicit TSPhotoAlbum(bool isBurst = false) : burst_(isBurst) {}
    // A fetch still reading stops rather than reading on into nothing.
    ~TSPhotoAlbum() override {
        if (imageRequester_) imageRequester_->onProgressCanceled();
    }

    // The setting that remembers the library item last on view, for the "open the last item" action.
    static constexpr char lastViewedKey[] = "lastViewedAsset";

    std::optional<library::FetchResult> fetchedAssets;
    int precProcessed = -1;  // the index last given to process
    const std::shared_ptr<TSAlbumChanges> changes = std::make_shared<TSAlbumChanges>();

    // Nothing happens for the same fetch at the same index; a new fetch reloads the group.
    void setAlbum(const library::FetchResult& fetch, int index, const QString& title);
    // The index of the item with this identifier in the fetch, or nothing.
    std::optional<int> indexOfAsset(const std::optional<QString>& localIdentifier) const;

    // The library asset on view, or at an index; nothing outside the fetch.
    const library::Asset* currentLibraryAsset() const { return assetAt(displayedIndex); }
    const library::Asset* assetAt(int index) const;

    bool favoriting() const override { return favoriting_; }
    bool hiding() const override { return false; }
    QString title() const override { return title_; }
    std::optional<int> subType() const override { return subType_; }
    void setSubType(std::optional<int> subtype) { subType_ = subtype; }
    bool isBurst() const override { return burst_; }
    void setActualIndex(int index) override;
    qint32 requestImage(int index, QSize targetSize, ImageClosure closure) override;
    bool isVideo(int index) const override;
    void cancelImageRequest(qint32) override {}
    int count() const override { return fetchedAssets ? int(fetchedAssets->count()) : 0; }
    size_t hash() const override;
    void startFavoriting() override;
    bool needDownload() const override { return imageRequester_ && imageRequester_->needDownload; }
    std::optional<QDateTime> date(int index) const override;

private:
    friend class AlbumItemRequest;
    void process();
    // The fetched bytes of the item on view have come: the item is built from them.
    void received(const library::Asset& asset, const std::optional<QByteArray>& data);
    // A fetch still running belongs to the item left: it is cancelled and its results dropped.
    void dropRequest();
    // One per fetch of an item off the device, so that a late result never lands on another item.
    std::unique_ptr<ImageRequester> imageRequester_;
    std::shared_ptr<TSAssetRequestManager> request_;
    std::shared_ptr<TSAlbum> self();
    bool burst_ = false;
    bool favoriting_ = false;
    QString title_;
    std::optional<int> subType_;
};
