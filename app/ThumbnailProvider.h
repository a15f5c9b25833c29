// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// image://thumb/<percent-encoded path>: a file's thumbnail, made on threads of its own, the
// latest asked first and those no longer asked skipped, so that the GUI thread never decodes and
// the cells in view come first. The Image's sourceSize bounds it (256 pixels when unset).
#include <QQuickAsyncImageProvider>

class ThumbnailProvider : public QQuickAsyncImageProvider {
public:
    static constexpr int defaultSide = 256;
    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;
};
