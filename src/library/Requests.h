// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Reading an asset's bytes, as the platform's resource and image managers do. A file on a
// network or FUSE mount stands for one kept off the device: a request that may not use the
// network fails at once for it, one that may reads it in chunks with progress and can be
// stopped. Handlers run on a worker thread; callers hop to their own thread.
#include "Library.h"

#include <QByteArray>
#include <functional>
#include <optional>

namespace library {

using RequestId = qint32;

struct DataRequestOptions {
    bool networkAccessAllowed = false;
    // After each chunk, with the share read so far (0 to 1).
    std::function<void(double progress)> progressHandler;
};

// The resource manager: the bytes of one resource, chunk by chunk.
namespace ResourceManager {
RequestId requestData(const Resource& resource, const DataRequestOptions& options,
                      std::function<void(const QByteArray& chunk)> dataReceived,
                      std::function<void(const std::optional<QString>& error)> completion);
void cancelDataRequest(RequestId id);
}  // namespace ResourceManager

enum class ImageVersion { current = 0, original = 2 };

struct ImageRequestOptions {
    bool networkAccessAllowed = false;
    ImageVersion version = ImageVersion::current;
    // After each chunk; setting *stop ends the request with an error.
    std::function<void(double progress, bool* stop)> progressHandler;
};

// The image manager: the whole file of the current version (the edit when there is one) or of
// the original.
namespace ImageManager {
RequestId requestImageData(const Asset& asset, const ImageRequestOptions& options,
                           std::function<void(const std::optional<QByteArray>& data, const std::optional<QString>& error)> result);
void cancelImageRequest(RequestId id);
}  // namespace ImageManager

// The text of a request that was cancelled.
QString cancelledText();

}  // namespace library
