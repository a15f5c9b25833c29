// SPDX-License-Identifier: GPL-3.0-or-later
// A button of a question or an alert: reached by Tab, pressed by Return, Enter or Space. (The
// style's buttons take Space alone.)
import QtQuick
import QtQuick.Controls

Button {
    id: button
    flat: true
    focusPolicy: Qt.StrongFocus
    font.capitalization: Font.MixedCase
    Keys.onReturnPressed: button.clicked()
    Keys.onEnterPressed: button.clicked()
}
