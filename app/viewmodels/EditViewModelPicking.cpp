// SPDX-License-Identifier: GPL-3.0-or-later
// Picking the photos of the visit: the add button, its picker over the album, the loading.
#include "EditViewModel.h"

#include "AppState.h"
#include "EditViewModelParts.h"
#include "Log.h"
#include "TSAlbum.h"
#include "TSAsset.h"
#include "TSEnvironment.h"
#include "TSFilesAlbum.h"
#include "TSPhotoAlbum.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString thumbnailOf(const QString& path) {
    return QStringLiteral("image://thumb/") + QString::fromLatin1(QUrl::toPercentEncoding(path));
}

QString canonical(const QString& path) {
    const QString c = QFileInfo(path).canonicalFilePath();
    return c.isEmpty() ? QFileInfo(path).absoluteFilePath() : c;
}

}  // namespace

QStringList EditViewModel::thumbnails() const {
    QStringList out;
    for (const auto& a : assets_) out << thumbnailOf(a->path());
    return out;
}

QString EditViewModel::maxImagesText() const { return QCoreApplication::translate("EditViewModel", "max %1").arg(appState().maxImages); }
bool EditViewModel::addVisible() const { return settings_ && !isVideo_; }
bool EditViewModel::addEnabled() const { return addVisible() && assets_.size() + pending_.size() < appState().maxImages; }
int EditViewModel::room() const { return qMax(0, int(appState().maxImages - assets_.size() - pending_.size())); }

void EditViewModel::addFiles(const QStringList& paths) {
    if (!addEnabled()) return;
    QStringList chosen;
    for (const auto& a : assets_) chosen << canonical(a->path());
    for (const QString& p : pending_) chosen << canonical(p);
    bool duplicate = false;
    int room = this->room();
    for (const QString& picked : paths) {
        const QString path = editparts::localPath(picked);
        const QString c = canonical(path);
        if (chosen.contains(c)) {
            duplicate = true;
            continue;
        }
        if (room-- <= 0) break;
        chosen << c;
        pending_ << path;
    }
    emit changed();
    // The alert first; the loading goes on once it is dismissed.
    if (duplicate) emit alert(QCoreApplication::translate("EditViewModel", "Alert"), QCoreApplication::translate("EditViewModel", "One or more selected photos are already among the chosen set"));
    else requestAsset();
}

QVariantList EditViewModel::albumChoices() const {
    const auto album = TSEnvironment::currentAlbum();
    const auto* files = dynamic_cast<const TSFilesAlbum*>(album.get());
    const auto* photos = dynamic_cast<const TSPhotoAlbum*>(album.get());
    QStringList chosen;
    for (const auto& a : assets_) chosen << canonical(a->path());
    QVariantList out;
    for (int i = 0; i < album->count(); ++i) {
        if (album->isVideo(i)) continue;
        QString path;
        if (files) path = files->imageUrl(i).value_or(QString());
        else if (photos && photos->fetchedAssets) path = photos->fetchedAssets->objectAt(i).mainPath();
        if (path.isEmpty()) continue;
        out << QVariantMap{{"path", path}, {"image", thumbnailOf(path)}, {"chosen", chosen.contains(canonical(path))}};
    }
    return out;
}

void EditViewModel::alertDismissed() { requestAsset(); }

void EditViewModel::requestAsset() {
    if (loadingNow_) return;
    if (pending_.isEmpty()) {
        if (activity_ == QLatin1String("Loading Photo...")) setActivity({});
        emit changed();
        return;
    }
    const QString path = pending_.takeFirst();
    loadingNow_ = true;
    Log::info("🔄 " + path);
    if (activity_.isEmpty()) setActivity(QCoreApplication::translate("EditViewModel", "Loading Photo..."));
    const quint64 visit = visit_;
    editparts::runOffThread<std::shared_ptr<TSAsset>>(
        this, [path] { return std::make_shared<TSAsset>(path); },
        [this, visit](const std::shared_ptr<TSAsset>& asset) {
            if (visit != visit_) return;
            Log::info("Adding image");
            assets_ << asset;
            loadingNow_ = false;
            refreshPreviews();
            emit changed();
            requestAsset();
        });
}

