// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileBytes.h"

#include <QFileInfo>

#include <cerrno>
#include <unistd.h>

namespace imageio {
namespace {

bool openForReading(QFile& file, const QString& path, QString* error) {
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return false;
    };
    const QFileInfo info(path);
    if (!info.exists()) return fail(QStringLiteral("no such file"));
    if (info.isDir()) return fail(QStringLiteral("is a folder"));
    file.setFileName(path);
    if (!file.open(QIODevice::ReadOnly)) return fail(file.errorString());
    return true;
}

}  // namespace

bool FileBytes::open(const QString& path, QString* error) {
    if (!openForReading(file_, path, error)) return false;
    bytes_.clear();
    if (file_.size() == 0) return true;
    if (uchar* mapped = file_.map(0, file_.size())) {
        bytes_ = QByteArray::fromRawData(reinterpret_cast<const char*>(mapped), file_.size());
        return true;
    }
    bytes_ = file_.readAll();  // pipes and special files can't be mapped
    if (file_.error() != QFileDevice::NoError) {
        if (error) *error = file_.errorString();
        return false;
    }
    return true;
}

bool FilePieces::open(const QString& path, QString* error) {
    if (!openForReading(file_, path, error)) return false;
    path_ = path;
    size_ = file_.isSequential() ? 0 : file_.size();
    head_.clear();
    bytesRead_ = 0;
    return true;
}

qint64 FilePieces::read(qint64 at, char* into, qint64 n) {
    if (at < 0 || n < 0) return -1;
    qint64 done = 0;
    while (done < n) {
        const ssize_t got = ::pread(file_.handle(), into + done, size_t(n - done), off_t(at + done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += got;
    }
    bytesRead_ += done;
    return done;
}

const QByteArray& FilePieces::head(qint64 n) {
    n = qMin(n, size_);
    const qint64 have = head_.size();
    if (n <= have) return head_;
    head_.resize(n);
    const qint64 got = read(have, head_.data() + have, n - have);
    head_.resize(have + qMax<qint64>(got, 0));
    return head_;
}

}  // namespace imageio
