// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The map of a place: the offline world map always, tiles from the configured server over it,
// the pin, the arrow of the camera's direction, and a scale. QML adds the callout, the tools and
// the gestures, which call pan(), zoomAt() and recenter().
#include "OfflineMap.h"
#include "TileSource.h"

#include <QHash>
#include <QSet>
#include <QQuickPaintedItem>
#include <QVariantMap>
#include <cmath>
#include <memory>

class TSMapView : public QQuickPaintedItem {
    Q_OBJECT
    // {latitude, longitude, title, heading (degrees, optional)}; empty for an item without place.
    Q_PROPERTY(QVariantMap place READ place WRITE setPlace NOTIFY placeChanged)
    Q_PROPERTY(bool hasPin READ hasPin NOTIFY placeChanged)
    Q_PROPERTY(QString pinTitle READ pinTitle NOTIFY placeChanged)
    Q_PROPERTY(QPointF pinPoint READ pinPoint NOTIFY viewChanged)
    Q_PROPERTY(double zoom READ zoom WRITE setZoom NOTIFY viewChanged)
    Q_PROPERTY(double centerLatitude READ centerLatitude NOTIFY viewChanged)
    Q_PROPERTY(double centerLongitude READ centerLongitude NOTIFY viewChanged)
    // The style control's segment: 0 "3D", 1 "Standard", 2 "Hybrid", 3 "Satellite".
    Q_PROPERTY(int segment READ segment WRITE setSegment NOTIFY styleChanged)
    Q_PROPERTY(int cameraType READ cameraType NOTIFY styleChanged)
    Q_PROPERTY(QString attribution READ attribution NOTIFY styleChanged)
    // The user has moved the map away from the pin: the re-centre button shows.
    Q_PROPERTY(bool movedAway READ movedAway NOTIFY movedAwayChanged)
public:
    enum CameraType { threeD = 0, standard = 1 };
    Q_ENUM(CameraType)

    // Where the tile servers' URL templates are kept; "none" turns a server off.
    static constexpr auto& standardTilesKey = TileSource::standardTilesKey;
    static constexpr char hybridTilesKey[] = "mapHybridTileURL";
    static constexpr char satelliteTilesKey[] = "mapSatelliteTileURL";

    explicit TSMapView(QQuickItem* parent = nullptr);
    ~TSMapView() override;

    QVariantMap place() const { return place_; }
    void setPlace(const QVariantMap& place);
    bool hasPin() const { return pin_.has_value(); }
    QString pinTitle() const { return place_.value("title").toString(); }
    QPointF pinPoint() const;
    std::optional<double> heading() const { return heading_; }

    double zoom() const { return zoom_; }
    void setZoom(double zoom);
    double centerLatitude() const { return mercator::unproject(centre_, zoom_).latitude; }
    double centerLongitude() const { return mercator::unproject(centre_, zoom_).longitude; }
    int segment() const { return segment_; }
    void setSegment(int segment);
    int cameraType() const { return segment_ == 0 ? threeD : standard; }
    MapStyle mapStyle() const;
    QString attribution() const;
    bool movedAway() const { return movedAway_; }

    // The tile URL template of the current style, from the settings; "none" or empty: no server.
    QString tileTemplate() const;
    // The server of the current style, or none.
    TileSource* tiles();
    // Ground metres and pixels of the scale bar at the centre: a round distance up to 100 pixels.
    std::pair<double, double> scaleBar() const;
    static QString distanceText(double metres);

    Q_INVOKABLE void pan(double dx, double dy);
    Q_INVOKABLE void zoomAt(double factor, double x, double y);
    Q_INVOKABLE void recenter();
    // The place under a point of the view, as {latitude, longitude}.
    Q_INVOKABLE QVariantMap coordinateAt(double x, double y) const;
    // Hands the pin to the desktop's map application as a geo: link.
    Q_INVOKABLE void openInMaps() const;

    void paint(QPainter* painter) override;

protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

signals:
    void placeChanged();
    void viewChanged();
    void styleChanged();
    void movedAwayChanged();

private:
    void showPin();
    void userMoved();
    void drawTiles(QPainter& painter, const QSizeF& size, const QPointF& centre);
    void drawArrow(QPainter& painter, const QPointF& origin) const;
    void drawPin(QPainter& painter, const QPointF& at) const;
    void drawScale(QPainter& painter) const;

    QVariantMap place_;
    std::optional<GeoCoordinate> pin_;
    const OfflineMap::Town* ownTown_ = nullptr;  // the pin's town, named on the offline map
    std::optional<double> heading_;
    double zoom_ = 2;
    QPointF centre_;  // world pixels at zoom_
    int segment_ = 1;
    bool movedAway_ = false;
    QHash<QString, TileSource*> sources_;
    // Servers that failed before giving a single tile: the network is out of reach.
    QSet<const TileSource*> unreachable_, delivered_;
};
