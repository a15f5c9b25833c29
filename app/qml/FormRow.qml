// SPDX-License-Identifier: GPL-3.0-or-later
// A row that opens or chooses something, in a form or a sheet: reached by Tab like the switches
// and fields beside it, run by Enter, Return or Space. (The style's rows take no focus, so the
// keyboard passed over every date, place and option.)
import QtQuick
import QtQuick.Controls

ItemDelegate {
    id: row
    focusPolicy: Qt.StrongFocus
    Keys.onReturnPressed: row.clicked()
    Keys.onEnterPressed: row.clicked()
}
