// SPDX-License-Identifier: GPL-3.0-or-later
#include "IconProvider.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QBuffer>

QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const QString colour = id.section('/', 0, 0);
    const QString symbol = id.section('/', 1);
    QFile file(QStringLiteral(":/icons/%1.svg").arg(symbol));
    if (symbol.isEmpty() || symbol.contains('/') || !file.open(QIODevice::ReadOnly)) return {};
    QByteArray svg = file.readAll();
    if (colour.size() == 6) svg.replace("#3C3C43", '#' + colour.toLatin1());
    QBuffer buffer(&svg);
    QImageReader reader(&buffer, "svg");
    const QSize wanted = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(24, 24);
    reader.setScaledSize(wanted);
    QImage image = reader.read();
    if (size) *size = image.size();
    return image;
}
