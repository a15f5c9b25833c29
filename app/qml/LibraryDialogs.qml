// SPDX-License-Identifier: GPL-3.0-or-later
// The library tools' questions and failures, made once for the window: the toolbar they come
// from stands twice in the detail page (top bar on a tablet, bottom bar on a phone).
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import Tessorin

Item {
    // The platform asked before a delete; so do we.
    Dialog {
        id: confirmDelete
        objectName: "confirmDelete"
        property string action
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 320)
        modal: true
        Overlay.modal: Dimmer {}
        title: action
        Label { id: confirmText; wrapMode: Text.WordWrap; width: parent.width }
        footer: DialogButtonBox {
            SheetButton { text: qsTr("Cancel"); DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
            SheetButton { id: deleteButton; text: confirmDelete.action; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole; Material.foreground: Theme.destructive }
        }
        // Delete then Return trashes, as the Delete key promises; the item can come back.
        onOpened: deleteButton.forceActiveFocus(Qt.TabFocusReason)
        onAccepted: ToolBar.confirmDelete()
    }
    Dialog {
        id: toolAlert
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 320)
        modal: true
        Overlay.modal: Dimmer {}
        footer: DialogButtonBox {
            SheetButton { id: toolAlertOk; text: qsTr("Ok"); DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
        }
        onOpened: toolAlertOk.forceActiveFocus(Qt.TabFocusReason)
        Label { id: toolAlertText; wrapMode: Text.WordWrap; width: parent.width }
    }
    Connections {
        target: ToolBar
        function onDeleteConfirmationRequested(title, message, action) {
            confirmDelete.action = action
            confirmText.text = message
            confirmDelete.open()
        }
        function onAlert(title, message) {
            toolAlert.title = title
            toolAlertText.text = message
            toolAlert.open()
        }
    }

    // After a new picture was saved elsewhere than the album on view: where to go to see it.
    Dialog {
        id: added
        objectName: "addedDialog"
        property var actions: []
        parent: Overlay.overlay
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 320)
        modal: true
        Overlay.modal: Dimmer {}
        closePolicy: Popup.NoAutoClose
        onOpened: if (addedActions.count > 0) addedActions.itemAt(0).forceActiveFocus(Qt.TabFocusReason)
        Column {
            width: parent.width
            spacing: 4
            Label { id: addedText; wrapMode: Text.WordWrap; width: parent.width }
            Repeater {
                id: addedActions
                model: added.actions
                delegate: SheetButton {
                    required property int index
                    required property string modelData
                    width: parent.width
                    text: modelData
                    Material.foreground: Theme.tint
                    onClicked: { added.close(); Detail.chooseAdded(index) }
                }
            }
        }
    }
    Connections {
        target: Detail
        function onAddedDialogRequested(title, message, actions) {
            added.title = title
            addedText.text = message
            added.actions = actions
            added.open()
        }
    }
}
