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
            icon.color: "#1E6FD9"
            onClicked: AlbumList.inFolder ? AlbumList.upFolder() : picker.open()
        }
        ToolButton {
            icon.source: "qrc:/icons/gearshape.svg"
            icon.color: "#1E6FD9"
            onClicked: App.openSettings()
        }
    }

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: AlbumList
        // The library's folders, chosen in place of the platform's photo access.
        footer: ItemDelegate {
            visible: !AlbumList.inFolder
            width: ListView.view.width
            height: visible ? 56 : 0
            text: "Change Photo Access..."
            Material.foreground: "#1E6FD9"
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
            width: ListView.view.width
            height: header ? 32 : 56
            onClicked: AlbumList.select(index)

            contentItem: RowLayout {
                spacing: 12
                Image {
                    visible: !cell.header
                    source: "qrc:/icons/" + cell.symbol + ".svg"
                    sourceSize: Qt.size(26, 26)
                    Layout.preferredWidth: 26
                    Layout.preferredHeight: 26
                }
                Label {
                    text: cell.title
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    font.pixelSize: cell.header ? 13 : 17
                    color: cell.header ? "#6D6D72" : "#1C1C1E"
                }
                Label {
                    visible: cell.count >= 0
                    text: cell.count
                    font.pixelSize: cell.header ? 13 : 17
                    color: "#8E8E93"
                }
                Image {
                    source: cell.header ? "qrc:/icons/chevron.down.svg" : "qrc:/icons/chevron.right.svg"
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
                color: "#E5E5EA"
            }
        }
    }

    FileDialog {
        id: picker
        objectName: "documentPicker"
        title: "Open photos and videos"
        fileMode: FileDialog.OpenFiles
        currentFolder: AlbumList.pickerFolder
        nameFilters: AlbumList.nameFilters
        onAccepted: AlbumList.documentPicked(selectedFiles)
    }
    FolderDialog {
        id: accessDialog
        objectName: "photoAccess"
        title: "Change Photo Access..."
        onAccepted: AlbumList.setLibraryFolders([selectedFolder])
    }
    Dialog {
        id: unavailable
        objectName: "libraryUnavailable"
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 320)
        modal: true
        Label { id: unavailableText; wrapMode: Text.WordWrap; width: parent.width }
        footer: DialogButtonBox {
            Button { text: "Settings"; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
            Button { text: "Cancel"; DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
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
