// SPDX-License-Identifier: GPL-3.0-or-later
#include "HeifReading.h"

#include "Containers.h"
#include "Exiv2Convert.h"
#include "FileBytes.h"
#include "HeifContainer.h"
#include "PropertyKeys.h"
#include "Rewritten.h"

#include <exiv2/exiv2.hpp>
#include <libheif/heif.h>

#include <memory>
#include <vector>

namespace imageio {
namespace {

using HeifContext = std::unique_ptr<heif_context, decltype(&heif_context_free)>;

struct HeifBlock {
    QByteArray type, contentType, data;
};

// A HEIF image's dictionary from what its container says of the primary image.
PropertyDict heifProperties(const heif::PrimaryImage& image, const std::vector<HeifBlock>& blocks, qint64 fileSize) {
    PropertyDict top;
    ImageFacts facts;
    if (image.width > 0 && image.height > 0) {
        facts.width = image.width;
        facts.height = image.height;
    }
    if (image.lumaBits > 0) facts.depth = image.lumaBits;
    facts.hasAlpha = image.alpha;
    facts.colorModel = kCGImagePropertyColorModelRGB;
    setFacts(facts, top);
    if (!image.icc.isEmpty()) addProfile(image.icc, top);

    Exiv2::ExifData exif;
    std::optional<XmpPacket> xmp;
    for (const HeifBlock& block : blocks) {
        try {
            if (block.type == "Exif" && block.data.size() > 4) {
                // The block opens with the offset of the TIFF header after these four bytes.
                const QByteArray& b = block.data;
                uint32_t skip = uint32_t(uint8_t(b[0])) << 24 | uint32_t(uint8_t(b[1])) << 16 |
                                uint32_t(uint8_t(b[2])) << 8 | uint8_t(b[3]);
                if (skip < uint32_t(b.size() - 4)) {
                    const char* tiff = b.constData() + 4 + skip;
                    Exiv2::ExifParser::decode(exif, reinterpret_cast<const Exiv2::byte*>(tiff), uint32_t(b.size() - 4 - skip));
                }
            } else if (block.type == "mime" && block.contentType == "application/rdf+xml") {
                xmp = parseXmpPacket(block.data);
            }
        } catch (const std::exception&) {
            // A broken block is skipped; the image and the other blocks still count.
        }
    }
    addExif(exif, top);
    if (xmp) addXmp(*xmp, top);
    addTiffResolution(top);
    top.insert(kCGImagePropertyFileSize, fileSize);
    return top;
}

// Our own reading of the container (see HeifContainer). `head` is the file up to the end of
// 'meta'; `item` gives an item's bytes.
template <typename Item>
std::optional<PropertyDict> readHeifBoxes(const QByteArray& head, qint64 fileSize, Item item, QString* error) {
    try {
        const heif::Container heif(head);
        const heif::PrimaryImage image = heif.primaryImage();
        std::vector<HeifBlock> blocks;
        for (uint32_t id : image.metadata) {
            const heif::ItemInfo* info = heif.info(id);
            try {
                QByteArray data = item(heif, id);
                if (!data.isEmpty()) blocks.push_back(HeifBlock{info->type, info->contentType, std::move(data)});
            } catch (const heif::Broken&) {
                // An item that can't be fetched is skipped, like a broken one.
            }
        }
        return heifProperties(image, blocks, fileSize);
    } catch (const heif::Broken& e) {
        if (error) *error = QString::fromUtf8(e.what());
        return std::nullopt;
    }
}

// libheif reads what the writer made: a reader apart from the writer's own container code.
std::optional<PropertyDict> readHeif(heif_context* ctx, heif_error err, qint64 fileSize, QString* error) {
    if (err.code != heif_error_Ok) {
        if (error) *error = QString::fromUtf8(err.message);
        return std::nullopt;
    }
    heif_image_handle* raw = nullptr;
    err = heif_context_get_primary_image_handle(ctx, &raw);
    if (err.code != heif_error_Ok || !raw) {
        if (error) *error = QString::fromUtf8(err.message);
        return std::nullopt;
    }
    std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)> handle(raw, heif_image_handle_release);
    heif::PrimaryImage image;
    image.width = heif_image_handle_get_ispe_width(handle.get());
    image.height = heif_image_handle_get_ispe_height(handle.get());
    image.lumaBits = qMax(0, heif_image_handle_get_luma_bits_per_pixel(handle.get()));
    image.alpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
    const auto profileType = heif_image_handle_get_color_profile_type(handle.get());
    if (profileType == heif_color_profile_type_prof || profileType == heif_color_profile_type_rICC) {
        image.icc = QByteArray(qsizetype(heif_image_handle_get_raw_color_profile_size(handle.get())), Qt::Uninitialized);
        if (heif_image_handle_get_raw_color_profile(handle.get(), image.icc.data()).code != heif_error_Ok) image.icc.clear();
    }
    std::vector<HeifBlock> blocks;
    const int count = heif_image_handle_get_number_of_metadata_blocks(handle.get(), nullptr);
    std::vector<heif_item_id> ids(size_t(qMax(count, 0)));
    if (count > 0) heif_image_handle_get_list_of_metadata_block_IDs(handle.get(), nullptr, ids.data(), count);
    for (heif_item_id id : ids) {
        QByteArray block(qsizetype(heif_image_handle_get_metadata_size(handle.get(), id)), Qt::Uninitialized);
        if (block.isEmpty() || heif_image_handle_get_metadata(handle.get(), id, block.data()).code != heif_error_Ok)
            continue;
        blocks.push_back(HeifBlock{heif_image_handle_get_metadata_type(handle.get(), id),
                                   heif_image_handle_get_metadata_content_type(handle.get(), id), block});
    }
    return heifProperties(image, blocks, fileSize);
}

// libheif asks for boxes and items by position; the file's image data is never asked for.
// `Source` is anything with read(at, into, n) and size().
template <typename Source>
struct HeifReader {
    Source& source;
    qint64 position = 0;

    static HeifReader& of(void* userdata) { return *static_cast<HeifReader*>(userdata); }
    static const heif_reader* callbacks() {
        static const heif_reader reader{
            1,
            [](void* u) -> int64_t { return of(u).position; },
            [](void* data, size_t size, void* u) -> int {
                HeifReader& r = of(u);
                if (r.source.read(r.position, static_cast<char*>(data), qint64(size)) != qint64(size)) return -1;
                r.position += qint64(size);
                return 0;
            },
            [](int64_t position, void* u) -> int {
                HeifReader& r = of(u);
                if (position < 0 || position > r.source.size()) return -1;
                r.position = position;
                return 0;
            },
            [](int64_t target, void* u) -> heif_reader_grow_status {
                return target > of(u).source.size() ? heif_reader_grow_status_size_beyond_eof
                                                    : heif_reader_grow_status_size_reached;
            },
        };
        return &reader;
    }
};

template <typename Source>
std::optional<PropertyDict> readHeifThrough(Source& source, QString* error) {
    HeifReader<Source> reader{source};
    HeifContext ctx(heif_context_alloc(), heif_context_free);
    heif_error err = heif_context_read_from_reader(ctx.get(), HeifReader<Source>::callbacks(), &reader, nullptr);
    return readHeif(ctx.get(), err, source.size(), error);
}

}  // namespace

std::optional<PropertyDict> readHeifBoxes(const QByteArray& bytes, QString* error) {
    return readHeifBoxes(bytes, bytes.size(), [](const heif::Container& heif, uint32_t id) { return heif.data(id); },
                         error);
}

std::optional<PropertyDict> readHeifBoxes(FilePieces& file, QString* error) {
    const auto read = [&](qint64 at, char* into, qint64 n) { return file.read(at, into, n); };
    QByteArray head;
    try {
        head = heif::headThroughMeta(file.size(), read);
    } catch (const heif::Broken& e) {
        if (error) *error = QString::fromUtf8(e.what());
        return std::nullopt;
    }
    return readHeifBoxes(head, file.size(), [&](const heif::Container& heif, uint32_t id) {
        QByteArray out;
        for (const heif::ItemPiece& p : heif.pieces(id, file.size())) {
            if (p.inIdat) {
                out.append(head.constData() + heif.idat->body() + p.offset, qsizetype(p.length));
                continue;
            }
            QByteArray piece(qsizetype(p.length), Qt::Uninitialized);
            if (read(qint64(p.offset), piece.data(), piece.size()) != piece.size()) throw heif::Broken("a cut item");
            out += piece;
        }
        return out;
    }, error);
}

std::optional<PropertyDict> readHeifWithLibheif(const Rewritten& file, QString* error) { return readHeifThrough(file, error); }

}  // namespace imageio
