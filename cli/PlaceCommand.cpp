// SPDX-License-Identifier: GPL-3.0-or-later
// Places by position and by name, from the offline place data (and the online service when the
// settings name one).
#include "Arguments.h"
#include "Commands.h"
#include "JsonOutput.h"

#include "HRLocation.h"
#include "PlaceIndex.h"
#include "TSGeocoder.h"

#include <QCoro/QCoroTask>

namespace {

QJsonObject placemarkJson(const Placemark& p) {
    QJsonObject out;
    const std::pair<const char*, const std::optional<QString>*> fields[]{
        {"subLocality", &p.subLocality},   {"locality", &p.locality},       {"administrativeArea", &p.administrativeArea},
        {"country", &p.country},           {"ISOcountryCode", &p.ISOcountryCode}, {"thoroughfare", &p.thoroughfare},
        {"subThoroughfare", &p.subThoroughfare}, {"postalCode", &p.postalCode}};
    for (const auto& [name, value] : fields)
        if (*value && !(*value)->isEmpty()) out.insert(name, **value);
    return out;
}

int searchPlaces(const QString& text, cli::JsonOutput& out) {
    auto index = PlaceIndex::shared();
    if (!index) {
        printError("tessorin-cli place: no place data (" + PlaceIndex::defaultPath() + ")\n");
        return 1;
    }
    for (const PlaceMatch& m : index->search(text, 10)) {
        const Placemark& p = m.placemark;
        if (out.on()) {
            QJsonObject entry = placemarkJson(p);
            entry.insert("latitude", m.coordinate.latitude);
            entry.insert("longitude", m.coordinate.longitude);
            out.add(entry);
            continue;
        }
        QStringList parts;
        for (const auto& t : {p.subLocality, p.locality, p.administrativeArea, p.country})
            if (t && !t->isEmpty()) parts << *t;
        QString line = parts.join(", ");
        if (p.ISOcountryCode) line += " (" + *p.ISOcountryCode + ")";
        line += QStringLiteral("  %1 %2\n").arg(m.coordinate.latitude, 0, 'f', 5).arg(m.coordinate.longitude, 0, 'f', 5);
        printOut(line);
    }
    out.print();
    return 0;
}

}  // namespace

int placeCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("place", rawArgs, cli::jsonOptions + QList<cli::Option>{{"--search", "", true}}, args))
        return *rc;
    cli::JsonOutput out(args);
    if (args.has("--search")) {
        const QString text = (QStringList{args.value("--search")} + args.operands).join(' ').trimmed();
        if (text.isEmpty()) return cli::usageError("place", "--search needs a text");
        return searchPlaces(text, out);
    }
    QString text = args.operands.join(' ').trimmed();
    while (text.startsWith(u',')) text = text.mid(1).trimmed();
    while (text.endsWith(u',')) text = text.chopped(1).trimmed();
    std::optional<GeoLocation> loc = hrl::degreesLocation(text);
    if (!loc) loc = hrl::decimalLocation(text);
    if (text.isEmpty()) return cli::usageError("place", "no position given");
    if (!loc) return cli::usageError("place", "'" + text + "' is no position");
    // The same road as the detail screen's: cache, one-request rule, GeocoderActor.
    const std::optional<QList<Placemark>> placemarks = QCoro::waitFor(TSGeocoder::reverse(*loc));
    if (!placemarks) {
        printError("tessorin-cli place: the geocoder gave no answer\n");
        return 1;
    }
    if (out.on()) {
        // At sea, or nowhere near a known place, the array is empty.
        if (!placemarks->isEmpty()) {
            const Placemark& p = placemarks->first();
            QJsonObject entry = placemarkJson(p);
            entry.insert("latitude", loc->coordinate.latitude);
            entry.insert("longitude", loc->coordinate.longitude);
            entry.insert("place", placeText(p));
            entry.insert("address", addressText(p));
            out.add(entry);
        }
        out.print();
        return 0;
    }
    if (placemarks->isEmpty()) {
        printOut("--\n");  // open sea, or nowhere near a known place
        return 0;
    }
    printOut(placeText(placemarks->first()) + "\n" + addressText(placemarks->first()) + "\n");
    return 0;
}
