// SPDX-License-Identifier: GPL-3.0-or-later
#include "TileSource.h"

#include "Log.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkDiskCache>
#include <QNetworkReply>
#include <QStandardPaths>

namespace {
constexpr qint64 retryAfterMs = 30'000;
constexpr qint64 diskCacheBytes = 200ll << 20;
constexpr int memoryCacheKB = 64 << 10;
}  // namespace

TileSource::TileSource(const QString& urlTemplate, const QString& cacheDir, QObject* parent)
    : QObject(parent), network_(new QNetworkAccessManager(this)), images_(memoryCacheKB) {
    const QString t = urlTemplate.trimmed();
    if (t.compare("none", Qt::CaseInsensitive) != 0) urlTemplate_ = t;
    auto* cache = new QNetworkDiskCache(network_);
    cache->setCacheDirectory(cacheDir);
    cache->setMaximumCacheSize(diskCacheBytes);
    network_->setCache(cache);
}

TileSource::~TileSource() = default;

QString TileSource::defaultCacheDir() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/tessorin/tiles";
}

QString TileSource::standardTemplate() {
    const QVariant v = Settings::value(QLatin1String(standardTilesKey));
    return v.isValid() ? v.toString() : QString::fromLatin1(openStreetMapTemplate);
}

QString TileSource::attribution(const QString& urlTemplate) {
    return QUrl(urlTemplate.trimmed()).host().endsWith("openstreetmap.org") ? QStringLiteral("© OpenStreetMap contributors")
                                                                   : QString();
}

QUrl TileSource::url(const mercator::TileId& t) const {
    QString u = urlTemplate_;
    u.replace("{z}", QString::number(t.z)).replace("{x}", QString::number(t.x)).replace("{y}", QString::number(t.y));
    return QUrl(u);
}

QString TileSource::key(const mercator::TileId& t) { return QStringLiteral("%1/%2/%3").arg(t.z).arg(t.x).arg(t.y); }

const QImage* TileSource::tile(const mercator::TileId& t) {
    if (!isEnabled()) return nullptr;
    const QString k = key(t);
    if (const QImage* image = images_.object(k)) return image;
    if (pending_.contains(k)) return nullptr;
    const auto failed = failedAt_.constFind(k);
    if (failed != failedAt_.cend() && QDateTime::currentMSecsSinceEpoch() - *failed < retryAfterMs) return nullptr;
    pending_.insert(k);
    queue_.append(t);
    startNext();
    return nullptr;
}

void TileSource::cancelQueued() {
    for (const auto& t : std::as_const(queue_)) pending_.remove(key(t));
    queue_.clear();
}

void TileSource::startNext() {
    while (inFlight_ < maxRequests && !queue_.isEmpty()) {
        // The newest wish first: it is what the view shows now.
        const mercator::TileId t = queue_.takeLast();
        QNetworkRequest request(url(t));
        request.setHeader(QNetworkRequest::UserAgentHeader,
                          QStringLiteral("%1/%2 (map tiles)").arg(TESSORIN_APP_NAME, TESSORIN_VERSION));
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
        request.setTransferTimeout(15'000);
        ++inFlight_;
        QNetworkReply* reply = network_->get(request);
        connect(reply, &QNetworkReply::finished, this, [this, reply, t] { finished(reply, t); });
    }
}

void TileSource::finished(QNetworkReply* reply, const mercator::TileId& t) {
    reply->deleteLater();
    --inFlight_;
    const QString k = key(t);
    pending_.remove(k);
    QImage image;
    if (reply->error() == QNetworkReply::NoError) {
        image.loadFromData(reply->readAll());
    } else if (auto* cache = network_->cache()) {
        // Off the network, a tile kept past its expiry still beats none.
        if (std::unique_ptr<QIODevice> data{cache->data(reply->url())}) image.loadFromData(data->readAll());
        Log::debug(QVariantList{"🗺 tile failed", reply->url().toString(), reply->errorString()});
    }
    if (image.isNull()) {
        failedAt_.insert(k, QDateTime::currentMSecsSinceEpoch());
        emit tileFailed(t);
    } else {
        failedAt_.remove(k);
        const int kb = int(image.sizeInBytes() / 1024) + 1;
        images_.insert(k, new QImage(std::move(image)), kb);
        emit tileReady(t);
    }
    startNext();
}
