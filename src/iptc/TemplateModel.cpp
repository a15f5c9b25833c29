// SPDX-License-Identifier: GPL-3.0-or-later
#include "TemplateModel.h"

#include "DurableFile.h"
#include "IptcKeys.h"
#include "UserSettings.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>

TemplateModel::TemplateModel(int id) : id(id) { load(); }

TemplateModel TemplateModel::fromValues(QMap<TSKey, QString> values) {
    TemplateModel model{Unloaded{}};
    model.iptcProperties = std::move(values);
    return model;
}

QString TemplateModel::filePath() const {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation))
        .filePath(QStringLiteral("template_%1.json").arg(id));
}

void TemplateModel::load() {
    iptcProperties.clear();
    QFile file(filePath());
    if (!file.open(QIODevice::ReadOnly)) return;
    if (auto properties = decode(file.readAll())) iptcProperties = std::move(*properties);
}

bool TemplateModel::save() const {
    QDir().mkpath(QFileInfo(filePath()).absolutePath());
    return fileio::writeDurably(filePath(), encode(iptcProperties));
}

std::optional<QString> TemplateModel::summary(const QList<TSKey>& keys) const {
    QStringList lines;
    for (TSKey k : keys) {
        const QString value = iptcProperties.value(k);
        if (!value.isEmpty()) lines << iptc::fieldName(k) + QStringLiteral(": ") + value;
    }
    if (lines.isEmpty()) return std::nullopt;
    return lines.join('\n');
}

QByteArray TemplateModel::encode(const QMap<TSKey, QString>& properties) {
    QJsonArray a;
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        a.append(rawValue(it.key()));
        a.append(it.value());
    }
    return QJsonDocument(a).toJson(QJsonDocument::Compact);
}

std::optional<QMap<TSKey, QString>> TemplateModel::decode(const QByteArray& json) {
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !doc.isArray()) return std::nullopt;
    const QJsonArray a = doc.array();
    if (a.size() % 2 != 0) return std::nullopt;
    QMap<TSKey, QString> out;
    for (qsizetype i = 0; i < a.size(); i += 2) {
        if (!a[i].isString() || !a[i + 1].isString()) return std::nullopt;
        const auto key = tsKeyFromRawValue(a[i].toString());
        if (!key) return std::nullopt;
        out.insert(*key, a[i + 1].toString());
    }
    return out;
}

void TemplateModel::apply(UserSettings& settings) const {
    const QList<TSKey>& contactKeys = TSKeys::iptcContactKeys();
    for (auto it = iptcProperties.begin(); it != iptcProperties.end(); ++it) {
        const auto c = coord(it.key());
        if (!c) continue;
        if (contactKeys.contains(it.key())) settings.creatorContactInfo.properties.set(it.value(), c->key);
        else settings.properties.set(it.value(), c->key);
    }
}
