#include "ThumbnailProvider.h"

#include "TSFilesAlbum.h"

#include <QRunnable>
#include <QThreadPool>
#include <QUrl>

namespace {

class ThumbnailResponse : public QQuickImageResponse, public QRunnable {
public:
    ThumbnailResponse(QString path, int side) : path_(std::move(path)), side_(side) { setAutoDelete(false); }

    void run() override {
        image_ = TSFilesAlbum::thumbnail(path_, side_);
        emit finished();
    }
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }
    QString errorString() const override {
        return image_.isNull() ? QStringLiteral("No thumbnail for ") + path_ : QString();
    }

private:
    QString path_;
    int side_;
    QImage image_;
};

}  // namespace

QQuickImageResponse* ThumbnailProvider::requestImageResponse(const QString& id, const QSize& requestedSize) {
    const int asked = std::max(requestedSize.width(), requestedSize.height());
    auto* response = new ThumbnailResponse(QUrl::fromPercentEncoding(id.toUtf8()), asked > 0 ? asked : defaultSide);
    QThreadPool::globalInstance()->start(response);
    return response;
}
