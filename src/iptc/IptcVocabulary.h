// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Closed IPTC vocabularies and how each editable key is edited: picked from a list of options,
// opened as a group of fields, or typed as a comma-separated list.
#include "TSKey.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <optional>
#include <variant>

// Texts by language code ("en-GB").
using IptcLangMap = QMap<QString, QString>;

// One concept of a vocabulary; also what the options chooser shows.
struct IptcMultipleOption {
    std::optional<QString> uri;  // none for the empty option that clears the field
    QString created;
    QString modified;
    std::optional<QString> retired;
    IptcLangMap prefLabel;
    IptcLangMap definition;
    std::optional<IptcLangMap> note;

    // The value stored in the photo: the URI, or "" for the empty option.
    QString id() const { return uri.value_or(QString()); }
    // "RETIRED - " before a retired concept's English label.
    QString title() const;
    QString details() const { return definition.value(QStringLiteral("en-GB")); }
    QString noteText() const { return note ? note->value(QStringLiteral("en-GB")) : QString(); }

    friend bool operator==(const IptcMultipleOption&, const IptcMultipleOption&) = default;
};

// One vocabulary file in the IPTC NewsCodes JSON form.
struct IptcScheme {
    QString uri;
    QString prefSchemeAlias;
    QString copyrightHolder;
    QString licenceLink;
    QString dateReleased;
    IptcLangMap prefLabel;
    IptcLangMap definition;
    std::optional<IptcLangMap> note;
    QList<IptcMultipleOption> conceptSet;

    // Nothing when the text is no JSON object or a required field is missing or of another type.
    static std::optional<IptcScheme> decode(const QByteArray& json);
    QByteArray encode() const;
};

struct IptcOptions {
    TSKey dataKey;
    QList<IptcMultipleOption> options;
};
struct IptcDictionary {
    TSKey dataKey;
};
struct IptcList {
    TSKey dataKey;
};
using IptcMultiData = std::variant<IptcOptions, IptcDictionary, IptcList>;

namespace iptc {

// The digital source type vocabulary shipped in the program's resources.
QString sourceTypeVocabularyFile();

// The options of a key with a closed vocabulary, led by the empty option. Only "Source Type"
// has one; a missing or unreadable vocabulary file gives nothing, so the field becomes free text.
std::optional<IptcOptions> iptcOptions(TSKey key, const QString& vocabularyFile = sourceTypeVocabularyFile());

// How a key is edited. Answers for the shipped vocabulary are kept for the process; a key with
// no answer is asked again each time.
std::optional<IptcMultiData> iptcMultiData(TSKey key);
// The same against another vocabulary file, uncached.
std::optional<IptcMultiData> iptcMultiData(TSKey key, const QString& vocabularyFile);

// The text for a stored value: the matching option's title, else the value unchanged. An absent
// value matches the empty option.
QString optionLabel(const std::optional<QString>& uri, const QList<IptcMultipleOption>& options);

}  // namespace iptc
