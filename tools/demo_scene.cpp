// SPDX-License-Identifier: GPL-3.0-or-later
// The demo album's pictures, drawn: a sky, a sun or moon, the land of each place, its name.
#include "demo.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRandomGenerator>
#include <QTransform>

#include <algorithm>
#include <cmath>

QImage drawScene(QSize size, const Scene& s, const QString& title, const QString& subtitle) {
    QImage image(size, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const double w = size.width(), h = size.height();
    QLinearGradient sky(0, 0, 0, h);
    sky.setColorAt(0, s.skyTop);
    sky.setColorAt(1, s.skyBottom);
    p.fillRect(image.rect(), sky);

    // Sun or moon with a soft halo.
    const QPointF c(s.discX * w, s.discY * h);
    const double r = std::min(w, h) * 0.09;
    QRadialGradient halo(c, r * 3.5);
    QColor glow = s.disc;
    glow.setAlpha(110);
    halo.setColorAt(0, glow);
    halo.setColorAt(1, QColor(255, 255, 255, 0));
    p.setPen(Qt::NoPen);
    p.setBrush(halo);
    p.drawEllipse(c, r * 3.5, r * 3.5);
    p.setBrush(s.disc);
    p.drawEllipse(c, r, r);

    QRandomGenerator rng(uint(s.kind) * 7919u + 17u);
    const double ground = h * 0.68;
    QPainterPath land;
    switch (s.kind) {
    case Land::peaks:
    case Land::tableMountain: {
        land.moveTo(0, h);
        if (s.kind == Land::peaks) {
            const double xs[] = {0, .12, .22, .31, .38, .46, .55, .63, .74, .86, 1};
            const double ys[] = {.70, .52, .40, .22, .30, .18, .35, .28, .47, .58, .66};
            for (int i = 0; i < 11; ++i) land.lineTo(xs[i] * w, ys[i] * h);
        } else {
            land.lineTo(0, .72 * h);
            land.lineTo(.18 * w, .55 * h);
            land.lineTo(.26 * w, .38 * h);
            land.lineTo(.70 * w, .36 * h);
            land.lineTo(.80 * w, .50 * h);
            land.lineTo(w, .62 * h);
        }
        land.lineTo(w, h);
        land.closeSubpath();
        p.setBrush(s.land);
        p.drawPath(land);
        if (s.kind == Land::peaks) {  // snow on the tops
            p.setBrush(QColor(250, 245, 250, 220));
            QPainterPath snow;
            snow.moveTo(.31 * w, .22 * h);
            snow.lineTo(.335 * w, .27 * h);
            snow.lineTo(.29 * w, .26 * h);
            snow.closeSubpath();
            snow.moveTo(.46 * w, .18 * h);
            snow.lineTo(.49 * w, .25 * h);
            snow.lineTo(.43 * w, .24 * h);
            snow.closeSubpath();
            p.drawPath(snow);
        }
        break;
    }
    case Land::city: {
        p.setBrush(s.land);
        double x = 0;
        while (x < w) {
            const double bw = w * (0.04 + rng.generateDouble() * 0.06);
            const double bh = h * (0.18 + rng.generateDouble() * 0.5);
            p.setBrush(s.land);
            p.drawRect(QRectF(x, h - bh, bw - 2, bh));
            p.setBrush(QColor(255, 214, 110));
            for (double wy = h - bh + 10; wy < h - 12; wy += 16)
                for (double wx = x + 6; wx < x + bw - 10; wx += 12)
                    if (rng.bounded(3) == 0) p.drawRect(QRectF(wx, wy, 5, 7));
            x += bw;
        }
        break;
    }
    case Land::arches: {
        p.setBrush(s.land);
        const QRectF wall(w * 0.12, h * 0.38, w * 0.76, h * 0.62);
        QPainterPath body;
        body.addRect(wall);
        for (int row = 0; row < 3; ++row)
            for (int i = 0; i < 8; ++i) {
                const double aw = wall.width() / 8 * 0.6;
                const double ax = wall.left() + (i + 0.2) * wall.width() / 8;
                const double ay = wall.top() + 12 + row * wall.height() / 4;
                QPainterPath arch;
                arch.addRoundedRect(QRectF(ax, ay, aw, wall.height() / 4 - 24), aw / 2, aw / 2);
                body = body.subtracted(arch);
            }
        p.drawPath(body);
        p.fillRect(QRectF(0, h * 0.9, w, h * 0.1), s.land.darker(130));
        break;
    }
    case Land::harbour:
    case Land::ocean:
    case Land::bridge: {
        QLinearGradient sea(0, ground, 0, h);
        sea.setColorAt(0, s.land.lighter(130));
        sea.setColorAt(1, s.land);
        p.fillRect(QRectF(0, ground, w, h - ground), sea);
        p.setPen(QPen(QColor(255, 255, 255, 90), 2));
        for (int i = 0; i < 14; ++i) {
            const double y = ground + 10 + rng.generateDouble() * (h - ground - 20);
            const double x = rng.generateDouble() * w;
            p.drawLine(QPointF(x, y), QPointF(x + w * 0.08, y));
        }
        p.setPen(Qt::NoPen);
        if (s.kind == Land::harbour) {  // boats with masts
            for (int i = 0; i < 4; ++i) {
                const double bx = w * (0.12 + i * 0.21), by = ground + h * 0.1 + (i % 2) * h * 0.06;
                QPainterPath hull;
                hull.moveTo(bx, by);
                hull.lineTo(bx + w * 0.12, by);
                hull.lineTo(bx + w * 0.10, by + h * 0.04);
                hull.lineTo(bx + w * 0.02, by + h * 0.04);
                hull.closeSubpath();
                p.setBrush(i % 2 ? QColor(200, 50, 40) : QColor(240, 240, 235));
                p.drawPath(hull);
                p.setBrush(QColor(60, 60, 70));
                p.drawRect(QRectF(bx + w * 0.058, by - h * 0.16, 3, h * 0.16));
            }
        } else if (s.kind == Land::bridge) {  // a suspension bridge over the river
            const QColor red(190, 60, 45);
            p.setBrush(red);
            const double deck = ground - h * 0.06;
            p.drawRect(QRectF(0, deck, w, h * 0.025));
            for (double tx : {0.3, 0.75}) p.drawRect(QRectF(tx * w - 6, h * 0.22, 12, ground - h * 0.22));
            // Main cables in three spans, with hangers down to the deck.
            const QPointF spans[3][3] = {{{-0.15 * w, h * 0.23}, {0.075 * w, deck + h * 0.02}, {0.3 * w, h * 0.22}},
                                         {{0.3 * w, h * 0.22}, {0.525 * w, deck - h * 0.01}, {0.75 * w, h * 0.22}},
                                         {{0.75 * w, h * 0.22}, {0.975 * w, deck + h * 0.02}, {1.2 * w, h * 0.23}}};
            QPainterPath cable;
            for (const auto& sp : spans) {
                cable.moveTo(sp[0]);
                cable.quadTo(sp[1], sp[2]);
                p.setPen(QPen(red, 1));
                for (double t = 0.05; t < 1; t += 0.05) {
                    const QPointF at = (1 - t) * (1 - t) * sp[0] + 2 * (1 - t) * t * sp[1] + t * t * sp[2];
                    if (at.x() > 0 && at.x() < w) p.drawLine(at, QPointF(at.x(), deck));
                }
            }
            p.setPen(QPen(red, 2.5));
            p.setBrush(Qt::NoBrush);
            p.drawPath(cable);
            p.setPen(Qt::NoPen);
        } else {  // the opera house's sails
            p.setBrush(QColor(245, 242, 232));
            for (int i = 0; i < 4; ++i) {
                QPainterPath sail;
                const double sx = w * (0.55 + i * 0.06), sy = ground;
                sail.moveTo(sx, sy);
                sail.quadTo(sx + w * 0.02, sy - h * (0.2 - i * 0.03), sx + w * 0.09, sy - h * (0.17 - i * 0.03));
                sail.lineTo(sx + w * 0.08, sy);
                sail.closeSubpath();
                p.drawPath(sail);
            }
        }
        break;
    }
    case Land::blossom: {
        p.fillRect(QRectF(0, ground, w, h - ground), s.land);
        p.setBrush(QColor(90, 60, 50));
        p.drawRect(QRectF(w * 0.2, h * 0.35, w * 0.03, h * 0.4));
        p.drawRect(QRectF(w * 0.72, h * 0.3, w * 0.03, h * 0.45));
        for (int i = 0; i < 260; ++i) {
            const bool left = i % 2;
            const QPointF centre(w * (left ? 0.215 : 0.735), h * (left ? 0.33 : 0.28));
            const double a = rng.generateDouble() * 2 * M_PI, d = std::sqrt(rng.generateDouble()) * w * 0.17;
            p.setBrush(QColor(255, 170 + rng.bounded(50), 200 + rng.bounded(40), 200));
            p.drawEllipse(centre + QPointF(std::cos(a) * d, std::sin(a) * d * 0.7), w * 0.012, w * 0.012);
        }
        break;
    }
    case Land::shapes: {
        for (int i = 0; i < 9; ++i) {
            QColor col = QColor::fromHsv(rng.bounded(360), 120, 235, 170);
            p.setBrush(col);
            const double sz = std::min(w, h) * (0.1 + rng.generateDouble() * 0.25);
            const QPointF at(rng.generateDouble() * w, rng.generateDouble() * h);
            if (i % 2)
                p.drawEllipse(at, sz / 2, sz / 2);
            else
                p.drawRoundedRect(QRectF(at, QSizeF(sz, sz)), sz * 0.2, sz * 0.2);
        }
        break;
    }
    }

    // The place's name on a soft band at the bottom.
    const double band = h * 0.2;
    p.fillRect(QRectF(0, h - band, w, band), QColor(0, 0, 0, 90));
    QFont big("Sans", 10, QFont::DemiBold);
    big.setPixelSize(int(band * 0.38));
    p.setFont(big);
    p.setPen(Qt::white);
    p.drawText(QRectF(w * 0.05, h - band, w * 0.9, band * 0.62), Qt::AlignLeft | Qt::AlignBottom, title);
    QFont small("Sans", 10);
    small.setPixelSize(int(band * 0.18));
    p.setFont(small);
    p.setPen(QColor(255, 255, 255, 220));
    p.drawText(QRectF(w * 0.05, h - band * 0.36, w * 0.9, band * 0.3), Qt::AlignLeft | Qt::AlignVCenter, subtitle);
    return image;
}

QImage storedFor(const QImage& upright, int orientation) {
    switch (orientation) {
    case 3: return upright.transformed(QTransform().rotate(180));
    case 6: return upright.transformed(QTransform().rotate(-90));
    case 8: return upright.transformed(QTransform().rotate(90));
    default: return upright;
    }
}
