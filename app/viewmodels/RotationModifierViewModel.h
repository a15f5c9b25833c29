// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The orientation screen of an edit: the eight orientations, each with its meaning and a small
// picture, one checked. Leaving hands the checked one over unless it is the photo's own.
#include <QObject>
#include <QVariantList>
#include <functional>
#include <optional>

class RotationModifierViewModel : public QObject {
    Q_OBJECT
    // [{title, image, checked}] for the values 1 to 8.
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY changed)
public:
    explicit RotationModifierViewModel(QObject* parent = nullptr);

    // A new visit: the photo's own orientation starts checked; `delegate` gets a different choice.
    void start(std::optional<int> initialOrientation, std::function<void(int)> delegate);

    QVariantList rows() const;
    int selectedRow() const { return selectedRow_; }
    Q_INVOKABLE void tap(int row);
    Q_INVOKABLE void leave();

    // "Horizontal (normal)" and the like, or "Unknown".
    static QString meaning(int orientation);

signals:
    void changed();

private:
    std::optional<int> initial_;
    int selectedRow_ = 0;
    std::function<void(int)> delegate_;
};
