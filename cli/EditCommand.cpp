// SPDX-License-Identifier: GPL-3.0-or-later
// tessorin-cli edit: the wishes of the edit screen from the command line, saved to files.
#include "Arguments.h"
#include "Commands.h"
#include "FileArgs.h"
#include "MovieEdit.h"

#include "BatchEdit.h"
#include "DateShift.h"
#include "DurableFile.h"
#include "ExifModifier.h"
#include "Workers.h"
#include "Formatter.h"
#include "HRLocation.h"
#include "IptcKeys.h"
#include "ImageWriter.h"
#include "Library.h"
#include "Settings.h"
#include "Sidecars.h"
#include "TSAsset.h"
#include "TSError.h"
#include "TemplateModel.h"

#include <QDir>
#include <QSet>
#include <QFileInfo>
#include <QUrl>

#include <csignal>

namespace {

std::function<int(const MovieEdit&)>& movieEditor() {
    static std::function<int(const MovieEdit&)> editor;
    return editor;
}

int usage(const QString& problem) { return cli::usageError("edit", problem); }

// Every option of `edit`, for photos and movies alike.
const QList<cli::Option> editOptions = cli::fileOptions + QList<cli::Option>{
    {"--date", "", true},     {"--digitized-date", "", true}, {"--location", "", true}, {"--orientation", "", true},
    {"--set", "", true},      {"--remove", "", true},         {"-o", "", true},          {"--no-location", "", false},
    {"--no-date", "", false}, {"--no-tags", "", false},       {"--in-place", "", false}, {"--keep-original", "", false},
    {"--render", "", false},  {"--template", "", true}, {"--library", "", true},
    {"--shift", "", true},    {"--zone", "", true},           {"--geotag", "", true},    {"--geotag-offset", "", true},
    {"--max-gap", "", true},  {"--strip", "", true},          {"--keep-instant", "", false}, {"--sidecar", "", false}};

struct Target {
    QString outputDir;
    bool inPlace = false;
    bool keepOriginal = false;
    bool render = false;
    bool sidecar = false;  // the changes go to each photo's XMP sidecar
    QString libraryMode;  // "new" or "modify": saved into the photo library
};

struct Wishes {
    std::optional<QDateTime> date, digitizedDate;
    std::optional<GeoLocation> location;
    bool noLocation = false, noDate = false, noTags = false;
    std::optional<int> orientation;
    QList<std::pair<TSKey, QString>> tags;  // the removal mark deletes
    std::optional<TemplateModel> iptcTemplate;

    bool any() const {
        return date || digitizedDate || location || noLocation || noDate || noTags || orientation || !tags.isEmpty() ||
               iptcTemplate;
    }
};

void applyWishes(const Wishes& w, UserSettings& settings) {
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

QString backupPath(const QString& path) {
    const QFileInfo info(path);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral("_original.") + info.suffix());
}

// What editing one file came to, told in the order the files were named.
struct Outcome {
    QString out, err;  // lines for standard output and standard error
    bool movie = false, failed = false, wrote = false;
};

// One photo from its wishes to its file.
void editPhoto(const std::shared_ptr<TSAsset>& asset, const UserSettings& base, const BatchWishes& batch,
               const Target& target, Outcome& outcome, bool stillOnly) {
    const QString path = asset->path();
    auto fail = [&](const QString& why) {
        outcome.err += path + ": " + why + "\n";
        outcome.failed = true;
    };
    UserSettings settings = base;
    ModifyingPhotoAsset photo{asset, std::make_shared<TagsPhotoModifier>(asset->metaData()), asset->imageData(), 1};
    ExifModifier modifier({photo});
    if (batch.any())
        modifier.eachPhoto = [&](ModifyingPhotoAsset& p) {
            for (const QString& problem : applyBatch(*p.tags, batch)) outcome.out += path + ": " + problem + "\n";
        };
    // A still made of a motion photo, and nothing else wished, is a cut rather than an edit: the
    // tags a save sets on its way (the software, the date that follows the capture date, a blank
    // comment dropped) stay as the file has them.
    if (stillOnly) PrivacyStrip::strip(*photo.tags, PrivacyStrip::Kind::motion);
    else modifier.modify(settings);
    if (!modifier.anyChanged()) {
        outcome.out += path + ": Nothing changed\n";
        return;
    }
    if (!target.libraryMode.isEmpty()) {
        modifier.library = &cliLibrary();
        modifier.save(target.libraryMode == "new" ? SaveMode::newItem : SaveMode::modify,
                      [&](const QStringList& ids, const std::optional<QString>& message) {
                          if (message) fail(*message);
                          else outcome.out += path + " -> " + ids.join(", ") + ": " + photo.tags->changedTags().join(", ") + "\n";
                          outcome.wrote = !message;
                      });
        return;
    }
    // A photo that can't take the changes in place keeps them in its sidecar, and says why.
    bool toSidecar = target.sidecar;
    if (!toSidecar && target.inPlace) {
        if (const auto why = Sidecars::whyNotInPhoto(path, asset->imageData())) {
            outcome.out += path + ": " + *why + "; the changes go to its XMP sidecar\n";
            toSidecar = true;
        }
    }
    if (toSidecar) {
        QStringList sidecars;
        if (auto failure = modifier.saveToSidecars(Settings::value(SettingsKey::sidecarBaseName).toBool(), sidecars))
            return fail(*failure);
        outcome.out += path + " -> " + sidecars.value(0) + ": " + photo.tags->changedTags().join(", ") + "\n";
        outcome.wrote = true;
        return;
    }
    modifier.filesDirectory = target.inPlace ? QFileInfo(path).absolutePath() : target.outputDir;
    modifier.render = target.render;
    const QString backup = backupPath(path);
    try {
        const auto rewritten = modifier.rewrite();
        if (target.inPlace && target.keepOriginal) {
            if (QFileInfo::exists(backup) || !QFile::copy(path, backup)) return fail("can't keep the original as " + backup);
            // The kept original is on the disk before the photo is replaced.
            QFile kept(backup);
            if (!kept.open(QIODevice::ReadOnly) || !fileio::syncFile(kept.handle()) || !fileio::syncFolderOf(backup))
                return fail("can't keep the original as " + backup);
        }
        QStringList urls;
        if (auto failure = modifier.dataToTempFile(rewritten, urls)) {
            if (target.inPlace && target.keepOriginal) QFile::remove(backup);
            return fail(*failure);
        }
        const QStringList changes = photo.tags->changedTags();
        outcome.out += path + " -> " + QUrl(urls.value(0)).toLocalFile() + ": " + changes.join(", ") + "\n";
        outcome.wrote = true;
    } catch (const TSError& e) {
        fail(e.message());
    }
}

// Reads one named file and tells what it is; `asset` is only set for a photo that can be edited.
Outcome readFile(const QString& path, const Target& target, std::shared_ptr<TSAsset>& asset) {
    Outcome outcome;
    auto fail = [&](const QString& why) {
        outcome.err = path + ": " + why + "\n";
        outcome.failed = true;
        return outcome;
    };
    if (!target.outputDir.isEmpty() &&
        QFileInfo(QDir(target.outputDir).filePath(QFileInfo(path).fileName())) == QFileInfo(path))
        return fail("the output folder holds the file itself; use --in-place");
    auto read = std::make_shared<TSAsset>(path);
    if (read->readError()) return fail(*read->readError());
    const auto format = imageio::detectFormat(read->imageData());
    if (format == imageio::Format::Movie) {
        outcome.movie = true;
        return outcome;
    }
    // Raw files take their changes in a sidecar, asked for or in place of the file.
    if (!imageio::canWrite(format) && !target.sidecar && !target.inPlace)
        return fail("can't write metadata into " + imageio::formatName(format) + " files");
    if (!read->metaData().metaDataDic()) return fail("no image metadata could be read");
    asset = std::move(read);
    return outcome;
}

// Whether the files can be edited side by side: no file is named twice, and no two of them are
// saved under the same name in the output folder, which would make the last one win by chance.
bool independent(const QStringList& files, const Target& target) {
    if (!target.libraryMode.isEmpty()) return false;  // the library is written by one thread
    QSet<QString> paths, names;
    for (const QString& f : files) {
        const QFileInfo info(f);
        // A HEIF drawn anew is saved as .jpg: the base name is what must differ.
        const QString name = info.completeBaseName().toLower();
        if (paths.contains(info.absoluteFilePath()) || (!target.inPlace && names.contains(name))) return false;
        paths.insert(info.absoluteFilePath());
        names.insert(name);
    }
    return true;
}

}  // namespace

void setMovieEditor(std::function<int(const MovieEdit&)> editor) { movieEditor() = std::move(editor); }

int editCommand(const QStringList& rawArgs) {
    cli::Arguments parsed;
    if (auto rc = cli::parse("edit", rawArgs, editOptions, parsed)) return *rc;
    Wishes wishes;
    BatchWishes batch;
    QString trackPath;
    Target target;
    MovieEdit movieEdit;
    for (const auto& [a, value] : parsed.options) {
        // Movies carry no IPTC and take no track log (said below); the rest they don't take is
        // named to them.
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
            trackPath = value;
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
    if (!target.libraryMode.isEmpty()) {
        if (target.inPlace || !target.outputDir.isEmpty() || target.render) return usage("--library goes alone");
        if (target.libraryMode == "modify") {
            // The items are named by their library identifiers; their current files are read.
            cliLibrary().scan();
            QStringList paths;
            for (const QString& id : parsed.operands) {
                auto item = cliLibrary().asset(id);
                if (!item) return usage("no library item " + id);
                paths << item->mainPath();
            }
            parsed.operands = paths;
        }
    } else if (target.sidecar) {
        if (target.inPlace || !target.outputDir.isEmpty() || target.render) return usage("--sidecar goes alone");
    } else if (target.inPlace == !target.outputDir.isEmpty()) return usage("give either -o DIR or --in-place");
    if (target.render && target.inPlace) return usage("--render writes to -o DIR");
    if (target.keepOriginal && !target.inPlace) return usage("--keep-original goes with --in-place");
    if (!target.outputDir.isEmpty() && !QFileInfo(target.outputDir).isDir())
        return usage("no folder " + target.outputDir);
    const auto files = cli::expandFiles("edit", parsed);
    if (!files) return 2;

    if (!trackPath.isEmpty()) {
        QString problem;
        auto log = TrackLog::readFile(trackPath, &problem);
        if (!log) {
            printError("tessorin-cli edit: " + trackPath + ": " + problem + "\n");
            return 2;
        }
        batch.trackLog = std::make_shared<const TrackLog>(std::move(*log));
    }

    // A file size limit makes a write fail, reported like a full disk, instead of ending the run.
    std::signal(SIGXFSZ, SIG_IGN);

    const bool stillOnly = batch.strip == PrivacyStrip::Kind::motion && !batch.shiftSeconds && !batch.zone &&
                           !batch.trackLog && !wishes.any();
    int status = 0;
    QStringList movies;
    std::optional<UserSettings> settings;
    bool wroteAny = false;
    // The edit is seeded from the first photo that can be edited, as the edit screen is from the
    // first selected item.
    for (const QString& path : *files) {
        std::shared_ptr<TSAsset> first;
        readFile(path, target, first);
        if (!first) continue;
        settings.emplace(first->metaData(), first->ddStore());
        applyWishes(wishes, *settings);
        break;
    }
    // Each photo is read, edited and written on a worker thread; what came of it is told here, in
    // the order named.
    cli::inOrder<QString, Outcome>(*files, [&](const QString& path) {
        std::shared_ptr<TSAsset> asset;
        Outcome outcome = readFile(path, target, asset);
        if (asset && settings) editPhoto(asset, *settings, batch, target, outcome, stillOnly);
        return outcome;
    }, [&](const QString& path, Outcome& outcome) {
        if (outcome.movie) movies << path;
        printOut(outcome.out);
        printError(outcome.err);
        if (outcome.failed) status = 1;
        wroteAny = wroteAny || outcome.wrote;
    }, independent(*files, target));
    if (settings && wroteAny) settings->saveRecents();
    if (!movies.isEmpty()) {
        if (!movieEditor() || batch.trackLog) {
            for (const QString& m : movies)
                printError(m + (batch.trackLog ? ": movies take no track log\n" : ": movies can't be edited here\n"));
            return 1;
        }
        VideoWishes& w = movieEdit.wishes;
        w.date = wishes.date;
        w.location = wishes.location;
        w.removeDate = wishes.noDate;
        w.removeLocation = wishes.noLocation;
        w.noTags = wishes.noTags;
        w.shiftSeconds = batch.shiftSeconds;
        w.zone = batch.zone;
        w.strip = batch.strip;
        movieEdit.outputDir = target.outputDir;
        movieEdit.inPlace = target.inPlace;
        movieEdit.files = movies;
        const int movieStatus = movieEditor()(movieEdit);
        status = std::max(status, movieStatus);
    }
    return status;
}
