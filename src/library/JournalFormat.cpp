// SPDX-License-Identifier: GPL-3.0-or-later
#include "JournalFormat.h"

#include <QDir>
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

// An absolute path as the index keeps it: clean, in a library folder, and, for a photo, in
// none of its hidden folders.
bool isLibraryPath(const QString& path, const QStringList& roots, bool hiddenAllowed) {
    if (path.isEmpty() || QDir::cleanPath(path) != path) return false;
    for (const QString& r : roots) {
        if (!journal::under(path, r)) continue;
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
    if (journal::under(item.editOriginal, root) && journal::under(item.editAdjustment, root)) {
        o.insert("editOriginal", relative(root, item.editOriginal));
        o.insert("editAdjustment", relative(root, item.editAdjustment));
    }
    QJsonArray files;
    for (const JournalFile& f : item.files)
        if (journal::under(f.path, root)) files.append(QJsonObject{{"path", relative(root, f.path)}, {"size", double(f.size)}, {"head", f.head}});
    o.insert("files", files);
    return o;
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

bool under(const QString& path, const QString& folder) {
    return path.size() > folder.size() + 1 && path.startsWith(folder) && path.at(folder.size()) == '/';
}

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

}  // namespace library

