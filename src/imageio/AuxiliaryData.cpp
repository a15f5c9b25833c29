// SPDX-License-Identifier: GPL-3.0-or-later
#include "AuxiliaryData.h"

#include "ImageProperties.h"
#include "XmpPacket.h"

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <QImageReader>
#include <QXmlStreamReader>
#include <libheif/heif.h>
#include <cstring>
#include <memory>

namespace imageio {
namespace {

// A hostile header may claim any size; no camera's map comes near this many samples.
constexpr qint64 maxSamples = qint64(1) << 28;

const QString apdiNs = QStringLiteral("http://ns.apple.com/pixeldatainfo/1.0/");
const QString depthDataNs = QStringLiteral("http://ns.apple.com/depthData/1.0/");
const QString appleGainMapNs = QStringLiteral("http://ns.apple.com/HDRGainMap/1.0/");
const QString adobeGainMapNs = QStringLiteral("http://ns.adobe.com/hdr-gain-map/1.0/");

quint32 readU32(const char* p, bool bigEndian) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return bigEndian ? quint32(u[0]) << 24 | quint32(u[1]) << 16 | quint32(u[2]) << 8 | u[3]
                     : quint32(u[3]) << 24 | quint32(u[2]) << 16 | quint32(u[1]) << 8 | u[0];
}
quint16 readU16(const char* p, bool bigEndian) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return bigEndian ? quint16(u[0] << 8 | u[1]) : quint16(u[1] << 8 | u[0]);
}

// The marker segments of a JPEG before its scan: each call gives the marker and the payload.
// Hand-written because neither exiv2 nor Qt hands out the segments of an arbitrary stream.
template <typename Visit>
void forEachSegment(const QByteArray& jpeg, Visit visit) {
    const qsizetype n = jpeg.size();
    if (n < 4 || quint8(jpeg[0]) != 0xFF || quint8(jpeg[1]) != 0xD8) return;
    qsizetype pos = 2;
    while (pos + 4 <= n) {
        if (quint8(jpeg[pos]) != 0xFF) return;
        const quint8 marker = quint8(jpeg[pos + 1]);
        if (marker == 0xFF) {  // fill byte
            ++pos;
            continue;
        }
        if (marker == 0xD9 || marker == 0xDA) return;  // the scan: no more metadata segments
        const qsizetype length = readU16(jpeg.constData() + pos + 2, true);
        if (length < 2 || pos + 2 + length > n) return;
        if (!visit(marker, QByteArrayView(jpeg.constData() + pos + 4, length - 2))) return;
        pos += 2 + length;
    }
}

QByteArray jpegXmp(const QByteArray& jpeg) {
    static const QByteArray signature("http://ns.adobe.com/xap/1.0/\0", 29);
    QByteArray xmp;
    forEachSegment(jpeg, [&](quint8 marker, QByteArrayView payload) {
        if (marker == 0xE1 && payload.startsWith(signature)) {
            xmp = payload.sliced(signature.size()).toByteArray();
            return false;
        }
        return true;
    });
    return xmp;
}

// Every simple property of an XMP packet, as attribute or as element text, keyed by namespace
// and name. Enough for the few role and range fields read here.
QHash<QString, QString> xmpProperties(const QByteArray& xmp) {
    QHash<QString, QString> props;
    QXmlStreamReader reader(xmp);
    QString key, text;  // the innermost open element and its text so far
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::Invalid) {
        if (reader.isStartElement()) {
            for (const QXmlStreamAttribute& a : reader.attributes())
                props.insert(a.namespaceUri().toString() + a.name().toString(), a.value().toString());
            key = reader.namespaceUri().toString() + reader.name().toString();
            text.clear();
        } else if (reader.isCharacters()) {
            text += reader.text();
        } else if (reader.isEndElement()) {
            if (!key.isEmpty() && !text.trimmed().isEmpty()) props.insert(key, text.trimmed());
            key.clear();
            text.clear();
        }
    }
    return props;
}

bool hasNamespace(const QHash<QString, QString>& props, const QString& ns) {
    for (auto it = props.keyBegin(); it != props.keyEnd(); ++it)
        if (it->startsWith(ns)) return true;
    return false;
}

// Apple's type names ("urn:com:apple:photo:2019:aux:semanticskinmatte"), the MPEG depth types,
// and the ISO gain map.
std::optional<AuxiliaryDataType> typeFromUrn(const QString& urn) {
    const QString u = urn.toLower();
    if (u.isEmpty()) return {};
    if (u.contains("portraiteffectsmatte")) return AuxiliaryDataType::PortraitEffectsMatte;
    if (u.contains("hdrgainmap") || u.startsWith("urn:iso:std:iso:ts:21496")) return AuxiliaryDataType::HDRGainMap;
    if (u.contains("semanticglassesmatte")) return AuxiliaryDataType::SemanticSegmentationGlassesMatte;
    if (u.contains("semantichairmatte")) return AuxiliaryDataType::SemanticSegmentationHairMatte;
    if (u.contains("semanticskinmatte")) return AuxiliaryDataType::SemanticSegmentationSkinMatte;
    if (u.contains("semanticskymatte")) return AuxiliaryDataType::SemanticSegmentationSkyMatte;
    if (u.contains("semanticteethmatte")) return AuxiliaryDataType::SemanticSegmentationTeethMatte;
    if (u == "disparity") return AuxiliaryDataType::Disparity;
    if (u == "depth" || u == "urn:mpeg:hevc:2015:auxid:2" || u == "urn:mpeg:mpegb:cicp:systems:auxiliary:depth")
        return AuxiliaryDataType::Depth;
    return {};
}

// What an auxiliary image's own XMP says it is; the subtype refines a generic type.
std::optional<AuxiliaryDataType> typeFromXmp(const QHash<QString, QString>& props) {
    if (auto sub = typeFromUrn(props.value(apdiNs + "AuxiliaryImageSubType"))) return sub;
    if (auto type = typeFromUrn(props.value(apdiNs + "AuxiliaryImageType"))) return type;
    if (hasNamespace(props, appleGainMapNs) || hasNamespace(props, adobeGainMapNs)) return AuxiliaryDataType::HDRGainMap;
    return {};
}

QString fourCC(quint32 code) {
    QString s;
    for (int shift = 24; shift >= 0; shift -= 8) s += QChar(char((code >> shift) & 0xFF));
    return s;
}

// The value range and native sample type of a depth or disparity map, from Apple's XMP.
void fillDepthDescription(AuxiliaryDataInfo& info, const QHash<QString, QString>& props) {
    if (info.type != AuxiliaryDataType::Depth && info.type != AuxiliaryDataType::Disparity) return;
    const bool disparity = info.type == AuxiliaryDataType::Disparity;
    bool ok = false;
    const quint32 native = props.value(apdiNs + "NativeFormat").toUInt(&ok);
    const QString type = ok ? fourCC(native) : QString();
    info.depthDataType = (type == "hdis" || type == "fdis" || type == "hdep" || type == "fdep")
                             ? type
                             : QString(disparity ? "fdis" : "fdep");
    const double lo = props.value(apdiNs + "FloatMinValue").toDouble(&ok);
    if (ok) info.minValue = lo;
    const double hi = props.value(apdiNs + "FloatMaxValue").toDouble(&ok);
    if (ok) info.maxValue = hi;
    info.filtered = props.value(depthDataNs + "Filtered").compare("true", Qt::CaseInsensitive) == 0;
}

// An embedded JPEG or PNG decoded to one channel of 8 (or, for 16-bit grey, 16) bits.
bool decodeGrey(const QByteArray& stream, AuxiliaryDataInfo& info) {
    QBuffer buffer;
    buffer.setData(stream);
    QImageReader reader(&buffer);
    reader.setAutoTransform(false);
    const QSize size = reader.size();
    if (!size.isValid() || size.isEmpty() || qint64(size.width()) * size.height() > maxSamples) return false;
    QImage image = reader.read();
    if (image.isNull()) return false;
    const bool wide = image.format() == QImage::Format_Grayscale16;
    image = image.convertToFormat(wide ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    info.width = image.width();
    info.height = image.height();
    info.bitsPerSample = wide ? 16 : 8;
    info.bytesPerRow = info.width * info.bytesPerSample();
    info.data.resize(qsizetype(info.bytesPerRow) * info.height);
    for (int y = 0; y < info.height; ++y)
        std::memcpy(info.data.data() + qsizetype(y) * info.bytesPerRow, image.constScanLine(y), size_t(info.bytesPerRow));
    return true;
}

// The images of Google's container directory (depth maps, gain maps): they follow one another
// at the end of the file, so each starts where the lengths of those behind it say.
std::vector<std::pair<MpfImage, AuxiliaryDataType>> containerImages(const QByteArray& jpeg) {
    const std::optional<XmpPacket> xmp = parseXmpPacket(jpegXmp(jpeg));
    const std::vector<ContainerItem> items = xmp ? containerDirectory(*xmp) : std::vector<ContainerItem>();
    std::vector<std::pair<MpfImage, AuxiliaryDataType>> found;
    qsizetype end = jpeg.size();
    for (size_t k = items.size(); k-- > 1;) {
        bool lengthOk = false, paddingOk = false;
        const qsizetype length = items[k].length.value_or(QString()).toLongLong(&lengthOk);
        const qsizetype padding = items[k].padding.value_or(QStringLiteral("0")).toLongLong(&paddingOk);
        if (!lengthOk || !paddingOk || length <= 0 || padding < 0 || padding > end || length > end - padding) break;
        end -= padding + length;
        std::optional<AuxiliaryDataType> type;
        if (items[k].semantic == u"GainMap") type = AuxiliaryDataType::HDRGainMap;
        else if (items[k].semantic == u"Depth") type = AuxiliaryDataType::Depth;
        if (type) found.insert(found.begin(), {MpfImage{end, length}, *type});
    }
    return found;
}

std::optional<AuxiliaryDataInfo> jpegAuxiliary(const QByteArray& bytes, AuxiliaryDataType wanted) {
    std::vector<std::pair<MpfImage, AuxiliaryDataType>> candidates;
    const std::vector<MpfImage> images = mpfImages(bytes);
    for (const MpfImage& image : images) {
        if (image.offset == 0) continue;  // the primary image
        if (auto type = typeFromXmp(xmpProperties(jpegXmp(bytes.mid(image.offset, image.size)))))
            candidates.emplace_back(image, *type);
    }
    if (candidates.empty()) candidates = containerImages(bytes);
    for (const auto& [image, type] : candidates) {
        if (type != wanted) continue;
        AuxiliaryDataInfo info;
        info.type = type;
        info.encoded = bytes.mid(image.offset, image.size);
        info.encodedMime = info.encoded.startsWith("\x89PNG") ? "image/png" : "image/jpeg";
        if (!decodeGrey(info.encoded, info)) return {};
        fillDepthDescription(info, xmpProperties(jpegXmp(info.encoded)));
        // The maps are stored in the primary image's frame: its orientation turns them too.
        if (auto props = readProperties(bytes)) {
            const int orientation = props->value("Orientation").toInt();
            if (orientation >= 2 && orientation <= 8) info.orientation = orientation;
        }
        return info;
    }
    return {};
}

using HeifContext = std::unique_ptr<heif_context, decltype(&heif_context_free)>;
using HeifHandle = std::unique_ptr<heif_image_handle, decltype(&heif_image_handle_release)>;

QByteArray heifXmp(heif_image_handle* handle) {
    const int count = heif_image_handle_get_number_of_metadata_blocks(handle, "mime");
    if (count <= 0) return {};
    std::vector<heif_item_id> ids(static_cast<size_t>(count));
    heif_image_handle_get_list_of_metadata_block_IDs(handle, "mime", ids.data(), count);
    for (heif_item_id id : ids) {
        const size_t size = heif_image_handle_get_metadata_size(handle, id);
        if (size == 0 || size > (size_t(1) << 24)) continue;
        QByteArray xmp(qsizetype(size), Qt::Uninitialized);
        if (heif_image_handle_get_metadata(handle, id, xmp.data()).code == heif_error_Ok) return xmp;
    }
    return {};
}

bool decodeHeifGrey(heif_image_handle* handle, AuxiliaryDataInfo& info) {
    const int w = heif_image_handle_get_width(handle), h = heif_image_handle_get_height(handle);
    if (w <= 0 || h <= 0 || qint64(w) * h > maxSamples) return false;
    heif_image* raw = nullptr;
    if (heif_decode_image(handle, &raw, heif_colorspace_monochrome, heif_chroma_monochrome, nullptr).code !=
        heif_error_Ok)
        return false;
    std::unique_ptr<heif_image, decltype(&heif_image_release)> image(raw, heif_image_release);
    int stride = 0;
    const uint8_t* plane = heif_image_get_plane_readonly(image.get(), heif_channel_Y, &stride);
    const int pw = heif_image_get_width(image.get(), heif_channel_Y);
    const int ph = heif_image_get_height(image.get(), heif_channel_Y);
    const int bits = heif_image_get_bits_per_pixel_range(image.get(), heif_channel_Y);
    if (!plane || pw <= 0 || ph <= 0 || bits < 1 || bits > 16) return false;
    info.width = pw;
    info.height = ph;
    info.bitsPerSample = bits;
    info.bytesPerRow = pw * info.bytesPerSample();
    if (stride < info.bytesPerRow) return false;
    info.data.resize(qsizetype(info.bytesPerRow) * ph);
    for (int y = 0; y < ph; ++y)
        std::memcpy(info.data.data() + qsizetype(y) * info.bytesPerRow, plane + qsizetype(y) * stride,
                    size_t(info.bytesPerRow));
    return true;
}

std::optional<AuxiliaryDataInfo> heifAuxiliary(const QByteArray& bytes, AuxiliaryDataType wanted) {
    HeifContext ctx(heif_context_alloc(), heif_context_free);
    if (heif_context_read_from_memory_without_copy(ctx.get(), bytes.constData(), size_t(bytes.size()), nullptr).code !=
        heif_error_Ok)
        return {};
    heif_image_handle* rawPrimary = nullptr;
    if (heif_context_get_primary_image_handle(ctx.get(), &rawPrimary).code != heif_error_Ok) return {};
    HeifHandle primary(rawPrimary, heif_image_handle_release);

    const int count = heif_image_handle_get_number_of_auxiliary_images(primary.get(), LIBHEIF_AUX_IMAGE_FILTER_OMIT_ALPHA);
    if (count <= 0) return {};
    std::vector<heif_item_id> ids(static_cast<size_t>(count));
    heif_image_handle_get_list_of_auxiliary_image_IDs(primary.get(), LIBHEIF_AUX_IMAGE_FILTER_OMIT_ALPHA, ids.data(),
                                                      count);
    for (heif_item_id id : ids) {
        heif_image_handle* rawAux = nullptr;
        if (heif_image_handle_get_auxiliary_image_handle(primary.get(), id, &rawAux).code != heif_error_Ok) continue;
        HeifHandle aux(rawAux, heif_image_handle_release);
        const char* urn = nullptr;
        if (heif_image_handle_get_auxiliary_type(aux.get(), &urn).code != heif_error_Ok) continue;
        const QString urnText = QString::fromUtf8(urn ? urn : "");
        heif_image_handle_free_auxiliary_types(aux.get(), &urn);
        std::optional<AuxiliaryDataType> type = typeFromUrn(urnText);
        if (!type) continue;
        const QHash<QString, QString> props = xmpProperties(heifXmp(aux.get()));
        if (*type == AuxiliaryDataType::Depth) {
            // The MPEG depth type covers disparity too: the map's own XMP or its representation
            // tells them apart.
            if (auto refined = typeFromXmp(props)) type = refined;
            const heif_depth_representation_info* repr = nullptr;
            if (heif_image_handle_get_depth_image_representation_info(primary.get(), id, &repr) && repr) {
                if (!props.contains(apdiNs + "AuxiliaryImageType") &&
                    (repr->depth_representation_type == heif_depth_representation_type_uniform_disparity ||
                     repr->depth_representation_type == heif_depth_representation_type_nonuniform_disparity))
                    type = AuxiliaryDataType::Disparity;
                heif_depth_representation_info_free(repr);
            }
        }
        if (*type != wanted) continue;
        AuxiliaryDataInfo info;
        info.type = *type;
        // libheif turns and mirrors the samples as the item says while decoding.
        if (!decodeHeifGrey(aux.get(), info)) return {};
        fillDepthDescription(info, props);
        return info;
    }
    return {};
}

}  // namespace

std::vector<MpfImage> mpfImages(const QByteArray& jpeg) {
    std::vector<MpfImage> images;
    qsizetype headerAt = -1;  // offsets count from the MPF segment's TIFF header
    QByteArrayView tiff;
    forEachSegment(jpeg, [&](quint8 marker, QByteArrayView payload) {
        if (marker == 0xE2 && payload.size() >= 12 && payload.startsWith(QByteArrayView("MPF\0", 4))) {
            tiff = payload.sliced(4);
            headerAt = tiff.data() - jpeg.constData();
            return false;
        }
        return true;
    });
    if (headerAt < 0 || tiff.size() < 8) return images;
    const char* t = tiff.data();
    const qsizetype tn = tiff.size();
    bool big;
    if (std::memcmp(t, "MM\0*", 4) == 0) big = true;
    else if (std::memcmp(t, "II*\0", 4) == 0) big = false;
    else return images;
    const qint64 ifd = readU32(t + 4, big);
    if (ifd < 8 || ifd + 2 > tn) return images;
    const int entries = readU16(t + ifd, big);
    for (int i = 0; i < entries; ++i) {
        const qint64 e = ifd + 2 + qint64(i) * 12;
        if (e + 12 > tn) break;
        if (readU16(t + e, big) != 0xB002) continue;  // the MP entry list
        const qint64 count = readU32(t + e + 4, big);
        const qint64 at = count > 4 ? qint64(readU32(t + e + 8, big)) : e + 8;
        if (count % 16 != 0 || at < 0 || at + count > tn) break;
        for (qint64 k = 0; k < count / 16; ++k) {
            const char* entry = t + at + k * 16;
            const qint64 size = readU32(entry + 4, big);
            const qint64 offset = readU32(entry + 8, big);
            // The primary image's offset is 0 and means the start of the file.
            const qint64 start = k == 0 ? 0 : headerAt + offset;
            if (size <= 0 || (k > 0 && offset == 0) || start + size > jpeg.size()) continue;
            images.push_back({qsizetype(start), qsizetype(size)});
        }
        break;
    }
    return images;
}

std::optional<AuxiliaryDataInfo> auxiliaryDataInfo(const QByteArray& bytes, AuxiliaryDataType type) {
    switch (detectFormat(bytes)) {
    case Format::Jpeg: return jpegAuxiliary(bytes, type);
    case Format::Heif:
    case Format::Avif: return heifAuxiliary(bytes, type);
    default: return {};
    }
}

}  // namespace imageio
