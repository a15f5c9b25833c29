// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSDataStore.h"

#include "Formatter.h"
#include "HRLocation.h"
#include "Log.h"
#include "PlaceLookup.h"
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"
#include "ValueText.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <cmath>
#include <numeric>

namespace {

bool human() { return Settings::flag(SettingsFlag::human); }

std::optional<double> numberOf(const QVariant& v) {
    if (!valuetext::isNumber(v)) return std::nullopt;
    return v.toDouble();
}

std::optional<qint64> integerText(const std::optional<QString>& text) {
    if (!text) return std::nullopt;
    bool ok = false;
    qint64 v = text->toLongLong(&ok);
    return ok ? std::optional(v) : std::nullopt;
}

QString boolText(std::optional<bool> b) { return b ? (*b ? "true" : "false") : "--"; }

}  // namespace

QString typeText(const QString& identifier) {
    if (identifier == "com.adobe.raw-image") return QStringLiteral("RAW");
    // Only a type identifier (reverse DNS, in lower case) is cut; a codec name like "H.264" stays.
    if (!identifier.contains(u'.') || !identifier.front().isLower()) return identifier;
    QString last = identifier.section(u'.', -1).toUpper();
    if (last.endsWith("-IMAGE")) last.chop(6);
    return last;
}

const QList<TSKey>& TSDataStore::stackKeys() {
    static const QList<TSKey> keys{TSKey::ISO_SPEED, TSKey::FOCAL_LENGTH,  TSKey::FOCAL_LENGTH_35,
                                   TSKey::EXPOSURE_BIAS, TSKey::APERTURE, TSKey::EXPOSURE_TIME};
    return keys;
}

void TSDataStore::set(TSKey key, const std::optional<QString>& text) {
    if (!datas.contains(key)) datas.insert(key, text);
}

std::optional<QString> TSDataStore::text(TSKey key) const { return datas.value(key, std::nullopt); }

void TSDataStore::fill(const TSMetaData& md) {
    // One reading of the setting serves the whole fill: it can't change half-way through a
    // table, and reading it per row was a third of the cost of showing an item.
    const bool h = human();
    fillDates(md);
    fillLocation(md);
    fillSizes(md);
    fillTiff(md, h);
    fillExif(md, h);
    fillIptc(md, h);
    const QVariant profile = md.generalData().value(kCGImagePropertyProfileName);
    const std::optional<QString> color = TSMeanings::valueText(profile, h);
    set(TSKey::COLOR, color && !color->isEmpty() ? color : std::nullopt);
    hasExifMetadata = md.exifDic().has_value();
    if (mediaType != MediaType::video) {
        datas[TSKey::SEPARATOR] = QString();
        completed = true;
    }
    tellDisplayer();
}

void TSDataStore::tellDisplayer() {
    std::weak_ptr<Displayer> weak = displayDelegate;
    if (weak.expired() || !QCoreApplication::instance()) return;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [weak] {
            if (auto d = weak.lock()) d->dataChanged();
        },
        Qt::QueuedConnection);
}

void TSDataStore::fillDates(const TSMetaData& md) {
    auto tryDate = [&](const std::optional<QVariantMap>& dict, const char* key, const char* source) {
        if (!dict) return false;
        const QVariant v = dict->value(key);
        if (!valuetext::isText(v)) return false;
        auto d = Formatter::exifDate(v.toString());
        if (!d) return false;
        setDate(*d, source);
        return true;
    };
    if (tryDate(md.exifDic(), kCGImagePropertyExifDateTimeOriginal, "Exif Original") ||
        tryDate(md.tiffDic(), kCGImagePropertyTIFFDateTime, "Tiff"))
        dateSource = DataSource::fromExif;
}

void TSDataStore::setDate(const QDateTime& d, const QString& source) {
    datas[TSKey::EXIF_DATE] = Formatter::format(d, Formatter::Style::fullDate);
    dates.dict[source] = d;
    date = d;
    exifDate = d;
}

void TSDataStore::fillLocation(const TSMetaData& md) {
    const auto& gps = md.gpsDic();
    if (!gps || (!gps->contains(kCGImagePropertyGPSLatitude) && !gps->contains(kCGImagePropertyGPSLongitude))) {
        placemark.reset();
        return;
    }
    double lat = numberOf(gps->value(kCGImagePropertyGPSLatitude)).value_or(0.0);
    double lon = numberOf(gps->value(kCGImagePropertyGPSLongitude)).value_or(0.0);
    const QVariant latRef = gps->value(kCGImagePropertyGPSLatitudeRef);
    const QVariant lonRef = gps->value(kCGImagePropertyGPSLongitudeRef);
    if (valuetext::isText(latRef) && latRef.toString() != "N") lat = -lat;
    if (valuetext::isText(lonRef) && lonRef.toString() != "E") lon = -lon;
    const GeoLocation loc(lat, lon);
    set(TSKey::EXIF_LOCATION, hrl::coordinatesText(loc, false));
    locations.dict["GPS"] = loc;
    locationSource = DataSource::fromExif;
    location = loc;
    startPlaceLookup(loc);
}

void TSDataStore::startPlaceLookup(const GeoLocation& loc) {
    std::weak_ptr<TSDataStore> self = weak_from_this();
    if (self.expired()) return;  // a store on its own, not an item's: nobody to show a place to
    placelookup::start(loc, std::move(self));
}

void TSDataStore::fillSizes(const TSMetaData& md) {
    const auto& top = md.metaDataDic();
    if (!top) return;
    auto w = numberOf(top->value(kCGImagePropertyPixelWidth));
    auto h = numberOf(top->value(kCGImagePropertyPixelHeight));
    if (!w || !h) return;
    auto orientation = numberOf(top->value(kCGImagePropertyOrientation));
    if (orientation && *orientation > 4) std::swap(w, h);  // rows show the displayed size
    setSizes(qint64(*w), qint64(*h));
}

void TSDataStore::setSizes(std::optional<qint64> width, std::optional<qint64> height) {
    if (!width || !height) return;
    const qint64 w = *width, h = *height;
    set(TSKey::WxH, QStringLiteral("%1 x %2 (%3MP)").arg(w).arg(h).arg(QString::asprintf("%.1f", double(w) * double(h) / 1e6)));
    const qint64 g = std::gcd(w, h);
    set(TSKey::ASPECT_RATIO, g == 0 ? QStringLiteral("--")
                                    : QStringLiteral("%1 : %2").arg(std::max(w, h) / g).arg(std::min(w, h) / g));
}

void TSDataStore::fillTiff(const TSMetaData& md, bool h) {
    const auto& tiff = md.tiffDic();
    if (!tiff) return;
    for (TSKey key : TSKeys::tiffKeys()) set(key, format(tiff, key, h));
    auto text = [&](const char* key) -> std::optional<QString> {
        const QVariant v = tiff->value(key);
        if (valuetext::isText(v) || valuetext::isNumber(v)) return valuetext::describe(v);
        return std::nullopt;
    };
    const auto x = text(kCGImagePropertyTIFFXResolution), y = text(kCGImagePropertyTIFFYResolution);
    const auto unit = text(kCGImagePropertyTIFFResolutionUnit);
    const bool unitMissing = !tiff->contains(kCGImagePropertyTIFFResolutionUnit);
    const bool inches = unitMissing || unit == QStringLiteral("2");
    if (x && y) set(TSKey::RESOLUTION, *x + " x " + *y + (inches ? " dpi" : ""));
}

void TSDataStore::fillExif(const TSMetaData& md, bool h) {
    const auto& exif = md.exifDic();
    if (!exif) return;
    for (TSKey key : TSKeys::exifKeys()) {
        std::optional<QString> t = format(exif, key, h);
        if (!t) {
            if (auto fb = fallbackCoord(key); fb && exif->contains(fb->key))
                t = TSMeanings::elementText(exif->value(fb->key), h);
        }
        set(key, t);
    }
}

void TSDataStore::fillIptc(const TSMetaData& md, bool h) {
    const auto& iptc = md.iptcDic();
    if (!iptc) return;
    for (TSKey key : TSKeys::iptcKeys()) {
        auto c = coord(key);
        const QVariant v = c ? iptc->value(c->key) : QVariant();
        set(key, v.isValid() ? std::optional(TSMeanings::elementText(v, h)) : std::nullopt);
    }
}

std::optional<QString> TSDataStore::format(const std::optional<QVariantMap>& dictionary, TSKey tag) {
    return format(dictionary, tag, human());
}

std::optional<QString> TSDataStore::format(const std::optional<QVariantMap>& dictionary, TSKey tag, bool h) {
    auto c = coord(tag);
    if (!c || !dictionary) return std::nullopt;
    const QVariant value = dictionary->value(c->key);
    if (tag == TSKey::EXPOSURE_TIME) return TSMeanings::shutterText(value);
    if (tag == TSKey::NightMode && valuetext::isArray(value)) {
        const QVariantList list = value.toList();
        if (std::all_of(list.begin(), list.end(), [](const QVariant& e) { return valuetext::isInteger(e); })) {
            const QString answer = !list.isEmpty() && list.first().toLongLong() == 0 ? "N" : "Y";
            Log::debug("NightMode w: " + answer + " <- " + valuetext::describe(value));
            return answer;
        }
    }
    if (tag == TSKey::APERTURE) {
        auto t = TSMeanings::valueText(value, h);
        if (!t) return std::nullopt;
        if (auto d = hrl::number(*t)) return valuetext::describeDouble(std::round(*d * 100) / 100);
        return t;
    }
    return TSMeanings::valueText(value, h);
}

bool TSDataStore::datesDisagree() const {
    QList<QDateTime> recorded;
    for (const auto& d : dates.dict)
        if (d) recorded << *d;
    if (recorded.size() < 2) return false;
    return std::any_of(recorded.begin() + 1, recorded.end(),
                       [&](const QDateTime& d) { return std::llabs(recorded.first().msecsTo(d)) >= 1000; });
}

bool TSDataStore::locationsDisagree() const {
    QList<GeoLocation> recorded;
    for (const auto& l : locations.dict)
        if (l) recorded << *l;
    if (recorded.size() < 2) return false;
    return std::any_of(recorded.begin() + 1, recorded.end(),
                       [&](const GeoLocation& l) { return recorded.first().distance(l) >= 1.0; });
}

std::pair<QString, double> TSDataStore::value(TSKey key) const {
    if (!completed) return {"--", 0.5};
    if (auto t = text(key)) {
        if (key == TSKey::EXIF_LOCATION && locationsDisagree()) return {*t, 0.5};
        if (key == TSKey::EXIF_DATE && datesDisagree()) return {*t, 0.5};
        if (key == TSKey::FILETYPE) return {typeText(*t), 1.0};
        if (*t == "--") return {*t, 1.0};
        switch (key) {
        case TSKey::FOCAL_LENGTH_35: case TSKey::FOCAL_LENGTH: return {*t + " mm", 1.0};
        case TSKey::EXPOSURE_BIAS: return {*t + " EV", 1.0};
        case TSKey::EXPOSURE_TIME: return {*t + "s", 1.0};
        case TSKey::APERTURE: return {"ƒ/" + *t, 1.0};
        default: return {*t, 1.0};
        }
    }
    if (key == TSKey::CAMERA) {
        auto s = mediaSubtypes();
        return {s.mask && (*s.mask & MediaSubtype::photoScreenshot) ? "Screenshot" : "--", 1.0};
    }
    if (key == TSKey::EXIF_DATE)
        if (auto f = text(TSKey::FILE_DATE)) return {*f, 0.5};
    if (key == TSKey::EXIF_LOCATION)
        if (auto f = text(TSKey::FILE_LOCATION)) return {*f, 0.5};
    return {"--", 1.0};
}

void TSDataStore::setPlacemark(const Placemark& p) {
    placemark = p;
    const QString t = placeText(p);
    if (locationSource == DataSource::fromAsset) datas[TSKey::FILE_LOCATION] = t;
    if (locationSource == DataSource::fromExif) datas[TSKey::EXIF_LOCATION] = t;
    tellDisplayer();
}

void TSDataStore::setAssetDate(const std::optional<QDateTime>& creationDate) {
    if (!creationDate) {
        set(TSKey::FILE_DATE, QStringLiteral("--"));
        return;
    }
    set(TSKey::FILE_DATE, Formatter::format(*creationDate, Formatter::Style::fullDate));
    dates.dict["Asset"] = *creationDate;
    date = *creationDate;
    dateSource = DataSource::fromAsset;
}

void TSDataStore::setAssetLocation(const std::optional<GeoLocation>& loc) {
    if (!loc) {
        placemark.reset();
        return;
    }
    set(TSKey::FILE_LOCATION, hrl::coordinatesText(*loc, false));
    locations.dict["Asset"] = *loc;
    location = *loc;
    locationSource = DataSource::fromAsset;
    startPlaceLookup(*loc);
}

TSDataStore::Subtypes TSDataStore::mediaSubtypes() const {
    Subtypes s;
    if (!completed) return s;
    s.ready = true;
    if (auto v = integerText(text(TSKey::SUBTYPE))) s.mask = int(*v);
    s.isVideo = mediaType == MediaType::video;
    return s;
}

std::optional<bool> TSDataStore::isFlashOn() const {
    auto v = integerText(text(TSKey::FLASH));
    if (!v) return std::nullopt;
    return (*v & 1) != 0;
}

std::optional<int> TSDataStore::meteringIndex() const {
    auto v = integerText(text(TSKey::METERINGMODE));
    return v ? std::optional(int(*v)) : std::nullopt;
}

std::optional<bool> TSDataStore::isAutoWhiteBalance() const {
    auto t = text(TSKey::AWB);
    if (!t) return std::nullopt;
    return *t == "0";
}

QString TSDataStore::summaryText() const {
    const QString where = value(TSKey::EXIF_LOCATION).first;
    const QString author = value(TSKey::AUTHOR).first;
    const QString description = value(TSKey::DESCRIPTION).first;
    const QString when = value(TSKey::EXIF_DATE).first;
    QString datePart;
    if (auto d = Formatter::parse(when, Formatter::Style::fullDate))
        datePart = " on " + Formatter::format(*d, Formatter::Style::shortDate) + " at " +
                   Formatter::format(*d, Formatter::Style::timeOnly);
    auto has = [](const QString& s) { return !s.isEmpty() && s != "--"; };
    QString out = has(description) ? description + "\nTaken"
                                   : QStringLiteral("This %1 was taken").arg(mediaType == MediaType::video ? "video" : "photo");
    out += datePart;
    if (has(where)) out += " in " + where;
    if (has(author)) out += "\nby " + author;
    return out;
}

QString TSDataStore::tagLine(TSKey key) const {
    auto v = integerText(text(key));
    auto c = coord(key);
    if (v && c && !text(key)->isEmpty())
        return rawValue(key) + " " + TSMeanings::shared().meaning(c->key, qint64(*v), human()) + "\n";
    return rawValue(key) + " --\n";
}

QString TSDataStore::detailsText() const {
    QString out;
    out += "Original Date: " + value(TSKey::EXIF_DATE).first + "\n";
    out += "File Date: " + value(TSKey::FILE_DATE).first + "\n";
    out += "Location: " + value(TSKey::EXIF_LOCATION).first + "\n";
    out += "File Location: " + value(TSKey::FILE_LOCATION).first + "\n";
    const bool video = mediaType == MediaType::video;
    if (!video) {
        out += tagLine(TSKey::FLASH) + tagLine(TSKey::METERINGMODE);
        out += "AWB: " + boolText(isAutoWhiteBalance()) + "\n";
        const Subtypes s = mediaSubtypes();
        if (s.ready) {
            const int mask = s.mask.value_or(0);
            out += "HDR: " + boolText((mask & MediaSubtype::photoHDR) != 0) + "\n";
            out += "Live: " + boolText((mask & MediaSubtype::photoLive) != 0) + "\n";
            out += "Portrait: " + boolText((mask & MediaSubtype::photoDepthEffect) != 0) + "\n";
        }
        out += "NightMode: " + boolText(text(TSKey::NightMode) == QStringLiteral("Y")) + "\n";
    } else {
        out += "Is video: true\n";
    }
    static const QList<TSKey> photoCameraKeys{TSKey::CAMERA, TSKey::CAM_MAKER, TSKey::LENS, TSKey::LENS_MAKER};
    static const QList<TSKey> videoCameraKeys{TSKey::CAMERA, TSKey::VIDEOCAM_MAKER};
    static const QList<TSKey> fileKeys{TSKey::NAME, TSKey::FILE_SIZE, TSKey::WxH, TSKey::ASPECT_RATIO, TSKey::FILETYPE};
    static const QList<TSKey> photoMiscKeys{TSKey::RESOLUTION, TSKey::COLOR, TSKey::SOFTWARE};
    static const QList<TSKey> videoMiscKeys{TSKey::DURATION, TSKey::FPS, TSKey::AUDIO_FORMAT, TSKey::SOFTWARE};
    static const QList<TSKey> userKeys{TSKey::AUTHOR,      TSKey::COPYRIGHT,     TSKey::DESCRIPTION,
                                       TSKey::USER_COMMENT, TSKey::IPTC_KEYWORDS, TSKey::IPTC_CREDIT};
    QList<TSKey> keys = stackKeys();
    keys << (video ? videoCameraKeys : photoCameraKeys) << fileKeys << (video ? videoMiscKeys : photoMiscKeys) << userKeys;
    for (TSKey key : keys) out += rawValue(key) + " " + value(key).first + "\n";
    out += QStringLiteral("\nData collected with %1 %2\n").arg(TESSORIN_APP_NAME, TESSORIN_VERSION);
    return out;
}
