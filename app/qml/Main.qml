// SPDX-License-Identifier: GPL-3.0-or-later
// The window. A phone-sized one stacks album list, group and detail; a wider one keeps the
// browsing column on the left and the detail beside it. The stack follows App's signals.
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Material
import QtQuick.Layouts
import Tessorin

ApplicationWindow {
    id: window
    width: 390
    height: 844
    visible: true
    title: App.appName
    color: Theme.background
    // The controls follow the desktop's light or dark scheme, or the user's choice in the settings.
    Material.theme: Theme.dark ? Material.Dark : Material.Light
    Material.accent: Theme.tint

    onWidthChanged: App.setWindowWidth(width)
    Component.onCompleted: App.setWindowWidth(width)

    Component { id: albumsPage; AlbumListPage {} }
    Component { id: groupPage; GroupPage {} }
    Component { id: detailPage; DetailPage {} }
    Component { id: settingsPage; SettingsPage {} }
    Component { id: aboutPage; AboutPage {} }
    readonly property var pages: ({ "albums": albumsPage, "group": groupPage, "detail": detailPage,
                                    "settings": settingsPage, "about": aboutPage })

    RowLayout {
        anchors.fill: parent
        spacing: 0
        // Keys that no screen took: Escape goes back; beside the list, the arrows page the detail.
        Keys.onEscapePressed: App.back()
        Keys.onLeftPressed: event => { if (App.pad) Detail.previous(); else event.accepted = false }
        Keys.onRightPressed: event => { if (App.pad) Detail.next(); else event.accepted = false }

        StackView {
            id: stack
            Layout.fillHeight: true
            Layout.fillWidth: !App.pad
            Layout.preferredWidth: App.pad ? 360 : window.width
            initialItem: albumsPage
            focus: true
        }
        Rectangle {
            visible: App.pad
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            color: Theme.separator
        }
        Loader {
            active: App.pad
            visible: App.pad
            Layout.fillWidth: true
            Layout.fillHeight: true
            sourceComponent: detailPage
        }
    }

    LibraryDialogs {}
    FocusRing { window: window }

    // The edit screen, over everything; Ctrl+E opens it on the item in view.
    EditScreen {}
    Shortcut {
        sequence: "Ctrl+E"
        enabled: !Edit.active
        onActivated: ToolBar.edit()
    }
    // The detail's tools from the keyboard: Delete asks before it trashes, F marks a favourite.
    Shortcut {
        sequences: [StandardKey.Delete]
        enabled: !Edit.active && ToolBar.tools.indexOf("delete") >= 0 && (App.pad || App.screens.indexOf("detail") >= 0)
        onActivated: ToolBar.requestDelete()
    }
    Shortcut {
        sequence: "F"
        enabled: !Edit.active && ToolBar.tools.indexOf("prefer") >= 0 && (App.pad || App.screens.indexOf("detail") >= 0)
        onActivated: ToolBar.favorite()
    }
    Shortcut {
        sequences: [StandardKey.FullScreen]
        onActivated: window.visibility = window.visibility === Window.FullScreen ? Window.AutomaticVisibility : Window.FullScreen
    }

    // The style draws a popup's card through a shadow effect that the software renderer leaves
    // out, card and all: a dialog (Qt's file dialogs too, which take no background of ours) would
    // show its text over the screen behind. There the card goes without its shadow.
    Item {
        id: plainCards
        readonly property bool software: GraphicsInfo.api === GraphicsInfo.Software
        function flatten() {
            const items = Overlay.overlay.children
            for (let i = 0; i < items.length; ++i) {
                const card = items[i].background
                if (!card || !card.layer.enabled) continue
                card.layer.enabled = false
                // An edge in place of the shadow, as our own cards have.
                if (card.border) card.border.color = Theme.separator
            }
        }
        // The renderer is known once the window is shown, maybe after the first popup opened.
        onSoftwareChanged: if (software) flatten()
        Connections {
            target: plainCards.software ? plainCards.Overlay.overlay : null
            function onChildrenChanged() { plainCards.flatten() }
        }
    }

    Connections {
        target: App
        function onPushed(screen) { stack.push(window.pages[screen]) }
        function onPopped(screen) { stack.pop() }
        function onRootRebuilt() { stack.pop(null) }
    }
}
