// SPDX-License-Identifier: GPL-3.0-or-later
#include "Recent.h"

#include "Settings.h"

#include <QTimeZone>

namespace recents {
namespace {

QString dateKey(int i) { return QStringLiteral("dt_%1").arg(i); }
QString locationKey(int i) { return QStringLiteral("loc_%1").arg(i); }

}  // namespace

Recent<QDateTime>& dates() {
    static Recent<QDateTime> list(5);
    return list;
}

Recent<HRLocation>& locations() {
    static Recent<HRLocation> list(5);
    return list;
}

void loadRecents() {
    dates().arrayList.clear();
    locations().arrayList.clear();
    for (int i = 0; i < dates().maxCounter; ++i) {
        const QVariant v = Settings::value(dateKey(i));
        if (!v.isValid()) continue;
        dates().add(QDateTime::fromMSecsSinceEpoch(qint64(v.toDouble() * 1000), QTimeZone::utc()));
    }
    for (int i = 0; i < locations().maxCounter; ++i) {
        const QVariant v = Settings::value(locationKey(i));
        if (!v.isValid()) continue;
        if (auto h = HRLocation::fromJsonBytes(v.toByteArray())) locations().add(*h);
    }
}

void saveRecents(const std::optional<QDateTime>& date, const std::optional<QDateTime>& digitizedDate,
                 const std::optional<HRLocation>& location) {
    if (date) dates().add(*date);
    if (digitizedDate && digitizedDate != date) dates().add(*digitizedDate);
    if (date || digitizedDate) {
        int i = 0;
        for (const QDateTime& d : dates()) Settings::setValue(dateKey(i++), d.toMSecsSinceEpoch() / 1000.0);
    }
    if (!location) return;
    if (!location->location && (!location->title || *location->title == "--")) return;
    locations().add(*location);
    int i = 0;
    for (const HRLocation& h : locations()) Settings::setValue(locationKey(i++), h.toJsonBytes());
}

}  // namespace recents
