// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the user wants changed, held apart from any picture: one UserSettings lives for one visit
// to the edit screen, collects the wishes of every row, sub-screen and switch, and is read once
// when the edit is saved. It never touches a file.
#include "HRLocation.h"
#include "TSDataStore.h"
#include "TSKey.h"
#include "TSMetaData.h"

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <QStringList>
#include <optional>

// A wish with this one-character text deletes its tag.
inline const QString kRemovalMark = QString(QChar(0x0002));

// The wishes by tag name, as text; date tags hold "yyyy:MM:dd HH:mm:ss".
struct UserProperties {
    QMap<QString, QString> properties;
    std::optional<QVariantMap> dic;  // the dictionary a value falls back to; empty for the top level

    // An absent or empty text deletes the wish; any other text replaces it.
    void set(const std::optional<QString>& text, const QString& tag);
};

// The wishes for a nested dictionary, here the IPTC creator contact fields.
class UserSubProperties {
public:
    QString tag;
    QList<TSKey> keys;
    UserProperties properties;

    explicit UserSubProperties(const std::optional<QVariantMap>& iptc);
    // Each field's tag name → its wished text; a field with no wish or an empty one maps to null,
    // which here means "leave it alone". The removal mark stays as it is.
    QVariantMap dictionary() const;
    // "label text" per field with a text, one a line; a removed field shows "label [removed]".
    QString description() const;
};

template <typename Key>
class BoolStatuses {
public:
    bool defaultValue = false;
    QHash<Key, bool> statuses;

    BoolStatuses(const QList<Key>& keys, bool value) : defaultValue(value) {
        for (const Key& k : keys) statuses.insert(k, value);
    }
    bool operator[](const Key& key) const { return statuses.value(key, defaultValue); }
    void set(const Key& key, bool value) { statuses.insert(key, value); }
};

struct EMRowData {
    std::optional<QString> header;
    std::optional<TSKey> key;
    std::optional<QString> placeholder;

    EMRowData(std::optional<QString> header, std::optional<TSKey> key, std::optional<QString> placeholder)
        : header(std::move(header)), key(key), placeholder(std::move(placeholder)) {}
    // Header and placeholder are the key's label, less a leading ":".
    explicit EMRowData(TSKey key);
};

// The sections of the edit screen; the value is the table's section number.
enum class Sections { selected = 0, noTags, dateTime, location, rotation, userComment, iptc, camera };

namespace EMSections {
const QList<Sections>& allSections();
QList<EMRowData> rows(Sections section);
}  // namespace EMSections

// The sections of the IPTC editor and their rows.
enum class IptcSections { content = 0, creator, rights, location, media };
namespace IptcSectionRows {
const QList<IptcSections>& allSections();
QList<TSKey> rows(IptcSections section);
}  // namespace IptcSectionRows

namespace EditKeys {
const QList<TSKey>& rowKeys();
const QList<TSKey>& iptcEditKeys();
const QList<TSKey>& dateKeys();
const QList<TSKey>& timeKeys();
// rowKeys, iptcEditKeys, dateKeys and timeKeys, each key once: what every save walks.
const QList<TSKey>& editableKeys();
// The case's name in code ("IPTC_KEYWORDS"), for the editable keys.
QString caseName(TSKey key);
// An editable key named by its case name or by the property key of its tag ("Keywords",
// "LensModel"); a coupled or fallback tag ("By-line") names the key it follows.
std::optional<TSKey> editableKey(const QString& name);
}  // namespace EditKeys

class UserSettings {
public:
    std::optional<HRLocation> finalLoc;
    std::optional<HRLocation> initialLoc;
    std::optional<QDateTime> initialDate;
    std::optional<int> finalOrientation;
    std::optional<int> initialOrientation;
    bool disclosureChanged = false;
    UserProperties properties;
    UserSubProperties creatorContactInfo;
    BoolStatuses<Sections> switchers{{Sections::noTags, Sections::dateTime, Sections::location}, false};
    TSMetaData firstImageData;

    // Seeded from the first selected item.
    UserSettings(const TSMetaData& metaData, const TSDataStore& store);

    // The wished text, or the first item's own; nothing for no key.
    std::optional<QString> value(std::optional<TSKey> key) const;
    void setDate(const QDateTime& date, std::optional<TSKey> key);
    std::optional<QDateTime> date(std::optional<TSKey> key) const;
    bool isDateChanged() const;
    bool isLocationChanged() const;
    QString locationText(bool multiple) const;
    QString rotationText() const;
    void dropDateWishes();
    void dropWishes(const QList<TSKey>& keys);

    // The delegate operations of the location and orientation pickers.
    void setLocation(const HRLocation& location);
    void setOrientation(int orientation);

    // After a save: the wished dates and place go to the recent lists.
    void saveRecents() const;
};
