// SPDX-License-Identifier: GPL-3.0-or-later
#include "Help.h"

#include <QList>

#include <utility>

namespace cli {
namespace {

// Shared by every command that takes files.
const char* const fileOptionsHelp =
    "files:\n"
    "  a folder stands for the photos and movies in it (known by their bytes; other files are\n"
    "  skipped), sorted by name\n"
    "  -r, --recursive     take the photos and movies of its subfolders too\n"
    "  -@ FILE             read more paths from FILE, one a line ('-' for standard input)\n"
    "  --ext EXT           only files ending in .EXT (may be repeated)\n"
    "  --                  every later argument is a file\n";

const char* const jsonHelp =
    "  -j, --json          one JSON array for all files, a failed one as {\"file\", \"error\"}\n"
    "  --pretty            indent the JSON\n";

// In the order the tool's help lists them.
const QList<std::pair<QString, QString>>& texts() {
    static const QList<std::pair<QString, QString>> all{
        {"props",
         QStringLiteral("usage: tessorin-cli props [OPTIONS] FILE...\n\n"
                        "The property dictionaries of each file as read, as a JSON array of\n"
                        "{\"file\", \"properties\"} objects.\n\n"
                        "  --pretty            indent the JSON\n") + fileOptionsHelp},
        {"info",
         QStringLiteral("usage: tessorin-cli info [OPTIONS] FILE...\n\n"
                        "The details of each file as the detail table shows them, each behind a\n"
                        "line \"==> FILE <==\".\n\n") + jsonHelp + fileOptionsHelp},
        {"summary",
         QStringLiteral("usage: tessorin-cli summary [OPTIONS] FILE...\n\n"
                        "The short sentence about each file, as offered when sharing.\n\n") + jsonHelp + fileOptionsHelp},
        {"tags",
         QStringLiteral("usage: tessorin-cli tags [--raw | -j] [OPTIONS] FILE...\n\n"
                        "All tags of each file in sections, in words.\n\n"
                        "  --raw               every tag with its plain value\n") + jsonHelp + fileOptionsHelp},
        {"location",
         QStringLiteral("usage: tessorin-cli location [-j] [--] TEXT...\n\n"
                        "The coordinate that a typed text means (degrees first, then decimals), in\n"
                        "both text forms. Exit status 1 when the text is no coordinate.\n\n"
                        "  -j, --json          as JSON\n"
                        "  --pretty            indent the JSON\n")},
        {"place",
         QStringLiteral("usage: tessorin-cli place [-j] [--] LAT LON\n"
                        "       tessorin-cli place [-j] --search TEXT\n\n"
                        "The place at a position and its address (\"--\" at sea or far from any\n"
                        "town), or up to ten places by name, best first, with their coordinates;\n"
                        "\"TEXT, COUNTRY\" or \"TEXT, STATE\" narrows the search.\n\n"
                        "  --search TEXT       places by name\n"
                        "  -j, --json          as JSON\n"
                        "  --pretty            indent the JSON\n")},
        {"resources",
         QStringLiteral("usage: tessorin-cli resources [OPTIONS] FILE... [--extract DIR]\n\n"
                        "Each file's resource and the auxiliary images inside it (depth and\n"
                        "disparity maps, gain maps, mattes) and a motion photo's movie, one line\n"
                        "each: label, file name, size, pixel size.\n\n"
                        "  --extract DIR       write the auxiliary images and the movie into DIR\n"
                        "                      under those names\n") + jsonHelp + fileOptionsHelp},
        {"edit",
         QStringLiteral("usage: tessorin-cli edit [WISHES] FILE... (-o DIR | --in-place [--keep-original] | --render -o DIR | --sidecar | --library new)\n"
                        "       tessorin-cli edit [WISHES] --library modify ID...\n\n"
                        "Rewrites the files with the wishes applied, one line per file of what\n"
                        "changed; only the metadata change. Movies are written anew into DIR.\n\n"
                        "wishes:\n"
                        "  --date \"yyyy:MM:dd HH:mm:ss\"            the original date\n"
                        "  --digitized-date \"yyyy:MM:dd HH:mm:ss\"  the digitized date\n"
                        "  --location TEXT                        a place, in degrees or decimal\n"
                        "  --no-location  --no-date  --no-tags     remove the place, the dates, all tags\n"
                        "  --orientation N                        1 to 8\n"
                        "  --set KEY=VALUE  --remove KEY          one tag, by its key (\"Keywords\", \"LensModel\",\n"
                        "                                         \"By-line\") or its name (\"IPTC_KEYWORDS\"); creator contact\n"
                        "                                         fields as \"CiAdrCity\" or \"IPTC_CREATOR_CONTACT_INFO_CITY\"\n"
                        "  --template FILE                        the IPTC values of a template file, before --set\n"
                        "each photo or movie from its own values (the track log is for photos):\n"
                        "  --shift [+-][D ]H:MM[:SS]               move every date (\"+0:52\", \"-1 2:00:00\")\n"
                        "  --zone +HH:MM|ZONE [--keep-instant]     set the time zone (\"Europe/Rome\"), keeping the\n"
                        "                                         local times or, with --keep-instant, the instant\n"
                        "  --geotag TRACK [--geotag-offset [+-]H:MM[:SS]] [--max-gap 5m]\n"
                        "                                         the place from a GPX, KML or NMEA log\n"
                        "  --strip private|location|dates|motion   remove private data, the place, the dates\n"
                        "                                          or a motion photo's movie\n"
                        "target:\n"
                        "  -o DIR              write the new files into DIR\n"
                        "  --in-place          replace the files (photos only); a raw file or a read-only\n"
                        "                      one keeps the changes in its XMP sidecar instead\n"
                        "  --sidecar           keep the changes in each photo's XMP sidecar (NAME.EXT.xmp\n"
                        "                      or NAME.xmp, the one it has, else a new NAME.EXT.xmp);\n"
                        "                      the photo stays as it is\n"
                        "  --keep-original     keep the original beside it as NAME_original.EXT\n"
                        "  --render            draw the photo anew, upright, as JPEG, into -o DIR\n"
                        "  --library new       save each photo as a new item of the photo library, in its\n"
                        "                      album \"Tessorin\"\n"
                        "  --library modify    edit the library items named by their IDs in place, in\n"
                        "                      their own format and name; the original is kept\n"
                        "                      (`library revert ID` brings it back)\n") + fileOptionsHelp},
        {"library",
         QStringLiteral("usage: tessorin-cli library scan | albums | list [ALBUM] [--json] | show ID\n"
                        "       tessorin-cli library favorite ID | delete ID | revert ID\n\n"
                        "The photo library: the folders in TESSORIN_LIBRARY (separated by ':'), else\n"
                        "the Pictures folder. `scan` reads what is new or changed; `albums` lists the\n"
                        "albums with their identifiers and counts; `list` the items of one (by title or\n"
                        "identifier), `show` one item as JSON; `favorite` turns its mark over, `delete`\n"
                        "moves its files to the trash, `revert` puts an edited item's original back.\n")},
    };
    return all;
}

QString toolHelp() {
    QString out = QStringLiteral(
        "usage: tessorin-cli [--no-human] COMMAND [OPTIONS] [ARGS...]\n"
        "       tessorin-cli (-h | --help | --version | --credits)\n\n"
        "Sees and fixes the metadata of photos and movies.\n\n"
        "commands:\n");
    for (const auto& [name, text] : texts())
        for (const QString& line : usageText(name).split(u'\n', Qt::SkipEmptyParts))
            out += "  " + line.section(QStringLiteral("tessorin-cli "), 1) + "\n";
    out += QStringLiteral(
        "\n"
        "  --no-human          raw values instead of words\n"
        "  -h, --help          this help; COMMAND --help for a command's own\n"
        "  --version           the version, and those of exiv2, libheif and FFmpeg\n"
        "  --credits           the licence, the libraries with their versions and licences, and\n"
        "                      the data with its attribution\n\n"
        "Exit status: 0 all done, 1 some file failed (the others are still done), 2 bad usage.\n");
    return out;
}

}  // namespace

QString helpText(const QString& command) {
    if (command.isEmpty()) return toolHelp();
    for (const auto& [name, text] : texts())
        if (name == command) return text;
    return {};
}

QString usageText(const QString& command) {
    const QString text = helpText(command);
    const qsizetype blank = text.indexOf(QStringLiteral("\n\n"));
    return blank < 0 ? text : text.left(blank + 1);
}

QStringList commandNames() {
    QStringList out;
    for (const auto& [name, text] : texts()) out << name;
    return out;
}

}  // namespace cli
