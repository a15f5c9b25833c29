// SPDX-License-Identifier: GPL-3.0-or-later
// What the user set outlives the index: the journal beside the photos and what a damaged index
// still reads bring back identifiers, marks, dates, places and edits.
#include "Journal.h"
#include "LibraryFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTimeZone>
#include <sqlite3.h>

using namespace library;

namespace {

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& data) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(data), data.size());
}

enum class Damage { pageOverwritten, truncated, deleted };

// A library with a favourite, a hidden item, a new item with the user's date and place, an
// edited item, and enough others that the index spans pages of every table.
class Rebuild : public LibraryFixture {
protected:
    void fill() {
        const QStringList sources{"jpeg/Canon_40D.jpg", "jpeg/Nikon_D70.jpg", "jpeg/Fujifilm_FinePix_E500.jpg",
                                  "jpeg/long_description.jpg", "jpeg/BlueSquare.jpg"};
        for (int roll = 0; roll < 12; ++roll)
            for (qsizetype i = 0; i < sources.size(); ++i)
                add(sources[i], QStringLiteral("Roll %1/IMG_%2.jpg").arg(roll).arg(i));
        favorite = add("jpeg/Canon_40D.jpg", "fav.jpg");
        hidden = add("jpeg/Nikon_D70.jpg", "hidden.jpg");
        edited = add("jpeg/Canon_40D.jpg", "Trip/edited.jpg");
        lib->scan();
        ASSERT_TRUE(lib->setFavorite(assetOf(favorite).localIdentifier, true));
        ASSERT_TRUE(lib->setHidden(assetOf(hidden).localIdentifier, true));
        QString error;
        const auto created = lib->createAsset(testsupport::readFile(testsupport::corpusDir() + "/jpeg/Nikon_D70.jpg"),
                                              "placed.jpg", userDate, Location{48.8584, 2.2945, std::nullopt}, {}, &error);
        ASSERT_TRUE(created) << error.toStdString();
        placed = assetOf(root() + "/Tessorin/placed.jpg").mainPath();
        original = testsupport::readFile(edited);
        ASSERT_TRUE(lib->editInPlace(assetOf(edited).localIdentifier,
                                     testsupport::readFile(testsupport::corpusDir() + "/jpeg/long_description.jpg"), "jpg",
                                     "adjusted", &error))
            << error.toStdString();
        for (const Asset& a : everything())
            ids.insert(a.mainPath(), a.localIdentifier);
        ASSERT_EQ(ids.size(), 64);
    }

    // The middle one of the pages that hold rows of `table`, by SQLite's own page list.
    qint64 middlePageOf(const char* table) {
        sqlite3* db = nullptr;
        QList<qint64> pages;
        if (sqlite3_open_v2(database().toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
            sqlite3_stmt* s = nullptr;
            sqlite3_prepare_v2(db, "SELECT pageno FROM dbstat WHERE name = ? AND pagetype = 'leaf' ORDER BY pageno", -1, &s, nullptr);
            sqlite3_bind_text(s, 1, table, -1, SQLITE_STATIC);
            while (sqlite3_step(s) == SQLITE_ROW) pages << sqlite3_column_int64(s, 0);
            sqlite3_finalize(s);
        }
        sqlite3_close(db);
        EXPECT_GE(pages.size(), 2) << table;
        return pages.value(pages.size() / 2);
    }

    void damage(Damage how, qint64 page = 0) {
        lib.reset();
        const QString db = database();
        ASSERT_FALSE(QFileInfo::exists(db + "-wal"));  // closed: everything is in the file
        QFile file(db);
        const qint64 size = file.size();
        ASSERT_GE(size, 8 * 4096);
        switch (how) {
        case Damage::pageOverwritten: {
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            QByteArray garbage(4096, '\0');
            for (int i = 0; i < garbage.size(); ++i) garbage[i] = char((i * 7919 + 13) % 251);
            file.seek(((page ? page : size / 4096 / 2) - 1) * 4096);
            ASSERT_EQ(file.write(garbage), 4096);
            break;
        }
        case Damage::truncated: ASSERT_TRUE(file.resize(size / 2)); break;
        case Damage::deleted: ASSERT_TRUE(file.remove()); break;
        }
    }

    // Every item as it was: its identifier, the marks, the date and place, the edit.
    void expectAllBack() {
        lib->scan();
        const QList<Asset> all = everything();
        EXPECT_EQ(all.size(), ids.size());
        for (const Asset& a : all) EXPECT_EQ(a.localIdentifier.toStdString(), ids.value(a.mainPath()).toStdString()) << a.mainPath().toStdString();
        EXPECT_TRUE(assetOf(favorite).favorite);
        EXPECT_TRUE(assetOf(hidden).hidden);
        EXPECT_EQ(lib->fetchAssets().count(), ids.size() - 1);  // the hidden one left out
        const Asset p = assetOf(placed);
        EXPECT_EQ(p.creationDate, userDate);
        EXPECT_EQ(p.creationDate.offsetFromUtc(), 2 * 3600);
        ASSERT_TRUE(p.location);
        EXPECT_DOUBLE_EQ(p.location->latitude, 48.8584);
        EXPECT_DOUBLE_EQ(p.location->longitude, 2.2945);
        const Asset e = assetOf(edited);
        ASSERT_TRUE(e.isEdited());
        EXPECT_EQ(lib->adjustmentData(e.localIdentifier).value_or(QByteArray()), "adjusted");
        QString error;
        ASSERT_TRUE(lib->revert(e.localIdentifier, &error)) << error.toStdString();
        EXPECT_EQ(testsupport::readFile(edited), original);
        EXPECT_FALSE(assetOf(edited).isEdited());
        EXPECT_EQ(assetOf(edited).localIdentifier, ids.value(edited));
    }

    QString journal() const { return journal::pathFor(root()); }
    // Every item, the hidden ones too.
    QList<Asset> everything() const { return lib->fetchAssets(FetchOptions{SortOrder::creationDateAscending, {}, true}).assets(); }

    const QDateTime userDate{QDate(1999, 12, 31), QTime(23, 59, 58), QTimeZone(2 * 3600)};
    QString favorite, hidden, edited, placed;
    QByteArray original;
    QHash<QString, QString> ids;  // main file to identifier
};

}  // namespace

TEST_F(Rebuild, IndexDamagedThreeWaysGivesBackWhatTheUserSet) {
    for (Damage how : {Damage::pageOverwritten, Damage::truncated, Damage::deleted}) {
        SCOPED_TRACE(int(how));
        fill();
        damage(how);
        reopen();
        // A damaged file is noticed and kept aside; a deleted one is simply made anew.
        EXPECT_EQ(QDir(path("data")).entryList({"library.sqlite.corrupt-*"}).size(), how == Damage::deleted ? 0 : 1);
        expectAllBack();
        // The journal now agrees with the rebuilt index: reopened on it, nothing is taken back.
        lib.reset();
        const QByteArray written = readAll(journal());
        reopen();
        lib->scan();
        EXPECT_EQ(readAll(journal()), written);
        // Next round from a fresh library.
        lib.reset();
        ASSERT_TRUE(QDir(root()).removeRecursively());
        for (const char* suffix : {"", "-wal", "-shm"}) QFile::remove(database() + suffix);
        for (const QString& aside : QDir(path("data")).entryList({"library.sqlite.corrupt-*"})) QFile::remove(path("data/" + aside));
        QDir().mkpath(root());
        reopen();
        ids.clear();
    }
}

TEST_F(Rebuild, DamagedIndexWithoutAJournalGivesWhatItStillReads) {
    fill();
    QFile::remove(journal());
    lib.reset();
    // A page of the files table: the items whose rows it held lose their identifiers.
    damage(Damage::pageOverwritten, middlePageOf("files"));
    reopen();
    lib->scan();
    // Some rows were on the damaged page; every identifier that came back is the file's own.
    const QList<Asset> all = everything();
    ASSERT_EQ(all.size(), ids.size());
    int kept = 0;
    for (const Asset& a : all)
        if (ids.values().contains(a.localIdentifier)) {
            EXPECT_EQ(a.localIdentifier.toStdString(), ids.value(a.mainPath()).toStdString());
            ++kept;
        }
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, ids.size());
    // The journal is written again from what came back.
    EXPECT_EQ(journal::parse(root(), readAll(journal())).items.size(), ids.size());
}

TEST_F(Rebuild, CutOrDamagedJournalIsReadAsFarAsItGoes) {
    fill();
    lib.reset();
    // Each item on one line, as a journal written whole has it (the marks and edits of fill()
    // were appended).
    writeAll(journal(), journal::serialize(root(), journal::parse(root(), readAll(journal())).items));
    const QByteArray whole = readAll(journal());
    const QList<QByteArray> lines = whole.split('\n');
    ASSERT_EQ(lines.size(), 1 + 64 + 1);  // the header, one line an item, the last newline
    // Cut in the middle of the 40th item's line, and one line garbled before it.
    QByteArray cut = whole.left(whole.indexOf(lines[40]) + lines[40].size() / 2);
    const qsizetype garbled = cut.indexOf(lines[10]);
    cut.replace(garbled + 5, 10, QByteArray(10, '\xff'));
    writeAll(journal(), cut);
    QFile::remove(database());
    reopen();
    lib->scan();
    const QList<Asset> all = everything();
    ASSERT_EQ(all.size(), 64);
    // Items 1 to 39 less the garbled tenth come back; the others are new.
    const QSet<QString> old(ids.begin(), ids.end());
    int kept = 0;
    for (const Asset& a : all)
        if (old.contains(a.localIdentifier)) {
            EXPECT_EQ(a.localIdentifier.toStdString(), ids.value(a.mainPath()).toStdString());
            ++kept;
        }
    EXPECT_EQ(kept, 38);
    // Written again whole.
    EXPECT_EQ(journal::parse(root(), readAll(journal())).items.size(), 64);
}

TEST_F(Rebuild, JournalOfANewerVersionIsCheckedFieldByField) {
    fill();
    lib.reset();
    // Each item on one line, as a journal written whole has it (the marks and edits of fill()
    // were appended).
    writeAll(journal(), journal::serialize(root(), journal::parse(root(), readAll(journal())).items));
    // A newer version's journal: a header of version 7, fields this one doesn't know, and
    // lines whose known fields hold what the library never writes.
    QList<QByteArray> lines = readAll(journal()).split('\n');
    QJsonObject header = QJsonDocument::fromJson(lines[0]).object();
    header["version"] = 7;
    lines[0] = QJsonDocument(header).toJson(QJsonDocument::Compact);
    QSet<QString> spoiled;
    const QList<std::pair<const char*, QJsonValue>> bad{
        {"favorite", "yes"}, {"userLatitude", 91.5}, {"userDate", 1.5}, {"added", -1}, {"id", "not-an-id"},
        {"editOriginal", "../../etc/passwd"}, {"files", QJsonValue(3)}};
    for (qsizetype i = 1; i < lines.size() && i <= bad.size() + 1; ++i) {
        QJsonObject item = QJsonDocument::fromJson(lines[i]).object();
        item["comment"] = "from the future";  // unknown: passed over
        if (i > 1) {
            spoiled.insert(item["id"].toString());
            item[QLatin1String(bad[i - 2].first)] = bad[i - 2].second;
            if (QLatin1String(bad[i - 2].first) == QLatin1String("editOriginal")) item["editAdjustment"] = "x";
        }
        lines[i] = QJsonDocument(item).toJson(QJsonDocument::Compact);
    }
    const journal::Reading reading = journal::parse(root(), lines.join('\n'));
    EXPECT_EQ(reading.version, 7);
    EXPECT_EQ(reading.skipped, int(bad.size()));
    EXPECT_EQ(reading.items.size(), 64 - bad.size());

    writeAll(journal(), lines.join('\n'));
    QFile::remove(database());
    reopen();
    lib->scan();
    int kept = 0;
    for (const Asset& a : everything()) {
        EXPECT_FALSE(spoiled.contains(a.localIdentifier));
        kept += a.localIdentifier == ids.value(a.mainPath());
    }
    EXPECT_EQ(kept, 64 - bad.size());
    // Rewritten in this version.
    EXPECT_EQ(journal::parse(root(), readAll(journal())).version, journal::version);
}

TEST_F(Rebuild, GarbageJournalAndMovedFiles) {
    fill();
    lib.reset();
    // A file moved while the index was away keeps its identifier by its bytes.
    const QString moved = root() + "/Roll 3/moved.jpg";
    ASSERT_TRUE(QFile::rename(favorite, moved));
    QFile::remove(database());
    reopen();
    lib->scan();
    EXPECT_EQ(assetOf(moved).localIdentifier, ids.value(favorite));
    EXPECT_TRUE(assetOf(moved).favorite);

    // Bytes that were never a journal: nothing taken from them, and no harm.
    lib.reset();
    QByteArray noise(20000, '\0');
    for (int i = 0; i < noise.size(); ++i) noise[i] = char((i * 31 + i / 7) % 256);
    writeAll(journal(), noise);
    QFile::remove(database());
    reopen();
    lib->scan();
    EXPECT_EQ(everything().size(), 64);
    EXPECT_FALSE(assetOf(moved).favorite);
    EXPECT_EQ(journal::parse(root(), readAll(journal())).skipped, 0);
}

TEST_F(LibraryFixture, NamesThatJsonMustEscapeComeBack) {
    const QStringList names{"quote \"1\".jpg", "back\\slash.jpg", "tab\there.jpg", "été 🌅.jpg", "Ordner/a\x01b.jpg"};
    QStringList files;
    for (const QString& n : names) files << add("jpeg/Canon_40D.jpg", n);
    lib->scan();
    QHash<QString, QString> ids;
    for (const QString& f : files) {
        ids.insert(f, assetOf(f).localIdentifier);
        ASSERT_TRUE(lib->setFavorite(ids.value(f), true));
    }
    lib.reset();
    EXPECT_EQ(journal::parse(root(), testsupport::readFile(journal::pathFor(root()))).items.size(), names.size());
    QFile::remove(database());
    reopen();
    lib->scan();
    for (const QString& f : files) {
        EXPECT_EQ(assetOf(f).localIdentifier.toStdString(), ids.value(f).toStdString()) << f.toStdString();
        EXPECT_TRUE(assetOf(f).favorite) << f.toStdString();
    }
}

TEST_F(LibraryFixture, JournalAheadOfTheIndexIsWrittenAgainFromIt) {
    // As a kill between the journal's write and the index's commit leaves them: the journal
    // has the favourite and the edit, the index neither.
    const QString file = add("jpeg/Canon_40D.jpg", "a.jpg");
    lib->scan();
    const QString id = assetOf(file).localIdentifier;
    lib.reset();
    ASSERT_TRUE(QFile::copy(database(), path("before.sqlite")));
    reopen();
    ASSERT_TRUE(lib->setFavorite(id, true));
    ASSERT_TRUE(lib->editInPlace(id, testsupport::readFile(testsupport::corpusDir() + "/jpeg/Nikon_D70.jpg"), "jpg", "x"));
    lib.reset();
    const QByteArray ahead = testsupport::readFile(journal::pathFor(root()));
    ASSERT_TRUE(ahead.contains("\"favorite\":true"));
    ASSERT_TRUE(QFile::remove(database()));
    ASSERT_TRUE(QFile::copy(path("before.sqlite"), database()));

    reopen();
    lib->scan();
    const Asset a = assetOf(file);
    EXPECT_EQ(a.localIdentifier, id);
    EXPECT_FALSE(a.favorite);
    EXPECT_FALSE(a.isEdited());
    const journal::Reading now = journal::parse(root(), testsupport::readFile(journal::pathFor(root())));
    ASSERT_EQ(now.items.size(), 1);
    EXPECT_EQ(now.items[0].id, id);
    EXPECT_FALSE(now.items[0].favorite);
    EXPECT_TRUE(now.items[0].editOriginal.isEmpty());
}

TEST_F(Rebuild, FoldersTakenToAnotherMachineKeepWhatTheUserSet) {
    fill();
    lib.reset();
    // The same folders somewhere else, with an index of their own.
    const QString elsewhere = path("elsewhere");
    ASSERT_EQ(QProcess::execute("cp", {"-a", root(), elsewhere}), 0);
    Library moved({elsewhere}, path("other/library.sqlite"));
    ASSERT_TRUE(moved.isOpen());
    moved.scan();
    auto at = [&](const QString& file) { return moved.assetForPath(elsewhere + file.mid(root().size())).value_or(Asset{}); };
    for (auto it = ids.cbegin(); it != ids.cend(); ++it) EXPECT_EQ(at(it.key()).localIdentifier, it.value()) << it.key().toStdString();
    EXPECT_TRUE(at(favorite).favorite);
    EXPECT_TRUE(at(hidden).hidden);
    EXPECT_EQ(at(placed).creationDate, userDate);
    ASSERT_TRUE(at(edited).isEdited());
    ASSERT_TRUE(moved.revert(at(edited).localIdentifier));
    EXPECT_EQ(testsupport::readFile(elsewhere + "/Trip/edited.jpg"), original);
}

TEST_F(LibraryFixture, AChangeAppendsTheLinesOfWhatItTouched) {
    const QString a = add("jpeg/Canon_40D.jpg", "a.jpg"), b = add("jpeg/Nikon_D70.jpg", "b.jpg");
    add("jpeg/Fujifilm_FinePix_E500.jpg", "c.jpg");
    lib->scan();
    const QString id = assetOf(a).localIdentifier;
    const QByteArray whole = readAll(journal::pathFor(root()));
    ASSERT_EQ(whole.count('\n'), 1 + 3);

    ASSERT_TRUE(lib->setFavorite(id, true));
    ASSERT_TRUE(lib->setFavorite(id, false));
    ASSERT_TRUE(QFile::remove(b));
    lib->scan();
    const QByteArray now = readAll(journal::pathFor(root()));
    ASSERT_TRUE(now.startsWith(whole));
    const QList<QByteArray> added = now.mid(whole.size()).split('\n');
    ASSERT_EQ(added.size(), 3 + 1);
    EXPECT_TRUE(added[0].contains(id.toUtf8()) && added[0].contains("\"favorite\":true"));
    EXPECT_TRUE(added[1].contains(id.toUtf8()) && !added[1].contains("favorite"));
    EXPECT_TRUE(added[2].contains("\"removed\":true"));
    // Read as the last line of each item says: two items, neither a favourite.
    const journal::Reading reading = journal::parse(root(), now);
    ASSERT_EQ(reading.items.size(), 2);
    EXPECT_EQ(reading.skipped, 0);
    for (const JournalItem& item : reading.items) EXPECT_FALSE(item.favorite);
    // An append cut short: its half line is passed over, the item read as the line before says.
    const journal::Reading cut = journal::parse(root(), now.left(now.size() - added[2].size() / 2 - 1));
    EXPECT_EQ(cut.skipped, 1);
    EXPECT_EQ(cut.items.size(), 3);

    // And an index rebuilt from it has them so.
    lib.reset();
    ASSERT_TRUE(QFile::remove(database()));
    reopen();
    lib->scan();
    EXPECT_EQ(assetOf(a).localIdentifier, id);
    EXPECT_FALSE(assetOf(a).favorite);
}

// Every field an item can carry survives the whole-file writer (used when recovered items are
// written back) and the reader: a field either one drops comes back as its default.
TEST(JournalFormatTest, EveryFieldOfAnItemComesBackFromTheWrittenFile) {
    const QString root = "/photos";
    const QString id = "0A1B2C3D-4E5F-4A6B-8C7D-9E0F1A2B3C4D";
    JournalItem item;
    item.id = id;
    item.added = 1700000000000;
    item.favorite = true;
    item.hidden = true;
    item.userDate = 1600000000000;
    item.userOffset = -5 * 3600;
    item.userLat = -33.8568;
    item.userLon = 151.2153;
    item.editOriginal = root + "/.tessorin/edits/" + id + "/IMG_1.jpg";
    item.editAdjustment = root + "/.tessorin/edits/" + id + "/IMG_1.json";
    item.files = {{root + "/Trip/IMG_1.jpg", 123456, "0123456789abcdef0123456789abcdef01234567"},
                  {root + "/Trip/IMG_1.mov", 7, QString()}};
    ASSERT_TRUE(isSound(item, {root}));

    const journal::Reading reading = journal::parse(root, journal::serialize(root, {item}));
    EXPECT_EQ(reading.version, journal::version);
    EXPECT_EQ(reading.skipped, 0);
    ASSERT_EQ(reading.items.size(), 1);
    const JournalItem& back = reading.items.first();
    EXPECT_EQ(back.id, id);
    EXPECT_EQ(back.added, 1700000000000);
    EXPECT_TRUE(back.favorite);
    EXPECT_TRUE(back.hidden);
    EXPECT_EQ(back.userDate, std::optional<qint64>(1600000000000));
    EXPECT_EQ(back.userOffset, std::optional<int>(-18000));
    EXPECT_EQ(back.userLat, std::optional<double>(-33.8568));
    EXPECT_EQ(back.userLon, std::optional<double>(151.2153));
    EXPECT_EQ(back.editOriginal, "/photos/.tessorin/edits/" + id + "/IMG_1.jpg");
    EXPECT_EQ(back.editAdjustment, "/photos/.tessorin/edits/" + id + "/IMG_1.json");
    ASSERT_EQ(back.files.size(), 2);
    EXPECT_EQ(back.files[0].path, "/photos/Trip/IMG_1.jpg");
    EXPECT_EQ(back.files[0].size, 123456);
    EXPECT_EQ(back.files[0].head, "0123456789abcdef0123456789abcdef01234567");
    EXPECT_EQ(back.files[1].path, "/photos/Trip/IMG_1.mov");
    EXPECT_EQ(back.files[1].size, 7);
    EXPECT_TRUE(back.files[1].head.isEmpty());
}
