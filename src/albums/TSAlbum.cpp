// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSAlbum.h"

#include "TSMetaDataObservable.h"

#include <QCoreApplication>

void AbstractAlbum::addGroupObserver(QObject* group) { groupObserver.append(QPointer<QObject>(group)); }

void AbstractAlbum::pruneGroupObservers() {
    groupObserver.removeIf([](const QPointer<QObject>& weak) { return weak.isNull(); });
}

GroupObserver* AbstractAlbum::lastGroupObserver() {
    for (auto it = groupObserver.crbegin(); it != groupObserver.crend(); ++it)
        if (*it) return dynamic_cast<GroupObserver*>(it->data());
    return nullptr;
}

void TSAlbumId::update(const TSAlbum& album) {
    albumHash = album.hash();
    albumIndex = album.actualIndex();
    albumTitle = album.title();
    count = album.count();
}

bool TSAlbumId::isSameAlbum(const TSAlbum& album) const {
    // While the user favours or hides an item the fetch changes under the screen: the title
    // alone then says it is still the same album.
    const bool relaxed = album.favoriting() || (album.hiding() && count && *count == album.count());
    if (albumHash && *albumHash == album.hash()) return true;
    return relaxed && albumTitle && *albumTitle == album.title();
}

bool TSAlbumId::isSameIndex(const TSAlbum& album) const { return albumIndex && *albumIndex == album.actualIndex(); }

namespace {

// What the screens see while no album is chosen: nothing, with no title.
class EmptyAlbum : public AbstractAlbum {
public:
    bool favoriting() const override { return false; }
    bool hiding() const override { return false; }
    QString title() const override { return {}; }
    std::optional<int> subType() const override { return std::nullopt; }
    bool isBurst() const override { return false; }
    void setActualIndex(int) override {}
    qint32 requestImage(int, QSize, ImageClosure closure) override {
        if (closure && QCoreApplication::instance())
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [closure] { closure(QImage(), false); }, Qt::QueuedConnection);
        return 0;
    }
    bool isVideo(int) const override { return false; }
    void cancelImageRequest(qint32) override {}
    int count() const override { return 0; }
    size_t hash() const override { return 0; }
    void startFavoriting() override {}
    bool needDownload() const override { return false; }
    std::optional<QDateTime> date(int) const override { return std::nullopt; }
};

std::shared_ptr<TSAlbum>& current() {
    static std::shared_ptr<TSAlbum> album;
    return album;
}

}  // namespace

namespace TSEnvironment {

std::shared_ptr<TSAlbum> currentAlbum() {
    if (current()) return current();
    static const std::shared_ptr<TSAlbum> empty = std::make_shared<EmptyAlbum>();
    return empty;
}

void setCurrentAlbum(std::shared_ptr<TSAlbum> album) { current() = std::move(album); }

TSMetaDataObservable& observable() { return *sharedObservable(); }

std::shared_ptr<TSMetaDataObservable> sharedObservable() {
    static const std::shared_ptr<TSMetaDataObservable> shared = std::make_shared<TSMetaDataObservable>();
    return shared;
}

}  // namespace TSEnvironment
