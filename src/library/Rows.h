// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The index's rows as the library's own code reads and writes them, and how the rows of one
// asset become the asset the screens see. Not part of the library's interface.
#include "FileFacts.h"
#include "Index.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QTimeZone>
#include <QVariantList>
#include <optional>

namespace library {

struct Asset;

struct FileRow {
    QString path, asset, head, contentId, burst;
    qint64 size = 0, mtime = 0, subtypes = 0;
    FileKind kind = FileKind::image;
    bool readable = false, selfie = false;
    std::optional<qint64> date;
    std::optional<int> offset;
    std::optional<double> lat, lon, alt;
    int width = 0, height = 0;
    double duration = 0;
};

struct AssetRow {
    bool favorite = false, hidden = false;
    qint64 added = 0, version = 0;
    std::optional<qint64> userDate;
    std::optional<int> userOffset;
    std::optional<double> userLat, userLon;
    QString editOriginal, editAdjustment;
};

// Paths in the index are absolute and clean: their parts are found without QFileInfo, which
// costs an allocation and a parse per call.
inline QString folderOf(const QString& path) { return path.left(path.lastIndexOf('/')); }
inline QString fileNameOf(const QString& path) { return path.mid(path.lastIndexOf('/') + 1); }
bool under(const QString& path, const QString& folder);
// Whether a folder lies on a network or FUSE mount.
bool isOnRemoteVolume(const QString& dir);
QDateTime toDateTime(qint64 ms, std::optional<int> offset, const QTimeZone& local);

// The columns of `files` in the order `fileRow` reads them.
extern const char selectFiles[];
FileRow fileRow(const Statement& s);
QVariantList fileValues(const QString& path, const QString& asset, qint64 size, qint64 mtime, const QString& head,
                        const FileFacts& f);
extern const char insertFile[];

// The sidecars of a folder's photos, from one listing of each folder.
class SidecarLookup {
public:
    // The sidecar of `photoPath`, or empty.
    QString of(const QString& photoPath);

private:
    QHash<QString, QSet<QString>> folders_;
};

// How many folders scans listed in this process, so that what a rescan looked at can be told.
qint64 foldersListedSoFar();

// Turns the rows of one asset into the asset the platform would show.
// `date` receives the creation date in milliseconds, the key fetches sort on.
Asset makeAsset(const QString& id, const AssetRow& a, QList<const FileRow*> files,
                QHash<QString, bool>& remoteFolders, SidecarLookup& sidecars, const QTimeZone& local, qint64* date);

}  // namespace library
