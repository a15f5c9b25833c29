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
    background: Rectangle { color: Theme.groupedBackground }
    header: NavigationBar {
        title: qsTr("From a track log...")
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: Theme.tint; Accessible.name: qsTr("Back"); onClicked: page.StackView.view.pop() }
    }
    property string path: ""
    function apply() { Edit.setTrackLog(page.path, offset.text, gap.text) }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 16
        spacing: 10
        Button { text: qsTr("Choose a log..."); font.capitalization: Font.MixedCase; onClicked: logDialog.open() }
        Label { text: page.path === "" ? "No log" : page.path.substring(page.path.lastIndexOf("/") + 1); color: Theme.secondaryText }
        RowLayout {
            Label { text: qsTr("Camera clock offset") }
            TextField { id: offset; Layout.fillWidth: true; Accessible.name: qsTr("Camera clock offset"); placeholderText: "+0:00"; onEditingFinished: page.apply() }
        }
        RowLayout {
            Label { text: qsTr("Longest gap") }
            TextField { id: gap; Layout.fillWidth: true; Accessible.name: qsTr("Longest gap"); placeholderText: "30m"; onEditingFinished: page.apply() }
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
                Label { text: modelData.place; color: Theme.secondaryText; font.pixelSize: 13; bottomPadding: 6 }
            }
        }
    }

    FileDialog {
        id: logDialog
        nameFilters: [qsTr("Track logs (*.gpx *.kml *.nmea *.txt *.log)")]
        onAccepted: { page.path = selectedFile.toString(); page.apply() }
    }
}
