// SPDX-License-Identifier: GPL-3.0-or-later
#include "Rewritten.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace imageio {
namespace {

std::optional<QString> writeAll(int fd, const char* data, qint64 n) {
    while (n > 0) {
        const ssize_t done = ::write(fd, data, size_t(n));
        if (done < 0 && errno == EINTR) continue;
        if (done < 0) return QString::fromLocal8Bit(std::strerror(errno));
        data += done;
        n -= done;
    }
    return std::nullopt;
}

}  // namespace

Rewritten Rewritten::from(const QByteArray& source) {
    Rewritten r;
    r.source_ = source;
    return r;
}

void Rewritten::add(QByteArray bytes) {
    if (bytes.isEmpty()) return;
    size_ += bytes.size();
    pieces_.append(Piece{std::move(bytes)});
}

void Rewritten::keep(qint64 from, qint64 length) {
    from = qBound<qint64>(0, from, source_.size());
    length = qBound<qint64>(0, length, source_.size() - from);
    if (length == 0) return;
    size_ += length;
    pieces_.append(Piece{{}, from, length});
}

qsizetype Rewritten::splitAt(qint64 at) {
    qint64 start = 0;
    for (qsizetype i = 0; i < pieces_.size(); ++i) {
        const qint64 n = pieces_[i].size();
        if (at == start) return i;
        if (at < start + n) {
            Piece head = pieces_[i], tail = pieces_[i];
            const qint64 cut = at - start;
            if (head.bytes.isEmpty()) {
                head.length = cut;
                tail.from += cut;
                tail.length -= cut;
            } else {
                head.bytes.truncate(cut);
                tail.bytes = tail.bytes.mid(cut);
            }
            pieces_[i] = head;
            pieces_.insert(i + 1, tail);
            return i + 1;
        }
        start += n;
    }
    return pieces_.size();
}

void Rewritten::overwrite(qint64 at, const QByteArray& bytes) {
    if (at < 0 || bytes.isEmpty() || at + bytes.size() > size_) return;
    const qsizetype first = splitAt(at);
    const qsizetype end = splitAt(at + bytes.size());
    pieces_.remove(first, end - first);
    pieces_.insert(first, Piece{bytes});
}

qint64 Rewritten::read(qint64 at, char* into, qint64 n) const {
    if (at < 0 || n <= 0) return 0;
    qint64 start = 0, done = 0;
    for (const Piece& p : pieces_) {
        const qint64 size = p.size();
        if (done == n) break;
        if (at + done < start + size) {
            const qint64 offset = at + done - start;
            const qint64 take = qMin(size - offset, n - done);
            const char* from = p.bytes.isEmpty() ? source_.constData() + p.from : p.bytes.constData();
            std::memcpy(into + done, from + offset, size_t(take));
            done += take;
        }
        start += size;
    }
    return done;
}

QByteArray Rewritten::head(qint64 n) const {
    QByteArray out(qBound<qint64>(0, n, size_), Qt::Uninitialized);
    read(0, out.data(), out.size());
    return out;
}

QByteArray Rewritten::leadingBytes() const {
    return pieces_.isEmpty() ? QByteArray() : pieces_.first().bytes;
}

QByteArray Rewritten::joined() const {
    if (pieces_.size() == 1 && !pieces_.first().bytes.isEmpty()) return pieces_.first().bytes;
    QByteArray out(size_, Qt::Uninitialized);
    read(0, out.data(), size_);
    return out;
}

std::optional<QString> Rewritten::writeTo(int fd, int sourceFd) const {
    for (const Piece& p : pieces_) {
        if (!p.bytes.isEmpty()) {
            if (auto failure = writeAll(fd, p.bytes.constData(), p.bytes.size())) return failure;
            continue;
        }
        loff_t from = p.from;
        qint64 left = p.length;
        while (sourceFd >= 0 && left > 0) {
            const ssize_t done = ::copy_file_range(sourceFd, &from, fd, nullptr, size_t(left), 0);
            if (done < 0 && errno == EINTR) continue;
            // Another file system, or a kernel or file that can't: the rest goes through memory.
            if (done <= 0) break;
            left -= done;
        }
        if (auto failure = writeAll(fd, source_.constData() + from, left)) return failure;
    }
    return std::nullopt;
}

}  // namespace imageio
