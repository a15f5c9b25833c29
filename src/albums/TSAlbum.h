// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What every browsing screen knows of an album: an ordered list of items with one current
// position. Moving the position builds the current TSAsset and starts its loading; observers
// hear begin, then processed. Only one album is current at a time (TSEnvironment).
#include "TSAsset.h"
#include "TSEnvironment.h"

#include <QDateTime>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

// The group screen that shows an album; told to reload when the album's contents change.
class GroupObserver {
public:
    virtual ~GroupObserver() = default;
    virtual void reload(bool changed) = 0;
};

class TSAlbum : public std::enable_shared_from_this<TSAlbum> {
public:
    using ImageClosure = std::function<void(const QImage& image, bool degraded)>;
    virtual ~TSAlbum() = default;

    std::shared_ptr<TSAsset> currentAsset;

    virtual bool favoriting() const = 0;
    virtual bool hiding() const = 0;
    virtual QString title() const = 0;
    virtual std::optional<int> subType() const = 0;
    virtual bool isBurst() const = 0;
    virtual void setActualIndex(int index) = 0;
    // The closure runs later, on the GUI thread. Returns the request's identifier.
    virtual qint32 requestImage(int index, QSize targetSize, ImageClosure closure) = 0;
    virtual bool isVideo(int index) const = 0;
    virtual void cancelImageRequest(qint32 id) = 0;
    virtual int count() const = 0;
    bool isEmpty() const { return count() == 0; }
    virtual size_t hash() const = 0;
    virtual void startFavoriting() = 0;
    virtual bool needDownload() const = 0;
    int displayedIndex = -1;
    bool hasValidIndex() const { return displayedIndex >= 0; }
    int actualIndex() const { return displayedIndex < 0 ? 0 : displayedIndex; }
    virtual void addGroupObserver(QObject* group) = 0;
    virtual void pruneGroupObservers() = 0;
    virtual std::optional<QDateTime> date(int index) const = 0;
};

// The group observers, held weakly; the last live one is the group screen on view.
class AbstractAlbum : public TSAlbum {
public:
    QList<QPointer<QObject>> groupObserver;
    void addGroupObserver(QObject* group) override;
    void pruneGroupObservers() override;
    // The last live group observer, or nothing.
    GroupObserver* lastGroupObserver();
};

// What a screen remembers of the album it last drew.
struct TSAlbumId {
    std::optional<size_t> albumHash;
    std::optional<int> albumIndex;
    std::optional<QString> albumTitle;
    std::optional<int> count;

    void update(const TSAlbum& album);
    bool isSameAlbum(const TSAlbum& album) const;
    bool isSameIndex(const TSAlbum& album) const;
};
