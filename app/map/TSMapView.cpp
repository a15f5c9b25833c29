// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMapView.h"

#include "Settings.h"

#include <QDesktopServices>
#include <QPainter>
#include <QPainterPath>
#include <QUrl>

namespace {

// The zooms that show the ground as the standard and the 3D cameras do from 1200 and 500 m;
// the offline map alone has nothing to show that close, so without tiles the town and its
// neighbours are shown instead.
constexpr double standardZoom = 16;
constexpr double threeDZoom = 17;
constexpr double offlineZoom = 12;
constexpr double threeDPitch = 45;  // degrees; the 3D camera also turns its heading by as much
const QColor tint(0x1E, 0x6F, 0xD9);
const QColor arrowBlue(0x00, 0x7A, 0xFF);

QString templateFor(const char* key, const QString& fallback) {
    const QVariant v = Settings::value(QLatin1String(key));
    return v.isValid() ? v.toString() : fallback;
}

}  // namespace

TSMapView::TSMapView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAcceptedMouseButtons(Qt::NoButton);
    centre_ = mercator::project({20, -40}, zoom_);
}

TSMapView::~TSMapView() = default;

void TSMapView::setPlace(const QVariantMap& place) {
    place_ = place;
    pin_.reset();
    heading_.reset();
    auto number = [&place](const char* key) {
        bool ok = false;
        const double v = place.value(QLatin1String(key)).toDouble(&ok);
        return ok ? v : qQNaN();
    };
    const double lat = number("latitude"), lon = number("longitude");
    if (std::isfinite(lat) && std::isfinite(lon)) pin_ = GeoCoordinate{std::clamp(lat, -90.0, 90.0), lon};
    const auto offline = OfflineMap::shared();
    ownTown_ = pin_ && offline ? offline->ownTown(*pin_) : nullptr;
    const double heading = number("heading");
    if (pin_ && std::isfinite(heading)) heading_ = heading;
    showPin();
    emit placeChanged();
}

void TSMapView::showPin() {
    if (pin_) {
        const TileSource* source = tiles();
        const bool ground = source && !unreachable_.contains(source);
        double zoom = ground ? standardZoom : offlineZoom;
        // Without tiles, out to where a neighbouring town is named: closer in, the offline map
        // is bare land around the pin.
        const auto offline = ground ? nullptr : OfflineMap::shared();
        if (offline) zoom = offline->zoomShowingTowns(*pin_, QSizeF(std::max(width(), 160.0), std::max(height(), 120.0)), zoom);
        // The 3D camera is lower.
        zoom_ = zoom + (cameraType() == threeD ? threeDZoom - standardZoom : 0);
        centre_ = mercator::project(*pin_, zoom_);
    } else {
        // No place: the world, centred on the Atlantic, 180 degrees across.
        zoom_ = std::max(0.0, std::log2(std::max(width(), 128.0) / (mercator::tileSize / 2)));
        centre_ = mercator::project({20, -40}, zoom_);
    }
    if (movedAway_) {
        movedAway_ = false;
        emit movedAwayChanged();
    }
    emit viewChanged();
    update();
}

void TSMapView::recenter() { showPin(); }

QPointF TSMapView::pinPoint() const {
    if (!pin_) return {};
    return mercator::project(*pin_, zoom_) - centre_ + QPointF(width(), height()) / 2;
}

void TSMapView::setZoom(double zoom) {
    zoom = std::clamp(zoom, 0.0, double(mercator::maxZoom));
    if (zoom == zoom_) return;
    centre_ *= std::exp2(zoom - zoom_);
    zoom_ = zoom;
    emit viewChanged();
    update();
}

void TSMapView::setSegment(int segment) {
    if (segment < 0 || segment > 3 || segment == segment_) return;
    const bool cameraChanged = (segment == 0) != (segment_ == 0);
    segment_ = segment;
    emit styleChanged();
    // A new camera only when the pin is there to look at.
    if (cameraChanged && pin_) showPin();
    update();
}

MapStyle TSMapView::mapStyle() const {
    return segment_ == 2 ? MapStyle::hybrid : segment_ == 3 ? MapStyle::satellite : MapStyle::standard;
}

QString TSMapView::tileTemplate() const {
    switch (mapStyle()) {
    case MapStyle::hybrid: return templateFor(hybridTilesKey, {});
    case MapStyle::satellite: return templateFor(satelliteTilesKey, {});
    case MapStyle::standard: break;
    }
    return TileSource::standardTemplate();
}

TileSource* TSMapView::tiles() {
    const QString t = tileTemplate();
    TileSource*& source = sources_[t];
    if (!source) {
        source = new TileSource(t, TileSource::defaultCacheDir(), this);
        connect(source, &TileSource::tileReady, this, [this, source] {
            delivered_.insert(source);
            update();
        });
        // With no network (a train, a plane) the offline map is all there is, and it shows
        // nothing at street level: step back to the town, unless the user has moved the map.
        connect(source, &TileSource::tileFailed, this, [this, source] {
            if (delivered_.contains(source) || unreachable_.contains(source)) return;
            unreachable_.insert(source);
            if (!movedAway_) showPin();
        });
    }
    return source->isEnabled() ? source : nullptr;
}

QString TSMapView::attribution() const { return TileSource::attribution(tileTemplate()); }

void TSMapView::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    // The world view fits the width it is given.
    if (!pin_ && newGeometry.width() != oldGeometry.width()) showPin();
    // The offline map's zoom depends on how much the view shows: chosen again at the first size.
    else if (pin_ && !movedAway_ && oldGeometry.isEmpty() && !newGeometry.isEmpty()) showPin();
}

void TSMapView::userMoved() {
    if (pin_ && !movedAway_) {
        movedAway_ = true;
        emit movedAwayChanged();
    }
    emit viewChanged();
    update();
}

void TSMapView::pan(double dx, double dy) {
    centre_ -= QPointF(dx, dy);
    const double world = mercator::worldSize(zoom_);
    centre_.setX(std::fmod(std::fmod(centre_.x(), world) + world, world));
    centre_.setY(std::clamp(centre_.y(), 0.0, world));
    userMoved();
}

void TSMapView::zoomAt(double factor, double x, double y) {
    if (!(factor > 0)) return;
    const double zoom = std::clamp(zoom_ + std::log2(factor), 0.0, double(mercator::maxZoom));
    // The ground under (x, y) stays under it.
    const QPointF offset = QPointF(x, y) - QPointF(width(), height()) / 2;
    const QPointF ground = centre_ + offset;
    centre_ = ground * std::exp2(zoom - zoom_) - offset;
    zoom_ = zoom;
    userMoved();
}

QVariantMap TSMapView::coordinateAt(double x, double y) const {
    const GeoCoordinate c = mercator::unproject(centre_ + QPointF(x, y) - QPointF(width(), height()) / 2, zoom_);
    return {{"latitude", c.latitude}, {"longitude", std::remainder(c.longitude, 360.0)}};
}

void TSMapView::openInMaps() const {
    if (!pin_) return;
    QDesktopServices::openUrl(QUrl(geoUri(*pin_)));
}

std::pair<double, double> TSMapView::scaleBar() const {
    const double perPixel = mercator::metresPerPixel(centerLatitude(), zoom_);
    const double most = perPixel * 100;
    double step = std::pow(10, std::floor(std::log10(most)));
    for (double nice : {5.0, 2.0, 1.0})
        if (step * nice <= most) {
            step *= nice;
            break;
        }
    return {step, step / perPixel};
}

QString TSMapView::distanceText(double metres) {
    return metres >= 1000 ? QStringLiteral("%1 km").arg(metres / 1000) : QStringLiteral("%1 m").arg(metres);
}

void TSMapView::paint(QPainter* painter) {
    const QSizeF size(width(), height());
    if (size.isEmpty()) return;
    painter->save();
    QSizeF ground = size;
    QPointF groundCentre = centre_;
    if (cameraType() == threeD) {
        // Tilted and turned: the far side of the view sees more ground, so draw a larger square.
        QTransform t;
        t.translate(size.width() / 2, size.height() / 2);
        t.rotate(threeDPitch, Qt::XAxis);
        t.rotate(-threeDPitch);
        t.translate(-size.width() / 2, -size.height() / 2);
        painter->setTransform(t, true);
        const double side = 2.5 * std::max(size.width(), size.height());
        ground = QSizeF(side, side);
        painter->translate((size.width() - side) / 2, (size.height() - side) / 2);
    }
    if (const auto offline = OfflineMap::shared()) offline->draw(*painter, ground, groundCentre, zoom_, mapStyle(), ownTown_);
    else painter->fillRect(QRectF(QPointF(), ground), QColor(0xaa, 0xd3, 0xdf));
    drawTiles(*painter, ground, groundCentre);
    const QPointF origin = groundCentre - QPointF(ground.width(), ground.height()) / 2;
    if (pin_ && heading_) drawArrow(*painter, origin);
    const QPointF pinAt = pin_ ? mercator::project(*pin_, zoom_) - origin : QPointF();
    painter->restore();
    if (pin_) drawPin(*painter, cameraType() == threeD ? pinPoint() : pinAt);
    if (pin_) drawScale(*painter);
}

void TSMapView::drawTiles(QPainter& painter, const QSizeF& size, const QPointF& centre) {
    TileSource* source = tiles();
    if (!source) return;
    // Only what this frame shows stays asked for.
    source->cancelQueued();
    const int z = std::clamp(int(std::round(zoom_)), 0, mercator::maxZoom);
    const double scale = std::exp2(zoom_ - z);  // tile pixels to view pixels
    const double tile = mercator::tileSize * scale;
    const QPointF origin = centre - QPointF(size.width(), size.height()) / 2;
    const int count = 1 << z;
    const int x0 = int(std::floor(origin.x() / tile)), x1 = int(std::floor((origin.x() + size.width()) / tile));
    const int y0 = std::max(0, int(std::floor(origin.y() / tile)));
    const int y1 = std::min(count - 1, int(std::floor((origin.y() + size.height()) / tile)));
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) {
            const int wrapped = ((x % count) + count) % count;
            // A tile not yet here leaves the offline map showing.
            if (const QImage* image = source->tile({z, wrapped, y}))
                painter.drawImage(QRectF(x * tile - origin.x(), y * tile - origin.y(), tile, tile), *image);
        }
}

void TSMapView::drawArrow(QPainter& painter, const QPointF& origin) const {
    QRectF r = mercator::headingRect(*pin_, zoom_).translated(-origin);
    // Zoomed out, the ground-sized arrow would shrink to nothing; it keeps a size whose head
    // stands clear of the pin.
    if (r.width() < 100) r = QRectF(r.center() - QPointF(50, 50), QSizeF(100, 100));
    painter.save();
    painter.translate(r.center());
    painter.rotate(qRadiansToDegrees(double(mercator::headingRadians(*heading_))));
    const double h = r.height() / 2;
    // The arrow, pointing up as drawn: a shaft from the centre and a head at the top.
    QPainterPath arrow;
    arrow.moveTo(0, -h);
    arrow.lineTo(h * 0.45, -h * 0.45);
    arrow.lineTo(h * 0.14, -h * 0.45);
    arrow.lineTo(h * 0.14, 0);
    arrow.lineTo(-h * 0.14, 0);
    arrow.lineTo(-h * 0.14, -h * 0.45);
    arrow.lineTo(-h * 0.45, -h * 0.45);
    arrow.closeSubpath();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, std::max(1.0, h / 30)));
    painter.setBrush(arrowBlue);
    painter.drawPath(arrow);
    painter.restore();
}

void TSMapView::drawPin(QPainter& painter, const QPointF& at) const {
    // A drop standing on the place.
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath drop;
    drop.moveTo(at);
    drop.cubicTo(at + QPointF(-4, -10), at + QPointF(-11, -16), at + QPointF(-11, -26));
    drop.arcTo(QRectF(at + QPointF(-11, -37), QSizeF(22, 22)), 180, -180);
    drop.cubicTo(at + QPointF(11, -16), at + QPointF(4, -10), at);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(tint);
    painter.drawPath(drop);
    painter.setBrush(Qt::white);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(at + QPointF(0, -26), 4, 4);
    painter.restore();
}

void TSMapView::drawScale(QPainter& painter) const {
    const auto [metres, pixels] = scaleBar();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF left(16, 24);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    const QString text = distanceText(metres);
    QPainterPath label;
    label.addText(left + QPointF(pixels + 6, 4), font, text);
    painter.strokePath(label, QPen(QColor(255, 255, 255, 200), 3));
    painter.fillPath(label, QColor(0x1C, 0x1C, 0x1E));
    QPainterPath bar;
    bar.moveTo(left + QPointF(0, -4));
    bar.lineTo(left);
    bar.lineTo(left + QPointF(pixels, 0));
    bar.lineTo(left + QPointF(pixels, -4));
    painter.strokePath(bar, QPen(QColor(255, 255, 255, 200), 4));
    painter.strokePath(bar, QPen(QColor(0x1C, 0x1C, 0x1E), 1.5));
    painter.restore();
}
