// SPDX-License-Identifier: GPL-3.0-or-later
#include "Albums.h"

#include "FileTypes.h"
#include "Log.h"
#include "Settings.h"
#include "TSAlbum.h"

#include <QRegularExpression>
#include <unistd.h>

namespace Albums {

using library::SmartAlbum::allHidden;
using library::SmartAlbum::slomoVideos;
using library::SmartAlbum::timelapses;
using library::SmartAlbum::userLibrary;
using library::SmartAlbum::videos;

library::FetchOptions fetchOptions() {
    library::FetchOptions options;
    options.sort = Settings::flag(SettingsFlag::mostRecentFirst) ? library::SortOrder::creationDateDescending
                                                                  : library::SortOrder::creationDateAscending;
    if (!Settings::flag(SettingsFlag::video)) options.mediaType = library::MediaType::image;
    return options;
}

QList<library::Collection> smartList(const library::Library& library) {
    constexpr int longTitles = 216;  // a platform album with no symbol, never listed
    const bool video = Settings::flag(SettingsFlag::video);
    QList<library::Collection> list;
    for (const library::Collection& c : library.smartAlbums()) {
        const int s = c.subtype;
        if (s == userLibrary || s == longTitles || s == allHidden || s > 999'999) continue;
        if (!video && (s == videos || s == timelapses || s == slomoVideos)) continue;
        list << c;
    }
    return list;
}

QList<TSCollection> collections(const library::Library& library) {
    using Kind = TSCollection::Kind;
    QList<TSCollection> list;
    list << TSCollection{Kind::assetsFetched, QStringLiteral("Saved Photos"), library.fetchAssets(fetchOptions()), {}};
    list << TSCollection{Kind::collectionsFetched, QStringLiteral("Albums"), {}, library.userCollections()};
    list << TSCollection{Kind::collectionsFetched, QStringLiteral("Smart Albums"), {}, smartList(library)};
    // Album kinds a folder library has no source for: they enter only when something fills them.
    static const QList<QPair<int, const char*>> special{
        {3, "Events"}, {5, "Synced Albums"}, {4, "Faces"}, {6, "Imported"}, {101, "Cloud Shared"}};
    const QList<library::Collection> user = library.userCollections();
    for (const auto& [subtype, title] : special) {
        QList<library::Collection> found;
        for (const library::Collection& c : user)
            if (c.subtype == subtype) found << c;
        if (!found.isEmpty()) list << TSCollection{Kind::assetsCollectionsFetched, QString::fromLatin1(title), {}, found};
    }
    return list;
}

QString allPhotosTitle(bool fullAccess) {
    return fullAccess ? QStringLiteral("All Photos") : QStringLiteral("Selected Photos");
}

QString symbol(int smartSubtype) {
    switch (smartSubtype) {
    case 201: return QStringLiteral("pano");
    case 202: return QStringLiteral("video");
    case 203: return QStringLiteral("heart");
    case 204: return QStringLiteral("timelapse");
    case 205: return QStringLiteral("eye.slash");
    case 206: return QStringLiteral("plus.viewfinder");
    case 207: return QStringLiteral("square.stack.3d.down.right");
    case 208: return QStringLiteral("slowmo");
    case 209: return QStringLiteral("clock");
    case 210: return QStringLiteral("person.crop.square");
    case 211: return QStringLiteral("camera.viewfinder");
    case 212: return QStringLiteral("f.cursive.circle");
    case 213: return QStringLiteral("livephoto");
    case 214: return QStringLiteral("square.stack.3d.forward.dottedline");
    case 215: return QStringLiteral("timer.circle");
    case 217: return QStringLiteral("r.square.on.square");
    case 218: return QStringLiteral("video.fill");
    case 219: return QStringLiteral("cube");
    default: return {};
    }
}

}  // namespace Albums

namespace TSEnvironment {

int ramCheck(qint64 bytes) {
    const QString text = filetypes::fileSizeText(bytes);
    // The first piece ends at the decimal mark: 5.5 GB counts as 5.
    const QString first = text.split(QRegularExpression(QStringLiteral("[\\p{P}\\s]")), Qt::SkipEmptyParts).value(0);
    bool ok = false;
    int n = first.toInt(&ok);
    if (!ok) n = 2;
    Log::info(QStringLiteral("RAM: %1 [%2]").arg(text).arg(n));
    const int maxImages = int(qMin(qint64(n) * 12, qint64(48)));
    Log::info(QStringLiteral("maxImages: %1").arg(maxImages));
    return maxImages;
}

qint64 physicalMemory() { return qint64(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGE_SIZE); }

namespace {
library::Library*& shared() {
    static library::Library* value = nullptr;
    return value;
}
}  // namespace

library::Library* library() { return shared(); }
void setLibrary(library::Library* library) { shared() = library; }

}  // namespace TSEnvironment
