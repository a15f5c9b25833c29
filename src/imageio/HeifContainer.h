// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The boxes of a HEIF or AVIF file that say where its items are and what they are: the item
// list, their locations, references and properties inside 'meta'. Shared by the metadata
// reader and the rewriter; the coded images themselves are never looked at.
#include <QByteArray>

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <vector>

namespace imageio::heif {

struct Broken : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Big-endian reads that refuse to run past the end.
struct Cursor {
    const QByteArray& b;
    qint64 at, end;

    uint64_t read(int bytes);
    QByteArray text();  // a NUL-terminated text
};

void put(QByteArray& out, uint64_t v, int bytes);

struct Box {
    QByteArray type;
    qint64 offset = 0, size = 0, header = 0;
    qint64 end() const { return offset + size; }
    qint64 body() const { return offset + header; }
};

std::vector<Box> boxes(const QByteArray& b, qint64 from, qint64 to);
QByteArray boxBytes(const char* type, const QByteArray& body, int fullBoxVersion = -1, uint32_t flags = 0);

struct Extent {
    uint64_t index = 0, offset = 0, length = 0;
};
struct Location {
    uint32_t item = 0;
    int method = 0;
    uint16_t dataReference = 0;
    uint64_t base = 0;
    std::vector<Extent> extents;
};
struct ItemLocations {
    int version = 0, offsetSize = 4, lengthSize = 4, baseSize = 0, indexSize = 0;
    std::vector<Location> items;

    void parse(Cursor c);
    QByteArray serialize() const;
    const Location* find(uint32_t item) const;
};

struct ItemInfo {
    uint32_t id = 0;
    QByteArray type, contentType;
};

// A piece of an item: `length` bytes at `offset` in the file, or in the 'idat' box's body.
struct ItemPiece {
    bool inIdat = false;
    uint64_t offset = 0, length = 0;
};

// What the readers take from the primary image, as libheif gives it.
struct PrimaryImage {
    int width = 0, height = 0;
    int lumaBits = 0;  // 0 where the coding doesn't say
    bool alpha = false;
    QByteArray icc;
    std::vector<uint32_t> metadata;  // the Exif and XMP items about it, in item order
};

struct Container {
    const QByteArray& bytes;  // the file, or its first bytes up to the end of 'meta'
    std::vector<Box> top;
    const Box* meta = nullptr;
    std::vector<Box> metaChildren;
    ItemLocations iloc;
    std::vector<ItemInfo> infos;
    int iinfVersion = 0;
    uint32_t primary = 0;
    const Box* idat = nullptr;
    // References by kind ("cdsc", "dimg", "auxl"): item -> the items it names.
    std::map<QByteArray, std::map<uint32_t, std::vector<uint32_t>>> references;
    std::vector<Box> properties;                        // 'ipco', in order: property n is [n - 1]
    std::map<uint32_t, std::vector<uint32_t>> associations;  // 'ipma': item -> property numbers

    explicit Container(const QByteArray& b);

    // The metadata item of this kind that describes the primary image: one whose 'cdsc'
    // reference names it, else one that names no image. An item about another image is not the
    // photo's (an iPhone's HDR gain map has XMP of its own).
    std::optional<uint32_t> item(const char* type, const char* contentType = nullptr) const;
    const ItemInfo* info(uint32_t id) const;
    // The item's pieces; a length of 0 runs to the end of the file (`fileSize`) or of 'idat'.
    std::vector<ItemPiece> pieces(uint32_t id, qint64 fileSize) const;
    // The item's bytes, when `bytes` holds the whole file.
    QByteArray data(uint32_t id) const;
    PrimaryImage primaryImage() const;

private:
    std::vector<const Box*> propertiesOf(uint32_t item) const;
    const std::vector<uint32_t>* referenced(const char* kind, uint32_t from) const;  // none: nullptr
};

// The first bytes of a file, up to the end of its 'meta' box, by positioned reads; `read(at,
// into, n)` gives the number of bytes read. A file with its image data first reads up to there.
template <typename Read>
QByteArray headThroughMeta(qint64 fileSize, Read read) {
    qint64 at = 0;
    for (int count = 0; at + 8 <= fileSize && count < 4096; ++count) {
        char h[16];
        const qint64 got = read(at, h, qMin<qint64>(16, fileSize - at));
        if (got < 8) break;
        const auto be = [&](int from, int n) {
            uint64_t v = 0;
            for (int i = from; i < from + n; ++i) v = v << 8 | uint8_t(h[i]);
            return v;
        };
        uint64_t size = be(0, 4);
        if (size == 1 && got >= 16) size = be(8, 8);
        else if (size == 0) size = uint64_t(fileSize - at);
        if (size < 8 || size > uint64_t(fileSize - at)) break;
        if (QByteArray(h + 4, 4) == "meta") {
            QByteArray head(at + qint64(size), Qt::Uninitialized);
            if (read(0, head.data(), head.size()) != head.size()) throw Broken("the file can't be read");
            return head;
        }
        at += qint64(size);
    }
    throw Broken("no 'meta' box");
}

}  // namespace imageio::heif
