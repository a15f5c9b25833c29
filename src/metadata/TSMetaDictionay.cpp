// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaDictionay.h"

#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"
#include "ValueText.h"

#include <QJsonDocument>
#include <QStringList>

namespace {

bool human() { return Settings::flag(SettingsFlag::human); }

QStringList sortedKeys(const QVariantMap& map) { return map.keys(); }  // QMap keeps code-unit order

QString titleFor(const QString& key, bool human) {
    if (!human) return key;
    QString t = key;
    if (t.startsWith(u'{')) t.remove(0, 1);
    if (t.endsWith(u'}')) t.chop(1);
    return t;
}

// Nested dictionaries become "Group.Key" entries, so every tag stands on a line of its own.
void flatten(const QVariantMap& map, const QString& prefix, QList<std::pair<QString, QVariant>>& out) {
    for (auto it = map.begin(); it != map.end(); ++it) {
        const QString key = prefix.isEmpty() ? it.key() : prefix + "." + it.key();
        if (valuetext::isDictionary(it.value())) flatten(it.value().toMap(), key, out);
        else out.append(std::pair<QString, QVariant>(key, it.value()));
    }
}

QString dictionaryForm(const QVariantMap& map) {
    QStringList entries;
    for (auto it = map.begin(); it != map.end(); ++it) {
        auto form = jsonForm(it.value());
        entries << "\"" + it.key() + "\": " + (form ? *form : "\"" + valuetext::describe(it.value()) + "\"");
    }
    return "{" + entries.join(", ") + "}";
}

}  // namespace

std::optional<QString> jsonForm(const QVariant& value) {
    if (valuetext::isText(value)) return "\"" + value.toString() + "\"";
    if (valuetext::isNumber(value)) return valuetext::describe(value);
    if (valuetext::isData(value)) return "\"" + QString::fromLatin1(value.toByteArray().toBase64()) + "\"";
    if (valuetext::isArray(value)) {
        QStringList forms;
        for (const QVariant& e : value.toList()) {
            auto f = jsonForm(e);
            if (!f) return std::nullopt;
            forms << *f;
        }
        return "[" + forms.join(", ") + "]";
    }
    if (valuetext::isDictionary(value)) return dictionaryForm(value.toMap());
    return std::nullopt;
}

std::optional<QVariantMap> TSMetaDictionay::sectionDictionary(int section) const {
    if (section == 0) return metaData.exifDic();
    if (section == 1) return metaData.tiffDic();
    const QStringList groups = sortedKeys(metaData.otherGeneralGroupedData());
    if (section < 2 || section - 2 >= groups.size()) return std::nullopt;
    return metaData.otherGeneralGroupedData().value(groups[section - 2]).toMap();
}

int TSMetaDictionay::numberOfSections() const { return int(metaData.otherGeneralGroupedData().size()) + 2; }

int TSMetaDictionay::numberOfRows(int section) const {
    auto d = sectionDictionary(section);
    return d ? int(d->size()) : 0;
}

std::optional<QString> TSMetaDictionay::sectionKey(int section) const {
    if (section == 0) return QString(kCGImagePropertyExifDictionary);
    if (section == 1) return QStringLiteral("{Tiff}");  // a title only; the record skips "{TIFF}"
    const QStringList groups = sortedKeys(metaData.otherGeneralGroupedData());
    if (section < 2 || section - 2 >= groups.size()) return std::nullopt;
    return groups[section - 2];
}

QString TSMetaDictionay::sectionTitle(const std::optional<QString>& key) const {
    return key ? titleFor(*key, human()) : QString();
}

std::pair<QString, QString> TSMetaDictionay::row(int section, int row) const {
    auto d = sectionDictionary(section);
    const QStringList keys = d ? sortedKeys(*d) : QStringList();
    if (row < 0 || row >= keys.size()) return {"-", "??"};
    const QString& label = keys[row];
    const QVariant value = d->value(label);
    if (human()) {
        if (!value.isValid()) return {label, "??"};
        return {label, TSMeanings::shared().meaning(label, value, true)};
    }
    return {label, TSMeanings::valueText(value, false).value_or(QStringLiteral("??"))};
}

QString TSMetaDictionay::allText() const {
    if (needingDownload) return {};
    const bool h = human();
    QStringList sections;
    for (int s = 0; s < numberOfSections(); ++s) {
        const int rows = numberOfRows(s);
        if (rows == 0) continue;
        QString text = "**" + titleFor(sectionKey(s).value_or(QString()), h) + "**\n";
        for (int r = 0; r < rows; ++r) {
            auto [label, value] = row(s, r);
            // Continuation lines of a value are indented under its label.
            if (value.contains(u'\n')) value = "\n\t" + value.replace("\n", "\n\t");
            text += label + ": " + value + "\n";
        }
        sections << text;
    }
    return sections.join("\n");
}

QString TSMetaDictionay::rawText() const {
    if (needingDownload) return {};
    QList<std::pair<QString, QVariant>> entries;
    if (metaData.metaDataDic()) flatten(*metaData.metaDataDic(), QString(), entries);
    if (entries.isEmpty()) entries.append(std::pair<QString, QVariant>("Tags", QStringLiteral("empty")));
    QString out;
    for (const auto& [key, value] : entries) out += key + ": " + valuetext::describe(value) + ";\n";
    return out;
}

QByteArray TSMetaDictionay::jsonData() const {
    if (needingDownload) return {};
    if (!metaData.metaDataDic()) return "{}";
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(dictionaryForm(*metaData.metaDataDic()).toUtf8(), &error);
    if (error.error != QJsonParseError::NoError || doc.isNull()) return "{}";
    return doc.toJson(QJsonDocument::Indented);
}

QString TSMetaDictionay::jsonText() const { return QString::fromUtf8(jsonData()); }
