// SPDX-License-Identifier: GPL-3.0-or-later
// The app's name, version and licence, and the credits: the libraries it is built on and the
// data it ships.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: qsTr("About")
        showBack: true
    }

    component CreditLabel: Label {
        Layout.fillWidth: true
        wrapMode: Text.WordWrap
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: 13
        color: Theme.secondaryText
    }
    component Heading: Label {
        Layout.alignment: Qt.AlignHCenter
        Layout.topMargin: 16
        font.pixelSize: 13
        font.weight: Font.DemiBold
    }

    ScrollView {
        id: scroll
        anchors.fill: parent
        contentWidth: availableWidth

        ColumnLayout {
            x: (scroll.availableWidth - width) / 2
            width: Math.min(scroll.availableWidth - 48, 420)
            spacing: 12

            Image {
                Layout.alignment: Qt.AlignHCenter
                Layout.topMargin: 40
                source: "qrc:/tessorin.svg"
                sourceSize: Qt.size(96, 96)
            }
            Label {
                Layout.alignment: Qt.AlignHCenter
                text: App.appName
                font.pixelSize: 28
                font.weight: Font.DemiBold
            }
            Label {
                Layout.alignment: Qt.AlignHCenter
                text: qsTr("Version %1").arg(App.version)
                font.pixelSize: 15
                color: Theme.secondaryText
            }
            Label {
                Layout.fillWidth: true
                Layout.topMargin: 16
                text: qsTr("See and fix what photos and videos say about themselves: dates, places, camera, lens, exposure and every EXIF, TIFF, GPS, IPTC and QuickTime tag.")
                wrapMode: Text.WordWrap
                horizontalAlignment: Text.AlignHCenter
                font.pixelSize: 15
            }
            CreditLabel { text: qsTr("Licensed under %1").arg(App.licence) }

            Heading { text: qsTr("Data") }
            Repeater {
                model: App.dataCredits()
                CreditLabel { required property string modelData; text: modelData }
            }
            Heading { text: qsTr("Libraries") }
            Repeater {
                model: App.libraryCredits()
                CreditLabel { required property string modelData; text: modelData }
            }
            Item { Layout.preferredHeight: 24 }
        }
    }
}
