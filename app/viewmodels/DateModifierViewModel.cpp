// SPDX-License-Identifier: GPL-3.0-or-later
#include "DateModifierViewModel.h"

#include "Formatter.h"
#include "Recent.h"
#include "TSAsset.h"

#include <QCoreApplication>
#include <QUrl>

DateModifierViewModel::DateModifierViewModel(QObject* parent) : QObject(parent) {}

void DateModifierViewModel::start(const QString& title, TSKey dateType, const std::optional<QDateTime>& wish,
                                  std::shared_ptr<const TSAsset> current,
                                  std::function<void(const QDateTime&, TSKey)> delegate) {
    title_ = title;
    dateType_ = dateType;
    dateFromPicker_ = wish;
    dateFromImage_.reset();
    fromPhotoThumbnail_.clear();
    currentDate_ = current ? current->ddStore().date : std::nullopt;
    pickerOpen_ = false;
    withTime_ = true;
    selected_ = defaultPath;
    delegate_ = std::move(delegate);
    emit changed();
}

namespace {

QString shown(const std::optional<QDateTime>& date) {
    return date ? Formatter::format(*date, Formatter::Style::fullDate) : QStringLiteral("-");
}

QString thumbnailOf(const QString& path) {
    return QStringLiteral("image://thumb/") + QString::fromLatin1(QUrl::toPercentEncoding(path));
}

}  // namespace

QDateTime DateModifierViewModel::pickerDate() const {
    return dateFromPicker_.value_or(currentDate_.value_or(QDateTime::currentDateTime()));
}

QVariantList DateModifierViewModel::sections() const {
    auto row = [this](const QString& kind, const QString& title, const QString& detail, IndexPath path,
                      const QString& image = {}) {
        return QVariantMap{{"kind", kind}, {"title", title}, {"detail", detail}, {"image", image},
                           {"checked", path == selected_}};
    };
    // The own date, with the switch that includes the time beside "Time".
    QVariantList date{row("date", shown(pickerDate()), QCoreApplication::translate("DateModifierViewModel", "Time"), {0, 0})};
    if (pickerOpen_) date << row("picker", {}, {}, {0, 1});
    QVariantList photo{row("action", QCoreApplication::translate("DateModifierViewModel", "From a photo"), {}, {1, 0})};
    if (!fromPhotoThumbnail_.isEmpty()) photo << row("choice", shown(dateFromImage_), {}, {1, 1}, fromPhotoThumbnail_);
    QVariantList current{row("choice", shown(currentDate_), {}, {2, 0})};
    QVariantList recent;
    const auto& dates = recents::dates().arrayList;
    for (int i = 0; i < dates.size(); ++i) recent << row("choice", shown(dates[i]), {}, {3, i});
    return {QVariantMap{{"header", QString()}, {"rows", date}},
            QVariantMap{{"header", QString()}, {"rows", photo}},
            QVariantMap{{"header", QCoreApplication::translate("DateModifierViewModel", "From current photo ")}, {"rows", current}},
            QVariantMap{{"header", recent.isEmpty() ? QString() : QCoreApplication::translate("DateModifierViewModel", "Most recent")}, {"rows", recent}}};
}

void DateModifierViewModel::setWithTime(bool on) {
    if (withTime_ == on) return;
    withTime_ = on;
    emit changed();
}

void DateModifierViewModel::tap(int section, int row) {
    if (section == 0) {
        if (row == 0) pickerOpen_ = !pickerOpen_;
        emit changed();
        return;
    }
    if (section == 1 && row == 0) {
        emit photoPickerRequested();
        return;
    }
    if (section == 1 && fromPhotoThumbnail_.isEmpty()) return;
    if (section == 3 && (row < 0 || row >= recents::dates().arrayList.size())) return;
    if (section < 0 || section > 3) return;
    selected_ = {section, row};
    emit changed();
}

void DateModifierViewModel::setPickerDate(const QDateTime& date) {
    if (!date.isValid()) return;
    // Without the time only the day is the user's; the time stays where it was.
    QDateTime d = date;
    if (!withTime_) d.setTime(pickerDate().time());
    dateFromPicker_ = d;
    selected_ = {0, 0};
    emit changed();
}

void DateModifierViewModel::choosePhoto(const QString& picked) {
    const QString path = picked.startsWith(QLatin1String("file:")) ? QUrl(picked).toLocalFile() : picked;
    dateFromImage_.reset();
    fromPhotoThumbnail_.clear();
    if (!path.isEmpty()) {
        const TSAsset picked(path);
        if (!picked.readError()) {
            dateFromImage_ = picked.ddStore().date;
            fromPhotoThumbnail_ = thumbnailOf(path);
            selected_ = {1, 1};
        }
    }
    if (fromPhotoThumbnail_.isEmpty() && selected_.section == 1) selected_ = defaultPath;
    emit changed();
}

std::optional<QDateTime> DateModifierViewModel::chosenDate() const {
    switch (selected_.section) {
    case 0: return dateFromPicker_;
    case 1: return dateFromImage_;
    case 2: return currentDate_;
    default: {
        const auto& dates = recents::dates().arrayList;
        if (selected_.row < dates.size()) return dates[selected_.row];
        return std::nullopt;
    }
    }
}

void DateModifierViewModel::leave() {
    if (!delegate_) return;
    delegate_(chosenDate().value_or(QDateTime::currentDateTime()), dateType_);
}
