// SPDX-License-Identifier: GPL-3.0-or-later
// The bar at the top of a browsing screen: a back button when the screen can go back, the
// title in the middle, and the screen's own buttons at either side.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
// Qualified: the module's singleton "ToolBar" would hide the control of that name.
import Tessorin as Ts

ToolBar {
    id: bar
    property string title
    property bool showBack: false
    default property alias trailing: trailingRow.data
    property alias leading: leadingRow.data

    Material.background: Ts.Theme.bar
    Material.foreground: Ts.Theme.text
    Material.elevation: 0
    implicitHeight: 52

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        spacing: 0
        Row {
            id: leadingRow
            Layout.preferredWidth: Math.max(implicitWidth, trailingRow.implicitWidth)
            ToolButton {
                visible: bar.showBack
                icon.source: "qrc:/icons/chevron.left.svg"
                Accessible.name: qsTr("Back")
                icon.color: Ts.Theme.tint
                onClicked: Ts.App.back()
            }
        }
        Label {
            Layout.fillWidth: true
            text: bar.title
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 17
            font.weight: Font.DemiBold
        }
        Row {
            id: trailingRow
            Layout.preferredWidth: Math.max(implicitWidth, leadingRow.implicitWidth)
            layoutDirection: Qt.RightToLeft
        }
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Ts.Theme.separator
    }
}
