#include "Commands.h"

#include "Settings.h"

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <map>

namespace {

int usage() {
    printError("usage: tessorin-cli [--no-human] COMMAND [ARGS...]\n"
               "commands:\n"
               "  props FILE...              the property dictionaries of each file, as JSON\n"
               "  info FILE...               the details of each file, as the detail table shows them\n"
               "  summary FILE...            the short sentence about each file\n"
               "  tags FILE... [--raw|--json]  all tags, in words, raw, or as JSON\n"
               "  location TEXT...           the coordinate that a typed text means\n"
               "  place LAT LON              the place at a position, and its address\n"
               "  place --search TEXT        places by name, best first, with their coordinates\n"
               "  edit [WISHES] FILE... (-o DIR | --in-place | --render -o DIR)\n"
               "                             rewrites the files with the wishes applied (edit --help)\n"
               "  library scan|albums|list [ALBUM] [--json]|show ID|favorite ID|delete ID|revert ID\n"
               "                             the photo library in the Pictures folder (or TESSORIN_LIBRARY)\n"
               "--no-human shows raw values instead of words.\n");
    return 2;
}

}  // namespace

void printOut(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, size_t(utf8.size()), stdout);
}

void printError(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, size_t(utf8.size()), stderr);
}

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(TESSORIN_APP_NAME);
    QCoreApplication::setApplicationVersion(TESSORIN_VERSION);
    QStringList args = app.arguments().mid(1);
    if (args.removeAll("--no-human") > 0)
        Settings::setProcessOverride(Settings::key(SettingsFlag::human), false);
    if (args.isEmpty()) return usage();
    static const std::map<QString, std::function<int(const QStringList&)>> commands{
        {"props", propsCommand}, {"info", infoCommand},         {"summary", summaryCommand},
        {"tags", tagsCommand},   {"location", locationCommand}, {"place", placeCommand},
        {"edit", editCommand},
        {"library", libraryCommand},
    };
    auto it = commands.find(args.first());
    if (it == commands.end()) {
        printError("tessorin-cli: unknown command '" + args.first() + "'\n");
        return usage();
    }
    return it->second(args.mid(1));
}
