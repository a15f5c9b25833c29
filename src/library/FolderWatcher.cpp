#include "FolderWatcher.h"

#include "Log.h"

#include <QDirIterator>
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
    connect(&settle_, &QTimer::timeout, this, &FolderWatcher::changed);
}

FolderWatcher::~FolderWatcher() {
    notifier_.reset();
    if (fd_ >= 0) close(fd_);
}

void FolderWatcher::watch(const QStringList& roots) {
    if (fd_ < 0) return;
    constexpr uint32_t mask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB |
                              IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    auto add = [&](const QString& dir) {
        if (watched_.contains(dir)) return;
        int wd = inotify_add_watch(fd_, dir.toLocal8Bit().constData(), mask);
        if (wd >= 0) watched_.insert(dir, wd);
    };
    for (const QString& root : roots) {
        add(root);
        QDirIterator it(root, QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext()) add(it.next());
    }
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
            if (e->mask & IN_IGNORED) {
                for (auto it = watched_.begin(); it != watched_.end(); ++it)
                    if (it.value() == e->wd) {
                        watched_.erase(it);
                        break;
                    }
                continue;
            }
            // Our own temporary files and hidden folders come and go with every save.
            if (e->len > 0 && e->name[0] == '.') continue;
            any = true;
        }
    }
    if (any) settle_.start();
}

}  // namespace library
