// SPDX-License-Identifier: GPL-3.0-or-later
// The background of the menus and popovers: a white card with a soft shadow, drawn plainly
// because the style's elevated background needs effects the software renderer lacks.
import QtQuick
import Tessorin

Item {
    property real radius: 14

    Rectangle {
        anchors.fill: parent
        anchors.topMargin: 3
        anchors.bottomMargin: -3
        radius: parent.radius + 1
        color: "#26000000"
    }
    Rectangle {
        anchors.fill: parent
        radius: parent.radius
        color: Theme.card
        border.color: Theme.separator
    }
}
