#pragma once
// The commands of tessorin-cli. Each takes its own arguments (without the command name),
// prints to standard output, and returns the exit status: 0 success, 1 some file failed,
// 2 bad usage. Errors go to standard error, one line per file, naming the file and the cause.
#include <QStringList>

int propsCommand(const QStringList& args);
int infoCommand(const QStringList& args);
int summaryCommand(const QStringList& args);
int tagsCommand(const QStringList& args);
int locationCommand(const QStringList& args);

// Writes text to standard output as UTF-8.
void printOut(const QString& text);
void printError(const QString& text);
