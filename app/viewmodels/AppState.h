// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the app's screens share for the whole run and no module below them needs to know; a
// module that depends on one of these values is handed it.
#include <QString>
#include <optional>

struct AppState {
    // The cap of selected items in the edit screen, set from the machine's memory at start.
    int maxImages = 24;
    // The album named by a tessorin://NAME link, until the album list has acted on it.
    std::optional<QString> pendingUrlAlbumName;
    // The "open the last item" action, until the screens have acted on it.
    bool pendingQuickAction = false;
    // A tablet-sized window (split view) rather than a phone-sized one (navigation stack).
    bool isPad = false;
};

AppState& appState();
