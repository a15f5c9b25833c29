// SPDX-License-Identifier: GPL-3.0-or-later
#include "IsoCountries.h"

#include <algorithm>

namespace {

struct Row {
    const char *name, *numeric, *alpha2, *alpha3, *calling, *currency, *continent;
    int fractionDigits;
};

const Row rows[] = {
#include "IsoCountryTable.inc"
};

// Case and accents folded: "Åland" and "aland" compare equal.
QString folded(const QString& s) {
    QString out;
    for (QChar ch : s.normalized(QString::NormalizationForm_D))
        if (ch.category() != QChar::Mark_NonSpacing) out += ch;
    return out.toCaseFolded();
}

}  // namespace

namespace IsoCountries {

const QList<IsoCountryInfo>& allCountries() {
    static const QList<IsoCountryInfo> all = [] {
        QList<IsoCountryInfo> out;
        for (const Row& r : rows)
            out << IsoCountryInfo{QString::fromUtf8(r.name), r.numeric, r.alpha2, r.alpha3,
                                  r.calling, r.currency, r.continent, r.fractionDigits};
        return out;
    }();
    return all;
}

}  // namespace IsoCountries

namespace IsoCountryCodes {

IsoCountryInfo find(const QString& key) {
    const QString upper = key.toUpper();
    const auto& all = IsoCountries::allCountries();
    for (const auto& c : all)
        if (c.alpha2 == upper) return c;
    for (const auto& c : all)
        if (c.alpha3 == upper) return c;
    for (const auto& c : all)
        if (c.numeric == key) return c;
    return {};
}

QList<IsoCountryInfo> searchByName(const QString& text) {
    const QString needle = folded(text);
    QList<IsoCountryInfo> out;
    for (const auto& c : IsoCountries::allCountries())
        if (folded(c.name) == needle) out << c;
    return out;
}

QString flag(const QString& alpha2) {
    const QString upper = alpha2.toUpper();
    if (upper.isEmpty() || !std::all_of(upper.begin(), upper.end(), [](QChar c) { return c >= 'A' && c <= 'Z'; }))
        return QStringLiteral("-");
    QString out;
    for (QChar ch : upper) {
        const char32_t indicator = 0x1F1E6 + (ch.unicode() - 'A');
        out += QString::fromUcs4(&indicator, 1);
    }
    return out;
}

QList<ChoosingElement> countryElements() {
    QList<ChoosingElement> out;
    for (const auto& c : IsoCountries::allCountries())
        out << ChoosingElement{flag(c.alpha2) + ' ' + c.alpha3 + ' ' + c.name, c.alpha3};
    return out;
}

}  // namespace IsoCountryCodes
