// SPDX-License-Identifier: GPL-3.0-or-later
#include "ImageRequester.h"

#include "FileTypes.h"
#include "Log.h"
#include "TSAlbum.h"

#include <QCoreApplication>

using library::ResourceType;

ImageRequester::ImageRequester(std::weak_ptr<TSMetaDataObservable> uiManager) : uiManager_(std::move(uiManager)) {}

void ImageRequester::onMain(QPointer<ImageRequester> self, std::function<void(ImageRequester&)> body) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [self, body = std::move(body)] {
            if (self) body(*self);
        },
        Qt::QueuedConnection);
}

std::optional<library::Resource> ImageRequester::chosenResource(const library::Asset& asset) {
    const auto& list = asset.resources;
    if (list.isEmpty()) return std::nullopt;
    if (list.size() == 1) return list.first();
    const QList<QList<ResourceType>> order =
        asset.mediaType == library::MediaType::image
            ? QList<QList<ResourceType>>{{ResourceType::fullSizePhoto}, {ResourceType::alternatePhoto}, {ResourceType::photo}, {ResourceType::adjustmentBasePhoto}}
            : QList<QList<ResourceType>>{{ResourceType::fullSizeVideo}, {ResourceType::video}, {ResourceType::adjustmentBaseVideo}};
    for (const auto& types : order)
        for (const auto& r : list)
            if (types.contains(r.type)) return r;
    return std::nullopt;
}

bool ImageRequester::isLocallyAvailable(const library::Resource& resource) {
    Log::debug(QStringLiteral("💽 locallyAvailable: %1 -> %2").arg(int(resource.locallyAvailable)).arg(resource.locallyAvailable ? "true" : "false"));
    return resource.locallyAvailable;
}

void ImageRequester::dataRequest(const std::shared_ptr<TSAssetRequestManager>& asset) {
    tsAsset_ = asset;
    if (!asset || !asset->libraryAsset()) return;
    const auto resource = chosenResource(*asset->libraryAsset());
    if (!resource) {
        imageRequest(asset);
        return;
    }
    uti_ = filetypes::typeIdentifier(resource->path);
    Log::info(QStringLiteral("🦁 currentUti: %1").arg(uti_.value_or("--")));
    needDownload = !isLocallyAvailable(*resource);
    if (auto* ui = this->ui()) {
        ui->download = DownloadLevel::request;
        ui->delayedShow();
    }
    // Filled on the reading thread; dropped for good once it passes the limit.
    auto accumulator = std::make_shared<std::optional<QByteArray>>(QByteArray());
    flags_->resourceRequestCancelled = false;
    QPointer<ImageRequester> self(this);
    library::DataRequestOptions options;
    options.progressHandler = [self, flags = flags_](double progress) {
        const float value = flags->resourceRequestCancelled ? 1.0f : float(progress);
        onMain(self, [value](ImageRequester& r) {
            auto* ui = r.ui();
            if (!ui) return;
            if (value == 1.0f) ui->download = DownloadLevel::done;
            ui->sendProgress(value);
        });
    };
    const qint32 id = library::ResourceManager::requestData(
        *resource, options,
        [accumulator](const QByteArray& chunk) {
            if (!*accumulator) return;
            **accumulator += chunk;
            if ((*accumulator)->size() > dataLimit) accumulator->reset();
        },
        [self, accumulator](const std::optional<QString>& error) {
            onMain(self, [accumulator, error](ImageRequester& r) {
                if (!*accumulator) Log::error("No data");
                auto asset = r.tsAsset_.lock();
                if (error) {
                    Log::error(*error);
                    if (!r.resourceRequestCancelled() && asset) r.imageRequest(asset);
                    return;
                }
                Log::info(QStringLiteral("⤵️ Data received: %1").arg(r.resourceRequest.value_or(0)));
                r.resourceRequest.reset();
                r.needDownload = false;
                r.finish(*accumulator);
            });
        });
    Log::info(QStringLiteral("⤵️ Data request: %1").arg(id));
    resourceRequest = id;
}

void ImageRequester::imageRequest(const std::shared_ptr<TSAssetRequestManager>& asset) {
    lastRequest.reset();
    if (!asset || !asset->libraryAsset()) return;
    QPointer<ImageRequester> self(this);
    const qint32 id = library::ImageManager::requestImageData(
        *asset->libraryAsset(), {}, [self](const std::optional<QByteArray>& data, const std::optional<QString>& error) {
            onMain(self, [data, error](ImageRequester& r) {
                auto asset = r.tsAsset_.lock();
                if (!error && data) {
                    if (r.needDownload) {
                        r.needDownload = false;
                        if (auto* ui = r.ui()) ui->sendDone(TSEnvironment::currentAlbum());
                    }
                    Log::info(QStringLiteral("ℹ️  UTI: %1").arg(r.uti_.value_or("--")));
                    r.finish(data);
                    return;
                }
                r.flags_->stopDownload = false;
                r.needDownload = true;
                if (auto* ui = r.ui()) {
                    ui->download = DownloadLevel::request;
                    ui->delayedShow();
                }
                if (asset) r.requestCloudCurrent(asset);
            });
        });
    if (!lastRequest) lastRequest = id;
    Log::info(QStringLiteral("⤵️⤵️ Main request: %1").arg(id));
}

void ImageRequester::requestCloudCurrent(const std::shared_ptr<TSAssetRequestManager>& asset) {
    Log::info(QStringLiteral("⤵️⤵️⤵️ Cloud request"));
    requestCloud(asset, library::ImageVersion::current);
}

void ImageRequester::requestCloudOriginal(const std::shared_ptr<TSAssetRequestManager>& asset) {
    Log::info(QStringLiteral("⤵️⤵️⤵️⤵️ original request"));
    requestCloud(asset, library::ImageVersion::original);
}

void ImageRequester::requestCloud(const std::shared_ptr<TSAssetRequestManager>& asset, library::ImageVersion version) {
    if (!asset || !asset->libraryAsset()) return;
    QPointer<ImageRequester> self(this);
    library::ImageRequestOptions options;
    options.networkAccessAllowed = true;
    options.version = version;
    options.progressHandler = [self, flags = flags_](double progress, bool* stop) {
        Log::debug("📲 progressHandler");
        if (flags->stopDownload) {
            *stop = true;
            onMain(self, [](ImageRequester& r) {
                if (auto* ui = r.ui()) ui->interrupted();
            });
            return;
        }
        onMain(self, [value = float(progress)](ImageRequester& r) {
            auto* ui = r.ui();
            if (!ui) return;
            if (value == 1.0f) ui->download = DownloadLevel::done;
            ui->delayedProgress(value);
        });
    };
    const bool original = version == library::ImageVersion::original;
    lastRequest = library::ImageManager::requestImageData(
        *asset->libraryAsset(), options, [self, original](const std::optional<QByteArray>& data, const std::optional<QString>& error) {
            onMain(self, [data, error, original](ImageRequester& r) {
                auto* ui = r.ui();
                if (!error && data) {
                    r.needDownload = false;
                    if (ui) ui->sendDone(TSEnvironment::currentAlbum());
                    r.finish(data);
                    return;
                }
                // A cancel ends the cascade where it is: the user asked for nothing more.
                if (r.stopDownload()) {
                    if (ui && ui->download != DownloadLevel::interrupted) ui->interrupted();
                    return;
                }
                if (!original) {
                    if (auto asset = r.tsAsset_.lock()) r.requestCloudOriginal(asset);
                    return;
                }
                if (!ui) return;
                ui->download = DownloadLevel::failed;
                ui->sendFailure(error.value_or(QStringLiteral("Unable to download image")));
            });
        });
}

void ImageRequester::onProgressCanceled() {
    Log::info("🗑🚮 Canceling request");
    if (resourceRequest) {
        Log::info(QStringLiteral("🚮🚮 Canceling request: %1").arg(*resourceRequest));
        library::ResourceManager::cancelDataRequest(*resourceRequest);
        resourceRequest.reset();
        flags_->resourceRequestCancelled = true;
    }
    flags_->stopDownload = true;
    if (lastRequest) {
        library::ImageManager::cancelImageRequest(*lastRequest);
        Log::info(QStringLiteral("🚮🚮🚮 Canceling image request: %1").arg(*lastRequest));
        lastRequest.reset();
    }
}

void ImageRequester::finish(const std::optional<QByteArray>& data) {
    if (auto* ui = this->ui()) {
        ui->download = DownloadLevel::done;
        QTimer::singleShot(0, ui, [ui] { ui->sendProgress(1.0f); });
    }
    if (auto asset = tsAsset_.lock()) asset->setData(data, uti_);
}
