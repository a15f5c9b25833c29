// SPDX-License-Identifier: GPL-3.0-or-later
#include "Choosers.h"

QList<ChoosingElement> ChooserInputModel::results(const QString& searchText) const {
    if (searchText.isEmpty()) return list;
    QList<ChoosingElement> out;
    for (const ChoosingElement& e : list)
        if (e.label.contains(searchText, Qt::CaseInsensitive)) out << e;
    return out;
}

void ChooserInputModel::choose(const std::optional<ChoosingElement>& element) {
    actual = element;
    if (onChoosen) onChoosen(element);
}

int ChooserInputModel::actualIndex() const { return actual ? int(list.indexOf(*actual)) : -1; }
