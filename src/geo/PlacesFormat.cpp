// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlacesFormat.h"

#include <cmath>

namespace places {

QString fold(const QString& text) {
    const QString decomposed = text.normalized(QString::NormalizationForm_KD);
    QString out;
    out.reserve(decomposed.size());
    bool gap = false;
    auto put = [&](QStringView s) {
        if (gap && !out.isEmpty()) out += u' ';
        gap = false;
        out += s;
    };
    for (const QChar c : decomposed) {
        const auto cat = c.category();
        if (cat == QChar::Mark_NonSpacing || cat == QChar::Mark_SpacingCombining || cat == QChar::Mark_Enclosing) continue;
        // Apostrophes join: "L'Aquila" is searched as "laquila" as well as typed "l'aquila".
        if (c == u'\'' || c == u'\u2019' || c == u'\u02BC' || c == u'`') continue;
        if (!c.isLetterOrNumber()) {
            gap = true;
            continue;
        }
        switch (c.unicode()) {
        case 0x00DF: put(u"ss"); continue;  // ß
        case 0x00C6: case 0x00E6: put(u"ae"); continue;
        case 0x0152: case 0x0153: put(u"oe"); continue;
        case 0x00D8: case 0x00F8: put(u"o"); continue;
        case 0x0141: case 0x0142: put(u"l"); continue;
        case 0x0110: case 0x0111: case 0x00D0: case 0x00F0: put(u"d"); continue;
        case 0x00DE: case 0x00FE: put(u"th"); continue;
        case 0x0131: put(u"i"); continue;  // dotless i
        case 0x0126: case 0x0127: put(u"h"); continue;
        default: break;
        }
        const QChar lower = c.toCaseFolded();
        put(QStringView(&lower, 1));
    }
    return out;
}

void unitVector(double latitude, double longitude, float out[3]) {
    constexpr double rad = M_PI / 180.0;
    const double la = latitude * rad, lo = longitude * rad;
    out[0] = float(std::cos(la) * std::cos(lo));
    out[1] = float(std::cos(la) * std::sin(lo));
    out[2] = float(std::sin(la));
}

}  // namespace places
