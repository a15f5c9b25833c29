// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A library folder of many files made from the sample media, for the library benches.
#include <QString>
#include <QStringList>
#include <optional>

namespace bench {

// Fills `root` with `count` files, a hundred a folder (000/f0.jpg, ...), taken in turn from the
// sample media under `corpusDir` (the malformed ones and the notes left out) as hard links, so
// the disk holds them once. Returns the samples, sorted; nothing, with the reason on standard
// error, when there are none or a file can't be made.
std::optional<QStringList> makeSampleLibrary(const QString& corpusDir, const QString& root, int count);

}  // namespace bench
