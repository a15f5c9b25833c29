// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The plain rendering of a property value, as text: numbers in their shortest decimal form
// (a double 300.0 reads "300", as the platform prints a number from a dictionary); arrays and
// dictionaries render their elements that way.
#include <QString>
#include <QVariant>

namespace valuetext {

bool isNumber(const QVariant& v);
bool isInteger(const QVariant& v);
bool isText(const QVariant& v);
bool isArray(const QVariant& v);
bool isDictionary(const QVariant& v);
bool isData(const QVariant& v);

// A computed double, which always shows a fractional part: "2.0", "1.8".
QString describeDouble(double d);
// The default description: decimal numbers, the text itself, "[a, b]" for arrays, "[k: v]" for
// dictionaries, "N bytes" for data.
QString describe(const QVariant& v);

}  // namespace valuetext
