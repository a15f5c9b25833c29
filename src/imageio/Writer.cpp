// SPDX-License-Identifier: GPL-3.0-or-later
#include "Containers.h"
#include "Exiv2Convert.h"
#include "HeifRewriter.h"
#include "ImageWriter.h"
#include "MetadataEdit.h"
#include "MotionPhoto.h"
#include "PropertyKeys.h"

#include <exiv2/exiv2.hpp>

#include <cstring>
#include <utility>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {
namespace {

std::nullopt_t fail(QString* error, const QString& reason) {
    if (error) *error = reason;
    return std::nullopt;
}

// exiv2 0.27 keeps a WebP file's old XMP chunk when the new XMP is empty; the chunk and its flag
// in the extended header are taken out here.
QByteArray withoutWebPXmp(const QByteArray& webp) {
    auto le32 = [&](qsizetype at) {
        return uint32_t(uint8_t(webp[at])) | uint32_t(uint8_t(webp[at + 1])) << 8 |
               uint32_t(uint8_t(webp[at + 2])) << 16 | uint32_t(uint8_t(webp[at + 3])) << 24;
    };
    QByteArray out = webp.left(12);
    for (qsizetype at = 12; at + 8 <= webp.size();) {
        const qsizetype size = 8 + qsizetype(le32(at + 4)) + (le32(at + 4) & 1);
        if (size > webp.size() - at) return webp;  // not a layout we know: leave it
        const QByteArray id = webp.mid(at, 4);
        QByteArray chunk = webp.mid(at, size);
        if (id == "VP8X" && chunk.size() > 8) chunk[8] = char(uint8_t(chunk[8]) & ~0x04);
        if (id != "XMP ") out += chunk;
        at += size;
    }
    const uint32_t riff = uint32_t(out.size() - 8);
    for (int i = 0; i < 4; ++i) out[4 + i] = char(riff >> (8 * i) & 0xff);
    return out;
}

// JPEG, TIFF and the TIFF-based raws, PNG, WebP: exiv2 rewrites the metadata segments and
// chunks and copies the coded image.
// exiv2 writes a JPEG's new segments and copies everything from the scan on as it is, so it is
// handed the segments alone and the scan, most of the file, is kept as a range of the source
// instead of copied through it.
std::optional<Rewritten> writeWithExiv2(const QByteArray& whole, Format format, const PropertyDict& before,
                                        const PropertyDict& changes, QString* error) {
    const qsizetype scan = format == Format::Jpeg ? jpegScanStart(whole) : -1;
    const qsizetype scanAt = scan < 0 ? whole.size() : scan;
    const QByteArray headers = QByteArray::fromRawData(whole.constData(), scanAt);
    // XMP work takes turns (see xmpMutex). A JPEG's packet is kept out of what exiv2 reads; it is
    // decoded, changed and encoded here in turn, and exiv2 writes it as it is, so that the rest
    // of many JPEGs are written side by side. Other files take their turn from start to end.
    JpegXmp jpegXmp;
    if (scan >= 0) jpegXmp = takeOutXmp(headers, scanAt);
    const bool xmpApart = scan >= 0 && (jpegXmp.packet || !headers.contains(kJpegXmpId));
    const QByteArray& source = jpegXmp.packet ? jpegXmp.withoutXmp : headers;
    initExiv2();
    std::unique_lock xmpTurn(xmpMutex(), std::defer_lock);
    if (!xmpApart) xmpTurn.lock();
    // exiv2 updates a TIFF in place where it can, so it works on a copy of its own: the source
    // may be a read-only mapping of the original file.
    Exiv2::BasicIo::AutoPtr copy(new Exiv2::MemIo);
    if (copy->write(reinterpret_cast<const Exiv2::byte*>(source.constData()), long(source.size())) != long(source.size()))
        return fail(error, QStringLiteral("out of memory"));
    Exiv2::Image::AutoPtr image = Exiv2::ImageFactory::open(copy);
    if (!image.get() || Exiv2::ImageFactory::checkMode(image->imageType(), Exiv2::mdExif) != Exiv2::amReadWrite)
        return fail(error, QStringLiteral("can't write metadata into this kind of %1 file").arg(formatName(format)));
    image->readMetadata();
    MetadataBlocks blocks{image->exifData(), image->iptcData(), image->xmpData()};
    // JPEG and TIFF readers look for IIM records as well as XMP; elsewhere IIM goes only where
    // the file already has it.
    blocks.writeIim = format == Format::Jpeg || format == Format::Tiff || !image->iptcData().empty();
    blocks.keepImageStructure = format == Format::Tiff;
    if (xmpApart) {
        xmpTurn.lock();
        // A packet that can't be read is dropped, as exiv2 does with one it reads itself.
        if (jpegXmp.packet && Exiv2::XmpParser::decode(image->xmpData(), *jpegXmp.packet) != 0) image->xmpData().clear();
        applyChanges(before, changes, blocks);
        std::string packet;
        if (!image->xmpData().empty() &&
            Exiv2::XmpParser::encode(packet, image->xmpData(), Exiv2::XmpParser::useCompactFormat) != 0)
            return fail(error, QStringLiteral("the XMP packet can't be written"));
        xmpTurn.unlock();
        image->xmpPacket() = packet;
        image->writeXmpFromPacket(true);
    } else {
        applyChanges(before, changes, blocks);
    }
    image->writeMetadata();
    Exiv2::BasicIo& io = image->io();
    if (io.open() != 0) return fail(error, QStringLiteral("the new file could not be made"));
    const qsizetype written = qsizetype(io.size());
    QByteArray out(written, Qt::Uninitialized);
    const long got = io.read(reinterpret_cast<Exiv2::byte*>(out.data()), long(written));
    io.close();
    if (got != long(written)) return fail(error, QStringLiteral("the new file could not be made"));
    if (format == Format::WebP && image->xmpData().empty()) return Rewritten(withoutWebPXmp(out));
    Rewritten result = Rewritten::from(whole);
    result.add(std::move(out));
    // What follows the scan, a motion photo's movie among it, is kept as it is: the movie's
    // place is counted from the end of the file or from its trailer, so it doesn't move. A
    // still made of a motion photo keeps all but the movie.
    const auto motion = removesMotionPhoto(changes) ? findMotionPhoto(whole) : std::nullopt;
    if (motion) keepWithoutMovie(result, whole, scanAt, *motion);
    else result.keep(scanAt, whole.size() - scanAt);
    return result;
}

}  // namespace

bool canWrite(Format format) {
    switch (format) {
    case Format::Jpeg: case Format::Tiff: case Format::Png: case Format::WebP: case Format::Heif: case Format::Avif:
        return true;
    default:
        return false;
    }
}

std::optional<QByteArray> writeProperties(const QByteArray& source, const PropertyDict& changes, QString* error) {
    QString reason;
    const auto before = canWrite(detectFormat(source)) ? readProperties(source, &reason) : PropertyDict{};
    if (!before) return fail(error, reason);
    const auto out = rewriteProperties(source, *before, changes, error);
    return out ? std::optional(out->joined()) : std::nullopt;
}

std::optional<Rewritten> rewriteProperties(const QByteArray& source, const PropertyDict& before,
                                           const PropertyDict& changes, QString* error, PropertyDict* readBack) {
    const Format format = detectFormat(source);
    if (!canWrite(format)) {
        return fail(error, format == Format::Unknown ? QStringLiteral("not an image format that can be written")
                                                     : QStringLiteral("can't write metadata into %1 files").arg(formatName(format)));
    }
    QString reason;
    std::optional<Rewritten> out;
    try {
        out = format == Format::Heif || format == Format::Avif ? rewriteHeif(source, before, changes, error)
                                                               : writeWithExiv2(source, format, before, changes, error);
    } catch (const std::exception& e) {
        return fail(error, QString::fromLocal8Bit(e.what()));
    }
    if (!out) return out;
    // What we hand out must read back; a file we'd make unreadable is refused instead.
    auto read = readProperties(*out, &reason);
    if (!read) return fail(error, QStringLiteral("the new file does not read back: ") + reason);
    if (readBack) *readBack = std::move(*read);
    return out;
}

}  // namespace imageio
