// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlaceIndex.h"

#include "Log.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string_view>

namespace {

constexpr double earthRadius = 6371008.8;  // metres, as GeoLocation::distance

// Squared chord between two unit vectors for a great-circle distance in metres.
float chord2(double metres) {
    const double c = 2 * std::sin(std::min(metres, M_PI * earthRadius) / (2 * earthRadius));
    return float(c * c);
}

float dist2(const places::Place& p, const float q[3]) {
    const float dx = p.x - q[0], dy = p.y - q[1], dz = p.z - q[2];
    return dx * dx + dy * dy + dz * dz;
}

float axisValue(const places::Place& p, int axis) { return axis == 0 ? p.x : axis == 1 ? p.y : p.z; }

double metresBetween(const GeoCoordinate& c, const places::Place& p) {
    return GeoLocation(c.latitude, c.longitude).distance(GeoLocation(p.latitude, p.longitude));
}

}  // namespace

QString PlaceIndex::defaultPath() {
    const QString env = qEnvironmentVariable("TESSORIN_PLACES");
    if (!env.isEmpty()) return env;
    if (QCoreApplication::instance()) {
        const QString beside = QCoreApplication::applicationDirPath() + "/../share/tessorin/places.bin";
        if (QFileInfo::exists(beside)) return QFileInfo(beside).canonicalFilePath();
    }
    return QStringLiteral("/usr/share/tessorin/places.bin");
}

std::shared_ptr<const PlaceIndex> PlaceIndex::shared() {
    static std::once_flag once;
    // Never destroyed: the geocoder's thread may still copy it while the process exits.
    static auto* index = new std::shared_ptr<const PlaceIndex>;
    std::call_once(once, [] {
        QString error;
        const QString path = defaultPath();
        *index = load(path, &error);
        if (!*index) Log::error("🗺 no place data: " + error, "PlaceIndex.shared");
    });
    return *index;
}

std::shared_ptr<const PlaceIndex> PlaceIndex::load(const QString& path, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = path + ": " + why;
        return nullptr;
    };
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return fail(f.errorString());
    const qint64 size = f.size();
    if (size < qint64(sizeof(places::Header)) || size > (qint64(1) << 31)) return fail("not a place file");
    std::shared_ptr<PlaceIndex> index(new PlaceIndex);
    index->storage_.resize(size_t((size + 3) / 4));
    if (f.read(reinterpret_cast<char*>(index->storage_.data()), size) != size) return fail("short read");
    QString why;
    if (!index->check(&why)) return fail(why);
    return index;
}

// Every offset in the file is checked once here, so that look-ups need no bounds checks.
bool PlaceIndex::check(QString* error) {
    const char* base = reinterpret_cast<const char*>(storage_.data());
    const quint64 size = storage_.size() * 4;
    std::memcpy(&header_, base, sizeof header_);
    const places::Header& h = header_;
    if (std::memcmp(h.magic, places::magic, sizeof h.magic) != 0) return *error = "not a place file", false;
    if (h.version != places::formatVersion) return *error = QString("format %1, wanted %2").arg(h.version).arg(places::formatVersion), false;
    if (h.fileSize > size || h.fileSize + 3 < size) return *error = "truncated", false;
    auto table = [&](quint32 offset, quint64 count, quint64 itemSize) {
        return offset % 4 == 0 && offset >= sizeof(places::Header) && offset + count * itemSize <= h.fileSize;
    };
    if (!table(h.placesOffset, h.placeCount, sizeof(places::Place)) || !table(h.countriesOffset, h.countryCount, sizeof(places::Country)) ||
        !table(h.adminsOffset, h.adminCount, sizeof(places::Admin)) || !table(h.languagesOffset, h.languageCount, sizeof(places::Language)) ||
        !table(h.translationsOffset, quint64(h.languageCount) * h.countryCount, 4) || !table(h.stringsOffset, h.stringBytes, 1) ||
        h.stringBytes == 0 || h.placeCount == 0 || h.countryCount == 0)
        return *error = "damaged tables", false;
    places_ = reinterpret_cast<const places::Place*>(base + h.placesOffset);
    countries_ = reinterpret_cast<const places::Country*>(base + h.countriesOffset);
    admins_ = reinterpret_cast<const places::Admin*>(base + h.adminsOffset);
    languages_ = reinterpret_cast<const places::Language*>(base + h.languagesOffset);
    translations_ = reinterpret_cast<const quint32*>(base + h.translationsOffset);
    strings_ = base + h.stringsOffset;
    if (strings_[h.stringBytes - 1] != '\0' || strings_[0] != '\0') return *error = "damaged texts", false;
    auto okText = [&](quint32 offset) { return offset < h.stringBytes; };
    for (quint32 i = 0; i < h.placeCount; ++i) {
        const places::Place& p = places_[i];
        if (!okText(p.name) || !okText(p.folded) || p.country >= h.countryCount || (p.admin != places::noAdmin && p.admin >= h.adminCount) ||
            p.axis > 2 || p.kind > quint8(places::Kind::section) || (p.parent != places::noParent && p.parent >= h.placeCount) || !std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z) || !std::isfinite(p.latitude) ||
            !std::isfinite(p.longitude))
            return *error = QString("damaged place %1").arg(i), false;
    }
    for (quint32 i = 0; i < h.countryCount; ++i)
        if (!okText(countries_[i].name)) return *error = "damaged country", false;
    for (quint32 i = 0; i < h.adminCount; ++i)
        if (!okText(admins_[i].name) || admins_[i].country >= h.countryCount) return *error = "damaged admin area", false;
    for (quint32 i = 0; i < h.languageCount; ++i)
        if (!okText(languages_[i].code)) return *error = "damaged language", false;
    for (quint64 i = 0; i < quint64(h.languageCount) * h.countryCount; ++i)
        if (!okText(translations_[i])) return *error = "damaged translation", false;
    return true;
}

const quint32* PlaceIndex::translations(const QLocale& locale) const {
    if (locale.language() == QLocale::C || locale.language() == QLocale::English) return nullptr;
    const QByteArray full = locale.name().toUtf8();  // "pt_BR"
    const QByteArray lang = full.left(full.indexOf('_'));
    const quint32* fallback = nullptr;
    for (quint32 i = 0; i < header_.languageCount; ++i) {
        const char* code = text(languages_[i].code);
        if (full == code) return translations_ + quint64(i) * header_.countryCount;
        if (!fallback && lang == code) fallback = translations_ + quint64(i) * header_.countryCount;
    }
    return fallback;
}

QString PlaceIndex::countryName(quint16 country, const QLocale& locale) const {
    if (const quint32* t = translations(locale); t && t[country]) return string(t[country]);
    return string(countries_[country].name);
}

template <typename Accept>
void PlaceIndex::nearestIn(qsizetype lo, qsizetype hi, const float q[3], const Accept& accept, qsizetype& best, float& bestD2) const {
    while (lo < hi) {
        const qsizetype mid = (lo + hi) / 2;
        const places::Place& p = places_[mid];
        const float d2 = dist2(p, q);
        if (d2 < bestD2 && accept(p)) bestD2 = d2, best = mid;
        const float diff = q[p.axis] - axisValue(p, p.axis);
        // The near side first; the far side only if the splitting plane is closer than the best.
        if (diff < 0) {
            nearestIn(lo, mid, q, accept, best, bestD2);
            if (diff * diff >= bestD2) return;
            lo = mid + 1;
        } else {
            nearestIn(mid + 1, hi, q, accept, best, bestD2);
            if (diff * diff >= bestD2) return;
            hi = mid;
        }
    }
}

template <typename Visit>
void PlaceIndex::within(qsizetype lo, qsizetype hi, const float q[3], float maxD2, const Visit& visit) const {
    while (lo < hi) {
        const qsizetype mid = (lo + hi) / 2;
        const places::Place& p = places_[mid];
        if (dist2(p, q) <= maxD2) visit(mid);
        const float diff = q[p.axis] - axisValue(p, p.axis);
        if (diff < 0) {
            within(lo, mid, q, maxD2, visit);
            if (diff * diff > maxD2) return;
            lo = mid + 1;
        } else {
            within(mid + 1, hi, q, maxD2, visit);
            if (diff * diff > maxD2) return;
            hi = mid;
        }
    }
}

std::pair<qsizetype, double> PlaceIndex::nearest(const GeoCoordinate& c) const {
    float q[3];
    places::unitVector(c.latitude, c.longitude, q);
    qsizetype best = -1;
    float bestD2 = 5;  // more than the widest chord, 2 squared
    nearestIn(0, size(), q, [](const places::Place&) { return true; }, best, bestD2);
    return {best, metresBetween(c, places_[best])};
}

Placemark PlaceIndex::placemarkAt(qsizetype i, const QLocale& locale) const {
    const places::Place& p = places_[i];
    Placemark pm;
    const QString name = string(p.name);
    if (p.kind == quint8(places::Kind::section) && p.parent != places::noParent) {
        pm.subLocality = name;
        pm.locality = string(places_[p.parent].name);
    } else {
        pm.locality = name;
    }
    if (p.admin != places::noAdmin) pm.administrativeArea = string(admins_[p.admin].name);
    pm.country = countryName(p.country, locale);
    const places::Country& c = countries_[p.country];
    pm.ISOcountryCode = QString::fromLatin1(c.code, 2);
    return pm;
}

std::optional<Placemark> PlaceIndex::reverse(const GeoCoordinate& c, const QLocale& locale) const {
    if (!std::isfinite(c.latitude) || !std::isfinite(c.longitude) || std::abs(c.latitude) > 90) return std::nullopt;
    float q[3];
    places::unitVector(c.latitude, c.longitude, q);
    // The search starts bounded by the cutoff, so that a position at sea ends at once.
    qsizetype best = -1;
    float bestD2 = chord2(maxDistance) * 1.0001f;
    nearestIn(0, size(), q, [](const places::Place&) { return true; }, best, bestD2);
    if (best < 0) return std::nullopt;
    const double metres = metresBetween(c, places_[best]);
    if (metres > maxDistance) return std::nullopt;
    // Of places about as near as the nearest, the largest names the spot: between a hamlet at
    // 2.5 km and a town at 3.2 km, people say they were at the town.
    qsizetype chosen = best;
    within(0, size(), q, chord2(metres * nearFactor + nearSlack), [&](qsizetype j) {
        const places::Place &a = places_[j], &b = places_[chosen];
        if (a.population > b.population || (a.population == b.population && dist2(a, q) < dist2(b, q))) chosen = j;
    });
    return placemarkAt(chosen, locale);
}

std::vector<PlaceIndex::Town> PlaceIndex::towns(quint32 minPopulation) const {
    std::vector<Town> out;
    for (qsizetype i = 0; i < size(); ++i) {
        const places::Place& p = places_[i];
        if (p.population >= minPopulation && p.kind == quint8(places::Kind::populated))
            out.push_back({{p.latitude, p.longitude}, string(p.name), p.population});
    }
    std::stable_sort(out.begin(), out.end(), [](const Town& a, const Town& b) { return a.population > b.population; });
    return out;
}

QList<PlaceMatch> PlaceIndex::search(const QString& typed, int limit, const QLocale& locale) const {
    QList<PlaceMatch> out;
    const QStringList parts = typed.split(u',');
    const QByteArray query = places::fold(parts.first()).toUtf8();
    if (query.isEmpty() || limit <= 0) return out;
    const std::string_view q(query.constData(), size_t(query.size()));

    // Qualifiers after commas: each must name the place's country (code or name) or its area.
    QList<QSet<quint16>> countriesOk, adminsOk;
    for (const QString& part : parts.mid(1)) {
        const QString qual = places::fold(part);
        if (qual.isEmpty()) continue;
        QSet<quint16> cs, as;
        for (quint32 i = 0; i < header_.countryCount; ++i) {
            const QString code = QString::fromLatin1(countries_[i].code, 2).toLower();
            if (code == qual || places::fold(string(countries_[i].name)).startsWith(qual) ||
                places::fold(countryName(quint16(i), locale)).startsWith(qual))
                cs.insert(quint16(i));
        }
        for (quint32 i = 0; i < header_.adminCount; ++i)
            if (places::fold(string(admins_[i].name)).startsWith(qual)) as.insert(quint16(i));
        countriesOk << cs;
        adminsOk << as;
    }

    struct Hit {
        int rank;
        quint32 population;
        qsizetype index;
    };
    std::vector<Hit> hits;
    for (qsizetype i = 0; i < size(); ++i) {
        const places::Place& p = places_[i];
        const std::string_view name(text(p.folded));
        int rank;
        if (name == q) rank = 0;
        else if (name.starts_with(q)) rank = 1;
        else if (name.find(q) != std::string_view::npos) rank = 2;
        else continue;
        bool ok = true;
        for (qsizetype k = 0; ok && k < countriesOk.size(); ++k)
            ok = countriesOk[k].contains(p.country) || (p.admin != places::noAdmin && adminsOk[k].contains(p.admin));
        if (ok) hits.push_back({rank, p.population, i});
    }
    auto better = [this](const Hit& a, const Hit& b) {
        if (a.rank != b.rank) return a.rank < b.rank;
        if (a.population != b.population) return a.population > b.population;
        const int byName = std::strcmp(text(places_[a.index].name), text(places_[b.index].name));
        return byName != 0 ? byName < 0 : a.index < b.index;
    };
    const size_t n = std::min(hits.size(), size_t(limit));
    std::partial_sort(hits.begin(), hits.begin() + qsizetype(n), hits.end(), better);
    for (size_t k = 0; k < n; ++k) {
        const places::Place& p = places_[hits[k].index];
        out.append({placemarkAt(hits[k].index, locale), {p.latitude, p.longitude}, p.population});
    }
    return out;
}
