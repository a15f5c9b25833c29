// SPDX-License-Identifier: GPL-3.0-or-later
// A switch with its track and knob drawn here: the style's knob is a shadowed shader item that
// the software renderer (screenshots, machines without a GPU) leaves out, so a switch showed no
// knob there.
import QtQuick
import QtQuick.Controls
import Tessorin

Switch {
    id: toggle
    padding: 0
    indicator: Rectangle {
        objectName: "switchTrack"
        implicitWidth: 48
        implicitHeight: 28
        x: toggle.leftPadding
        y: (toggle.height - height) / 2
        radius: height / 2
        color: toggle.checked ? Theme.tint : Theme.fill
        // Focus from the keyboard shows as a ring round the track.
        border.color: toggle.visualFocus ? Theme.tint : "transparent"
        border.width: 2
        Behavior on color { ColorAnimation { duration: 150 } }
        Rectangle {
            objectName: "switchKnob"
            width: 24
            height: 24
            radius: 12
            y: 2
            x: toggle.checked ? parent.width - width - 2 : 2
            color: "#FFFFFF"
            border.color: Theme.separator
            border.width: toggle.checked ? 0 : 1
            Behavior on x { NumberAnimation { duration: 150 } }
        }
    }
}
