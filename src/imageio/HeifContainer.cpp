// SPDX-License-Identifier: GPL-3.0-or-later
// Written by hand: libheif interprets every item of a file when it opens it (each tile of a
// grid, each thumbnail and auxiliary image), about 2.5 million instructions for an iPhone photo,
// where metadata needs a few boxes of 'meta'. The rewriter needs the same boxes, which libheif
// 1.15 can't write.
#include "HeifContainer.h"

#include <algorithm>

namespace imageio::heif {

uint64_t Cursor::read(int bytes) {
    if (bytes < 0 || at + bytes > end) throw Broken("the HEIF container is cut short");
    uint64_t v = 0;
    for (int i = 0; i < bytes; ++i) v = v << 8 | uint8_t(b[at + i]);
    at += bytes;
    return v;
}

QByteArray Cursor::text() {
    qint64 nul = at;
    while (nul < end && b[nul] != '\0') ++nul;
    QByteArray out = b.mid(at, nul - at);
    at = qMin(nul + 1, end);
    return out;
}

void put(QByteArray& out, uint64_t v, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) out.append(char(v >> (8 * i) & 0xff));
}

std::vector<Box> boxes(const QByteArray& b, qint64 from, qint64 to) {
    std::vector<Box> out;
    while (from < to) {
        Cursor c{b, from, to};
        Box box;
        box.offset = from;
        box.size = qint64(c.read(4));
        box.type = b.mid(c.at, 4);
        c.read(4);
        if (box.size == 1) box.size = qint64(c.read(8));
        else if (box.size == 0) box.size = to - from;
        box.header = c.at - from;
        if (box.size < box.header || box.size > to - from) throw Broken("a HEIF box runs past its container");
        out.push_back(box);
        from += box.size;
    }
    return out;
}

QByteArray boxBytes(const char* type, const QByteArray& body, int fullBoxVersion, uint32_t flags) {
    QByteArray out;
    const qint64 size = 8 + (fullBoxVersion >= 0 ? 4 : 0) + body.size();
    if (size > 0xffffffffLL) throw Broken("a HEIF box grew too large");
    put(out, uint64_t(size), 4);
    out.append(type, 4);
    if (fullBoxVersion >= 0) put(out, uint64_t(fullBoxVersion) << 24 | flags, 4);
    return out + body;
}

void ItemLocations::parse(Cursor c) {
    version = int(c.read(4) >> 24);
    if (version > 2) throw Broken("an unknown HEIF item location version");
    const uint64_t sizes = c.read(2);
    offsetSize = int(sizes >> 12 & 0xf), lengthSize = int(sizes >> 8 & 0xf), baseSize = int(sizes >> 4 & 0xf);
    indexSize = version >= 1 ? int(sizes & 0xf) : 0;
    for (int s : {offsetSize, lengthSize, baseSize, indexSize})
        if (s != 0 && s != 4 && s != 8) throw Broken("odd HEIF item location field sizes");
    const uint64_t count = c.read(version < 2 ? 2 : 4);
    for (uint64_t i = 0; i < count; ++i) {
        Location l;
        l.item = uint32_t(c.read(version < 2 ? 2 : 4));
        if (version >= 1) l.method = int(c.read(2) & 0xf);
        l.dataReference = uint16_t(c.read(2));
        l.base = c.read(baseSize);
        const uint64_t extents = c.read(2);
        for (uint64_t e = 0; e < extents; ++e) {
            Extent x;
            if (version >= 1 && indexSize > 0) x.index = c.read(indexSize);
            x.offset = c.read(offsetSize);
            x.length = c.read(lengthSize);
            l.extents.push_back(x);
        }
        items.push_back(l);
    }
}

QByteArray ItemLocations::serialize() const {
    QByteArray body;
    put(body, uint64_t(offsetSize << 12 | lengthSize << 8 | baseSize << 4 | indexSize), 2);
    put(body, items.size(), version < 2 ? 2 : 4);
    for (const Location& l : items) {
        put(body, l.item, version < 2 ? 2 : 4);
        if (version >= 1) put(body, uint64_t(l.method), 2);
        put(body, l.dataReference, 2);
        put(body, l.base, baseSize);
        put(body, l.extents.size(), 2);
        for (const Extent& x : l.extents) {
            if (version >= 1 && indexSize > 0) put(body, x.index, indexSize);
            put(body, x.offset, offsetSize);
            put(body, x.length, lengthSize);
        }
    }
    return boxBytes("iloc", body, version);
}

const Location* ItemLocations::find(uint32_t item) const {
    for (const Location& l : items)
        if (l.item == item) return &l;
    return nullptr;
}

Container::Container(const QByteArray& b) : bytes(b) {
    top = boxes(b, 0, b.size());
    for (const Box& box : top)
        if (box.type == "meta") {
            if (meta) throw Broken("two 'meta' boxes");
            meta = &box;
        }
    if (!meta) throw Broken("no 'meta' box");
    metaChildren = boxes(b, meta->body() + 4, meta->end());
    bool sawIloc = false, sawIinf = false;
    for (const Box& child : metaChildren) {
        Cursor c{b, child.body(), child.end()};
        if (child.type == "iloc") {
            iloc.parse(c);
            sawIloc = true;
        } else if (child.type == "iinf") {
            iinfVersion = int(c.read(4) >> 24);
            c.read(iinfVersion == 0 ? 2 : 4);
            for (const Box& infe : boxes(b, c.at, child.end())) {
                if (infe.type != "infe") continue;
                Cursor e{b, infe.body(), infe.end()};
                const int v = int(e.read(4) >> 24);
                if (v < 2) continue;
                ItemInfo info;
                info.id = uint32_t(e.read(v == 2 ? 2 : 4));
                e.read(2);
                info.type = b.mid(e.at, 4);
                e.read(4);
                e.text();  // name
                if (info.type == "mime") info.contentType = e.text();
                infos.push_back(info);
            }
            sawIinf = true;
        } else if (child.type == "pitm") {
            const int v = int(c.read(4) >> 24);
            primary = uint32_t(c.read(v == 0 ? 2 : 4));
        } else if (child.type == "idat") {
            idat = &child;
        } else if (child.type == "iref") {
            const int v = int(c.read(4) >> 24);
            for (const Box& ref : boxes(b, c.at, child.end())) {
                Cursor r{b, ref.body(), ref.end()};
                const uint32_t from = uint32_t(r.read(v == 0 ? 2 : 4));
                auto& to = references[ref.type][from];
                for (uint64_t n = r.read(2); n > 0; --n) to.push_back(uint32_t(r.read(v == 0 ? 2 : 4)));
            }
        } else if (child.type == "iprp") {
            for (const Box& box : boxes(b, child.body(), child.end())) {
                if (box.type == "ipco") {
                    properties = boxes(b, box.body(), box.end());
                } else if (box.type == "ipma") {
                    Cursor m{b, box.body(), box.end()};
                    const uint64_t versionAndFlags = m.read(4);
                    const bool wideId = versionAndFlags >> 24 >= 1, wideIndex = versionAndFlags & 1;
                    for (uint64_t n = m.read(4); n > 0; --n) {
                        auto& list = associations[uint32_t(m.read(wideId ? 4 : 2))];
                        for (uint64_t k = m.read(1); k > 0; --k)
                            list.push_back(uint32_t(m.read(wideIndex ? 2 : 1) & (wideIndex ? 0x7fff : 0x7f)));
                    }
                }
            }
        }
    }
    if (!sawIloc || !sawIinf) throw Broken("no item list or item locations");
}

std::optional<uint32_t> Container::item(const char* type, const char* contentType) const {
    std::optional<uint32_t> unlinked;
    for (const ItemInfo& i : infos) {
        if (i.type != type || (contentType && i.contentType != contentType)) continue;
        const auto* about = referenced("cdsc", i.id);
        if (!about) {
            if (!unlinked) unlinked = i.id;
        } else if (std::find(about->begin(), about->end(), primary) != about->end()) {
            return i.id;
        }
    }
    return unlinked;
}

const ItemInfo* Container::info(uint32_t id) const {
    for (const ItemInfo& i : infos)
        if (i.id == id) return &i;
    return nullptr;
}

const std::vector<uint32_t>* Container::referenced(const char* kind, uint32_t from) const {
    const auto k = references.find(kind);
    if (k == references.end()) return nullptr;
    const auto f = k->second.find(from);
    return f == k->second.end() ? nullptr : &f->second;
}

std::vector<ItemPiece> Container::pieces(uint32_t id, qint64 fileSize) const {
    const Location* l = iloc.find(id);
    if (!l) return {};
    if (l->dataReference != 0 || l->method > 1 || (l->method == 1 && !idat))
        throw Broken("an item stored in a way this reader does not follow");
    const uint64_t limit = uint64_t(l->method == 1 ? idat->size - idat->header : fileSize);
    std::vector<ItemPiece> out;
    uint64_t total = 0;
    for (const Extent& x : l->extents) {
        const uint64_t start = l->base + x.offset;
        if (start < l->base || start > limit) throw Broken("an item lies outside the file");
        const uint64_t length = x.length ? x.length : limit - start;
        if (length > limit - start || (total += length) > (64 << 20)) throw Broken("an item lies outside the file");
        out.push_back(ItemPiece{l->method == 1, start, length});
    }
    return out;
}

QByteArray Container::data(uint32_t id) const {
    QByteArray out;
    for (const ItemPiece& p : pieces(id, bytes.size()))
        out.append(bytes.constData() + (p.inIdat ? idat->body() : 0) + p.offset, qsizetype(p.length));
    return out;
}

std::vector<const Box*> Container::propertiesOf(uint32_t item) const {
    std::vector<const Box*> out;
    const auto a = associations.find(item);
    if (a == associations.end()) return out;
    for (uint32_t n : a->second)
        if (n >= 1 && n <= properties.size()) out.push_back(&properties[n - 1]);
    return out;
}

PrimaryImage Container::primaryImage() const {
    if (!primary || !info(primary)) throw Broken("no primary image");
    PrimaryImage image;
    for (const Box* p : propertiesOf(primary)) {
        Cursor c{bytes, p->body(), p->end()};
        if (p->type == "ispe") {
            c.read(4);
            image.width = int(std::min<uint64_t>(c.read(4), INT32_MAX));
            image.height = int(std::min<uint64_t>(c.read(4), INT32_MAX));
        } else if (p->type == "colr") {
            const uint64_t kind = c.read(4);
            // Profiles as libheif takes them: the last one given wins.
            if (kind == 0x70726f66 || kind == 0x72494343) image.icc = bytes.mid(c.at, c.end - c.at);  // prof, rICC
        }
    }
    // A grid, an overlay or a derived image is coded in the first image it is made of.
    uint32_t coded = primary;
    const QByteArray type = info(primary)->type;
    if (type == "grid" || type == "iovl" || type == "iden") {
        const auto* parts = referenced("dimg", primary);
        coded = parts && !parts->empty() ? parts->front() : 0;
    }
    const ItemInfo* codedInfo = coded ? info(coded) : nullptr;
    for (const Box* p : codedInfo ? propertiesOf(coded) : std::vector<const Box*>{}) {
        Cursor c{bytes, p->body(), p->end()};
        if (codedInfo->type == "hvc1" && p->type == "hvcC") {
            c.at += 17;
            image.lumaBits = int(c.read(1) & 0x07) + 8;
        } else if (codedInfo->type == "av01" && p->type == "av1C") {
            c.at += 2;
            const uint64_t flags = c.read(1);
            image.lumaBits = !(flags & 0x40) ? 8 : (flags & 0x20) ? 12 : 10;
        }
    }
    // An auxiliary image of the alpha kind makes the image it belongs to transparent.
    for (const ItemInfo& aux : infos) {
        const auto* masters = referenced("auxl", aux.id);
        if (!masters || masters->empty() || masters->front() != primary) continue;
        for (const Box* p : propertiesOf(aux.id)) {
            if (p->type != "auxC") continue;
            Cursor c{bytes, p->body(), p->end()};
            c.read(4);
            const QByteArray kind = c.text();
            image.alpha = image.alpha || kind == "urn:mpeg:hevc:2015:auxid:1" || kind == "urn:mpeg:avc:2015:auxid:1" ||
                          kind == "urn:mpeg:mpegB:cicp:systems:auxiliary:alpha";
        }
    }
    for (const ItemInfo& i : infos) {
        if (i.type != "Exif" && i.type != "mime") continue;
        const auto* about = referenced("cdsc", i.id);
        if (about && std::find(about->begin(), about->end(), primary) != about->end()) image.metadata.push_back(i.id);
    }
    return image;
}

}  // namespace imageio::heif
