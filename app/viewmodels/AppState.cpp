// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppState.h"

AppState& appState() {
    static AppState state;
    return state;
}
