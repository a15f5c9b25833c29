// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A background scan's hold on the files it is still to read, by database, from its start to its
// end: other scans of the same index in this process leave them to it, so that no file is read
// twice or given two items. Until it has listed them, it holds every file the index doesn't.
#include <QSet>
#include <QString>
#include <QStringList>

namespace library {

class ScanClaim {
public:
    // An empty `database`: no claim (a scan that isn't a background one).
    explicit ScanClaim(QString database);
    ~ScanClaim();
    ScanClaim(const ScanClaim&) = delete;
    ScanClaim& operator=(const ScanClaim&) = delete;

    bool active() const { return !database_.isEmpty(); }
    // The files this scan is to read, once it knows them.
    template <typename Reads> void list(const Reads& reads) {
        QSet<QString> paths;
        paths.reserve(reads.size());
        for (const auto& r : reads) paths.insert(r.path);
        listed(std::move(paths));
    }
    // What another scan of `database` must leave alone among the files it found.
    static void leaveClaimed(const QString& database, QStringList& fresh, QStringList& changed);

private:
    void listed(QSet<QString> paths);
    QString database_;
};

}  // namespace library
