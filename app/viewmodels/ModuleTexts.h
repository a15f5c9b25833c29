// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The names the feature modules give in English (album and section names, resource and
// auxiliary image labels, the tag labels of the rows), shown in the user's language. The
// modules keep English: the command-line tool prints the same names for scripts.
#include <QString>

namespace moduletexts {

QString album(const QString& english);
QString resource(const QString& english);
QString tagLabel(const QString& english);
// A tag's value as the tag table shows it, where the value is a decoded word (flash, exposure
// programme, orientation, ...) and not the photo's own text.
QString tagValue(const QString& key, const QString& english);
// The edit model's own texts for a row ("Unchanged", ...).
QString editText(const QString& english);

}  // namespace moduletexts
