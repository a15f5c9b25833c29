// SPDX-License-Identifier: GPL-3.0-or-later
#include "Journal.h"

#include "DurableFile.h"
#include "Index.h"
#include "Log.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>
#include <algorithm>
#include <cmath>
#include <utility>

namespace library {

namespace {

const QLatin1String journalName(".tessorin/journal.jsonl");
const QLatin1String editsFolder("/.tessorin/edits/");
const QLatin1String headerName("Tessorin library");

// The range a QDateTime can hold, in milliseconds.
constexpr double earliest = -62135596800000.0, latest = 253402300799999.0;

bool under(const QString& path, const QString& folder) {
    return path.size() > folder.size() + 1 && path.startsWith(folder) && path.at(folder.size()) == '/';
}

// An absolute path as the index keeps it: clean, in a library folder, and, for a photo, in
// none of its hidden folders.
bool isLibraryPath(const QString& path, const QStringList& roots, bool hiddenAllowed) {
    if (path.isEmpty() || QDir::cleanPath(path) != path) return false;
    for (const QString& r : roots) {
        if (!under(path, r)) continue;
        return hiddenAllowed || !path.mid(r.size()).contains(QLatin1String("/."));
    }
    return false;
}

bool isHead(const QString& head) {
    if (head.isEmpty()) return true;  // a file that couldn't be opened
    if (head.size() != 40) return false;
    return std::all_of(head.begin(), head.end(), [](QChar c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

std::optional<qint64> wholeNumber(const QJsonValue& v, double low, double high) {
    if (!v.isDouble()) return std::nullopt;
    const double d = v.toDouble();
    if (!std::isfinite(d) || d != std::floor(d) || d < low || d > high) return std::nullopt;
    return qint64(d);
}

QString relative(const QString& root, const QString& path) { return path.mid(root.size() + 1); }

// One line of the journal, or nothing when any field isn't what the library writes.
std::optional<JournalItem> itemFrom(const QJsonObject& o, const QString& root) {
    JournalItem item;
    item.id = o.value("id").toString();
    const auto added = wholeNumber(o.value("added"), 0, latest);
    if (!added) return std::nullopt;
    item.added = *added;
    for (auto [key, flag] : {std::pair{"favorite", &item.favorite}, std::pair{"hidden", &item.hidden}}) {
        const QJsonValue v = o.value(QLatin1String(key));
        if (!v.isUndefined() && !v.isBool()) return std::nullopt;
        *flag = v.toBool();
    }
    if (o.contains("userDate") && !(item.userDate = wholeNumber(o.value("userDate"), earliest, latest))) return std::nullopt;
    if (o.contains("userOffset")) {
        const auto offset = wholeNumber(o.value("userOffset"), -18 * 3600, 18 * 3600);
        if (!offset) return std::nullopt;
        item.userOffset = int(*offset);
    }
    for (auto [key, value] : {std::pair{"userLatitude", &item.userLat}, std::pair{"userLongitude", &item.userLon}}) {
        const QJsonValue v = o.value(QLatin1String(key));
        if (v.isUndefined()) continue;
        if (!v.isDouble()) return std::nullopt;
        *value = v.toDouble();
    }
    for (auto [key, value] : {std::pair{"editOriginal", &item.editOriginal}, std::pair{"editAdjustment", &item.editAdjustment}}) {
        const QJsonValue v = o.value(QLatin1String(key));
        if (v.isUndefined()) continue;
        if (!v.isString() || v.toString().isEmpty()) return std::nullopt;
        *value = root + '/' + v.toString();
    }
    const QJsonValue files = o.value("files");
    if (!files.isArray()) return std::nullopt;
    for (const QJsonValue& f : files.toArray()) {
        const QJsonObject file = f.toObject();
        const QJsonValue path = file.value("path"), head = file.value("head");
        const auto size = wholeNumber(file.value("size"), 0, 9e15);
        if (!path.isString() || !head.isString() || !size || path.toString().isEmpty()) return std::nullopt;
        item.files << JournalFile{root + '/' + path.toString(), *size, head.toString()};
    }
    return item;
}

QJsonObject objectFrom(const JournalItem& item, const QString& root) {
    QJsonObject o{{"id", item.id}, {"added", double(item.added)}};
    if (item.favorite) o.insert("favorite", true);
    if (item.hidden) o.insert("hidden", true);
    if (item.userDate) o.insert("userDate", double(*item.userDate));
    if (item.userOffset) o.insert("userOffset", *item.userOffset);
    if (item.userLat && item.userLon) {
        o.insert("userLatitude", *item.userLat);
        o.insert("userLongitude", *item.userLon);
    }
    if (under(item.editOriginal, root) && under(item.editAdjustment, root)) {
        o.insert("editOriginal", relative(root, item.editOriginal));
        o.insert("editAdjustment", relative(root, item.editAdjustment));
    }
    QJsonArray files;
    for (const JournalFile& f : item.files)
        if (under(f.path, root)) files.append(QJsonObject{{"path", relative(root, f.path)}, {"size", double(f.size)}, {"head", f.head}});
    o.insert("files", files);
    return o;
}

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

void appendString(QByteArray& out, QByteArrayView utf8) {
    out += '"';
    for (char c : utf8) {
        if (c == '"' || c == '\\') out += '\\';
        if (uchar(c) < 0x20) out += "\\u00" + QByteArray::number(uchar(c), 16).rightJustified(2, '0');
        else out += c;
    }
    out += '"';
}

QByteArray header() {
    return QJsonDocument(QJsonObject{{"journal", headerName}, {"version", journal::version}}).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace

bool isSound(const JournalItem& item, const QStringList& roots) {
    if (item.id.size() != 36 || QUuid::fromString(item.id).isNull() || item.files.isEmpty()) return false;
    if (item.added < 0 || item.added > latest) return false;
    if (item.userDate && (*item.userDate < earliest || *item.userDate > latest)) return false;
    if (item.userOffset && (!item.userDate || std::abs(*item.userOffset) > 18 * 3600)) return false;
    if (item.userLat.has_value() != item.userLon.has_value()) return false;
    if (item.userLat && !(std::abs(*item.userLat) <= 90 && std::abs(*item.userLon) <= 180)) return false;
    if (item.editOriginal.isEmpty() != item.editAdjustment.isEmpty()) return false;
    if (!item.editOriginal.isEmpty()) {
        // The edit's kept files sit in the hidden folder of the original's library folder.
        for (const QString& p : {item.editOriginal, item.editAdjustment})
            if (!isLibraryPath(p, roots, true) || !p.contains(editsFolder + item.id + '/')) return false;
    }
    return std::all_of(item.files.begin(), item.files.end(), [&](const JournalFile& f) {
        return isLibraryPath(f.path, roots, false) && f.size >= 0 && isHead(f.head);
    });
}

namespace journal {

QString pathFor(const QString& root) { return root + '/' + journalName; }

QByteArray serialize(const QString& root, const QList<JournalItem>& items) {
    QByteArray out = header();
    for (const JournalItem& item : items) {
        out += QJsonDocument(objectFrom(item, root)).toJson(QJsonDocument::Compact);
        out += '\n';
    }
    return out;
}

Reading parse(const QString& root, const QByteArray& data) {
    Reading reading;
    QHash<QString, qsizetype> where;  // into reading.items
    bool first = true;
    for (const QByteArray& line : data.split('\n')) {
        if (line.trimmed().isEmpty()) continue;
        const QJsonObject o = QJsonDocument::fromJson(line).object();
        if (std::exchange(first, false) && o.value("journal").toString() == headerName) {
            reading.version = int(wholeNumber(o.value("version"), 1, 1e6).value_or(0));
            continue;
        }
        // Appended lines: a later line of an item takes the place of the earlier, a removal
        // line takes it out.
        const QString id = o.value("id").toString();
        if (o.value("removed").toBool() && !id.isEmpty()) {
            if (auto at = where.constFind(id); at != where.cend()) reading.items[*at].id.clear();
            continue;
        }
        // A line of a newer version is read for the fields this one knows, checked the same way.
        auto item = itemFrom(o, root);
        if (!item || !isSound(*item, {root})) {
            ++reading.skipped;
            continue;
        }
        if (auto at = where.constFind(item->id); at != where.cend() && !reading.items[*at].id.isEmpty()) {
            reading.items[*at] = *item;
        } else {
            where.insert(item->id, reading.items.size());
            reading.items << *item;
        }
    }
    reading.items.removeIf([](const JournalItem& item) { return item.id.isEmpty(); });
    return reading;
}

}  // namespace journal

Journals::Journals(QStringList roots) : roots_(std::move(roots)) {}

QString Journals::rootOf(const QString& path) const {
    for (const QString& r : roots_)
        if (under(path, r)) return r;
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
    // fields are those objectFrom gives.
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
                appendString(out, original.sliced(skip));
                out += ",\"editAdjustment\":";
                appendString(out, adjustment.sliced(skip));
            }
            out += ",\"files\":[";
        } else {
            out += ',';
        }
        out += "{\"path\":";
        appendString(out, s.utf8(1).sliced(skip));
        out += ",\"size\":" + QByteArray::number(s.integer(2)) + ",\"head\":";
        appendString(out, s.utf8(3));
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
        data = journal::serialize(root, items).insert(header().size(), data);
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
