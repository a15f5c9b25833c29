// SPDX-License-Identifier: GPL-3.0-or-later
// The resource list: a sheet over the detail with a section per resource (its file first, then
// each auxiliary image found in it), the progress bar while loading, and the full-screen view of
// one file with a share button that saves a copy. Everything it shows comes from Resources.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Dialogs
import QtQuick.Layouts
import QtMultimedia
import Tessorin

Popup {
    id: sheet
    parent: Overlay.overlay
    width: parent ? parent.width : 0
    height: parent ? parent.height : 0
    padding: 0
    modal: true
    Overlay.modal: Dimmer {}
    closePolicy: Popup.CloseOnEscape
    onClosed: Resources.open = false
    Component.onCompleted: if (Resources.open) open()
    background: Rectangle { color: Theme.groupedBackground }

    Connections {
        target: Resources
        function onOpenChanged() { Resources.open ? sheet.open() : sheet.close() }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        // The bar: title inline, "Done" (or back from a file) at the side, share on a file.
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 52
            color: Theme.bar
            ToolButton {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                visible: Resources.mediaUrl != ""
                icon.source: "qrc:/icons/chevron.left.svg"
                Accessible.name: qsTr("Back")
                icon.color: Theme.tint
                onClicked: Resources.showMedia("")
            }
            Label {
                anchors.centerIn: parent
                text: Resources.title
                font.pixelSize: 17
                font.weight: Font.DemiBold
            }
            ToolButton {
                // A text button has less padding than an icon one: keep it off the edge.
                anchors.right: parent.right
                anchors.rightMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                visible: Resources.mediaUrl == ""
                text: Resources.doneTitle
                font.pixelSize: 17
                font.capitalization: Font.MixedCase
                font.weight: Font.DemiBold
                Material.foreground: Theme.tint
                onClicked: Resources.open = false
            }
            ToolButton {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: Resources.mediaUrl != ""
                icon.source: "qrc:/icons/" + Resources.shareSymbol + ".svg"
                Accessible.name: qsTr("Share")
                icon.color: Theme.tint
                onClicked: {
                    saveDialog.selectedFile = saveDialog.currentFolder + "/" + Resources.suggestedName()
                    saveDialog.open()
                }
            }
            Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Theme.separator }
        }

        ProgressBar {
            Layout.fillWidth: true
            visible: Resources.showProgress
            from: 0
            to: Math.max(1, Resources.total)
            value: Resources.progress
        }

        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: Resources.mediaUrl == ""
            clip: true
            model: Resources.sections
            delegate: Column {
                required property var modelData
                width: list.width
                Label {
                    leftPadding: 16
                    topPadding: 18
                    bottomPadding: 6
                    text: modelData.header.toUpperCase()
                    font.pixelSize: 13
                    color: Theme.secondaryText
                }
                Repeater {
                    model: modelData.rows
                    delegate: FormRow {
                        required property var modelData
                        width: list.width
                        height: 68
                        Accessible.name: [modelData.title, modelData.subtitle || ""].filter(t => t !== "").join(", ")
                        enabled: modelData.url != ""
                        background: Rectangle { color: Theme.card }
                        onClicked: Resources.showMedia(modelData.url)
                        contentItem: RowLayout {
                            spacing: 12
                            Item {
                                implicitWidth: 52
                                implicitHeight: 52
                                Image {
                                    anchors.centerIn: parent
                                    visible: modelData.symbol !== ""
                                    source: modelData.symbol !== "" ? "image://icon/" + Theme.iconTone + "/" + modelData.symbol : ""
                                    sourceSize: Qt.size(24, 24)
                                }
                                Rectangle {
                                    anchors.fill: parent
                                    visible: modelData.symbol === ""
                                    radius: 8
                                    clip: true
                                    color: "transparent"
                                    Image {
                                        anchors.fill: parent
                                        fillMode: Image.PreserveAspectFit
                                        asynchronous: true
                                        source: modelData.symbol === "" && modelData.thumbnail !== ""
                                                ? "image://thumb/" + encodeURIComponent(modelData.thumbnail) : ""
                                        sourceSize: Qt.size(104, 104)
                                    }
                                }
                            }
                            ColumnLayout {
                                Layout.fillWidth: true
                                spacing: 2
                                Label { text: modelData.title; font.pixelSize: 17; elide: Text.ElideMiddle; Layout.fillWidth: true }
                                Label { text: modelData.subtitle; font.pixelSize: 13; color: Theme.secondaryText; elide: Text.ElideMiddle; Layout.fillWidth: true }
                            }
                        }
                    }
                }
            }
        }

        // One file full screen: an image with zoom, a movie that plays, or a line of text.
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: Resources.mediaUrl != ""
            clip: true

            Flickable {
                id: flick
                anchors.fill: parent
                visible: Resources.mediaKind === "image"
                contentWidth: Math.max(width, picture.width * picture.scale)
                contentHeight: Math.max(height, picture.height * picture.scale)
                Image {
                    id: picture
                    width: flick.width
                    height: flick.height
                    transformOrigin: Item.TopLeft
                    fillMode: Image.PreserveAspectFit
                    source: Resources.mediaImage
                    sourceSize: Qt.size(2048, 2048)
                    asynchronous: true
                    scale: 1
                }
                PinchHandler {
                    target: picture
                    minimumScale: 1
                    maximumScale: 8
                }
                TapHandler {
                    onDoubleTapped: picture.scale = picture.scale > 1 ? 1 : 3
                }
            }

            MediaPlayer {
                id: player
                source: Resources.mediaKind === "video" ? Resources.mediaUrl : ""
                videoOutput: video
                onSourceChanged: if (source != "") play(); else stop()
            }
            VideoOutput {
                id: video
                anchors.fill: parent
                visible: Resources.mediaKind === "video"
                TapHandler {
                    onTapped: player.playbackState === MediaPlayer.PlayingState ? player.pause() : player.play()
                }
            }

            Label {
                anchors.centerIn: parent
                visible: Resources.mediaKind === "text"
                text: Resources.mediaText
                wrapMode: Text.Wrap
                width: parent.width - 48
                horizontalAlignment: Text.AlignHCenter
            }
        }
    }

    FileDialog {
        id: saveDialog
        fileMode: FileDialog.SaveFile
        acceptLabel: qsTr("Save")
        currentFolder: Share.saveFolder
        onAccepted: Resources.saveCopy(selectedFile)
    }
}
