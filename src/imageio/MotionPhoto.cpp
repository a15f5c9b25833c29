// SPDX-License-Identifier: GPL-3.0-or-later
// Hand-written: neither exiv2 nor libheif knows these layouts, and the movie must be found
// without reading it. Every offset is checked against the file before a byte is read there.
#include "MotionPhoto.h"

#include "Containers.h"
#include "HeifContainer.h"
#include "ImageProperties.h"
#include "Rewritten.h"
#include "XmpPacket.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace imageio {
namespace {

quint32 le32(const QByteArray& b, qint64 at) {
    const auto* u = reinterpret_cast<const uchar*>(b.constData() + at);
    return quint32(u[0]) | quint32(u[1]) << 8 | quint32(u[2]) << 16 | quint32(u[3]) << 24;
}

quint32 be32(const QByteArray& b, qint64 at) {
    const auto* u = reinterpret_cast<const uchar*>(b.constData() + at);
    return quint32(u[0]) << 24 | quint32(u[1]) << 16 | quint32(u[2]) << 8 | quint32(u[3]);
}

void putLe32(QByteArray& out, quint32 v) {
    for (int i = 0; i < 4; ++i) out += char(v >> (8 * i) & 0xff);
}

// An ISO BMFF file opens with its 'ftyp' box, which must fit in the movie.
bool startsMovie(const QByteArray& file, qint64 offset, qint64 length) {
    if (offset < 0 || length < 16 || offset > file.size() - length) return false;
    const quint32 size = be32(file, offset);
    return std::memcmp(file.constData() + offset + 4, "ftyp", 4) == 0 && size >= 8 && size <= length;
}

// A decimal number of the XMP, nothing when it is none.
std::optional<qint64> number(const QString& text) {
    bool ok = false;
    const qint64 n = text.trimmed().toLongLong(&ok);
    return ok ? std::optional(n) : std::nullopt;
}

struct Claim {
    std::optional<MotionPhoto> motion;
    QString error;  // the claim is broken
};

// Samsung's trailer: blocks, then a directory "SEFH" version count and twelve bytes an entry
// (type, the block's distance back from the directory, its size), the directory's length and
// "SEFT" at the very end; little-endian. A block opens with its type, its name's length and name.
struct SamsungTrailer {
    struct Entry {
        qint64 start = 0, size = 0;
        QByteArray name;
    };
    qint64 dirPos = 0, dirLength = 0;
    std::vector<Entry> entries;
};

std::optional<SamsungTrailer> samsungTrailer(const QByteArray& file, QString* error) {
    const qint64 n = file.size();
    if (n < 20 || !file.endsWith("SEFT")) return std::nullopt;
    SamsungTrailer t;
    t.dirLength = le32(file, n - 8);
    t.dirPos = n - 8 - t.dirLength;
    const auto broken = [&] {
        *error = QStringLiteral("the Samsung trailer's directory is broken");
        return std::nullopt;
    };
    if (t.dirLength < 12 || t.dirPos < 0 || std::memcmp(file.constData() + t.dirPos, "SEFH", 4) != 0) return broken();
    const qint64 count = le32(file, t.dirPos + 8);
    if (count > (t.dirLength - 12) / 12) return broken();
    for (qint64 i = 0; i < count; ++i) {
        const qint64 e = t.dirPos + 12 + 12 * i;
        const qint64 back = le32(file, e + 4), size = le32(file, e + 8);
        if (back > t.dirPos || size > back || size < 8) return broken();
        const qint64 start = t.dirPos - back;
        const qint64 nameLength = le32(file, start + 4);
        if (nameLength > size - 8) return broken();
        t.entries.push_back({start, size, file.mid(start + 8, nameLength)});
    }
    return t;
}

constexpr char kSamsungMovieBlock[] = "MotionPhoto_Data";

Claim samsungClaim(const QByteArray& file, qint64 imageEnd) {
    Claim c;
    const auto trailer = samsungTrailer(file, &c.error);
    if (!trailer) return c;
    for (const auto& e : trailer->entries) {
        if (e.name != kSamsungMovieBlock) continue;
        const qint64 at = e.start + 8 + e.name.size(), length = e.size - 8 - e.name.size();
        if (at < imageEnd || !startsMovie(file, at, length)) {
            c.error = QStringLiteral("no movie behind the Samsung trailer's MotionPhoto_Data marker");
            return c;
        }
        c.motion = MotionPhoto{MotionPhoto::Kind::Samsung, at, length, {}};
    }
    return c;
}

// Google's directory, counted back from the end of the file.
Claim googleClaim(const QByteArray& file, const XmpPacket& xmp, qint64 imageEnd) {
    Claim c;
    const std::vector<ContainerItem> items = containerDirectory(xmp);
    const XmpProperty* flag = xmp.find(QStringLiteral("Xmp.GCamera.MotionPhoto"));
    bool listed = false;
    for (const ContainerItem& item : items) listed = listed || item.semantic == u"MotionPhoto";
    if (!listed && !(flag && flag->toString().trimmed() == u"1")) return c;
    qint64 end = file.size();
    for (size_t k = items.size(); k-- > 1;) {
        const auto length = number(items[k].length.value_or(QString()));
        const auto padding = number(items[k].padding.value_or(QStringLiteral("0")));
        if (!length || !padding || *length < 0 || *padding < 0) {
            c.error = QStringLiteral("the motion photo's directory gives no usable length for its item %1").arg(k + 1);
            return c;
        }
        if (*length > end - imageEnd || *padding > end - imageEnd - *length) {
            c.error = QStringLiteral("the motion photo's directory reaches past the start of the file's attachments");
            return c;
        }
        end -= *padding + *length;
        if (items[k].semantic != u"MotionPhoto") continue;
        if (c.motion) {
            c.error = QStringLiteral("the motion photo's directory lists two movies");
            return c;
        }
        c.motion = MotionPhoto{MotionPhoto::Kind::Google, end, *length, {}};
    }
    if (!c.motion) {
        c.error = QStringLiteral("the motion photo's directory lists no movie");
    } else if (!startsMovie(file, c.motion->offset, c.motion->length)) {
        c.error = QStringLiteral("no movie where the motion photo's directory says it starts (byte %1)").arg(c.motion->offset);
        c.motion.reset();
    }
    return c;
}

Claim microVideoClaim(const QByteArray& file, const XmpPacket& xmp, qint64 imageEnd) {
    Claim c;
    const XmpProperty* flag = xmp.find(QStringLiteral("Xmp.GCamera.MicroVideo"));
    const XmpProperty* offset = xmp.find(QStringLiteral("Xmp.GCamera.MicroVideoOffset"));
    if (!flag || flag->toString().trimmed() != u"1" || !offset) return c;
    const auto back = number(offset->toString());
    if (!back || *back <= 0 || *back > file.size() - imageEnd) {
        c.error = QStringLiteral("the MicroVideoOffset %1 points outside the file").arg(offset->toString());
    } else if (!startsMovie(file, file.size() - *back, *back)) {
        c.error = QStringLiteral("no movie where the MicroVideoOffset says it starts (byte %1)").arg(file.size() - *back);
    } else {
        c.motion = MotionPhoto{MotionPhoto::Kind::MicroVideo, file.size() - *back, *back, {}};
    }
    return c;
}

// A HEIF's movie in a top-level 'mpvd' box, after the picture's boxes.
Claim mpvdClaim(const QByteArray& file, const std::vector<heif::Box>& top) {
    Claim c;
    for (const heif::Box& box : top) {
        if (box.type != "mpvd") continue;
        if (!startsMovie(file, box.body(), box.size - box.header)) {
            c.error = QStringLiteral("no movie in the HEIF's motion photo box");
            return c;
        }
        c.motion = MotionPhoto{MotionPhoto::Kind::Samsung, box.body(), box.size - box.header, {}};
    }
    return c;
}

std::optional<qint64> timestamp(const XmpPacket& xmp, const char* key) {
    const XmpProperty* p = xmp.find(QString::fromLatin1(key));
    const auto us = p ? number(p->toString()) : std::nullopt;
    return us && *us >= 0 ? us : std::nullopt;  // -1 says there is none
}

}  // namespace

QString kindName(MotionPhoto::Kind kind) {
    switch (kind) {
    case MotionPhoto::Kind::Google: return QStringLiteral("Motion Photo");
    case MotionPhoto::Kind::MicroVideo: return QStringLiteral("MicroVideo");
    case MotionPhoto::Kind::Samsung: return QStringLiteral("Samsung Motion Photo");
    }
    return {};
}

std::optional<MotionPhoto> findMotionPhoto(const QByteArray& file, QString* error) {
    const Format format = detectFormat(file);
    QByteArray packet;
    qint64 imageEnd = 0;  // attachments can't start before this
    std::vector<Claim> claims;
    if (format == Format::Jpeg) {
        imageEnd = jpegScanStart(file);
        if (imageEnd < 0) return std::nullopt;
        const JpegXmp xmp = takeOutXmp(file, imageEnd);
        if (xmp.packet) packet = QByteArray::fromStdString(*xmp.packet);
        claims.push_back(samsungClaim(file, imageEnd));
    } else if (format == Format::Heif) {
        try {
            const heif::Container heif(file);
            if (!heif.meta) return std::nullopt;
            imageEnd = heif.meta->end();
            if (const auto id = heif.item("mime", "application/rdf+xml")) packet = heif.data(*id);
            claims.push_back(mpvdClaim(file, heif.top));
        } catch (const heif::Broken&) {
            return std::nullopt;  // no HEIF we can read, so no motion photo either
        }
    } else {
        return std::nullopt;
    }
    const std::optional<XmpPacket> xmp = packet.isEmpty() ? std::nullopt : parseXmpPacket(packet);
    if (xmp) {
        claims.insert(claims.begin(), {googleClaim(file, *xmp, imageEnd), microVideoClaim(file, *xmp, imageEnd)});
    }
    std::optional<MotionPhoto> found;
    for (const Claim& c : claims) {
        if (!c.error.isEmpty()) {
            if (error) *error = c.error;
            return std::nullopt;
        }
        if (!c.motion) continue;
        if (found && found->offset != c.motion->offset) {
            if (error)
                *error = QStringLiteral("the motion photo's directories disagree: the movie starts at byte %1 or at byte %2")
                             .arg(found->offset)
                             .arg(c.motion->offset);
            return std::nullopt;
        }
        // Google's length runs to the end of the file; a trailer's own directory knows where the movie ends.
        if (!found || c.motion->length < found->length) {
            const auto kind = found ? found->kind : c.motion->kind;
            found = c.motion;
            found->kind = kind;
        }
    }
    if (found && xmp) {
        found->presentationTimestampUs = timestamp(*xmp, "Xmp.GCamera.MotionPhotoPresentationTimestampUs");
        if (!found->presentationTimestampUs)
            found->presentationTimestampUs = timestamp(*xmp, "Xmp.GCamera.MicroVideoPresentationTimestampUs");
    }
    return found;
}

bool isMotionPhotoKey(const std::string& key) {
    return key.rfind("Xmp.GCamera.MotionPhoto", 0) == 0 || key.rfind("Xmp.GCamera.MicroVideo", 0) == 0 ||
           key.rfind("Xmp.Container.Directory", 0) == 0;
}

void keepWithoutMovie(Rewritten& out, const QByteArray& file, qint64 from, const MotionPhoto& motion) {
    QString ignored;
    if (const auto trailer = samsungTrailer(file, &ignored)) {
        const auto movie = std::find_if(trailer->entries.begin(), trailer->entries.end(), [&](const auto& e) {
            return e.start + 8 + e.name.size() == motion.offset;
        });
        if (movie != trailer->entries.end()) {
            // The block goes, and with it its entry; the blocks before it come nearer the directory.
            const qint64 cutStart = movie->start, cut = movie->size;
            out.keep(from, cutStart - from);
            out.keep(cutStart + cut, trailer->dirPos - cutStart - cut);
            const qint64 count = qint64(trailer->entries.size());
            QByteArray dir = file.mid(trailer->dirPos, 8);  // "SEFH" and the version
            putLe32(dir, quint32(count - 1));
            for (qint64 i = 0; i < count; ++i) {
                const auto& e = trailer->entries[size_t(i)];
                if (&e == &*movie) continue;
                QByteArray entry = file.mid(trailer->dirPos + 12 + 12 * i, 12);
                if (e.start < cutStart) {
                    QByteArray back;
                    putLe32(back, quint32(trailer->dirPos - cut - e.start));
                    entry.replace(4, 4, back);
                }
                dir += entry;
            }
            dir += file.mid(trailer->dirPos + 12 + 12 * count, trailer->dirLength - 12 - 12 * count);
            putLe32(dir, quint32(dir.size()));
            out.add(dir + "SEFT");
            return;
        }
    }
    out.keep(from, motion.offset - from);
}

}  // namespace imageio
