// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// image://icon/<rrggbb>/<symbol>: an icon of :/icons with its grey parts (#3C3C43, drawn for a
// light screen) in the given colour, so that chevrons and badges stay legible on a dark one. The
// blue of the tint is left alone. The Image's sourceSize sets the size (24 pixels when unset).
#include <QQuickImageProvider>

class IconProvider : public QQuickImageProvider {
public:
    IconProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};
