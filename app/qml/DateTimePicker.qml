// SPDX-License-Identifier: GPL-3.0-or-later
// A date and time picker of wheels: flick or drag them, turn them with the mouse wheel, or focus
// one with Tab and move it with the arrow keys. `withTime` hides the time wheels.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Tessorin

RowLayout {
    id: picker
    property date date: new Date()
    property bool withTime: true
    // The wheel that had the keys when the page last rebuilt this picker (-1: none): a keyboard
    // user keeps turning it, where focus fell out of the page after every step.
    property int focusedWheel: -1
    signal moved(date date)
    signal wheelFocused(int wheel)
    spacing: 0
    height: 160

    function daysIn(year, month) { return new Date(year, month + 1, 0).getDate() }
    function pad(n) { return n < 10 ? "0" + n : "" + n }
    readonly property var monthNames: Array.from({ length: 12 }, (x, i) => Qt.locale().standaloneMonthName(i, Locale.ShortFormat))

    // Set from the date without telling anyone; a wheel the user turns tells.
    property bool settling: false
    onDateChanged: sync()
    Component.onCompleted: {
        sync()
        // Once the rows this picker replaces are gone, or their wheel would keep the keys.
        if (focusedWheel >= 0) Qt.callLater(() => [day, month, year, hour, minute, second][focusedWheel].forceActiveFocus())
    }
    function sync() {
        settling = true
        year.currentIndex = date.getFullYear() - 1900
        month.currentIndex = date.getMonth()
        day.model = daysIn(date.getFullYear(), date.getMonth())
        day.currentIndex = date.getDate() - 1
        hour.currentIndex = date.getHours()
        minute.currentIndex = date.getMinutes()
        second.currentIndex = date.getSeconds()
        settling = false
    }
    function turned() {
        if (settling) return
        const y = year.currentIndex + 1900, m = month.currentIndex
        const d = Math.min(day.currentIndex + 1, daysIn(y, m))
        picker.moved(new Date(y, m, d, hour.currentIndex, minute.currentIndex, second.currentIndex))
    }

    component Wheel: Tumbler {
        id: wheel
        property var texts: null
        // The value of the first entry: days count from 1.
        property int firstValue: 0
        required property int number
        Layout.fillHeight: true
        Layout.fillWidth: true
        Layout.preferredWidth: 40
        visibleItemCount: 5
        focusPolicy: Qt.StrongFocus
        onActiveFocusChanged: if (activeFocus) picker.wheelFocused(number)
        onMovingChanged: if (!moving) picker.turned()
        Keys.onUpPressed: { currentIndex = (currentIndex + count - 1) % count; picker.turned() }
        Keys.onDownPressed: { currentIndex = (currentIndex + 1) % count; picker.turned() }
        WheelHandler {
            onWheel: event => {
                wheel.currentIndex = (wheel.currentIndex + (event.angleDelta.y > 0 ? wheel.count - 1 : 1)) % wheel.count
                picker.turned()
            }
        }
        delegate: Component {
            Label {
                required property int index
                text: wheel.texts ? wheel.texts[index] : picker.pad(index + (wheel.firstValue))
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: 18
                color: wheel.activeFocus && Tumbler.displacement === 0 ? Theme.tint : Theme.text
                opacity: 1.0 - Math.abs(Tumbler.displacement) / (wheel.visibleItemCount / 2)
                // A click picks the entry and gives the wheel the keys.
                TapHandler {
                    onTapped: {
                        wheel.forceActiveFocus()
                        wheel.currentIndex = index
                        picker.turned()
                    }
                }
            }
        }
    }

    Wheel { id: day; number: 0; model: 31; firstValue: 1 }
    Wheel { id: month; number: 1; model: 12; texts: picker.monthNames; Layout.minimumWidth: 64 }
    Wheel { id: year; number: 2; model: 200; texts: Array.from({ length: 200 }, (x, i) => "" + (1900 + i)); Layout.minimumWidth: 64 }
    Wheel { id: hour; number: 3; model: 24; visible: picker.withTime }
    Wheel { id: minute; number: 4; model: 60; visible: picker.withTime }
    Wheel { id: second; number: 5; model: 60; visible: picker.withTime }
}
