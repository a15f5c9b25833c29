// SPDX-License-Identifier: GPL-3.0-or-later
#include "Atoms.h"

namespace media {

QString fourccText(FourCC code) {
    const char bytes[4] = {char(code >> 24), char(code >> 16), char(code >> 8), char(code)};
    return QString::fromLatin1(bytes, 4);
}

std::optional<quint8> ByteView::u8(qint64 at) const {
    if (!contains(at, 1)) return std::nullopt;
    return data_[at];
}

std::optional<quint16> ByteView::be16(qint64 at) const {
    if (!contains(at, 2)) return std::nullopt;
    return quint16(data_[at] << 8 | data_[at + 1]);
}

std::optional<quint32> ByteView::be32(qint64 at) const {
    if (!contains(at, 4)) return std::nullopt;
    return quint32(data_[at]) << 24 | quint32(data_[at + 1]) << 16 | quint32(data_[at + 2]) << 8 | quint32(data_[at + 3]);
}

std::optional<quint64> ByteView::be64(qint64 at) const {
    auto hi = be32(at), lo = be32(at + 4);
    if (!hi || !lo) return std::nullopt;
    return quint64(*hi) << 32 | *lo;
}

QByteArray ByteView::mid(qint64 at, qint64 length) const {
    if (at < 0 || at >= size_ || length <= 0) return {};
    length = std::min(length, size_ - at);
    return QByteArray(reinterpret_cast<const char*>(data_ + at), qsizetype(length));
}

AtomList children(ByteView bytes, qint64 begin, qint64 end) {
    AtomList list;
    end = std::min(end, bytes.size());
    qint64 at = begin;
    while (at < end) {
        const qint64 left = end - at;
        if (left < 8) {
            for (qint64 i = at; i < end; ++i)
                if (*bytes.u8(i) != 0) list.intact = false;
            break;
        }
        Atom atom;
        atom.offset = at;
        atom.type = *bytes.be32(at + 4);
        const quint32 size32 = *bytes.be32(at);
        if (size32 == 1) {
            auto size64 = bytes.be64(at + 8);
            if (!size64 || left < 16 || *size64 < 16 || *size64 > quint64(left)) {
                list.intact = false;
                break;
            }
            atom.header = 16;
            atom.size = qint64(*size64);
        } else if (size32 == 0) {
            atom.size = left;
        } else {
            if (size32 < 8 || size32 > quint64(left)) {
                list.intact = false;
                break;
            }
            atom.size = size32;
        }
        list.atoms.append(atom);
        at += atom.size;
    }
    return list;
}

std::optional<Atom> findFirst(const AtomList& list, FourCC type) {
    for (const Atom& a : list.atoms)
        if (a.type == type) return a;
    return std::nullopt;
}

AtomList metaChildren(ByteView bytes, const Atom& meta, bool* fullBox) {
    // QuickTime's container starts with an atom; the ISO full box with four bytes of version
    // and flags, which are zero. The handler must come first in both.
    const auto firstType = bytes.be32(meta.payload() + 4);
    const bool plain = firstType && *firstType == fourcc("hdlr") && bytes.be32(meta.payload()).value_or(0) >= 8;
    if (fullBox) *fullBox = !plain;
    return children(bytes, meta.payload() + (plain ? 0 : 4), meta.end());
}

FourCC handlerType(ByteView bytes, const AtomList& list) {
    auto hdlr = findFirst(list, fourcc("hdlr"));
    if (!hdlr || hdlr->payloadSize() < 12) return 0;
    return bytes.be32(hdlr->payload() + 8).value_or(0);
}

void appendBe16(QByteArray& out, quint16 v) {
    out.append(char(v >> 8));
    out.append(char(v));
}

void appendBe32(QByteArray& out, quint32 v) {
    appendBe16(out, quint16(v >> 16));
    appendBe16(out, quint16(v));
}

void appendBe64(QByteArray& out, quint64 v) {
    appendBe32(out, quint32(v >> 32));
    appendBe32(out, quint32(v));
}

QByteArray makeAtom(FourCC type, const QByteArray& payload) {
    QByteArray out;
    const quint64 size = quint64(payload.size()) + 8;
    if (size <= 0xFFFFFFFFu) {
        out.reserve(qsizetype(size));
        appendBe32(out, quint32(size));
        appendBe32(out, type);
    } else {
        appendBe32(out, 1);
        appendBe32(out, type);
        appendBe64(out, size + 8);
    }
    out.append(payload);
    return out;
}

}  // namespace media
