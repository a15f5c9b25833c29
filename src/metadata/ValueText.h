#pragma once
// The plain rendering of a property value, as text. Doubles always show a fractional part
// ("2.0"), integers never; arrays and dictionaries render their elements that way.
#include <QString>
#include <QVariant>

namespace valuetext {

bool isNumber(const QVariant& v);
bool isInteger(const QVariant& v);
bool isText(const QVariant& v);
bool isArray(const QVariant& v);
bool isDictionary(const QVariant& v);
bool isData(const QVariant& v);

QString describeDouble(double d);
// The default description: decimal numbers, the text itself, "[a, b]" for arrays, "[k: v]" for
// dictionaries, "N bytes" for data.
QString describe(const QVariant& v);

}  // namespace valuetext
