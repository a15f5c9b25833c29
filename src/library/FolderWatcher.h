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

signals:
    // Once per burst of events: a program writing many files causes one scan, of the folders
    // whose files changed (`shallow`) and of folders that came or went with all below them
    // (`deep`).
    void changed(const QStringList& shallow, const QStringList& deep);

private:
    void readEvents();
    int fd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
    QTimer settle_;
    QHash<QString, int> watched_;
    QHash<int, QString> folderOf_;
    QSet<QString> shallow_, deep_;
    QStringList roots_;
};

}  // namespace library
