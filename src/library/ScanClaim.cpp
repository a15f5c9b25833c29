// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScanClaim.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

namespace library {

namespace {
struct Pending {
    QMutex mutex;
    struct Files {
        bool listed = false;
        QSet<QString> paths;
    };
    QHash<QString, Files> byDatabase;
};
Pending& pending() {
    static Pending p;
    return p;
}
}  // namespace

ScanClaim::ScanClaim(QString database) : database_(std::move(database)) {
    if (database_.isEmpty()) return;
    QMutexLocker lock(&pending().mutex);
    pending().byDatabase.insert(database_, {});
}

ScanClaim::~ScanClaim() {
    if (database_.isEmpty()) return;
    QMutexLocker lock(&pending().mutex);
    pending().byDatabase.remove(database_);
}

void ScanClaim::listed(QSet<QString> paths) {
    QMutexLocker lock(&pending().mutex);
    Pending::Files& mine = pending().byDatabase[database_];
    mine.paths = std::move(paths);
    mine.listed = true;
}

void ScanClaim::leaveClaimed(const QString& database, QStringList& fresh, QStringList& changed) {
    QMutexLocker lock(&pending().mutex);
    const auto claimed = pending().byDatabase.constFind(database);
    if (claimed == pending().byDatabase.cend()) return;
    if (!claimed->listed) {
        fresh.clear();
        changed.clear();
        return;
    }
    fresh.removeIf([&](const QString& p) { return claimed->paths.contains(p); });
    changed.removeIf([&](const QString& p) { return claimed->paths.contains(p); });
}

}  // namespace library
