// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The table of countries behind the "Country Code" pick list, and the entries of the long
// pick lists.
#include <QList>
#include <QString>

struct IsoCountryInfo {
    QString name;
    QString numeric;
    QString alpha2;
    QString alpha3;
    QString calling;
    QString currency;
    QString continent;
    int fractionDigits = 0;

    friend bool operator==(const IsoCountryInfo&, const IsoCountryInfo&) = default;
};

namespace IsoCountries {
// 251 rows in alphabetical order of name, then "World" and "European Union".
const QList<IsoCountryInfo>& allCountries();
}  // namespace IsoCountries

namespace IsoCountryCodes {
// The first row whose alpha2, else alpha3, equals the upper-cased text, else whose numeric equals
// the text as given; an empty row when none does.
IsoCountryInfo find(const QString& key);
// The rows whose name equals the text, ignoring case and accents.
QList<IsoCountryInfo> searchByName(const QString& text);
// The flag of an alpha-2 code in regional indicator letters; "-" for no code or one that is no letters.
QString flag(const QString& alpha2);
}  // namespace IsoCountryCodes

// An entry of a long pick list.
struct ChoosingElement {
    QString label;
    QString id;
    friend bool operator==(const ChoosingElement&, const ChoosingElement&) = default;
};

namespace IsoCountryCodes {
// "flag alpha3 name" for every row, with alpha3 as the id.
QList<ChoosingElement> countryElements();
}  // namespace IsoCountryCodes
