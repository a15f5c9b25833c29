// SPDX-License-Identifier: GPL-3.0-or-later
// The summary of the current item: date and location (with a mark when their sources
// disagree), badges, the exposure stack, camera, file, user fields and the place. Pulling the
// list past its top grows the strip; a press and hold copies the details.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

ListView {
    id: table
    objectName: "detailTable"
    signal sourcesRequested(int row, Item anchor)
    signal focalRequested(Item anchor)
    signal addressRequested()

    model: DetailTable
    boundsBehavior: Flickable.DragAndOvershootBounds
    ScrollIndicator.vertical: ScrollIndicator {}

    onContentYChanged: if (dragging) Detail.offsetChanged(contentY - originY)
    onDragEnded: Detail.dragEnded()

    delegate: Item {
        id: rowItem
        required property int index
        required property string kind
        required property string label
        required property string value
        required property real alpha
        required property bool collapsed
        required property bool infoMark
        required property var stack
        required property bool focalAccent
        required property string fileName
        required property string fileType
        required property string sizes
        required property var badges
        required property string coordinate
        required property var mapPlace

        width: table.width
        height: collapsed ? 0 : loader.height
        // Read out as shown: the label and the value, the file's name, type and sizes.
        Accessible.role: kind === "date" || kind === "location" || kind === "details" || kind === "sizes"
                         ? Accessible.ListItem : kind === "map" ? Accessible.Graphic : Accessible.NoRole
        Accessible.name: kind === "sizes" ? [fileName, fileType, sizes].filter(t => t !== "").join(", ")
                         : kind === "map" ? qsTr("Map") : (label + " " + value).trim()
        visible: !collapsed
        clip: true

        Loader {
            id: loader
            width: parent.width
            sourceComponent: ({
                date: dateRow, location: dateRow, badges: badgesRow, stack: stackRow, sizes: sizesRow,
                map: mapRow, separator: separatorRow, details: detailsRow
            })[rowItem.kind]
        }

        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: copyMenu.popup()
        }
        TapHandler {
            onLongPressed: copyMenu.popup()
        }
        Menu {
            id: copyMenu
            MenuItem { text: qsTr("Copy"); onTriggered: DetailTable.copy() }
        }

        Component {
            id: dateRow
            Rectangle {
                color: Theme.card
                height: Math.max(48, dateText.implicitHeight + 20)
                Image {
                    id: dateIcon
                    anchors.left: parent.left
                    anchors.leftMargin: 16
                    anchors.verticalCenter: parent.verticalCenter
                    source: rowItem.kind === "date" ? "image://icon/" + Theme.iconTone + "/calendar" : "image://icon/" + Theme.iconTone + "/mappin.and.ellipse"
                    sourceSize: Qt.size(22, 22)
                }
                Label {
                    id: dateText
                    anchors.left: dateIcon.right
                    anchors.leftMargin: 12
                    anchors.right: info.visible ? info.left : parent.right
                    anchors.rightMargin: 12
                    anchors.verticalCenter: parent.verticalCenter
                    text: rowItem.value.trim()
                    opacity: rowItem.alpha
                    wrapMode: Text.Wrap
                    font.pixelSize: 17
                    font.weight: rowItem.kind === "date" ? Font.DemiBold : Font.Normal
                    color: Theme.text
                }
                ToolButton {
                    id: info
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    visible: rowItem.infoMark
                    icon.source: "qrc:/icons/info.circle.svg"
                    Accessible.name: qsTr("Sources")
                    icon.color: Theme.tint
                    onClicked: table.sourcesRequested(rowItem.index, info)
                }
            }
        }

        Component {
            id: badgesRow
            Rectangle {
                color: Theme.card
                height: 52
                Rectangle {
                    anchors.centerIn: parent
                    width: badgeRow.implicitWidth + 24
                    height: 36
                    radius: 18
                    color: Theme.groupedBackground
                    visible: rowItem.badges.length > 0
                    Row {
                        id: badgeRow
                        anchors.centerIn: parent
                        spacing: 14
                        Repeater {
                            model: rowItem.badges
                            delegate: Item {
                                required property var modelData
                                width: modelData.symbol ? 22 : badgeText.implicitWidth + 8
                                height: 22
                                // The video badge plays the video, the live badge the live photo's movie.
                                TapHandler {
                                    enabled: modelData.symbol === "forward.frame" || modelData.symbol === "livephoto"
                                    onTapped: modelData.symbol === "livephoto" ? Detail.livePlaying = true : Detail.fullScreen = true
                                }
                                Image {
                                    visible: !!modelData.symbol
                                    anchors.fill: parent
                                    source: modelData.symbol ? "image://icon/" + Theme.iconTone + "/" + modelData.symbol : ""
                                    sourceSize: Qt.size(22, 22)
                                }
                                Rectangle {
                                    visible: !modelData.symbol
                                    anchors.fill: parent
                                    radius: 4
                                    border.color: Theme.secondaryText
                                    border.width: 1.5
                                    color: "transparent"
                                    Label {
                                        id: badgeText
                                        anchors.centerIn: parent
                                        text: modelData.text
                                        font.pixelSize: 11
                                        font.weight: Font.Bold
                                        color: Theme.secondaryText
                                    }
                                }
                            }
                        }
                    }
                }
            }
        }

        Component {
            id: stackRow
            Rectangle {
                color: Theme.card
                height: 44
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 12
                    anchors.rightMargin: 12
                    spacing: 0
                    Repeater {
                        model: rowItem.stack
                        delegate: Label {
                            id: stackLabel
                            required property int index
                            required property string modelData
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            horizontalAlignment: Text.AlignHCenter
                            text: modelData
                            elide: Text.ElideRight
                            font.pixelSize: 15
                            color: index === 1 && rowItem.focalAccent ? Theme.tint : Theme.text
                            TapHandler {
                                enabled: stackLabel.index === 1 && rowItem.focalAccent
                                onTapped: table.focalRequested(stackLabel)
                            }
                        }
                    }
                }
            }
        }

        Component {
            id: sizesRow
            Rectangle {
                color: Theme.card
                height: sizesColumn.implicitHeight + 20
                ColumnLayout {
                    id: sizesColumn
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    anchors.leftMargin: 16
                    anchors.rightMargin: 16
                    spacing: 4
                    RowLayout {
                        spacing: 8
                        Label {
                            Layout.fillWidth: true
                            text: rowItem.fileName
                            elide: Text.ElideMiddle
                            font.pixelSize: 15
                            font.weight: Font.DemiBold
                            color: Theme.text
                        }
                        Rectangle {
                            implicitWidth: typeLabel.implicitWidth + 12
                            implicitHeight: typeLabel.implicitHeight + 4
                            radius: 4
                            color: Theme.tint
                            Label {
                                id: typeLabel
                                anchors.centerIn: parent
                                text: rowItem.fileType
                                font.pixelSize: 12
                                font.weight: Font.Bold
                                color: Theme.card
                            }
                        }
                    }
                    Label {
                        Layout.fillWidth: true
                        text: rowItem.sizes
                        elide: Text.ElideRight
                        font.pixelSize: 14
                        color: Theme.secondaryText
                    }
                }
            }
        }

        Component {
            id: mapRow
            // The place on a map with the camera's direction; the info button opens the address list.
            Rectangle {
                color: Theme.card
                height: 260 + (App.pad ? 96 : 0)
                MapView {
                    anchors.fill: parent
                    place: rowItem.mapPlace
                    onAddressRequested: table.addressRequested()
                }
            }
        }

        Component {
            id: separatorRow
            Item { height: 8 }
        }

        Component {
            id: detailsRow
            Rectangle {
                color: Theme.card
                height: Math.max(40, detailValue.implicitHeight + 16)
                Label {
                    id: detailLabel
                    anchors.left: parent.left
                    anchors.leftMargin: 16
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.min(implicitWidth, parent.width * 0.4)
                    text: rowItem.label
                    elide: Text.ElideRight
                    font.pixelSize: 15
                    color: Theme.secondaryText
                }
                Label {
                    id: detailValue
                    anchors.left: detailLabel.right
                    anchors.right: parent.right
                    anchors.leftMargin: 12
                    anchors.rightMargin: 16
                    anchors.verticalCenter: parent.verticalCenter
                    horizontalAlignment: Text.AlignRight
                    text: rowItem.value
                    opacity: rowItem.alpha
                    wrapMode: Text.Wrap
                    font.pixelSize: 15
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
            }
        }
    }
}
