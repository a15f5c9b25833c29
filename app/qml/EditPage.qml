// SPDX-License-Identifier: GPL-3.0-or-later
// The edit screen's table: the selected items, the switches, the date, place and orientation
// rows, the line editors and the IPTC row, as Edit lays them out.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    signal saveRequested()
    background: Rectangle { color: Theme.groupedBackground }

    header: NavigationBar {
        title: Edit.title
        leading: ToolButton { text: qsTr("Cancel"); font.capitalization: Font.MixedCase; onClicked: Edit.close() }
        ToolButton {
            id: saveButton
            text: qsTr("Save")
            font.capitalization: Font.MixedCase
            font.bold: true
            // Line editors hand their text over when they lose the focus.
            onClicked: { forceActiveFocus(); page.saveRequested() }
            Shortcut {
                sequences: [StandardKey.Save]
                enabled: page.StackView.status === StackView.Active
                onActivated: saveButton.clicked()
            }
        }
    }

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: Edit.sections
        bottomMargin: 24
        delegate: Column {
            id: section
            required property var modelData
            width: list.width
            Label {
                text: section.modelData.title.toUpperCase()
                visible: text !== ""
                leftPadding: 16; topPadding: 18; bottomPadding: 6
                font.pixelSize: 13
                color: Theme.secondaryText
            }
            Item { width: 1; height: 12; visible: section.modelData.title === "" }
            Repeater {
                model: section.modelData.rows
                delegate: Loader {
                    id: cell
                    required property var modelData
                    required property int index
                    width: list.width
                    sourceComponent: modelData.kind === "images" ? imagesCell
                                   : modelData.kind === "switch" ? switchCell
                                   : modelData.kind === "editor" ? editorCell : disclosureCell
                    property int sectionNumber: section.modelData.section
                    // The loaded cell takes its row's data (the whole list is rebuilt on a change).
                    onLoaded: {
                        if (item.cellData !== undefined) item.cellData = modelData
                        if (item.sectionNumber !== undefined) item.sectionNumber = sectionNumber
                        if (item.rowNumber !== undefined) item.rowNumber = index
                    }
                }
            }
        }
    }

    Component {
        id: imagesCell
        Rectangle {
            height: 96
            color: Theme.card
            RowLayout {
                anchors.fill: parent
                anchors.margins: 8
                ListView {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    orientation: ListView.Horizontal
                    spacing: 6
                    clip: true
                    model: Edit.thumbnails
                    delegate: Image {
                        required property string modelData
                        width: 80; height: 80
                        source: modelData
                        fillMode: Image.PreserveAspectCrop
                        sourceSize: Qt.size(160, 160)
                        asynchronous: true
                    }
                }
                ColumnLayout {
                    visible: Edit.addVisible
                    Label { text: Edit.maxImagesText; color: Theme.secondaryText; font.pixelSize: 12 }
                    Button {
                        text: "+"
                        font.pixelSize: 22
                        enabled: Edit.addEnabled
                        opacity: enabled ? 1.0 : 0.5
                        onClicked: addMenu.popup()
                        Menu {
                            id: addMenu
                            MenuItem { text: qsTr("From this album..."); onTriggered: albumPicker.open() }
                            MenuItem { text: qsTr("From files..."); onTriggered: addDialog.open() }
                        }
                    }
                }
            }
        }
    }

    Component {
        id: switchCell
        Rectangle {
            id: row
            property var cellData: ({ title: "", detail: "", checked: false })
            property int sectionNumber: 0
            height: Math.max(48, texts.implicitHeight + 16)
            color: Theme.card
            RowLayout {
                anchors.fill: parent
                anchors.leftMargin: 16; anchors.rightMargin: 8
                ColumnLayout {
                    id: texts
                    Layout.fillWidth: true
                    spacing: 1
                    Label { Layout.fillWidth: true; text: row.cellData.title; font.pixelSize: 16; elide: Text.ElideRight }
                    Label { Layout.fillWidth: true; visible: text !== ""; text: row.cellData.detail; font.pixelSize: 12; color: Theme.secondaryText }
                }
                PlainSwitch {
                    Accessible.name: row.cellData.title
                    checked: row.cellData.checked
                    onToggled: Edit.setSwitch(row.sectionNumber, checked)
                }
            }
        }
    }

    Component {
        id: disclosureCell
        FormRow {
            id: row
            property var cellData: ({ title: "", detail: "", value: "", placeholder: "", image: "", kind: "", dimmed: false, checked: false, key: "" })
            property int sectionNumber: 0
            property int rowNumber: 0
            Accessible.name: [cellData.title, cellData.detail || cellData.value || cellData.placeholder || ""].filter(t => t !== "").join(", ")
            height: 48
            background: Rectangle { color: row.pressed ? Theme.fill : Theme.card }
            onClicked: Edit.select(row.sectionNumber, row.rowNumber)
            contentItem: RowLayout {
                spacing: 8
                Label {
                    Layout.fillWidth: true
                    text: row.cellData.title
                    elide: Text.ElideRight
                    font.pixelSize: 16
                    color: row.cellData.dimmed ? Theme.secondaryText : Theme.text
                }
                Label {
                    text: row.cellData.detail
                    visible: text !== ""
                    elide: Text.ElideLeft
                    Layout.maximumWidth: row.width * 0.45
                    font.pixelSize: 13
                    color: Theme.secondaryText
                }
                Image { source: "image://icon/" + Theme.iconTone + "/chevron.right"; sourceSize: Qt.size(14, 14) }
            }
        }
    }

    Component {
        id: editorCell
        Rectangle {
            id: row
            property var cellData: ({ title: "", value: "", placeholder: "", key: "" })
            height: 56
            color: Theme.card
            ColumnLayout {
                anchors.fill: parent
                anchors.leftMargin: 16; anchors.rightMargin: 16
                spacing: 0
                Label { text: row.cellData.title; font.pixelSize: 12; color: Theme.secondaryText }
                TextField {
                    Layout.fillWidth: true
                    Accessible.name: row.cellData.title
                    text: row.cellData.value
                    placeholderText: row.cellData.placeholder
                    background: null
                    leftPadding: 0
                    onEditingFinished: if (text !== row.cellData.value) Edit.setText(row.cellData.key, text)
                }
            }
        }
    }

    // The current album's photos: tap to pick up to the room left, then "Add".
    Popup {
        id: albumPicker
        anchors.centerIn: Overlay.overlay
        width: Math.min(page.width - 24, 600)
        height: Math.min(page.height - 80, 640)
        modal: true
        Overlay.modal: Dimmer {}
        padding: 8
        property var choices: []
        property var picked: []
        onAboutToShow: { choices = Edit.albumChoices(); picked = [] }
        background: CardBackground {}
        contentItem: ColumnLayout {
            GridView {
                id: grid
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                cellWidth: width / Math.max(1, Math.floor(width / 96))
                cellHeight: cellWidth
                model: albumPicker.choices
                delegate: Item {
                    id: choice
                    required property var modelData
                    width: grid.cellWidth
                    height: grid.cellHeight
                    readonly property bool isPicked: albumPicker.picked.indexOf(modelData.path) >= 0
                    Image {
                        anchors.fill: parent
                        anchors.margins: 2
                        source: choice.modelData.image
                        sourceSize: Qt.size(192, 192)
                        fillMode: Image.PreserveAspectCrop
                        asynchronous: true
                        opacity: choice.modelData.chosen ? 0.4 : 1.0
                    }
                    Label {
                        visible: choice.isPicked || choice.modelData.chosen
                        anchors.right: parent.right
                        anchors.bottom: parent.bottom
                        anchors.margins: 6
                        text: "✓"
                        color: Theme.card
                        font.pixelSize: 20
                        background: Rectangle { color: Theme.tint; radius: 10 }
                        padding: 2
                    }
                    TapHandler {
                        onTapped: {
                            const list = albumPicker.picked.slice()
                            const at = list.indexOf(choice.modelData.path)
                            if (at >= 0) list.splice(at, 1)
                            else if (list.length < Edit.room()) list.push(choice.modelData.path)
                            albumPicker.picked = list
                        }
                    }
                }
            }
            RowLayout {
                Label { Layout.fillWidth: true; text: Edit.maxImagesText; color: Theme.secondaryText }
                Button { text: qsTr("Cancel"); flat: true; font.capitalization: Font.MixedCase; onClicked: albumPicker.close() }
                Button {
                    text: qsTr("Add")
                    flat: true
                    font.capitalization: Font.MixedCase
                    enabled: albumPicker.picked.length > 0
                    onClicked: { albumPicker.close(); Edit.addFiles(albumPicker.picked) }
                }
            }
        }
    }

    FileDialog {
        id: addDialog
        fileMode: FileDialog.OpenFiles
        nameFilters: [qsTr("Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)")]
        onAccepted: Edit.addFiles(selectedFiles.map(u => u.toString()))
    }
}
