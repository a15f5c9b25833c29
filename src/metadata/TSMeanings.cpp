// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMeanings.h"

#include "PropertyKeys.h"
#include "Settings.h"
#include "ValueText.h"

#include <QStringList>
#include <cmath>

using valuetext::describe;

namespace {

// Adds a TagsMeaning under one or several keys.
struct MeaningBuilder {
    QHash<QString, TagsMeaning> meanings;

    void add(std::initializer_list<const char*> keys, std::initializer_list<std::pair<const char*, const char*>> table,
             int elements = 0, std::optional<QString> defaultValue = std::nullopt) {
        TagsMeaning m;
        for (const auto& [value, text] : table) m.meanings.insert(QString::fromUtf8(value), QString::fromUtf8(text));
        m.elements = elements;
        m.defaultValue = std::move(defaultValue);
        for (const char* key : keys) meanings.insert(QString::fromLatin1(key), m);
    }
};

MeaningBuilder exifMeanings() {
    MeaningBuilder b;
    b.add({kCGImagePropertyExifColorSpace},
          {{"1", "sRGB"}, {"2", "Adobe RGB"}, {"65533", "Wide Gamut RGB"}, {"65534", "ICC Profile"}, {"65535", "Uncalibrated"}});
    b.add({kCGImagePropertyExifComponentsConfiguration},
          {{"0", ""}, {"1", "Y"}, {"2", "Cb"}, {"3", "Cr"}, {"4", "R"}, {"5", "G"}, {"6", "B"}}, 4);
    b.add({kCGImagePropertyExifExposureProgram},
          {{"0", "Not defined"}, {"1", "Manual"}, {"2", "Program AE"}, {"3", "Aperture priority"},
           {"4", "Shutter speed priority"}, {"5", "Creative program (biased toward depth of field)"},
           {"6", "Action program (biased toward fast shutter speed)"},
           {"7", "Portrait mode (for closeup photos with the background out of focus)"},
           {"8", "Landscape mode (for landscape photos with the background in focus)"}, {"9", "Bulb"}});
    b.add({kCGImagePropertyExifMeteringMode},
          {{"0", "unknown"}, {"1", "Average"}, {"2", "Center-weighted Average"}, {"3", "Spot"}, {"4", "MultiSpot"},
           {"5", "Multi-segment (or Pattern) "}, {"6", "Partial"}});
    b.add({kCGImagePropertyExifLightSource},
          {{"0", "unknown"}, {"1", "Daylight"}, {"2", "Fluorescent"}, {"3", "Tungsten (incandescent light)"},
           {"4", "Flash"}, {"9", "Fine weather"}, {"10", "Cloudy weather"}, {"11", "Shade"},
           {"12", "Daylight fluorescent (D 5700 – 7100K)"}, {"13", "Day white fluorescent (N 4600 – 5400K)"},
           {"14", "Cool white fluorescent (W 3900 – 4500K)"}, {"15", "White fluorescent (WW 3200 – 3700K)"},
           {"17", "Standard light A"}, {"18", "Standard light B"}, {"19", "Standard light C"}, {"20", "D55"},
           {"21", "D65"}, {"22", "D75"}, {"23", "D50"}, {"24", "ISO studio tungsten"}, {"255", "other light source"}});
    b.add({kCGImagePropertyExifSensingMethod},
          {{"1", "Monochrome area"}, {"2", "One-chip color area sensor"}, {"3", "Two-chip color area sensor"},
           {"4", "Three-chip color area sensor"}, {"5", "Color sequential area sensor"}, {"6", "Monochrome linear"},
           {"7", "Trilinear sensor"}, {"8", "Color sequential linear sensor"}});
    b.add({kCGImagePropertyExifFileSource}, {{"1", "Film Scanner"}, {"2", "Reflection Print Scanner"}, {"3", "DSC"}});
    b.add({kCGImagePropertyExifSceneType}, {{"1", "A directly photographed image"}});
    b.add({kCGImagePropertyExifCustomRendered}, {{"0", "Normal process"}, {"1", "Custom process"}});
    b.add({kCGImagePropertyExifExposureMode}, {{"0", "Auto exposure"}, {"1", "Manual exposure"}, {"2", "Auto bracket"}});
    b.add({kCGImagePropertyExifWhiteBalance}, {{"0", "Auto white balance"}, {"1", "Manual white balance"}});
    b.add({kCGImagePropertyExifSceneCaptureType},
          {{"0", "Standard"}, {"1", "Landscape"}, {"2", "Portrait"}, {"3", "Night scene"}});
    b.add({kCGImagePropertyExifGainControl},
          {{"0", "None"}, {"1", "Low gain up"}, {"2", "High gain up"}, {"3", "Low gain down"}, {"4", "High gain down"}});
    b.add({kCGImagePropertyExifContrast, kCGImagePropertyExifSharpness}, {{"0", "Normal"}, {"1", "Soft"}, {"2", "Hard"}});
    b.add({kCGImagePropertyExifSaturation}, {{"0", "Normal"}, {"1", "Low saturation"}, {"2", "High saturation"}});
    b.add({kCGImagePropertyExifSubjectDistRange},
          {{"0", "unknown"}, {"1", "Macro"}, {"2", "Close view"}, {"3", "Distant view"}});
    return b;
}

MeaningBuilder tiffMeanings() {
    MeaningBuilder b;
    b.add({kCGImagePropertyTIFFCompression}, {{"1", "Uncompressed"}}, 0, QStringLiteral("JPEG"));
    b.add({kCGImagePropertyTIFFPhotometricInterpretation}, {{"2", "RGB"}, {"6", "YCbCr"}});
    b.add({kCGImagePropertyTIFFOrientation, kCGImagePropertyIPTCImageOrientation},
          {{"1", "Horizontal"}, {"2", "Mirror horizontal"}, {"3", "Rotate 180°"}, {"4", "Mirror vertical"},
           {"5", "Mirror horizontal and rotate 270° CW"}, {"6", "Rotate 90° CW"},
           {"7", "Mirror horizontal and rotate 90° CW"}, {"8", "Rotate 270° CW"}});
    b.add({kCGImagePropertyTIFFResolutionUnit}, {{"2", "Inches"}, {"3", "Centimeters"}});
    return b;
}

MeaningBuilder gpsMeanings() {
    MeaningBuilder b;
    b.add({kCGImagePropertyGPSLatitudeRef, kCGImagePropertyGPSDestLatitudeRef},
          {{"N", "North latitude"}, {"S", "South latitude"}});
    b.add({kCGImagePropertyGPSLongitudeRef, kCGImagePropertyGPSDestLongitudeRef},
          {{"E", "East longitude"}, {"W", "West longitude"}});
    b.add({kCGImagePropertyGPSAltitudeRef}, {{"0", "Sea level"}, {"1", "Below Sea level"}});
    b.add({kCGImagePropertyGPSStatus}, {{"A", "Measurement in progress"}, {"V", "Measurement Interoperability"}});
    b.add({kCGImagePropertyGPSMeasureMode}, {{"2", "2-dimensional measurement"}, {"3", "3-dimensional measurement"}});
    b.add({kCGImagePropertyGPSSpeedRef}, {{"K", "Kilometers per hour"}, {"M", "Miles per hour"}, {"N", "Knots"}});
    b.add({kCGImagePropertyGPSTrackRef, kCGImagePropertyGPSImgDirectionRef, kCGImagePropertyGPSDestBearingRef},
          {{"T", "True North"}, {"M", "Magnetic North"}});
    b.add({kCGImagePropertyGPSDestDistanceRef}, {{"K", "Kilometers"}, {"M", "Miles"}, {"N", "Nautical Miles"}});
    b.add({kCGImagePropertyGPSDifferental},
          {{"0", "Measurement without differential correction"}, {"1", "Differential correction applied"}});
    return b;
}

// The value's plain text, or with `human` a double rounded to two places ("1.8", "2.0").
QString rounded(const QVariant& value, bool human) {
    if (human && value.typeId() == QMetaType::Double)
        return valuetext::describeDouble(std::round(value.toDouble() * 100) / 100);
    return describe(value);
}

}  // namespace

TSMeanings::TSMeanings() {
    for (const MeaningBuilder& b : {exifMeanings(), tiffMeanings(), gpsMeanings()})
        for (auto it = b.meanings.begin(); it != b.meanings.end(); ++it) meanings.meaningsDictionary.insert(it.key(), it.value());
}

const TSMeanings& TSMeanings::shared() {
    static const TSMeanings instance;
    return instance;
}

std::optional<QString> TSMeanings::valueText(const QVariant& value, bool human) {
    if (!value.isValid() || value.isNull()) return std::nullopt;
    std::optional<QString> text;
    if (valuetext::isText(value)) text = value.toString();
    else if (valuetext::isNumber(value)) text = describe(value);
    else if (valuetext::isArray(value)) text = arrayText(value.toList(), human);
    else if (valuetext::isDictionary(value)) text = dictionaryText(value.toMap(), human);
    else if (valuetext::isData(value)) text = hexText(value.toByteArray(), human);
    return text ? text : describe(value);
}

std::optional<QString> TSMeanings::arrayText(const QVariantList& list, bool human) {
    if (list.isEmpty()) return std::nullopt;
    if (list.size() == 1) return describe(list.first());
    QStringList parts;
    for (const QVariant& e : list) parts << describe(e);
    return human ? parts.join(", ") : '[' + parts.join("; ") + ']';
}

QString TSMeanings::dictionaryText(const QVariantMap& dict, bool human) {
    QStringList parts;
    for (auto it = dict.begin(); it != dict.end(); ++it) parts << it.key() + ": " + describe(it.value());
    return parts.join(human ? ";\n" : "; ");
}

QString TSMeanings::hexText(const QByteArray& bytes, bool human) {
    const QString hex = QString::fromLatin1(bytes.toHex().toUpper());
    if (!human || hex.size() < 161) return hex;
    const QString p = hex.left(16), q = hex.right(16);
    // The second line repeats the group that ended the first: that is how the text has always read.
    return QStringLiteral("Byte array of size: %1\n\t0x%2 %3 ...\n\t%3 %4")
        .arg(bytes.size())
        .arg(p.left(8), p.right(8), q.right(8));
}

std::optional<QString> TSMeanings::shutterText(const QVariant& value) {
    bool ok = false;
    const double d = value.toDouble(&ok);
    if (!ok || (!valuetext::isNumber(value) && !valuetext::isText(value))) return std::nullopt;
    const double inverse = 1 / d + 0.1;
    if (std::isfinite(inverse) && inverse >= 1 && inverse < 9.2e18) return QStringLiteral("1/%1").arg(qint64(inverse));
    if (!std::isfinite(d) || std::fabs(d) >= 9.2e18) return std::nullopt;
    return QString::number(qint64(d));
}

QString TSMeanings::flashText(qint64 v) {
    QStringList parts{(v & 1) ? "Flash fired" : "Flash did not fire"};
    if ((v & 6) == 6) parts << "Strobe return light detected";
    else if ((v & 6) == 4) parts << "Strobe return light not detected";
    switch (v & 24) {
    case 24: parts << "Auto mode"; break;
    case 16: parts << "Compulsory flash suppression"; break;
    case 8: parts << "Compulsory flash firing"; break;
    }
    if (v & 32) parts << "No flash function";
    if (v & 64) parts << "Red-eye reduction supported";
    return parts.join(", ");
}

QString TSMeanings::elementText(const QVariant& e, bool human) {
    if (valuetext::isText(e) || valuetext::isNumber(e)) return describe(e);
    if (valuetext::isArray(e)) return arrayText(e.toList(), human).value_or(QString());
    if (valuetext::isDictionary(e)) return dictionaryText(e.toMap(), human);
    if (valuetext::isData(e)) return hexText(e.toByteArray(), human);
    return describe(e);
}

QString TSMeanings::contactText(const QVariantMap& contact) {
    QStringList lines;
    for (TSKey key : TSKeys::iptcContactKeys()) {
        auto c = coord(key);
        if (!c || !contact.contains(c->key)) continue;
        lines << rawValue(key) + " " + describe(contact.value(c->key));
    }
    return lines.join("\n");
}

std::optional<QString> TSMeanings::tableLookup(const QString& key, const QVariant& value) const {
    auto it = meanings.meaningsDictionary.find(key);
    if (it == meanings.meaningsDictionary.end()) return std::nullopt;
    const TagsMeaning& m = it.value();
    if (valuetext::isArray(value)) {
        const QVariantList list = value.toList();
        if (list.size() == m.elements) {
            QString out;
            for (const QVariant& e : list) out += m.meanings.value(describe(e), QStringLiteral("--"));
            return out;
        }
    }
    auto found = m.meanings.find(describe(value));
    if (found == m.meanings.end()) return std::nullopt;
    return found.value();
}

bool TSMeanings::decodes(const QString& key) const {
    return key == QLatin1String(kCGImagePropertyExifFlash) || meanings.meaningsDictionary.contains(key);
}

QString TSMeanings::meaning(const QString& key, const QVariant& value, bool human) const {
    if (key == kCGImagePropertyExifFlash && valuetext::isInteger(value)) return flashText(value.toLongLong());
    if (key.endsWith("Version") && valuetext::isArray(value)) {
        QStringList parts;
        for (const QVariant& e : value.toList()) parts << describe(e);
        return parts.join(".");
    }
    if (key == kCGImagePropertyExifFocalLength) return rounded(value, human) + " mm";
    if (key == kCGImagePropertyExifFNumber) return "ƒ/" + rounded(value, human);
    if (key == kCGImagePropertyExifExposureTime)
        if (auto s = shutterText(value)) return *s;
    if (key == kCGImagePropertyExifSubjectArea && valuetext::isArray(value)) {
        QStringList e;
        for (const QVariant& v : value.toList()) e << describe(v);
        if (e.size() == 4) return "Center X: " + e[0] + "\nCenter Y: " + e[1] + "\nWidth: " + e[2] + "\nHeight: " + e[3];
        if (e.size() == 3) return "Center X: " + e[0] + "\nCenter Y: " + e[1] + "\ndiameter: " + e[2] + ")";
        if (e.size() == 2) return "X: " + e[0] + "\nY: " + e[1];
    }
    if (key == kCGImagePropertyExifSubjectLocation && valuetext::isArray(value) && value.toList().size() == 2)
        return "X: " + describe(value.toList()[0]) + " Y: " + describe(value.toList()[1]);
    if (key == kCGImagePropertyGPSTimeStamp) return describe(value) + " UTC";
    if (key == kCGImagePropertyIPTCCreatorContactInfo && valuetext::isDictionary(value)) return contactText(value.toMap());
    if (auto t = tableLookup(key, value)) return *t;
    if (valuetext::isNumber(value)) return QString::asprintf("%g", value.toDouble());
    return valueText(value, human).value_or(QStringLiteral("-vv-"));
}

std::optional<QString> string(const QString& key, const std::optional<QVariantMap>& dictionary, bool human) {
    if (!dictionary) return std::nullopt;
    const QVariant value = dictionary->value(key);
    if (valuetext::isText(value)) return value.toString();
    if (valuetext::isArray(value)) {
        QStringList parts;
        for (const QVariant& e : value.toList()) parts << TSMeanings::elementText(e, human);
        return parts.join(",");
    }
    if (valuetext::isDictionary(value)) return TSMeanings::shared().meaning(key, value, human);
    return std::nullopt;
}

std::optional<QString> string(const TSMetaData& metaData, TSKey key) {
    return string(metaData, key, Settings::flag(SettingsFlag::human));
}

std::optional<QString> string(const TSMetaData& metaData, TSKey key, bool human) {
    auto lookup = [&](const std::optional<TagCoord>& c) -> std::optional<QString> {
        if (!c) return std::nullopt;
        switch (c->dict) {
        case SubDictionary::exif: return string(c->key, metaData.exifDic(), human);
        case SubDictionary::tiff: return string(c->key, metaData.tiffDic(), human);
        case SubDictionary::iptc: return string(c->key, metaData.iptcDic(), human);
        default: return std::nullopt;
        }
    };
    if (auto s = lookup(coord(key))) return s;
    return lookup(fallbackCoord(key));
}
