// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Gets the whole file of a library item: the chosen resource's bytes from the disk first, then
// the image manager, then (for an item kept off the device) the current version and finally the
// original with progress, each stage only when the one before failed. Progress goes to the
// shared observable; the user can cancel.
#include "Library.h"
#include "Requests.h"
#include "TSAlbum.h"
#include "TSMetaDataObservable.h"

#include <QObject>
#include <QPointer>
#include <atomic>
#include <memory>
#include <optional>

// What receives the data: the item on view.
class TSAssetRequestManager {
public:
    virtual ~TSAssetRequestManager() = default;
    // The library item to read; nothing for a picked file.
    virtual const library::Asset* libraryAsset() const = 0;
    virtual void setData(const std::optional<QByteArray>& data, const std::optional<QString>& uti) = 0;
};

class ImageRequester : public QObject {
    Q_OBJECT
public:
    // Above this the data is dropped: it bounds memory.
    static constexpr qint64 dataLimit = 134217728;

    explicit ImageRequester(std::weak_ptr<TSMetaDataObservable> uiManager = TSEnvironment::sharedObservable());

    std::optional<qint32> lastRequest;
    std::optional<qint32> resourceRequest;
    bool needDownload = false;
    // Read by the reading threads too.
    bool resourceRequestCancelled() const { return flags_->resourceRequestCancelled; }
    bool stopDownload() const { return flags_->stopDownload; }

    void dataRequest(const std::shared_ptr<TSAssetRequestManager>& asset);
    void imageRequest(const std::shared_ptr<TSAssetRequestManager>& asset);
    void requestCloudCurrent(const std::shared_ptr<TSAssetRequestManager>& asset);
    void requestCloudOriginal(const std::shared_ptr<TSAssetRequestManager>& asset);
    void onProgressCanceled();

    // The resource whose bytes are the item's: the edit over the alternate over the original.
    static std::optional<library::Resource> chosenResource(const library::Asset& asset);
    static bool isLocallyAvailable(const library::Resource& resource);

private:
    struct Flags {
        std::atomic_bool resourceRequestCancelled = false;
        std::atomic_bool stopDownload = false;
    };
    std::shared_ptr<Flags> flags_ = std::make_shared<Flags>();
    std::weak_ptr<TSMetaDataObservable> uiManager_;
    std::weak_ptr<TSAssetRequestManager> tsAsset_;
    std::optional<QString> uti_;
    // From a reading thread: runs `body` on the GUI thread unless the requester is gone by then.
    static void onMain(QPointer<ImageRequester> self, std::function<void(ImageRequester&)> body);
    void finish(const std::optional<QByteArray>& data);
    void requestCloud(const std::shared_ptr<TSAssetRequestManager>& asset, library::ImageVersion version);
    TSMetaDataObservable* ui() const { return uiManager_.lock().get(); }
};
