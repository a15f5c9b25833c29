// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The commands of tessorin-cli. Each takes its own arguments (without the command name),
// prints to standard output, and returns the exit status: 0 success, 1 some file failed,
// 2 bad usage. Errors go to standard error, one line per file, naming the file and the cause.
#include <QStringList>

#include <functional>

int propsCommand(const QStringList& args);
int infoCommand(const QStringList& args);
int summaryCommand(const QStringList& args);
int tagsCommand(const QStringList& args);
int locationCommand(const QStringList& args);
int placeCommand(const QStringList& args);
// Resources and auxiliary images of files, optionally written out.
int resourcesCommand(const QStringList& args);
// Photos are edited here; movie files go, with the same wishes and target, to the movie editor
// that registers itself with setMovieEditor.
int editCommand(const QStringList& args);
struct MovieEdit;
void setMovieEditor(std::function<int(const MovieEdit&)> editor);

// The photo library: scan, albums, list, show, favorite, delete, revert.
int libraryCommand(const QStringList& args);
namespace library {
class Library;
}
// The library of this run, over its usual folders and index.
library::Library& cliLibrary();

// Writes text to standard output as UTF-8.
void printOut(const QString& text);
void printError(const QString& text);
