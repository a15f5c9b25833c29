// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The files a command works on, from its operands and the file-list options (see fileOptions).
#include "Arguments.h"

#include <optional>

namespace cli {

// The operands, then the paths read from each -@ list, in order. A folder stands for the photos
// and movies in it, sorted by name (with -r, each subfolder's after its own files); other files
// in it are skipped silently, as are hidden ones. A path named outright is kept whatever it is,
// so that the command reports a missing file. --ext keeps only files ending in one of its
// extensions. Returns nothing after reporting bad usage: no files named, or a list that can't be read.
std::optional<QStringList> expandFiles(const QString& command, const Arguments& args);

}  // namespace cli
