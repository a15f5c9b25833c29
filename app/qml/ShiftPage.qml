// SPDX-License-Identifier: GPL-3.0-or-later
// "Shift by...": one offset for every date of every selected photo, each moved from its own
// value, with the first photo's dates before and after.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    background: Rectangle { color: Theme.groupedBackground }
    header: NavigationBar {
        title: qsTr("Shift by...")
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: Theme.tint; Accessible.name: qsTr("Back"); onClicked: page.StackView.view.pop() }
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10
        Label { text: qsTr("Offset, as +H:MM[:SS] or -D H:MM:SS"); color: Theme.secondaryText; font.pixelSize: 13 }
        TextField {
            id: offset
            Layout.fillWidth: true
            placeholderText: "+0:52"
            Accessible.name: qsTr("Offset")
            focus: true
            onTextChanged: valid = Edit.setShift(text)
            property bool valid: true
            color: valid ? Theme.text : Theme.destructive
        }
        Label { Layout.fillWidth: true; text: Edit.shiftPreview; wrapMode: Text.Wrap; font.pixelSize: 15 }
        Item { Layout.fillHeight: true }
    }
}
