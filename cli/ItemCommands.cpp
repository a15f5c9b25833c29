// SPDX-License-Identifier: GPL-3.0-or-later
// Commands that show an item as the app does: its details, its sentence, all its tags.
#include "Commands.h"
#include "ExitStatus.h"
#include "FileArgs.h"
#include "JsonOutput.h"
#include "Workers.h"

#include "HRLocation.h"
#include "ImageProperties.h"
#include "PlaceLookup.h"
#include "Settings.h"
#include "TSAsset.h"
#include "TSMetaDictionay.h"
#include "TSMetaVideo.h"

#include <QJsonDocument>

#include <functional>

namespace {

// Stands for the detail screen, so that the place look-up runs; the command waits for it.
struct CommandLineDisplay : Displayer {
    void dataChanged() override {}
};

// The longest wait for a place name: the offline answer comes in milliseconds, an online
// service may take its full transfer time.
constexpr int placeWaitMs = 15'000;

// What a command shows of one file: its text, and its entry in the JSON array.
struct Shown {
    QString text;
    QJsonObject json;
};

// Runs `show` on each file's asset; a file that can't be read is reported and skipped. Each
// file's text comes behind a line naming it, for one file too unless `headersForOne` is false.
// With `places`, the rows are shown once the place look-up has answered. The files are read on
// worker threads; place look-ups run on this thread's event loop, so those rows are shown here.
int forEachFile(const QString& command, const cli::Arguments& args,
                const std::function<Shown(TSAsset&, bool json)>& show, bool headersForOne, bool places) {
    const auto files = cli::expandFiles(command, args);
    if (!files) return 2;
    const bool headers = headersForOne || files->size() > 1;
    cli::JsonOutput out(args);
    cli::ExitStatus status;
    auto display = std::make_shared<CommandLineDisplay>();
    struct Read {
        std::shared_ptr<TSAsset> asset;
        std::optional<Shown> shown;
        std::optional<QString> error;
    };
    const bool json = out.on();
    cli::inOrder<QString, Read>(
        *files,
        [&](const QString& path) {
            // Without a display the asset starts no look-up that would answer on another thread.
            Read read{std::make_shared<TSAsset>(path), {}, {}};
            if (read.asset->readError()) read.error = *read.asset->readError();
            // The asset shows any file, as the app lists it; here a file of no known type failed.
            else if (imageio::detectFormat(read.asset->imageData()) == imageio::Format::Unknown)
                read.error = QStringLiteral("not an image format that can be read");
            else if (!places) read.shown = show(*read.asset, json);
            return read;
        },
        [&](const QString& path, Read& read) {
            if (read.error) return status.fail(path, *read.error, &out);
            if (places) {
                TSDataStore& store = read.asset->ddStore();
                store.displayDelegate = display;
                if (store.location) placelookup::start(*store.location, read.asset->sharedStore());
                placelookup::waitForAll(placeWaitMs);
                read.shown = show(*read.asset, json);
            }
            Shown& shown = *read.shown;
            if (json) {
                shown.json.insert("file", path);
                out.add(shown.json);
                return;
            }
            if (headers) printOut("==> " + path + " <==\n");
            if (!shown.text.endsWith(u'\n')) shown.text += u'\n';
            printOut(shown.text);
        });
    out.print();
    return status.code();
}

// The detail lines ("Label: value") as an object; the closing credit line is no detail.
QJsonObject detailsJson(const QString& text) {
    QJsonObject out;
    for (const QString& line : text.split(u'\n')) {
        const qsizetype colon = line.indexOf(QStringLiteral(": "));
        if (colon > 0) out.insert(line.left(colon), line.mid(colon + 2).trimmed());
    }
    return out;
}

}  // namespace

int infoCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("info", rawArgs, cli::fileOptions + cli::jsonOptions, args)) return *rc;
    return forEachFile(
        "info", args,
        [](TSAsset& a, bool json) {
            const QString text = a.ddStore().detailsText();
            return json ? Shown{{}, {{"details", detailsJson(text)}}} : Shown{text, {}};
        },
        true, true);
}

int summaryCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("summary", rawArgs, cli::fileOptions + cli::jsonOptions, args)) return *rc;
    return forEachFile(
        "summary", args,
        [](TSAsset& a, bool) {
            const QString text = a.ddStore().summaryText();
            return Shown{text, {{"summary", text.trimmed()}}};
        },
        true, true);
}

int tagsCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    const QList<cli::Option> own{{"--raw", "", false}};
    if (auto rc = cli::parse("tags", rawArgs, own + cli::fileOptions + cli::jsonOptions, args)) return *rc;
    if (args.has("--raw") && args.has("--json")) return cli::usageError("tags", "--raw and --json exclude each other");
    const bool raw = args.has("--raw");
    return forEachFile(
        "tags", args,
        [raw](TSAsset& a, bool json) {
            std::unique_ptr<TSMetaDictProtocol> dict;
            if (a.isVideo() && a.metaVideo() && a.ddStore().completed) dict = std::make_unique<TSMetaVideoDictionary>(a.metaVideo());
            else dict = std::make_unique<TSMetaDictionay>(a.metaData());
            if (json) return Shown{{}, {{"tags", QJsonDocument::fromJson(dict->jsonText().toUtf8()).object()}}};
            return Shown{raw ? dict->rawText() : dict->allText(), {}};
        },
        false, false);
}

int locationCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("location", rawArgs, cli::jsonOptions, args)) return *rc;
    if (args.operands.isEmpty()) return cli::usageError("location", "no text given");
    QString text = args.operands.join(' ').trimmed();
    // Leading and trailing commas are the caller's to trim, as the search field does.
    while (text.startsWith(u',')) text = text.mid(1).trimmed();
    while (text.endsWith(u',')) text = text.chopped(1).trimmed();
    auto loc = hrl::degreesLocation(text);
    if (!loc) loc = hrl::decimalLocation(text);
    cli::JsonOutput out(args);
    const QString failure = "\"" + text + "\" is no coordinate";
    if (!loc && !out.on()) {
        printOut(failure + "\n");
        return 1;
    }
    const bool human = Settings::flag(SettingsFlag::human);
    const QString degrees = loc ? hrl::coordinatesText(*loc, true).value_or("--") : QString();
    const QString decimal = loc ? hrl::decimalCoordinatesText(*loc, human, true) : QString();
    if (!out.on()) {
        printOut(degrees + "\n" + decimal + "\n");
        return 0;
    }
    if (loc)
        out.add({{"text", text}, {"latitude", loc->coordinate.latitude}, {"longitude", loc->coordinate.longitude},
                 {"degrees", degrees}, {"decimal", decimal}});
    else
        out.add({{"text", text}, {"error", failure}});
    out.print();
    return loc ? 0 : 1;
}
