// SPDX-License-Identifier: GPL-3.0-or-later
// The map of a place and its tools: the style control, re-centre once the map was moved, the
// address list; a tap on the pin shows its callout. Drag, wheel and pinch move and zoom.
import QtQuick
import QtQuick.Controls
import Tessorin

Item {
    id: root
    property alias place: map.place
    property alias map: map
    property bool showTools: true
    signal addressRequested()
    signal pressAndHold(var coordinate)
    clip: true

    TSMapView {
        id: map
        anchors.fill: parent
    }

    MouseArea {
        id: gestures
        anchors.fill: parent
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        // A mouse drag stays the map's, not the list's around it. A finger's may be taken over
        // by the pinch (or the list): kept, it would leave two fingers panning.
        preventStealing: true
        property point last
        property bool moved: false
        onPressed: (mouse) => {
            preventStealing = mouse.source === Qt.MouseEventNotSynthesized
            last = Qt.point(mouse.x, mouse.y)
            moved = false
        }
        onPositionChanged: (mouse) => {
            if (!pressed) return
            map.pan(mouse.x - last.x, mouse.y - last.y)
            moved = moved || Math.abs(mouse.x - last.x) + Math.abs(mouse.y - last.y) > 2
            last = Qt.point(mouse.x, mouse.y)
        }
        onClicked: (mouse) => {
            if (mouse.button === Qt.RightButton) { root.pressAndHold(map.coordinateAt(mouse.x, mouse.y)); return }
            const p = map.pinPoint
            callout.visible = map.hasPin && Math.abs(mouse.x - p.x) < 22 && mouse.y < p.y + 6 && mouse.y > p.y - 44
        }
        onPressAndHold: (mouse) => { if (!moved) root.pressAndHold(map.coordinateAt(mouse.x, mouse.y)) }
        onWheel: (wheel) => map.zoomAt(Math.pow(2, wheel.angleDelta.y / 480), wheel.x, wheel.y)
        PinchHandler {
            target: null
            property real lastScale: 1
            onActiveChanged: lastScale = 1
            onActiveScaleChanged: {
                map.zoomAt(activeScale / lastScale, centroid.position.x, centroid.position.y)
                lastScale = activeScale
            }
        }
    }

    // The callout over the pin.
    Item {
        id: callout
        visible: false
        x: Math.round(map.pinPoint.x - width / 2)
        y: Math.round(map.pinPoint.y - 44 - height)
        width: Math.min(root.width - 16, Math.max(calloutTitle.implicitWidth, showInMaps.implicitWidth) + 24)
        height: calloutTitle.implicitHeight + showInMaps.height + 20
        CardBackground { anchors.fill: parent; radius: 10 }
        Label {
            id: calloutTitle
            x: 12; y: 8
            width: parent.width - 24
            text: map.pinTitle
            elide: Text.ElideRight
            font.pixelSize: 14
            font.bold: true
        }
        Button {
            id: showInMaps
            anchors.top: calloutTitle.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            width: 172; height: 36
            flat: true
            icon.source: "qrc:/icons/map_route.svg"
            text: qsTr(" Show in Maps...")
            onClicked: map.openInMaps()
        }
    }

    // The tools, on a card in the top right corner; none for the world view of an item without place.
    Rectangle {
        anchors.fill: tools
        visible: tools.visible
        radius: 10
        color: Theme.overlay
        border.color: Theme.separator
    }
    Column {
        id: tools
        visible: root.showTools && map.hasPin
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 8
        spacing: 0
        width: 44
        ToolButton {
            icon.source: "qrc:/icons/gearshape.svg"
            Accessible.name: qsTr("Map Style")
            onClicked: stylePopup.open()
        }
        ToolButton {
            visible: map.movedAway
            opacity: map.movedAway ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 800 } }
            icon.source: "qrc:/icons/location.viewfinder.svg"
            Accessible.name: qsTr("Back to the Pin")
            onClicked: map.recenter()
        }
        ToolButton {
            icon.source: "qrc:/icons/info.circle.svg"
            Accessible.name: qsTr("Address")
            onClicked: root.addressRequested()
        }
    }

    Popup {
        id: stylePopup
        x: Math.max(8, (root.width - width) / 2)
        y: 8
        padding: 8
        background: CardBackground { radius: 10 }
        Row {
            spacing: 0
            Repeater {
                model: ["3D", "Standard", "Hybrid", "Satellite"]
                Button {
                    required property int index
                    required property string modelData
                    text: modelData
                    checkable: true
                    checked: map.segment === index
                    flat: !checked
                    width: Math.min(implicitWidth, (root.width - 46) / 4)
                    onClicked: { map.segment = index; stylePopup.close() }
                }
            }
        }
    }

    Label {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 2
        visible: text !== ""
        text: map.attribution
        font.pixelSize: 10
        color: "#333333"
        background: Rectangle { color: "#B3FFFFFF" }
        padding: 2
    }
}
