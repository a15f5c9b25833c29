// The settings: one table of titled sections, a switch per setting, and the about page.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: "Settings"
        showBack: true
    }
    background: Rectangle { color: "#F2F2F7" }

    ListView {
        anchors.fill: parent
        clip: true
        model: SettingsScreen
        section.property: "sectionTitle"
        section.delegate: Label {
            required property string section
            width: ListView.view.width
            height: 44
            leftPadding: 20
            bottomPadding: 6
            verticalAlignment: Text.AlignBottom
            text: section.toUpperCase()
            font.pixelSize: 13
            color: "#6D6D72"
        }
        delegate: ItemDelegate {
            id: row
            required property int tag
            required property string rowText
            required property string kind
            required property string symbol
            required property var on
            width: ListView.view.width
            height: 48
            background: Rectangle { color: row.down ? "#E5E5EA" : "#FFFFFF" }
            onClicked: kind === "switch" ? SettingsScreen.setSwitch(tag, !on) : SettingsScreen.select(tag)

            contentItem: RowLayout {
                spacing: 12
                Image {
                    source: "qrc:/icons/" + row.symbol + ".svg"
                    sourceSize: Qt.size(24, 24)
                    Layout.preferredWidth: 24
                    Layout.preferredHeight: 24
                }
                Label {
                    text: row.rowText
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    font.pixelSize: 16
                    color: "#1C1C1E"
                }
                Switch {
                    id: toggle
                    visible: row.kind === "switch"
                    // The row's model value is the truth: a tap asks for the change.
                    checkable: false
                    checked: row.on === true
                    onClicked: SettingsScreen.setSwitch(row.tag, !row.on)
                }
                Image {
                    visible: row.kind === "disclosure"
                    source: "qrc:/icons/chevron.right.svg"
                    sourceSize: Qt.size(14, 14)
                    opacity: 0.35
                }
            }
        }
    }
}
