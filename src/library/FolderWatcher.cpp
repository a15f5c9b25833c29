// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderWatcher.h"

#include "Log.h"

#include <QDirIterator>
#include <QFile>
#include <sys/inotify.h>
#include <unistd.h>

namespace library {

FolderWatcher::FolderWatcher() {
    fd_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (fd_ < 0) {
        Log::error(QStringLiteral("🗂 The library's folders can't be watched: %1").arg(QString::fromLocal8Bit(strerror(errno))));
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(fd_, QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &FolderWatcher::readEvents);
    settle_.setSingleShot(true);
    settle_.setInterval(100);
    connect(&settle_, &QTimer::timeout, this, [this] {
        const QStringList shallow(shallow_.begin(), shallow_.end()), deep(deep_.begin(), deep_.end());
        shallow_.clear();
        deep_.clear();
        emit changed(shallow, deep);
    });
}

FolderWatcher::~FolderWatcher() {
    notifier_.reset();
    if (fd_ >= 0) close(fd_);
}

void FolderWatcher::watch(const QStringList& roots) {
    roots_ = roots;
    // Folders made below a watched one are added as their events come; a root that went and
    // came back, here.
    for (const QString& root : roots)
        if (!watched_.contains(root)) add(root);
}

void FolderWatcher::add(const QString& dir) {
    if (fd_ < 0) return;
    constexpr uint32_t mask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB |
                              IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    auto one = [&](const QString& folder) {
        if (watched_.contains(folder)) return;
        const int wd = inotify_add_watch(fd_, QFile::encodeName(folder).constData(), mask);
        if (wd < 0) return;
        watched_.insert(folder, wd);
        folderOf_.insert(wd, folder);
    };
    one(dir);
    QDirIterator it(dir, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) one(it.next());
}

std::pair<QStringList, QStringList> FolderWatcher::takePending() {
    if (fd_ >= 0) readEvents();
    settle_.stop();
    std::pair<QStringList, QStringList> pending{QStringList(shallow_.begin(), shallow_.end()), QStringList(deep_.begin(), deep_.end())};
    shallow_.clear();
    deep_.clear();
    return pending;
}

std::optional<QStringList> FolderWatcher::unchanged(const QString& folder, qint64 time) const {
    const auto was = listed_.constFind(folder);
    if (was == listed_.cend() || was->time != time || was->watch < 0 || watchOf(folder) != was->watch) return std::nullopt;
    return was->subfolders;
}

void FolderWatcher::readEvents() {
    alignas(inotify_event) char buffer[16384];
    bool any = false;
    for (;;) {
        const ssize_t n = read(fd_, buffer, sizeof buffer);
        if (n <= 0) break;
        for (ssize_t at = 0; at < n;) {
            const auto* e = reinterpret_cast<const inotify_event*>(buffer + at);
            at += ssize_t(sizeof(inotify_event) + e->len);
            if (e->mask & IN_Q_OVERFLOW) {
                // Events were lost: everything is looked at again.
                for (const QString& root : std::as_const(roots_)) deep_.insert(root);
                any = true;
                continue;
            }
            if (e->mask & IN_IGNORED) {
                watched_.remove(folderOf_.take(e->wd));
                continue;
            }
            const QString folder = folderOf_.value(e->wd);
            if (folder.isEmpty()) continue;
            if (e->len == 0) {
                // The watched folder itself went or moved. A moved one is watched again under its
                // new name by the next watch().
                if (e->mask & IN_MOVE_SELF) {
                    inotify_rm_watch(fd_, e->wd);
                    watched_.remove(folderOf_.take(e->wd));
                }
                if (e->mask & (IN_DELETE_SELF | IN_MOVE_SELF)) {
                    deep_.insert(folder);
                    any = true;
                }
                continue;
            }
            // Our own temporary files and hidden folders come and go with every save.
            if (e->name[0] == '.') continue;
            if (e->mask & IN_ISDIR) {
                const QString sub = folder + '/' + QFile::decodeName(e->name);
                // Watched before the scan lists it, so nothing written into it is missed.
                if (e->mask & (IN_CREATE | IN_MOVED_TO)) add(sub);
                deep_.insert(sub);
            } else {
                shallow_.insert(folder);
            }
            any = true;
        }
    }
    if (any) settle_.start();
}

}  // namespace library
