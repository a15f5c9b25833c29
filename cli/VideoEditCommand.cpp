// tessorin-cli edit, for movies: `edit` hands every movie file to this editor with its options.
// A movie is written anew into the output folder, as "video_yyMMdd_HHmmss.mp4".
#include "Commands.h"

#include "DateShift.h"
#include "Formatter.h"
#include "HRLocation.h"
#include "TSAsset.h"
#include "VideoModifier.h"

#include <QDir>
#include <QFileInfo>

#include <csignal>

namespace {

int usage(const QString& problem) {
    printError("tessorin-cli edit: " + problem + "\n"
               "usage for movies: tessorin-cli edit [--date \"yyyy:MM:dd HH:mm:ss\"] [--location TEXT]\n"
               "                  [--shift OFFSET] [--zone ZONE [--keep-instant]] [--strip private|location|dates]\n"
               "                  [--no-date] [--no-location] [--no-tags] MOVIE... -o DIR\n");
    return 2;
}

// What happened to one movie, for the line the run prints.
QString changesText(const VideoWishes& w) {
    if (w.noTags) return QStringLiteral("all tags removed");
    QStringList out;
    if (w.removeDate) out << QStringLiteral("date removed");
    else if (w.date) out << "date " + Formatter::exifDateText(*w.date);
    if (w.removeLocation) out << QStringLiteral("location removed");
    else if (w.location) out << "location " + iso6709Text(*w.location);
    if (w.shiftSeconds) out << QStringLiteral("dates shifted by %1 s").arg(*w.shiftSeconds);
    if (w.zone) out << "zone " + (w.zone->offsetSeconds ? TimeZones::offsetText(*w.zone->offsetSeconds) : w.zone->zoneName);
    if (w.strip) out << (*w.strip == PrivacyStrip::Kind::location ? QStringLiteral("location removed")
                         : *w.strip == PrivacyStrip::Kind::dates  ? QStringLiteral("dates removed")
                                                                  : QStringLiteral("private data removed"));
    return out.join(", ");
}

}  // namespace

int videoEditCommand(const QStringList& args) {
    VideoWishes wishes;
    QString outputDir;
    QStringList files, unsupported;
    bool inPlace = false;
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == "--") {
            files << args.mid(i + 1);
            break;
        }
        static const QStringList withValue{"--date",  "--location", "-o",    "--digitized-date", "--orientation",
                                           "--set",   "--remove",   "--shift", "--zone",           "--strip"};
        QString value;
        if (withValue.contains(a)) {
            if (i + 1 >= args.size()) return usage(a + " needs a value");
            value = args[++i];
        }
        if (a == "--date") {
            wishes.date = Formatter::exifDate(value);
            if (!wishes.date) return usage("'" + value + "' is no date of the form yyyy:MM:dd HH:mm:ss");
        } else if (a == "--location") {
            wishes.location = hrl::degreesLocation(value);
            if (!wishes.location) wishes.location = hrl::decimalLocation(value);
            if (!wishes.location) return usage("'" + value + "' is no location");
        } else if (a == "--shift") {
            wishes.shiftSeconds = DateShift::parseOffset(value);
            if (!wishes.shiftSeconds) return usage("'" + value + "' is no offset of the form [+-][D ]H:MM[:SS]");
        } else if (a == "--zone") {
            const bool keep = wishes.zone && wishes.zone->keepInstant;
            wishes.zone = TimeZones::parseZone(value);
            if (!wishes.zone) return usage("'" + value + "' is no time zone");
            wishes.zone->keepInstant = keep;
        } else if (a == "--keep-instant") {
            if (!wishes.zone) return usage("--keep-instant follows --zone");
            wishes.zone->keepInstant = true;
        } else if (a == "--strip") {
            wishes.strip = PrivacyStrip::parseKind(value);
            if (!wishes.strip) return usage("--strip takes private, location or dates");
        } else if (a == "-o") {
            outputDir = value;
        } else if (a == "--no-date") {
            wishes.removeDate = true;
        } else if (a == "--no-location") {
            wishes.removeLocation = true;
        } else if (a == "--no-tags") {
            wishes.noTags = true;
        } else if (a == "--in-place") {
            inPlace = true;
        } else if (a.startsWith('-')) {
            unsupported << a;
        } else {
            files << a;
        }
    }
    if (files.isEmpty()) return usage("no files given");
    if (outputDir.isEmpty() && !inPlace) return usage("give -o DIR");
    if (!outputDir.isEmpty() && !QFileInfo(outputDir).isDir()) return usage("no folder " + outputDir);
    const bool anyWish = wishes.noTags || wishes.removeDate || wishes.removeLocation || wishes.date || wishes.location ||
                         wishes.shiftSeconds || wishes.zone || wishes.strip;

    // A file size limit makes a write fail, reported like a full disk, instead of ending the run.
    std::signal(SIGXFSZ, SIG_IGN);
    int status = 0;
    for (const QString& path : files) {
        // A movie can only be written anew, and only its date and place can change.
        if (inPlace) {
            printError(path + ": Video editing not available\n");
            status = 1;
            continue;
        }
        if (!unsupported.isEmpty()) {
            printError(path + ": a movie takes only --date, --location, --shift, --zone, --strip, --no-date, --no-location and --no-tags, not " +
                       unsupported.join(", ") + "\n");
            status = 1;
            continue;
        }
        auto asset = std::make_shared<const TSAsset>(path);
        if (asset->readError()) {
            printError(path + ": " + *asset->readError() + "\n");
            status = 1;
            continue;
        }
        auto modifier = ExifVideoModifier::make({asset});
        if (!modifier) {
            printError(path + ": Error getting video data\n");
            status = 1;
            continue;
        }
        if (anyWish) {
            const QStringList problems = modifier->modify(wishes);
            if (!problems.isEmpty()) {
                printError(path + ": " + problems.join("; ") + "\n");
                status = 1;
                continue;
            }
        }
        if (!modifier->changed()) {
            printOut(path + ": Nothing changed\n");
            continue;
        }
        const auto saved = modifier->save(2, QDir(outputDir));
        if (const QString* message = std::get_if<QString>(&saved)) {
            printError(path + ": " + *message + "\n");
            status = 1;
            continue;
        }
        printOut(path + " -> " + std::get<QStringList>(saved).value(0) + ": " + changesText(wishes) + "\n");
    }
    return status;
}

// `edit` sends movies here.
static const bool registered = (setMovieEditor(videoEditCommand), true);
