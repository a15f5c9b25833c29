// SPDX-License-Identifier: GPL-3.0-or-later
#include "Arguments.h"

#include "Commands.h"
#include "Help.h"

#include <QRegularExpression>

namespace cli {

const QList<Option> fileOptions{{"--recursive", "-r", false}, {"--list", "-@", true}, {"--ext", "", true}};
const QList<Option> jsonOptions{{"--json", "-j", false}, {"--pretty", "", false}};

bool Arguments::has(const QString& name) const {
    for (const auto& [n, v] : options)
        if (n == name) return true;
    return false;
}

QString Arguments::value(const QString& name) const {
    const QStringList all = values(name);
    return all.isEmpty() ? QString() : all.last();
}

QStringList Arguments::values(const QString& name) const {
    QStringList out;
    for (const auto& [n, v] : options)
        if (n == name) out << v;
    return out;
}

int usageError(const QString& command, const QString& problem) {
    const QString name = command.isEmpty() ? QStringLiteral("tessorin-cli") : "tessorin-cli " + command;
    printError(name + ": " + problem + "\n" + usageText(command) + "Try '" + name + " --help' for more.\n");
    return 2;
}

std::optional<int> parse(const QString& command, const QStringList& args, const QList<Option>& options,
                         Arguments& out) {
    static const QRegularExpression number(QStringLiteral("^-[0-9.]"));
    out = {};
    // Asking for help is never bad usage, wherever it stands before `--`.
    const qsizetype end = args.contains("--") ? args.indexOf("--") : args.size();
    if (args.mid(0, end).contains("-h") || args.mid(0, end).contains("--help")) {
        printOut(helpText(command));
        return 0;
    }
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == "--") {
            out.operands << args.mid(i + 1);
            break;
        }
        if (!a.startsWith('-') || a == "-" || number.match(a).hasMatch()) {
            out.operands << a;
            continue;
        }
        // --name=value is the same as --name value.
        const qsizetype eq = a.startsWith("--") ? a.indexOf('=') : -1;
        const QString name = eq > 0 ? a.left(eq) : a;
        const Option* option = nullptr;
        for (const Option& o : options)
            if (o.name == name || (!o.shortName.isEmpty() && o.shortName == name)) option = &o;
        if (!option) return usageError(command, "unknown option " + name);
        if (!option->takesValue) {
            if (eq > 0) return usageError(command, option->name + " takes no value");
            out.options << std::pair{option->name, QString()};
        } else if (eq > 0 || i + 1 < args.size()) {
            // Never null, so that an empty value stays apart from a flag.
            out.options << std::pair{option->name, QStringLiteral("") + (eq > 0 ? a.mid(eq + 1) : args[++i])};
        } else {
            return usageError(command, option->name + " needs a value");
        }
    }
    return std::nullopt;
}

}  // namespace cli
