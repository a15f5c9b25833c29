// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
#include <QString>

namespace cli {

// The tool's version, then those of the libraries that read and write the files, as loaded.
QString versionText();
// The licence, every library with its version and licence, and the data with its attribution.
QString creditsText();

}  // namespace cli
