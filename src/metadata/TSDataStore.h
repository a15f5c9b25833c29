// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// One item's display rows as ready text, with its best date and location and where each came
// from. Loading fills it; the detail table reads it through value(for:) and never touches a
// property dictionary.
#include "GeoLocation.h"
#include "PlaceLookup.h"
#include "TSKey.h"
#include "TSMetaData.h"

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <memory>
#include <optional>

enum class DataSource { fromAsset, fromExif, fromFile, noData };

enum class MediaType { unknown = 0, image = 1, video = 2, audio = 3 };

// Library subtype bits that the rows read.
namespace MediaSubtype {
inline constexpr int photoHDR = 2;
inline constexpr int photoScreenshot = 4;
inline constexpr int photoLive = 8;
inline constexpr int photoDepthEffect = 16;
}  // namespace MediaSubtype

// Every date and location read, by source name: "Exif Original", "Tiff", "Asset", "GPS",
// "Video Recording".
struct ReadDates {
    QMap<QString, std::optional<QDateTime>> dict;
};
struct ReadLocations {
    QMap<QString, std::optional<GeoLocation>> dict;
};

// The screen that shows the item; told, on the GUI thread, that rows changed.
class Displayer {
public:
    virtual ~Displayer() = default;
    virtual void dataChanged() = 0;
};

// Held by a shared pointer wherever a place look-up may start, so that the look-up can hold
// it weakly and drop its answer when the item is gone.
class TSDataStore : public PlaceReceiver, public std::enable_shared_from_this<TSDataStore> {
public:
    QHash<TSKey, std::optional<QString>> datas;
    bool completed = false;
    bool hasAuxiliaryImage = false;
    MediaType mediaType = MediaType::image;
    std::optional<GeoLocation> location;
    std::optional<Placemark> placemark;
    std::optional<QDateTime> date;
    // The date behind the "Original Date" row, as read rather than as shown.
    std::optional<QDateTime> exifDate;
    DataSource dateSource = DataSource::noData;
    DataSource locationSource = DataSource::noData;
    bool hasExifMetadata = false;
    ReadLocations locations;
    ReadDates dates;
    std::weak_ptr<Displayer> displayDelegate;

    // All rows of a photo.
    void fill(const TSMetaData& metaData);
    // Set if absent: a key already present, even without text, keeps its value.
    void set(TSKey key, const std::optional<QString>& text);
    // The row's text and its alpha: 0.5 dims a value in doubt or not the file's own.
    std::pair<QString, double> value(TSKey key) const;
    // A tag's text from one dictionary, with the current "human" setting, or the given one.
    static std::optional<QString> format(const std::optional<QVariantMap>& dictionary, TSKey tag);
    static std::optional<QString> format(const std::optional<QVariantMap>& dictionary, TSKey tag, bool human);

    void setDate(const QDateTime& date, const QString& source);
    void setPlacemark(const Placemark& placemark) override;
    bool isShown() const override { return !displayDelegate.expired(); }
    void setSizes(std::optional<qint64> width, std::optional<qint64> height);

    // The rows that a library item or a file gives before its bytes are read.
    void setAssetDate(const std::optional<QDateTime>& creationDate);
    void setAssetLocation(const std::optional<GeoLocation>& location);

    struct Subtypes {
        bool ready = false;
        std::optional<int> mask;
        bool isVideo = false;
    };
    Subtypes mediaSubtypes() const;
    std::optional<bool> isFlashOn() const;
    std::optional<int> meteringIndex() const;
    std::optional<bool> isAutoWhiteBalance() const;

    // The short sentence offered when sharing, and the full details text.
    QString summaryText() const;
    QString detailsText() const;
    QString tagLine(TSKey key) const;

    static const QList<TSKey>& stackKeys();

    // At least two dates recorded and one a second or more from the first; locations: a metre.
    bool datesDisagree() const;
    bool locationsDisagree() const;

private:
    std::optional<QString> text(TSKey key) const;
    void tellDisplayer();
    void startPlaceLookup(const GeoLocation& location);
    void fillDates(const TSMetaData& md);
    void fillLocation(const TSMetaData& md);
    void fillSizes(const TSMetaData& md);
    void fillTiff(const TSMetaData& md, bool human);
    void fillExif(const TSMetaData& md, bool human);
    void fillIptc(const TSMetaData& md, bool human);
};

// "JPEG" for "public.jpeg", "RAW" for "com.adobe.raw-image"; "H.264" stays "H.264".
QString typeText(const QString& identifier);
