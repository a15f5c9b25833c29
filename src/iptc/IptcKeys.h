// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Names of the IPTC editor's sections and of the creator contact fields.
#include "TSKey.h"
#include "UserSettings.h"

#include <optional>

namespace iptc {

// "Content", "Creator", "Rights", "Location", "Media".
QString sectionTitle(IptcSections section);
// A row label without the colon some labels carry ("Keywords:" → "Keywords").
QString fieldName(TSKey key);
// A creator contact field by its case name ("IPTC_CREATOR_CONTACT_INFO_CITY") or its property
// key ("CiAdrCity").
std::optional<TSKey> contactKey(const QString& name);

}  // namespace iptc
