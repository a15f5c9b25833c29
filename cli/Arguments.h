// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One parser for every command's arguments, so that `--`, -h/--help, the file-list options and
// --json mean the same everywhere.
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <utility>

namespace cli {

struct Option {
    QString name;       // the long form ("--date"), or the only form ("-o")
    QString shortName;  // "-r", or empty
    bool takesValue = false;
};

// Every command that takes files takes these too.
extern const QList<Option> fileOptions;
// Every command that prints takes these too.
extern const QList<Option> jsonOptions;

struct Arguments {
    // By long name, in the order given; a flag's value is a null string.
    QList<std::pair<QString, QString>> options;
    QStringList operands;

    bool has(const QString& name) const;
    QString value(const QString& name) const;  // the last one given
    QStringList values(const QString& name) const;
};

// Parses the arguments of `command` against the options it takes. Options may come before,
// between or after the operands; everything after `--` is an operand, and so is a negative
// number, so `place -33.86 151.21` needs no `--`. Returns an exit status when the command must
// stop here: 0 after printing its help, 2 after reporting bad usage.
std::optional<int> parse(const QString& command, const QStringList& args, const QList<Option>& options,
                         Arguments& out);

// Reports bad usage of `command` (the problem, its usage lines, where help is) and returns 2.
int usageError(const QString& command, const QString& problem);

}  // namespace cli
