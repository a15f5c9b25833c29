// SPDX-License-Identifier: GPL-3.0-or-later
// The detail screen's tools as ToolBar says: share opens the share menu, tags switches between
// the detail and the tag table, more holds the setting toggles; a stack opens the resource list.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Tessorin

// The root is no Controls ToolBar: that name is the tool model's here.
Rectangle {
    id: bar
    // Inside another bar (the tablet's top bar): no background of its own.
    property bool flat: false

    readonly property var symbols: ({
        share: "square.and.arrow.up", prefer: "heart", delete: "trash",
        burst: "square.stack.3d.down.right", more: "ellipsis"
    })

    enabled: Detail.barEnabled
    color: flat ? "transparent" : Theme.bar
    implicitHeight: flat ? 52 : 49
    implicitWidth: flat ? tools.implicitWidth : 0

    Rectangle {
        visible: !bar.flat
        anchors.top: parent.top
        width: parent.width
        height: 1
        color: Theme.separator
    }

    RowLayout {
        id: tools
        anchors.fill: parent
        anchors.leftMargin: bar.flat ? 0 : 12
        anchors.rightMargin: bar.flat ? 0 : 12
        spacing: bar.flat ? 4 : 0

        // The resource list, when the item holds auxiliary images.
        Item {
            visible: Resources.available
            Layout.fillWidth: !bar.flat
            Layout.fillHeight: true
            implicitWidth: resourcesTool.implicitWidth
            ToolButton {
                id: resourcesTool
                anchors.verticalCenter: parent.verticalCenter
                icon.source: "qrc:/icons/square.stack.3d.up.svg"
                Accessible.name: qsTr("Resources")
                icon.color: Theme.tint
                onClicked: Resources.open = true
            }
        }

        Repeater {
            model: ToolBar.tools
            // A phone's bar spreads the tools from edge to edge; a tablet's packs them.
            delegate: Item {
                id: cell
                required property int index
                required property string modelData
                Layout.fillWidth: !bar.flat
                Layout.fillHeight: true
                implicitWidth: tool.implicitWidth

                ToolButton {
                    id: tool
                    anchors.verticalCenter: parent.verticalCenter
                    x: bar.flat || cell.index === 0 ? 0
                       : cell.index === ToolBar.tools.length - 1 ? cell.width - width : (cell.width - width) / 2
                    text: cell.modelData === "edit" ? qsTr("Edit") : ""
                    font.capitalization: Font.MixedCase
                    Accessible.name: ({ share: qsTr("Share"), tags: Detail.showTags ? qsTr("Show Details") : qsTr("Show All Tags"),
                                        prefer: ToolBar.favoriteSymbol === "heart.fill" ? qsTr("Remove from Favorites") : qsTr("Add to Favorites"),
                                        delete: qsTr("Delete"), burst: qsTr("Burst Photos"), more: qsTr("More"), edit: qsTr("Edit") })[cell.modelData] || ""
                    icon.source: cell.modelData === "tags" ? (Detail.showTags ? "qrc:/icons/tag.fill.svg" : "qrc:/icons/tag.svg")
                               : cell.modelData === "prefer" ? "qrc:/icons/" + ToolBar.favoriteSymbol + ".svg"
                               : bar.symbols[cell.modelData] ? "qrc:/icons/" + bar.symbols[cell.modelData] + ".svg" : ""
                    icon.color: Theme.tint
                    Material.foreground: Theme.tint
                    onClicked: {
                        if (cell.modelData === "share")
                            Share.menuOpen = true
                        else if (cell.modelData === "tags")
                            Detail.toggleTables()
                        else if (cell.modelData === "more")
                            moreMenu.popup(tool)
                        else if (cell.modelData === "prefer")
                            ToolBar.favorite()
                        else if (cell.modelData === "delete")
                            ToolBar.requestDelete()
                        else if (cell.modelData === "burst")
                            ToolBar.burst()
                        else if (cell.modelData === "edit")
                            ToolBar.edit()
                    }
                }
            }
        }
    }

    Menu {
        id: moreMenu
        Repeater {
            model: ToolBar.moreMenu
            delegate: MenuItem {
                required property int index
                required property var modelData
                text: modelData.title
                checkable: !modelData.action
                checked: modelData.checked
                icon.source: "qrc:/icons/" + modelData.symbol + ".svg"
                icon.color: Theme.secondaryText
                onTriggered: ToolBar.toggleMore(index)
            }
        }
    }
}
