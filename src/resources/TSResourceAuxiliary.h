// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The auxiliary images of one file's bytes, each turned into plain image bytes that any viewer
// decodes: disparity maps take the depth route (scaled to their own range, then grey levels,
// as JPEG); every other kind, depth maps among them, takes the bitmap route (the samples seen
// as 8-bit grey, as BMP).
#include "AuxiliaryImageType.h"
#include "DepthToGrayscaleConverter.h"

#include <QByteArray>
#include <optional>

class TSResourceAuxiliary {
public:
    explicit TSResourceAuxiliary(QByteArray bytes);

    // Nothing when the bytes hold no such image or it can't be turned into one.
    std::optional<QByteArray> auxiliaryData(AuxiliaryImageType type);
    // Unset until a query gave an image, then true.
    std::optional<bool> hasAux() const { return hasAux_; }

    // Whether the bytes hold any auxiliary image: the first kind that gives one ends the search.
    static bool hasAuxiliaryImage(const QByteArray& bytes);

private:
    std::optional<QByteArray> source_;
    std::optional<bool> hasAux_;
};

// The map of a depth or disparity image as floats in its native precision, spread over the
// range its description gives and turned upright: nothing for other images or bad sizes.
std::optional<PixelBuffer> depthDataMap(const imageio::AuxiliaryDataInfo& info);

// Rescales a map to 0...1 by its lowest and highest sample, NaN left out. The samples are read
// as one tight run of width times height, whatever the row length. A flat map, or one of NaN
// only, is left as it is; the answer says whether it was rescaled.
bool normalize(PixelBuffer& map);

// The two routes, for callers that already hold the decoded image.
std::optional<QByteArray> bitmapRoute(const imageio::AuxiliaryDataInfo& info);
std::optional<QByteArray> depthRoute(const imageio::AuxiliaryDataInfo& info);
