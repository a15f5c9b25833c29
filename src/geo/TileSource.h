// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Raster map tiles from a tile server whose URL is a template with {z}, {x} and {y}. Tiles are
// kept on disk in the user's cache folder for as long as the server says they stay fresh, and
// decoded ones in memory; at most two requests are in flight, as the public tile servers ask.
// A tile that can't be had is reported as failed, and the map draws its offline map there.
#include "WebMercator.h"

#include <QCache>
#include <QHash>
#include <QImage>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;

class TileSource : public QObject {
    Q_OBJECT
public:
    static constexpr char openStreetMapTemplate[] = "https://tile.openstreetmap.org/{z}/{x}/{y}.png";
    static constexpr int maxRequests = 2;
    // Where the standard map's template is kept; "none" turns the server off.
    static constexpr char standardTilesKey[] = "mapTileURL";

    // An empty template, or "none", is no server at all.
    explicit TileSource(const QString& urlTemplate, const QString& cacheDir = defaultCacheDir(),
                        QObject* parent = nullptr);
    ~TileSource() override;

    // $XDG_CACHE_HOME/tessorin/tiles.
    static QString defaultCacheDir();

    bool isEnabled() const { return !urlTemplate_.isEmpty(); }
    QString urlTemplate() const { return urlTemplate_; }
    // The standard map's template: the setting, else OpenStreetMap's standard tiles.
    static QString standardTemplate();
    // What the map must show beside the tiles of a template: OpenStreetMap's notice for its servers.
    static QString attribution(const QString& urlTemplate);
    QUrl url(const mercator::TileId& tile) const;

    // The decoded tile when it is at hand; otherwise nothing, and the tile is asked for
    // (tileReady or tileFailed follows). A tile that failed is not asked for again for a while.
    const QImage* tile(const mercator::TileId& tile);
    // Drops queued requests that haven't started, when the view has moved on.
    void cancelQueued();

signals:
    void tileReady(const mercator::TileId& tile);
    void tileFailed(const mercator::TileId& tile);

private:
    void startNext();
    void finished(QNetworkReply* reply, const mercator::TileId& tile);
    static QString key(const mercator::TileId& t);

    QString urlTemplate_;
    QNetworkAccessManager* network_ = nullptr;
    QCache<QString, QImage> images_;
    QList<mercator::TileId> queue_;
    QSet<QString> pending_;  // queued or in flight
    QHash<QString, qint64> failedAt_;  // ms since epoch
    int inFlight_ = 0;
};
