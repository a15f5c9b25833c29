// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Turns one raw tag value into text: the value text renders any value by its type (a human and
// a raw style); the meaning lookup knows individual tags (flash bits, EXIF enumerations, units,
// structured values).
#include "TSKey.h"
#include "TSMetaData.h"

#include <QHash>
#include <QVariant>
#include <optional>

struct TagsMeaning {
    QHash<QString, QString> meanings;  // the value as text → its meaning
    std::optional<QString> defaultValue;
    int elements = 0;  // the expected count of an array tag, 0 for a scalar
    bool isBinaryMask = false;
};

struct TSMeaningsInternal {
    QHash<QString, TagsMeaning> meaningsDictionary;  // property key → its meanings
};

class TSMeanings {
public:
    static const TSMeanings& shared();

    TSMeaningsInternal meanings;

    // Always a text; "-vv-" is the last resort.
    QString meaning(const QString& key, const QVariant& value, bool human) const;
    // Whether the meaning of the key's values is a word of this table (or the flash text), not
    // the value's own text.
    bool decodes(const QString& key) const;

    static std::optional<QString> valueText(const QVariant& value, bool human);
    static std::optional<QString> arrayText(const QVariantList& list, bool human);
    static QString dictionaryText(const QVariantMap& dict, bool human);
    // Upper-case hex; in human mode a text of 161 characters or more is shortened.
    static QString hexText(const QByteArray& bytes, bool human);
    // 0.008 → "1/125", 2.5 → "2"; nothing for a value that is no number.
    static std::optional<QString> shutterText(const QVariant& value);
    static QString flashText(qint64 value);
    // One element or value on its own: texts stay, numbers their decimal text, arrays, dictionaries
    // and data by the texts above.
    static QString elementText(const QVariant& value, bool human);
    // The creator contact lines: each contact case with a value, "label value".
    static QString contactText(const QVariantMap& contact);

private:
    TSMeanings();
    std::optional<QString> tableLookup(const QString& key, const QVariant& value) const;
};

// The value of a vocabulary case as text for the edit screens, with the current "human"
// setting; its fallback coordinate is tried when the primary has no text.
std::optional<QString> string(const TSMetaData& metaData, TSKey key);
// The same with the setting given, for a walk over many keys that reads it once.
std::optional<QString> string(const TSMetaData& metaData, TSKey key, bool human);
// The conversion of one coordinate: texts as they stand, arrays element by element joined with
// ",", dictionaries through the meaning lookup; bare numbers give nothing.
std::optional<QString> string(const QString& key, const std::optional<QVariantMap>& dictionary, bool human);
