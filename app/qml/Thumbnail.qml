// SPDX-License-Identifier: GPL-3.0-or-later
// One item's picture, cut to a square, with a film mark on videos, the live mark on live photos,
// a heart on favourites and a frame when selected.
import QtQuick

Rectangle {
    id: thumb
    property alias source: image.source
    property bool video: false
    property bool selected: false
    property bool favorite: false
    property bool live: false
    color: "#E5E5EA"
    clip: true

    Image {
        id: image
        anchors.fill: parent
        asynchronous: true
        fillMode: Image.PreserveAspectCrop
        sourceSize: Qt.size(256, 256)
    }
    Rectangle {
        visible: thumb.video
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        anchors.margins: 4
        width: 22
        height: 16
        radius: 3
        color: "#80000000"
        Text {
            anchors.centerIn: parent
            text: "\u25B6"
            color: "#FFFFFF"
            font.pixelSize: 10
        }
    }
    Image {
        visible: thumb.live
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 4
        source: visible ? "qrc:/icons/livephoto.svg" : ""
        sourceSize: Qt.size(18, 18)
    }
    Image {
        visible: thumb.favorite
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 4
        source: visible ? "qrc:/icons/heart.fill.svg" : ""
        sourceSize: Qt.size(16, 16)
    }
    Rectangle {
        anchors.fill: parent
        visible: thumb.selected
        color: "transparent"
        border.width: 3
        border.color: "#1E6FD9"
    }
}
