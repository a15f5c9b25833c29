// SPDX-License-Identifier: GPL-3.0-or-later
// The settings: one table of titled sections, a switch per setting, and the about page.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: qsTr("Settings")
        showBack: true
    }
    background: Rectangle { color: Theme.groupedBackground }

    ListView {
        anchors.fill: parent
        clip: true
        model: SettingsScreen
        // The colour scheme: the desktop's, or light or dark whatever the desktop says.
        footer: Column {
            width: ListView.view.width
            Label {
                width: parent.width
                height: 44
                leftPadding: 20
                bottomPadding: 6
                verticalAlignment: Text.AlignBottom
                text: qsTr("Appearance").toUpperCase()
                font.pixelSize: 13
                color: Theme.secondaryText
            }
            Repeater {
                model: [{ value: "system", title: qsTr("As the Desktop") }, { value: "light", title: qsTr("Light") },
                        { value: "dark", title: qsTr("Dark") }]
                delegate: FormRow {
                    id: choice
                    required property var modelData
                    width: parent.width
                    height: 48
                    text: modelData.title
                    checkable: true
                    checked: Theme.preference === modelData.value
                    Accessible.name: modelData.title
                    background: Rectangle { color: choice.down ? Theme.fill : Theme.card }
                    onClicked: Theme.preference = modelData.value
                    Label {
                        visible: choice.checked
                        anchors.right: parent.right
                        anchors.rightMargin: 20
                        anchors.verticalCenter: parent.verticalCenter
                        text: "✓"
                        color: Theme.tint
                        font.pixelSize: 18
                    }
                }
            }
        }
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
            color: Theme.secondaryText
        }
        delegate: FormRow {
            id: row
            required property int tag
            required property string rowText
            required property string kind
            required property string symbol
            required property var on
            Accessible.name: rowText
            width: ListView.view.width
            height: 48
            background: Rectangle { color: row.down ? Theme.fill : Theme.card }
            onClicked: kind === "disclosure" ? SettingsScreen.select(tag) : SettingsScreen.setSwitch(tag, kind === "choice" || !on)
            Accessible.checkable: kind === "choice"
            Accessible.checked: kind === "choice" && on === true

            contentItem: RowLayout {
                spacing: 12
                Image {
                    source: "image://icon/" + Theme.iconTone + "/" + row.symbol
                    sourceSize: Qt.size(24, 24)
                    Layout.preferredWidth: 24
                    Layout.preferredHeight: 24
                }
                Label {
                    text: row.rowText
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    font.pixelSize: 16
                    color: Theme.text
                }
                PlainSwitch {
                    id: toggle
                    Accessible.name: row.rowText
                    visible: row.kind === "switch"
                    // The row's model value is the truth: a tap asks for the change.
                    checkable: false
                    checked: row.on === true
                    onClicked: SettingsScreen.setSwitch(row.tag, !row.on)
                }
                Label {
                    visible: row.kind === "choice" && row.on === true
                    text: "✓"
                    color: Theme.tint
                    font.pixelSize: 18
                }
                Image {
                    visible: row.kind === "disclosure"
                    source: "image://icon/" + Theme.iconTone + "/chevron.right"
                    sourceSize: Qt.size(14, 14)
                    opacity: 0.35
                }
            }
        }
    }

    FolderDialog {
        id: accessDialog
        title: qsTr("Change Photo Access...")
        onAccepted: AlbumList.setLibraryFolders([selectedFolder])
    }
    Connections {
        target: SettingsScreen
        function onPhotoAccessRequested() { accessDialog.open() }
    }
}
