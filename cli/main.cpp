// SPDX-License-Identifier: GPL-3.0-or-later
#include "Arguments.h"
#include "Commands.h"
#include "Help.h"
#include "Settings.h"
#include "Version.h"
#include "Workers.h"

#include <QCoreApplication>
#include <QLocale>

#include <cstdio>
#include <functional>
#include <map>

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
    // Scripts read the output: dates and numbers in the same words whatever the user's language.
    QLocale::setDefault(QLocale::c());
    QCoreApplication::setApplicationName(TESSORIN_APP_NAME);
    QCoreApplication::setApplicationVersion(TESSORIN_VERSION);
    cli::setUpWorkers();
    QStringList args = app.arguments().mid(1);
    if (args.removeAll("--no-human") > 0)
        Settings::setProcessOverride(Settings::key(SettingsFlag::human), false);
    Settings::holdFlags();
    if (args.isEmpty()) return cli::usageError({}, "no command given");
    if (args.first() == "-h" || args.first() == "--help") {
        printOut(cli::helpText({}));
        return 0;
    }
    if (args.first() == "--version") {
        printOut(cli::versionText());
        return 0;
    }
    if (args.first() == "--credits") {
        printOut(cli::creditsText());
        return 0;
    }
    static const std::map<QString, std::function<int(const QStringList&)>> commands{
        {"props", propsCommand}, {"info", infoCommand},         {"summary", summaryCommand},
        {"tags", tagsCommand},   {"location", locationCommand}, {"place", placeCommand},
        {"edit", editCommand},
        {"resources", resourcesCommand},
        {"library", libraryCommand},
    };
    auto it = commands.find(args.first());
    if (it == commands.end()) return cli::usageError({}, "unknown command '" + args.first() + "'");
    return it->second(args.mid(1));
}
