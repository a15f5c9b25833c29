// SPDX-License-Identifier: GPL-3.0-or-later
#include "Requests.h"

#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QThreadPool>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace library {

namespace {

using Flag = std::shared_ptr<std::atomic_bool>;

// Running requests by identifier, so a cancel from any thread reaches the reader.
struct Running {
    QMutex mutex;
    QHash<RequestId, Flag> flags;
    RequestId last = 0;
};

Running& running() {
    static Running r;
    return r;
}

std::pair<RequestId, Flag> start() {
    Running& r = running();
    QMutexLocker lock(&r.mutex);
    auto flag = std::make_shared<std::atomic_bool>(false);
    const RequestId id = ++r.last;
    r.flags.insert(id, flag);
    return {id, flag};
}

void finish(RequestId id) {
    Running& r = running();
    QMutexLocker lock(&r.mutex);
    r.flags.remove(id);
}

void cancel(RequestId id) {
    Running& r = running();
    QMutexLocker lock(&r.mutex);
    if (auto flag = r.flags.value(id)) flag->store(true);
}

// Reads may block for long on a slow mount: they get threads of their own, not the pool that
// makes thumbnails.
QThreadPool& readers() {
    static QThreadPool pool;
    pool.setMaxThreadCount(4);
    return pool;
}

QString notOnDeviceText(const QString& path) {
    return QStringLiteral("%1 is not on this device and the network may not be used").arg(path);
}

// Reads the file in chunks. Plain POSIX reads: each returns what a slow source has, so
// progress and a cancel are seen between chunks. Nothing on success, else the error.
std::optional<QString> readChunks(const QString& path, qint64 expectedSize, const Flag& cancelled,
                                  const std::function<void(const QByteArray&)>& chunk,
                                  const std::function<bool(double)>& progress) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return QStringLiteral("%1 can't be read: %2").arg(path, QString::fromLocal8Bit(strerror(errno)));
    if (expectedSize <= 0) expectedSize = QFileInfo(path).size();
    constexpr qint64 chunkSize = 1 << 16;
    QByteArray buffer(chunkSize, Qt::Uninitialized);
    qint64 total = 0;
    std::optional<QString> error;
    for (;;) {
        if (cancelled->load()) {
            error = cancelledText();
            break;
        }
        const ssize_t n = ::read(fd, buffer.data(), size_t(chunkSize));
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            error = QStringLiteral("%1 can't be read: %2").arg(path, QString::fromLocal8Bit(strerror(errno)));
            break;
        }
        if (n == 0) break;
        total += n;
        chunk(QByteArray(buffer.constData(), n));
        // Short of the end a share below one: only the end of the file is "done".
        if (expectedSize > 0 && progress && !progress(qMin(0.99, double(total) / double(expectedSize)))) {
            error = cancelledText();
            break;
        }
    }
    ::close(fd);
    if (!error && progress) progress(1.0);
    return error;
}

bool networkNeeded(const Resource& r) { return !r.locallyAvailable; }

}  // namespace

QString cancelledText() { return QStringLiteral("The request was cancelled"); }

RequestId ResourceManager::requestData(const Resource& resource, const DataRequestOptions& options,
                                       std::function<void(const QByteArray&)> dataReceived,
                                       std::function<void(const std::optional<QString>&)> completion) {
    auto [id, flag] = start();
    readers().start([id, flag, resource, options, dataReceived = std::move(dataReceived), completion = std::move(completion)] {
        std::optional<QString> error;
        if (networkNeeded(resource) && !options.networkAccessAllowed) {
            error = notOnDeviceText(resource.path);
        } else {
            error = readChunks(resource.path, resource.fileSize, flag, dataReceived, [&](double p) {
                if (options.progressHandler) options.progressHandler(p);
                return true;
            });
        }
        finish(id);
        if (completion) completion(error);
    });
    return id;
}

void ResourceManager::cancelDataRequest(RequestId id) { cancel(id); }

RequestId ImageManager::requestImageData(const Asset& asset, const ImageRequestOptions& options,
                                         std::function<void(const std::optional<QByteArray>&, const std::optional<QString>&)> result) {
    auto [id, flag] = start();
    // The original is the first resource; the current version is the file that shows the asset.
    std::optional<Resource> chosen;
    const QString path = options.version == ImageVersion::original || asset.resources.isEmpty()
                             ? (asset.resources.isEmpty() ? QString() : asset.resources.first().path)
                             : asset.mainPath();
    for (const Resource& r : asset.resources)
        if (r.path == path) chosen = r;
    readers().start([id, flag, chosen, options, result = std::move(result)] {
        std::optional<QByteArray> data;
        std::optional<QString> error;
        if (!chosen) {
            error = QStringLiteral("The item has no file");
        } else if (networkNeeded(*chosen) && !options.networkAccessAllowed) {
            error = notOnDeviceText(chosen->path);
        } else {
            QByteArray bytes;
            error = readChunks(chosen->path, chosen->fileSize, flag, [&](const QByteArray& c) { bytes += c; },
                               [&](double p) {
                                   bool stop = false;
                                   if (options.progressHandler) options.progressHandler(p, &stop);
                                   return !stop;
                               });
            if (!error) data = std::move(bytes);
        }
        finish(id);
        if (result) result(data, error);
    });
    return id;
}

void ImageManager::cancelImageRequest(RequestId id) { cancel(id); }

}  // namespace library
