// SPDX-License-Identifier: GPL-3.0-or-later
// The edit screen over the whole window, with its own stack for the date, orientation, place and
// IPTC screens. Every rule is the view model's (Edit); this shows it and hands the user's
// answers back.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Popup {
    id: screen
    objectName: "editScreen"
    parent: Overlay.overlay
    // A phone's screen is all edit screen; a tablet's shows it as a sheet in the middle.
    readonly property bool sheet: parent && parent.width >= 700
    width: parent ? (sheet ? 620 : parent.width) : 0
    height: parent ? (sheet ? Math.min(parent.height - 60, 900) : parent.height) : 0
    anchors.centerIn: parent
    padding: 0
    modal: true
    Overlay.modal: Dimmer {}
    closePolicy: Popup.NoAutoClose
    visible: Edit.active
    background: Rectangle { color: Theme.groupedBackground }

    Component { id: editPage; EditPage { onSaveRequested: saveSheet.open() } }
    Component { id: datePage; DatePage {} }
    Component { id: rotationPage; RotationPage {} }
    Component { id: shiftPage; ShiftPage {} }
    Component { id: trackPage; TrackLogPage {} }
    Component { id: iptcPage; IptcPage { editor: Edit.iptcScreen } }
    Component {
        id: locationPage
        LocationPage {
            onMapPickerRequested: stack.push(mapPage)
            // Its own bar is the search field: the way back is at the bottom.
            footer: Pane {
                padding: 4
                background: Rectangle { color: Theme.bar }
                Button {
                    anchors.right: parent.right
                    text: qsTr("Done")
                    flat: true
                    font.capitalization: Font.MixedCase
                    onClicked: stack.pop()
                }
            }
        }
    }
    Component { id: mapPage; MapPickerPage { onFinished: stack.pop() } }
    readonly property var pages: ({ date: datePage, rotation: rotationPage, shift: shiftPage, track: trackPage,
                                    iptc: iptcPage, location: locationPage })

    StackView {
        objectName: "editStack"
        id: stack
        anchors.fill: parent
        initialItem: editPage
        focus: true
        Keys.onEscapePressed: depth > 1 ? pop() : Edit.close()
        // Back on the edit page, once the sub-screen is gone and has delivered: the rows show it.
        onBusyChanged: if (!busy && depth === 1) Qt.callLater(Edit.reappear)
    }
    // One screen back, as the back button does.
    function back() { stack.pop() }
    onOpened: stack.forceActiveFocus()
    onClosed: stack.pop(null)

    Connections {
        target: Edit
        function onPushRequested(name) { stack.push(screen.pages[name]) }
        function onAlert(title, message) { alert.title = title; alert.text = message; alert.open() }
        function onExportRequested(urls) {
            if (urls.length === 1) {
                fileDialog.currentFolder = Edit.exportFolder()
                fileDialog.selectedFile = Edit.exportSuggestion()
                fileDialog.open()
            } else {
                folderDialog.currentFolder = Edit.exportSuggestion()
                folderDialog.open()
            }
        }
    }

    // The save question, from the bottom like an action sheet.
    Dialog {
        id: saveSheet
        objectName: "saveSheet"
        anchors.centerIn: Overlay.overlay
        width: Math.min(340, screen.width - 40)
        modal: true
        Overlay.modal: Dimmer {}
        padding: 12
        property var question: ({ message: "", actions: [] })
        onAboutToShow: question = Edit.saveAlert()
        // The first answer has the keys: Return saves a new picture.
        onOpened: if (saveActions.count > 0) saveActions.itemAt(0).forceActiveFocus(Qt.TabFocusReason)
        background: CardBackground {}
        contentItem: ColumnLayout {
            spacing: 6
            Label {
                Layout.fillWidth: true
                text: saveSheet.question.message
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                color: Theme.secondaryText
            }
            Repeater {
                id: saveActions
                model: saveSheet.question.actions
                SheetButton {
                    required property var modelData
                    Layout.fillWidth: true
                    text: modelData.title
                    font.bold: modelData.mode < 0
                    onClicked: { saveSheet.close(); if (modelData.mode >= 0) Edit.save(modelData.mode) }
                }
            }
        }
    }

    // "Loading Photo...", "Saving Photo...", with the items done so far.
    Popup {
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        closePolicy: Popup.NoAutoClose
        visible: Edit.activity !== ""
        background: CardBackground {}
        contentItem: ColumnLayout {
            spacing: 10
            Label { text: Edit.activity; font.pixelSize: 16; Layout.alignment: Qt.AlignHCenter }
            BusyIndicator { running: visible; Layout.alignment: Qt.AlignHCenter }
            ProgressBar {
                visible: Edit.progressTotal > 1
                Layout.preferredWidth: 180
                from: 0; to: Edit.progressTotal; value: Edit.progressDone
            }
        }
    }

    Dialog {
        id: alert
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        property alias text: alertText.text
        background: CardBackground {}
        Label { id: alertText; wrapMode: Text.Wrap; width: Math.min(300, screen.width - 80) }
        footer: DialogButtonBox {
            background: null
            Button {
                text: qsTr("Ok")
                flat: true
                font.capitalization: Font.MixedCase
                DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            }
        }
        onClosed: Edit.alertDismissed()
    }

    FileDialog {
        id: fileDialog
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Save")
        onAccepted: Edit.finishExport(selectedFile)
        onRejected: Edit.finishExport("")
    }
    FolderDialog {
        id: folderDialog
        onAccepted: Edit.finishExport(selectedFolder)
        onRejected: Edit.finishExport("")
    }
}
