// SPDX-License-Identifier: GPL-3.0-or-later
#include "Containers.h"
#include "Exiv2Convert.h"
#include "FileBytes.h"
#include "HeifReading.h"
#include "ImageProperties.h"
#include "MotionPhoto.h"
#include "Rewritten.h"
#include "Sidecar.h"
#include "PropertyKeys.h"

#include <exiv2/exiv2.hpp>
#include <exiv2/bmffimage.hpp>
#include <exiv2/cr2image.hpp>
#include <exiv2/jpgimage.hpp>
#include <exiv2/orfimage.hpp>
#include <exiv2/pngimage.hpp>
#include <exiv2/rw2image.hpp>
#include <exiv2/tiffimage.hpp>
#include <exiv2/webpimage.hpp>

#include <QHash>
#include <cstring>
#include <memory>
#include <mutex>

// exiv2 0.27 hands out std::auto_ptr; it still works, it is only deprecated.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace imageio {

void initExiv2() {
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::enableBMFF(true);
        // The XMP toolkit keeps shared state: readers on many threads take turns through this lock.
        static std::mutex xmpLock;
        Exiv2::XmpParser::initialize(
            [](void* mutex, bool lock) {
                if (lock) static_cast<std::mutex*>(mutex)->lock();
                else static_cast<std::mutex*>(mutex)->unlock();
            },
            &xmpLock);
    });
}

std::mutex& xmpMutex() {
    static std::mutex m;
    return m;
}

namespace {

bool startsWith(const QByteArray& b, qsizetype at, const char* text, qsizetype n) {
    return b.size() >= at + n && std::memcmp(b.constData() + at, text, size_t(n)) == 0;
}

// The brands of an ISO base media file: major first, then the compatible ones.
QList<QByteArray> brands(const QByteArray& b) {
    QList<QByteArray> out;
    if (b.size() < 16) return out;
    auto be32 = [&](qsizetype at) {
        return uint32_t(uint8_t(b[at])) << 24 | uint32_t(uint8_t(b[at + 1])) << 16 |
               uint32_t(uint8_t(b[at + 2])) << 8 | uint8_t(b[at + 3]);
    };
    qsizetype boxSize = be32(0);
    if (boxSize < 16 || boxSize > b.size()) boxSize = qMin<qsizetype>(b.size(), 64);
    out << b.mid(8, 4);
    for (qsizetype at = 16; at + 4 <= boxSize; at += 4) out << b.mid(at, 4);
    return out;
}

// TIFF-based raw files that exiv2 reads with a parser of their own.
enum class TiffKind { Plain, Cr2, Orf, Rw2 };

TiffKind tiffKind(const QByteArray& b) {
    if (startsWith(b, 0, "IIRO", 4) || startsWith(b, 0, "IIRS", 4) || startsWith(b, 0, "MMOR", 4)) return TiffKind::Orf;
    if (startsWith(b, 0, "IIU\0", 4)) return TiffKind::Rw2;
    if (startsWith(b, 8, "CR", 2)) return TiffKind::Cr2;
    return TiffKind::Plain;
}

struct ImageDirectory {
    qint64 width = 0, height = 0, bits = 0, photometric = -1, subfileType = 0;
    bool extraSamples = false;
};

// The primary image of a TIFF-family file is the largest full-resolution directory: raw files
// keep small previews in the first directory and the sensor image in a later or sub directory.
void addTiffFacts(const Exiv2::ExifData& exif, ImageFacts& facts) {
    QHash<QString, ImageDirectory> dirs;
    for (const auto& d : exif) {
        const std::string g = d.groupName();
        if (g.rfind("Image", 0) != 0 && g.rfind("SubImage", 0) != 0) continue;
        if (d.count() == 0) continue;
        ImageDirectory& dir = dirs[QString::fromStdString(g)];
        try {
            switch (d.tag()) {
            case 0x00fe: dir.subfileType = d.toLong(0); break;
            case 0x0100: dir.width = d.toLong(0); break;
            case 0x0101: dir.height = d.toLong(0); break;
            case 0x0102: dir.bits = d.toLong(0); break;
            case 0x0106: dir.photometric = d.toLong(0); break;
            case 0x0152: dir.extraSamples = true; break;
            }
        } catch (const std::exception&) {
        }
    }
    const ImageDirectory* best = nullptr;
    for (const auto& dir : dirs) {
        if (dir.width <= 0 || dir.height <= 0) continue;
        bool full = dir.subfileType == 0;
        bool bestFull = best && best->subfileType == 0;
        if (!best || (full && !bestFull) || (full == bestFull && dir.width * dir.height > best->width * best->height))
            best = &dir;
    }
    if (!best) return;
    facts.width = int(best->width);
    facts.height = int(best->height);
    if (best->bits > 0) facts.depth = int(best->bits);
    facts.hasAlpha = best->extraSamples;
    switch (best->photometric) {
    case 0: case 1: facts.colorModel = kCGImagePropertyColorModelGray; break;
    case 5: facts.colorModel = kCGImagePropertyColorModelCMYK; break;
    case 8: case 9: case 10: facts.colorModel = kCGImagePropertyColorModelLab; break;
    default: facts.colorModel = kCGImagePropertyColorModelRGB; break;
    }
}

// `fileSize` is the whole file's, when `bytes` hold only its first part.
std::optional<PropertyDict> readWithExiv2(const QByteArray& whole, Format format, qint64 fileSize, QString* error) {
    JpegXmp jpegXmp;
    if (format == Format::Jpeg) jpegXmp = takeOutXmp(whole, probeJpeg(whole).headersEnd);
    const QByteArray& bytes = jpegXmp.packet ? jpegXmp.withoutXmp : whole;
    const auto* data = reinterpret_cast<const Exiv2::byte*>(bytes.constData());
    Exiv2::BasicIo::AutoPtr io(new Exiv2::MemIo(data, long(bytes.size())));
    Exiv2::Image::AutoPtr image;
    ImageFacts facts;
    switch (format) {
    case Format::Jpeg: image = Exiv2::newJpegInstance(io, false); facts = probeJpeg(bytes); break;
    case Format::Png: image = Exiv2::newPngInstance(io, false); facts = probePng(bytes); break;
    case Format::WebP: image = Exiv2::newWebPInstance(io, false); facts = probeWebP(bytes); break;
    case Format::Cr3: image = Exiv2::newBmffInstance(io, false); break;
    case Format::Raf: image = Exiv2::newRafInstance(io, false); break;
    case Format::Tiff:
        switch (tiffKind(bytes)) {
        case TiffKind::Cr2: image = Exiv2::newCr2Instance(io, false); break;
        case TiffKind::Orf: image = Exiv2::newOrfInstance(io, false); break;
        case TiffKind::Rw2: image = Exiv2::newRw2Instance(io, false); break;
        case TiffKind::Plain: image = Exiv2::newTiffInstance(io, false); break;
        }
        break;
    default: break;
    }
    if (!image.get()) {
        if (error) *error = QStringLiteral("not a valid %1 file").arg(formatName(format));
        return std::nullopt;
    }
    // A JPEG whose XMP was taken out holds none now, and one without such a segment held none
    // (both seen in its segments before the scan); other containers may hold XMP anywhere.
    const bool mayHoldXmp = format != Format::Jpeg ||
                            QByteArrayView(bytes).first(qMax<qsizetype>(facts.headersEnd, 0)).contains(kJpegXmpId);
    std::unique_lock xmpTurn(xmpMutex(), std::defer_lock);
    if (mayHoldXmp) xmpTurn.lock();
    QString failure;
    try {
        image->readMetadata();
    } catch (const std::exception& e) {
        failure = QString::fromLocal8Bit(e.what());
    }
    if (xmpTurn.owns_lock()) xmpTurn.unlock();

    PropertyDict top;
    try {
        if (format == Format::Tiff || format == Format::Cr3) addTiffFacts(image->exifData(), facts);
        // A Fujifilm raw file's size is in its own header, which exiv2 reads.
        if (format == Format::Raf && image->pixelWidth() > 0 && image->pixelHeight() > 0) {
            facts.width = int(image->pixelWidth());
            facts.height = int(image->pixelHeight());
        }
        setFacts(facts, top);
        addExif(image->exifData(), top);
        addIptc(image->iptcData(), top);
        const std::string& packet = jpegXmp.packet ? *jpegXmp.packet : image->xmpPacket();
        if (auto xmp = packet.empty() ? std::nullopt : parseXmpPacket(QByteArrayView(packet.data(), qsizetype(packet.size()))))
            addXmp(*xmp, top);
        addTiffResolution(top);
        QByteArray icc = facts.icc;
        if (icc.isEmpty() && image->iccProfileDefined())
            icc = QByteArray(reinterpret_cast<const char*>(image->iccProfile()->pData_), image->iccProfile()->size_);
        addProfile(icc, top);
    } catch (const std::exception& e) {
        if (failure.isEmpty()) failure = QString::fromLocal8Bit(e.what());
    }
    // A file whose metadata broke half-way still gives what was read before the break;
    // with nothing at all it is no image we can read.
    if (top.isEmpty()) {
        if (error) *error = failure.isEmpty() ? QStringLiteral("no image metadata found") : failure;
        return std::nullopt;
    }
    top.insert(kCGImagePropertyFileSize, fileSize);
    return top;
}

// A JPEG's metadata all lies before its scan: the bytes up to and with the start-of-scan
// segment are all its reader looks at. Nothing when the walk finds no scan (a damaged or cut
// file), so that it is read whole as before.
std::optional<QByteArray> jpegBeforeScan(FilePieces& file) {
    constexpr qint64 step = 16 * 1024;
    qint64 at = 2;
    auto need = [&](qint64 end) -> const QByteArray* {
        const QByteArray& head = file.head(qMax(end, file.head(0).size() + step));
        return head.size() >= end ? &head : nullptr;
    };
    for (;;) {
        const QByteArray* b = need(at + 4);
        if (!b) return std::nullopt;
        const auto u8 = [&](qint64 i) { return uint8_t((*b)[i]); };
        if (u8(at) != 0xFF) return std::nullopt;
        const uint8_t marker = u8(at + 1);
        if (marker == 0xFF) {
            ++at;
            continue;
        }
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += 2;
            continue;
        }
        if (marker == 0xD9) return std::nullopt;
        const qint64 end = at + 2 + (qint64(u8(at + 2)) << 8 | u8(at + 3));
        if (marker == 0xDA) {
            const QByteArray* all = need(end);
            return all ? std::optional(all->left(end)) : std::nullopt;
        }
        at = end;
    }
}

// A motion photo's movie, as the group {MotionPhoto}: what kind, how long, where it plays from.
// A broken claim adds nothing: the photo still reads, as a still.
void addMotionPhoto(const QByteArray& file, PropertyDict& top) {
    const std::optional<MotionPhoto> motion = findMotionPhoto(file);
    if (!motion) return;
    PropertyDict group{{QStringLiteral("Kind"), kindName(motion->kind)}, {QStringLiteral("VideoLength"), motion->length}};
    if (motion->presentationTimestampUs) group.insert(QStringLiteral("PresentationTimestampUs"), *motion->presentationTimestampUs);
    top.insert(kMotionPhotoDictionary, group);
}

// Whether a file read by pieces may hold a motion photo's movie, from what was read anyway and
// a few bytes more: Google's camera schema in a JPEG's segments, a Samsung trailer's end, or a
// movie box behind a HEIF's 'meta'. Only then is the file mapped to find it.
bool mayHoldMotionPhoto(FilePieces& file, Format format, const QByteArray& head) {
    if (format == Format::Jpeg) {
        char tail[4];
        return head.contains("http://ns.google.com/photos/1.0/camera/") ||
               (file.size() >= 4 && file.read(file.size() - 4, tail, 4) == 4 && std::memcmp(tail, "SEFT", 4) == 0);
    }
    qint64 at = 0;
    for (int count = 0; at + 8 <= file.size() && count < 64; ++count) {
        char h[16];
        const qint64 got = file.read(at, h, qMin<qint64>(16, file.size() - at));
        if (got < 8) return false;
        uint64_t size = 0;
        for (int i = 0; i < 4; ++i) size = size << 8 | uint8_t(h[i]);
        if (size == 1 && got == 16) {
            size = 0;
            for (int i = 8; i < 16; ++i) size = size << 8 | uint8_t(h[i]);
        }
        if (std::memcmp(h + 4, "mpvd", 4) == 0) return true;
        if (size < 8 || size > uint64_t(file.size() - at)) return false;
        at += qint64(size);
    }
    return false;
}

}  // namespace

Format detectFormat(const QByteArray& b) {
    if (startsWith(b, 0, "\xFF\xD8\xFF", 3)) return Format::Jpeg;
    if (startsWith(b, 0, "II*\0", 4) || startsWith(b, 0, "MM\0*", 4) || startsWith(b, 0, "IIRO", 4) ||
        startsWith(b, 0, "IIRS", 4) || startsWith(b, 0, "MMOR", 4) || startsWith(b, 0, "IIU\0", 4))
        return Format::Tiff;
    if (startsWith(b, 0, "\x89PNG\r\n\x1a\n", 8)) return Format::Png;
    if (startsWith(b, 0, "FUJIFILMCCD-RAW ", 16)) return Format::Raf;
    if (startsWith(b, 0, "RIFF", 4) && startsWith(b, 8, "WEBP", 4)) return Format::WebP;
    if (startsWith(b, 4, "ftyp", 4)) {
        const QList<QByteArray> all = brands(b);
        static const QList<QByteArray> heif{"heic", "heix", "heim", "heis", "hevc", "hevx", "mif1", "msf1", "mif2"};
        if (!all.isEmpty() && all.first() == "crx ") return Format::Cr3;
        if (all.contains("avif") || all.contains("avis")) return Format::Avif;
        for (const auto& brand : all)
            if (heif.contains(brand)) return Format::Heif;
        return Format::Movie;
    }
    for (const char* atom : {"moov", "mdat", "wide", "free", "skip", "pnot"})
        if (startsWith(b, 4, atom, 4)) return Format::Movie;
    return Format::Unknown;
}

QString formatName(Format format) {
    switch (format) {
    case Format::Jpeg: return QStringLiteral("JPEG");
    case Format::Tiff: return QStringLiteral("TIFF");
    case Format::Png: return QStringLiteral("PNG");
    case Format::WebP: return QStringLiteral("WebP");
    case Format::Heif: return QStringLiteral("HEIF");
    case Format::Avif: return QStringLiteral("AVIF");
    case Format::Cr3: return QStringLiteral("CR3");
    case Format::Raf: return QStringLiteral("RAF");
    case Format::Movie: return QStringLiteral("movie");
    case Format::Unknown: break;
    }
    return QStringLiteral("unknown");
}

std::optional<PropertyDict> readProperties(const QByteArray& bytes, QString* error) {
    if (bytes.isEmpty()) {
        if (error) *error = QStringLiteral("no data");
        return std::nullopt;
    }
    const Format format = detectFormat(bytes);
    switch (format) {
    case Format::Unknown:
        if (error) *error = QStringLiteral("not an image format that can be read");
        return std::nullopt;
    case Format::Movie:
        // Movies go to the movie reader; exiv2's QuickTime parser is not safe on hostile files.
        if (error) *error = QStringLiteral("a movie, not a still image");
        return std::nullopt;
    default: break;
    }
    initExiv2();  // also for HEIF: its Exif and XMP blocks are decoded by exiv2
    auto props = format == Format::Heif || format == Format::Avif ? readHeifBoxes(bytes, error)
                                                                  : readWithExiv2(bytes, format, bytes.size(), error);
    if (props && (format == Format::Jpeg || format == Format::Heif)) addMotionPhoto(bytes, *props);
    return props;
}

namespace {

std::optional<PropertyDict> readOwnFileProperties(const QString& path, QString* error, qint64* bytesRead) {
    FilePieces file;
    if (!file.open(path, error)) return std::nullopt;
    const auto counted = [&](std::optional<PropertyDict> props) {
        if (bytesRead) *bytesRead = file.bytesRead();
        return props;
    };
    if (file.size() > 0) {
        const Format format = detectFormat(file.head(4096));
        initExiv2();
        std::optional<PropertyDict> props;
        std::optional<QByteArray> prefix;
        if (format == Format::Jpeg && (prefix = jpegBeforeScan(file))) props = readWithExiv2(*prefix, format, file.size(), error);
        else if (format == Format::Heif || format == Format::Avif) props = readHeifBoxes(file, error);
        if (props && format != Format::Avif && mayHoldMotionPhoto(file, format, prefix.value_or(QByteArray()))) {
            FileBytes whole;
            if (whole.open(path)) {
                addMotionPhoto(whole.bytes(), *props);
                if (bytesRead) *bytesRead = file.bytesRead() + whole.bytes().size();
                return props;
            }
        }
        if (prefix || format == Format::Heif || format == Format::Avif) return counted(std::move(props));
    }
    // The other containers may keep metadata behind the image data (TIFF directories, PNG and
    // WebP chunks after the pixels): mapped whole, only the pages their readers touch are read.
    FileBytes whole;
    if (!whole.open(path, error)) return counted(std::nullopt);
    auto props = readProperties(whole.bytes(), error);
    if (bytesRead) *bytesRead = file.bytesRead() + whole.bytes().size();
    return props;
}

}  // namespace

std::optional<PropertyDict> readFileProperties(const QString& path, QString* error, qint64* bytesRead) {
    auto props = readOwnFileProperties(path, error, bytesRead);
    if (props) addSidecar(path, *props);
    return props;
}

std::optional<PropertyDict> readProperties(const Rewritten& file, QString* error) {
    const Format format = detectFormat(file.head(64));
    // A written HEIF is read back by libheif, not by the container code that wrote it.
    if (format == Format::Heif || format == Format::Avif) {
        initExiv2();
        return readHeifWithLibheif(file, error);
    }
    // A JPEG's leading piece is its segments up to the scan: all its reader looks at.
    const QByteArray leading = file.leadingBytes();
    if (format == Format::Jpeg && leading.size() < file.size() && jpegScanStart(leading) == leading.size()) {
        initExiv2();
        return readWithExiv2(leading, format, file.size(), error);
    }
    return readProperties(file.joined(), error);
}

}  // namespace imageio
