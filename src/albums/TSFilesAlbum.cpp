// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSFilesAlbum.h"

#include "FileTypes.h"
#include "Log.h"
#include "TSMetaDataObservable.h"
#include "ThumbnailCache.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThreadPool>
#include <atomic>

void TSFilesAlbum::loadBookmarks(const QStringList& paths, bool loadFirst) {
    currentAsset.reset();
    displayedIndex = -1;
    precUrl.reset();
    if (paths.isEmpty()) {
        imageBookmarks.clear();
        return;
    }
    imageBookmarks = paths;
    if (loadFirst) setActualIndex(0);
    if (GroupObserver* group = lastGroupObserver()) group->reload(true);
    auto& observable = TSEnvironment::observable();
    observable.download = DownloadLevel::done;
    QTimer::singleShot(0, &observable, [] { TSEnvironment::observable().sendProgress(1.0f); });
}

std::shared_ptr<TSAlbum> TSFilesAlbum::self() {
    // Normally held by a shared pointer; a bare object stands for the current album.
    if (auto held = weak_from_this().lock()) return held;
    return TSEnvironment::currentAlbum();
}

void TSFilesAlbum::setActualIndex(int index) {
    auto& observable = TSEnvironment::observable();
    observable.sendMetaData(MetaSelector::begin, self());
    const int idx = qMax(index < count() ? index : count() - 1, 0);
    displayedIndex = idx;
    const std::optional<QString> url = imageUrl(idx);
    if (!url) {
        displayedIndex = -1;
        currentAsset.reset();
        return;
    }
    if (url == precUrl) {
        // The item on view already has its rows: the screens only need telling again.
        observable.sendMetaData(MetaSelector::processed, self());
        return;
    }
    currentAsset = std::make_shared<TSAsset>(*url, TSEnvironment::sharedObservable());
    precUrl = url;
    // The asset reads its file at once; its rows count as processed on the next turn, when the
    // screens that heard begin are ready for them.
    std::weak_ptr<TSAlbum> weak = weak_from_this();
    const bool held = !weak.expired();
    QTimer::singleShot(0, &observable, [weak, held] {
        std::shared_ptr<TSAlbum> album = held ? weak.lock() : TSEnvironment::currentAlbum();
        if (album) TSEnvironment::observable().sendMetaData(MetaSelector::processed, album);
    });
    Log::info(QStringLiteral("👉 setActualIndex: %1 👈").arg(idx));
}

std::optional<QString> TSFilesAlbum::imageUrl(int index) const {
    if (index < 0 || index >= count()) return std::nullopt;
    const QString& path = imageBookmarks.at(index);
    const QFileInfo info(path);
    if (!info.isFile()) {
        Log::debug("no file at " + path);
        return std::nullopt;
    }
    return info.absoluteFilePath();
}

qint32 TSFilesAlbum::requestImage(int index, QSize targetSize, ImageClosure closure) {
    static std::atomic<qint32> lastId{0};
    const qint32 id = ++lastId;
    const std::optional<QString> url = imageUrl(index);
    const int maxSide = qMax(targetSize.width(), targetSize.height());
    QPointer<QCoreApplication> app = QCoreApplication::instance();
    // Decoding takes milliseconds to seconds: never on the GUI thread.
    QThreadPool::globalInstance()->start([url, maxSide, index, app, closure = std::move(closure)] {
        QImage image = url ? library::thumbnails::picture(*url, maxSide) : QImage();
        if (image.isNull()) Log::warning(QStringLiteral("%1. document loading error").arg(index));
        if (!app || !closure) return;
        QMetaObject::invokeMethod(
            app.data(), [closure, image] { closure(image, false); }, Qt::QueuedConnection);
    });
    return id;
}

bool TSFilesAlbum::isVideo(int index) const {
    const std::optional<QString> url = imageUrl(index);
    return url && filetypes::isVideo(filetypes::mimeType(*url));
}

size_t TSFilesAlbum::hash() const { return qHash(imageBookmarks); }

std::optional<QDateTime> TSFilesAlbum::date(int index) const {
    const std::optional<QString> url = imageUrl(index);
    if (!url) return std::nullopt;
    const QFileInfo info(*url);
    // A Linux birth time is when the file landed on this disk (any plain copy resets it), so the
    // modification time, which cameras, phones and `cp -p` carry along, is the file's own date.
    return info.lastModified();
}

