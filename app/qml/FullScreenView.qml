// SPDX-License-Identifier: GPL-3.0-or-later
// One item over the whole window: a photo to pinch, drag and double-tap between fitting and
// its zoom limit; a video plays.
import QtQuick
import QtQuick.Controls
import QtMultimedia
import Tessorin

Rectangle {
    id: view
    color: "#000000"
    visible: Detail.fullScreen
    focus: visible

    Keys.onEscapePressed: Detail.fullScreen = false
    Keys.onLeftPressed: Detail.previous()
    Keys.onRightPressed: Detail.next()

    Item {
        id: stage
        anchors.fill: parent
        clip: true

        readonly property real minZoom: Detail.minimumZoom(width, height, photo.implicitWidth, photo.implicitHeight)
        readonly property real maxZoom: Detail.maximumZoom(width, height, photo.implicitWidth, photo.implicitHeight)

        Image {
            id: photo
            x: (stage.width - width) / 2
            y: (stage.height - height) / 2
            // A video's first frame stands under the player until it plays.
            source: view.visible ? Detail.imageSource(Detail.currentIndex) : ""
            sourceSize: Qt.size(2048, 2048)
            asynchronous: true
            smooth: true
            scale: stage.minZoom
            onStatusChanged: if (status === Image.Ready) { scale = stage.minZoom; x = (stage.width - width) / 2; y = (stage.height - height) / 2 }
        }
        BusyIndicator {
            anchors.centerIn: parent
            running: photo.status === Image.Loading
        }
        PinchHandler {
            enabled: !Detail.currentIsVideo
            target: photo
            minimumScale: stage.minZoom
            maximumScale: Math.max(stage.minZoom, stage.maxZoom)
            minimumRotation: 0
            maximumRotation: 0
        }
        DragHandler {
            target: photo
            enabled: photo.scale > stage.minZoom * 1.01
        }
        TapHandler {
            enabled: !Detail.currentIsVideo
            onDoubleTapped: {
                photo.scale = photo.scale > stage.minZoom * 1.01 ? stage.minZoom : stage.maxZoom
                photo.x = (stage.width - photo.width) / 2
                photo.y = (stage.height - photo.height) / 2
            }
        }
    }

    // The player exists only while a video is on view.
    Loader {
        anchors.fill: parent
        active: view.visible && Detail.currentIsVideo
        sourceComponent: Item {
            MediaPlayer {
                id: player
                source: Detail.currentSource
                videoOutput: output
                audioOutput: AudioOutput {}
                Component.onCompleted: play()
            }
            VideoOutput {
                id: output
                anchors.fill: parent
            }
            TapHandler {
                onTapped: player.playbackState === MediaPlayer.PlayingState ? player.pause() : player.play()
            }
        }
    }

    Loader {
        anchors.fill: parent
        active: view.visible && Detail.livePlaying
        sourceComponent: LivePlayer {}
    }

    RoundButton {
        anchors.top: parent.top
        anchors.left: parent.left
        anchors.margins: 16
        width: 28
        height: 28
        padding: 0
        topInset: 0
        bottomInset: 0
        leftInset: 0
        rightInset: 0
        text: "𝗫"
        Accessible.name: qsTr("Close")
        font.pixelSize: 20
        background: Rectangle { radius: 14; color: "#E5E5EA"; opacity: 0.9 }
        contentItem: Label {
            text: "𝗫"
            font.pixelSize: 20
            color: "#48484A"
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
        }
        onClicked: Detail.fullScreen = false
    }
}
