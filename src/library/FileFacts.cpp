// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileFacts.h"

#include "FileBytes.h"
#include "ImageProperties.h"
#include "MovieReader.h"
#include "PropertyKeys.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTimeZone>
#include <atomic>
#include <openssl/evp.h>

namespace library {

namespace {

// The platform's maker-note tags of iPhone photos, by number.
constexpr char appleHDRImageType[] = "10";
constexpr char appleBurstUUID[] = "11";
constexpr char appleContentIdentifier[] = "17";

// EXIF's CustomRendered values that cameras use for these kinds of photo.
constexpr int renderedHDR = 3, renderedHDRNoOriginal = 2, renderedPanorama = 6, renderedPortraitHDR = 7,
              renderedPortrait = 8;

// The names of photos and movies. Other files are left alone even when they hold a picture: a
// camera's .THM beside its movie, an editor's "jpg_original" backup, a GoPro's .LRV proxy.
const QStringList rawExtensions{"dng", "cr2", "cr3", "crw", "nef", "nrw", "arw", "srf", "sr2", "orf",
                                "rw2", "rwl", "raf", "pef", "srw", "3fr", "iiq", "erf", "kdc", "mos"};
const QStringList imageExtensions{"jpg", "jpeg", "jpe", "heic", "heif", "hif", "avif", "png", "tif", "tiff", "webp"};
const QStringList movieExtensions{"mov", "qt", "mp4", "m4v", "3gp", "3g2"};

// What a file is, by its name, for a file whose bytes don't say.
FileKind kindByName(const QString& path) {
    const QString ext = QFileInfo(path).suffix().toLower();
    return rawExtensions.contains(ext) ? FileKind::raw : movieExtensions.contains(ext) ? FileKind::video : FileKind::image;
}

// What a file is, by its first bytes. Canon CR3 and Fujifilm RAF have containers of their own;
// the TIFF family holds raw files that say so in their header (Canon CR2, Olympus ORF, Panasonic
// RW2) and DNG, NEF, ARW and the like with a plain TIFF header, which only a plain TIFF name
// tells from a picture.
std::optional<FileKind> kindByBytes(const QByteArray& head, const QString& path) {
    switch (imageio::detectFormat(head)) {
    case imageio::Format::Unknown: return std::nullopt;
    case imageio::Format::Movie: return FileKind::video;
    case imageio::Format::Cr3: case imageio::Format::Raf: return FileKind::raw;
    case imageio::Format::Tiff: {
        const bool plainHeader = head.startsWith("II*") || head.startsWith(QByteArray("MM\0*", 4));
        const bool rawHeader = !plainHeader || head.mid(8, 2) == "CR";
        const QString ext = QFileInfo(path).suffix().toLower();
        return rawHeader || (ext != QLatin1String("tif") && ext != QLatin1String("tiff")) ? FileKind::raw : FileKind::image;
    }
    default: return FileKind::image;
    }
}

// "yyyy:MM:dd HH:mm:ss" with an optional "+hh:mm" offset; without one it is local time.
void setDate(FileFacts& facts, const QString& text, const QString& offsetText) {
    QDateTime local = QDateTime::fromString(text.left(19), QStringLiteral("yyyy:MM:dd HH:mm:ss"));
    if (!local.isValid()) return;
    static const QRegularExpression offsetRe(QStringLiteral(R"(^([+-])(\d{2}):(\d{2})$)"));
    auto m = offsetRe.match(offsetText.trimmed());
    if (m.hasMatch()) {
        int seconds = (m.captured(2).toInt() * 60 + m.captured(3).toInt()) * 60 * (m.captured(1) == "-" ? -1 : 1);
        local.setTimeZone(QTimeZone(seconds));
        facts.offset = seconds;
    }
    facts.date = local.toMSecsSinceEpoch();
}

void readImage(const imageio::PropertyDict& props, FileFacts& facts) {
    using namespace imageio;
    const QVariantMap exif = props.value(kCGImagePropertyExifDictionary).toMap();
    const QVariantMap tiff = props.value(kCGImagePropertyTIFFDictionary).toMap();
    const QVariantMap gps = props.value(kCGImagePropertyGPSDictionary).toMap();
    const QVariantMap apple = props.value(kCGImagePropertyMakerAppleDictionary).toMap();

    facts.width = props.value(kCGImagePropertyPixelWidth).toInt();
    facts.height = props.value(kCGImagePropertyPixelHeight).toInt();
    // Sizes are as shown: a photo turned by a quarter shows its sides swapped.
    if (props.value(kCGImagePropertyOrientation).toInt() >= 5) std::swap(facts.width, facts.height);

    if (exif.contains(kCGImagePropertyExifDateTimeOriginal))
        setDate(facts, exif.value(kCGImagePropertyExifDateTimeOriginal).toString(),
                exif.value(kCGImagePropertyExifOffsetTimeOriginal).toString());
    else if (exif.contains(kCGImagePropertyExifDateTimeDigitized))
        setDate(facts, exif.value(kCGImagePropertyExifDateTimeDigitized).toString(),
                exif.value(kCGImagePropertyExifOffsetTimeDigitized).toString());
    else if (tiff.contains(kCGImagePropertyTIFFDateTime))
        setDate(facts, tiff.value(kCGImagePropertyTIFFDateTime).toString(), exif.value(kCGImagePropertyExifOffsetTime).toString());

    bool ok1 = false, ok2 = false;
    double lat = gps.value(kCGImagePropertyGPSLatitude).toDouble(&ok1);
    double lon = gps.value(kCGImagePropertyGPSLongitude).toDouble(&ok2);
    if (ok1 && ok2 && std::isfinite(lat) && std::isfinite(lon) && std::abs(lat) <= 90 && std::abs(lon) <= 180) {
        if (gps.value(kCGImagePropertyGPSLatitudeRef).toString() == "S") lat = -lat;
        if (gps.value(kCGImagePropertyGPSLongitudeRef).toString() == "W") lon = -lon;
        facts.latitude = lat;
        facts.longitude = lon;
        bool ok = false;
        double alt = gps.value(kCGImagePropertyGPSAltitude).toDouble(&ok);
        if (ok && std::isfinite(alt)) facts.altitude = gps.value(kCGImagePropertyGPSAltitudeRef).toInt() == 1 ? -alt : alt;
    }

    const int rendered = exif.value(kCGImagePropertyExifCustomRendered).toInt();
    if (rendered == renderedHDR || rendered == renderedHDRNoOriginal || rendered == renderedPortraitHDR ||
        apple.value(appleHDRImageType).toInt() == 3)
        facts.subtypes |= 1 << 1;
    if (rendered == renderedPanorama) facts.subtypes |= 1 << 0;
    if (rendered == renderedPortrait || rendered == renderedPortraitHDR) facts.subtypes |= 1 << 4;
    if (exif.value(kCGImagePropertyExifUserComment).toString().trimmed() == QLatin1String("Screenshot"))
        facts.subtypes |= 1 << 2;
    // A motion photo carries its movie inside: a live photo of one file.
    if (props.value(kMotionPhotoDictionary).typeId() == QMetaType::QVariantMap) facts.subtypes |= 1 << 3;
    facts.selfie = exif.value(kCGImagePropertyExifLensModel).toString().contains(QLatin1String("front"), Qt::CaseInsensitive);
    facts.burst = apple.value(appleBurstUUID).toString();
    facts.contentIdentifier = apple.value(appleContentIdentifier).toString();
}

// ISO 6709 "+45.4640+009.1900+120.000/".
void setIso6709(FileFacts& facts, const QString& text) {
    static const QRegularExpression re(QStringLiteral(R"(^([+-]\d+(?:\.\d+)?)([+-]\d+(?:\.\d+)?)([+-]\d+(?:\.\d+)?)?)"));
    auto m = re.match(text);
    if (!m.hasMatch()) return;
    double lat = m.captured(1).toDouble(), lon = m.captured(2).toDouble();
    if (std::abs(lat) > 90 || std::abs(lon) > 180) return;
    facts.latitude = lat;
    facts.longitude = lon;
    if (!m.captured(3).isEmpty()) facts.altitude = m.captured(3).toDouble();
}

void readMovie(const media::MovieInfo& movie, FileFacts& facts) {
    facts.duration = movie.duration.value_or(0);
    const auto video = movie.tracksOfType(QStringLiteral("vide"));
    if (!video.isEmpty()) {
        QSizeF size = media::presentationSize(video.first());
        facts.width = int(size.width());
        facts.height = int(size.height());
        // Slow-motion clips are recorded at high frame rates.
        if (video.first().nominalFrameRate.value_or(0) >= 100) facts.subtypes |= 1 << 17;
    }
    for (const auto& item : movie.metadata) {
        if (item.identifier == media::Identifier::quickTimeMetadataCreationDate ||
            (item.commonKey == QLatin1String("creationDate") && !facts.date)) {
            if (auto date = item.dateValue(); date && date->isValid()) {
                facts.date = date->toMSecsSinceEpoch();
                if (date->timeSpec() == Qt::OffsetFromUTC || date->timeSpec() == Qt::UTC) facts.offset = date->offsetFromUtc();
            }
        } else if (item.identifier == media::Identifier::quickTimeMetadataLocationISO6709 ||
                   item.identifier == media::Identifier::quickTimeUserDataLocationISO6709) {
            if (auto text = item.stringValue()) setIso6709(facts, *text);
        } else if (item.key == "com.apple.quicktime.content.identifier") {
            facts.contentIdentifier = item.stringValue().value_or(QString());
        } else if (item.key.contains("timelapse") || item.key.contains("time-lapse")) {
            facts.subtypes |= 1 << 18;
        }
    }
}

}  // namespace

bool hasMediaName(const QString& path) {
    const QString ext = QFileInfo(path).suffix().toLower();
    return imageExtensions.contains(ext) || rawExtensions.contains(ext) || movieExtensions.contains(ext);
}

namespace {
std::atomic<qint64> opened{0};
}  // namespace

qint64 filesReadSoFar() { return opened.load(); }

FileFacts readFileFacts(const QString& path) {
    ++opened;
    FileFacts facts;
    facts.kind = kindByName(path);
    imageio::FilePieces head;
    if (!head.open(path)) return facts;
    // The box of brands that tells a HEIF from a movie ends well within these bytes.
    if (const std::optional<FileKind> kind = kindByBytes(head.head(4096), path)) facts.kind = *kind;
    // The image reader knows no more formats than the probe; the movie reader may.
    else if (facts.kind != FileKind::video) return facts;
    if (facts.kind == FileKind::video) {
        imageio::FileBytes file;
        if (!file.open(path)) return facts;
        if (auto movie = media::readMovie(file.bytes())) {
            facts.kind = FileKind::video;
            facts.readable = true;
            readMovie(*movie, facts);
        }
    } else if (auto props = imageio::readFileProperties(path)) {
        facts.readable = true;
        readImage(*props, facts);
    }
    if (QFileInfo(path).fileName().startsWith(QLatin1String("Screenshot"), Qt::CaseInsensitive) && facts.kind != FileKind::video)
        facts.subtypes |= 1 << 2;
    return facts;
}

QString headHash(const QString& path) {
    ++opened;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return {};
    // OpenSSL's SHA-1 uses the processor's SHA instructions: Qt's took a third of a first scan.
    char head[64 * 1024];
    const qint64 size = file.read(head, sizeof head);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (size < 0 || !EVP_Digest(head, size_t(size), digest, &length, EVP_sha1(), nullptr)) return {};
    return QString::fromLatin1(QByteArray::fromRawData(reinterpret_cast<const char*>(digest), int(length)).toHex());
}

}  // namespace library
