// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaDataObservable.h"

#include "Log.h"
#include "TSAlbum.h"

namespace {
// Short loads never show a progress bar: it appears only after this long.
constexpr int showDelayMs = 200;
}  // namespace

void TSMetaDataObservable::addObserver(QObject* observer) {
    if (observer) observations_.insert(observer, QPointer<QObject>(observer));
}

int TSMetaDataObservable::observerCount() const {
    int live = 0;
    for (const auto& weak : observations_)
        if (weak) ++live;
    return live;
}

void TSMetaDataObservable::send(const std::function<void(QObject*)>& deliver) {
    if (cyclers < 1) {
        ++cyclers;
        this->deliver(deliver);
        --cyclers;
    } else {
        // Sent from inside a delivery: the observers get it once the current one is over.
        QTimer::singleShot(0, this, [this, deliver] { this->deliver(deliver); });
    }
}

void TSMetaDataObservable::deliver(const std::function<void(QObject*)>& deliver) {
    // A copy: an observer may add another while it is being told.
    const auto observations = observations_;
    for (auto it = observations.cbegin(); it != observations.cend(); ++it) {
        if (it.value()) {
            deliver(it.value());
        } else {
            // Only the entry that still holds the dead object goes: the address may have been
            // reused by an observer added since.
            auto held = observations_.find(it.key());
            if (held != observations_.end() && !held.value()) observations_.erase(held);
        }
    }
}

void TSMetaDataObservable::sendAlbumChanged() {
    send([](QObject* o) {
        if (auto* observer = dynamic_cast<TSViewControllerObserver*>(o)) observer->albumChanged();
    });
}

void TSMetaDataObservable::sendMetaData(MetaSelector selector, const std::shared_ptr<TSAlbum>& album) {
    send([selector, album](QObject* o) {
        auto* observer = dynamic_cast<TSMetaDataObserver*>(o);
        if (!observer) return;
        switch (selector) {
        case MetaSelector::begin: observer->beginLoading(album); break;
        case MetaSelector::processed: observer->processedMetaData(album); break;
        case MetaSelector::rowsChanged: observer->rowsChanged(); break;
        case MetaSelector::liveReady: observer->liveReady(); break;
        }
    });
}

void TSMetaDataObservable::sendProgress(float value) {
    if (value >= 1) {
        sendDone(TSEnvironment::currentAlbum());
        return;
    }
    send([value](QObject* o) {
        if (auto* observer = dynamic_cast<TSCloudObserver*>(o)) observer->progress(value);
    });
}

void TSMetaDataObservable::sendDone(const std::shared_ptr<TSAlbum>& album) {
    send([album](QObject* o) {
        if (auto* observer = dynamic_cast<TSCloudObserver*>(o)) observer->done(album);
    });
}

void TSMetaDataObservable::sendFailure(const QString& message) {
    send([message](QObject* o) {
        if (auto* observer = dynamic_cast<TSCloudObserver*>(o)) observer->failure(message);
    });
}

void TSMetaDataObservable::delayedShow() {
    // A newer request replaces the wait of an older one.
    if (showTimer_) {
        showTimer_->stop();
        showTimer_->deleteLater();
    }
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    connect(timer, &QTimer::timeout, this, [this, timer] {
        timer->deleteLater();
        if (download != DownloadLevel::request) return;
        sendProgress(0.0f);
        download = DownloadLevel::managing;
    });
    showTimer_ = timer;
    timer->start(showDelayMs);
}

void TSMetaDataObservable::delayedProgress(float p) {
    const int delay = download <= DownloadLevel::request ? showDelayMs : 0;
    QTimer::singleShot(delay, this, [this, p] {
        if (download <= DownloadLevel::request) {
            sendProgress(p);
        } else if (download == DownloadLevel::done) {
            sendProgress(1.0f);
            download = DownloadLevel::processed;
        }
    });
}

void TSMetaDataObservable::interrupted() {
    download = DownloadLevel::interrupted;
    sendMetaData(MetaSelector::processed, TSEnvironment::currentAlbum());
}

void TSMetaDataObservable::albumChangedReset(const std::shared_ptr<TSAlbum>& album) {
    TSEnvironment::setCurrentAlbum(album);
    Log::info("albumChanged");
    sendAlbumChanged();
}

void TSMetaDataObservable::dataChanged() { sendMetaData(MetaSelector::rowsChanged); }
