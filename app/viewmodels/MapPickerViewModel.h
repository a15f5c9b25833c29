// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The map picker: a long press (or a right click) or a search puts the pin, "Done" names the
// pin's place and hands it back to the location screen.
#include "HRLocation.h"

#include <QObject>
#include <QVariantList>
#include <QVariantMap>
#include <functional>
#include <optional>

class MapPickerViewModel : public QObject {
    Q_OBJECT
    // {latitude, longitude, title} of the pin; empty before one is placed.
    Q_PROPERTY(QVariantMap pin READ pin NOTIFY pinChanged)
    // Several answers to a search, for the user to choose from: [{title, subtitle}].
    Q_PROPERTY(QVariantList choices READ choices NOTIFY choicesChanged)
public:
    static constexpr char selectedTitle[] = "Selected location";
    static constexpr char nothingTitle[] = "Found nothing";
    static constexpr char nothingMessage[] =
        "No location found (be aware that an internet connection is required for the search)";

    explicit MapPickerViewModel(QObject* parent = nullptr) : QObject(parent) {}

    std::function<void(const HRLocation&)> locationDelegate;

    QVariantMap pin() const;
    const std::optional<HRLocation>& curAnnotation() const { return curAnnotation_; }
    QVariantList choices() const;

    Q_INVOKABLE void longPress(double latitude, double longitude);
    Q_INVOKABLE void search(const QString& text);
    Q_INVOKABLE void choose(int index);
    Q_INVOKABLE void cancelChoices();
    // Names the pin's place, then hands it to the delegate (done() follows).
    Q_INVOKABLE void finish();

signals:
    void pinChanged();
    void choicesChanged();
    void alert(const QString& title, const QString& message);
    void done();

private:
    void setPin(const HRLocation& location);
    // A search's answer: an alert for none, the pin for one, a list to choose from for more.
    void showFound(const QList<HRLocation>& found);

    std::optional<HRLocation> curAnnotation_;
    QList<HRLocation> searchedLocations_;
    quint64 searches_ = 0;  // an answer to an older search is dropped
};
