// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Every tag of an item as sections of rows, for the tag table and the exports. The misspelt
// name is the system's own.
#include "TSMetaData.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <utility>

class TSMetaDictProtocol {
public:
    virtual ~TSMetaDictProtocol() = default;
    virtual int numberOfSections() const = 0;
    virtual int numberOfRows(int section) const = 0;
    virtual std::optional<QString> sectionKey(int section) const = 0;
    virtual QString sectionTitle(const std::optional<QString>& key) const = 0;
    virtual std::pair<QString, QString> row(int section, int row) const = 0;
    virtual QString allText() const = 0;
    virtual QString jsonText() const = 0;
    virtual QByteArray jsonData() const = 0;
    // The raw export: every tag with its printed value.
    virtual QString rawText() const = 0;
};

class TSMetaDictionay : public TSMetaDictProtocol {
public:
    explicit TSMetaDictionay(TSMetaData metaData, bool needingDownload = false)
        : metaData(std::move(metaData)), needingDownload(needingDownload) {}

    int numberOfSections() const override;
    int numberOfRows(int section) const override;
    std::optional<QString> sectionKey(int section) const override;
    QString sectionTitle(const std::optional<QString>& key) const override;
    std::pair<QString, QString> row(int section, int row) const override;
    QString allText() const override;
    QString jsonText() const override;
    QByteArray jsonData() const override;
    QString rawText() const override;

    const TSMetaData metaData;
    const bool needingDownload;

private:
    std::optional<QVariantMap> sectionDictionary(int section) const;
};

// The JSON form that values take in the export: texts are quoted without escaping, so a text
// holding a quote or a backslash makes the whole export fall back to "{}".
std::optional<QString> jsonForm(const QVariant& value);
