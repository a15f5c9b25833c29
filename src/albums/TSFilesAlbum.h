// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The album over files the user picked. It keeps the picked paths (there are no bookmarks on
// this platform: a path is what lasts beyond the file dialog) and loads one at a time.
#include "TSAlbum.h"

#include <QStringList>

class TSFilesAlbum : public AbstractAlbum {
public:
    QStringList imageBookmarks;
    std::optional<QString> precUrl;

    // Fills the album; with `loadFirst` (a tablet, whose detail stands beside) the first item
    // loads at once.
    void loadBookmarks(const QStringList& paths, bool loadFirst = false);
    // The path at an index; nothing outside the list or for a file that is gone.
    std::optional<QString> imageUrl(int index) const;

    bool favoriting() const override { return false; }
    bool hiding() const override { return false; }
    QString title() const override { return QStringLiteral("From files"); }
    std::optional<int> subType() const override { return std::nullopt; }
    bool isBurst() const override { return false; }
    void setActualIndex(int index) override;
    qint32 requestImage(int index, QSize targetSize, ImageClosure closure) override;
    bool isVideo(int index) const override;
    void cancelImageRequest(qint32) override {}
    int count() const override { return int(imageBookmarks.size()); }
    size_t hash() const override;
    void startFavoriting() override {}
    bool needDownload() const override { return false; }
    std::optional<QDateTime> date(int index) const override;

private:
    // This album as its notifications carry it.
    std::shared_ptr<TSAlbum> self();
};
