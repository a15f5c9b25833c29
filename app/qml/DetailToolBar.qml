// The detail screen's tools as ToolBar says: share opens the share menu, tags switches between
// the detail and the tag table, more holds the setting toggles.
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
    color: flat ? "transparent" : "#F9F9F9"
    implicitHeight: flat ? 52 : 49
    implicitWidth: flat ? tools.implicitWidth : 0

    Rectangle {
        visible: !bar.flat
        anchors.top: parent.top
        width: parent.width
        height: 1
        color: "#D1D1D6"
    }

    RowLayout {
        id: tools
        anchors.fill: parent
        anchors.leftMargin: bar.flat ? 0 : 12
        anchors.rightMargin: bar.flat ? 0 : 12
        spacing: bar.flat ? 4 : 0

        Repeater {
            model: ToolBar.tools
            delegate: ToolButton {
                id: tool
                required property string modelData
                Layout.alignment: Qt.AlignVCenter
                text: modelData === "edit" ? "Edit" : ""
                icon.source: modelData === "tags" ? (Detail.showTags ? "qrc:/icons/tag.fill.svg" : "qrc:/icons/tag.svg")
                           : bar.symbols[modelData] ? "qrc:/icons/" + bar.symbols[modelData] + ".svg" : ""
                icon.color: "#1E6FD9"
                Material.foreground: "#1E6FD9"
                onClicked: {
                    if (modelData === "share")
                        Share.menuOpen = true
                    else if (modelData === "tags")
                        Detail.toggleTables()
                    else if (modelData === "more")
                        moreMenu.popup(tool)
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
                checkable: true
                checked: modelData.checked
                icon.source: "qrc:/icons/" + modelData.symbol + ".svg"
                icon.color: "#3C3C43"
                onTriggered: ToolBar.toggleMore(index)
            }
        }
    }
}
