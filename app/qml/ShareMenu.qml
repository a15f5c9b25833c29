// SPDX-License-Identifier: GPL-3.0-or-later
// The share menu: the rows of the Share view model (titles, buttons, separators), opened from the
// toolbar's share button; then the save dialog for what an action gave, and the error alert.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Item {
    id: root

    Popup {
        id: menu
        parent: Overlay.overlay
        width: Share.menuWidth
        padding: 0
        topPadding: 6
        bottomPadding: 6
        modal: true
        Overlay.modal: Rectangle { color: "#1F000000" }
        // Beside the toolbar that opened it: above the bottom bar on a phone, below the top bar
        // on a tablet.
        x: App.pad ? parent.width - width - 12 : 12
        y: App.pad ? 60 : parent.height - height - 64
        onClosed: Share.menuOpen = false
        Component.onCompleted: if (Share.menuOpen) open()

        background: CardBackground {}

        ColumnLayout {
            width: menu.width
            spacing: 0

            Repeater {
                model: Share.rows
                delegate: Loader {
                    required property var modelData
                    Layout.fillWidth: true
                    sourceComponent: modelData.kind === "title" ? titleRow
                                   : modelData.kind === "button" ? buttonRow : separatorRow
                    onLoaded: item.row = modelData
                }
            }
        }
    }

    Component {
        id: titleRow
        Label {
            property var row
            text: row ? row.title : ""
            leftPadding: 16
            rightPadding: 16
            topPadding: 8
            bottomPadding: 2
            font.pixelSize: 13
            font.weight: Font.DemiBold
            color: Theme.secondaryText
            elide: Text.ElideRight
        }
    }
    Component {
        id: buttonRow
        FormRow {
            property var row
            implicitHeight: Share.buttonHeight
            text: row ? row.title : ""
            font.pixelSize: 17
            leftPadding: 16
            Material.foreground: Theme.tint
            onClicked: Share.trigger(row.action)
        }
    }
    Component {
        id: separatorRow
        Item {
            property var row
            implicitHeight: 9
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width
                height: 1
                color: Theme.separator
            }
        }
    }

    Connections {
        target: Share
        function onMenuOpenChanged() {
            if (Share.menuOpen)
                menu.open()
            else
                menu.close()
        }
        function onErrorChanged() {
            if (Share.errorVisible)
                errorDialog.open()
        }
        function onSaveChanged() {
            if (Share.saveFileName === "")
                saveDialog.close()
        }
        function onSaveRequested() {
            saveDialog.selectedFile = Share.saveFolder + "/" + Share.saveFileName
            saveDialog.open()
        }
    }

    FileDialog {
        id: saveDialog
        title: Share.saveTitle
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Save")
        currentFolder: Share.saveFolder
        onAccepted: Share.saveTo(selectedFile)
        onRejected: Share.cancelSave()
    }

    Dialog {
        id: errorDialog
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        Overlay.modal: Dimmer {}
        title: Share.errorTitle
        width: Math.min(320, parent.width - 48)
        onClosed: Share.dismissError()
        // Drawn plainly: the style's elevated background doesn't render on every platform.
        background: Rectangle {
            radius: 8
            color: Theme.card
        }
        footer: DialogButtonBox {
            Button {
                text: qsTr("Ok")
                flat: true
                DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            }
        }
        Label {
            width: errorDialog.availableWidth
            text: Share.errorMessage
            wrapMode: Text.Wrap
        }
    }
}
