#pragma once
#include <QString>

namespace cli {

// The tool's version, then those of the libraries that read and write the files, as loaded.
QString versionText();

}  // namespace cli
