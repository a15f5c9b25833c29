// SPDX-License-Identifier: GPL-3.0-or-later
// tessorin-cli edit, for movies: `edit` hands every movie file to this editor with its wishes.
// A movie is written anew into the output folder, as "video_yyMMdd_HHmmss.mp4".
#include "Commands.h"
#include "MovieEdit.h"

#include "Formatter.h"
#include "HRLocation.h"
#include "TSAsset.h"
#include "VideoModifier.h"

#include <QDir>

namespace {

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
    if (w.strip && *w.strip != PrivacyStrip::Kind::motion)
        out << (*w.strip == PrivacyStrip::Kind::location ? QStringLiteral("location removed")
                : *w.strip == PrivacyStrip::Kind::dates  ? QStringLiteral("dates removed")
                                                         : QStringLiteral("private data removed"));
    return out.join(", ");
}

int videoEditCommand(const MovieEdit& edit) {
    const VideoWishes& wishes = edit.wishes;
    const bool anyWish = wishes.noTags || wishes.removeDate || wishes.removeLocation || wishes.date || wishes.location ||
                         wishes.shiftSeconds || wishes.zone || wishes.strip;
    int status = 0;
    for (const QString& path : edit.files) {
        // A movie can only be written anew, and only its date and place can change.
        if (edit.inPlace) {
            printError(path + ": Video editing not available\n");
            status = 1;
            continue;
        }
        if (!edit.unsupported.isEmpty()) {
            printError(path + ": a movie takes only --date, --location, --shift, --zone, --strip, --no-date, --no-location and --no-tags, not " +
                       edit.unsupported.join(", ") + "\n");
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
        const auto saved = modifier->save(2, QDir(edit.outputDir));
        if (const QString* message = std::get_if<QString>(&saved)) {
            printError(path + ": " + *message + "\n");
            status = 1;
            continue;
        }
        printOut(path + " -> " + std::get<QStringList>(saved).value(0) + ": " + changesText(wishes) + "\n");
    }
    return status;
}

}  // namespace

// `edit` sends movies here.
static const bool registered = (setMovieEditor(videoEditCommand), true);
