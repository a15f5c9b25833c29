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
            Accessible.name: Group.gridView ? qsTr("Show as List") : qsTr("Show as Grid")
            icon.color: Theme.tint
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
        // Arrows move through the items, Enter opens the one with the focus.
        focus: true
        keyNavigationEnabled: true
        highlightFollowsCurrentItem: false
        // The keys start on the first row, or on the item just come back from.
        Component.onCompleted: currentIndex = Math.max(0, Group.selectedRow)
        Keys.onReturnPressed: if (currentItem && currentItem.firstIndex !== undefined) Group.show(currentItem.firstIndex)
        Keys.onEnterPressed: if (currentItem && currentItem.firstIndex !== undefined) Group.show(currentItem.firstIndex)
    }

    Label {
        anchors.centerIn: parent
        visible: Group.count === 0
        text: qsTr("No items")
        color: Theme.secondaryText
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
            Accessible.name: [name, date || "", time || ""].filter(t => t !== "").join(", ")
            width: ListView.view.width
            height: 76
            highlighted: Group.selectedIndex === firstIndex || ListView.isCurrentItem && ListView.view.activeFocus
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
                        color: Theme.text
                    }
                    Label {
                        text: cell.date || "--"
                        font.pixelSize: 14
                        color: Theme.secondaryText
                    }
                    Label {
                        text: cell.time || ""
                        font.pixelSize: 13
                        color: Theme.secondaryText
                    }
                }
            }
            Rectangle {
                anchors.bottom: parent.bottom
                x: 84
                width: parent.width - x
                height: 1
                color: Theme.fill
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
