// Places by position and by name, from the offline place data (and the online service when the
// settings name one).
#include "Commands.h"

#include "HRLocation.h"
#include "PlaceIndex.h"
#include "TSGeocoder.h"

#include <QCoro/QCoroTask>

namespace {

int searchPlaces(const QString& text) {
    auto index = PlaceIndex::shared();
    if (!index) {
        printError("tessorin-cli place: no place data (" + PlaceIndex::defaultPath() + ")\n");
        return 1;
    }
    for (const PlaceMatch& m : index->search(text, 10)) {
        const Placemark& p = m.placemark;
        QStringList parts;
        for (const auto& t : {p.subLocality, p.locality, p.administrativeArea, p.country})
            if (t && !t->isEmpty()) parts << *t;
        QString line = parts.join(", ");
        if (p.ISOcountryCode) line += " (" + *p.ISOcountryCode + ")";
        line += QStringLiteral("  %1 %2\n").arg(m.coordinate.latitude, 0, 'f', 5).arg(m.coordinate.longitude, 0, 'f', 5);
        printOut(line);
    }
    return 0;
}

}  // namespace

int placeCommand(const QStringList& args) {
    if (args.value(0) == "--search") {
        const QString text = args.mid(1).join(' ').trimmed();
        if (text.isEmpty()) {
            printError("usage: tessorin-cli place --search TEXT\n");
            return 2;
        }
        return searchPlaces(text);
    }
    QString text = args.join(' ').trimmed();
    while (text.startsWith(u',')) text = text.mid(1).trimmed();
    while (text.endsWith(u',')) text = text.chopped(1).trimmed();
    std::optional<GeoLocation> loc = hrl::degreesLocation(text);
    if (!loc) loc = hrl::decimalLocation(text);
    if (text.isEmpty() || !loc) {
        printError("usage: tessorin-cli place LAT LON | place --search TEXT\n");
        return 2;
    }
    // The same road as the detail screen's: cache, one-request rule, GeocoderActor.
    const std::optional<QList<Placemark>> placemarks = QCoro::waitFor(TSGeocoder::reverse(*loc));
    if (!placemarks) {
        printError("tessorin-cli place: the geocoder gave no answer\n");
        return 1;
    }
    if (placemarks->isEmpty()) {
        printOut("--\n");  // open sea, or nowhere near a known place
        return 0;
    }
    printOut(placeText(placemarks->first()) + "\n" + addressText(placemarks->first()) + "\n");
    return 0;
}
