// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Notices files changing in the library's folders through inotify. Watching the folders (not
// each file) with IN_CLOSE_WRITE also catches a file rewritten in place, which a watch of
// directories through QFileSystemWatcher misses, and needs one watch per folder, not per file.
#include <QHash>
#include <QObject>
#include <QSet>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>
#include <memory>
#include <optional>
#include <utility>

namespace library {

class FolderWatcher : public QObject {
    Q_OBJECT
public:
    FolderWatcher();
    ~FolderWatcher() override;
    bool isValid() const { return fd_ >= 0; }
    // Watches these folders and every visible folder below them; new ones are added, folders
    // that went away drop out by themselves.
    void watch(const QStringList& roots);
    // The watch on `folder`, a number the watcher never gives twice, or -1 when it isn't watched.
    int watchOf(const QString& folder) const { return watched_.value(folder, -1); }
    // The changes seen and not yet told, those the kernel still holds included, for a scan that
    // starts now to take instead of the next `changed`: folders shallow, then deep.
    std::pair<QStringList, QStringList> takePending();

    // What a scan listed of a folder: its own time, its subfolders by name, and `watch`, the
    // watch on it when the listing began. Kept until the index holds what the scan found.
    struct Listed { qint64 time; QStringList subfolders; int watch; };
    void remember(const QHash<QString, Listed>& listed) { listed_.insert(listed); }
    void forget() { listed_.clear(); }
    // The subfolders of a folder watched since it was last listed, when its own time stayed:
    // it holds what it held then, or the watch would have told.
    std::optional<QStringList> unchanged(const QString& folder, qint64 time) const;

signals:
    // Once per burst of events: a program writing many files causes one scan, of the folders
    // whose files changed (`shallow`) and of folders that came or went with all below them
    // (`deep`).
    void changed(const QStringList& shallow, const QStringList& deep);

private:
    void readEvents();
    // Watches `dir` and every visible folder below it.
    void add(const QString& dir);
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer settle_;
    QHash<QString, int> watched_;
    QHash<int, QString> folderOf_;
    QSet<QString> shallow_, deep_;
    QStringList roots_;
    QHash<QString, Listed> listed_;
};

}  // namespace library
