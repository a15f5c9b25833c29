// SPDX-License-Identifier: GPL-3.0-or-later
#include "MetadataEdit.h"

#include "Exiv2Convert.h"
#include "Exiv2Values.h"
#include "MotionPhoto.h"
#include "PropertyKeys.h"

#include <exiv2/tags.hpp>
#include <exiv2/value.hpp>
#include <exiv2/properties.hpp>

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <memory>
#include <regex>
#include <set>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {
namespace {

bool isRemoval(const QVariant& v) { return !v.isValid() || v.isNull(); }

QHash<QString, uint16_t> reversed(const QHash<uint16_t, const char*>& table) {
    QHash<QString, uint16_t> out;
    for (auto it = table.begin(); it != table.end(); ++it) out.insert(QString::fromLatin1(it.value()), it.key());
    return out;
}

template <typename Pred>
void eraseExifIf(Exiv2::ExifData& exif, Pred pred) {
    for (auto it = exif.begin(); it != exif.end();) it = pred(*it) ? exif.erase(it) : std::next(it);
}

// A tag is found by its number and directory: exiv2's findKey makes the text of every tag's key
// to compare it, which made a photo's maker notes a measurable part of each edit.
bool isKey(const Exiv2::Exifdatum& d, const Exiv2::ExifKey& key) { return d.tag() == key.tag() && d.ifdId() == key.ifdId(); }

Exiv2::ExifData::iterator findExif(Exiv2::ExifData& exif, const Exiv2::ExifKey& key) {
    return std::find_if(exif.begin(), exif.end(), [&](const Exiv2::Exifdatum& d) { return isKey(d, key); });
}

void eraseExif(Exiv2::ExifData& exif, const Exiv2::ExifKey& key) {
    eraseExifIf(exif, [&](const Exiv2::Exifdatum& d) { return isKey(d, key); });
}

template <typename Pred>
void eraseXmpIf(Exiv2::XmpData& xmp, Pred pred) {
    for (auto it = xmp.begin(); it != xmp.end();) it = pred(it->key()) ? xmp.erase(it) : std::next(it);
}

bool hasXmp(const Exiv2::XmpData& xmp, const char* key) {
    return const_cast<Exiv2::XmpData&>(xmp).findKey(Exiv2::XmpKey(key)) != xmp.end();
}

void eraseXmp(Exiv2::XmpData& xmp, const char* key) {
    const Exiv2::XmpKey k(key);
    for (auto it = xmp.findKey(k); it != xmp.end(); it = xmp.findKey(k)) xmp.erase(it);
    // A struct or array leaves its members behind under longer keys.
    const std::string prefix = std::string(key) + "/";
    eraseXmpIf(xmp, [&](const std::string& k2) { return k2.rfind(prefix, 0) == 0; });
}

void setXmp(Exiv2::XmpData& xmp, const char* key, const QStringList& items, bool array) {
    eraseXmp(xmp, key);
    const Exiv2::XmpKey k(key);
    Exiv2::TypeId type = Exiv2::XmpProperties::propertyType(k);
    if (array && (type == Exiv2::xmpBag || type == Exiv2::xmpSeq || type == Exiv2::xmpAlt)) {
        Exiv2::XmpArrayValue value(type);
        for (const QString& item : items) value.read(item.toStdString());
        xmp.add(k, &value);
    } else if (type == Exiv2::langAlt) {
        Exiv2::LangAltValue value;
        value.value_["x-default"] = items.join(", ").toStdString();
        xmp.add(k, &value);
    } else {
        Exiv2::XmpTextValue value(items.join(", ").toStdString());
        xmp.add(k, &value);
    }
}

// The XMP mirrors of one EXIF or TIFF key follow it, so that no reader sees the old value.
void followInXmp(Exiv2::XmpData& xmp, const char* dict, const QString& key, const QVariant& v) {
    for (const auto& f : xmpFills()) {
        if (key != f.key || qstrcmp(dict, f.dict) != 0 || !hasXmp(xmp, f.xmpKey)) continue;
        if (isRemoval(v)) eraseXmp(xmp, f.xmpKey);
        else if (f.kind == XmpFill::Date) setXmp(xmp, f.xmpKey, {isoDate(textOf(v))}, false);
        else setXmp(xmp, f.xmpKey, itemsOf(v), f.kind == XmpFill::Numbers);
    }
}

bool isStructural(uint16_t tiffTag) {
    switch (tiffTag) {
    case 0x0103: case 0x0106: case 0x011a: case 0x011b: case 0x0128: case 0x012d: case 0x013e: case 0x013f:
    case 0x0142: case 0x0143:
        return true;
    default:
        return false;
    }
}

struct Editor {
    const PropertyDict& before;
    MetadataBlocks& b;

    void exifGroup(const char* dict, const char* ifd, const QHash<uint16_t, const char*>& table, const QVariant& group) {
        // Built once, then only read: writers on several threads share them.
        static const QHash<QString, uint16_t> exifTags = reversed(exifTagKeys()), tiffTags = reversed(tiffTagKeys());
        const QHash<QString, uint16_t>& tags = &table == &exifTagKeys() ? exifTags : tiffTags;
        const bool isExif = qstrcmp(dict, kCGImagePropertyExifDictionary) == 0;
        if (isRemoval(group)) {
            eraseExifIf(b.exif, [&](const Exiv2::Exifdatum& d) {
                return d.groupName() == ifd && table.contains(d.tag()) &&
                       !(b.keepImageStructure && isStructural(d.tag()));
            });
            for (const QString& key : tags.keys()) followInXmp(b.xmp, dict, key, {});
            return;
        }
        const PropertyDict old = before.value(dict).toMap();
        const PropertyDict wish = group.toMap();
        for (auto it = wish.begin(); it != wish.end(); ++it) {
            const auto tag = tags.find(it.key());
            if (tag == tags.end()) continue;
            if (!isRemoval(it.value()) && old.value(it.key()) == it.value()) continue;
            if (!isExif && b.keepImageStructure && isStructural(*tag)) continue;
            const Exiv2::ExifKey key(*tag, ifd);
            if (isRemoval(it.value())) {
                eraseExif(b.exif, key);
                // Some files keep EXIF fields in the first directory; the reader takes them from there.
                if (isExif) eraseExif(b.exif, Exiv2::ExifKey(*tag, "Image"));
            } else {
                auto value = exifValue(*tag, ifd, it.value());
                if (!value) continue;
                const Exiv2::ExifKey inImage(*tag, "Image");
                const bool onlyInImage = isExif && findExif(b.exif, key) == b.exif.end() &&
                                         findExif(b.exif, inImage) != b.exif.end();
                const Exiv2::ExifKey& home = onlyInImage ? inImage : key;
                eraseExif(b.exif, home);
                b.exif.add(home, value.get());
            }
            followInXmp(b.xmp, dict, it.key(), it.value());
        }
    }

    void gpsGroup(const QVariant& group) {
        static const QHash<QString, uint16_t> tags = reversed(gpsTagKeys());
        bool changed = false;
        if (isRemoval(group)) {
            eraseExifIf(b.exif, [](const Exiv2::Exifdatum& d) { return d.groupName() == "GPSInfo"; });
            changed = true;
        } else {
            const PropertyDict old = before.value(kCGImagePropertyGPSDictionary).toMap();
            const PropertyDict wish = group.toMap();
            for (auto it = wish.begin(); it != wish.end(); ++it) {
                const auto tag = tags.find(it.key());
                if (tag == tags.end()) continue;
                if (!isRemoval(it.value()) && old.value(it.key()) == it.value()) continue;
                const Exiv2::ExifKey key(*tag, "GPSInfo");
                eraseExif(b.exif, key);
                changed = true;
                if (isRemoval(it.value())) continue;
                if (auto value = exifValue(*tag, "GPSInfo", it.value())) b.exif.add(key, value.get());
            }
        }
        if (!changed) return;
        // The XMP copy of the position goes with the EXIF one, and is rewritten from it.
        bool hadXmp = false;
        eraseXmpIf(b.xmp, [&](const std::string& k) {
            const bool gps = k.rfind("Xmp.exif.GPS", 0) == 0;
            hadXmp |= gps;
            return gps;
        });
        if (!hadXmp) return;
        auto xmpCoordinate = [&](uint16_t tag, uint16_t refTag, const char* xmpKey) {
            auto d = findExif(b.exif, Exiv2::ExifKey(tag, "GPSInfo"));
            auto r = findExif(b.exif, Exiv2::ExifKey(refTag, "GPSInfo"));
            if (d == b.exif.end() || r == b.exif.end() || d->count() < 3) return;
            const double deg = d->toFloat(0), min = d->toFloat(1) + d->toFloat(2) / 60;
            setXmp(b.xmp, xmpKey, {QStringLiteral("%1,%2%3").arg(whole(std::trunc(deg))).arg(min, 0, 'f', 6)
                                       .arg(QString::fromStdString(r->toString()).left(1))}, false);
        };
        xmpCoordinate(0x02, 0x01, "Xmp.exif.GPSLatitude");
        xmpCoordinate(0x04, 0x03, "Xmp.exif.GPSLongitude");
    }

    void iptcGroup(const QVariant& group) {
        static const QHash<QString, uint16_t> datasets = reversed(iptcDatasetKeys());
        const PropertyDict old = before.value(kCGImagePropertyIPTCDictionary).toMap();
        PropertyDict wish;
        if (isRemoval(group)) {
            for (auto it = old.begin(); it != old.end(); ++it) wish.insert(it.key(), QVariant::fromValue(nullptr));
            b.iptc.clear();
        } else {
            wish = group.toMap();
        }
        for (auto it = wish.begin(); it != wish.end(); ++it) {
            if (it.key() == kCGImagePropertyIPTCCreatorContactInfo) {
                contact(old.value(it.key()).toMap(), it.value());
                continue;
            }
            if (!isRemoval(it.value()) && old.value(it.key()) == it.value()) continue;
            const QStringList items = isRemoval(it.value()) ? QStringList{} : itemsOf(it.value());
            if (const auto ds = datasets.find(it.key()); ds != datasets.end()) iim(*ds, items, isRepeatableIptc(it.key()));
            for (const auto& f : xmpIptcFields()) {
                if (it.key() != f.key) continue;
                if (items.isEmpty()) eraseXmp(b.xmp, f.xmpKey);
                else setXmp(b.xmp, f.xmpKey, items, f.array);
            }
        }
    }

    void iim(uint16_t dataset, const QStringList& items, bool repeatable) {
        const Exiv2::IptcKey key(dataset, Exiv2::IptcDataSets::application2);
        for (auto it = b.iptc.findKey(key); it != b.iptc.end(); it = b.iptc.findKey(key)) b.iptc.erase(it);
        if (!b.writeIim || items.isEmpty()) return;
        const QStringList values = repeatable ? items : QStringList{items.join(", ")};
        bool nonAscii = false;
        for (const QString& item : values) {
            std::unique_ptr<Exiv2::Value> value(
                Exiv2::Value::create(Exiv2::IptcDataSets::dataSetType(dataset, Exiv2::IptcDataSets::application2)).release());
            if (value->read(item.toStdString()) != 0) continue;
            b.iptc.add(key, value.get());
            nonAscii |= !isAscii(item);
        }
        if (nonAscii) utf8Envelope(b.iptc);
    }

    // IIM texts are Latin-1 unless the envelope says UTF-8. Once it says so, the file's older
    // texts that are not UTF-8 are taken as Latin-1 and stored as UTF-8, so that they still read
    // the same.
    static void utf8Envelope(Exiv2::IptcData& iptc) {
        const Exiv2::IptcKey charset("Iptc.Envelope.CharacterSet");
        const auto marker = iptc.findKey(charset);
        if (marker != iptc.end() && marker->toString() == "\x1b%G") return;
        for (auto& d : iptc) {
            if (d.record() != Exiv2::IptcDataSets::application2 || d.typeId() != Exiv2::string) continue;
            const std::string raw = d.toString();
            const QByteArray bytes = QByteArray::fromStdString(raw);
            if (QString::fromUtf8(bytes).toUtf8() == bytes) continue;  // already UTF-8 (or ASCII)
            d.setValue(QString::fromLatin1(bytes).toStdString());
        }
        iptc[charset.key()] = std::string("\x1b%G");
    }

    void contact(const PropertyDict& old, const QVariant& wish) {
        const PropertyDict fields = wish.toMap();
        for (const auto& f : xmpContactFields()) {
            const bool remove = isRemoval(wish) || (fields.contains(f.key) && isRemoval(fields.value(f.key)));
            if (remove) {
                eraseXmp(b.xmp, f.xmpKey);
                continue;
            }
            if (!fields.contains(f.key) || fields.value(f.key) == old.value(f.key)) continue;
            // A field needs its structure to exist before it.
            const Exiv2::XmpKey parent("Xmp.iptc.CreatorContactInfo");
            if (b.xmp.findKey(parent) == b.xmp.end()) {
                Exiv2::XmpTextValue structure;
                structure.setXmpStruct();
                b.xmp.add(parent, &structure);
            }
            setXmp(b.xmp, f.xmpKey, {textOf(fields.value(f.key))}, false);
        }
    }

    void orientation(const QVariant& v) {
        const Exiv2::ExifKey key("Exif.Image.Orientation");
        if (isRemoval(v)) {
            eraseExif(b.exif, key);
            eraseXmp(b.xmp, "Xmp.tiff.Orientation");
            return;
        }
        const auto n = numbersOf(v);
        if (n.isEmpty()) return;
        const qint64 o = std::clamp<qint64>(whole(n.first()), 1, 8);
        if (QVariant(o) == before.value(kCGImagePropertyOrientation)) return;
        b.exif[key.key()] = uint16_t(o);
        if (hasXmp(b.xmp, "Xmp.tiff.Orientation")) setXmp(b.xmp, "Xmp.tiff.Orientation", {QString::number(o)}, false);
    }

    static bool allRemoved(const QVariant& group) {
        if (isRemoval(group)) return true;
        const PropertyDict dict = group.toMap();
        if (dict.isEmpty()) return false;
        for (const QVariant& v : dict)
            if (!isRemoval(v)) return false;
        return true;
    }
};

}  // namespace

// A group whose every tag is to go takes with it the tags we have no key for (Windows XP
// texts, private fields) and its XMP namespaces, so that "no tags" leaves none behind.
static void eraseWholeGroup(const QString& group, MetadataBlocks& b) {
    auto xmpPrefixes = [&](std::initializer_list<const char*> prefixes) {
        eraseXmpIf(b.xmp, [&](const std::string& key) {
            for (const char* p : prefixes)
                if (key.rfind(p, 0) == 0) return true;
            return false;
        });
    };
    if (group == kCGImagePropertyExifDictionary) {
        eraseExifIf(b.exif, [](const Exiv2::Exifdatum& d) { return d.groupName() == "Photo" && d.tag() != 0x927c; });
        xmpPrefixes({"Xmp.exif.", "Xmp.exifEX."});
    } else if (group == kCGImagePropertyTIFFDictionary) {
        eraseExifIf(b.exif, [&](const Exiv2::Exifdatum& d) {
            // The pointers to the other directories are exiv2's to manage.
            return d.groupName() == "Image" && d.tag() != 0x8769 && d.tag() != 0x8825 && d.tag() != 0x014a &&
                   !(b.keepImageStructure && (isStructural(d.tag()) || d.tag() < 0x0103 || d.tag() == 0x0111 ||
                                              d.tag() == 0x0115 || d.tag() == 0x0116 || d.tag() == 0x0117 ||
                                              d.tag() == 0x011c || d.tag() == 0x013d || d.tag() == 0x0152 ||
                                              (d.tag() >= 0x0144 && d.tag() <= 0x0145) || d.tag() >= 0xc612));
        });
        xmpPrefixes({"Xmp.tiff.", "Xmp.xmp."});
    } else if (group == kCGImagePropertyIPTCDictionary) {
        b.iptc.clear();
        xmpPrefixes({"Xmp.dc.", "Xmp.photoshop.", "Xmp.iptc.", "Xmp.iptcExt.", "Xmp.xmpRights."});
    }
}

// A motion photo's keys go with its movie. Its container directory may list other images
// (gain maps, depth maps) too: then only the movie's entry goes.
static void eraseMotionPhotoKeys(Exiv2::XmpData& xmp) {
    std::set<std::string> items, movies;
    static const std::regex item(R"(^Xmp\.Container\.Directory\[(\d+)\]/.*)");
    for (const Exiv2::Xmpdatum& d : xmp) {
        std::smatch m;
        const std::string key = d.key();
        if (!std::regex_match(key, m, item)) continue;
        items.insert(m[1]);
        if (key.size() > 9 && key.compare(key.size() - 9, 9, ":Semantic") == 0 && d.toString() == "MotionPhoto")
            movies.insert(m[1]);
    }
    const bool others = items.size() > movies.size() + 1;
    eraseXmpIf(xmp, [&](const std::string& key) {
        if (key.rfind("Xmp.GCamera.MotionPhoto", 0) == 0 || key.rfind("Xmp.GCamera.MicroVideo", 0) == 0) return true;
        if (key.rfind("Xmp.Container.Directory", 0) != 0) return false;
        if (!others) return true;
        for (const std::string& n : movies)
            if (key.rfind("Xmp.Container.Directory[" + n + "]", 0) == 0) return true;
        return false;
    });
}

bool removesMotionPhoto(const PropertyDict& changes) {
    return changes.contains(kMotionPhotoDictionary) && Editor::allRemoved(changes.value(kMotionPhotoDictionary));
}

void applyChanges(const PropertyDict& before, const PropertyDict& changes, MetadataBlocks blocks) {
    Editor e{before, blocks};
    // A dictionary that removes every entry removes the XMP and IPTC blocks whole, with the
    // fields no key names; but where a motion photo's movie is stays said, as long as it stays.
    bool everything = false;
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        if (it.key() == kMotionPhotoDictionary) continue;
        everything = Editor::allRemoved(it.value());
        if (!everything) break;
    }
    if (everything) {
        eraseXmpIf(blocks.xmp, [](const std::string& key) { return !isMotionPhotoKey(key); });
        blocks.iptc.clear();
    }
    if (removesMotionPhoto(changes)) eraseMotionPhotoKeys(blocks.xmp);
    for (auto it = changes.begin(); it != changes.end(); ++it) {
        const QString& k = it.key();
        if ((k == kCGImagePropertyExifDictionary || k == kCGImagePropertyTIFFDictionary ||
             k == kCGImagePropertyIPTCDictionary) && Editor::allRemoved(it.value()))
            eraseWholeGroup(k, blocks);
        if (k == kCGImagePropertyExifDictionary)
            e.exifGroup(kCGImagePropertyExifDictionary, "Photo", exifTagKeys(), it.value());
        else if (k == kCGImagePropertyTIFFDictionary)
            e.exifGroup(kCGImagePropertyTIFFDictionary, "Image", tiffTagKeys(), it.value());
        else if (k == kCGImagePropertyGPSDictionary)
            e.gpsGroup(it.value());
        else if (k == kCGImagePropertyIPTCDictionary)
            e.iptcGroup(it.value());
        else if (k == kCGImagePropertyOrientation)
            e.orientation(it.value());
        else if (k.startsWith(QLatin1String("{Maker")) && Editor::allRemoved(it.value()))
            eraseExifIf(blocks.exif, [](const Exiv2::Exifdatum& d) {
                return Exiv2::ExifTags::isMakerGroup(d.groupName()) || d.groupName() == "MakerNote" ||
                       d.key() == "Exif.Photo.MakerNote";
            });
        else if (k == kCGImagePropertyExifAuxDictionary && Editor::allRemoved(it.value()))
            eraseXmpIf(blocks.xmp, [](const std::string& key) { return key.rfind("Xmp.aux.", 0) == 0; });
        else if (k == kXMPHistoryDictionary && Editor::allRemoved(it.value()))
            // Where the file came from and each program that saved it, with their document ids.
            eraseXmpIf(blocks.xmp, [](const std::string& key) {
                return key.rfind("Xmp.xmpMM.", 0) == 0 || key.rfind("Xmp.photoshop.DocumentAncestors", 0) == 0;
            });
    }
}

}  // namespace imageio
