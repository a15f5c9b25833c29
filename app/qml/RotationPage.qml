// SPDX-License-Identifier: GPL-3.0-or-later
// The orientation screen: the eight orientations with their pictures; leaving hands the checked
// one over.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    readonly property var model: Edit.rotationScreen
    StackView.onRemoved: { model.leave(); Edit.reappear() }
    background: Rectangle { color: Theme.groupedBackground }
    header: NavigationBar {
        title: qsTr("Orientation")
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: Theme.tint; Accessible.name: qsTr("Back"); onClicked: page.StackView.view.pop() }
    }

    ListView {
        id: list
        anchors.fill: parent
        anchors.topMargin: 18
        model: page.model.rows
        focus: true
        currentIndex: page.model.selectedRow
        Keys.onReturnPressed: page.model.tap(currentIndex)
        delegate: FormRow {
            id: row
            required property var modelData
            required property int index
            width: list.width
            height: 56
            Accessible.name: modelData.title
            background: Rectangle { color: row.pressed || row.ListView.isCurrentItem && list.activeFocus ? Theme.fill : Theme.card }
            onClicked: page.model.tap(index)
            contentItem: RowLayout {
                spacing: 12
                Image { source: row.modelData.image; sourceSize: Qt.size(40, 40) }
                Label { Layout.fillWidth: true; text: row.modelData.title; font.pixelSize: 16; elide: Text.ElideRight }
                Label { visible: row.modelData.checked; text: "✓"; color: Theme.tint; font.pixelSize: 18 }
            }
        }
    }
}
