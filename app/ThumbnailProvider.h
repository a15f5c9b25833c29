// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// image://thumb/<percent-encoded path>: a file's thumbnail, made on the thread pool so that
// the GUI thread never decodes. The Image's sourceSize bounds it (256 pixels when unset).
#include <QQuickAsyncImageProvider>

class ThumbnailProvider : public QQuickAsyncImageProvider {
public:
    static constexpr int defaultSide = 256;
    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;
};
