// SPDX-License-Identifier: GPL-3.0-or-later
#include "QmlSetup.h"

#include "TSMapView.h"
#include "IconProvider.h"
#include "ThumbnailProvider.h"

#include <QQmlEngine>
#include <QQuickStyle>

namespace appqml {

void setStyle() {
    // The theme and the tint (#1E6FD9) are in :/qtquickcontrols2.conf.
    QQuickStyle::setStyle(QStringLiteral("Material"));
}

void setUpEngine(QQmlEngine& engine) {
    engine.addImageProvider(QStringLiteral("thumb"), new ThumbnailProvider);
    engine.addImageProvider(QStringLiteral("icon"), new IconProvider);
    qmlRegisterType<TSMapView>("Tessorin", 1, 0, "TSMapView");
}

}  // namespace appqml
