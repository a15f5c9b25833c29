// SPDX-License-Identifier: GPL-3.0-or-later
// A button of a question or an alert: reached by Tab, pressed by Return, Enter or Space, and
// ringed while it has the keyboard. (The style's buttons take Space alone and show no focus.)
import QtQuick
import QtQuick.Controls
import Tessorin

Button {
    id: button
    flat: true
    focusPolicy: Qt.StrongFocus
    font.capitalization: Font.MixedCase
    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()

    Rectangle {
        anchors.fill: parent
        anchors.margins: 2
        radius: 4
        color: "transparent"
        border.width: 2
        border.color: Theme.tint
        visible: button.visualFocus
    }
}
