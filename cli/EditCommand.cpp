// SPDX-License-Identifier: GPL-3.0-or-later
// tessorin-cli edit: the wishes of the edit screen from the command line, saved to files.
#include "Commands.h"
#include "EditOptions.h"
#include "FileArgs.h"
#include "MovieEdit.h"

#include "ImageWriter.h"
#include "Library.h"
#include "PhotoSave.h"
#include "Settings.h"
#include "Sidecars.h"
#include "TSAsset.h"
#include "Workers.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QUrl>

#include <csignal>

namespace {

std::function<int(const MovieEdit&)>& movieEditor() {
    static std::function<int(const MovieEdit&)> editor;
    return editor;
}

int usage(const QString& problem) { return cli::usageError("edit", problem); }

// What editing one file came to, told in the order the files were named.
struct Outcome {
    QString out, err;  // lines for standard output and standard error
    bool movie = false, failed = false, wrote = false;
};

// One photo from its wishes to its file.
void editPhoto(const std::shared_ptr<TSAsset>& asset, const UserSettings& wishes, const BatchWishes& batch,
               const EditTarget& target, Outcome& outcome, bool stillOnly) {
    const QString path = asset->path();
    PhotoSave save;
    save.batch = batch;
    save.motionCutOnly = stillOnly;
    save.problem = [&outcome](const QString& photo, const QString& problem) { outcome.out += photo + ": " + problem + "\n"; };
    const bool toLibrary = !target.libraryMode.isEmpty();
    if (toLibrary) {
        save.mode = target.libraryMode == "new" ? SaveMode::newItem : SaveMode::modify;
        save.library = &cliLibrary();
    } else {
        save.filesDirectory = target.inPlace ? QFileInfo(path).absolutePath() : target.outputDir;
        save.render = target.render;
        save.keepOriginals = target.inPlace && target.keepOriginal;
    }
    // A photo that can't take the changes in place keeps them in its sidecar, and says why.
    const auto why = !toLibrary && !target.sidecar && target.inPlace ? Sidecars::whyNotInPhoto(path, asset->imageData())
                                                                    : std::nullopt;
    const bool toSidecar = target.sidecar || why;
    const PhotoSave::Result result = toSidecar ? save.run(wishes, {}, {asset}) : save.run(wishes, {asset});
    if (result.nothingChanged) {
        outcome.out += path + ": Nothing changed\n";
        return;
    }
    if (why) outcome.out += path + ": " + *why + "; the changes go to its XMP sidecar\n";
    if (result.failure) {
        outcome.err += path + ": " + *result.failure + "\n";
        outcome.failed = true;
        return;
    }
    const QString to = toSidecar ? result.sidecars.value(0)
                       : toLibrary ? result.written.join(", ")
                                   : QUrl(result.written.value(0)).toLocalFile();
    outcome.out += path + " -> " + to + ": " + result.changes.value(0).join(", ") + "\n";
    outcome.wrote = true;
}

// Reads one named file and tells what it is; `asset` is only set for a photo that can be edited.
Outcome readFile(const QString& path, const EditTarget& target, std::shared_ptr<TSAsset>& asset) {
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
bool independent(const QStringList& files, const EditTarget& target) {
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
    EditRequest request;
    if (auto rc = readEditOptions(parsed, request)) return *rc;
    const EditWishes& wishes = request.wishes;
    BatchWishes& batch = request.batch;
    const QString& trackPath = request.trackPath;
    const EditTarget& target = request.target;
    MovieEdit& movieEdit = request.movieEdit;
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
