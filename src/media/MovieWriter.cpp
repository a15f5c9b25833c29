// SPDX-License-Identifier: GPL-3.0-or-later
#include "MovieWriter.h"

#include "DurableFile.h"
#include "MetadataAtoms.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace media {

namespace {

// A piece of the new file: a range of the source, or bytes of our own.
struct Piece {
    qint64 offset = 0;
    qint64 length = 0;
    QByteArray literal;
    bool fromSource = false;
};

// Where each kept range of the source lands in the new file.
class OffsetMap {
public:
    void add(qint64 start, qint64 end, qint64 newStart) { ranges_.append({start, end, newStart}); }
    bool identity() const {
        return std::all_of(ranges_.begin(), ranges_.end(), [](const Range& r) { return r.start == r.newStart; });
    }
    std::optional<qint64> map(qint64 offset) const {
        // Ranges are added in file order, so they are sorted.
        auto it = std::upper_bound(ranges_.begin(), ranges_.end(), offset, [](qint64 o, const Range& r) { return o < r.start; });
        if (it == ranges_.begin()) return std::nullopt;
        --it;
        if (offset >= it->end) return std::nullopt;
        return it->newStart + (offset - it->start);
    }

private:
    struct Range {
        qint64 start, end, newStart;
    };
    QList<Range> ranges_;
};

constexpr uchar xmpUuid[16] = {0xBE, 0x7A, 0xCF, 0xCB, 0x97, 0xA9, 0x42, 0xE8, 0x9C, 0x71, 0x99, 0x94, 0x91, 0xE3, 0xAF, 0xAC};

// A free atom of `size` bytes (at least 8, at most a movie header's size).
QByteArray freeAtom(qint64 size) {
    QByteArray out;
    appendBe32(out, quint32(size));
    appendBe32(out, fourcc("free"));
    out.resize(qsizetype(size), '\0');
    return out;
}

// The process's file-creation mask, read without changing it (umask() would, for a moment,
// for every thread).
mode_t currentUmask() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly))
        for (const QByteArray& line : status.readAll().split('\n'))
            if (line.startsWith("Umask:")) return mode_t(line.mid(6).trimmed().toUInt(nullptr, 8));
    return 022;
}

class Rewriter {
public:
    Rewriter(ByteView bytes, const MetadataRewrite& rewrite) : b_(bytes), rw_(rewrite) {
        for (const MetadataItem& item : rewrite.items) {
            if (item.keySpace == QLatin1String(KeySpace::quickTimeMetadata)) mdta_ << item;
            else if (item.keySpace == QLatin1String(KeySpace::quickTimeUserData)) udta_ << item;
            else if (item.keySpace == QLatin1String(KeySpace::iTunes)) itsk_ << item;
            else if (item.keySpace == QLatin1String(KeySpace::isoUserData)) uiso_ << item;
            else if (item.keySpace == QLatin1String(KeySpace::id3)) id3_ << item;
        }
    }

    std::optional<QList<Piece>> plan(QString* error) {
        auto failed = [&](const QString& why) -> std::optional<QList<Piece>> {
            if (error) *error = why;
            return std::nullopt;
        };
        const AtomList top = children(b_, 0, b_.size());
        if (!top.intact || top.atoms.isEmpty())
            return failed(QStringLiteral("the movie's atoms don't fill the file: it is damaged or cut short"));
        qsizetype moovIndex = -1;
        for (qsizetype i = 0; i < top.atoms.size(); ++i) {
            const Atom& a = top.atoms[i];
            if (a.type == fourcc("moov")) {
                if (moovIndex >= 0) return failed(QStringLiteral("the file holds more than one movie header"));
                moovIndex = i;
            }
            if (a.type == fourcc("moof")) fragmented_ = true;
        }
        if (moovIndex < 0) return failed(QStringLiteral("the file has no movie header"));
        moov_ = top.atoms[moovIndex];

        QList<bool> kept;
        for (const Atom& a : top.atoms) kept << !dropped(a);

        // The header's size decides the layout, the layout the chunk offsets; and an offset that
        // no longer fits 32 bits turns its table into a 64-bit one, which changes the size.
        for (int round = 0; round < 64; ++round) {
            OffsetMap identity;
            auto draft = buildMoov(identity, false);
            if (!draft) return failed(error_);
            QList<Piece> pieces;
            OffsetMap map;
            layout(top, kept, moovIndex, draft->size(), &pieces, &map);
            if (fragmented_ && !map.identity())
                return failed(QStringLiteral("a fragmented movie whose header changes size can't be rewritten"));
            newUpgrades_.clear();
            auto moov = buildMoov(map, true);
            if (!moov) return failed(error_);
            if (!newUpgrades_.isEmpty()) {
                upgrades_.unite(newUpgrades_);
                continue;
            }
            for (Piece& p : pieces)
                if (!p.fromSource && p.literal.isNull()) p.literal = *moov;
            return pieces;
        }
        return failed(QStringLiteral("the chunk offsets can't be laid out"));
    }

private:
    bool dropped(const Atom& a) const {
        if (rw_.keepOtherMetadata || a.type != fourcc("uuid") || a.payloadSize() < 16) return false;
        return std::memcmp(b_.data() + a.payload(), xmpUuid, 16) == 0;
    }

    // The pieces of the new file; the new header is the one piece left without bytes.
    void layout(const AtomList& top, const QList<bool>& kept, qsizetype moovIndex, qint64 moovSize,
                QList<Piece>* pieces, OffsetMap* map) const {
        qint64 pos = 0;
        bool keptAfter = false;
        for (qsizetype i = moovIndex + 1; i < top.atoms.size(); ++i) keptAfter = keptAfter || kept[i];
        for (qsizetype i = 0; i < top.atoms.size(); ++i) {
            const Atom& a = top.atoms[i];
            if (i == moovIndex) {
                pieces->append(Piece{});
                pos += moovSize;
                if (!keptAfter) continue;
                // A header before the media: pad a smaller one, or take room from a free atom
                // behind a larger one, so the media stay where they are.
                const qint64 old = a.size;
                if (moovSize < old && old - moovSize >= 8) {
                    pieces->append(Piece{0, 0, freeAtom(old - moovSize), false});
                    pos += old - moovSize;
                } else if (moovSize > old && i + 1 < top.atoms.size() && kept[i + 1]) {
                    const Atom& next = top.atoms[i + 1];
                    const qint64 growth = moovSize - old;
                    const bool isFree = next.type == fourcc("free") || next.type == fourcc("skip");
                    if (isFree && (next.size == growth || next.size - growth >= 16)) {
                        const qint64 rest = next.size - growth;
                        if (rest > 0) {
                            // The header of the smaller free atom, then the tail of the old one.
                            QByteArray header;
                            appendBe32(header, quint32(rest));
                            appendBe32(header, fourcc("free"));
                            if (rest > 0xFFFFFFFFll) {
                                header.clear();
                                appendBe32(header, 1);
                                appendBe32(header, fourcc("free"));
                                appendBe64(header, quint64(rest));
                            }
                            pieces->append(Piece{0, 0, header, false});
                            pieces->append(Piece{next.end() - (rest - header.size()), rest - header.size(), {}, true});
                            pos += rest;
                        }
                        ++i;
                    }
                }
                continue;
            }
            if (!kept[i]) continue;
            pieces->append(Piece{a.offset, a.size, {}, true});
            map->add(a.offset, a.end(), pos);
            pos += a.size;
        }
    }

    // An atom as it stands; one whose size field says "to the end of the parent" gets its size
    // written out, since the parent may now hold more after it.
    QByteArray raw(const Atom& a) const {
        if (b_.be32(a.offset) == 0u) return makeAtom(a.type, b_.mid(a.payload(), a.payloadSize()));
        return b_.mid(a.offset, a.size);
    }

    std::optional<QByteArray> fail(const QString& why) {
        error_ = why;
        return std::nullopt;
    }

    std::optional<QByteArray> buildMoov(const OffsetMap& map, bool checkOffsets) {
        mdtaPlaced_ = itunesPlaced_ = userDataPlaced_ = false;
        const AtomList kids = children(b_, moov_);
        if (!kids.intact) return fail(QStringLiteral("the movie header is damaged"));
        QByteArray payload;
        bool sawUdta = false;
        for (const Atom& kid : kids.atoms) {
            if (kid.type == fourcc("meta")) {
                if (detail::isItemMeta(b_, kid)) payload += itemMeta(kid);
                else if (rw_.keepOtherMetadata) payload += raw(kid);
            } else if (kid.type == fourcc("udta")) {
                sawUdta = true;
                auto udta = userData(kid);
                if (!udta) return std::nullopt;
                payload += *udta;
            } else if (kid.type == fourcc("trak")) {
                auto trak = track(kid, map, checkOffsets);
                if (!trak) return std::nullopt;
                payload += *trak;
            } else {
                payload += raw(kid);
            }
        }
        if (!mdtaPlaced_ && !mdta_.isEmpty()) {
            // Apple's layout, a plain container, in MP4 files too: readers look for it so.
            payload += newMeta(fourcc("mdta"), false);
            mdtaPlaced_ = true;
        }
        if (!sawUdta) {
            const QByteArray items = userDataItems();
            if (!items.isEmpty()) payload += makeAtom(fourcc("udta"), items);
        }
        return makeAtom(fourcc("moov"), payload);
    }

    QByteArray newMeta(FourCC handler, bool fullBox) const {
        QByteArray payload;
        if (fullBox) appendBe32(payload, 0);
        payload += detail::handlerAtom(handler);
        payload += handler == fourcc("mdta") ? detail::keysAndItemList(mdta_) : detail::iTunesItemList(itsk_);
        return makeAtom(fourcc("meta"), payload);
    }

    // A 'meta' of QuickTime metadata or iTunes items, rebuilt in its own layout with its other
    // children kept; the first of each kind takes all items of its key space, later ones go.
    QByteArray itemMeta(const Atom& meta) {
        bool fullBox = false;
        const AtomList list = metaChildren(b_, meta, &fullBox);
        const bool mdta = handlerType(b_, list) == fourcc("mdta");
        bool& placed = mdta ? mdtaPlaced_ : itunesPlaced_;
        const bool empty = mdta ? mdta_.isEmpty() : itsk_.isEmpty();
        if (placed || empty) {
            placed = true;
            return {};
        }
        placed = true;
        QByteArray payload;
        if (fullBox) payload += b_.mid(meta.payload(), 4);
        // The handler first, as readers expect it; then the other children as they were.
        payload += raw(*findFirst(list, fourcc("hdlr")));
        for (const Atom& child : list.atoms) {
            if (child.type == fourcc("keys") || child.type == fourcc("ilst") || child.type == fourcc("hdlr")) continue;
            payload += raw(child);
        }
        payload += mdta ? detail::keysAndItemList(mdta_) : detail::iTunesItemList(itsk_);
        return makeAtom(fourcc("meta"), payload);
    }

    // The user-data items and, when no 'meta' of them was met, a new iTunes 'meta'.
    QByteArray userDataItems() {
        QByteArray out;
        if (userDataPlaced_) return out;
        userDataPlaced_ = true;
        out += detail::userDataAtoms(udta_) + detail::isoUserDataAtoms(uiso_) + detail::id3Atoms(id3_);
        if (!itunesPlaced_ && !itsk_.isEmpty()) {
            out += newMeta(fourcc("mdir"), true);
            itunesPlaced_ = true;
        }
        return out;
    }

    std::optional<QByteArray> userData(const Atom& udta) {
        const AtomList kids = children(b_, udta);
        if (!kids.intact) return fail(QStringLiteral("the movie's user data are damaged"));
        // What playback uses stays even when all metadata go.
        static const QSet<FourCC> structural{fourcc("chpl"), fourcc("hnti"), fourcc("hinf")};
        QByteArray payload;
        for (const Atom& kid : kids.atoms) {
            if (kid.type == fourcc("meta")) {
                if (detail::isItemMeta(b_, kid)) payload += itemMeta(kid);
                else if (rw_.keepOtherMetadata) payload += raw(kid);
                continue;
            }
            QList<MetadataItem> items;
            if (detail::udtaChildItems(b_, kid, &items)) continue;  // written from the item list
            if (rw_.keepOtherMetadata || structural.contains(kid.type)) payload += raw(kid);
        }
        payload += userDataItems();
        if (payload.isEmpty()) return QByteArray();
        return makeAtom(fourcc("udta"), payload);
    }

    // True when every data reference of the track points to another file, whose offsets are
    // not ours to move.
    bool externalDataOnly(const Atom& trak) const {
        auto child = [&](const Atom& parent, const char (&type)[5]) { return findFirst(children(b_, parent), fourcc(type)); };
        auto mdia = child(trak, "mdia");
        auto minf = mdia ? child(*mdia, "minf") : std::nullopt;
        auto dinf = minf ? child(*minf, "dinf") : std::nullopt;
        auto dref = dinf ? child(*dinf, "dref") : std::nullopt;
        if (!dref) return false;
        const AtomList entries = children(b_, dref->payload() + 8, dref->end());
        if (entries.atoms.isEmpty()) return false;
        for (const Atom& e : entries.atoms)
            if (b_.be32(e.payload()).value_or(1) & 1) return false;  // self-contained
        return true;
    }

    std::optional<QByteArray> track(const Atom& trak, const OffsetMap& map, bool checkOffsets) {
        if ((map.identity() && upgrades_.isEmpty()) || externalDataOnly(trak)) return raw(trak);
        return container(trak, map, checkOffsets, 0);
    }

    std::optional<QByteArray> container(const Atom& atom, const OffsetMap& map, bool checkOffsets, int depth) {
        const AtomList kids = children(b_, atom);
        if (!kids.intact) return fail(QStringLiteral("a track of the movie is damaged"));
        QByteArray payload;
        for (const Atom& kid : kids.atoms) {
            const bool descend = depth < 3 && (kid.type == fourcc("mdia") || kid.type == fourcc("minf") || kid.type == fourcc("stbl"));
            const bool offsets = atom.type == fourcc("stbl") && (kid.type == fourcc("stco") || kid.type == fourcc("co64"));
            std::optional<QByteArray> part = descend    ? container(kid, map, checkOffsets, depth + 1)
                                             : offsets ? chunkOffsets(kid, map, checkOffsets)
                                                       : raw(kid);
            if (!part) return std::nullopt;
            payload += *part;
        }
        return makeAtom(atom.type, payload);
    }

    std::optional<QByteArray> chunkOffsets(const Atom& table, const OffsetMap& map, bool checkOffsets) {
        const bool wide = table.type == fourcc("co64");
        const qint64 entrySize = wide ? 8 : 4;
        const auto count = b_.be32(table.payload() + 4);
        if (!count || table.payloadSize() < 8 || qint64(*count) > (table.payloadSize() - 8) / entrySize)
            return fail(QStringLiteral("a chunk offset table is damaged"));
        const bool upgrade = !wide && upgrades_.contains(table.offset);
        QByteArray payload = b_.mid(table.payload(), 8);
        payload.reserve(qsizetype(8 + qint64(*count) * 8));
        qint64 at = table.payload() + 8;
        for (quint32 i = 0; i < *count; ++i, at += entrySize) {
            const quint64 offset = wide ? *b_.be64(at) : *b_.be32(at);
            quint64 moved = offset;
            if (checkOffsets) {
                auto m = offset > quint64(std::numeric_limits<qint64>::max()) ? std::nullopt : map.map(qint64(offset));
                if (!m) return fail(QStringLiteral("a chunk offset points outside the media data"));
                moved = quint64(*m);
            }
            if (wide || upgrade) {
                appendBe64(payload, moved);
            } else {
                if (moved > 0xFFFFFFFFu) newUpgrades_.insert(table.offset);
                appendBe32(payload, quint32(moved));
            }
        }
        payload += b_.mid(at, table.end() - at);  // anything behind the entries, as it was
        return makeAtom(wide || upgrade ? fourcc("co64") : fourcc("stco"), payload);
    }

    ByteView b_;
    const MetadataRewrite& rw_;
    QList<MetadataItem> mdta_, udta_, itsk_, uiso_, id3_;
    Atom moov_;
    bool fragmented_ = false;
    QSet<qint64> upgrades_, newUpgrades_;
    bool mdtaPlaced_ = false, itunesPlaced_ = false, userDataPlaced_ = false;
    QString error_;
};

bool writeAll(int fd, const char* data, qint64 length) {
    while (length > 0) {
        const ssize_t n = ::write(fd, data, size_t(std::min<qint64>(length, 1 << 30)));
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        length -= n;
    }
    return true;
}

// Copies in the kernel where it can (no trip through our memory), else from the mapped source.
bool copyRange(int from, int to, const uchar* mapped, qint64 offset, qint64 length) {
    loff_t in = offset;
    while (length > 0) {
        const ssize_t n = ::copy_file_range(from, &in, to, nullptr, size_t(std::min<qint64>(length, 1 << 30)), 0);
        if (n > 0) {
            length -= n;
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EXDEV && errno != ENOSYS && errno != EINVAL && errno != EOPNOTSUPP && errno != EPERM)
            return false;
        break;  // not supported here, or the source ended early: plain writes do the rest
    }
    if (length <= 0) return true;
    return writeAll(to, reinterpret_cast<const char*>(mapped + in), length);
}

}  // namespace

std::optional<QByteArray> rewriteMovie(const QByteArray& source, const MetadataRewrite& rewrite, QString* error) {
    const ByteView view(source);
    Rewriter rewriter(view, rewrite);
    auto pieces = rewriter.plan(error);
    if (!pieces) return std::nullopt;
    QByteArray out;
    qint64 total = 0;
    for (const Piece& p : *pieces) total += p.fromSource ? p.length : p.literal.size();
    out.reserve(qsizetype(total));
    for (const Piece& p : *pieces) out += p.fromSource ? view.mid(p.offset, p.length) : p.literal;
    return out;
}

bool writeMovie(const QString& source, const QString& destination, const MetadataRewrite& rewrite, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return false;
    };
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) return fail(in.errorString());
    const qint64 size = in.size();
    uchar* mapped = size > 0 ? in.map(0, size) : nullptr;
    if (!mapped) return fail(size > 0 ? QStringLiteral("the movie can't be read: %1").arg(in.errorString()) : QStringLiteral("the movie is empty"));
    const ByteView view(mapped, size);

    Rewriter rewriter(view, rewrite);
    auto pieces = rewriter.plan(error);
    if (!pieces) return false;

    const QFileInfo target(destination);
    if (target.exists()) return fail(QStringLiteral("%1 exists already").arg(destination));
    QTemporaryFile out(target.absolutePath() + QStringLiteral("/.tessorin-XXXXXX.tmp"));
    out.setAutoRemove(true);
    if (!out.open()) return fail(QStringLiteral("can't write in %1: %2").arg(target.absolutePath(), out.errorString()));
    const int fd = int(out.handle());
    for (const Piece& p : *pieces) {
        const bool ok = p.fromSource ? copyRange(int(in.handle()), fd, mapped, p.offset, p.length)
                                     : writeAll(fd, p.literal.constData(), p.literal.size());
        if (!ok) return fail(QStringLiteral("can't write %1: %2").arg(destination, QString::fromLocal8Bit(std::strerror(errno))));
    }
    // A temporary file is private; the new movie gets the permissions of any new file.
    ::fchmod(fd, 0666 & ~currentUmask());
    // On the disk before it takes the name, and the name on the disk after.
    if (!fileio::syncFile(fd)) return fail(QStringLiteral("can't write %1: %2").arg(destination, QString::fromLocal8Bit(std::strerror(errno))));
    QString why;
    if (!fileio::renameDurably(out.fileName(), destination, &why)) return fail(why);
    out.setAutoRemove(false);
    return true;
}

}  // namespace media
