// SPDX-License-Identifier: GPL-3.0-or-later
// The items of the current album: a list of cells with thumbnail, name, date and time, or a
// grid of four thumbnails a row with 2 pixels between them.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: Group.title
        showBack: true
        ToolButton {
            icon.source: "qrc:/icons/" + Group.toggleSymbol + ".svg"
            icon.color: "#1E6FD9"
            onClicked: Group.toggleView()
        }
    }

    ListView {
        id: list
        objectName: "folderTable"
        anchors.fill: parent
        clip: true
        model: Group
        delegate: Group.gridView ? gridRow : listCell
    }

    Label {
        anchors.centerIn: parent
        visible: Group.count === 0
        text: "No items"
        color: "#8E8E93"
        font.pixelSize: 17
    }

    Connections {
        target: Group
        function onSelectionChanged() {
            if (Group.selectedRow >= 0) list.positionViewAtIndex(Group.selectedRow, ListView.Center)
        }
    }

    Component {
        id: listCell
        ItemDelegate {
            id: cell
            required property int index
            required property int firstIndex
            required property string name
            required property var date
            required property var time
            required property var thumbnail
            required property bool video
            required property var items
            objectName: "cell_" + index
            width: ListView.view.width
            height: 76
            highlighted: Group.selectedIndex === firstIndex
            onClicked: Group.show(firstIndex)

            contentItem: RowLayout {
                spacing: 12
                Thumbnail {
                    source: cell.thumbnail || ""
                    video: cell.video
                    favorite: !!cell.items[0] && !!cell.items[0].favorite
                    live: !!cell.items[0] && !!cell.items[0].live
                    Layout.preferredWidth: 60
                    Layout.preferredHeight: 60
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 2
                    Label {
                        text: cell.name
                        Layout.fillWidth: true
                        elide: Text.ElideMiddle
                        font.pixelSize: 16
                        font.weight: Font.DemiBold
                        color: "#1C1C1E"
                    }
                    Label {
                        text: cell.date || "--"
                        font.pixelSize: 14
                        color: "#3C3C43"
                    }
                    Label {
                        text: cell.time || ""
                        font.pixelSize: 13
                        color: "#8E8E93"
                    }
                }
            }
            Rectangle {
                anchors.bottom: parent.bottom
                x: 84
                width: parent.width - x
                height: 1
                color: "#E5E5EA"
            }
        }
    }

    Component {
        id: gridRow
        Item {
            id: row
            required property var items
            readonly property real side: (width - 3 * 2) / 4
            width: ListView.view.width
            height: Group.gridRowHeight(width)
            Row {
                spacing: 2
                Repeater {
                    model: row.items
                    Thumbnail {
                        required property var modelData
                        width: row.side
                        height: row.side
                        source: modelData.thumbnail || ""
                        video: modelData.video
                        favorite: !!modelData.favorite
                        live: !!modelData.live
                        selected: Group.selectedIndex === modelData.index
                        TapHandler { onTapped: Group.show(modelData.index) }
                    }
                }
            }
        }
    }
}
