// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One stored set of IPTC values that the user fills in once and applies to any photo: the file
// template_<id>.json in the documents folder.
#include "TSKey.h"

#include <QMap>
#include <QString>
#include <optional>

class UserSettings;

class TemplateModel {
public:
    QMap<TSKey, QString> iptcProperties;
    int id = 0;

    // Starts empty, then loads its file.
    explicit TemplateModel(int id = 0);
    // Values from elsewhere (a file named on the command line); the documents folder is not read.
    static TemplateModel fromValues(QMap<TSKey, QString> values);

    // template_<id>.json in the user's documents folder.
    QString filePath() const;
    // Replaces the values by the file's; any failure, a missing file included, leaves none.
    void load();
    // Writes the file whole (temporary file, then rename); false leaves the old file.
    bool save() const;
    // "label: value" for each of `keys` that holds a non-empty value, one a line; nothing when none.
    std::optional<QString> summary(const QList<TSKey>& keys) const;

    // The file format: one flat JSON array alternating a key's raw text and its value. Decoding
    // fails whole on anything else, an unknown key included.
    static QByteArray encode(const QMap<TSKey, QString>& properties);
    static std::optional<QMap<TSKey, QString>> decode(const QByteArray& json);

    // Lays the values over the edit's wishes: contact fields into the contact record, the rest
    // into the wished properties; an empty value drops the wish. Wishes for other keys stay.
    void apply(UserSettings& settings) const;

private:
    struct Unloaded {};
    explicit TemplateModel(Unloaded) {}
};
