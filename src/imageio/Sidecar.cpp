// SPDX-License-Identifier: GPL-3.0-or-later
#include "Sidecar.h"

#include "Exiv2Convert.h"
#include "Log.h"
#include "MetadataEdit.h"
#include "PropertyKeys.h"

#include <exiv2/convert.hpp>

#include <QDir>
#include <algorithm>
#include <QFile>
#include <QFileInfo>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {
namespace {

// A number as XMP keeps it: "12", "12.5" or a rational "125/10".
std::optional<double> number(const QString& text) {
    bool ok = false;
    const qsizetype slash = text.indexOf(u'/');
    if (slash < 0) {
        const double d = text.toDouble(&ok);
        return ok ? std::optional(d) : std::nullopt;
    }
    const double num = text.left(slash).toDouble(&ok);
    if (!ok) return std::nullopt;
    const double den = text.mid(slash + 1).toDouble(&ok);
    return ok && den != 0 ? std::optional(num / den) : std::nullopt;
}

// XMP's GPSCoordinate, "DDD,MM,SSk" or "DDD,MM.mmk": unsigned degrees and the reference letter.
std::optional<std::pair<double, QString>> coordinate(const QString& text) {
    const QString ref = text.right(1).toUpper();
    if (ref.isEmpty() || !QStringLiteral("NSEW").contains(ref)) return std::nullopt;
    const QStringList parts = text.chopped(1).split(u',');
    if (parts.size() < 2 || parts.size() > 3) return std::nullopt;
    double degrees = 0, scale = 1;
    for (const QString& part : parts) {
        const auto d = number(part.trimmed());
        if (!d || *d < 0) return std::nullopt;
        degrees += *d / scale;
        scale *= 60;
    }
    return std::pair{degrees, ref};
}

// The place a sidecar keeps, which the reader of embedded XMP never needs: there EXIF has it.
void addGps(const XmpPacket& packet, PropertyDict& top) {
    PropertyDict gps;
    const auto put = [&](const char* xmpKey, const char* key, const char* refKey) {
        const XmpProperty* p = packet.find(QString::fromLatin1(xmpKey));
        const auto c = p ? coordinate(p->toString()) : std::nullopt;
        if (!c) return;
        gps.insert(key, c->first);
        gps.insert(refKey, c->second);
    };
    put("Xmp.exif.GPSLatitude", kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef);
    put("Xmp.exif.GPSLongitude", kCGImagePropertyGPSLongitude, kCGImagePropertyGPSLongitudeRef);
    if (const XmpProperty* p = packet.find(QStringLiteral("Xmp.exif.GPSAltitude")))
        if (const auto altitude = number(p->toString())) gps.insert(kCGImagePropertyGPSAltitude, *altitude);
    if (const XmpProperty* p = packet.find(QStringLiteral("Xmp.exif.GPSAltitudeRef")))
        if (const auto ref = number(p->toString())) gps.insert(kCGImagePropertyGPSAltitudeRef, qint64(*ref));
    if (!gps.isEmpty()) top.insert(kCGImagePropertyGPSDictionary, gps);
}

// `from` laid over `into`: groups merged key by key, everything else replaced.
void overlay(PropertyDict& into, const PropertyDict& from) {
    for (auto it = from.begin(); it != from.end(); ++it) {
        const QVariant old = into.value(it.key());
        if (it.value().typeId() == QMetaType::QVariantMap && old.typeId() == QMetaType::QVariantMap) {
            PropertyDict merged = old.toMap();
            overlay(merged, it.value().toMap());
            into.insert(it.key(), merged);
        } else {
            into.insert(it.key(), it.value());
        }
    }
}

QVariant sectionValue(const XmpProperty& p) {
    if (p.kind == XmpProperty::Kind::Array) return QVariant(p.items).toList();
    return p.values().value(0);
}

}  // namespace

QStringList sidecarCandidates(const QString& photoPath) {
    const QFileInfo photo(photoPath);
    const QDir folder = photo.dir();
    const QString base = photo.completeBaseName(), ext = photo.suffix();
    // The photo's extension as it is, in small and in capital letters; then the base name alone.
    QStringList out;
    for (const QString& e : {ext, ext.toLower(), ext.toUpper()})
        for (const char* xmp : {".xmp", ".XMP"})
            if (const QString p = folder.filePath(base + '.' + e + xmp); !out.contains(p)) out << p;
    for (const char* xmp : {".xmp", ".XMP"}) out << folder.filePath(base + xmp);
    return out;
}

SidecarFiles findSidecar(const QString& photoPath) {
    const QStringList candidates = sidecarCandidates(photoPath);
    // NAME.EXT.xmp in any of its spellings, then NAME.xmp; the last two are the base name's.
    const auto firstOf = [&](qsizetype from, qsizetype to) {
        for (qsizetype i = from; i < to; ++i)
            if (QFileInfo(candidates[i]).isFile()) return candidates[i];
        return QString();
    };
    const qsizetype split = candidates.size() - 2;
    const QString withExtension = firstOf(0, split), baseName = firstOf(split, candidates.size());
    SidecarFiles files;
    files.found = withExtension.isEmpty() ? baseName : withExtension;
    if (!withExtension.isEmpty() && baseName != withExtension) files.ignored = baseName;
    return files;
}

QString newSidecarPath(const QString& photoPath, bool baseName) {
    const QFileInfo photo(photoPath);
    return photo.dir().filePath((baseName ? photo.completeBaseName() : photo.fileName()) + QStringLiteral(".xmp"));
}

std::optional<XmpPacket> readSidecar(const QString& sidecarPath, QString* error, QByteArray* bytesOut) {
    QFile file(sidecarPath);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error) *error = file.errorString();
        return std::nullopt;
    }
    if (file.size() > kMaxSidecarSize) {
        if (error) *error = QStringLiteral("is larger than %1 MiB").arg(kMaxSidecarSize >> 20);
        return std::nullopt;
    }
    const QByteArray bytes = file.read(kMaxSidecarSize + 1);
    if (bytes.size() > kMaxSidecarSize) {
        if (error) *error = QStringLiteral("is larger than %1 MiB").arg(kMaxSidecarSize >> 20);
        return std::nullopt;
    }
    if (bytesOut) *bytesOut = bytes;
    return parseXmpPacket(bytes, error);
}

void laySidecarOver(const XmpPacket& packet, const QString& sidecarPath, PropertyDict& top) {
    PropertyDict own;
    addXmp(packet, own);
    addGps(packet, own);
    // dc:description stands for the photo's description too (EXIF's ImageDescription), which the
    // detail shows: a catalogue's description must not lose to the camera's.
    if (const XmpProperty* d = packet.find(QStringLiteral("Xmp.dc.description")); d && !d->values().isEmpty()) {
        PropertyDict tiff = own.value(kCGImagePropertyTIFFDictionary).toMap();
        tiff.insert(kCGImagePropertyTIFFImageDescription, d->values().join(QStringLiteral(", ")));
        own.insert(kCGImagePropertyTIFFDictionary, tiff);
    }
    overlay(top, own);
    PropertyDict section;
    for (const auto& [key, value] : packet.properties) section.insert(key, sectionValue(value));
    section.insert(QStringLiteral("File"), QFileInfo(sidecarPath).fileName());
    top.insert(kSidecarDictionary, section);
}

void addSidecar(const QString& photoPath, PropertyDict& top) {
    const SidecarFiles files = findSidecar(photoPath);
    if (files.found.isEmpty()) return;
    if (!files.ignored.isEmpty())
        Log::info("📝 " + photoPath + ": two sidecars; " + QFileInfo(files.found).fileName() + " is read, " +
                  QFileInfo(files.ignored).fileName() + " is ignored");
    QString error;
    if (auto packet = readSidecar(files.found, &error)) laySidecarOver(*packet, files.found, top);
    else Log::warning("📝 " + files.found + " " + error + "; the sidecar is ignored");
}

std::optional<QByteArray> rewriteSidecar(const QByteArray& existing, const PropertyDict& before,
                                         const PropertyDict& changes, const QString& photoExtension, QString* error) {
    const auto fail = [&](const QString& why) {
        if (error) *error = why;
        return std::nullopt;
    };
    initExiv2();
    std::lock_guard turn(xmpMutex());
    try {
        Exiv2::XmpData xmp;
        if (!existing.isEmpty() && Exiv2::XmpParser::decode(xmp, existing.toStdString()) != 0)
            return fail(QStringLiteral("exiv2 can't read the sidecar"));
        // The EXIF and TIFF values the sidecar holds, as the writer's tables know them; what the
        // changes do to them is carried back to their XMP homes.
        Exiv2::ExifData exifBefore;
        Exiv2::copyXmpToExif(xmp, exifBefore);
        Exiv2::ExifData exif = exifBefore;
        Exiv2::IptcData iptc;
        applyChanges(before, changes, MetadataBlocks{exif, iptc, xmp});
        const auto differs = [&](const Exiv2::Exifdatum& d) {
            const auto old = exifBefore.findKey(Exiv2::ExifKey(d.key()));
            return old == exifBefore.end() || old->toString() != d.toString();
        };
        // A coordinate converts with its reference, which `before` may have had from the photo
        // and so was not written: a changed place goes over whole, as wished.
        const QVariant place = changes.value(kCGImagePropertyGPSDictionary);
        const bool placeChanged = place.typeId() == QMetaType::QVariantMap &&
            std::any_of(exif.begin(), exif.end(), [&](const Exiv2::Exifdatum& d) { return d.groupName() == "GPSInfo" && differs(d); });
        if (placeChanged) applyChanges({}, {{kCGImagePropertyGPSDictionary, place}}, MetadataBlocks{exif, iptc, xmp});
        Exiv2::ExifData changed;
        for (const Exiv2::Exifdatum& d : exif)
            if (differs(d) || (placeChanged && d.groupName() == "GPSInfo")) changed.add(d);
        for (const Exiv2::Exifdatum& d : exifBefore) {
            if (exif.findKey(Exiv2::ExifKey(d.key())) != exif.end()) continue;
            // A removed tag: its XMP homes are found by converting it alone.
            Exiv2::ExifData gone;
            gone.add(d);
            Exiv2::XmpData homes;
            Exiv2::copyExifToXmp(gone, homes);
            for (const Exiv2::Xmpdatum& h : homes) {
                const auto it = xmp.findKey(Exiv2::XmpKey(h.key()));
                if (it != xmp.end()) xmp.erase(it);
            }
        }
        Exiv2::copyExifToXmp(changed, xmp);
        // exiv2 gives the original date to photoshop:DateCreated alone; raw developers and
        // catalogues read exif:DateTimeOriginal.
        if (changed.findKey(Exiv2::ExifKey("Exif.Photo.DateTimeOriginal")) != changed.end()) {
            const auto created = xmp.findKey(Exiv2::XmpKey("Xmp.photoshop.DateCreated"));
            if (created != xmp.end()) xmp["Xmp.exif.DateTimeOriginal"] = created->toString();
        }
        if (existing.isEmpty()) xmp["Xmp.photoshop.SidecarForExtension"] = photoExtension.toStdString();
        std::string packet;
        if (Exiv2::XmpParser::encode(packet, xmp, Exiv2::XmpParser::omitPacketWrapper | Exiv2::XmpParser::useCompactFormat) != 0)
            return fail(QStringLiteral("exiv2 can't write the sidecar"));
        return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n") + QByteArray::fromStdString(packet);
    } catch (const std::exception& e) {
        return fail(QString::fromLocal8Bit(e.what()));
    }
}

}  // namespace imageio
