// SPDX-License-Identifier: GPL-3.0-or-later
// The item screen: the strip of images at the top, resized by dragging, then the detail or the
// tag table, and the toolbar (at the bottom on a phone, in the top bar on a tablet).
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    focus: true
    background: Rectangle { color: Theme.groupedBackground }

    Keys.onLeftPressed: Detail.previous()
    Keys.onRightPressed: Detail.next()
    // Escape closes the full-screen view, else goes on to the navigation's back.
    Keys.onEscapePressed: event => {
        if (Detail.fullScreen)
            Detail.fullScreen = false
        else
            event.accepted = false
    }

    // The album may have changed while the page was away.
    Component.onCompleted: ToolBar.refresh()
    Connections {
        target: App
        function onPadChanged() { Detail.layoutChanged() }
    }

    Binding {
        target: Detail
        property: "screenSize"
        value: Qt.size(page.Window.width, page.Window.height)
        when: page.Window.width > 0
    }
    Binding {
        target: Detail
        property: "availableHeight"
        value: page.availableHeight
        when: page.availableHeight > 0
    }

    header: NavigationBar {
        title: Detail.title
        showBack: !App.pad
        DetailToolBar {
            visible: App.pad
            flat: true
        }
    }

    footer: DetailToolBar {
        id: phoneBar
        visible: !App.pad
        height: visible ? implicitHeight : 0
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ImageStrip {
            id: strip
            Layout.fillWidth: true
            Layout.preferredHeight: Detail.stripHeight
            Behavior on Layout.preferredHeight {
                enabled: Detail.bouncing
                NumberAnimation {
                    duration: 700
                    easing.type: Easing.OutBack
                    easing.overshoot: 0.7
                    onRunningChanged: if (!running) Detail.bounceFinished()
                }
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true

            DetailTableView {
                anchors.fill: parent
                visible: !Detail.showTags
                onSourcesRequested: (row, anchor) => sources.show(DetailTable.sources(row), anchor)
                onFocalRequested: anchor => sources.show([DetailTable.focalLengthText()], anchor)
                onAddressRequested: addressList.open()
            }
            ExifTableView {
                anchors.fill: parent
                visible: Detail.showTags
            }
            // While the tables still show the previous item.
            Rectangle {
                anchors.fill: parent
                color: Theme.groupedBackground
                opacity: Detail.overlayShown ? 0.6 : 0
                Behavior on opacity { NumberAnimation { duration: 150 } }
            }
            // An item not kept on this device, on its way.
            Column {
                anchors.top: parent.top
                width: parent.width
                visible: Detail.cloudProgress >= 0
                spacing: 2
                ProgressBar {
                    width: parent.width
                    value: Math.max(0, Detail.cloudProgress)
                }
                Label {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: qsTr("Downloading...")
                    font.pixelSize: 12
                    color: Theme.secondaryText
                }
            }
        }
    }

    SourcesPopup { id: sources }

    AddressListPopup { id: addressList }

    ShareMenu { id: shareMenu }

    ResourceList { id: resourceList }

    FullScreenView {
        parent: Overlay.overlay
        anchors.fill: parent
    }

    Dialog {
        id: alertDialog
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        property alias text: alertText.text
        footer: DialogButtonBox {
            SheetButton {
                id: alertOk
                text: qsTr("Ok")
                DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
            }
        }
        onOpened: alertOk.forceActiveFocus(Qt.TabFocusReason)
        Label { id: alertText; wrapMode: Text.Wrap; width: Math.min(300, page.width - 80) }
    }
    Connections {
        target: Detail
        function onAlert(title, message) {
            alertDialog.title = title
            alertDialog.text = message
            alertDialog.open()
        }
    }
}
