// SPDX-License-Identifier: GPL-3.0-or-later
// A live photo's movie, played once and silent over its still, as a preview of the moment, from
// the frame the still was taken from when the motion photo names it; the end (or a tap) hands
// back to the still.
import QtQuick
import QtMultimedia
import Tessorin

Item {
    MediaPlayer {
        id: player
        source: Detail.liveVideoSource
        videoOutput: output
        Component.onCompleted: play()
        onMediaStatusChanged: if (mediaStatus === MediaPlayer.LoadedMedia && Detail.liveStartMs > 0) setPosition(Detail.liveStartMs)
        onPlaybackStateChanged: if (playbackState === MediaPlayer.StoppedState) Detail.livePlaying = false
    }
    VideoOutput {
        id: output
        anchors.fill: parent
        fillMode: VideoOutput.PreserveAspectFit
    }
    TapHandler { onTapped: Detail.livePlaying = false }
}
