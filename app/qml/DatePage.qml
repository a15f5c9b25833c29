// SPDX-License-Identifier: GPL-3.0-or-later
// The date screen: the own date with its picker, a date from a photo, the current item's date
// and the recent dates. Leaving it hands the checked row's date over.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    readonly property var model: Edit.dateScreen
    // Which wheel of the picker has the keys, kept while the rows are rebuilt after each turn.
    property int pickerWheel: -1
    StackView.onRemoved: { model.leave(); Edit.reappear() }
    background: Rectangle { color: Theme.groupedBackground }
    header: NavigationBar {
        title: page.model.title
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: Theme.tint; Accessible.name: qsTr("Back"); onClicked: page.StackView.view.pop() }
    }

    Connections {
        target: page.model
        function onPhotoPickerRequested() { photoDialog.open() }
    }

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: page.model.sections
        delegate: Column {
            id: section
            required property var modelData
            required property int index
            width: list.width
            Label {
                text: section.modelData.header
                visible: text !== ""
                leftPadding: 16; topPadding: 18; bottomPadding: 6
                font.pixelSize: 13
                color: Theme.secondaryText
            }
            Item { width: 1; height: 18; visible: section.modelData.header === "" }
            Repeater {
                model: section.modelData.rows
                delegate: Loader {
                    required property var modelData
                    required property int index
                    property int sectionNumber: section.index
                    onLoaded: {
                        if (item.cellData !== undefined) item.cellData = modelData
                        if (item.sectionNumber !== undefined) item.sectionNumber = sectionNumber
                        if (item.rowNumber !== undefined) item.rowNumber = index
                    }
                    width: list.width
                    sourceComponent: modelData.kind === "picker" ? pickerRow : plainRow
                }
            }
        }
    }

    Component {
        id: plainRow
        FormRow {
            id: row
            property var cellData: ({ title: "", detail: "", value: "", placeholder: "", image: "", kind: "", dimmed: false, checked: false, key: "" })
            property int sectionNumber: 0
            property int rowNumber: 0
            Accessible.name: [cellData.title, cellData.detail || cellData.value || ""].filter(t => t !== "").join(", ")
            height: cellData.image !== "" ? 72 : 48
            background: Rectangle { color: row.pressed ? Theme.fill : Theme.card }
            onClicked: page.model.tap(row.sectionNumber, row.rowNumber)
            onActiveFocusChanged: if (activeFocus) page.pickerWheel = -1
            contentItem: RowLayout {
                spacing: 10
                Image {
                    visible: row.cellData.image !== ""
                    source: row.cellData.image
                    sourceSize: Qt.size(56, 56)
                    Layout.preferredWidth: 56; Layout.preferredHeight: 56
                    fillMode: Image.PreserveAspectCrop
                }
                Label {
                    Layout.fillWidth: true
                    text: row.cellData.title
                    elide: Text.ElideRight
                    font.pixelSize: 16
                    color: row.cellData.kind === "action" ? Theme.tint : Theme.text
                }
                Label { visible: row.cellData.detail !== ""; text: row.cellData.detail; color: Theme.secondaryText; font.pixelSize: 14 }
                PlainSwitch {
                    visible: row.cellData.kind === "date"
                    Accessible.name: qsTr("Time")
                    checked: page.model.withTime
                    onActiveFocusChanged: if (activeFocus) page.pickerWheel = -1
                    onToggled: page.model.withTime = checked
                }
                Label { visible: row.cellData.checked; text: "✓"; color: Theme.tint; font.pixelSize: 18 }
            }
        }
    }

    Component {
        id: pickerRow
        Rectangle {
            height: 180
            color: Theme.card
            DateTimePicker {
                anchors.fill: parent
                anchors.margins: 10
                date: page.model.pickerDate
                withTime: page.model.withTime
                focusedWheel: page.pickerWheel
                onWheelFocused: wheel => page.pickerWheel = wheel
                onMoved: d => page.model.setPickerDate(d)
            }
        }
    }

    FileDialog {
        id: photoDialog
        nameFilters: [qsTr("Pictures (*.jpg *.jpeg *.heic *.heif *.png *.tif *.tiff *.webp *.dng *.avif)")]
        onAccepted: page.model.choosePhoto(selectedFile.toString())
        onRejected: page.model.choosePhoto("")
    }
}
