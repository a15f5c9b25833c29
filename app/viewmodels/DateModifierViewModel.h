// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The date screen of an edit: the user's own date from the picker, a date taken from another
// photo, the current item's date, or a recent date. The chosen row's date is handed over when the
// screen is left; there is no confirm button.
#include "TSKey.h"

#include <QDateTime>
#include <QObject>
#include <QVariantList>
#include <functional>
#include <optional>

class TSAsset;

class DateModifierViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY changed)
    // [{header, rows: [{kind, title, detail, image, checked}]}]; kind is "date", "picker", "action" or "choice".
    Q_PROPERTY(QVariantList sections READ sections NOTIFY changed)
    Q_PROPERTY(bool withTime READ withTime WRITE setWithTime NOTIFY changed)
    Q_PROPERTY(QDateTime pickerDate READ pickerDate NOTIFY changed)
public:
    struct IndexPath {
        int section = 0, row = 0;
        bool operator==(const IndexPath&) const = default;
    };
    // Untouched, the screen hands back the current item's own date.
    static constexpr IndexPath defaultPath{2, 0};

    explicit DateModifierViewModel(QObject* parent = nullptr);

    // A new visit: the row's title, the tag it sets, the present wish (the picker starts there),
    // the current item, and where the chosen date goes.
    void start(const QString& title, TSKey dateType, const std::optional<QDateTime>& wish,
               std::shared_ptr<const TSAsset> current, std::function<void(const QDateTime&, TSKey)> delegate);

    QString title() const { return title_; }
    QVariantList sections() const;
    bool withTime() const { return withTime_; }
    void setWithTime(bool on);
    QDateTime pickerDate() const;
    IndexPath selectedPath() const { return selected_; }

    // A row tapped: the date row opens or closes the picker, "From a photo" asks for a photo,
    // any other row becomes the chosen one.
    Q_INVOKABLE void tap(int section, int row);
    // The picker moved: its date becomes the chosen one.
    Q_INVOKABLE void setPickerDate(const QDateTime& date);
    // The photo picked for "From a photo"; an empty path clears it.
    Q_INVOKABLE void choosePhoto(const QString& path);
    // Leaving: the chosen row's date, or the present moment when it has none, goes to the delegate.
    Q_INVOKABLE void leave();
    // The date leaving would hand over.
    std::optional<QDateTime> chosenDate() const;

signals:
    void changed();
    void photoPickerRequested();

private:
    QString title_;
    TSKey dateType_ = TSKey::EXIF_DATE;
    std::optional<QDateTime> dateFromPicker_, dateFromImage_, currentDate_;
    QString fromPhotoThumbnail_;
    bool pickerOpen_ = false;
    bool withTime_ = true;
    IndexPath selected_ = defaultPath;
    std::function<void(const QDateTime&, TSKey)> delegate_;
};
