// SPDX-License-Identifier: GPL-3.0-or-later
// Makes the country table of the IPTC pick lists, as C++ initialisers, from three sources:
//   - our list (src/iptc/data/countries.txt): the rows, their names and order, the dialling codes,
//     and whole rows whose old or special values are kept as they stand;
//   - iso-codes (Debian): ISO 3166-1 numeric and alpha-2 codes by alpha-3;
//   - CLDR (Debian's unicode-cldr-core): each territory's current currency, the currency's minor
//     unit, and the continent the territory lies in.
// Usage: make-countries LIST ISO_3166_JSON CLDR_SUPPLEMENTAL_XML OUTPUT
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTextStream>
#include <QXmlStreamReader>

#include <cstdio>

namespace {

struct Cldr {
    QHash<QString, QString> currency;   // territory → current legal tender
    QHash<QString, int> digits;         // currency → minor unit; "DEFAULT" for the rest
    QHash<QString, QString> parent;     // territory or region → the region that holds it
};

Cldr readCldr(QIODevice& device) {
    Cldr c;
    QXmlStreamReader xml(&device);
    QString region;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const auto a = xml.attributes();
        if (xml.name() == u"info" && a.hasAttribute("iso4217")) {
            c.digits.insert(a.value("iso4217").toString(), a.value("digits").toInt());
        } else if (xml.name() == u"region") {
            region = a.value("iso3166").toString();
        } else if (xml.name() == u"currency" && !region.isEmpty() && !c.currency.contains(region) &&
                   !a.hasAttribute("to") && a.value("tender") != u"false") {
            c.currency.insert(region, a.value("iso4217").toString());
        } else if (xml.name() == u"group" && !a.hasAttribute("status")) {
            for (const auto& t : a.value("contains").toString().split(' ', Qt::SkipEmptyParts))
                if (!c.parent.contains(t)) c.parent.insert(t, a.value("type").toString());
        }
    }
    return c;
}

// The two-letter continent of a territory, from the UN regions that hold it.
QString continent(const Cldr& c, const QString& territory) {
    if (territory == u"AQ") return QStringLiteral("AN");
    for (QString r = c.parent.value(territory); !r.isEmpty(); r = c.parent.value(r)) {
        if (r == u"002") return QStringLiteral("AF");
        if (r == u"142") return QStringLiteral("AS");
        if (r == u"150") return QStringLiteral("EU");
        if (r == u"009") return QStringLiteral("OC");
        if (r == u"005") return QStringLiteral("SA");
        if (r == u"021" || r == u"013" || r == u"029") return QStringLiteral("NA");
    }
    return {};
}

QString quoted(const QString& s) {
    QString out = QStringLiteral("\"");
    for (QChar ch : s) {
        if (ch == '"' || ch == '\\') out += '\\';
        out += ch;
    }
    return out + '"';
}

int fail(const QString& why) {
    std::fprintf(stderr, "make-countries: %s\n", qPrintable(why));
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return fail("usage: make-countries LIST ISO_3166_JSON CLDR_SUPPLEMENTAL_XML OUTPUT");
    QFile list(QString::fromLocal8Bit(argv[1])), iso(QString::fromLocal8Bit(argv[2])), cldrFile(QString::fromLocal8Bit(argv[3]));
    if (!list.open(QIODevice::ReadOnly) || !iso.open(QIODevice::ReadOnly) || !cldrFile.open(QIODevice::ReadOnly))
        return fail("can't read the sources");

    QHash<QString, QJsonObject> byAlpha3;
    for (const QJsonValue v : QJsonDocument::fromJson(iso.readAll()).object().value("3166-1").toArray())
        byAlpha3.insert(v["alpha_3"].toString(), v.toObject());
    const Cldr cldr = readCldr(cldrFile);

    QString out;
    QTextStream ts(&out);
    ts << "// Made by make-countries from countries.txt, iso-codes and CLDR. Do not edit.\n";
    int rows = 0;
    while (!list.atEnd()) {
        const QString line = QString::fromUtf8(list.readLine()).trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        QStringList f = line.split('|');
        if (f.size() == 3) {
            const QJsonObject c = byAlpha3.value(f[1]);
            if (c.isEmpty()) return fail("iso-codes has no " + f[1]);
            const QString alpha2 = c["alpha_2"].toString();
            const QString currency = cldr.currency.value(alpha2);
            const int digits = cldr.digits.value(currency, cldr.digits.value("DEFAULT", 2));
            f = {f[0], f[1], f[2], c["numeric"].toString(), alpha2, currency, continent(cldr, alpha2),
                 QString::number(digits)};
        } else if (f.size() != 8) {
            return fail("bad row: " + line);
        }
        // Field order of IsoCountryInfo: name, numeric, alpha2, alpha3, calling, currency, continent, digits.
        ts << "{" << quoted(f[0]) << ", \"" << f[3] << "\", \"" << f[4] << "\", \"" << f[1] << "\", \"" << f[2]
           << "\", \"" << f[5] << "\", \"" << f[6] << "\", " << f[7].toInt() << "},\n";
        ++rows;
    }
    QSaveFile file(QString::fromLocal8Bit(argv[4]));
    if (!file.open(QIODevice::WriteOnly)) return fail("can't write the output");
    file.write(out.toUtf8());
    if (!file.commit()) return fail("can't write the output");
    std::printf("make-countries: %d rows\n", rows);
    return 0;
}
