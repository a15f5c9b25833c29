#pragma once
// The album over a fetch of the photo library. Moving the position builds the item's TSAsset
// from the asset's file on disk (the edit when there is one); the library's dates and places
// are those the file itself gives.
#include "Library.h"
#include "TSAlbum.h"

#include <QTimer>

class TSPhotoAlbum : public AbstractAlbum {
public:
    explicit TSPhotoAlbum(bool isBurst = false) : burst_(isBurst) {}

    std::optional<library::FetchResult> fetchedAssets;
    int precProcessed = -1;  // the index last given to process

    // Nothing happens for the same fetch at the same index; a new fetch reloads the group.
    void setAlbum(const library::FetchResult& fetch, int index, const QString& title);
    // The index of the item with this identifier in the fetch, or nothing.
    std::optional<int> indexOfAsset(const std::optional<QString>& localIdentifier) const;

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
    bool needDownload() const override { return false; }
    std::optional<QDateTime> date(int index) const override;

private:
    void process();
    std::shared_ptr<TSAlbum> self();
    const library::Asset* assetAt(int index) const;
    bool burst_ = false;
    bool favoriting_ = false;
    QString title_;
    std::optional<int> subType_;
};
