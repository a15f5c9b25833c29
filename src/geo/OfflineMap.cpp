// SPDX-License-Identifier: GPL-3.0-or-later
#include "OfflineMap.h"

#include "Log.h"
#include "WorldFormat.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>

namespace {

// Towns fewer than this never get a dot, so that the list stays small enough to walk per frame.
constexpr quint32 smallestTown = 5000;

struct Palette {
    QColor sea, land, coast, border, dot, label, halo;
};

Palette palette(MapStyle style) {
    if (style == MapStyle::standard)
        return {QColor(0xaa, 0xd3, 0xdf), QColor(0xf2, 0xef, 0xe9), QColor(0x7d, 0xa4, 0xb8), QColor(0xa0, 0x8c, 0xa8),
                QColor(0x44, 0x44, 0x44), QColor(0x22, 0x22, 0x22), QColor(255, 255, 255, 220)};
    // Hybrid and satellite: the dark colours of an aerial picture, with light lines and labels.
    return {QColor(0x16, 0x2b, 0x40), QColor(0x4a, 0x5a, 0x3a), QColor(0x9d, 0xb4, 0xc8), QColor(0xe8, 0xe0, 0xb0),
            QColor(0xff, 0xff, 0xff), QColor(0xff, 0xff, 0xff), QColor(0, 0, 0, 170)};
}

// Sutherland-Hodgman against each edge of the rectangle: drawing a continent's ring whole at
// city zoom would hand the rasteriser coordinates millions of pixels away.
std::vector<QPointF> clipRing(const std::vector<QPointF>& ring, const QRectF& r) {
    std::vector<QPointF> in = ring, out;
    auto clipEdge = [&](auto inside, auto cross) {
        out.clear();
        for (size_t i = 0; i < in.size(); ++i) {
            const QPointF a = in[i], b = in[(i + 1) % in.size()];
            const bool ia = inside(a), ib = inside(b);
            if (ia) out.push_back(a);
            if (ia != ib) out.push_back(cross(a, b));
        }
        std::swap(in, out);
    };
    auto atX = [](QPointF a, QPointF b, double x) { return QPointF(x, a.y() + (b.y() - a.y()) * (x - a.x()) / (b.x() - a.x())); };
    auto atY = [](QPointF a, QPointF b, double y) { return QPointF(a.x() + (b.x() - a.x()) * (y - a.y()) / (b.y() - a.y()), y); };
    clipEdge([&](QPointF p) { return p.x() >= r.left(); }, [&](QPointF a, QPointF b) { return atX(a, b, r.left()); });
    clipEdge([&](QPointF p) { return p.x() <= r.right(); }, [&](QPointF a, QPointF b) { return atX(a, b, r.right()); });
    clipEdge([&](QPointF p) { return p.y() >= r.top(); }, [&](QPointF a, QPointF b) { return atY(a, b, r.top()); });
    clipEdge([&](QPointF p) { return p.y() <= r.bottom(); }, [&](QPointF a, QPointF b) { return atY(a, b, r.bottom()); });
    return in;
}

QRectF boundsOf(const std::vector<QPointF>& points) {
    double x0 = 1e9, y0 = 1e9, x1 = -1e9, y1 = -1e9;
    for (const QPointF& p : points) {
        x0 = std::min(x0, p.x()), y0 = std::min(y0, p.y());
        x1 = std::max(x1, p.x()), y1 = std::max(y1, p.y());
    }
    return QRectF(QPointF(x0, y0), QPointF(x1, y1));
}

}  // namespace

QString OfflineMap::defaultPath() {
    const QString env = qEnvironmentVariable("TESSORIN_WORLD");
    if (!env.isEmpty()) return env;
    if (QCoreApplication::instance()) {
        const QString beside = QCoreApplication::applicationDirPath() + "/../share/tessorin/world.bin";
        if (QFileInfo::exists(beside)) return QFileInfo(beside).canonicalFilePath();
    }
    return QStringLiteral("/usr/share/tessorin/world.bin");
}

std::shared_ptr<const OfflineMap> OfflineMap::shared() {
    static std::once_flag once;
    static std::shared_ptr<const OfflineMap> map;
    std::call_once(once, [] {
        QString error;
        const auto index = PlaceIndex::shared();
        map = load(defaultPath(), index.get(), &error);
        if (!map) Log::error("🗺 no offline map: " + error, "OfflineMap.shared");
    });
    return map;
}

std::shared_ptr<const OfflineMap> OfflineMap::load(const QString& path, const PlaceIndex* index, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = path + ": " + why;
        return std::shared_ptr<const OfflineMap>();
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return fail(file.errorString());
    const QByteArray bytes = file.readAll();
    world::Header h{};
    if (bytes.size() < qsizetype(sizeof h)) return fail("too short");
    std::memcpy(&h, bytes.constData(), sizeof h);
    if (std::memcmp(h.magic, world::magic, sizeof h.magic) != 0 || h.version != world::formatVersion)
        return fail("not a world map of this version");
    // Counts are checked against the size before anything is multiplied, so no sum can wrap.
    const quint64 starts = quint64(h.ringCount) + h.borderCount + 2;
    const quint64 expected = sizeof h + starts * 4 + quint64(h.pointCount) * 8;
    if (quint64(bytes.size()) != expected) return fail("size doesn't match its counts");

    std::vector<quint32> offsets(starts);
    std::memcpy(offsets.data(), bytes.constData() + sizeof h, starts * 4);
    std::vector<float> coords(size_t(h.pointCount) * 2);
    std::memcpy(coords.data(), bytes.constData() + sizeof h + starts * 4, coords.size() * sizeof(float));

    auto map = std::shared_ptr<OfflineMap>(new OfflineMap);
    auto readLines = [&](size_t first, size_t count, std::vector<Line>& into) {
        for (size_t i = first; i < first + count; ++i) {
            const quint32 from = offsets[i], to = offsets[i + 1];
            if (from > to || to > h.pointCount) return false;
            Line line;
            line.points.reserve(to - from);
            // Longitudes past ±180 stay there (rings across the antimeridian), so x isn't wrapped.
            for (quint32 p = from; p < to; ++p)
                line.points.push_back({(double(coords[2 * p]) + 180) / 360 * mercator::tileSize,
                                       mercator::project({coords[2 * p + 1], 0}, 0).y()});
            line.bounds = boundsOf(line.points);
            // A line needs two points, a ring three; fewer is nothing to draw.
            if (line.points.size() >= 2) into.push_back(std::move(line));
        }
        return true;
    };
    if (!readLines(0, h.ringCount, map->rings_) || offsets[h.ringCount] != offsets[h.ringCount + 1] ||
        !readLines(h.ringCount + 1, h.borderCount, map->borders_))
        return fail("a line runs outside the points");

    if (index)
        for (auto& t : index->towns(smallestTown))
            map->towns_.push_back({mercator::project(t.coordinate, 0), std::move(t.name), t.population});
    return map;
}

quint32 OfflineMap::minPopulation(double zoom) {
    static constexpr quint32 byZoom[] = {5'000'000, 5'000'000, 3'000'000, 1'500'000, 700'000, 300'000,
                                         150'000,   70'000,    30'000,    15'000,    8'000};
    const int z = std::clamp(int(std::floor(zoom)), 0, int(std::size(byZoom)) - 1);
    return std::max(byZoom[z], smallestTown);
}

const OfflineMap::Town* OfflineMap::ownTown(const GeoCoordinate& c) const {
    // Compared in world pixels at zoom 0, where 15 km is about 0.1 of a pixel at the equator and
    // more towards the poles, as the map itself stretches.
    const QPointF p = mercator::project(c, 0);
    const double reach = 15'000 / mercator::metresPerPixel(c.latitude, 0);
    const Town* best = nullptr;
    double bestDistance = reach * reach;
    for (const Town& t : towns_) {
        const QPointF d = t.point - p;
        const double distance = d.x() * d.x() + d.y() * d.y();
        if (distance < bestDistance) {
            bestDistance = distance;
            best = &t;
        }
    }
    return best;
}

double OfflineMap::zoomShowingTowns(const GeoCoordinate& c, const QSizeF& viewSize, double closest) const {
    const QPointF p = mercator::project(c, 0);
    const Town* own = ownTown(c);
    constexpr double farthest = 3;  // a country or so: some town always shows by then
    for (double zoom = std::floor(closest); zoom > farthest; --zoom) {
        const double scale = std::exp2(zoom);
        // A little inside the view, so that a label at the edge counts as seen.
        const QSizeF half = viewSize / scale / 2 * 0.85;
        const quint32 least = minPopulation(zoom);
        for (const Town& t : towns_) {
            if (t.population < least) break;
            if (&t != own && std::abs(t.point.x() - p.x()) < half.width() && std::abs(t.point.y() - p.y()) < half.height())
                return std::min(zoom, closest);
        }
    }
    return farthest;
}

void OfflineMap::draw(QPainter& painter, const QSizeF& viewSize, const QPointF& centre, double zoom, MapStyle style,
                      const Town* own) const {
    const Palette colours = palette(style);
    const double scale = std::exp2(zoom);
    const QRectF view(centre - QPointF(viewSize.width(), viewSize.height()) / 2, viewSize);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(QPointF(), viewSize), colours.sea);
    if (!std::isfinite(centre.x()) || !std::isfinite(centre.y()) || !std::isfinite(scale)) {
        painter.restore();
        return;
    }

    const double world = mercator::tileSize * scale;
    // Each copy of the world the view reaches, by its offset in world pixels.
    const int firstCopy = int(std::floor(view.left() / world)), lastCopy = int(std::floor(view.right() / world));
    QPainterPath land, borders;
    land.setFillRule(Qt::OddEvenFill);
    for (int copy = firstCopy; copy <= lastCopy; ++copy) {
        const QPointF origin = view.topLeft() - QPointF(copy * world, 0);  // the view within this copy
        const QRectF inZoom0(origin / scale, viewSize / scale);
        // A margin keeps the clipped edges, and their outline, out of sight.
        const QRectF clip = QRectF(QPointF(-4, -4), viewSize + QSizeF(8, 8));
        auto toView = [&](const QPointF& p) { return p * scale - origin; };
        for (const Line& ring : rings_) {
            if (!ring.bounds.intersects(inZoom0)) continue;
            std::vector<QPointF> points;
            points.reserve(ring.points.size());
            // Points closer than a pixel to the last one kept add nothing but time.
            for (const QPointF& p : ring.points)
                if (const QPointF v = toView(p); points.empty() || (v - points.back()).manhattanLength() >= 1)
                    points.push_back(v);
            if (!inZoom0.contains(ring.bounds)) points = clipRing(points, clip);
            if (points.size() < 3) continue;
            land.addPolygon(QPolygonF(QList<QPointF>(points.begin(), points.end())));
            land.closeSubpath();
        }
        for (const Line& border : borders_) {
            if (!border.bounds.intersects(inZoom0)) continue;
            // Only the segments that reach the view, each run of them as one line.
            bool drawing = false;
            QPointF a = toView(border.points.front());
            for (size_t i = 1; i < border.points.size(); ++i) {
                const QPointF b = toView(border.points[i]);
                if ((b - a).manhattanLength() < 1 && i + 1 < border.points.size()) continue;
                const bool seen = std::max(a.x(), b.x()) >= clip.left() && std::min(a.x(), b.x()) <= clip.right() &&
                                  std::max(a.y(), b.y()) >= clip.top() && std::min(a.y(), b.y()) <= clip.bottom();
                if (seen && !drawing) borders.moveTo(a);
                if (seen) borders.lineTo(b);
                drawing = seen;
                a = b;
            }
        }
    }
    painter.fillPath(land, colours.land);
    painter.strokePath(land, QPen(colours.coast, 0.8));
    // Dashes cost a great deal on a whole continent; below country zoom a thin line reads as well.
    QPen borderPen(colours.border, zoom < 4 ? 0.7 : 1.2, zoom < 4 ? Qt::SolidLine : Qt::DashLine);
    painter.strokePath(borders, borderPen);

    // Towns, most populous first; a label that would overlap an earlier one is left out.
    const quint32 least = minPopulation(zoom);
    QFont font = painter.font();
    font.setPixelSize(zoom < 5 ? 11 : 12);
    painter.setFont(font);
    const QFontMetricsF metrics(font);
    QList<QRectF> taken;
    // The photo's own town first, so that no bigger neighbour's label crowds it out.
    auto name = [&](const Town& t) {
        for (int copy = firstCopy; copy <= lastCopy; ++copy) {
            const QPointF p = t.point * scale - view.topLeft() + QPointF(copy * world, 0);
            if (p.x() < -40 || p.y() < -20 || p.x() > viewSize.width() + 40 || p.y() > viewSize.height() + 20) continue;
            const QRectF label(p + QPointF(5, -metrics.height() / 2), QSizeF(metrics.horizontalAdvance(t.name), metrics.height()));
            const QRectF both = label.united(QRectF(p - QPointF(3, 3), QSizeF(6, 6)));
            bool free = true;
            for (const QRectF& r : std::as_const(taken)) free = free && !r.intersects(both);
            if (!free) continue;
            taken.append(both);
            painter.setPen(QPen(colours.halo, 1.5));
            painter.setBrush(colours.dot);
            painter.drawEllipse(p, t.population >= 1'000'000 ? 3.5 : 2.5, t.population >= 1'000'000 ? 3.5 : 2.5);
            // The halo as the text drawn around itself: glyphs come from the cache, where a
            // stroked outline would be worked out anew each frame.
            const QPointF baseline(label.left(), label.top() + metrics.ascent());
            painter.setPen(colours.halo);
            for (const QPointF d : {QPointF(-1, 0), QPointF(1, 0), QPointF(0, -1), QPointF(0, 1)})
                painter.drawText(baseline + d, t.name);
            painter.setPen(colours.label);
            painter.drawText(baseline, t.name);
        }
    };
    if (own) name(*own);
    for (const Town& t : towns_) {
        if (t.population < least || taken.size() >= 80) break;
        if (&t != own) name(t);
    }
    painter.restore();
}
