// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the map and the address list need of a record, in words: which way the camera faced and
// any GPS tag's text, so that map code needs no dictionary keys.
#include "TSMetaData.h"

#include <QString>
#include <QVariant>
#include <optional>

// The raw direction: the image direction, else the destination bearing.
std::optional<QVariant> facingData(const TSMetaData& metaData);
// The direction in degrees, when its text is a decimal number as a whole.
std::optional<double> facingGraAngle(const TSMetaData& metaData);
// The direction's reference in words ("True North", "Magnetic North").
std::optional<QString> facingRef(const TSMetaData& metaData);
// Any GPS tag in words, with the current "human" setting.
std::optional<QString> gpsMeaning(const TSMetaData& metaData, const QString& key);
