// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one hub between the loading side (album, asset, store) and the screens. Observers are
// held weakly: a screen that goes away is dropped at the next delivery. A notification sent
// while another is being delivered reaches the observers once, on the next turn of the event
// loop, so a screen that reacts by causing a notification never re-enters itself.
#include "TSDataStore.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>

class TSAlbum;

// Ordered: a later state compares greater.
enum class DownloadLevel { none, request, managing, done, processed, failed, interrupted };

// Selectors of the metadata family.
enum class MetaSelector { begin = 0, processed = 1, rowsChanged = 2, liveReady = 3 };

class TSViewControllerObserver {
public:
    virtual ~TSViewControllerObserver() = default;
    virtual void albumChanged() = 0;
};

class TSCloudObserver {
public:
    virtual ~TSCloudObserver() = default;
    virtual void progress(float value) = 0;
    virtual void done(const std::shared_ptr<TSAlbum>& album) = 0;
    virtual void failure(const QString& message) = 0;
};

class TSMetaDataObserver {
public:
    virtual ~TSMetaDataObserver() = default;
    // 0: the album moved to a new index.
    virtual void beginLoading(const std::shared_ptr<TSAlbum>& album) { (void)album; }
    // 1: metadata is ready.
    virtual void processedMetaData(const std::shared_ptr<TSAlbum>& album) { (void)album; }
    // 2: the store's rows changed.
    virtual void rowsChanged() {}
    // 3: the live photo is ready.
    virtual void liveReady() {}
};

// Held by a shared pointer (TSEnvironment::sharedObservable) because stores keep their
// Displayer weakly.
class TSMetaDataObservable : public QObject, public Displayer {
    Q_OBJECT
public:
    DownloadLevel download = DownloadLevel::none;
    int cyclers = 0;

    // Adds an object that implements one or more of the observer interfaces above, under its
    // identity; adding it twice keeps one entry.
    void addObserver(QObject* observer);
    int observerCount() const;

    void sendAlbumChanged();
    void sendMetaData(MetaSelector selector, const std::shared_ptr<TSAlbum>& album = {});
    // Below 1: progress; at 1 or more: done with the current album.
    void sendProgress(float value);
    void sendDone(const std::shared_ptr<TSAlbum>& album);
    void sendFailure(const QString& message);

    // After 0.2 s, still at `request`: progress 0 and `managing`.
    void delayedShow();
    // At or below `request` waits 0.2 s first; then progress p, or at `done` progress 1 and
    // `processed`.
    void delayedProgress(float p);
    // The user cancelled: `interrupted`, then processed with the current album.
    void interrupted();
    // Clears the current album (or sets it), logs "albumChanged" and tells the observers.
    void albumChangedReset(const std::shared_ptr<TSAlbum>& album = {});

    // Displayer: the store's rows changed.
    void dataChanged() override;

private:
    QHash<QObject*, QPointer<QObject>> observations_;
    QPointer<QTimer> showTimer_;
    void send(const std::function<void(QObject*)>& deliver);
    void deliver(const std::function<void(QObject*)>& deliver);
};
