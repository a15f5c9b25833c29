// SPDX-License-Identifier: GPL-3.0-or-later
#include "DetailTableModel.h"

#include "ModuleTexts.h"
#include "TSPhotoAlbum.h"

#include "Formatter.h"
#include "HRLocation.h"
#include "Log.h"
#include "Settings.h"
#include "TSMetaDataGetters.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLocale>
#include <QRegularExpression>

namespace {

const QList<TSKey>& itemRows(bool video) { return video ? TSKeys::videoRows() : TSKeys::photoRows(); }

QString kindOf(int row, TSKey key) {
    if (row == 0) return QStringLiteral("date");
    if (row == 1) return QStringLiteral("location");
    switch (key) {
    case TSKey::BADGES: return QStringLiteral("badges");
    case TSKey::DETAILS_STACK: return QStringLiteral("stack");
    case TSKey::SIZES: return QStringLiteral("sizes");
    case TSKey::MAP: return QStringLiteral("map");
    case TSKey::SEPARATOR: return QStringLiteral("separator");
    default: return QStringLiteral("details");
    }
}

// The store writes its numbers as the tool prints them, with a point; the screen shows them in the
// user's locale ("ƒ/7,1", "0,3MP" in German). Only figures the store made pass here, never a
// tag's own text such as a lens name.
QString inLocale(const QString& text) {
    const QString point = QLocale().decimalPoint();
    if (point == u'.') return text;
    static const QRegularExpression decimal(QStringLiteral("(\\d)\\.(\\d)"));
    return QString(text).replace(decimal, "\\1" + point + "\\2");
}

// Library subtype bits of videos.
constexpr int videoSlowMotion = 0x20000;
constexpr int videoTimelapse = 0x40000;

}  // namespace

DetailTableModel::DetailTableModel(QObject* parent) : QAbstractListModel(parent) {
    TSEnvironment::observable().addObserver(this);
}

const TSDataStore& DetailTableModel::store() const { return asset_ ? asset_->ddStore() : empty_; }

bool DetailTableModel::isVideo() const { return asset_ && asset_->isVideo(); }

TSKey DetailTableModel::key(int row) const {
    if (row == 0) return TSKey::EXIF_DATE;
    if (row == 1) return TSKey::EXIF_LOCATION;
    const QList<TSKey>& keys = itemRows(isVideo());
    return row - 2 < keys.size() ? keys[row - 2] : TSKey::SEPARATOR;
}

void DetailTableModel::reload() {
    beginResetModel();
    album_ = TSEnvironment::currentAlbum();
    asset_ = album_->currentAsset;
    if (!asset_) {
        rows_ = 0;
    } else if (album_->needDownload()) {
        rows_ = 2;
    } else {
        // Without a location the trailing map and its separator go.
        rows_ = int(itemRows(isVideo()).size()) + 2 - (store().location ? 0 : 2);
    }
    endResetModel();
    Log::debug("detail rows: " + QString::number(rows_));
}

void DetailTableModel::processedMetaData(const std::shared_ptr<TSAlbum>&) { reload(); }

void DetailTableModel::rowsChanged() {
    const auto asset = TSEnvironment::currentAlbum()->currentAsset;
    if (asset && asset->ddStore().completed) reload();
}

int DetailTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows_; }

QList<DetailTableModel::Badge> DetailTableModel::badges(const TSDataStore& store, const TSAlbum& album) {
    if (album.needDownload()) return {Badge{QStringLiteral("icloud.and.arrow.down"), {}}};
    static const QStringList metering{
        "camera.metering.unknown", "camera.metering.center.weighted.average", "camera.metering.center.weighted",
        "camera.metering.spot",    "camera.metering.multispot",               "camera.metering.matrix",
        "camera.metering.partial",
    };
    const bool video = store.mediaType == MediaType::video;
    const int mask = store.mediaSubtypes().mask.value_or(0);
    QList<Badge> out;
    if (auto flash = store.isFlashOn()) out << Badge{*flash ? "bolt" : "bolt.slash", {}};
    if (!video && (mask & MediaSubtype::photoLive)) out << Badge{"livephoto", {}};
    if (video && (mask & videoTimelapse)) out << Badge{"timelapse", {}};
    if (video && (mask & videoSlowMotion)) out << Badge{"slowmo", {}};
    if (auto m = store.meteringIndex(); m && *m >= 0 && *m < metering.size()) out << Badge{metering[*m], {}};
    if (mask & MediaSubtype::photoDepthEffect) out << Badge{"person.crop.circle", {}};
    if (store.value(TSKey::NightMode).first == "Y") out << Badge{"moon.fill", {}};
    if (!video && (mask & MediaSubtype::photoHDR)) out << Badge{{}, "HDR"};
    if (store.isAutoWhiteBalance().value_or(false)) out << Badge{{}, "AWB"};
    // In a burst album the item that stands for the burst has the filled star.
    if (album.isBurst()) {
        const auto* photos = dynamic_cast<const TSPhotoAlbum*>(&album);
        const library::Asset* asset = photos ? photos->currentLibraryAsset() : nullptr;
        out << Badge{asset && asset->representsBurst ? "star.fill" : "star", {}};
    }
    if (video) out << Badge{"forward.frame", {}};
    return out;
}

QVariant DetailTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() < 0 || index.row() >= rows_) return {};
    const int row = index.row();
    const TSKey k = key(row);
    const TSDataStore& s = store();
    switch (role) {
    case KindRole: return kindOf(row, k);
    case KeyRole: return rawValue(k);
    case LabelRole: return moduletexts::tagLabel(rawValue(k));
    case ValueRole:
        if (row == 1 && !s.hasExifMetadata && !isVideo())
            return '\n' + QCoreApplication::translate("DetailTableModel", "This image has no exif tags");
        // The store names a screenshot's camera so.
        if (k == TSKey::CAMERA && s.value(k).first == QLatin1String("Screenshot"))
            return QCoreApplication::translate("DetailTableModel", "Screenshot");
        return s.value(k).first;
    case AlphaRole:
        if (row == 1 && !s.hasExifMetadata && !isVideo()) return 0.5;
        return s.value(k).second;
    case CollapsedRole:
        return kindOf(row, k) == "details" && Settings::flag(SettingsFlag::hideEmptyTags) && s.value(k).first == "--";
    case InfoMarkRole:
        if (row == 0) return s.datesDisagree();
        if (row == 1) return s.locationsDisagree();
        return false;
    case StackRole: {
        const QString focal35 = s.value(TSKey::FOCAL_LENGTH_35).first;
        return QStringList{" ISO " + s.value(TSKey::ISO_SPEED).first,
                           inLocale(focal35 == "--" ? s.value(TSKey::FOCAL_LENGTH).first : focal35),
                           inLocale(s.value(TSKey::EXPOSURE_BIAS).first), inLocale(s.value(TSKey::APERTURE).first),
                           inLocale(s.value(TSKey::EXPOSURE_TIME).first)};
    }
    case FocalAccentRole: return s.value(TSKey::FOCAL_LENGTH_35).first != s.value(TSKey::FOCAL_LENGTH).first;
    case FileNameRole: return s.value(TSKey::NAME).first;
    case FileTypeRole: return s.value(TSKey::FILETYPE).first;
    case SizesRole:
        return inLocale(QStringList{s.value(TSKey::FILE_SIZE).first, s.value(TSKey::WxH).first,
                                    s.value(TSKey::ASPECT_RATIO).first}
                            .join(QStringLiteral("  ·  ")));
    case BadgesRole: {
        QVariantList list;
        if (album_)
            for (const Badge& b : badges(s, *album_)) list.append(QVariantMap{{"symbol", b.symbol}, {"text", b.text}});
        return list;
    }
    case CoordinateRole:
        return s.location ? hrl::coordinatesText(*s.location, true).value_or(QString()) : QString();
    case MapPlaceRole: return mapPlace();
    default: return {};
    }
}

QVariantMap DetailTableModel::mapPlace() const {
    const TSDataStore& s = store();
    if (!s.location) return {};
    // The pin's title: the short place name, else the coordinate on one line.
    const QString title = s.placemark ? shortPlaceText(*s.placemark)
                                      : hrl::coordinatesText(*s.location, false).value_or(QString()).replace('\n', ' ');
    QVariantMap place{{"latitude", s.location->coordinate.latitude},
                      {"longitude", s.location->coordinate.longitude},
                      {"title", title}};
    if (asset_)
        if (const auto heading = facingGraAngle(asset_->metaData())) place.insert("heading", *heading);
    return place;
}

QHash<int, QByteArray> DetailTableModel::roleNames() const {
    return {{KindRole, "kind"},           {KeyRole, "key"},           {LabelRole, "label"},
            {ValueRole, "value"},         {AlphaRole, "alpha"},       {CollapsedRole, "collapsed"},
            {InfoMarkRole, "infoMark"},   {StackRole, "stack"},       {FocalAccentRole, "focalAccent"},
            {FileNameRole, "fileName"},   {FileTypeRole, "fileType"}, {SizesRole, "sizes"},
            {BadgesRole, "badges"},       {CoordinateRole, "coordinate"}, {MapPlaceRole, "mapPlace"}};
}

QStringList DetailTableModel::sources(int row) const {
    QStringList out;
    const TSDataStore& s = store();
    if (row == 0) {
        for (auto it = s.dates.dict.begin(); it != s.dates.dict.end(); ++it)
            if (it.value()) out << "From " + it.key() + ":\n" + Formatter::format(*it.value(), Formatter::Style::fullDate);
    } else if (row == 1) {
        for (auto it = s.locations.dict.begin(); it != s.locations.dict.end(); ++it)
            if (it.value()) out << "From " + it.key() + ":\n" + hrl::coordinatesText(*it.value(), true).value_or("--");
    }
    return out;
}

QString DetailTableModel::focalLengthText() const {
    return "Focal Length: " + inLocale(store().value(TSKey::FOCAL_LENGTH).first) + "\n35 mm equiv.: " +
           inLocale(store().value(TSKey::FOCAL_LENGTH_35).first);
}

void DetailTableModel::copy() const { QGuiApplication::clipboard()->setText(store().detailsText()); }
