// SPDX-License-Identifier: GPL-3.0-or-later
#include "FolderListing.h"

#include "FileFacts.h"
#include "Rows.h"
#include "Sidecar.h"

#include <QFile>
#include <QHash>
#include <algorithm>
#include <atomic>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace library {

namespace {
std::atomic<qint64> foldersListed{0};
}  // namespace

qint64 foldersListedSoFar() { return foldersListed.load(); }

std::optional<Listing> listFolder(const QString& dir) {
    const QByteArray encoded = QFile::encodeName(dir);
    DIR* d = access(encoded.constData(), R_OK | X_OK) == 0 ? opendir(encoded.constData()) : nullptr;
    if (!d) return std::nullopt;
    ++foldersListed;
    Listing listing;
    QList<Entry> sidecars;
    while (const dirent* e = readdir(d)) {
        // Hidden entries (our own folder of originals among them) aren't part of the library.
        if (e->d_name[0] == '.') continue;
        const QString name = QFile::decodeName(e->d_name);
        const bool media = hasMediaName(name), sidecar = name.endsWith(QLatin1String(".xmp"), Qt::CaseInsensitive);
        if (!media && !sidecar && e->d_type != DT_DIR && e->d_type != DT_UNKNOWN && e->d_type != DT_LNK) continue;
        struct stat st {};
        if (fstatat(dirfd(d), e->d_name, &st, 0) != 0) continue;
        if (S_ISDIR(st.st_mode)) {
            listing.subfolders << name;
            continue;
        }
        if (!S_ISREG(st.st_mode)) continue;
        const qint64 mtime = qint64(st.st_mtim.tv_sec) * 1000 + st.st_mtim.tv_nsec / 1000000;
        // The bytes themselves when they are the UTF-8 the index holds, as they nearly always are.
        const QByteArrayView raw(e->d_name);
        Entry entry{raw.isValidUtf8() ? raw.toByteArray() : name.toUtf8(), {qint64(st.st_size), mtime}};
        if (media) listing.files << std::move(entry);
        else if (sidecar) sidecars << std::move(entry);
    }
    closedir(d);
    // A photo counts as changed when its sidecar does, or comes or goes: its time is the later
    // of the two, so another program's rating or keywords in the sidecar are read like a change
    // to the photo, and a photo moved with its sidecar is still known by size, time and first bytes.
    if (!sidecars.isEmpty()) {
        QHash<QString, qint64> sidecarTimes;
        for (const Entry& s : std::as_const(sidecars)) sidecarTimes.insert(dir + '/' + QString::fromUtf8(s.name), s.at.mtime);
        for (Entry& f : listing.files)
            for (const QString& candidate : imageio::sidecarCandidates(dir + '/' + QString::fromUtf8(f.name)))
                if (const auto s = sidecarTimes.constFind(candidate); s != sidecarTimes.cend()) {
                    f.at.mtime = std::max(f.at.mtime, *s);
                    break;
                }
    }
    std::sort(listing.files.begin(), listing.files.end(), [](const Entry& x, const Entry& y) { return nameOrder(x.name, y.name); });
    return listing;
}

}  // namespace library
