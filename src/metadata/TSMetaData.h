// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The immutable record of one image's property dictionaries, split into the groups the rest of
// the system reads by name. Safe to read from any thread; share it as
// std::shared_ptr<const TSMetaData>.
#include "ImageProperties.h"

#include <QByteArray>
#include <optional>

class TSMetaData {
public:
    using PropertyDict = imageio::PropertyDict;

    // The record of an item whose bytes have not arrived: everything absent or empty.
    TSMetaData() = default;
    // Reads the bytes' properties. Absent or unreadable bytes give the empty record; reading
    // does blocking work, so build it off the GUI thread.
    explicit TSMetaData(const std::optional<QByteArray>& bytes);
    // A record of properties already read.
    static TSMetaData fromProperties(std::optional<PropertyDict> properties);

    // The top-level property dictionary of the bytes, or nothing (logged when the bytes were
    // given but can't be read).
    static std::optional<PropertyDict> metadata(const std::optional<QByteArray>& bytes);

    const std::optional<PropertyDict>& metaDataDic() const { return metaDataDic_; }
    const std::optional<PropertyDict>& exifDic() const { return exifDic_; }
    const std::optional<PropertyDict>& tiffDic() const { return tiffDic_; }
    const std::optional<PropertyDict>& gpsDic() const { return gpsDic_; }
    const std::optional<PropertyDict>& iptcDic() const { return iptcDic_; }
    // Every nested dictionary but {Exif} and {TIFF}, which have sections of their own, plus
    // the top-level scalars again as the group "General" when there are any.
    const PropertyDict& otherGeneralGroupedData() const { return otherGeneralGroupedData_; }
    // The top-level entries that are not dictionaries.
    const PropertyDict& generalData() const { return generalData_; }

    // The grouping without {GPS}; nothing when the grouping is empty.
    std::optional<PropertyDict> otherGroupsWithoutGPS() const;
    // The EXIF orientation as stored (no range check): TIFF's, else the top level's.
    std::optional<qint64> orientation() const;

private:
    void split(std::optional<PropertyDict> properties);

    std::optional<PropertyDict> metaDataDic_;
    std::optional<PropertyDict> exifDic_;
    std::optional<PropertyDict> tiffDic_;
    std::optional<PropertyDict> gpsDic_;
    std::optional<PropertyDict> iptcDic_;
    PropertyDict otherGeneralGroupedData_;
    PropertyDict generalData_;
};
