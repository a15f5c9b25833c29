// SPDX-License-Identifier: GPL-3.0-or-later
// The settings: one table of titled sections, a switch per setting, and the about page.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
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
                    padding: 0
                    checked: row.on === true
                    onClicked: SettingsScreen.setSwitch(row.tag, !row.on)
                    // Drawn here: the style's knob is a shadowed shader item that the software
                    // renderer (screenshots, machines without a GPU) leaves out.
                    indicator: Rectangle {
                        implicitWidth: 48
                        implicitHeight: 28
                        x: toggle.leftPadding
                        y: (toggle.height - height) / 2
                        radius: height / 2
                        color: toggle.checked ? "#1E6FD9" : "#E5E5EA"
                        Behavior on color { ColorAnimation { duration: 150 } }
                        Rectangle {
                            width: 24
                            height: 24
                            radius: 12
                            y: 2
                            x: toggle.checked ? parent.width - width - 2 : 2
                            color: "#FFFFFF"
                            border.color: "#D1D1D6"
                            border.width: toggle.checked ? 0 : 1
                            Behavior on x { NumberAnimation { duration: 150 } }
                        }
                    }
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

    FolderDialog {
        id: accessDialog
        title: "Change Photo Access..."
        onAccepted: AlbumList.setLibraryFolders([selectedFolder])
    }
    Connections {
        target: SettingsScreen
        function onPhotoAccessRequested() { accessDialog.open() }
    }
}
