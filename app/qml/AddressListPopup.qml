// SPDX-License-Identifier: GPL-3.0-or-later
// What is known of the current item's place, in sections; the first row opens the desktop's map.
import QtQuick
import QtQuick.Controls
import Tessorin

Popup {
    id: popup
    anchors.centerIn: Overlay.overlay
    width: Math.min(360, (parent ? parent.width : 360) - 32)
    height: Math.min(list.contentHeight + 24, (parent ? parent.height : 600) - 80)
    modal: true
    Overlay.modal: Dimmer {}
    padding: 12
    background: CardBackground {}
    onAboutToShow: AddressList.load()

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: AddressList.sections
        delegate: Column {
            id: section
            required property var modelData
            width: list.width
            spacing: 0
            Label {
                visible: section.modelData.title !== ""
                text: section.modelData.title
                font.pixelSize: 13
                color: Theme.secondaryText
                topPadding: 10
                bottomPadding: 4
            }
            Repeater {
                model: section.modelData.rows
                FormRow {
                    required property string modelData
                    width: list.width
                    text: modelData
                    font.pixelSize: 15
                    palette.buttonText: section.modelData.title === "" ? Theme.tint : Theme.text
                    onClicked: if (section.modelData.title === "") { AddressList.openInMaps(); popup.close() }
                }
            }
        }
    }
}
