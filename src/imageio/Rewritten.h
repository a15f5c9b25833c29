// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A rewritten file: new bytes, and ranges of its source kept as they are. Most of a photo (a
// JPEG's scan, a HEIF's coded images) is such a range. Saved to a file, the kept ranges go from
// the source file to the new one by copy_file_range, inside the kernel, instead of being copied
// through this process's memory and written back.
#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

namespace imageio {

class Rewritten {
public:
    Rewritten() = default;
    // All new bytes.
    explicit Rewritten(QByteArray bytes) { add(std::move(bytes)); }
    // A file made of pieces of `source`, which must outlive this object's pieces (it is kept by
    // reference count, a mapping included).
    static Rewritten from(const QByteArray& source);

    void add(QByteArray bytes);
    // `length` bytes of the source from `from`; clamped to the source.
    void keep(qint64 from, qint64 length);
    // Overwrites `bytes.size()` bytes of the new file at `at` (within it).
    void overwrite(qint64 at, const QByteArray& bytes);

    qint64 size() const { return size_; }
    // Up to `n` bytes of the new file from `at`; fewer at its end.
    qint64 read(qint64 at, char* into, qint64 n) const;
    // The first `n` bytes (fewer when the file is shorter).
    QByteArray head(qint64 n) const;
    // The first piece when it is new bytes: for a JPEG, its segments up to the scan.
    QByteArray leadingBytes() const;
    // The whole new file in memory (no copy when it is one piece of new bytes).
    QByteArray joined() const;

    // Writes the new file to `fd` from its current offset. `sourceFd`, when not -1, is the file
    // `source` maps: kept ranges are copied from it by the kernel. Nothing, or the cause.
    std::optional<QString> writeTo(int fd, int sourceFd) const;
    // Whether the kept ranges are ranges of `source` (the same bytes, not a copy of them).
    bool keepsFrom(const QByteArray& source) const {
        return source_.constData() == source.constData() && source_.size() == source.size();
    }

private:
    struct Piece {
        QByteArray bytes;  // new bytes, or empty for a kept range
        qint64 from = 0, length = 0;
        qint64 size() const { return bytes.isEmpty() ? length : bytes.size(); }
    };
    // Splits the piece holding `at` so that a piece starts there; the index of that piece.
    qsizetype splitAt(qint64 at);

    QByteArray source_;
    QList<Piece> pieces_;
    qint64 size_ = 0;
};

}  // namespace imageio
