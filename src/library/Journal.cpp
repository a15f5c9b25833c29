// SPDX-License-Identifier: GPL-3.0-or-later
// Keeping the journals in step with the index: checked once, items taken back, lines appended
// or the whole journal written inside the index's transactions.
#include "Journal.h"

#include "DurableFile.h"
#include "Index.h"
#include "Log.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace library {

namespace {

// What tells the journal the index wrote last from another: its size and the SHA-1 of its
// last 64 KiB, where every append lands; found without reading a large journal whole.
constexpr qsizetype digestedTail = 64 * 1024;
QString digestOf(qint64 size, QByteArrayView tail) {
    return QString::number(size) + ':' + QString::fromLatin1(QCryptographicHash::hash(tail, QCryptographicHash::Sha1).toHex());
}
QString digestOf(const QByteArray& data) { return digestOf(data.size(), QByteArrayView(data).last(std::min(data.size(), digestedTail))); }
QString digestOf(QFile& file) {
    const qint64 size = file.size();
    if (!file.seek(std::max<qint64>(0, size - digestedTail))) return {};
    return digestOf(size, file.read(digestedTail));
}

struct Stored {
    QString digest;
    qint64 whole = 0;  // the size at the last writing whole
};
std::optional<Stored> storedDigest(sqlite3* db, const QString& root) {
    Statement s(db, "SELECT digest, whole FROM journals WHERE root = ?");
    s.bind({root});
    if (!s.step()) return std::nullopt;
    return Stored{s.text(0), s.integer(1)};
}

bool inIndex(sqlite3* db, const QString& id) {
    Statement s(db, "SELECT 1 FROM assets WHERE id = ?");
    s.bind({id});
    return s.step();
}

QString contentKey(qint64 size, const QString& head) { return QString::number(size) + ':' + head; }

}  // namespace

Journals::Journals(QStringList roots) : roots_(std::move(roots)) {}

QString Journals::rootOf(const QString& path) const {
    for (const QString& r : roots_)
        if (journal::under(path, r)) return r;
    return {};
}

QSet<QString> Journals::rootsOf(const QStringList& paths) const {
    QSet<QString> roots;
    for (const QString& p : paths)
        if (const QString r = rootOf(p); !r.isEmpty()) roots.insert(r);
    return roots;
}

QSet<QString> Journals::rootsOfAsset(sqlite3* db, const QString& id) const {
    Statement s(db, "SELECT path FROM files WHERE asset = ?");
    s.bind({id});
    QStringList paths;
    while (s.step()) paths << s.text(0);
    return rootsOf(paths);
}

void Journals::reindex() {
    byPath_.clear();
    byContent_.clear();
    for (qsizetype i = 0; i < pending_.size(); ++i)
        for (const JournalFile& f : pending_[i].files) {
            byPath_[f.path] << i;
            byContent_[contentKey(f.size, f.head)] << i;
        }
}

void Journals::addSalvaged(const QList<JournalItem>& items) {
    int sound = 0;
    for (const JournalItem& item : items)
        if (isSound(item, roots_)) {
            pending_ << item;
            ++sound;
        }
    if (!items.isEmpty())
        Log::info(QStringLiteral("🗂 %1 of the %2 items the damaged index still gave are sound").arg(sound).arg(items.size()));
    reindex();
}

void Journals::check(sqlite3* db) {
    bool added = false;
    for (const QString& root : std::as_const(roots_)) {
        if (checked_.contains(root) || !QFileInfo(root).isDir()) continue;  // an absent disk is checked when it's back
        checked_.insert(root);
        QFile file(journal::pathFor(root));
        const QByteArray data = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        const auto stored = storedDigest(db, root);
        if (stored && stored->digest == digestOf(data)) continue;
        if (data.isEmpty() && !stored) {
            // No journal yet: one is due only when the index holds something there.
            Statement any(db, "SELECT 1 FROM files WHERE path > ? AND path < ? LIMIT 1");
            any.bind({root + '/', root + '0'});
            if (!any.step()) continue;
        }
        // The index didn't write this journal last: it is new, rebuilt, or a write of the two
        // was cut short. What the index lacks is taken from the journal; then it is written anew.
        stale_.insert(root);
        if (data.isEmpty()) continue;
        const journal::Reading reading = journal::parse(root, data);
        QList<JournalItem> missing;
        for (const JournalItem& item : reading.items)
            if (!inIndex(db, item.id)) missing << item;
        Log::info(QStringLiteral("🗂 The journal %1 (version %2) gave %3 sound items, %4 of them not in the index; %5 lines skipped")
                      .arg(journal::pathFor(root))
                      .arg(reading.version)
                      .arg(reading.items.size())
                      .arg(missing.size())
                      .arg(reading.skipped));
        if (reading.version > journal::version)
            Log::error(QStringLiteral("🗂 The journal %1 comes from a newer version: read as far as this one knows, and written anew")
                           .arg(journal::pathFor(root)));
        // The journal is at least as new as what a damaged index gave: it comes first.
        pending_ = missing + pending_;
        added = true;
    }
    if (added) reindex();
}

QStringList Journals::stale() const { return QStringList(stale_.begin(), stale_.end()); }

std::optional<QString> Journals::take(sqlite3* db, const QString& path, qint64 size, const QString& head, qint64 now) {
    if (pending_.isEmpty()) return std::nullopt;
    const JournalItem* found = nullptr;
    for (qsizetype i : byPath_.value(path)) {
        const JournalItem& item = pending_[i];
        const bool same = std::any_of(item.files.begin(), item.files.end(),
                                      [&](const JournalFile& f) { return f.path == path && f.size == size && f.head == head; });
        if (same && (takenNow_.contains(item.id) || !inIndex(db, item.id))) {
            found = &item;
            break;
        }
    }
    // Moved while the index was away: the same bytes elsewhere, for an identifier nobody has,
    // of an item none of whose files is where it was (a copy must not take its source's).
    if (!found && !head.isEmpty())
        for (qsizetype i : byContent_.value(contentKey(size, head))) {
            const JournalItem& item = pending_[i];
            if (takenNow_.contains(item.id) || inIndex(db, item.id) ||
                std::any_of(item.files.begin(), item.files.end(), [](const JournalFile& f) { return QFileInfo::exists(f.path); }))
                continue;
            found = &item;
            break;
        }
    if (!found) return std::nullopt;
    if (takenNow_.contains(found->id)) return found->id;
    const JournalItem& j = *found;
    // The edit comes back only while its kept original is there to revert to.
    const bool edited = !j.editOriginal.isEmpty() && QFileInfo(j.editOriginal).isFile() && QFileInfo(j.editAdjustment).isFile();
    auto opt = [](const auto& v) { return v ? QVariant(*v) : QVariant(); };
    Statement insert(db, "INSERT INTO assets(id, added, favorite, hidden, user_date, user_offset, user_lat, user_lon, "
                         "edit_original, edit_adjustment) VALUES(?,?,?,?,?,?,?,?,?,?)");
    if (!insert.exec({j.id, j.added ? j.added : now, int(j.favorite), int(j.hidden), opt(j.userDate), opt(j.userOffset),
                      opt(j.userLat), opt(j.userLon), edited ? QVariant(j.editOriginal) : QVariant(),
                      edited ? QVariant(j.editAdjustment) : QVariant()}))
        return std::nullopt;
    takenNow_.insert(j.id);
    return j.id;
}

QByteArray Journals::lines(sqlite3* db, const QString& root, QSet<QString>* ids, const QString& only) const {
    // Written straight from the rows: a JSON object per item costs several times more. The
    // fields are those journal::serialize writes.
    const QByteArray select =
        "SELECT f.asset, f.path, f.size, f.head, a.added, a.favorite, a.hidden, a.user_date, a.user_offset, "
        "a.user_lat, a.user_lon, a.edit_original, a.edit_adjustment FROM files f JOIN assets a ON a.id = f.asset "
        "WHERE +f.path > ? AND +f.path < ?";
    // Paths of the folder sort between "root/" and "root0", '0' following '/'. The files are
    // read in table order ('+' keeps SQLite off the path index): nearly all of them match, and
    // a look-up through the index for each costs more. One item is found by its identifier.
    Statement s(db, only.isEmpty() ? select + " ORDER BY f.asset" : select + " AND f.asset = ?");
    if (only.isEmpty()) s.bind({root + '/', root + '0'});
    else s.bind({root + '/', root + '0', only});
    const QByteArray prefix = root.toUtf8() + '/';
    const qsizetype skip = prefix.size();
    auto number = [](double d) { return QByteArray::number(d, 'g', QLocale::FloatingPointShortest); };
    QByteArray out, last;
    out.reserve(1 << 16);
    while (s.step()) {
        const QByteArrayView id = s.utf8(0);
        if (id != last) {
            if (!last.isEmpty()) out += "]}\n";
            last = id.toByteArray();
            if (ids) ids->insert(QString::fromLatin1(last));
            out += "{\"id\":\"" + last + "\",\"added\":" + QByteArray::number(s.integer(4));
            if (s.integer(5)) out += ",\"favorite\":true";
            if (s.integer(6)) out += ",\"hidden\":true";
            if (!s.isNull(7)) out += ",\"userDate\":" + QByteArray::number(s.integer(7));
            if (!s.isNull(8)) out += ",\"userOffset\":" + QByteArray::number(s.integer(8));
            if (!s.isNull(9) && !s.isNull(10))
                out += ",\"userLatitude\":" + number(s.real(9)) + ",\"userLongitude\":" + number(s.real(10));
            const QByteArrayView original = s.utf8(11), adjustment = s.utf8(12);
            if (original.startsWith(prefix) && adjustment.startsWith(prefix)) {
                out += ",\"editOriginal\":";
                journal::appendString(out, original.sliced(skip));
                out += ",\"editAdjustment\":";
                journal::appendString(out, adjustment.sliced(skip));
            }
            out += ",\"files\":[";
        } else {
            out += ',';
        }
        out += "{\"path\":";
        journal::appendString(out, s.utf8(1).sliced(skip));
        out += ",\"size\":" + QByteArray::number(s.integer(2)) + ",\"head\":";
        journal::appendString(out, s.utf8(3));
        out += '}';
    }
    if (!last.isEmpty()) out += "]}\n";
    return out;
}

bool Journals::append(sqlite3* db, const QString& root, const QString& digest, qint64 whole, qint64 since) {
    QFile file(journal::pathFor(root));
    // Only to the journal the index wrote last, and until it is twice what a writing whole
    // gave: then it is written whole again, each item once.
    if (!file.open(QIODevice::ReadWrite) || file.size() > 2 * whole + digestedTail || digestOf(file) != digest)
        return false;
    QSet<QString> touched;
    Statement changes(db, "SELECT DISTINCT asset FROM changes WHERE seq > ?");
    changes.bind({since});
    while (changes.step()) touched.insert(changes.text(0));
    if (touched.size() > 1000) return false;  // most of the folder: whole is as quick
    QByteArray added;
    for (const QString& id : std::as_const(touched)) {
        const QByteArray line = lines(db, root, nullptr, id);
        added += line.isEmpty() ? "{\"id\":\"" + id.toUtf8() + "\",\"removed\":true}\n" : line;
    }
    if (added.isEmpty()) return true;
    // A cut-short append leaves a last line that isn't JSON, which reading skips; the index
    // doesn't commit before the lines are on the disk.
    if (!file.seek(file.size()) || file.write(added) != added.size() || !file.flush() || !fileio::syncFile(file.handle()))
        return false;
    Statement record(db, "UPDATE journals SET digest = ? WHERE root = ?");
    return record.exec({digestOf(file), root});
}

void Journals::write(sqlite3* db, const QSet<QString>& roots, const std::function<bool(const QString&)>& settled, qint64 since) {
    QSet<QString> all = roots;
    all.unite(stale_);
    for (const QString& root : std::as_const(all)) {
        if (!QFileInfo(root).isDir()) continue;  // stays stale until its disk is back
        // A change of a few items is appended: a large library's journal written whole costs
        // a second.
        if (since >= 0 && pending_.isEmpty() && !stale_.contains(root))
            if (const auto stored = storedDigest(db, root); stored && !stored->digest.isEmpty() && append(db, root, stored->digest, stored->whole, since))
                continue;
        QSet<QString> ids;
        QByteArray data = lines(db, root, pending_.isEmpty() ? nullptr : &ids);
        // Recovered items whose files haven't been seen yet stay in the journal.
        QList<JournalItem> items;
        for (const JournalItem& p : std::as_const(pending_)) {
            if (ids.contains(p.id) || takenNow_.contains(p.id) || rootOf(p.files.first().path) != root) continue;
            if (settled && std::all_of(p.files.begin(), p.files.end(), [&](const JournalFile& f) { return settled(f.path); }))
                continue;
            items << p;
        }
        const QString path = journal::pathFor(root);
        const auto stored = storedDigest(db, root);
        if (data.isEmpty() && items.isEmpty() && !stored && !QFileInfo::exists(path)) {
            stale_.remove(root);
            continue;
        }
        data = journal::serialize(root, items).insert(journal::header().size(), data);
        const QString digest = digestOf(data);
        if (stored && stored->digest == digest && !stale_.contains(root)) continue;
        QString error;
        Statement record(db, "INSERT OR REPLACE INTO journals(root, digest, whole) VALUES(?, ?, ?)");
        if (!QDir().mkpath(root + "/.tessorin")) error = QStringLiteral("its folder can't be made");
        if (!error.isEmpty() || !fileio::writeDurably(path, data, &error)) {
            // A read-only folder keeps its photos' state in the index alone; the next change in
            // it, or the next start, tries again.
            Log::error(QStringLiteral("🗂 The journal %1 can't be written: %2").arg(path, error));
            stale_.remove(root);
            record.exec({root, QString(), 0});
            continue;
        }
        record.exec({root, digest, data.size()});
        stale_.remove(root);
    }
}

void Journals::committed(const std::function<bool(const QString&)>& settled) {
    if (pending_.isEmpty()) return;
    QSet<QString> counted;
    int favorites = 0, hidden = 0, edits = 0, dates = 0, places = 0, gone = 0;
    QList<JournalItem> left;
    for (const JournalItem& p : std::as_const(pending_)) {
        if (takenNow_.contains(p.id)) {
            if (counted.contains(p.id)) continue;
            counted.insert(p.id);
            favorites += p.favorite;
            hidden += p.hidden;
            edits += !p.editOriginal.isEmpty();
            dates += p.userDate.has_value();
            places += p.userLat.has_value();
        } else if (settled && std::all_of(p.files.begin(), p.files.end(), [&](const JournalFile& f) { return settled(f.path); })) {
            ++gone;
        } else {
            left << p;
        }
    }
    takenNow_.clear();
    if (counted.isEmpty() && gone == 0) return;
    pending_ = left;
    reindex();
    if (!counted.isEmpty())
        Log::info(QStringLiteral("🗂 Recovered %1 items with their identifiers: %2 favourites, %3 hidden, %4 edits, %5 dates, %6 places")
                      .arg(counted.size())
                      .arg(favorites)
                      .arg(hidden)
                      .arg(edits)
                      .arg(dates)
                      .arg(places));
    if (gone) Log::info(QStringLiteral("🗂 %1 recovered items have no file in the library any more").arg(gone));
}

void Journals::failed(const QSet<QString>& roots) {
    takenNow_.clear();
    stale_.unite(roots);
}

}  // namespace library
