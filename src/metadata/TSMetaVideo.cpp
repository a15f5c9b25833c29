// SPDX-License-Identifier: GPL-3.0-or-later
#include "TSMetaVideo.h"

#include "HRLocation.h"
#include "Settings.h"
#include "ValueText.h"

namespace {

bool human() { return Settings::flag(SettingsFlag::human); }

bool isLocationKey(const QByteArray& key) { return key == "com.apple.quicktime.location.ISO6709" || key == "\xA9xyz"; }

QString rawText(const media::MetadataItem& item) {
    if (!item.value.isValid()) return QStringLiteral("-");
    return valuetext::describe(item.value);
}

}  // namespace

std::optional<QString> iso6709Text(const QString& text) {
    const auto loc = hrl::iso6709Location(text);
    if (!loc) return std::nullopt;
    return "Latitude: " + hrl::shortest(loc->coordinate.latitude) + "°\nLongitude: " +
           hrl::shortest(loc->coordinate.longitude) + "°";
}

void TSMetaVideo::add(const media::MetadataItem& item) {
    TSVideoItem v{item, rawText(item), {}};
    if (isLocationKey(item.key))
        if (auto text = item.stringValue()) v.hr = iso6709Text(*text).value_or(QString());
    if (v.hr.isEmpty()) v.hr = v.raw;
    if (!spaces.contains(item.keySpace)) order_ << item.keySpace;
    spaces[item.keySpace].append(v);
}

void TSMetaVideo::add(const QList<media::MetadataItem>& items) {
    for (const auto& item : items) add(item);
}

int TSMetaVideoDictionary::numberOfSections() const { return int(keys.size()); }

int TSMetaVideoDictionary::numberOfRows(int section) const {
    if (!metaData || section < 0 || section >= keys.size()) return 0;
    return int(metaData->spaces.value(keys[section]).size());
}

std::optional<QString> TSMetaVideoDictionary::sectionKey(int section) const {
    if (section < 0 || section >= keys.size()) return std::nullopt;
    return keys[section];
}

QString TSMetaVideoDictionary::sectionTitle(const std::optional<QString>& key) const { return key.value_or(QString()); }

std::pair<QString, QString> TSMetaVideoDictionary::row(int section, int row) const { return this->row(section, row, human()); }

std::pair<QString, QString> TSMetaVideoDictionary::row(int section, int row, bool h) const {
    if (!metaData || section < 0 || section >= keys.size()) return {"-", QString::number(row)};
    const auto& list = metaData->spaces.value(keys[section]);
    if (row < 0 || row >= list.size()) return {"-", QString::number(row)};
    const TSMetaVideo::TSVideoItem& v = list[row];
    QString label = v.item.identifier.isEmpty() ? QString::number(row) : v.item.identifier;
    if (h) {
        // A reverse-domain key loses its prefix: "mdta/com.apple.quicktime.make" reads "make".
        const QStringList parts = label.split(u'.');
        if (parts.size() >= 4) label = parts.mid(3).join(u'.');
    }
    return {label, h ? v.hr : v.raw};
}

QString TSMetaVideoDictionary::allText() const {
    QStringList sections;
    for (int s = 0; s < numberOfSections(); ++s) {
        const int rows = numberOfRows(s);
        if (rows == 0) continue;
        QString text = "**" + sectionTitle(sectionKey(s)) + "**\n";
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

QString TSMetaVideoDictionary::rawText() const {
    QString out;
    for (int s = 0; s < numberOfSections(); ++s) {
        if (s > 0) out += "\n";
        const QString name = sectionTitle(sectionKey(s));
        out += name + "\n" + QString(name.size(), u'=') + "\n";
        for (int r = 0; r < numberOfRows(s); ++r) {
            const auto [label, value] = row(s, r, false);
            out += label + ": " + value + "\n";
        }
    }
    return out;
}

QByteArray TSMetaVideoDictionary::jsonData() const { return "{}"; }

QString TSMetaVideoDictionary::jsonText() const { return QStringLiteral("{}"); }
