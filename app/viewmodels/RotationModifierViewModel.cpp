// SPDX-License-Identifier: GPL-3.0-or-later
#include "RotationModifierViewModel.h"

#include "ModuleTexts.h"
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"

#include <QCoreApplication>

RotationModifierViewModel::RotationModifierViewModel(QObject* parent) : QObject(parent) {}

void RotationModifierViewModel::start(std::optional<int> initialOrientation, std::function<void(int)> delegate) {
    initial_ = initialOrientation;
    selectedRow_ = initialOrientation && *initialOrientation >= 1 && *initialOrientation <= 8 ? *initialOrientation - 1 : 0;
    delegate_ = std::move(delegate);
    emit changed();
}

QString RotationModifierViewModel::meaning(int orientation) {
    const bool human = Settings::flag(SettingsFlag::human);
    const QString m = TSMeanings::shared().meaning(kCGImagePropertyTIFFOrientation, qint64(orientation), true);
    const QString text = m == QLatin1String("-vv-") || m == QString::number(orientation) ? QCoreApplication::translate("RotationModifierViewModel", "Unknown") : m;
    return moduletexts::tagValue(QString::fromLatin1(kCGImagePropertyTIFFOrientation), TSMeanings::valueText(text, human).value_or(text));
}

QVariantList RotationModifierViewModel::rows() const {
    QVariantList out;
    for (int row = 0; row < 8; ++row)
        out << QVariantMap{{"title", meaning(row + 1)},
                           {"image", QStringLiteral("qrc:/icons/o%1.svg").arg(row + 1)},
                           {"checked", row == selectedRow_}};
    return out;
}

void RotationModifierViewModel::tap(int row) {
    if (row < 0 || row >= 8) return;
    selectedRow_ = row;
    emit changed();
}

void RotationModifierViewModel::leave() {
    const int value = selectedRow_ + 1;
    // The photo's own orientation is no wish: an earlier, different wish stays.
    if (initial_ && *initial_ == value) return;
    if (delegate_) delegate_(value);
}
