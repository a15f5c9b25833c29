// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A bounds-checked walk over the atoms (boxes) of a QuickTime or ISO base media file. FFmpeg
// reads tracks but flattens metadata into one dictionary and can't write atoms back, so the
// metadata reader and the movie writer share this walker. Every read checks its bounds: a
// hostile size never reads or points outside the bytes.
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace media {

using FourCC = quint32;

constexpr FourCC fourcc(const char (&s)[5]) {
    return FourCC(uchar(s[0])) << 24 | FourCC(uchar(s[1])) << 16 | FourCC(uchar(s[2])) << 8 | FourCC(uchar(s[3]));
}
// The four bytes as Latin-1 text ("©xyz" keeps its copyright sign).
QString fourccText(FourCC code);

// A view on bytes that lives as long as the bytes it was made from.
class ByteView {
public:
    ByteView() = default;
    explicit ByteView(const QByteArray& bytes) : data_(reinterpret_cast<const uchar*>(bytes.constData())), size_(bytes.size()) {}
    ByteView(const uchar* data, qint64 size) : data_(data), size_(size) {}

    qint64 size() const { return size_; }
    const uchar* data() const { return data_; }
    bool contains(qint64 at, qint64 length) const { return at >= 0 && length >= 0 && at <= size_ && length <= size_ - at; }
    // Nothing when the read would leave the bytes.
    std::optional<quint8> u8(qint64 at) const;
    std::optional<quint16> be16(qint64 at) const;
    std::optional<quint32> be32(qint64 at) const;
    std::optional<quint64> be64(qint64 at) const;
    // A copy of [at, at + length), cut at the end of the bytes.
    QByteArray mid(qint64 at, qint64 length) const;

private:
    const uchar* data_ = nullptr;
    qint64 size_ = 0;
};

struct Atom {
    FourCC type = 0;
    qint64 offset = 0;  // of its size field
    qint64 header = 8;  // 8, or 16 with a 64-bit size
    qint64 size = 0;    // the whole atom, header included

    qint64 payload() const { return offset + header; }
    qint64 payloadSize() const { return size - header; }
    qint64 end() const { return offset + size; }
};

struct AtomList {
    QList<Atom> atoms;
    // The atoms fill [begin, end) exactly; false when one claims more than there is, or junk
    // follows. A tail of fewer than 8 zero bytes (QuickTime's user-data terminator) is no junk.
    bool intact = true;
};

// The atoms in [begin, end). A size of 0 runs to `end`. Stops at the first atom that doesn't fit.
AtomList children(ByteView bytes, qint64 begin, qint64 end);
inline AtomList children(ByteView bytes, const Atom& parent) { return children(bytes, parent.payload(), parent.end()); }
std::optional<Atom> findFirst(const AtomList& list, FourCC type);

// The children of a 'meta' atom, which is a plain container in QuickTime and a full box (four
// bytes of version and flags first) in ISO files. `fullBox` says which one this is.
AtomList metaChildren(ByteView bytes, const Atom& meta, bool* fullBox = nullptr);
// The handler type of a 'meta' or 'mdia' container's 'hdlr' child, or 0.
FourCC handlerType(ByteView bytes, const AtomList& children);

// An atom's bytes: a header of the smallest size that holds the payload, then the payload.
QByteArray makeAtom(FourCC type, const QByteArray& payload);
void appendBe16(QByteArray& out, quint16 v);
void appendBe32(QByteArray& out, quint32 v);
void appendBe64(QByteArray& out, quint64 v);

}  // namespace media
