// SPDX-License-Identifier: GPL-3.0-or-later
// tessorin-cli library: the photo library from the command line, for scripts and checks.
#include "Commands.h"

#include "AssetModifier.h"
#include "Arguments.h"
#include "Help.h"
#include "Library.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <unistd.h>

using namespace library;

namespace {

int usage(const QString& problem) { return cli::usageError("library", problem); }

QJsonObject toJson(const Asset& a) {
    QJsonArray resources;
    for (const Resource& r : a.resources)
        resources << QJsonObject{{"type", int(r.type)}, {"typeText", resourceTypeText(r.type)},
                                 {"originalFilename", r.originalFilename}, {"path", r.path}, {"fileSize", r.fileSize},
                                 {"locallyAvailable", r.locallyAvailable}};
    QJsonObject o{{"localIdentifier", a.localIdentifier},
                  {"mediaType", int(a.mediaType)},
                  {"mediaSubtypes", a.mediaSubtypes},
                  {"creationDate", a.creationDate.toString(Qt::ISODate)},
                  {"pixelWidth", a.pixelWidth},
                  {"pixelHeight", a.pixelHeight},
                  {"duration", a.duration},
                  {"favorite", a.favorite},
                  {"hidden", a.hidden},
                  {"burstIdentifier", a.burstIdentifier},
                  {"representsBurst", a.representsBurst},
                  {"edited", a.isEdited()},
                  {"resources", resources}};
    if (a.location) o.insert("location", QJsonObject{{"latitude", a.location->latitude}, {"longitude", a.location->longitude}});
    return o;
}

QString line(const Asset& a) {
    QString marks = QString(a.favorite ? "♥" : "") + (a.hidden ? "hidden" : "") + (a.isEdited() ? " edited" : "");
    return QStringLiteral("%1  %2  %3  %4%5\n")
        .arg(a.localIdentifier, a.creationDate.toString(Qt::ISODate),
             a.mediaType == MediaType::video ? QStringLiteral("video") : QStringLiteral("photo"),
             a.resources.value(0).originalFilename, marks.isEmpty() ? QString() : "  " + marks.trimmed());
}

void printAlbums(Library& lib, const QList<Collection>& list, int depth) {
    for (const Collection& c : list) {
        printOut(QString(depth * 2, ' ') + QStringLiteral("%1\t%2\t%3\n").arg(c.title, c.identifier).arg(lib.fetchAssets(c.identifier).count()));
        printAlbums(lib, c.children, depth + 1);
    }
}

}  // namespace

Library& cliLibrary() {
    static Library library;
    return library;
}

int libraryCommand(const QStringList& args) {
    if (args.isEmpty()) return usage("no subcommand");
    if (args.first() == "-h" || args.first() == "--help") {
        printOut(cli::helpText("library"));
        return 0;
    }
    Library& lib = cliLibrary();
    if (!lib.isOpen()) {
        printError("tessorin-cli library: " + lib.openError() + "\n");
        return 1;
    }
    const QString sub = args.first();
    const QStringList rest = args.mid(1);
    if (sub == "scan") {
        // A line that tells how far the reading is, on a terminal only: a pipe gets the report.
        bool shown = false;
        if (isatty(STDERR_FILENO))
            QObject::connect(&lib, &Library::scanProgress, &lib, [&shown](int seen, int read, int left) {
                printError(QStringLiteral("\r%1 files seen, %2 read, %3 left\x1b[K").arg(seen).arg(read).arg(left));
                shown = true;
            });
        const ScanReport r = lib.scan();
        QObject::disconnect(&lib, &Library::scanProgress, &lib, nullptr);
        if (shown) printError(QStringLiteral("\r\x1b[K"));
        for (const QString& p : r.problems) printError(p + "\n");
        if (!r.indexError.isEmpty()) return 1;
        printOut(QStringLiteral("%1 read, %2 unchanged, %3 moved, %4 removed; %5 items\n")
                     .arg(r.filesRead).arg(r.filesUnchanged).arg(r.filesMoved).arg(r.filesRemoved)
                     .arg(lib.fetchAssets(FetchOptions{SortOrder::creationDateAscending, std::nullopt, true}).count()));
        return 0;
    }
    lib.scan();  // a command sees the folders as they are now
    if (sub == "albums") {
        printOut(QStringLiteral("All Photos\t\t%1\n").arg(lib.fetchAssets().count()));
        printAlbums(lib, lib.userCollections(), 0);
        printAlbums(lib, lib.smartAlbums(), 0);
        return 0;
    }
    if (sub == "list") {
        const bool json = rest.contains("--json");
        QStringList names = rest;
        names.removeAll("--json");
        if (names.size() > 1) return usage("list takes one album");
        QString album;
        if (!names.isEmpty()) {
            album = names.first();
            if (!album.startsWith("smart:") && !album.startsWith("folder:")) {
                auto found = lib.album(album);
                for (const Collection& s : lib.smartAlbums())
                    if (!found && s.title == album) found = s;
                if (!found) {
                    printError("tessorin-cli library: no album " + album + "\n");
                    return 1;
                }
                album = found->identifier;
            }
        }
        const FetchResult fetch = lib.fetchAssets(album);
        if (json) {
            QJsonArray out;
            for (const Asset& a : fetch.assets()) out << toJson(a);
            printOut(QString::fromUtf8(QJsonDocument(out).toJson()));
        } else {
            for (const Asset& a : fetch.assets()) printOut(line(a));
        }
        return 0;
    }
    if (rest.size() != 1) return usage(sub + " takes one ID");
    const QString id = rest.first();
    QString error;
    bool ok = false;
    if (sub == "show") {
        auto a = lib.asset(id);
        if (a) printOut(QString::fromUtf8(QJsonDocument(toJson(*a)).toJson()));
        else error = "No item " + id + " in the library";
        ok = a.has_value();
    } else if (sub == "favorite") {
        ok = AssetModifier::favorite(lib, id, &error);
        if (ok) printOut(id + (lib.asset(id)->favorite ? ": favourite\n" : ": no longer a favourite\n"));
    } else if (sub == "delete") {
        ok = AssetModifier::remove(lib, id, &error);
        if (ok) printOut(id + ": moved to the trash\n");
    } else if (sub == "revert") {
        ok = lib.revert(id, &error);
        if (ok) printOut(id + ": back to the original\n");
    } else {
        return usage("unknown subcommand " + sub);
    }
    if (!ok) printError("tessorin-cli library: " + error + "\n");
    return ok ? 0 : 1;
}
