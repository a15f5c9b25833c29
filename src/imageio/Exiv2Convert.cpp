// SPDX-License-Identifier: GPL-3.0-or-later
#include "Exiv2Convert.h"

#include "PropertyKeys.h"

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QRegularExpression>
#include <QStringDecoder>

#include <cmath>
#include <unordered_map>

namespace imageio {

// Maker-note fields that the platform gathers in {ExifAux}.
// clang-format off
static const QHash<QString, const char*>& auxFromMaker() {
    static const QHash<QString, const char*> t{
        {"Exif.Canon.SerialNumber", kCGImagePropertyExifAuxSerialNumber},
        {"Exif.Canon.OwnerName", kCGImagePropertyExifAuxOwnerName},
        {"Exif.Canon.FirmwareVersion", kCGImagePropertyExifAuxFirmware},
        {"Exif.Canon.ImageNumber", kCGImagePropertyExifAuxImageNumber},
        {"Exif.Canon.LensModel", kCGImagePropertyExifAuxLensModel},
        {"Exif.CanonCs.LensType", kCGImagePropertyExifAuxLensID},
        {"Exif.Nikon3.SerialNumber", kCGImagePropertyExifAuxSerialNumber},
        {"Exif.Nikon3.Lens", kCGImagePropertyExifAuxLensInfo},
        {"Exif.Nikon3.FlashExposureComp", kCGImagePropertyExifAuxFlashCompensation},
        {"Exif.Fujifilm.SerialNumber", kCGImagePropertyExifAuxSerialNumber},
        {"Exif.Olympus.SerialNumber", kCGImagePropertyExifAuxSerialNumber},
        {"Exif.Pentax.SerialNumber", kCGImagePropertyExifAuxSerialNumber},
    };
    return t;
}
// clang-format on

namespace {

QString makerDictionary(const std::string& group) {
    struct Prefix { const char* group; const char* dict; };
    static const Prefix prefixes[] = {
        {"Canon", kCGImagePropertyMakerCanonDictionary},   {"Nikon", kCGImagePropertyMakerNikonDictionary},
        {"Fujifilm", kCGImagePropertyMakerFujiDictionary}, {"Olympus", kCGImagePropertyMakerOlympusDictionary},
        {"Pentax", kCGImagePropertyMakerPentaxDictionary}, {"SonyMinolta", kCGImagePropertyMakerMinoltaDictionary},
        {"Minolta", kCGImagePropertyMakerMinoltaDictionary}, {"Sony", "{MakerSony}"},
        {"Panasonic", "{MakerPanasonic}"},                 {"Samsung", "{MakerSamsung}"},
        {"Sigma", "{MakerSigma}"},                         {"Casio", "{MakerCasio}"},
    };
    for (const auto& p : prefixes)
        if (group.rfind(p.group, 0) == 0) return QString::fromLatin1(p.dict);
    return QStringLiteral("{Maker%1}").arg(QString::fromStdString(group));
}

double rationalToDouble(const Exiv2::Rational& r) { return r.second == 0 ? 0.0 : double(r.first) / r.second; }

bool isRational(Exiv2::TypeId t) { return t == Exiv2::unsignedRational || t == Exiv2::signedRational; }
bool isInteger(Exiv2::TypeId t) {
    switch (t) {
    case Exiv2::unsignedByte: case Exiv2::unsignedShort: case Exiv2::unsignedLong:
    case Exiv2::signedByte: case Exiv2::signedShort: case Exiv2::signedLong:
    case Exiv2::tiffIfd: case Exiv2::unsignedLongLong: case Exiv2::signedLongLong:
        return true;
    default:
        return false;
    }
}

QByteArray rawBytes(const Exiv2::Exifdatum& d) {
    QByteArray out(qsizetype(d.size()), Qt::Uninitialized);
    if (!out.isEmpty()) d.copy(reinterpret_cast<Exiv2::byte*>(out.data()), Exiv2::bigEndian);
    return out;
}

// One value of a datum, or an array of all of them; single counts stay scalar unless asked.
QVariant numbers(const Exiv2::Exifdatum& d, bool alwaysArray = false) {
    long n = d.count();
    Exiv2::TypeId t = d.typeId();
    auto one = [&](long i) -> QVariant {
        if (isRational(t)) return rationalToDouble(d.toRational(i));
        if (t == Exiv2::tiffFloat || t == Exiv2::tiffDouble) return double(d.toFloat(i));
        return qint64(d.toLong(i));
    };
    if (n == 1 && !alwaysArray) return one(0);
    QVariantList list;
    for (long i = 0; i < n && i < 4096; ++i) list << one(i);
    return list;
}

QString asciiText(const Exiv2::Exifdatum& d) {
    std::string s = d.toString();
    auto nul = s.find('\0');
    if (nul != std::string::npos) s.resize(nul);
    return decodeText(s).trimmed();
}

// "0232" → [2, 3, 2]; "0230" → [2, 3]; "0100" → [1, 0].
QVariantList versionArray(const QByteArray& digits) {
    if (digits.size() < 4) return {};
    for (char c : digits.left(4))
        if (c < '0' || c > '9') return {};
    QVariantList v{digits.left(2).toInt(), digits.at(2) - '0'};
    if (digits.at(3) != '0') v << (digits.at(3) - '0');
    return v;
}

// The text of an undefined-type comment: the 8-byte character-code prefix is dropped.
QString commentText(const Exiv2::Exifdatum& d) {
    if (auto* cv = dynamic_cast<const Exiv2::CommentValue*>(&d.value())) {
        std::string s = cv->comment();
        auto nul = s.find('\0');
        if (nul != std::string::npos) s.resize(nul);
        return decodeText(s).trimmed();
    }
    QByteArray raw = rawBytes(d);
    if (raw.size() >= 8) raw = raw.mid(8);
    int nul = raw.indexOf('\0');
    if (nul >= 0) raw.truncate(nul);
    return decodeText(raw.toStdString()).trimmed();
}

QVariant degrees(const Exiv2::Exifdatum& d) {
    if (!isRational(d.typeId()) || d.count() < 1) return numbers(d);
    double v = 0, scale = 1;
    for (long i = 0; i < d.count() && i < 3; ++i, scale *= 60) v += rationalToDouble(d.toRational(i)) / scale;
    return v;
}

QVariant gpsTime(const Exiv2::Exifdatum& d) {
    if (!isRational(d.typeId()) || d.count() < 3) return asciiText(d);
    double h = rationalToDouble(d.toRational(0)), m = rationalToDouble(d.toRational(1)),
           s = rationalToDouble(d.toRational(2));
    QString sec = std::floor(s) == s ? QStringLiteral("%1").arg(int(s), 2, 10, QChar('0'))
                                      : QStringLiteral("%1").arg(s, 5, 'f', 2, QChar('0'));
    return QStringLiteral("%1:%2:%3").arg(int(h), 2, 10, QChar('0')).arg(int(m), 2, 10, QChar('0')).arg(sec);
}

// The generic conversion by type, used for every tag without a rule of its own.
QVariant convert(const Exiv2::Exifdatum& d) {
    Exiv2::TypeId t = d.typeId();
    if (t == Exiv2::asciiString) return asciiText(d);
    if (t == Exiv2::comment) return commentText(d);
    if (isInteger(t) || isRational(t) || t == Exiv2::tiffFloat || t == Exiv2::tiffDouble) {
        if (d.count() == 0) return {};
        return numbers(d);
    }
    return rawBytes(d);
}

QVariant convertExifTag(const Exiv2::Exifdatum& d, const QString& key) {
    if (key == kCGImagePropertyExifISOSpeedRatings || key == kCGImagePropertyExifSubjectArea ||
        key == kCGImagePropertyExifLensSpecification || key == kCGImagePropertyExifSubjectLocation)
        return numbers(d, true);
    if (key == kCGImagePropertyExifVersion || key == kCGImagePropertyExifFlashPixVersion) {
        QVariantList v = versionArray(rawBytes(d));
        return v.isEmpty() ? convert(d) : QVariant(v);
    }
    if (key == kCGImagePropertyExifUserComment) return commentText(d);
    if (key == kCGImagePropertyExifComponentsConfiguration) {
        QVariantList v;
        for (char c : rawBytes(d)) v << int(uint8_t(c));
        return v;
    }
    if ((key == kCGImagePropertyExifFileSource || key == kCGImagePropertyExifSceneType) && d.size() >= 1)
        return int(uint8_t(rawBytes(d).at(0)));
    return convert(d);
}

QVariant convertGpsTag(const Exiv2::Exifdatum& d, const QString& key) {
    if (key == kCGImagePropertyGPSLatitude || key == kCGImagePropertyGPSLongitude ||
        key == kCGImagePropertyGPSDestLatitude || key == kCGImagePropertyGPSDestLongitude)
        return degrees(d);
    if (key == kCGImagePropertyGPSTimeStamp) return gpsTime(d);
    if (key == kCGImagePropertyGPSVersion) return numbers(d, true);
    if (key == kCGImagePropertyGPSProcessingMethod || key == kCGImagePropertyGPSAreaInformation)
        return d.typeId() == Exiv2::asciiString ? asciiText(d) : commentText(d);
    return convert(d);
}

void insertIfValid(PropertyDict& dict, const QString& key, const QVariant& value) {
    if (!value.isValid()) return;
    if (value.typeId() == QMetaType::QString && value.toString().isEmpty()) {
        dict.insert(key, value);  // an empty text is still the file's value
        return;
    }
    dict.insert(key, value);
}

// A datum's value as text, for the maker dictionaries (exiv2 names unknown tags "0x....").
QVariant convertMaker(const Exiv2::Exifdatum& d) {
    if (d.typeId() == Exiv2::undefined && d.size() > 256) return rawBytes(d);
    if (d.typeId() == Exiv2::undefined) return QString::fromStdString(d.toString());
    return convert(d);
}

// iPhone maker notes: "Apple iOS" header, then a big-endian IFD whose offsets count from the
// start of the note. exiv2 0.27 has no decoder for them, so we give the same bytes a TIFF header
// and let exiv2 walk the IFD. The platform keys this group by tag number.
void addAppleMakerNote(const QByteArray& note, PropertyDict& top) {
    if (note.size() < 16 || !note.startsWith("Apple iOS") || note.mid(12, 2) != "MM") return;
    QByteArray tiff = note;
    const char header[8] = {'M', 'M', 0, 0x2a, 0, 0, 0, 14};
    tiff.replace(0, 8, QByteArray(header, 8));
    Exiv2::ExifData data;
    try {
        Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte*>(tiff.constData()), uint32_t(tiff.size()));
    } catch (const std::exception&) {
        return;
    }
    PropertyDict apple;
    for (const auto& d : data) {
        if (d.groupName() != "Image") continue;
        insertIfValid(apple, QString::number(d.tag()), d.typeId() == Exiv2::undefined ? QVariant(rawBytes(d)) : convert(d));
    }
    if (!apple.isEmpty()) top.insert(kCGImagePropertyMakerAppleDictionary, apple);
}

QString isoDateToExif(const QString& iso) {
    // XMP dates are ISO 8601 ("2019-05-02T10:00:00+02:00"); the dictionaries keep EXIF's form.
    static const QRegularExpression re(R"(^(\d{4})-(\d{2})-(\d{2})(?:T(\d{2}):(\d{2})(?::(\d{2}))?)?)");
    auto m = re.match(iso);
    if (!m.hasMatch()) return iso;
    return QStringLiteral("%1:%2:%3 %4:%5:%6")
        .arg(m.captured(1), m.captured(2), m.captured(3),
             m.captured(4).isEmpty() ? "00" : m.captured(4), m.captured(5).isEmpty() ? "00" : m.captured(5),
             m.captured(6).isEmpty() ? "00" : m.captured(6));
}

QVariant xmpNumber(const QString& text) {
    int slash = text.indexOf('/');
    if (slash > 0) {
        double num = text.left(slash).toDouble(), den = text.mid(slash + 1).toDouble();
        return den == 0 ? 0.0 : num / den;
    }
    bool ok = false;
    qint64 i = text.toLongLong(&ok);
    if (ok) return i;
    double v = text.toDouble(&ok);
    return ok ? QVariant(v) : QVariant(text);
}

}  // namespace

QString decodeText(const std::string& bytes) {
    QByteArray b = QByteArray::fromStdString(bytes);
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString s = utf8(b);
    if (!utf8.hasError()) return s;
    return QString::fromLatin1(b);
}

void addExif(const Exiv2::ExifData& exif, PropertyDict& top) {
    PropertyDict exifDict = top.value(kCGImagePropertyExifDictionary).toMap();
    PropertyDict tiffDict = top.value(kCGImagePropertyTIFFDictionary).toMap();
    PropertyDict gpsDict = top.value(kCGImagePropertyGPSDictionary).toMap();
    PropertyDict auxDict = top.value(kCGImagePropertyExifAuxDictionary).toMap();
    QHash<QString, PropertyDict> makers;
    QByteArray makerNote;

    // Directories by exiv2's number for them: naming each tag's group made a string per tag.
    static const int image = Exiv2::ExifKey("Exif.Image.Make").ifdId(), photo = Exiv2::ExifKey("Exif.Photo.FNumber").ifdId(),
                     gps = Exiv2::ExifKey("Exif.GPSInfo.GPSLatitude").ifdId();
    static const QHash<std::pair<int, uint16_t>, const char*> aux = [] {
        QHash<std::pair<int, uint16_t>, const char*> out;
        for (auto it = auxFromMaker().begin(); it != auxFromMaker().end(); ++it) {
            try {
                const Exiv2::ExifKey key(it.key().toStdString());
                out.insert({key.ifdId(), key.tag()}, it.value());
            } catch (const std::exception&) {
                // A name this exiv2 doesn't know: no tag of a file reads under it.
            }
        }
        return out;
    }();
    int makerIfd = -1;  // the maker directory of the tags before, and its dictionary
    PropertyDict* maker = nullptr;
    for (const auto& d : exif) {
        try {
            const int ifd = d.ifdId();
            const uint16_t tag = d.tag();
            if (ifd == photo) {
                if (tag == 0x927c) {
                    makerNote = rawBytes(d);
                    continue;
                }
                auto it = exifTagKeys().find(tag);
                if (it != exifTagKeys().end()) insertIfValid(exifDict, it.value(), convertExifTag(d, it.value()));
            } else if (ifd == image) {
                auto it = tiffTagKeys().find(tag);
                if (it != tiffTagKeys().end()) {
                    insertIfValid(tiffDict, it.value(), convert(d));
                    continue;
                }
                // Some TIFF writers put EXIF fields straight into the first directory.
                auto ex = exifTagKeys().find(tag);
                if (ex != exifTagKeys().end() && !exifDict.contains(ex.value()))
                    insertIfValid(exifDict, ex.value(), convertExifTag(d, ex.value()));
            } else if (ifd == gps) {
                auto it = gpsTagKeys().find(tag);
                if (it != gpsTagKeys().end()) insertIfValid(gpsDict, it.value(), convertGpsTag(d, it.value()));
            } else if (ifd == makerIfd || Exiv2::ExifTags::isMakerGroup(d.groupName())) {
                if (ifd != makerIfd) {
                    makerIfd = ifd;
                    maker = &makers[makerDictionary(d.groupName())];
                }
                maker->insert(QString::fromStdString(d.tagName()), convertMaker(d));
                auto a = aux.find({ifd, tag});
                if (a != aux.end() && !auxDict.contains(a.value())) insertIfValid(auxDict, a.value(), convert(d));
            }
        } catch (const std::exception&) {
            // A value exiv2 could not convert is left out; the rest of the file still counts.
        }
    }

    if (!exifDict.isEmpty()) top.insert(kCGImagePropertyExifDictionary, exifDict);
    if (!tiffDict.isEmpty()) top.insert(kCGImagePropertyTIFFDictionary, tiffDict);
    if (!gpsDict.isEmpty()) top.insert(kCGImagePropertyGPSDictionary, gpsDict);
    if (!auxDict.isEmpty()) top.insert(kCGImagePropertyExifAuxDictionary, auxDict);
    for (auto it = makers.begin(); it != makers.end(); ++it) {
        PropertyDict merged = top.value(it.key()).toMap();
        for (auto v = it.value().begin(); v != it.value().end(); ++v) merged.insert(v.key(), v.value());
        top.insert(it.key(), merged);
    }
    if (!makerNote.isEmpty() && makers.isEmpty()) addAppleMakerNote(makerNote, top);
    if (tiffDict.contains(kCGImagePropertyTIFFOrientation))
        top.insert(kCGImagePropertyOrientation, tiffDict.value(kCGImagePropertyTIFFOrientation));
}

void addIptc(const Exiv2::IptcData& iptc, PropertyDict& top) {
    PropertyDict dict = top.value(kCGImagePropertyIPTCDictionary).toMap();
    for (const auto& d : iptc) {
        try {
            if (d.record() != 2) continue;
            auto it = iptcDatasetKeys().find(d.tag());
            if (it == iptcDatasetKeys().end()) continue;
            const QString key = it.value();
            // The stored text: dates as "CCYYMMDD", times as "HHMMSS±HHMM", as IIM keeps them.
            std::string raw(size_t(d.size()), '\0');
            if (!raw.empty()) d.copy(reinterpret_cast<Exiv2::byte*>(raw.data()), Exiv2::bigEndian);
            QVariant value;
            if (d.typeId() == Exiv2::unsignedShort) value = qint64(d.toLong(0));
            else value = decodeText(raw).trimmed();
            if (isRepeatableIptc(key)) {
                QVariantList list = dict.value(key).toList();
                list << value;
                dict.insert(key, list);
            } else if (!dict.contains(key)) {
                dict.insert(key, value);
            }
        } catch (const std::exception&) {
        }
    }
    if (!dict.isEmpty()) top.insert(kCGImagePropertyIPTCDictionary, dict);
}

void addXmp(const XmpPacket& xmp, PropertyDict& top) {
    // One pass to index the packet, instead of a walk through it for each field.
    QHash<QString, const XmpProperty*> byKey;
    for (const auto& [key, value] : xmp.properties) byKey.insert(key, &value);
    auto find = [&](const char* key) { return byKey.value(QString::fromLatin1(key)); };

    PropertyDict iptc = top.value(kCGImagePropertyIPTCDictionary).toMap();
    for (const auto& f : xmpIptcFields()) {
        if (iptc.contains(f.key)) continue;
        try {
            const XmpProperty* d = find(f.xmpKey);
            if (!d) continue;
            QStringList items = d->values();
            if (items.isEmpty()) continue;
            if (f.array) iptc.insert(f.key, QVariant(items).toList());
            else iptc.insert(f.key, items.join(", "));
        } catch (const std::exception&) {
        }
    }
    // Genre of the extension schema is a structure; its name is what people read.
    if (!iptc.contains(kCGImagePropertyIPTCExtGenre)) {
        for (const auto& [k, d] : xmp.properties) {
            if (k.startsWith(QLatin1String("Xmp.iptcExt.Genre")) && k.endsWith(QLatin1String("Name"))) {
                iptc.insert(kCGImagePropertyIPTCExtGenre, d.toString());
                break;
            }
        }
    }
    PropertyDict contact = iptc.value(kCGImagePropertyIPTCCreatorContactInfo).toMap();
    for (const auto& f : xmpContactFields()) {
        if (contact.contains(f.key)) continue;
        if (const XmpProperty* d = find(f.xmpKey)) contact.insert(f.key, d->toString());
    }
    if (!contact.isEmpty()) iptc.insert(kCGImagePropertyIPTCCreatorContactInfo, contact);
    if (!iptc.isEmpty()) top.insert(kCGImagePropertyIPTCDictionary, iptc);

    // Each group is taken out once, filled, and put back once: not copied for every field.
    QHash<QString, PropertyDict> groups;
    QSet<QString> filled;
    for (const auto& f : xmpFills()) {
        const QString name = QString::fromLatin1(f.dict);
        auto group = groups.find(name);
        if (group == groups.end()) group = groups.insert(name, top.value(name).toMap());
        PropertyDict& dict = *group;
        if (dict.contains(f.key)) continue;
        try {
            const XmpProperty* d = find(f.xmpKey);
            if (!d) continue;
            QStringList items = d->values();
            if (items.isEmpty()) continue;
            QVariant value;
            switch (f.kind) {
            case XmpFill::Text: value = items.join(", "); break;
            case XmpFill::Number: value = xmpNumber(items.first()); break;
            case XmpFill::Date: value = isoDateToExif(items.first()); break;
            case XmpFill::Numbers: {
                QVariantList list;
                for (const QString& s : items) list << xmpNumber(s);
                value = list;
                break;
            }
            }
            dict.insert(f.key, value);
            filled.insert(name);
        } catch (const std::exception&) {
        }
    }
    for (const QString& name : std::as_const(filled)) top.insert(name, groups.value(name));
    PropertyDict tiff = top.value(kCGImagePropertyTIFFDictionary).toMap();
    if (!top.contains(kCGImagePropertyOrientation) && tiff.contains(kCGImagePropertyTIFFOrientation))
        top.insert(kCGImagePropertyOrientation, tiff.value(kCGImagePropertyTIFFOrientation));
}

}  // namespace imageio
