// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a command prints for machines: one JSON array for the whole run, each entry written as
// soon as it is known (compact), so a long run streams and stays valid when some files fail.
// With --pretty the array is indented, and so printed at the end.
#include "Arguments.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QVariant>

namespace cli {

class JsonOutput {
public:
    // On when --json was given (or `always`, for commands that print nothing else).
    explicit JsonOutput(const Arguments& args, bool always = false);
    bool on() const { return on_; }
    void add(const QJsonObject& entry);
    // An entry already in compact JSON text.
    void addText(const QByteArray& entry);
    // Closes the array, when on.
    void print();

private:
    bool on_ = false;
    bool pretty_ = false;
    qsizetype count_ = 0;
    QByteArray held_;  // the array so far, when --pretty
    void write(const QByteArray& text);
};

// A property value as compact JSON, as QJsonDocument writes it: maps as objects with their keys
// in order, lists as arrays, bytes as Base64 text, whole doubles as integers, non-finite ones
// as null. Straight into `out`, without building a QJsonObject first.
void appendJson(QByteArray& out, const QVariant& value);
void appendJsonString(QByteArray& out, QStringView text);

}  // namespace cli
