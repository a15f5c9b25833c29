// Commands that show an item as the app does: its details, its sentence, all its tags.
#include "Commands.h"

#include "HRLocation.h"
#include "PlaceLookup.h"
#include "Settings.h"
#include "TSAsset.h"
#include "TSMetaDictionay.h"
#include "TSMetaVideo.h"

#include <functional>

namespace {

// Stands for the detail screen, so that the place look-up runs; the command waits for it.
struct CommandLineDisplay : Displayer {
    void dataChanged() override {}
};

// The longest wait for a place name: the offline answer comes in milliseconds, an online
// service may take its full transfer time.
constexpr int placeWaitMs = 15'000;

// Runs `show` on each file's asset; a file that can't be read is reported and skipped. With
// `places`, the rows are shown once the place look-up has answered.
int forEachFile(const QStringList& files, const std::function<QString(TSAsset&)>& show, bool headers, bool places = false) {
    int status = 0;
    auto display = std::make_shared<CommandLineDisplay>();
    for (const QString& path : files) {
        TSAsset asset(path, places ? std::weak_ptr<Displayer>(display) : std::weak_ptr<Displayer>());
        if (places) placelookup::waitForAll(placeWaitMs);
        if (asset.readError()) {
            printError(path + ": " + *asset.readError() + "\n");
            status = 1;
            continue;
        }
        if (headers) printOut("==> " + path + " <==\n");
        QString text = show(asset);
        if (!text.endsWith(u'\n')) text += u'\n';
        printOut(text);
    }
    return status;
}

int needFiles(const QStringList& args, const char* usage) {
    if (!args.isEmpty()) return 0;
    printError(QStringLiteral("usage: tessorin-cli %1\n").arg(usage));
    return 2;
}

}  // namespace

int infoCommand(const QStringList& args) {
    if (int rc = needFiles(args, "info FILE...")) return rc;
    return forEachFile(args, [](TSAsset& a) { return a.ddStore().detailsText(); }, true, true);
}

int summaryCommand(const QStringList& args) {
    if (int rc = needFiles(args, "summary FILE...")) return rc;
    return forEachFile(args, [](TSAsset& a) { return a.ddStore().summaryText(); }, true, true);
}

int tagsCommand(const QStringList& args) {
    QStringList files = args;
    const bool raw = files.removeAll("--raw") > 0;
    const bool json = files.removeAll("--json") > 0;
    if (raw && json) {
        printError("tessorin-cli tags: --raw and --json exclude each other\n");
        return 2;
    }
    if (int rc = needFiles(files, "tags FILE... [--raw|--json]")) return rc;
    return forEachFile(
        files,
        [&](TSAsset& a) {
            std::unique_ptr<TSMetaDictProtocol> dict;
            if (a.isVideo() && a.metaVideo() && a.ddStore().completed) dict = std::make_unique<TSMetaVideoDictionary>(a.metaVideo());
            else dict = std::make_unique<TSMetaDictionay>(a.metaData());
            return json ? dict->jsonText() : raw ? dict->rawText() : dict->allText();
        },
        files.size() > 1);
}

int locationCommand(const QStringList& args) {
    if (int rc = needFiles(args, "location TEXT...")) return rc;
    QString text = args.join(' ').trimmed();
    // Leading and trailing commas are the caller's to trim, as the search field does.
    while (text.startsWith(u',')) text = text.mid(1).trimmed();
    while (text.endsWith(u',')) text = text.chopped(1).trimmed();
    auto loc = hrl::degreesLocation(text);
    if (!loc) loc = hrl::decimalLocation(text);
    if (!loc) {
        printOut("\"" + text + "\" is no coordinate\n");
        return 1;
    }
    const bool human = Settings::flag(SettingsFlag::human);
    printOut(hrl::coordinatesText(*loc, true).value_or("--") + "\n" + hrl::decimalCoordinatesText(*loc, human, true) + "\n");
    return 0;
}
