// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The outcome of a command over its files: 0 when all were done, 1 when some failed (the others
// are still done). Bad usage, 2, is reported by usageError before any file is touched.
#include <QString>

namespace cli {

class JsonOutput;

class ExitStatus {
public:
    // One line on standard error naming the file and the cause; with `json`, also its entry there.
    void fail(const QString& file, const QString& cause, JsonOutput* json = nullptr);
    int code() const { return failed_ ? 1 : 0; }

private:
    bool failed_ = false;
};

}  // namespace cli
