// SPDX-License-Identifier: GPL-3.0-or-later
// Written by hand: libheif 1.15 can add metadata only while encoding an image anew, and exiv2
// 0.27 reads HEIF but does not write it. This rewriter touches the container alone (see
// HeifContainer): the item list, the item locations and references inside 'meta', and a new
// 'mdat' at the end holding the new Exif and XMP payloads. Every other byte, coded images, auxiliary images and thumbnails
// included, is copied as it is; only the offsets that point past 'meta' move with it.
#include "HeifRewriter.h"

#include "Exiv2Convert.h"
#include "HeifContainer.h"
#include "MetadataEdit.h"
#include "PropertyKeys.h"

#include <exiv2/exif.hpp>
#include <exiv2/xmp_exiv2.hpp>

#include <algorithm>
#include <cstring>
#include <vector>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {
namespace {

using namespace heif;

QByteArray infeBox(uint32_t id, const char* type, const QByteArray& contentType) {
    QByteArray body;
    const bool wide = id > 0xffff;
    put(body, id, wide ? 4 : 2);
    put(body, 0, 2);
    body.append(type, 4);
    body.append('\0');  // no name
    if (!contentType.isEmpty()) body.append(contentType).append('\0');
    return boxBytes("infe", body, wide ? 3 : 2);
}

// An Exif orientation as HEIF's transforms, applied in this order: a turn anticlockwise in
// quarter turns ('irot'), then a mirror ('imir'). The mirror's bit is read as the amended format
// and iPhones and libheif read it: 0 exchanges top and bottom, 1 left and right.
struct Transforms {
    int quarterTurns = 0;
    int mirror = -1;  // none
};
Transforms transformsFor(int orientation) {
    switch (orientation) {
    case 2: return {0, 1};
    case 3: return {2, -1};
    case 4: return {0, 0};
    case 5: return {3, 1};
    case 6: return {3, -1};
    case 7: return {1, 1};
    case 8: return {1, -1};
    default: return {};
    }
}

std::optional<int> orientationIn(const PropertyDict& dict) {
    QVariant v = dict.value(kCGImagePropertyOrientation);
    if (!v.isValid()) v = dict.value(kCGImagePropertyTIFFDictionary).toMap().value(kCGImagePropertyTIFFOrientation);
    bool ok = false;
    const int o = v.toInt(&ok);
    if (!ok || o < 1 || o > 8) return std::nullopt;
    return o;
}

// One item's property associations as 'ipma' keeps them: essential flag and property number.
struct Association {
    bool essential = false;
    uint32_t property = 0;
};

// The 'iprp' box with the primary image and its thumbnails turned to `orientation`: their old
// 'irot' and 'imir' associations go, and new ones come last, after the descriptive properties
// as the format asks. Identical transform boxes already in 'ipco' are reused.
QByteArray orientedIprp(const Container& heif, const Box& iprp, int orientation) {
    const QByteArray& b = heif.bytes;
    std::vector<uint32_t> turned{heif.primary};
    if (auto it = heif.references.find("thmb"); it != heif.references.end())
        for (const auto& [from, to] : it->second)
            if (std::find(to.begin(), to.end(), heif.primary) != to.end()) turned.push_back(from);

    const Transforms t = transformsFor(orientation);
    std::vector<QByteArray> added;  // boxes appended to 'ipco'
    auto propertyFor = [&](const char* type, int value) -> uint32_t {
        const QByteArray box = boxBytes(type, QByteArray(1, char(value)));
        for (size_t i = 0; i < heif.properties.size(); ++i)
            if (b.mid(heif.properties[i].offset, heif.properties[i].size) == box) return uint32_t(i + 1);
        for (size_t i = 0; i < added.size(); ++i)
            if (added[i] == box) return uint32_t(heif.properties.size() + i + 1);
        added.push_back(box);
        return uint32_t(heif.properties.size() + added.size());
    };
    std::vector<Association> transforms;
    if (t.quarterTurns) transforms.push_back({true, propertyFor("irot", t.quarterTurns)});
    if (t.mirror >= 0) transforms.push_back({true, propertyFor("imir", t.mirror)});
    auto isTransform = [&](uint32_t property) {
        if (property == 0 || property > heif.properties.size()) return false;
        const QByteArray& type = heif.properties[property - 1].type;
        return type == "irot" || type == "imir";
    };

    QByteArray inner;
    bool sawPrimary = false;
    for (const Box& box : boxes(b, iprp.body(), iprp.end())) {
        if (box.type == "ipco") {
            QByteArray body = b.mid(box.body(), box.end() - box.body());
            for (const QByteArray& a : added) body += a;
            inner += boxBytes("ipco", body);
            continue;
        }
        if (box.type != "ipma") {
            inner += b.mid(box.offset, box.size);
            continue;
        }
        Cursor m{b, box.body(), box.end()};
        const uint64_t versionAndFlags = m.read(4);
        const int version = int(versionAndFlags >> 24);
        uint32_t flags = uint32_t(versionAndFlags & 0xffffff);
        const bool wideId = version >= 1;
        std::vector<std::pair<uint32_t, std::vector<Association>>> entries;
        for (uint64_t n = m.read(4); n > 0; --n) {
            auto& [item, list] = entries.emplace_back(uint32_t(m.read(wideId ? 4 : 2)), std::vector<Association>{});
            for (uint64_t k = m.read(1); k > 0; --k) {
                const uint64_t v = m.read(flags & 1 ? 2 : 1);
                const int bits = flags & 1 ? 15 : 7;
                list.push_back({bool(v >> bits), uint32_t(v & ((1u << bits) - 1))});
            }
            if (std::find(turned.begin(), turned.end(), item) == turned.end()) continue;
            sawPrimary = sawPrimary || item == heif.primary;
            std::erase_if(list, [&](const Association& a) { return isTransform(a.property); });
            list.insert(list.end(), transforms.begin(), transforms.end());
            if (list.size() > 255) throw Broken("too many item properties");
        }
        if (heif.properties.size() + added.size() > 127) flags |= 1;
        if (heif.properties.size() + added.size() > 0x7fff) throw Broken("too many item properties");
        QByteArray body;
        put(body, entries.size(), 4);
        for (const auto& [item, list] : entries) {
            put(body, item, wideId ? 4 : 2);
            put(body, list.size(), 1);
            for (const Association& a : list)
                put(body, uint64_t(a.essential) << (flags & 1 ? 15 : 7) | a.property, flags & 1 ? 2 : 1);
        }
        inner += boxBytes("ipma", body, version, flags);
    }
    if (!sawPrimary) throw Broken("the primary image has no properties to turn");
    return boxBytes("iprp", inner);
}

// The Exif item starts with the distance to the TIFF header after these four bytes.
std::pair<QByteArray, QByteArray> splitExif(const QByteArray& item) {
    if (item.size() < 4) return {};
    Cursor c{item, 0, item.size()};
    const uint64_t skip = c.read(4);
    if (skip > uint64_t(item.size() - 4)) return {};
    return {item.left(4 + qsizetype(skip)), item.mid(4 + qsizetype(skip))};
}

}  // namespace

std::optional<Rewritten> rewriteHeif(const QByteArray& source, const PropertyDict& before, const PropertyDict& changes,
                                      QString* error) {
    initExiv2();
    try {
        Container heif(source);
        const auto exifItem = heif.item("Exif");
        const auto xmpItem = heif.item("mime", "application/rdf+xml");

        // The metadata as exiv2 sees it, changed as asked.
        Exiv2::ExifData exif;
        Exiv2::IptcData iptc;
        Exiv2::XmpData xmp;
        QByteArray exifPrefix("\0\0\0\x06" "Exif\0\0", 10), tiff;
        Exiv2::ByteOrder order = Exiv2::bigEndian;
        if (exifItem) {
            auto [prefix, body] = splitExif(heif.data(*exifItem));
            if (!body.isEmpty()) {
                exifPrefix = prefix;
                tiff = body;
                order = Exiv2::ExifParser::decode(exif, reinterpret_cast<const Exiv2::byte*>(tiff.constData()),
                                                  uint32_t(tiff.size()));
            }
        }
        // XMP work takes turns (see xmpMutex); the containers and the Exif block need not.
        std::unique_lock xmpTurn(xmpMutex());
        if (xmpItem) {
            const QByteArray packet = heif.data(*xmpItem);
            if (Exiv2::XmpParser::decode(xmp, packet.toStdString()) != 0) throw Broken("the XMP packet can't be read");
        }
        applyChanges(before, changes, MetadataBlocks{exif, iptc, xmp});
        // An orientation wish turns the picture by its transforms as well as by the Exif tag,
        // the two kept alike, since HEIF readers heed only the transforms.
        const auto wished = orientationIn(changes);
        const bool turn = wished && wished != orientationIn(before);
        std::string packet;
        if (!xmp.empty() && Exiv2::XmpParser::encode(packet, xmp, Exiv2::XmpParser::useCompactFormat) != 0)
            throw Broken("the XMP packet can't be written");
        const bool anyXmp = !xmp.empty();
        xmp.clear();
        xmpTurn.unlock();

        QByteArray newExif;
        if (exifItem || !exif.empty()) {
            Exiv2::Blob blob;
            QByteArray work = tiff;  // exiv2 updates this copy in place when it can
            const auto method = Exiv2::ExifParser::encode(blob, reinterpret_cast<const Exiv2::byte*>(work.constData()),
                                                          uint32_t(work.size()), order, exif);
            QByteArray encoded = method == Exiv2::wmIntrusive
                                     ? QByteArray(reinterpret_cast<const char*>(blob.data()), qsizetype(blob.size()))
                                     : work;
            // An empty directory still makes a valid Exif item.
            if (encoded.isEmpty()) encoded = QByteArray("MM\0*\0\0\0\x08\0\0\0\0\0\0", 14);
            newExif = exifPrefix + encoded;
        }
        QByteArray newXmp;
        if (xmpItem || anyXmp) {
            // An item of length 0 would mean "to the end of the file", so an emptied packet stays a packet.
            newXmp = packet.empty() ? QByteArray("<?xpacket begin=\"\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
                                                 "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF xmlns:rdf="
                                                 "\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"/></x:xmpmeta>"
                                                 "<?xpacket end=\"w\"?>")
                                    : QByteArray::fromStdString(packet);
        }

        // New items for metadata the file had no place for.
        uint32_t nextId = 1;
        for (const ItemInfo& i : heif.infos) nextId = qMax(nextId, i.id + 1);
        for (const Location& l : heif.iloc.items) nextId = qMax(nextId, l.item + 1);
        std::vector<std::pair<uint32_t, QByteArray>> added;  // id, infe
        const uint32_t exifId = exifItem ? *exifItem : (newExif.isEmpty() ? 0 : nextId++);
        const uint32_t xmpId = xmpItem ? *xmpItem : (newXmp.isEmpty() ? 0 : nextId++);
        if (!exifItem && exifId) added.emplace_back(exifId, infeBox(exifId, "Exif", {}));
        if (!xmpItem && xmpId) added.emplace_back(xmpId, infeBox(xmpId, "mime", "application/rdf+xml"));
        if (!added.empty() && !heif.primary) throw Broken("no primary image to describe");
        if (nextId > 0xffff && heif.iloc.version < 2) throw Broken("too many items");

        // The new 'meta': its item list, locations and references change, the rest is copied.
        ItemLocations iloc = heif.iloc;
        for (const auto& [id, infe] : added) iloc.items.push_back(Location{id, 0, 0, 0, {}});
        const qint64 oldMetaEnd = heif.meta->end();
        // A motion photo's movie box stays last, behind the new 'mdat', where its directory
        // (counted from the end of the file) finds it; a still made of it leaves the box out.
        const Box* movie = nullptr;
        for (const Box& box : heif.top)
            if (box.type == "mpvd" && box.offset >= oldMetaEnd) movie = &box;
        const bool still = removesMotionPhoto(changes);
        const qint64 tail = (movie ? movie->offset : source.size()) - oldMetaEnd;
        if (iloc.offsetSize == 0) iloc.offsetSize = 4;
        if (iloc.lengthSize == 0) iloc.lengthSize = 4;
        const qint64 roughEnd = source.size() + newExif.size() + newXmp.size() + 4096 + qint64(added.size()) * 64;
        if (roughEnd > 0xffffffffLL) iloc.offsetSize = iloc.lengthSize = 8;

        auto buildMeta = [&](qint64 metaSize, qint64 payloadAt) {
            const qint64 delta = heif.meta->offset + metaSize - oldMetaEnd;
            ItemLocations moved = iloc;
            for (Location& l : moved.items) {
                if (l.item == exifId || l.item == xmpId) {
                    const QByteArray& payload = l.item == exifId ? newExif : newXmp;
                    const qint64 at = payloadAt + (l.item == exifId ? 0 : newExif.size());
                    l.method = 0;
                    l.dataReference = 0;
                    l.base = 0;
                    l.extents = {Extent{0, uint64_t(at), uint64_t(payload.size())}};
                    continue;
                }
                if (l.method != 0 || l.dataReference != 0) continue;
                for (Extent& x : l.extents) {
                    const uint64_t start = l.base + x.offset;
                    if (start < uint64_t(oldMetaEnd)) throw Broken("image data inside the 'meta' box");
                }
                if (moved.baseSize > 0) l.base += uint64_t(delta);
                else
                    for (Extent& x : l.extents) x.offset += uint64_t(delta);
            }
            QByteArray body;
            put(body, 0, 4);  // version and flags of 'meta'
            bool hasIref = false, turned = false;
            for (const Box& child : heif.metaChildren) {
                const QByteArray raw = source.mid(child.offset, child.size);
                if (child.type == "iloc") {
                    body += moved.serialize();
                } else if (child.type == "iprp" && turn) {
                    body += orientedIprp(heif, child, *wished);
                    turned = true;
                } else if (child.type == "iinf" && !added.empty()) {
                    Cursor c{source, child.body(), child.end()};
                    c.read(4);
                    const uint64_t count = c.read(heif.iinfVersion == 0 ? 2 : 4) + added.size();
                    QByteArray inner;
                    put(inner, count, heif.iinfVersion == 0 ? 2 : 4);
                    inner += source.mid(c.at, child.end() - c.at);
                    for (const auto& [id, infe] : added) inner += infe;
                    body += boxBytes("iinf", inner, heif.iinfVersion);
                } else if (child.type == "iref" && !added.empty()) {
                    hasIref = true;
                    Cursor c{source, child.body(), child.end()};
                    const int v = int(c.read(4) >> 24);
                    QByteArray inner = source.mid(c.at, child.end() - c.at);
                    for (const auto& [id, infe] : added) {
                        QByteArray ref;
                        put(ref, id, v == 0 ? 2 : 4);
                        put(ref, 1, 2);
                        put(ref, heif.primary, v == 0 ? 2 : 4);
                        inner += boxBytes("cdsc", ref);
                    }
                    body += boxBytes("iref", inner, v);
                } else {
                    body += raw;
                }
            }
            if (turn && !turned) throw Broken("no item properties to turn the picture by");
            if (!added.empty() && !hasIref) {
                QByteArray inner;
                for (const auto& [id, infe] : added) {
                    QByteArray ref;
                    put(ref, id, 4);
                    put(ref, 1, 2);
                    put(ref, heif.primary, 4);
                    inner += boxBytes("cdsc", ref);
                }
                body += boxBytes("iref", inner, 1);
            }
            return boxBytes("meta", body.mid(4), 0);
        };
        // The meta box's size doesn't depend on the offsets written into it (field sizes are
        // fixed), so one trial build gives it.
        const qint64 metaSize = buildMeta(heif.meta->size, 0).size();
        const qint64 newMdatHeader = 8;
        const qint64 payloadAt = heif.meta->offset + metaSize + tail + newMdatHeader;
        const QByteArray meta = buildMeta(metaSize, payloadAt);

        // What comes before 'meta' and everything after it stay as they are; the new 'meta' goes between.
        const qint64 shift = heif.meta->offset + meta.size() - oldMetaEnd;
        Rewritten result = Rewritten::from(source);
        result.keep(0, heif.meta->offset);
        result.add(meta);
        result.keep(oldMetaEnd, tail);
        // The old payloads are wiped, so that a removed tag can't be found in the file any more.
        for (uint32_t id : {exifItem.value_or(0), xmpItem.value_or(0)}) {
            const Location* l = id ? heif.iloc.find(id) : nullptr;
            if (!l || l->method != 0) continue;
            for (const Extent& x : l->extents) {
                const uint64_t start = l->base + x.offset;
                if (x.length && start >= uint64_t(oldMetaEnd) && start < uint64_t(source.size()) &&
                    x.length <= uint64_t(source.size()) - start)
                    result.overwrite(qint64(start) + shift, QByteArray(qsizetype(x.length), '\0'));
            }
        }
        // A last box that ran "to the end of the file" must now say its size, or it would swallow the new one.
        for (const Box& box : heif.top) {
            if (box.offset < oldMetaEnd || box.end() != source.size() || movie) continue;
            Cursor c{source, box.offset, box.end()};
            if (c.read(4) == 0) {
                if (box.size > 0xffffffffLL) throw Broken("a last box too large to close");
                QByteArray size(4, '\0');
                for (int i = 0; i < 4; ++i) size[i] = char(uint64_t(box.size) >> (8 * (3 - i)) & 0xff);
                result.overwrite(box.offset + shift, size);
            }
        }
        result.add(boxBytes("mdat", newExif + newXmp));
        if (movie) {
            const qint64 from = still ? movie->end() : movie->offset;
            result.keep(from, source.size() - from);
        }
        return result;
    } catch (const std::exception& e) {
        if (error) *error = QString::fromLocal8Bit(e.what());
        return std::nullopt;
    }
}

}  // namespace imageio
