#pragma once
// The commands of tessorin-cli. Each takes its own arguments (without the command name),
// prints to standard output, and returns the exit status: 0 success, 1 some file failed,
// 2 bad usage.
#include <QStringList>

int propsCommand(const QStringList& args);
