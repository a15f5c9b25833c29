// SPDX-License-Identifier: GPL-3.0-or-later
// What a modal popup lays over the window behind it. The Material style's own dims with a
// light grey in its dark theme, which made a dark screen pale behind every dialog.
import QtQuick

Rectangle {
    color: "#99303030"
}
