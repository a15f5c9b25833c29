// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What each action of the share menu hands on for the item on view: the file as it
// is with its summary sentence, a copy without metadata, the details text, and the three exports
// of all tags. The screens decide where the items go (clipboard, a saved file).
#include "TSAsset.h"
#include "TSMetaDictionay.h"

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>

namespace sharing {

enum class ShareAction { shareMeta, shareWithoutMeta, shareWithoutLocation, shareDetails, hrShare, jsonShare, rawShare };

// The items of one action: a file's bytes with the name a save dialog offers, and a text.
// Either may be empty (a text action has no bytes; the stripped copy has no text).
struct ShareItems {
    QByteArray data;
    QString fileName;
    QString text;
};

inline const QString kStripError = QStringLiteral("Error while stripping Metadata");

// The tag dictionary the exports come from: a photo's with its album's needDownload; a video's
// once its tags are in and its store completed; otherwise one over nothing, needing download,
// whose exports are all empty.
std::unique_ptr<TSMetaDictProtocol> exportDictionary(const TSAsset* asset, bool needDownload);

// The picture decoded, turned upright by `orientation` (HEIF and AVIF by their container), and
// encoded as a JPEG of quality 100 that holds no tags; nothing when the bytes can't be decoded or
// the JPEG can't be made.
std::optional<QByteArray> strippedJpeg(const QByteArray& imageData, int orientation = 1);

// What `action` shares of the item on view (`needDownload` is its album's). Nothing when there is
// nothing to share (no item, no data, an empty text); nothing with `error` set when making it failed.
std::optional<ShareItems> shareItems(ShareAction action, const TSAsset* asset, bool needDownload, QString* error = nullptr);

}  // namespace sharing
