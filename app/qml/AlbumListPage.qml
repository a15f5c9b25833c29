// SPDX-License-Identifier: GPL-3.0-or-later
// "All albums": the entry that opens files, the files album, and the library's collapsible
// sections when there are any.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: AlbumList.title
        leading: ToolButton {
            // Inside a folder of albums the way back up; at the root the document picker.
            icon.source: AlbumList.inFolder ? "qrc:/icons/chevron.left.svg" : "qrc:/icons/folder.svg"
            Accessible.name: AlbumList.inFolder ? qsTr("Back") : qsTr("Open Files")
            icon.color: Theme.tint
            onClicked: AlbumList.inFolder ? AlbumList.upFolder() : picker.open()
        }
        ToolButton {
            icon.source: "qrc:/icons/gearshape.svg"
            Accessible.name: qsTr("Settings")
            icon.color: Theme.tint
            onClicked: App.openSettings()
        }
    }

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: AlbumList
        // Arrows move through the albums, Enter opens one (or opens and closes a section).
        focus: true
        keyNavigationEnabled: true
        Keys.onReturnPressed: if (currentIndex >= 0) AlbumList.select(currentIndex)
        Keys.onEnterPressed: if (currentIndex >= 0) AlbumList.select(currentIndex)
        // While the library is read: how far, above the albums that grow as it goes.
        header: Column {
            visible: ScanProgress.running
            width: ListView.view.width
            height: visible ? implicitHeight : 0
            padding: 12
            spacing: 6
            Label {
                objectName: "scanProgressText"
                width: parent.width - 24
                text: ScanProgress.text
                elide: Text.ElideRight
                font.pixelSize: 13
                color: Theme.secondaryText
            }
            ProgressBar {
                width: parent.width - 24
                value: ScanProgress.fraction
                indeterminate: ScanProgress.read + ScanProgress.left === 0
                Accessible.name: ScanProgress.text
            }
        }
        // The library's folders, chosen in place of the platform's photo access.
        footer: FormRow {
            visible: !AlbumList.inFolder
            width: ListView.view.width
            height: visible ? 56 : 0
            text: qsTr("Change Photo Access...")
            Material.foreground: Theme.tint
            onClicked: accessDialog.open()
        }
        delegate: ItemDelegate {
            id: cell
            required property int index
            required property string kind
            required property string title
            required property string symbol
            required property int count
            required property bool collapsed
            readonly property bool header: kind === "header"
            Accessible.name: count >= 0 ? qsTr("%1, %n item(s)", "", count).arg(title) : title
            width: ListView.view.width
            height: header ? 32 : 56
            // The row the arrow keys are on.
            highlighted: ListView.isCurrentItem && ListView.view.activeFocus
            onClicked: AlbumList.select(index)

            contentItem: RowLayout {
                spacing: 12
                Image {
                    visible: !cell.header
                    source: "image://icon/" + Theme.iconTone + "/" + cell.symbol
                    sourceSize: Qt.size(26, 26)
                    Layout.preferredWidth: 26
                    Layout.preferredHeight: 26
                }
                Label {
                    text: cell.title
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    font.pixelSize: cell.header ? 13 : 17
                    color: cell.header ? Theme.secondaryText : Theme.text
                }
                Label {
                    visible: cell.count >= 0
                    text: cell.count
                    font.pixelSize: cell.header ? 13 : 17
                    color: Theme.secondaryText
                }
                Image {
                    source: cell.header ? "image://icon/" + Theme.iconTone + "/chevron.down" : "image://icon/" + Theme.iconTone + "/chevron.right"
                    sourceSize: Qt.size(14, 14)
                    opacity: cell.header ? 1 : 0.35
                    rotation: cell.header && cell.collapsed ? -90 : 0
                    Behavior on rotation { NumberAnimation { duration: 400 } }
                }
            }
            Rectangle {
                visible: !cell.header
                anchors.bottom: parent.bottom
                x: 54
                width: parent.width - x
                height: 1
                color: Theme.fill
            }
        }
    }

    FileDialog {
        id: picker
        objectName: "documentPicker"
        title: qsTr("Open photos and videos")
        fileMode: FileDialog.OpenFiles
        currentFolder: AlbumList.pickerFolder
        nameFilters: AlbumList.nameFilters
        onAccepted: AlbumList.documentPicked(selectedFiles)
    }
    FolderDialog {
        id: accessDialog
        objectName: "photoAccess"
        title: qsTr("Change Photo Access...")
        onAccepted: AlbumList.setLibraryFolders([selectedFolder])
    }
    Dialog {
        id: unavailable
        objectName: "libraryUnavailable"
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 320)
        modal: true
        Overlay.modal: Dimmer {}
        Label { id: unavailableText; wrapMode: Text.WordWrap; width: parent.width }
        footer: DialogButtonBox {
            Button { text: qsTr("Settings"); DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
            Button { text: qsTr("Cancel"); DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
        }
        onAccepted: accessDialog.open()
    }
    Connections {
        target: AlbumList
        function onDocumentPickerRequested() { picker.open() }
        function onAlert(title, message) {
            unavailable.title = title
            unavailableText.text = message
            unavailable.open()
        }
    }
}
