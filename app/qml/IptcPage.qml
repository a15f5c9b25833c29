// SPDX-License-Identifier: GPL-3.0-or-later
// The IPTC screen of an edit: fields in five sections, the creator contact form, the template
// form and the two pick lists. Every rule is the view model's (`editor`).
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

Page {
    id: page
    required property var editor
    property int chosenRow: -1

    header: NavigationBar {
        title: qsTr("IPTC")
        leading: ToolButton { icon.source: "qrc:/icons/chevron.left.svg"; icon.color: Theme.tint; Accessible.name: qsTr("Back"); onClicked: page.StackView.view.pop() }
        ToolButton {
            icon.source: "qrc:/icons/ellipsis.svg"
            Accessible.name: qsTr("IPTC Template")
            icon.color: Theme.tint
            onClicked: templateMenu.open()
            Menu {
                id: templateMenu
                title: qsTr("IPTC Template")
                MenuItem { text: qsTr("Edit..."); onTriggered: { page.editor.editTemplate(); templateForm.open() } }
                MenuItem { text: qsTr("Apply"); onTriggered: page.editor.applyTemplate() }
            }
        }
    }

    ListView {
        id: list
        anchors.fill: parent
        clip: true
        model: page.editor
        section.property: "section"
        section.delegate: Label {
            required property string section
            text: section.toUpperCase()
            leftPadding: 16; topPadding: 18; bottomPadding: 6
            font.pixelSize: 13
            color: Theme.secondaryText
        }
        delegate: Loader {
            id: cell
            required property int index
            required property string title
            required property string value
            required property string placeholder
            required property string kind
            required property bool dimmed
            width: ListView.view.width
            sourceComponent: kind === "text" && !page.editor.isCountryCode(index) || kind === "list" ? textCell : choiceCell
        }
        footer: Label {
            width: list.width
            padding: 16
            text: page.editor ? page.editor.footer : ""
            textFormat: Text.MarkdownText
            wrapMode: Text.WordWrap
            font.pixelSize: 12
            color: Theme.secondaryText
            onLinkActivated: link => Qt.openUrlExternally(link)
        }
    }

    Component {
        id: textCell
        ColumnLayout {
            spacing: 2
            Label { Layout.leftMargin: 16; Layout.topMargin: 8; text: parent.parent.title; font.pixelSize: 13; color: Theme.secondaryText }
            TextArea {
                Layout.fillWidth: true
                Accessible.name: parent.parent.title
                Layout.leftMargin: 12; Layout.rightMargin: 12
                text: parent.parent.value
                placeholderText: parent.parent.placeholder
                wrapMode: TextEdit.Wrap
                onEditingFinished: page.editor.setText(parent.parent.index, text)
            }
        }
    }

    Component {
        id: choiceCell
        FormRow {
            id: choice
            readonly property var row: parent
            Accessible.name: [row.title, row.value || ""].filter(t => t !== "").join(", ")
            padding: 12
            contentItem: ColumnLayout {
                Label { text: choice.row.title; font.pixelSize: 15 }
                Label {
                    Layout.fillWidth: true
                    text: choice.row.value
                    wrapMode: Text.WordWrap
                    font.pixelSize: 13
                    color: choice.row.dimmed ? Theme.secondaryText : Theme.text
                }
            }
            onClicked: {
                page.chosenRow = choice.row.index
                if (choice.row.kind === "group") contactForm.open()
                else if (choice.row.kind === "options") optionsChooser.open()
                else listChooser.open()
            }
        }
    }

    // The options chooser: every option, the retired ones marked, the chosen one checked.
    Popup {
        id: optionsChooser
        objectName: "optionsChooser"
        anchors.centerIn: parent
        width: page.width - 24; height: page.height - 80
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground {}
        ListView {
            anchors.fill: parent
            clip: true
            model: optionsChooser.opened ? page.editor.options(page.chosenRow) : []
            delegate: FormRow {
                required property var modelData
                width: ListView.view.width
                contentItem: RowLayout {
                    ColumnLayout {
                        Layout.fillWidth: true
                        Label { Layout.fillWidth: true; text: modelData.title; font.weight: Font.DemiBold; wrapMode: Text.WordWrap }
                        Label { Layout.fillWidth: true; text: modelData.details; font.pixelSize: 12; wrapMode: Text.WordWrap }
                        Label { Layout.fillWidth: true; visible: text !== ""; text: modelData.note; font.pixelSize: 12; wrapMode: Text.WordWrap; color: Theme.secondaryText }
                    }
                    Label { text: "✓"; color: Theme.tint; visible: modelData.id === page.editor.currentId(page.chosenRow) }
                }
                onClicked: { page.editor.choose(page.chosenRow, modelData.id); optionsChooser.close() }
            }
        }
    }

    // The list chooser of the country code, with its search and "None".
    Popup {
        id: listChooser
        objectName: "listChooser"
        anchors.centerIn: parent
        width: page.width - 24; height: page.height - 80
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground {}
        ColumnLayout {
            anchors.fill: parent
            Label { text: qsTr("Country Code"); font.weight: Font.DemiBold }
            TextField { id: search; Layout.fillWidth: true; placeholderText: qsTr("Search") }
            PlainSwitch {
                id: none
                text: qsTr("None")
                onToggled: if (checked) { page.editor.choose(page.chosenRow, ""); listChooser.close() }
            }
            ListView {
                Layout.fillWidth: true; Layout.fillHeight: true
                clip: true
                visible: !none.checked
                model: listChooser.opened ? page.editor.countries(search.text) : []
                delegate: FormRow {
                    required property var modelData
                    width: ListView.view.width
                    text: modelData.label + (modelData.id !== "" && modelData.id === page.editor.currentId(page.chosenRow) ? "  ✓" : "")
                    onClicked: { page.editor.choose(page.chosenRow, modelData.id); listChooser.close() }
                }
            }
        }
    }

    // The creator contact group as its own form.
    Popup {
        id: contactForm
        objectName: "contactForm"
        anchors.centerIn: parent
        width: page.width - 24; height: page.height - 80
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground {}
        onClosed: page.forceActiveFocus()
        ColumnLayout {
            anchors.fill: parent
            Label { text: page.editor ? page.editor.contactTitle : ""; font.weight: Font.DemiBold }
            ListView {
                Layout.fillWidth: true; Layout.fillHeight: true
                clip: true
                model: contactForm.opened ? page.editor.contactRows() : []
                delegate: ColumnLayout {
                    required property var modelData
                    required property int index
                    width: ListView.view.width
                    Label { text: modelData.title; font.pixelSize: 13; color: Theme.secondaryText }
                    TextField {
                        Layout.fillWidth: true
                        Accessible.name: modelData.title
                        text: modelData.value
                        placeholderText: modelData.placeholder
                        onEditingFinished: page.editor.setContactText(index, text)
                    }
                }
            }
        }
    }

    // The template form: "Template", with "Cancel" and "Done".
    Popup {
        id: templateForm
        objectName: "templateForm"
        anchors.centerIn: parent
        width: page.width; height: page.height
        modal: true
        Overlay.modal: Dimmer {}
        background: CardBackground {}
        ColumnLayout {
            anchors.fill: parent
            RowLayout {
                Button { text: qsTr("Cancel"); flat: true; onClicked: { page.editor.finishTemplate(false); templateForm.close() } }
                Label { Layout.fillWidth: true; text: qsTr("Template"); horizontalAlignment: Text.AlignHCenter; font.weight: Font.DemiBold }
                Button { text: qsTr("Done"); flat: true; onClicked: { page.editor.finishTemplate(true); templateForm.close() } }
            }
            ListView {
                Layout.fillWidth: true; Layout.fillHeight: true
                clip: true
                model: templateForm.opened ? page.editor.templateRows() : []
                delegate: ColumnLayout {
                    required property var modelData
                    width: ListView.view.width
                    Label {
                        visible: modelData.header !== ""
                        text: modelData.header.toUpperCase(); topPadding: 12; font.pixelSize: 13; color: Theme.secondaryText
                    }
                    TextField {
                        Layout.fillWidth: true
                        Accessible.name: modelData.title
                        text: modelData.value
                        placeholderText: modelData.placeholder
                        onEditingFinished: page.editor.setTemplateValue(modelData.key, text)
                    }
                }
            }
        }
    }
}
