// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A video's tags: its metadata items by key space, each with its value as raw and as readable
// text, and their presentation as sections of rows for the tag table and the exports.
#include "MetadataItem.h"
#include "TSMetaDictionay.h"

#include <QMap>
#include <QStringList>
#include <memory>

class TSMetaVideo {
public:
    struct TSVideoItem {
        media::MetadataItem item;
        QString raw;  // the value's default printed form, "-" without one
        QString hr;   // the same, but a location reads "Latitude: ...°\nLongitude: ...°"
    };

    // Adds an item to the list of its key space; a new key space starts a new list.
    void add(const media::MetadataItem& item);
    void add(const QList<media::MetadataItem>& items);

    QMap<QString, QList<TSVideoItem>> spaces;
    // The key spaces in the order they were first met.
    QStringList keySpaces() const { return order_; }

private:
    QStringList order_;
};

class TSMetaVideoDictionary : public TSMetaDictProtocol {
public:
    explicit TSMetaVideoDictionary(std::shared_ptr<const TSMetaVideo> metaData)
        : metaData(std::move(metaData)), keys(this->metaData ? this->metaData->keySpaces() : QStringList()) {}

    int numberOfSections() const override;
    int numberOfRows(int section) const override;
    std::optional<QString> sectionKey(int section) const override;
    QString sectionTitle(const std::optional<QString>& key) const override;
    std::pair<QString, QString> row(int section, int row) const override;
    QString allText() const override;
    // A video has no JSON export of its own: always "{}".
    QString jsonText() const override;
    QByteArray jsonData() const override;
    // Per key space a line of its name, a line of "=" as long, then "identifier: raw value" lines.
    QString rawText() const override;

    const std::shared_ptr<const TSMetaVideo> metaData;
    const QStringList keys;

private:
    std::pair<QString, QString> row(int section, int row, bool human) const;
};

// "Latitude: 45.464°\nLongitude: 9.19°" for an ISO 6709 text; nothing for any other text.
std::optional<QString> iso6709Text(const QString& text);
