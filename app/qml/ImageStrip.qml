// SPDX-License-Identifier: GPL-3.0-or-later
// The album's items side by side, the current one centred. Flicking settles on an item, which
// then becomes the album's current item; an upward drag shrinks the strip.
import QtQuick
import QtQuick.Controls
import Tessorin

Rectangle {
    id: strip
    color: Theme.card
    clip: true

    readonly property real side: Math.floor(Math.min(height - 12, width))
    readonly property real inset: (width - side) / 2

    ListView {
        id: list
        objectName: "strip"
        anchors.fill: parent
        anchors.topMargin: 6
        anchors.bottomMargin: 6
        orientation: ListView.Horizontal
        spacing: 10
        model: Detail.strip
        currentIndex: Detail.currentIndex
        highlightRangeMode: ListView.StrictlyEnforceRange
        preferredHighlightBegin: strip.inset
        preferredHighlightEnd: strip.inset + strip.side
        highlightMoveDuration: 250
        snapMode: ListView.SnapOneItem
        flickDeceleration: 4000
        boundsBehavior: Flickable.StopAtBounds

        delegate: Item {
            id: cell
            required property int index
            required property string source
            required property bool video
            required property bool live
            width: strip.side
            height: strip.side

            Image {
                id: thumb
                anchors.fill: parent
                source: cell.source
                sourceSize: Qt.size(strip.side * 2, strip.side * 2)
                fillMode: Image.PreserveAspectFit
                asynchronous: true
                smooth: true
            }
            BusyIndicator {
                anchors.centerIn: parent
                running: thumb.status === Image.Loading
                visible: running
            }
            Image {
                visible: cell.video
                anchors.centerIn: parent
                source: "qrc:/icons/play.circle.fill.svg"
                sourceSize: Qt.size(48, 48)
            }
            // A live photo's mark; a press on it plays the movie over the still.
            Image {
                visible: cell.live
                // On the picture's corner, not the square's: the picture is fitted inside.
                x: (parent.width - thumb.paintedWidth) / 2 + 8
                y: (parent.height - thumb.paintedHeight) / 2 + 8
                source: "qrc:/icons/livephoto.svg"
                sourceSize: Qt.size(22, 22)
                TapHandler { onTapped: Detail.livePlaying = true }
            }
            Loader {
                anchors.fill: parent
                active: Detail.livePlaying && index === Detail.currentIndex && !Detail.fullScreen
                sourceComponent: LivePlayer {}
            }
            TapHandler {
                onDoubleTapped: Detail.fullScreen = true
            }
        }

        // Opened on an album, or resized as the split view lays out, the strip shows the
        // selected item in the middle; the highlight range alone keeps it there only once the
        // list has moved.
        function centre() { if (count > 0 && !moving) positionViewAtIndex(Detail.currentIndex, ListView.Center) }
        onCountChanged: centre()
        onWidthChanged: centre()
        onHeightChanged: centre()
        Component.onCompleted: centre()

        onMovementStarted: Detail.dragBegan()
        onMovementEnded: Detail.decelerationEnded(contentX - originX, strip.inset, strip.side)
    }

    Connections {
        target: Detail
        function onAlignRequested() { list.currentIndex = Detail.currentIndex; list.centre() }
    }

    // A vertical drag on the strip resizes it.
    DragHandler {
        target: null
        xAxis.enabled: false
        onTranslationChanged: Detail.panChanged(translation.y)
        onActiveChanged: if (!active) Detail.dragEnded()
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 2
        width: 36
        height: 4
        radius: 2
        color: Theme.separator
    }
}
