// SPDX-License-Identifier: GPL-3.0-or-later
#include "Containers.h"

#include "PropertyKeys.h"

#include <QStringDecoder>
#include <zlib.h>

#include <cstdint>
#include <cstring>

namespace imageio {
namespace {

// Bounds-checked reads: every offset comes from the file, so nothing is trusted.
struct Bytes {
    const QByteArray& b;
    qsizetype size() const { return b.size(); }
    bool has(qsizetype at, qsizetype n) const { return at >= 0 && n >= 0 && at <= size() && n <= size() - at; }
    uint8_t u8(qsizetype at) const { return has(at, 1) ? uint8_t(b[at]) : 0; }
    uint16_t be16(qsizetype at) const { return uint16_t(u8(at) << 8 | u8(at + 1)); }
    uint16_t le16(qsizetype at) const { return uint16_t(u8(at) | u8(at + 1) << 8); }
    uint32_t be32(qsizetype at) const { return uint32_t(be16(at)) << 16 | be16(at + 2); }
    uint32_t le32(qsizetype at) const { return le16(at) | uint32_t(le16(at + 2)) << 16; }
    uint32_t le24(qsizetype at) const { return u8(at) | u8(at + 1) << 8 | uint32_t(u8(at + 2)) << 16; }
    QByteArray mid(qsizetype at, qsizetype n) const { return has(at, n) ? b.mid(at, n) : QByteArray(); }
};

// PNG's text chunks are Latin-1 (tEXt, zTXt) or UTF-8 (iTXt).
QString latin1(const QByteArray& b) { return QString::fromLatin1(b); }

// zTXt and compressed iTXt use zlib streams; cap the output so a bomb can't eat memory.
QByteArray inflateCapped(const QByteArray& in, qsizetype cap = 1 << 20) {
    z_stream s{};
    if (inflateInit(&s) != Z_OK) return {};
    QByteArray out;
    s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.constData()));
    s.avail_in = uInt(in.size());
    char buf[16384];
    int rc = Z_OK;
    while (rc == Z_OK && out.size() < cap) {
        s.next_out = reinterpret_cast<Bytef*>(buf);
        s.avail_out = sizeof buf;
        rc = inflate(&s, Z_NO_FLUSH);
        if (rc != Z_OK && rc != Z_STREAM_END) break;
        out.append(buf, qsizetype(sizeof buf - s.avail_out));
        if (s.avail_in == 0 && rc == Z_OK && s.avail_out != 0) break;
    }
    inflateEnd(&s);
    return out.left(cap);
}

QString pngTextKey(const QByteArray& keyword) {
    static const QHash<QByteArray, const char*> keys{
        {"Author", kCGImagePropertyPNGAuthor},       {"Comment", kCGImagePropertyPNGComment},
        {"Copyright", kCGImagePropertyPNGCopyright}, {"Creation Time", kCGImagePropertyPNGCreationTime},
        {"Description", kCGImagePropertyPNGDescription}, {"Disclaimer", kCGImagePropertyPNGDisclaimer},
        {"Software", kCGImagePropertyPNGSoftware},   {"Source", kCGImagePropertyPNGSource},
        {"Title", kCGImagePropertyPNGTitle},         {"Warning", kCGImagePropertyPNGWarning},
    };
    auto it = keys.find(keyword);
    return it == keys.end() ? QString() : QString::fromLatin1(it.value());
}

}  // namespace

ImageFacts probeJpeg(const QByteArray& data) {
    Bytes b{data};
    ImageFacts f;
    f.hasAlpha = false;
    qsizetype at = 2;
    while (b.has(at, 4)) {
        if (b.u8(at) != 0xFF) break;
        uint8_t marker = b.u8(at + 1);
        if (marker == 0xFF) {  // fill byte
            ++at;
            continue;
        }
        if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += 2;
            continue;
        }
        if (marker == 0xD9 || marker == 0xDA) break;  // end of image, start of scan
        qsizetype len = b.be16(at + 2);
        if (len < 2) break;
        qsizetype seg = at + 4;
        bool isSof = marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isSof && b.has(seg, 6) && !f.width) {
            f.depth = b.u8(seg);
            f.height = b.be16(seg + 1);
            f.width = b.be16(seg + 3);
            int components = b.u8(seg + 5);
            f.colorModel = components == 1 ? kCGImagePropertyColorModelGray
                           : components == 4 ? kCGImagePropertyColorModelCMYK
                                             : kCGImagePropertyColorModelRGB;
            bool progressive = marker == 0xC2 || marker == 0xC6 || marker == 0xCA || marker == 0xCE;
            f.jfif.insert(kCGImagePropertyJFIFIsProgressive, progressive);
        } else if (marker == 0xE0 && b.has(seg, 12) && b.mid(seg, 5) == QByteArray("JFIF\0", 5)) {
            // "1.01" is [1, 0, 1], as the platform gives it.
            f.jfif.insert(kCGImagePropertyJFIFVersion, QVariantList{b.u8(seg + 5), b.u8(seg + 6) / 10, b.u8(seg + 6) % 10});
            int unit = b.u8(seg + 7);
            int xd = b.be16(seg + 8), yd = b.be16(seg + 10);
            f.jfif.insert(kCGImagePropertyJFIFDensityUnit, unit);
            f.jfif.insert(kCGImagePropertyJFIFXDensity, xd);
            f.jfif.insert(kCGImagePropertyJFIFYDensity, yd);
            if (unit == 1 || unit == 2) {
                double scale = unit == 2 ? 2.54 : 1.0;
                f.dpiX = xd * scale;
                f.dpiY = yd * scale;
            }
        }
        at += 2 + len;
    }
    f.headersEnd = qMin(at, b.size());
    if (!f.jfif.contains(kCGImagePropertyJFIFVersion)) f.jfif.clear();  // only files with a JFIF segment have the group
    return f;
}

ImageFacts probePng(const QByteArray& data) {
    Bytes b{data};
    ImageFacts f;
    qsizetype at = 8;
    while (b.has(at, 8)) {
        qsizetype len = b.be32(at);
        QByteArray type = b.mid(at + 4, 4);
        qsizetype body = at + 8;
        if (!b.has(body, len)) break;
        QByteArray chunk = b.mid(body, len);
        Bytes c{chunk};
        if (type == "IHDR" && len >= 13) {
            f.width = int(c.be32(0) & 0x7FFFFFFF);
            f.height = int(c.be32(4) & 0x7FFFFFFF);
            f.depth = c.u8(8);
            int colorType = c.u8(9);
            f.colorModel = (colorType == 0 || colorType == 4) ? kCGImagePropertyColorModelGray : kCGImagePropertyColorModelRGB;
            f.hasAlpha = colorType == 4 || colorType == 6;
            f.png.insert(kCGImagePropertyPNGInterlaceType, c.u8(12));
        } else if (type == "tRNS") {
            f.hasAlpha = true;
        } else if (type == "gAMA" && len >= 4) {
            f.png.insert(kCGImagePropertyPNGGamma, c.be32(0) / 100000.0);
        } else if (type == "sRGB" && len >= 1) {
            f.png.insert(kCGImagePropertyPNGsRGBIntent, c.u8(0));
        } else if (type == "pHYs" && len >= 9) {
            uint32_t x = c.be32(0), y = c.be32(4);
            f.png.insert(kCGImagePropertyPNGXPixelsPerMeter, qint64(x));
            f.png.insert(kCGImagePropertyPNGYPixelsPerMeter, qint64(y));
            if (c.u8(8) == 1) {
                f.dpiX = x * 0.0254;
                f.dpiY = y * 0.0254;
            }
        } else if (type == "cHRM" && len >= 32) {
            QVariantList values;
            for (int i = 0; i < 8; ++i) values << c.be32(i * 4) / 100000.0;
            f.png.insert(kCGImagePropertyPNGChromaticities, values);
        } else if (type == "tEXt" || type == "zTXt" || type == "iTXt") {
            qsizetype nul = chunk.indexOf('\0');
            if (nul > 0) {
                QString key = pngTextKey(chunk.left(nul));
                if (!key.isEmpty() && !f.png.contains(key)) {
                    QString text;
                    if (type == "tEXt") {
                        text = latin1(chunk.mid(nul + 1));
                    } else if (type == "zTXt") {
                        text = latin1(inflateCapped(chunk.mid(nul + 2)));
                    } else {  // iTXt: flag, method, language\0, translated keyword\0, text
                        bool compressed = c.u8(nul + 1) == 1;
                        qsizetype lang = chunk.indexOf('\0', nul + 3);
                        qsizetype trans = lang < 0 ? -1 : chunk.indexOf('\0', lang + 1);
                        if (trans >= 0) {
                            QByteArray raw = chunk.mid(trans + 1);
                            text = QString::fromUtf8(compressed ? inflateCapped(raw) : raw);
                        }
                    }
                    f.png.insert(key, text);
                }
            }
        } else if (type == "IEND") {
            break;
        }
        at = body + len + 4;  // data and CRC
    }
    return f;
}

ImageFacts probeWebP(const QByteArray& data) {
    Bytes b{data};
    ImageFacts f;
    f.colorModel = kCGImagePropertyColorModelRGB;
    f.depth = 8;
    f.hasAlpha = false;
    qsizetype at = 12;
    while (b.has(at, 8)) {
        QByteArray type = b.mid(at, 4);
        qsizetype len = b.le32(at + 4);
        qsizetype body = at + 8;
        if (type == "VP8X" && b.has(body, 10)) {
            f.hasAlpha = (b.u8(body) & 0x10) != 0;
            f.width = int(b.le24(body + 4) + 1);
            f.height = int(b.le24(body + 7) + 1);
        } else if (type == "VP8 " && b.has(body, 10) && !f.width) {
            // frame tag (3 bytes), start code 9d 01 2a, then 14-bit sizes
            if (b.u8(body + 3) == 0x9d && b.u8(body + 4) == 0x01 && b.u8(body + 5) == 0x2a) {
                f.width = b.le16(body + 6) & 0x3FFF;
                f.height = b.le16(body + 8) & 0x3FFF;
            }
        } else if (type == "VP8L" && b.has(body, 5) && !f.width) {
            if (b.u8(body) == 0x2f) {
                uint32_t bits = b.le32(body + 1);
                f.width = int((bits & 0x3FFF) + 1);
                f.height = int(((bits >> 14) & 0x3FFF) + 1);
                f.hasAlpha = ((bits >> 28) & 1) != 0;
            }
        } else if (type == "ICCP" && b.has(body, len)) {
            f.icc = b.mid(body, len);
        } else if (type == "ALPH") {
            f.hasAlpha = true;
        }
        if (len > b.size()) break;
        at = body + len + (len & 1);
    }
    return f;
}

QString iccDescription(const QByteArray& icc) {
    Bytes b{icc};
    if (!b.has(128, 4)) return {};
    uint32_t count = b.be32(128);
    for (uint32_t i = 0; i < count && b.has(132 + qsizetype(i) * 12, 12); ++i) {
        qsizetype entry = 132 + qsizetype(i) * 12;
        if (b.mid(entry, 4) != "desc") continue;
        qsizetype off = b.be32(entry + 4), size = b.be32(entry + 8);
        if (!b.has(off, size) || size < 12) return {};
        QByteArray type = b.mid(off, 4);
        if (type == "desc") {  // ICC v2: ASCII count then text
            qsizetype n = b.be32(off + 8);
            if (!b.has(off + 12, n) || n > size - 12) return {};
            QByteArray ascii = b.mid(off + 12, n);
            int nul = ascii.indexOf('\0');
            return QString::fromLatin1(nul >= 0 ? ascii.left(nul) : ascii);
        }
        if (type == "mluc" && size >= 28) {  // ICC v4: first record, UTF-16BE
            qsizetype len = b.be32(off + 20), start = b.be32(off + 24);
            if (start > size || len > size - start || !b.has(off + start, len)) return {};
            QByteArray utf16 = b.mid(off + start, len);
            auto decode = QStringDecoder(QStringDecoder::Utf16BE);
            QString s = decode(utf16);
            while (s.endsWith(QChar(0))) s.chop(1);
            return s;
        }
        return {};
    }
    return {};
}

JpegXmp takeOutXmp(const QByteArray& jpeg, qsizetype headersEnd) {
    JpegXmp out;
    qsizetype at = 2, kept = 0;
    while (at + 4 <= headersEnd) {
        const uint8_t marker = uint8_t(jpeg[at + 1]);
        if (uint8_t(jpeg[at]) != 0xFF || marker == 0xFF || marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            return {jpeg, std::nullopt};
        const qsizetype size = qsizetype(uint8_t(jpeg[at + 2])) << 8 | uint8_t(jpeg[at + 3]);
        if (at + 2 + size > headersEnd) break;
        // The signature is 28 characters and its zero.
        if (marker == 0xE1 && size >= 31 && std::memcmp(jpeg.constData() + at + 4, kJpegXmpId, 29) == 0) {
            if (!out.packet) out.packet.emplace(jpeg.constData() + at + 4 + 29, size_t(size - 31));
            out.withoutXmp += QByteArrayView(jpeg).sliced(kept, at - kept);
            kept = at + 2 + size;
        }
        at += 2 + size;
    }
    if (!out.packet) return {jpeg, std::nullopt};
    out.withoutXmp += QByteArrayView(jpeg).sliced(kept);
    return out;
}

qsizetype jpegScanStart(const QByteArray& jpeg) {
    const qsizetype sos = probeJpeg(jpeg).headersEnd;
    if (sos < 0 || sos + 4 > jpeg.size() || uint8_t(jpeg[sos]) != 0xFF || uint8_t(jpeg[sos + 1]) != 0xDA) return -1;
    const qsizetype end = sos + 2 + (qsizetype(uint8_t(jpeg[sos + 2])) << 8 | uint8_t(jpeg[sos + 3]));
    return end > jpeg.size() ? -1 : end;
}

void setFacts(const ImageFacts& f, PropertyDict& top) {
    if (f.width) top.insert(kCGImagePropertyPixelWidth, *f.width);
    if (f.height) top.insert(kCGImagePropertyPixelHeight, *f.height);
    if (f.depth) top.insert(kCGImagePropertyDepth, *f.depth);
    if (!f.colorModel.isEmpty()) top.insert(kCGImagePropertyColorModel, f.colorModel);
    if (f.hasAlpha) top.insert(kCGImagePropertyHasAlpha, *f.hasAlpha);
    if (f.dpiX) top.insert(kCGImagePropertyDPIWidth, *f.dpiX);
    if (f.dpiY) top.insert(kCGImagePropertyDPIHeight, *f.dpiY);
    if (!f.jfif.isEmpty()) top.insert(kCGImagePropertyJFIFDictionary, f.jfif);
    if (!f.png.isEmpty()) top.insert(kCGImagePropertyPNGDictionary, f.png);
}

// Resolution from the TIFF fields, where the container had none of its own.
void addTiffResolution(PropertyDict& top) {
    if (top.contains(kCGImagePropertyDPIWidth)) return;
    PropertyDict tiff = top.value(kCGImagePropertyTIFFDictionary).toMap();
    if (!tiff.contains(kCGImagePropertyTIFFXResolution)) return;
    int unit = tiff.value(kCGImagePropertyTIFFResolutionUnit, 2).toInt();
    if (unit != 2 && unit != 3) return;
    double scale = unit == 3 ? 2.54 : 1.0;
    top.insert(kCGImagePropertyDPIWidth, tiff.value(kCGImagePropertyTIFFXResolution).toDouble() * scale);
    top.insert(kCGImagePropertyDPIHeight,
               tiff.value(kCGImagePropertyTIFFYResolution, tiff.value(kCGImagePropertyTIFFXResolution)).toDouble() * scale);
}

void addProfile(const QByteArray& icc, PropertyDict& top) {
    if (icc.isEmpty()) return;
    QString name = iccDescription(icc);
    if (!name.isEmpty()) top.insert(kCGImagePropertyProfileName, name);
}

}  // namespace imageio
