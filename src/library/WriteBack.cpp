// SPDX-License-Identifier: GPL-3.0-or-later
// The library's changes: marks, deletion into the trash, edits in place and their revert, new
// items. Every file is written to a temporary file beside its target, flushed, and renamed over
// it, so a failure, a kill or a power cut at any point leaves the original whole. What the user
// set goes to the journals of the item's library folders before the index commits it.
#include "DurableFile.h"
#include "Index.h"
#include "Journal.h"
#include "Library.h"
#include "Log.h"
#include "Sidecar.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <sqlite3.h>

namespace library {

namespace {

QString hiddenFolderName() { return QStringLiteral(".tessorin"); }

// A copy that keeps the modification time, so a restored original is the file it was.
bool copyAtomically(const QString& from, const QString& to, QString* error) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly)) {
        if (error) *error = QStringLiteral("%1 can't be read: %2").arg(from, source.errorString());
        return false;
    }
    if (!fileio::writeDurably(to, source.readAll(), error)) return false;
    QFile target(to);
    if (target.open(QIODevice::ReadWrite)) target.setFileTime(QFileInfo(from).lastModified(), QFileDevice::FileModificationTime);
    return true;
}

// A photo renamed from `from` to `to` takes its sidecar along: NAME.EXT.xmp follows the new
// extension (in the case it had); NAME.xmp fits both names and stays.
void renameSidecar(const QString& from, const QString& to) {
    const QStringList was = imageio::sidecarCandidates(from);
    for (qsizetype i = 0; i + 2 < was.size(); ++i) {  // the last two are NAME.xmp
        if (!QFileInfo::exists(was[i])) continue;
        const QString will = to + was[i].right(4);  // ".xmp" as it was spelt
        QString error;
        if (QFileInfo::exists(will) || !fileio::renameDurably(was[i], will, &error))
            Log::warning(QStringLiteral("🗂 The sidecar %1 can't follow its photo to %2 %3").arg(was[i], will, error));
        return;
    }
}

// One change of the index, the journals of `roots` written before it commits.
bool journaled(Index& index, Journals& journals, const QSet<QString>& roots, const std::function<bool()>& body) {
    const bool ok = index.transaction([&] {
        if (!body()) return false;
        journals.write(index.db(), roots, {}, index.changesBefore());
        return true;
    });
    if (ok) journals.committed();
    else journals.failed(roots);
    return ok;
}

}  // namespace

bool Library::setFavorite(const QString& localIdentifier, bool favorite, QString* error) {
    return setMark("favorite", localIdentifier, favorite, error);
}

bool Library::setHidden(const QString& localIdentifier, bool hidden, QString* error) {
    return setMark("hidden", localIdentifier, hidden, error);
}

bool Library::setMark(const char* column, const QString& localIdentifier, bool value, QString* error) {
    if (!ensureOpen(error)) return false;
    bool found = false;
    const bool ok = journaled(*index_, *journals_, journals_->rootsOfAsset(index_->db(), localIdentifier), [&] {
        const QByteArray sql = QByteArray("UPDATE assets SET ") + column + " = ?, version = version + 1 WHERE id = ?";
        Statement s(index_->db(), sql.constData());
        found = s.exec({int(value), localIdentifier}) && sqlite3_changes(index_->db()) > 0;
        return found;
    });
    if (!ok) {
        if (error)
            *error = found ? QStringLiteral("The library's index can't be updated: %1").arg(index_->lastError())
                           : QStringLiteral("No item %1 in the library").arg(localIdentifier);
        return false;
    }
    emit libraryDidChange();
    return true;
}

bool Library::deleteAsset(const QString& localIdentifier, QString* error) {
    if (!ensureOpen(error)) return false;
    auto a = asset(localIdentifier);
    if (!a) {
        if (error) *error = QStringLiteral("No item %1 in the library").arg(localIdentifier);
        return false;
    }
    for (const Resource& r : a->resources) {
        if (!QFileInfo::exists(r.path)) continue;
        if (!QFile::moveToTrash(r.path)) {
            if (error) *error = QStringLiteral("%1 can't be moved to the trash").arg(r.path);
            scan();
            return false;
        }
    }
    if (a->isEdited()) QDir().rmdir(QFileInfo(a->resources.first().path).absolutePath());
    Log::info(QStringLiteral("🗑 moved to the trash: %1").arg(localIdentifier));
    scan();
    return true;
}

bool Library::editInPlace(const QString& localIdentifier, const QByteArray& data, const QString& extension,
                          const QByteArray& adjustmentData, QString* error) {
    if (!ensureOpen(error)) return false;
    auto a = asset(localIdentifier);
    if (!a || !a->canPerformEditOperation(1)) {
        if (error) *error = QStringLiteral("Image is not editable");
        return false;
    }
    const QString current = a->mainPath();
    const QFileInfo info(current);
    const QString target = extension.isEmpty() || info.suffix().compare(extension, Qt::CaseInsensitive) == 0
                               ? current
                               : info.absolutePath() + '/' + info.completeBaseName() + '.' + extension;
    if (target != current && QFileInfo::exists(target)) {
        if (error) *error = QStringLiteral("A file %1 is already there").arg(target);
        return false;
    }
    QString original, adjustment;
    if (a->isEdited()) {
        // The first original stays: a revert goes back to the item as it came.
        original = a->resources.first().path;
        adjustment = a->resources.at(2).path;
    } else {
        const QString dir = journals_->rootOf(current) + '/' + hiddenFolderName() + "/edits/" + localIdentifier;
        if (!QDir().mkpath(dir)) {
            if (error) *error = QStringLiteral("The folder %1 can't be made").arg(dir);
            return false;
        }
        original = dir + '/' + info.fileName();
        adjustment = dir + "/Adjustments.json";
        if (!copyAtomically(current, original, error)) return false;
    }
    const QJsonObject json{{"formatIdentifier", adjustmentFormatIdentifier()},
                           {"formatVersion", adjustmentFormatVersion()},
                           {"data", QString::fromLatin1(adjustmentData.toBase64())}};
    if (!fileio::writeDurably(adjustment, QJsonDocument(json).toJson(), error)) return false;
    // The journal and the index learn of the edit before the file changes: a kill before the
    // rename leaves the original where it was, and the next scan finds it there again by its size
    // and first bytes; a kill between the two leaves a journal the next scan writes again.
    bool ok = journaled(*index_, *journals_, journals_->rootsOfAsset(index_->db(), localIdentifier), [&] {
        Statement edit(index_->db(), "UPDATE assets SET edit_original = ?, edit_adjustment = ?, version = version + 1 WHERE id = ?");
        Statement move(index_->db(), "UPDATE files SET path = ? WHERE path = ?");
        return edit.exec({original, adjustment, localIdentifier}) && (target == current || move.exec({target, current}));
    });
    if (!ok) {
        if (error) *error = QStringLiteral("The library's index can't be updated: %1").arg(index_->lastError());
        return false;
    }
    if (!fileio::writeDurably(target, data, error)) {
        scan();
        return false;
    }
    if (target != current) {
        QFile::remove(current);  // its copy is the kept original
        renameSidecar(current, target);
    }
    scan();
    return true;
}

bool Library::revert(const QString& localIdentifier, QString* error) {
    if (!ensureOpen(error)) return false;
    auto a = asset(localIdentifier);
    if (!a || !a->isEdited()) {
        if (error) *error = QStringLiteral("The item %1 has no edit to revert").arg(localIdentifier);
        return false;
    }
    const QString original = a->resources.at(0).path;
    const QString rendered = a->resources.at(1).path;
    const QString target = QFileInfo(rendered).absolutePath() + '/' + QFileInfo(original).fileName();
    if (target != rendered && QFileInfo::exists(target)) {
        if (error) *error = QStringLiteral("A file %1 is already there").arg(target);
        return false;
    }
    if (!copyAtomically(original, target, error)) return false;
    bool ok = journaled(*index_, *journals_, journals_->rootsOfAsset(index_->db(), localIdentifier), [&] {
        Statement edit(index_->db(), "UPDATE assets SET edit_original = NULL, edit_adjustment = NULL, version = version + 1 WHERE id = ?");
        Statement move(index_->db(), "UPDATE files SET path = ? WHERE path = ?");
        return edit.exec({localIdentifier}) && (target == rendered || move.exec({target, rendered}));
    });
    if (!ok) {
        if (error) *error = QStringLiteral("The library's index can't be updated: %1").arg(index_->lastError());
        return false;
    }
    if (target != rendered) {
        QFile::remove(rendered);  // the edit's render; the original is back
        renameSidecar(rendered, target);
    }
    QDir(QFileInfo(original).absolutePath()).removeRecursively();
    scan();
    return true;
}

std::optional<QString> Library::createAsset(const QByteArray& data, const QString& fileName,
                                            const std::optional<QDateTime>& creationDate,
                                            const std::optional<Location>& location, const QString& albumTitle,
                                            QString* error) {
    if (!ensureOpen(error)) return std::nullopt;
    const QString title = albumTitle.isEmpty() ? applicationAlbumTitle() : albumTitle;
    auto album = this->album(title);
    if (!album) album = createAlbum(title, error);
    if (!album) return std::nullopt;
    const QString folder = album->identifier.mid(7);
    const QFileInfo name(fileName);
    QString path = folder + '/' + name.fileName();
    for (int n = 1; QFileInfo::exists(path); ++n)
        path = QStringLiteral("%1/%2_%3.%4").arg(folder, name.completeBaseName()).arg(n).arg(name.suffix());
    if (!fileio::writeDurably(path, data, error)) return std::nullopt;
    scan();
    auto created = assetForPath(path);
    if (!created) {
        if (error) *error = QStringLiteral("Error saving the image");
        return std::nullopt;
    }
    if (creationDate || location) {
        const bool ok = journaled(*index_, *journals_, journals_->rootsOf({path}), [&] {
            Statement s(index_->db(), "UPDATE assets SET user_date = ?, user_offset = ?, user_lat = ?, user_lon = ?, "
                                      "version = version + 1 WHERE id = ?");
            return s.exec({creationDate ? QVariant(creationDate->toMSecsSinceEpoch()) : QVariant(),
                           creationDate ? QVariant(creationDate->offsetFromUtc()) : QVariant(),
                           location ? QVariant(location->latitude) : QVariant(),
                           location ? QVariant(location->longitude) : QVariant(), created->localIdentifier});
        });
        if (!ok) Log::error(QStringLiteral("🗂 The date and place of %1 can't be kept: %2").arg(path, index_->lastError()));
        emit libraryDidChange();
    }
    return created->localIdentifier;
}

std::optional<QByteArray> Library::adjustmentData(const QString& localIdentifier) const {
    auto a = asset(localIdentifier);
    if (!a || !a->isEdited()) return std::nullopt;
    QFile file(a->resources.at(2).path);
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    return QByteArray::fromBase64(json.value("data").toString().toLatin1());
}

}  // namespace library
