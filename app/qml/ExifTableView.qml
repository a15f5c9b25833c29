// SPDX-License-Identifier: GPL-3.0-or-later
// Every tag of the current item in collapsible sections. A header's tap opens or closes its
// section (for every item after this one too); the list button jumps to a section; a press
// and hold copies a value.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Tessorin

Item {
    id: root

    ListView {
        id: list
        anchors.fill: parent
        model: TagTable
        boundsBehavior: Flickable.DragAndOvershootBounds
        ScrollIndicator.vertical: ScrollIndicator {}
        onContentYChanged: if (dragging) Detail.offsetChanged(contentY - originY)
        onDragEnded: Detail.dragEnded()
        // From the keyboard: Tab reaches the list, the arrows move from row to row, Enter opens or
        // closes a section, Ctrl+C copies the row's value.
        activeFocusOnTab: true
        keyNavigationEnabled: true
        Keys.onReturnPressed: if (currentItem && currentItem.kind === "header") TagTable.toggle(currentItem.section)
        Keys.onPressed: event => {
            if (event.matches(StandardKey.Copy) && currentItem && currentItem.kind === "row") {
                TagTable.copy(currentIndex)
                event.accepted = true
            }
        }

        add: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 180 } }
        displaced: Transition { NumberAnimation { property: "y"; duration: 180 } }

        delegate: Loader {
            id: entry
            required property int index
            required property string kind
            required property int section
            required property string title
            required property bool open
            required property string label
            required property string value
            width: list.width
            sourceComponent: kind === "header" ? header : kind === "download" ? download : tagRow
            // Read out as the row shows it.
            Accessible.role: kind === "header" ? Accessible.Button : Accessible.ListItem
            Accessible.name: kind === "header" ? title : kind === "row" ? label + " " + value : qsTr("Not on this device")
            Accessible.onPressAction: if (kind === "header") TagTable.toggle(section)
            // The row with the keyboard's focus.
            Rectangle {
                anchors.fill: parent
                z: 1
                visible: list.activeFocus && entry.ListView.isCurrentItem
                color: "transparent"
                border.color: Theme.tint
                border.width: 2
            }

            Component {
                id: header
                Rectangle {
                    height: 44
                    color: Theme.groupedBackground
                    RowLayout {
                        anchors.fill: parent
                        anchors.leftMargin: 16
                        anchors.rightMargin: 56
                        spacing: 8
                        Image {
                            source: entry.open ? "image://icon/" + Theme.iconTone + "/chevron.down" : "image://icon/" + Theme.iconTone + "/chevron.right"
                            sourceSize: Qt.size(14, 14)
                        }
                        Label {
                            Layout.fillWidth: true
                            text: entry.title
                            elide: Text.ElideRight
                            font.pixelSize: 15
                            font.weight: Font.DemiBold
                            color: Theme.text
                        }
                    }
                    TapHandler { onTapped: TagTable.toggle(entry.section) }
                }
            }

            Component {
                id: tagRow
                Rectangle {
                    height: Math.max(36, Math.max(tagLabel.implicitHeight, tagValue.implicitHeight) + 12)
                    color: Theme.card
                    Label {
                        id: tagLabel
                        anchors.left: parent.left
                        anchors.leftMargin: 16
                        anchors.top: parent.top
                        anchors.topMargin: 6
                        width: parent.width * 0.42
                        text: entry.label
                        wrapMode: Text.Wrap
                        font.pixelSize: 14
                        color: Theme.secondaryText
                    }
                    Label {
                        id: tagValue
                        anchors.left: tagLabel.right
                        anchors.right: parent.right
                        anchors.leftMargin: 8
                        anchors.rightMargin: 16
                        anchors.top: parent.top
                        anchors.topMargin: 6
                        text: entry.value
                        // Words stay whole; a long run without spaces (hex, base64) still breaks.
                        wrapMode: Text.Wrap
                        font.pixelSize: 14
                        color: Theme.text
                    }
                    Rectangle {
                        anchors.bottom: parent.bottom
                        anchors.left: parent.left
                        anchors.leftMargin: 16
                        anchors.right: parent.right
                        height: 1
                        color: Theme.fill
                    }
                    TapHandler {
                        acceptedButtons: Qt.RightButton
                        onTapped: copyMenu.popup()
                    }
                    TapHandler { onLongPressed: copyMenu.popup() }
                    Menu {
                        id: copyMenu
                        MenuItem { text: qsTr("Copy"); onTriggered: TagTable.copy(entry.index) }
                    }
                }
            }

            Component {
                id: download
                Rectangle {
                    height: 44
                    color: Theme.card
                    Image {
                        anchors.left: parent.left
                        anchors.leftMargin: 16
                        anchors.verticalCenter: parent.verticalCenter
                        source: "image://icon/" + Theme.iconTone + "/xmark.icloud"
                        sourceSize: Qt.size(24, 24)
                    }
                }
            }
        }
    }

    RoundButton {
        id: listButton
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.margins: 6
        width: 36
        height: 36
        padding: 0
        icon.source: "qrc:/icons/list.bullet.svg"
        Accessible.name: qsTr("Go To:")
        icon.color: Theme.tint
        icon.width: 18
        icon.height: 18
        Material.background: Theme.card
        Material.elevation: 2
        onClicked: goTo.open()
    }

    Popup {
        id: goTo
        x: root.width - width - 8
        y: listButton.y + listButton.height + 4
        width: 200
        height: 250
        padding: 0
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground { radius: 10 }
        ListView {
            anchors.fill: parent
            anchors.margins: 1
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            model: TagTable.sectionTitles
            headerPositioning: ListView.OverlayHeader
            header: Rectangle {
                z: 2
                width: ListView.view.width
                height: 44
                color: Theme.card
                radius: 10
                Rectangle {
                    anchors.bottom: parent.bottom
                    width: parent.width
                    height: 1
                    color: Theme.fill
                }
                Label {
                    anchors.left: parent.left
                    anchors.leftMargin: 16
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Go To:")
                    font.pixelSize: 15
                    font.weight: Font.DemiBold
                }
            }
            delegate: FormRow {
                required property int index
                required property string modelData
                width: ListView.view.width
                text: modelData
                font.pixelSize: 14
                onClicked: {
                    list.positionViewAtIndex(TagTable.goTo(index), ListView.Beginning)
                    goTo.close()
                }
            }
        }
    }
}
