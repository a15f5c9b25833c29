// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The help of the tool and of each of its commands.
#include <QString>
#include <QStringList>

namespace cli {

// The full help of a command, or of the tool for an empty name: usage lines first, then what it
// does and its options.
QString helpText(const QString& command);
// The usage lines alone: the help up to its first empty line.
QString usageText(const QString& command);
// The names of the commands, in the order the tool's help lists them.
QStringList commandNames();

}  // namespace cli
