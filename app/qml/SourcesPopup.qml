// SPDX-License-Identifier: GPL-3.0-or-later
// Where a date or a location came from: one block per source, its name over its value. Also
// shows the two focal lengths.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Popup {
    id: popup
    property var blocks: []

    function show(texts, anchor) {
        blocks = texts
        const p = anchor.mapToItem(parent, 0, anchor.height)
        x = Math.max(8, Math.min(p.x - width / 2 + anchor.width / 2, parent.width - width - 8))
        y = p.y + 4
        open()
    }

    width: 280
    padding: 16
    modal: true
    Overlay.modal: Dimmer {}
    background: CardBackground { radius: 10 }

    ColumnLayout {
        width: parent.width
        spacing: 12
        Repeater {
            model: popup.blocks
            delegate: ColumnLayout {
                required property string modelData
                Layout.fillWidth: true
                spacing: 2
                Label {
                    Layout.fillWidth: true
                    text: modelData.split("\n")[0]
                    wrapMode: Text.Wrap
                    font.pixelSize: 14
                    font.weight: Font.DemiBold
                    color: Theme.text
                }
                Label {
                    Layout.fillWidth: true
                    text: modelData.split("\n").slice(1).join("\n")
                    wrapMode: Text.Wrap
                    font.pixelSize: 14
                    color: Theme.secondaryText
                }
            }
        }
    }
}
