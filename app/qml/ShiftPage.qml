// SPDX-License-Identifier: GPL-3.0-or-later
// "Shift by...": one offset for every date of every selected photo, each moved from its own
// value, with the first photo's dates before and after.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    background: Rectangle { color: "#F2F2F7" }
    header: NavigationBar {
        title: "Shift by..."
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: "#1E6FD9"; onClicked: page.StackView.view.pop() }
    }
    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10
        Label { text: "Offset, as +H:MM[:SS] or -D H:MM:SS"; color: "#6C6C70"; font.pixelSize: 13 }
        TextField {
            id: offset
            Layout.fillWidth: true
            placeholderText: "+0:52"
            focus: true
            onTextChanged: valid = Edit.setShift(text)
            property bool valid: true
            color: valid ? "#1C1C1E" : "#D70015"
        }
        Label { Layout.fillWidth: true; text: Edit.shiftPreview; wrapMode: Text.Wrap; font.pixelSize: 15 }
        Item { Layout.fillHeight: true }
    }
}
