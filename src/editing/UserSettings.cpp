// SPDX-License-Identifier: GPL-3.0-or-later
#include "UserSettings.h"

#include "Formatter.h"
#include "PropertyKeys.h"
#include "Recent.h"
#include "Settings.h"
#include "TSMeanings.h"

namespace {

bool human() { return Settings::flag(SettingsFlag::human); }

// The wished text as the screens show it under the "human" setting.
QString normalised(const QString& text) { return TSMeanings::valueText(text, human()).value_or(text); }

QString labelOf(TSKey key) {
    QString label = rawValue(key);
    if (label.startsWith(':')) label.remove(0, 1);
    return label;
}

}  // namespace

void UserProperties::set(const std::optional<QString>& text, const QString& tag) {
    if (!text || text->isEmpty()) properties.remove(tag);
    else properties.insert(tag, *text);
}

UserSubProperties::UserSubProperties(const std::optional<QVariantMap>& iptc)
    : tag(kCGImagePropertyIPTCCreatorContactInfo), keys(TSKeys::iptcContactKeys()) {
    if (iptc && iptc->contains(tag)) properties.dic = iptc->value(tag).toMap();
    else properties.dic = QVariantMap{};
}

QVariantMap UserSubProperties::dictionary() const {
    QVariantMap out;
    for (TSKey key : keys) {
        const auto c = coord(key);
        if (!c) continue;
        const QString text = properties.properties.value(c->key);
        out.insert(c->key, text.isEmpty() ? QVariant::fromValue(nullptr) : QVariant(text));
    }
    return out;
}

QString UserSubProperties::description() const {
    QStringList lines;
    for (TSKey key : keys) {
        const auto c = coord(key);
        if (!c) continue;
        const QString text = properties.properties.value(c->key);
        if (text.isEmpty()) continue;
        lines << (text == kRemovalMark ? rawValue(key) + " [removed]" : rawValue(key) + " " + text);
    }
    return lines.join('\n');
}

EMRowData::EMRowData(TSKey k) : header(labelOf(k)), key(k), placeholder(labelOf(k)) {}

namespace EMSections {

const QList<Sections>& allSections() {
    static const QList<Sections> all{Sections::selected, Sections::noTags,      Sections::dateTime, Sections::location,
                                     Sections::rotation, Sections::userComment, Sections::iptc,     Sections::camera};
    return all;
}

QList<EMRowData> rows(Sections section) {
    switch (section) {
    case Sections::selected: return {EMRowData(std::nullopt, std::nullopt, std::nullopt)};
    case Sections::noTags: return {EMRowData(QStringLiteral("No Tags"), std::nullopt, std::nullopt)};
    case Sections::dateTime: return {EMRowData(TSKey::EXIF_DATE), EMRowData(TSKey::EXIF_DIGITIZED_DATE)};
    case Sections::location: return {EMRowData(QStringLiteral("Location"), std::nullopt, std::nullopt)};
    case Sections::rotation: return {EMRowData(QStringLiteral("Orientation"), std::nullopt, std::nullopt)};
    case Sections::userComment:
        return {EMRowData(QStringLiteral("User Comment"), TSKey::USER_COMMENT, QStringLiteral("a comment"))};
    case Sections::iptc: return {EMRowData(QStringLiteral("IPTC tags"), std::nullopt, std::nullopt)};
    case Sections::camera:
        return {EMRowData(QStringLiteral("Camera Model"), TSKey::CAMERA, QStringLiteral("Camera Model")),
                EMRowData(TSKey::CAM_MAKER), EMRowData(TSKey::LENS), EMRowData(TSKey::LENS_MAKER),
                EMRowData(TSKey::LENS_SERIAL), EMRowData(TSKey::BODY_SERIAL)};
    }
    return {};
}

}  // namespace EMSections

namespace IptcSectionRows {

const QList<IptcSections>& allSections() {
    static const QList<IptcSections> all{IptcSections::content, IptcSections::creator, IptcSections::rights,
                                         IptcSections::location, IptcSections::media};
    return all;
}

QList<TSKey> rows(IptcSections section) {
    using enum TSKey;
    switch (section) {
    case IptcSections::content: return {IPTC_DOC_TITLE, DESCRIPTION, IPTC_KEYWORDS, IPTC_HEADLINE};
    case IptcSections::creator:
        return {AUTHOR, IPTC_AUTHOR_TITLE, IPTC_DESCRIPTION_WRITER, IPTC_RIGHTS_USAGE_TERM, IPTC_CREATOR_CONTACT_INFO};
    case IptcSections::rights: return {IPTC_CREDIT, IPTC_SOURCE, COPYRIGHT};
    case IptcSections::location:
        return {IPTC_EVENT, IPTC_CITY, IPTC_SUBLOCATION, IPTC_PROVINCE, IPTC_COUNTRY, IPTC_COUNTRYCODE};
    case IptcSections::media: return {IPTC_SOURCE_TYPE};
    }
    return {};
}

}  // namespace IptcSectionRows

namespace EditKeys {

const QList<TSKey>& rowKeys() {
    static const QList<TSKey> keys = [] {
        QList<TSKey> out;
        for (Sections s : EMSections::allSections())
            for (const EMRowData& row : EMSections::rows(s))
                if (row.key) out << *row.key;
        return out;
    }();
    return keys;
}

const QList<TSKey>& iptcEditKeys() {
    static const QList<TSKey> keys = [] {
        QList<TSKey> out;
        for (IptcSections s : IptcSectionRows::allSections()) out << IptcSectionRows::rows(s);
        return out;
    }();
    return keys;
}

const QList<TSKey>& dateKeys() {
    static const QList<TSKey> keys{TSKey::EXIF_DATE, TSKey::EXIF_DIGITIZED_DATE, TSKey::IPTC_DATE_CREATED,
                                   TSKey::IPTC_DIGITAL_CREATION_DATE};
    return keys;
}

const QList<TSKey>& timeKeys() {
    static const QList<TSKey> keys{TSKey::IPTC_TIME_CREATED,          TSKey::IPTC_DIGITAL_CREATION_TIME,
                                   TSKey::EXIF_SUBSEC_TIME,           TSKey::EXIF_SUBSEC_TIME_ORIGINAL,
                                   TSKey::EXIF_SUBSEC_TIME_DIGITIZED, TSKey::EXIF_OFFSET_TIME,
                                   TSKey::EXIF_OFFSET_TIME_ORIGINAL,  TSKey::EXIF_OFFSET_TIME_DIGITIZED};
    return keys;
}

const QList<TSKey>& editableKeys() {
    static const QList<TSKey> keys = [] {
        QList<TSKey> out;
        for (const QList<TSKey>* list : {&rowKeys(), &iptcEditKeys(), &dateKeys(), &timeKeys()})
            for (TSKey k : *list)
                if (!out.contains(k)) out << k;
        return out;
    }();
    return keys;
}

QString caseName(TSKey key) {
    using enum TSKey;
    static const QHash<TSKey, QString> names{
        {EXIF_DATE, "EXIF_DATE"}, {EXIF_DIGITIZED_DATE, "EXIF_DIGITIZED_DATE"}, {USER_COMMENT, "USER_COMMENT"},
        {CAMERA, "CAMERA"}, {CAM_MAKER, "CAM_MAKER"}, {LENS, "LENS"}, {LENS_MAKER, "LENS_MAKER"},
        {LENS_SERIAL, "LENS_SERIAL"}, {BODY_SERIAL, "BODY_SERIAL"}, {IPTC_DOC_TITLE, "IPTC_DOC_TITLE"},
        {DESCRIPTION, "DESCRIPTION"}, {IPTC_KEYWORDS, "IPTC_KEYWORDS"}, {IPTC_HEADLINE, "IPTC_HEADLINE"},
        {AUTHOR, "AUTHOR"}, {IPTC_AUTHOR_TITLE, "IPTC_AUTHOR_TITLE"}, {IPTC_DESCRIPTION_WRITER, "IPTC_DESCRIPTION_WRITER"},
        {IPTC_RIGHTS_USAGE_TERM, "IPTC_RIGHTS_USAGE_TERM"}, {IPTC_CREATOR_CONTACT_INFO, "IPTC_CREATOR_CONTACT_INFO"},
        {IPTC_CREDIT, "IPTC_CREDIT"}, {IPTC_SOURCE, "IPTC_SOURCE"}, {COPYRIGHT, "COPYRIGHT"}, {IPTC_EVENT, "IPTC_EVENT"},
        {IPTC_CITY, "IPTC_CITY"}, {IPTC_SUBLOCATION, "IPTC_SUBLOCATION"}, {IPTC_PROVINCE, "IPTC_PROVINCE"},
        {IPTC_COUNTRY, "IPTC_COUNTRY"}, {IPTC_COUNTRYCODE, "IPTC_COUNTRYCODE"}, {IPTC_SOURCE_TYPE, "IPTC_SOURCE_TYPE"},
        {IPTC_DATE_CREATED, "IPTC_DATE_CREATED"}, {IPTC_DIGITAL_CREATION_DATE, "IPTC_DIGITAL_CREATION_DATE"},
        {IPTC_TIME_CREATED, "IPTC_TIME_CREATED"}, {IPTC_DIGITAL_CREATION_TIME, "IPTC_DIGITAL_CREATION_TIME"},
        {EXIF_SUBSEC_TIME, "EXIF_SUBSEC_TIME"}, {EXIF_SUBSEC_TIME_ORIGINAL, "EXIF_SUBSEC_TIME_ORIGINAL"},
        {EXIF_SUBSEC_TIME_DIGITIZED, "EXIF_SUBSEC_TIME_DIGITIZED"}, {EXIF_OFFSET_TIME, "EXIF_OFFSET_TIME"},
        {EXIF_OFFSET_TIME_ORIGINAL, "EXIF_OFFSET_TIME_ORIGINAL"}, {EXIF_OFFSET_TIME_DIGITIZED, "EXIF_OFFSET_TIME_DIGITIZED"},
    };
    return names.value(key);
}

std::optional<TSKey> editableKey(const QString& name) {
    for (TSKey k : editableKeys())
        if (caseName(k) == name) return k;
    for (TSKey k : editableKeys())
        if (const auto c = coord(k); c && c->key == name && c->dict != SubDictionary::general) return k;
    for (TSKey k : editableKeys())
        if (const auto c = fallbackCoord(k); c && c->key == name) return k;
    return std::nullopt;
}

}  // namespace EditKeys

UserSettings::UserSettings(const TSMetaData& metaData, const TSDataStore& store)
    : initialOrientation(metaData.orientation() ? std::optional<int>(int(*metaData.orientation())) : std::nullopt),
      creatorContactInfo(metaData.iptcDic()),
      firstImageData(metaData) {
    HRLocation loc;
    if (auto t = store.datas.value(TSKey::EXIF_LOCATION)) loc.title = QString(*t).replace('\n', ' ');
    loc.subtitle = store.location ? hrl::coordinatesText(*store.location, true).value_or(QString()) : QString();
    loc.location = store.location;
    initialLoc = loc;
    if (auto t = store.datas.value(TSKey::EXIF_DATE)) initialDate = Formatter::parse(*t, Formatter::Style::fullDate);
}

std::optional<QString> UserSettings::value(std::optional<TSKey> key) const {
    if (!key) return std::nullopt;
    const auto c = coord(*key);
    if (c && properties.properties.contains(c->key)) return normalised(properties.properties.value(c->key));
    return string(firstImageData, *key);
}

void UserSettings::setDate(const QDateTime& date, std::optional<TSKey> key) {
    if (!key) return;
    const auto c = coord(*key);
    if (!c) return;
    properties.set(Formatter::exifDateText(date), c->key);
    disclosureChanged = true;
}

std::optional<QDateTime> UserSettings::date(std::optional<TSKey> key) const {
    if (!key) return std::nullopt;
    const auto c = coord(*key);
    if (!c || !properties.properties.contains(c->key)) return std::nullopt;
    return Formatter::exifDate(normalised(properties.properties.value(c->key)));
}

bool UserSettings::isDateChanged() const {
    // No wish at all is no change, whatever the photo has.
    if (!properties.properties.contains(coord(TSKey::EXIF_DATE)->key)) return false;
    const auto wished = date(TSKey::EXIF_DATE);
    if (initialDate.has_value() != wished.has_value()) return true;
    return initialDate && *initialDate != *wished;
}

bool UserSettings::isLocationChanged() const {
    if (!finalLoc) return false;
    const std::optional<GeoLocation> initial = initialLoc ? initialLoc->location : std::nullopt;
    return finalLoc->location != initial;
}

QString UserSettings::locationText(bool multiple) const {
    if (multiple && (!finalLoc || !isLocationChanged())) return QStringLiteral("Unchanged");
    const std::optional<HRLocation>& shown = finalLoc ? finalLoc : initialLoc;
    if (shown && shown->title && !shown->title->isEmpty()) return *shown->title;
    if (shown && shown->location) return hrl::coordinatesText(*shown->location, true).value_or(QString());
    return QStringLiteral("No location data in image");
}

QString UserSettings::rotationText() const {
    if (!finalOrientation || finalOrientation == initialOrientation) return QStringLiteral("Unchanged");
    const QString meaning = TSMeanings::shared().meaning(kCGImagePropertyTIFFOrientation, qint64(*finalOrientation), true);
    return normalised(meaning == QLatin1String("-vv-") || meaning == QString::number(*finalOrientation)
                          ? QStringLiteral("Unknown") : meaning);
}

void UserSettings::dropDateWishes() {
    dropWishes(EditKeys::dateKeys());
    dropWishes(EditKeys::timeKeys());
}

void UserSettings::dropWishes(const QList<TSKey>& keys) {
    for (TSKey k : keys)
        if (const auto c = coord(k)) properties.properties.remove(c->key);
}

void UserSettings::setLocation(const HRLocation& location) {
    finalLoc = location;
    disclosureChanged = true;
}

void UserSettings::setOrientation(int orientation) {
    finalOrientation = orientation;
    disclosureChanged = true;
}

void UserSettings::saveRecents() const {
    recents::saveRecents(date(TSKey::EXIF_DATE), date(TSKey::EXIF_DIGITIZED_DATE), finalLoc ? finalLoc : initialLoc);
}
