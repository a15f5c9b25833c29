// SPDX-License-Identifier: GPL-3.0-or-later
#include "EditOptions.h"

#include "DateShift.h"
#include "Formatter.h"
#include "HRLocation.h"
#include "IptcKeys.h"

#include <QFile>

namespace {

int usage(const QString& problem) { return cli::usageError("edit", problem); }

}  // namespace

const QList<cli::Option> editOptions = cli::fileOptions + QList<cli::Option>{
    {"--date", "", true},     {"--digitized-date", "", true}, {"--location", "", true}, {"--orientation", "", true},
    {"--set", "", true},      {"--remove", "", true},         {"-o", "", true},          {"--no-location", "", false},
    {"--no-date", "", false}, {"--no-tags", "", false},       {"--in-place", "", false}, {"--keep-original", "", false},
    {"--render", "", false},  {"--template", "", true}, {"--library", "", true},
    {"--shift", "", true},    {"--zone", "", true},           {"--geotag", "", true},    {"--geotag-offset", "", true},
    {"--max-gap", "", true},  {"--strip", "", true},          {"--keep-instant", "", false}, {"--sidecar", "", false}};

std::optional<int> readEditOptions(const cli::Arguments& parsed, EditRequest& request) {
    EditWishes& wishes = request.wishes;
    BatchWishes& batch = request.batch;
    EditTarget& target = request.target;
    MovieEdit& movieEdit = request.movieEdit;
    for (const auto& [a, value] : parsed.options) {
        // Movies carry no IPTC and take no track log (the command tells them so); the rest they
        // don't take is named to them.
        static const QStringList photosOnly{"--recursive", "--list", "--ext", "--template",
                                            "--geotag", "--geotag-offset", "--max-gap"};
        static const QStringList forMovies{"--date",    "--location", "--shift", "--zone", "--keep-instant", "--strip",
                                           "--no-date", "--no-location", "--no-tags", "-o", "--in-place"};
        if (!photosOnly.contains(a) && !forMovies.contains(a) && !movieEdit.unsupported.contains(a))
            movieEdit.unsupported << a;
        if (a == "--date" || a == "--digitized-date") {
            auto date = Formatter::exifDate(value);
            if (!date) return usage("'" + value + "' is no date of the form yyyy:MM:dd HH:mm:ss");
            (a == "--date" ? wishes.date : wishes.digitizedDate) = date;
        } else if (a == "--location") {
            auto loc = hrl::degreesLocation(value);
            if (!loc) loc = hrl::decimalLocation(value);
            if (!loc) return usage("'" + value + "' is no location");
            wishes.location = loc;
        } else if (a == "--orientation") {
            bool ok = false;
            const int n = value.toInt(&ok);
            if (!ok || n < 1 || n > 8) return usage("the orientation is a number from 1 to 8");
            wishes.orientation = n;
        } else if (a == "--set" || a == "--remove") {
            const qsizetype eq = value.indexOf('=');
            if (a == "--set" && eq <= 0) return usage("--set takes KEY=VALUE");
            const QString name = a == "--set" ? value.left(eq) : value;
            auto key = EditKeys::editableKey(name);
            if (!key) key = iptc::contactKey(name);
            if (!key || key == TSKey::IPTC_CREATOR_CONTACT_INFO) return usage("'" + name + "' is no tag that can be edited");
            wishes.tags << std::pair{*key, a == "--set" ? value.mid(eq + 1) : kRemovalMark};
        } else if (a == "--template") {
            QFile file(value);
            const auto values = file.open(QIODevice::ReadOnly) ? TemplateModel::decode(file.readAll()) : std::nullopt;
            if (!values) return usage("'" + value + "' is no template file");
            wishes.iptcTemplate.emplace(TemplateModel::fromValues(*values));
        } else if (a == "--shift" || a == "--geotag-offset") {
            const auto seconds = DateShift::parseOffset(value);
            if (!seconds) return usage("'" + value + "' is no offset of the form [+-][D ]H:MM[:SS]");
            if (a == "--shift") batch.shiftSeconds = seconds;
            else batch.geotag.clockOffsetSeconds = *seconds;
        } else if (a == "--zone") {
            const bool keep = batch.zone && batch.zone->keepInstant;
            batch.zone = TimeZones::parseZone(value);
            if (!batch.zone) return usage("'" + value + "' is no time zone (\"+02:00\", \"Europe/Rome\")");
            batch.zone->keepInstant = keep;
        } else if (a == "--keep-instant") {
            if (!batch.zone) return usage("--keep-instant follows --zone");
            batch.zone->keepInstant = true;
        } else if (a == "--geotag") {
            request.trackPath = value;
        } else if (a == "--max-gap") {
            const auto seconds = Geotagger::parseDuration(value);
            if (!seconds) return usage("'" + value + "' is no duration (\"5m\", \"90s\", \"1h\")");
            batch.geotag.maxGapSeconds = *seconds;
        } else if (a == "--strip") {
            batch.strip = PrivacyStrip::parseKind(value);
            if (!batch.strip) return usage("--strip takes private, location, dates or motion");
        } else if (a == "-o") {
            target.outputDir = value;
        } else if (a == "--library") {
            if (value != "new" && value != "modify") return usage("--library takes new or modify");
            target.libraryMode = value;
        } else if (a == "--no-location") {
            wishes.noLocation = true;
        } else if (a == "--no-date") {
            wishes.noDate = true;
        } else if (a == "--no-tags") {
            wishes.noTags = true;
        } else if (a == "--in-place") {
            target.inPlace = true;
        } else if (a == "--keep-original") {
            target.keepOriginal = true;
        } else if (a == "--render") {
            target.render = true;
        } else if (a == "--sidecar") {
            target.sidecar = true;
        }
    }
    return std::nullopt;
}

void applyWishes(const EditWishes& w, UserSettings& settings) {
    if (w.date) settings.setDate(*w.date, TSKey::EXIF_DATE);
    if (w.digitizedDate) settings.setDate(*w.digitizedDate, TSKey::EXIF_DIGITIZED_DATE);
    // Removing the dates means removing the tags themselves, as clearing the date rows does.
    if (w.noDate)
        for (TSKey k : {TSKey::EXIF_DATE, TSKey::EXIF_DIGITIZED_DATE}) settings.properties.set(kRemovalMark, coord(k)->key);
    if (w.location) settings.setLocation(HRLocation{std::nullopt, std::nullopt, w.location, {}});
    settings.switchers.set(Sections::location, w.noLocation);
    settings.switchers.set(Sections::noTags, w.noTags);
    if (w.orientation) settings.setOrientation(*w.orientation);
    if (w.iptcTemplate) w.iptcTemplate->apply(settings);
    for (const auto& [key, text] : w.tags) {
        if (key == TSKey::IPTC_CREATOR_CONTACT_INFO) continue;
        if (TSKeys::iptcContactKeys().contains(key)) settings.creatorContactInfo.properties.set(text, coord(key)->key);
        else settings.properties.set(text, coord(key)->key);
    }
}

