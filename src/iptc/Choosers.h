// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The model behind the long pick list: entries, the one chosen, a search over the labels.
#include "IsoCountries.h"

#include <functional>
#include <optional>

class ChooserInputModel {
public:
    std::optional<ChoosingElement> actual;
    QList<ChoosingElement> list;
    QString title;
    std::function<void(const std::optional<ChoosingElement>&)> onChoosen;

    // The entries whose label holds the text, ignoring case; all for no text.
    QList<ChoosingElement> results(const QString& searchText) const;
    // A tap on a row, or "None" with nothing: the choice is kept and handed on.
    void choose(const std::optional<ChoosingElement>& element);
    // The row the list scrolls to when it opens; -1 for none.
    int actualIndex() const;
};
