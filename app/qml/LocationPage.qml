// SPDX-License-Identifier: GPL-3.0-or-later
// The location screen: search results, the present position, a place from a photo or from the
// map, the photo's own place and the recent places; the checked row's place is delivered on
// leaving.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    title: LocationScreen.title
    signal mapPickerRequested()
    // The position is asked for while the screen is on top; leaving it hands back the choice.
    StackView.onActivated: LocationScreen.appear()
    StackView.onRemoved: LocationScreen.leave()

    Connections {
        target: LocationScreen
        // The album on view first; with no pictures in it, a file straight away.
        function onPhotoPickerRequested() {
            if (LocationScreen.albumPhotos.length > 0) photoPicker.open()
            else photoDialog.open()
        }
        function onMapPickerRequested() { page.mapPickerRequested() }
        function onAlert(title, message) { alert.title = title; alert.text = message; alert.open() }
    }

    // (Not a ToolBar: that name is the detail toolbar's model here.)
    header: Pane {
        padding: 0
        implicitHeight: 52
        background: Rectangle { color: Theme.bar }
        TextField {
            id: searchField
            objectName: "placeSearch"
            anchors.fill: parent
            anchors.margins: 6
            placeholderText: LocationScreen.placeholder
            Accessible.name: placeholderText
            onAccepted: { typing.stop(); LocationScreen.search(text); focus = false }
            // Searches as the user types, once a short pause says the word is there.
            onTextEdited: typing.restart()
            Timer {
                id: typing
                interval: 400
                onTriggered: LocationScreen.search(searchField.text)
            }
            Shortcut {
                sequences: [StandardKey.Find]
                enabled: page.StackView.status === StackView.Active
                onActivated: searchField.forceActiveFocus()
            }
        }
    }

    ListView {
        id: list
        objectName: "placeRows"
        anchors.fill: parent
        // The rows end at the bar below (the sheet's "Done"), not under it.
        clip: true
        model: LocationScreen.sections
        delegate: Column {
            id: section
            required property var modelData
            required property int index
            width: list.width
            Label {
                visible: section.modelData.header !== ""
                text: section.modelData.header
                leftPadding: 16
                topPadding: 12
                bottomPadding: 4
                font.pixelSize: 13
                color: Theme.secondaryText
            }
            Repeater {
                model: section.modelData.rows
                FormRow {
                    id: row
                    required property var modelData
                    required property int index
                    // A row of nothing (the current photo has no place) still says so.
                    Accessible.name: [modelData.title, modelData.subtitle || ""].filter(t => t !== "").join(", ") || qsTr("No location")
                    width: list.width
                    icon.source: modelData.image === "" || modelData.image === "thumbnail" ? ""
                                 : "qrc:/icons/" + modelData.image + ".svg"
                    onClicked: LocationScreen.tap(section.index, index)
                    contentItem: RowLayout {
                        spacing: 10
                        Image {
                            visible: row.icon.source != ""
                            source: row.icon.source
                            sourceSize: Qt.size(22, 22)
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 1
                            Label { Layout.fillWidth: true; text: row.modelData.title; elide: Text.ElideRight; font.pixelSize: 16 }
                            Label {
                                Layout.fillWidth: true
                                visible: text !== ""
                                text: row.modelData.subtitle
                                elide: Text.ElideRight
                                font.pixelSize: 13
                                color: Theme.secondaryText
                            }
                        }
                        Label { visible: row.modelData.checked; text: "✓"; color: Theme.tint; font.pixelSize: 18 }
                        Image {
                            visible: row.modelData.disclosure
                            source: "image://icon/" + Theme.iconTone + "/chevron.right"
                            sourceSize: Qt.size(14, 14)
                        }
                    }
                }
            }
        }
    }

    Dialog {
        id: photoPicker
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        title: qsTr("From a photo")
        width: Math.min(page.width - 32, 420)
        height: Math.min(page.height - 64, 520)
        GridView {
            id: photoGrid
            anchors.fill: parent
            clip: true
            cellWidth: width / Math.max(1, Math.floor(width / 96))
            cellHeight: cellWidth
            model: LocationScreen.albumPhotos
            delegate: FormRow {
                id: cell
                required property var modelData
                width: photoGrid.cellWidth
                height: photoGrid.cellHeight
                Accessible.name: cell.modelData.title
                padding: 2
                contentItem: Image {
                    source: "image://thumb/" + encodeURIComponent(cell.modelData.path)
                    sourceSize: Qt.size(192, 192)
                    fillMode: Image.PreserveAspectCrop
                    asynchronous: true
                }
                onClicked: { photoPicker.close(); LocationScreen.choosePhoto(modelData.path) }
            }
        }
        footer: DialogButtonBox {
            Button {
                text: qsTr("Choose a File...")
                flat: true
                onClicked: { photoPicker.close(); photoDialog.open() }
            }
            Button { text: qsTr("Cancel"); flat: true; DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
        }
    }

    FileDialog {
        id: photoDialog
        nameFilters: [qsTr("Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng)")]
        onAccepted: LocationScreen.choosePhoto(selectedFile)
    }

    Dialog {
        id: alert
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        property alias text: alertText.text
        onAccepted: LocationScreen.openSettings()
        Label { id: alertText; wrapMode: Text.Wrap; width: Math.min(300, page.width - 80) }
        footer: DialogButtonBox {
            Button { text: qsTr("Settings"); flat: true; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
            Button { text: qsTr("Cancel"); flat: true; DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
        }
    }
}
