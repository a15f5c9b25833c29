// SPDX-License-Identifier: GPL-3.0-or-later
#include "ThumbnailProvider.h"

#include "ThumbnailCache.h"

#include <QRunnable>
#include <QThreadPool>
#include <QUrl>
#include <atomic>

namespace {

class ThumbnailResponse : public QQuickImageResponse, public QRunnable {
public:
    ThumbnailResponse(QString path, int side, bool library)
        : path_(std::move(path)), side_(side), library_(library) {
        setAutoDelete(false);
    }

    void run() override {
        // A cell scrolled out of view before its turn came needs no picture.
        if (!cancelled_)
            image_ = library_ ? library::thumbnails::forFile(path_, side_) : library::thumbnails::picture(path_, side_);
        emit finished();
    }
    void cancel() override { cancelled_ = true; }
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }
    QString errorString() const override {
        return image_.isNull() ? QStringLiteral("No thumbnail for ") + path_ : QString();
    }

private:
    QString path_;
    int side_;
    bool library_;
    QImage image_;
    std::atomic<bool> cancelled_{false};
};

// Later requests first: they are the cells in view now. A pool of their own, so that a library
// scan's reads on the shared one don't keep them waiting.
std::atomic<int> requests{0};
QThreadPool& pool() {
    static QThreadPool threads;
    return threads;
}

}  // namespace

QQuickImageResponse* ThumbnailProvider::requestImageResponse(const QString& id, const QSize& requestedSize) {
    const int asked = std::max(requestedSize.width(), requestedSize.height());
    // Library items go through the desktop's thumbnail cache, which file managers share.
    const bool library = id.startsWith(QLatin1String("lib/"));
    const QString path = QUrl::fromPercentEncoding(id.mid(library ? 4 : 0).toUtf8());
    auto* response = new ThumbnailResponse(path, asked > 0 ? asked : defaultSide, library);
    pool().start(response, 1 + (requests++ & 0xFFFFFF));
    return response;
}
