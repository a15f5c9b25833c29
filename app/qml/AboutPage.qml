// The app's name and version, and the credits for the data it ships.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    header: NavigationBar {
        title: qsTr("About")
        showBack: true
    }

    ColumnLayout {
        anchors.top: parent.top
        anchors.topMargin: 40
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(parent.width - 48, 420)
        spacing: 12

        Image {
            Layout.alignment: Qt.AlignHCenter
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
        Label {
            Layout.fillWidth: true
            Layout.topMargin: 16
            text: qsTr("Place names: GeoNames (geonames.org), licensed under CC BY 4.0.")
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 13
            color: Theme.secondaryText
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("Digital source types: IPTC NewsCodes (iptc.org), IPTC, licensed under CC BY 4.0.")
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 13
            color: Theme.secondaryText
        }
    }
}
