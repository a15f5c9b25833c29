// SPDX-License-Identifier: GPL-3.0-or-later
// "From a track log...": a GPX, KML or NMEA log places each photo at its capture instant; the
// list says which photo got which place, or why it got none.
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    background: Rectangle { color: "#F2F2F7" }
    header: NavigationBar {
        title: "From a track log..."
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: "#1E6FD9"; onClicked: page.StackView.view.pop() }
    }
    property string path: ""
    function apply() { Edit.setTrackLog(page.path, offset.text, gap.text) }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10
        Button { text: "Choose a log..."; font.capitalization: Font.MixedCase; onClicked: logDialog.open() }
        Label { text: page.path === "" ? "No log" : page.path.substring(page.path.lastIndexOf("/") + 1); color: "#6C6C70" }
        RowLayout {
            Label { text: "Camera clock offset" }
            TextField { id: offset; Layout.fillWidth: true; placeholderText: "+0:00"; onEditingFinished: page.apply() }
        }
        RowLayout {
            Label { text: "Longest gap" }
            TextField { id: gap; Layout.fillWidth: true; placeholderText: "30m"; onEditingFinished: page.apply() }
        }
        ListView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: Edit.trackMatches
            delegate: ColumnLayout {
                required property var modelData
                width: ListView.view.width
                spacing: 0
                Label { text: modelData.name; font.pixelSize: 15 }
                Label { text: modelData.place; color: "#6C6C70"; font.pixelSize: 13; bottomPadding: 6 }
            }
        }
    }

    FileDialog {
        id: logDialog
        nameFilters: ["Track logs (*.gpx *.kml *.nmea *.txt *.log)"]
        onAccepted: { page.path = selectedFile.toString(); page.apply() }
    }
}
