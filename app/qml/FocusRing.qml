// SPDX-License-Identifier: GPL-3.0-or-later
// Where the keys are: a ring around the control that Tab or an arrow gave the focus to, whatever
// the control. (The style shows such focus as a faint ripple on some controls, on others not at
// all.) Text fields keep their own underline.
import QtQuick
import QtQuick.Controls
import Tessorin

Rectangle {
    id: ring
    objectName: "focusRing"
    required property Window window
    property Item target: null
    parent: Overlay.overlay
    z: 1000
    visible: target !== null
    color: "transparent"
    border.width: 2
    border.color: Theme.tint
    radius: 4

    function place() {
        const item = window.activeFocusItem
        const shown = item !== null && item.visualFocus === true && item.visible
                      && !(item instanceof TextField) && !(item instanceof TextArea)
        target = shown ? item : null
        if (!shown) return
        const at = item.mapToItem(parent, 0, 0)
        x = at.x; y = at.y; width = item.width; height = item.height
    }
    // Every frame that moves something: the control may scroll or slide with its page.
    Connections {
        target: ring.window
        function onActiveFocusItemChanged() { ring.place() }
        function onAfterAnimating() { ring.place() }
    }
}
