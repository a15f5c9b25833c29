// SPDX-License-Identifier: GPL-3.0-or-later
// A live photo's movie, played once and silent over its still, as a preview of the moment; the
// end (or a tap) hands back to the still.
import QtQuick
import QtMultimedia
import Tessorin

Item {
    MediaPlayer {
        id: player
        source: Detail.liveVideoSource
        videoOutput: output
        Component.onCompleted: play()
        onPlaybackStateChanged: if (playbackState === MediaPlayer.StoppedState) Detail.livePlaying = false
    }
    VideoOutput {
        id: output
        anchors.fill: parent
        fillMode: VideoOutput.PreserveAspectFit
    }
    TapHandler { onTapped: Detail.livePlaying = false }
}
