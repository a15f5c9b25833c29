// SPDX-License-Identifier: GPL-3.0-or-later
// The map picker: a long press or a right click puts the pin, the bar searches, "Done" hands the
// place back.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    signal finished()
    Connections {
        target: MapPicker
        function onAlert(title, message) { alert.title = title; alert.text = message; alert.open() }
        function onDone() { page.finished() }
        function onPinChanged() { mapView.map.recenter() }
        function onChoicesChanged() { if (MapPicker.choices.length > 0) choices.open() }
    }

    // (Not a ToolBar: that name is the detail toolbar's model here.)
    header: Pane {
        padding: 0
        implicitHeight: 52
        background: Rectangle { color: Theme.bar }
        RowLayout {
            anchors.fill: parent
            anchors.margins: 6
            TextField {
                Layout.fillWidth: true
                placeholderText: qsTr("Search or insert an address")
                onAccepted: { MapPicker.search(text); focus = false }
            }
            ToolButton { text: qsTr("Done"); font.capitalization: Font.MixedCase; onClicked: MapPicker.finish() }
        }
    }

    MapView {
        id: mapView
        anchors.fill: parent
        showTools: false
        place: MapPicker.pin
        onPressAndHold: (coordinate) => MapPicker.longPress(coordinate.latitude, coordinate.longitude)
    }

    Popup {
        id: choices
        anchors.centerIn: Overlay.overlay
        width: Math.min(320, page.width - 40)
        height: Math.min(choiceList.contentHeight + 60, page.height - 80)
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground {}
        onClosed: MapPicker.cancelChoices()
        ColumnLayout {
            anchors.fill: parent
            ListView {
                id: choiceList
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: MapPicker.choices
                delegate: FormRow {
                    required property var modelData
                    required property int index
                    width: choiceList.width
                    text: modelData.title + (modelData.subtitle !== "" ? " — " + modelData.subtitle : "")
                    onClicked: { MapPicker.choose(index); choices.close() }
                }
            }
            Button { Layout.alignment: Qt.AlignHCenter; text: qsTr("Cancel"); flat: true; onClicked: choices.close() }
        }
    }

    Dialog {
        id: alert
        anchors.centerIn: Overlay.overlay
        modal: true
        Overlay.modal: Dimmer {}
        property alias text: alertText.text
        Label { id: alertText; wrapMode: Text.Wrap; width: Math.min(300, page.width - 80) }
        footer: DialogButtonBox {
            Button { text: qsTr("Ok"); flat: true; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
        }
    }
}
