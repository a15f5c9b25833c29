// SPDX-License-Identifier: GPL-3.0-or-later
#include "IptcKeys.h"

namespace iptc {

QString sectionTitle(IptcSections section) {
    switch (section) {
    case IptcSections::content: return QStringLiteral("Content");
    case IptcSections::creator: return QStringLiteral("Creator");
    case IptcSections::rights: return QStringLiteral("Rights");
    case IptcSections::location: return QStringLiteral("Location");
    case IptcSections::media: return QStringLiteral("Media");
    }
    return {};
}

QString fieldName(TSKey key) {
    QString label = rawValue(key);
    if (label.endsWith(':')) label.chop(1);
    return label;
}

std::optional<TSKey> contactKey(const QString& name) {
    using enum TSKey;
    static const QList<std::pair<TSKey, QString>> names{
        {IPTC_CREATOR_CONTACT_INFO_ADDRESS, "ADDRESS"}, {IPTC_CREATOR_CONTACT_INFO_CITY, "CITY"},
        {IPTC_CREATOR_CONTACT_INFO_POSTAL_CODE, "POSTAL_CODE"}, {IPTC_CREATOR_CONTACT_INFO_REGION, "REGION"},
        {IPTC_CREATOR_CONTACT_INFO_COUNTRY, "COUNTRY"}, {IPTC_CREATOR_CONTACT_INFO_EMAILS, "EMAILS"},
        {IPTC_CREATOR_CONTACT_INFO_PHONES, "PHONES"}, {IPTC_CREATOR_CONTACT_INFO_URLS, "URLS"}};
    for (const auto& [key, suffix] : names)
        if (name == QStringLiteral("IPTC_CREATOR_CONTACT_INFO_") + suffix || name == coord(key)->key) return key;
    return std::nullopt;
}

}  // namespace iptc
