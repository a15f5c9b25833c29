#pragma once
// What a command prints for machines: one JSON array for the whole run, written at its end so
// that it stays valid when some files fail. Compact unless --pretty.
#include "Arguments.h"

#include <QJsonArray>
#include <QJsonObject>

namespace cli {

class JsonOutput {
public:
    // On when --json was given (or `always`, for commands that print nothing else).
    explicit JsonOutput(const Arguments& args, bool always = false);
    bool on() const { return on_; }
    void add(const QJsonObject& entry) { entries_.append(entry); }
    // Prints the array, when on.
    void print() const;

private:
    bool on_ = false;
    bool pretty_ = false;
    QJsonArray entries_;
};

}  // namespace cli
