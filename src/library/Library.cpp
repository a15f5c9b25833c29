// SPDX-License-Identifier: GPL-3.0-or-later
#include "Library.h"

#include "FolderWatcher.h"
#include "Index.h"
#include "Journal.h"
#include "Settings.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtConcurrent/QtConcurrentRun>
#include <sqlite3.h>

namespace library {

QStringList Library::defaultFolders() {
    const QString env = qEnvironmentVariable("TESSORIN_LIBRARY");
    if (!env.isEmpty()) return env.split(':', Qt::SkipEmptyParts);
    const QStringList set = Settings::value(QStringLiteral("libraryFolders")).toStringList();
    if (!set.isEmpty()) return set;
    return {QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)};
}

QString Library::defaultDatabasePath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Tessorin/library.sqlite");
}

QString Library::applicationAlbumTitle() { return QStringLiteral(TESSORIN_APP_NAME); }

Library::Library(QStringList folders, QString databasePath, QObject* parent) : QObject(parent) {
    for (const QString& f : folders) folders_ << QDir::cleanPath(QFileInfo(f).absoluteFilePath());
    index_ = std::make_unique<Index>(databasePath);
    journals_ = std::make_unique<Journals>(folders_);
    journals_->addSalvaged(index_->salvaged());
    if (index_->isOpen()) toldVersion_ = dataVersion();
}

Library::~Library() { cancelBackgroundScan(); }

QFuture<ScanReport> Library::scanInBackground(int batchSize) {
    cancelBackgroundScan();
    // The items a damaged index gave back are this object's to place; a rebuild is rare enough
    // to read here.
    if (!isOpen() || !index_->salvaged().isEmpty()) return QtFuture::makeReadyFuture(scan());
    stop_ = std::make_shared<std::atomic<bool>>(false);
    background_ = QtConcurrent::run([this, folders = folders_, path = index_->path(), stop = stop_, batchSize] {
        Library worker(folders, path);
        worker.batchSize_ = std::max(1, batchSize);
        worker.stop_ = stop;
        // Queued to this object's thread, which this one waits for before it goes.
        connect(&worker, &Library::scanProgress, this, &Library::scanProgress);
        connect(&worker, &Library::libraryDidChange, this, &Library::noticeChanges);
        return worker.scan();
    });
    return background_;
}

void Library::cancelBackgroundScan() {
    if (stop_) stop_->store(true);
    background_.waitForFinished();
}

void Library::noticeChanges() {
    if (!isOpen()) return;
    const qint64 told = std::exchange(toldVersion_, dataVersion());
    if (told != toldVersion_) emit libraryDidChange();
}

bool Library::isOpen() const { return index_->isOpen(); }
QString Library::openError() const { return index_->error(); }

bool Library::ensureOpen(QString* error) const {
    if (index_->isOpen()) return true;
    if (error) *error = index_->error();
    return false;
}

void Library::startWatching() {
    if (watcher_) return;
    watcher_ = std::make_unique<FolderWatcher>();
    watcher_->watch(folders_);
    connect(watcher_.get(), &FolderWatcher::changed, this, [this](const QStringList& shallow, const QStringList& deep) {
        scan(shallow, deep);
        watcher_->watch(folders_);  // folders made since
    });
}

void Library::stopWatching() { watcher_.reset(); }

}  // namespace library
