// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The one-step changes the detail toolbar makes to a library item: its favourite mark and its
// deletion (into the desktop's trash; the caller asks the user first).
#include "Library.h"

namespace AssetModifier {

// Turns the favourite mark to the opposite of what the item has now.
bool favorite(library::Library& library, const QString& localIdentifier, QString* error = nullptr);
bool remove(library::Library& library, const QString& localIdentifier, QString* error = nullptr);
// Whether any asset of the fetch stands for a burst: deleting it speaks of the burst.
bool anyRepresentsBurst(const library::FetchResult& fetch);

}  // namespace AssetModifier
