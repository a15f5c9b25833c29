// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileArgs.h"

#include "ImageProperties.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <cstdio>

namespace cli {
namespace {

// The reader tells every type it knows from the first bytes; the box of brands that tells a
// HEIF from a movie ends well within them.
constexpr qint64 probeBytes = 4096;

bool isMedia(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    return imageio::detectFormat(file.read(probeBytes)) != imageio::Format::Unknown;
}

void walk(const QString& folder, bool recursive, QStringList& out) {
    const QDir dir(folder);
    QStringList subfolders;
    for (const QFileInfo& entry : dir.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        if (entry.isDir()) {
            // A link to a folder may lead back up the tree.
            if (recursive && !entry.isSymLink()) subfolders << entry.filePath();
        } else if (isMedia(entry.filePath())) {
            out << entry.filePath();
        }
    }
    for (const QString& sub : subfolders) walk(sub, recursive, out);
}

std::optional<QStringList> readList(const QString& command, const QString& list) {
    QFile file;
    const bool ok = list == "-" ? file.open(stdin, QIODevice::ReadOnly) : (file.setFileName(list), file.open(QIODevice::ReadOnly));
    if (!ok) {
        usageError(command, "can't read the list " + list + ": " + file.errorString());
        return std::nullopt;
    }
    QStringList out;
    QTextStream in(&file);
    for (QString line; in.readLineInto(&line);) {
        if (line.endsWith('\r')) line.chop(1);
        if (!line.isEmpty()) out << line;
    }
    return out;
}

}  // namespace

std::optional<QStringList> expandFiles(const QString& command, const Arguments& args) {
    if (args.operands.isEmpty() && !args.has("--list")) {
        usageError(command, "no files given");
        return std::nullopt;
    }
    QStringList named = args.operands;
    for (const QString& list : args.values("--list")) {
        auto paths = readList(command, list);
        if (!paths) return std::nullopt;
        named << *paths;
    }
    const bool recursive = args.has("--recursive");
    QStringList extensions;
    for (QString ext : args.values("--ext")) {
        if (ext.startsWith('.')) ext = ext.mid(1);
        extensions << ext.toLower();
    }
    QStringList out;
    for (const QString& path : named) {
        QStringList found;
        if (QFileInfo(path).isDir()) walk(path, recursive, found);
        else found << path;
        for (const QString& file : found)
            if (extensions.isEmpty() || extensions.contains(QFileInfo(file).suffix().toLower())) out << file;
    }
    return out;
}

}  // namespace cli
