// SPDX-License-Identifier: GPL-3.0-or-later
#include "MetadataAtoms.h"
#include "MetadataItem.h"

#include <QHash>
#include <QRegularExpression>
#include <QStringDecoder>
#include <cstring>

namespace media {

namespace {

constexpr uchar copyrightSign = 0xA9;

// The common keys, as the platform maps each key space's keys to them.
const QHash<QByteArray, QString>& quickTimeMetadataCommon() {
    static const QHash<QByteArray, QString> map{
        {"com.apple.quicktime.album", "albumName"},
        {"com.apple.quicktime.artist", "artist"},
        {"com.apple.quicktime.artwork", "artwork"},
        {"com.apple.quicktime.author", "author"},
        {"com.apple.quicktime.copyright", "copyrights"},
        {"com.apple.quicktime.creationdate", "creationDate"},
        {"com.apple.quicktime.description", "description"},
        {"com.apple.quicktime.displayname", "title"},
        {"com.apple.quicktime.title", "title"},
        {"com.apple.quicktime.genre", "type"},
        {"com.apple.quicktime.location.ISO6709", "location"},
        {"com.apple.quicktime.make", "make"},
        {"com.apple.quicktime.model", "model"},
        {"com.apple.quicktime.software", "software"},
        {"com.apple.quicktime.publisher", "publisher"},
        {"com.apple.quicktime.accessibility.description", "accessibilityDescription"},
    };
    return map;
}

const QHash<QByteArray, QString>& quickTimeUserDataCommon() {
    static const QHash<QByteArray, QString> map{
        {"\xA9nam", "title"},     {"\xA9" "ART", "artist"},  {"\xA9" "aut", "author"},  {"\xA9" "cpy", "copyrights"},
        {"\xA9" "des", "description"}, {"\xA9" "day", "creationDate"}, {"\xA9xyz", "location"},
        {"\xA9mak", "make"},      {"\xA9mod", "model"},      {"\xA9swr", "software"},  {"\xA9" "alb", "albumName"},
        {"\xA9pub", "publisher"}, {"\xA9gen", "type"},       {"\xA9prd", "creator"},
    };
    return map;
}

const QHash<QByteArray, QString>& iTunesCommon() {
    static const QHash<QByteArray, QString> map{
        {"\xA9nam", "title"}, {"\xA9" "ART", "artist"}, {"\xA9" "alb", "albumName"}, {"\xA9wrt", "creator"},
        {"\xA9" "day", "creationDate"}, {"cprt", "copyrights"}, {"desc", "description"}, {"\xA9" "des", "description"},
        {"\xA9too", "software"}, {"covr", "artwork"}, {"\xA9gen", "type"}, {"gnre", "type"}, {"\xA9pub", "publisher"},
    };
    return map;
}

const QHash<QByteArray, QString>& isoUserDataCommon() {
    static const QHash<QByteArray, QString> map{
        {"titl", "title"}, {"dscp", "description"}, {"cprt", "copyrights"}, {"perf", "artist"},
        {"auth", "author"}, {"gnre", "type"},       {"albm", "albumName"},  {"yrrc", "creationDate"},
        {"loci", "location"},
    };
    return map;
}

const QHash<QByteArray, QString>& id3Common() {
    static const QHash<QByteArray, QString> map{
        {"TIT2", "title"}, {"TPE1", "artist"}, {"TALB", "albumName"}, {"TCOP", "copyrights"},
        {"TDRC", "creationDate"}, {"TYER", "creationDate"}, {"TSSE", "software"}, {"APIC", "artwork"},
        {"TCON", "type"}, {"TPUB", "publisher"}, {"TCOM", "creator"},
    };
    return map;
}

// The 3GPP atoms of moov/udta, whose payload is kept whole as the item's stored bytes.
bool isIsoUserDataKey(FourCC type) {
    static const FourCC keys[] = {fourcc("titl"), fourcc("dscp"), fourcc("cprt"), fourcc("perf"), fourcc("auth"),
                                  fourcc("gnre"), fourcc("albm"), fourcc("yrrc"), fourcc("loci"), fourcc("kywd"),
                                  fourcc("rtng"), fourcc("clsf")};
    return std::find(std::begin(keys), std::end(keys), type) != std::end(keys);
}

QByteArray keyBytes(FourCC type) {
    const char b[4] = {char(type >> 24), char(type >> 16), char(type >> 8), char(type)};
    return QByteArray(b, 4);
}

// UTF-8 when the bytes are valid UTF-8, else Latin-1 (old QuickTime texts are in a Mac script).
QString looseText(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (utf8.hasError()) text = QString::fromLatin1(bytes);
    return text;
}

QString utf16Text(const QByteArray& bytes, bool bigEndian) {
    QStringDecoder d(bigEndian ? QStringDecoder::Utf16BE : QStringDecoder::Utf16LE);
    return d.decode(bytes);
}

MetadataItem makeItem(const char* keySpace, const QByteArray& key) {
    MetadataItem item;
    item.keySpace = QString::fromLatin1(keySpace);
    item.key = key;
    item.identifier = makeIdentifier(item.keySpace, key);
    item.commonKey = commonKeyFor(item.keySpace, key);
    return item;
}

// The 'data' atoms of one item-list entry; false when the entry holds none.
bool dataAtoms(ByteView bytes, const Atom& entry, const MetadataItem& prototype, QList<MetadataItem>* out) {
    bool any = false;
    for (const Atom& child : children(bytes, entry).atoms) {
        if (child.type != fourcc("data") || child.payloadSize() < 8) continue;
        MetadataItem item = prototype;
        item.dataType = *bytes.be32(child.payload()) & 0x00FFFFFF;
        item.locale = *bytes.be32(child.payload() + 4);
        item.stored = bytes.mid(child.payload() + 8, child.payloadSize() - 8);
        item.value = decodeData(item.dataType, item.stored);
        out->append(item);
        any = true;
    }
    return any;
}

QList<MetadataItem> quickTimeMetadataItems(ByteView bytes, const AtomList& metaList) {
    QList<MetadataItem> out;
    auto keys = findFirst(metaList, fourcc("keys"));
    auto ilst = findFirst(metaList, fourcc("ilst"));
    if (!keys || !ilst) return out;
    struct Key {
        QByteArray ns, name;
    };
    QList<Key> table;
    const auto count = bytes.be32(keys->payload() + 4);
    qint64 at = keys->payload() + 8;
    for (quint32 i = 0; count && i < *count; ++i) {
        const auto size = bytes.be32(at);
        if (!size || *size < 8 || !bytes.contains(at, *size) || at + *size > keys->end()) break;
        table.append({bytes.mid(at + 4, 4), bytes.mid(at + 8, *size - 8)});
        at += *size;
    }
    for (const Atom& entry : children(bytes, *ilst).atoms) {
        // The entry's type is the 1-based index of its key.
        if (entry.type == 0 || entry.type > quint32(table.size())) continue;
        const Key& key = table[qsizetype(entry.type) - 1];
        MetadataItem proto = makeItem(KeySpace::quickTimeMetadata, key.name);
        proto.keyNamespace = key.ns;
        dataAtoms(bytes, entry, proto, &out);
    }
    return out;
}

// The text of a 'mean' or 'name' atom of a free-form iTunes entry.
QByteArray freeformPart(ByteView bytes, const AtomList& list, FourCC type) {
    auto atom = findFirst(list, type);
    if (!atom || atom->payloadSize() < 4) return {};
    return bytes.mid(atom->payload() + 4, atom->payloadSize() - 4);
}

QList<MetadataItem> iTunesItems(ByteView bytes, const AtomList& metaList) {
    QList<MetadataItem> out;
    auto ilst = findFirst(metaList, fourcc("ilst"));
    if (!ilst) return out;
    for (const Atom& entry : children(bytes, *ilst).atoms) {
        if (entry.type != fourcc("----")) {
            dataAtoms(bytes, entry, makeItem(KeySpace::iTunes, keyBytes(entry.type)), &out);
            continue;
        }
        // Free form: the key is "mean:name", and the namespace marks it so.
        const AtomList parts = children(bytes, entry);
        MetadataItem proto = makeItem(KeySpace::iTunes, freeformPart(bytes, parts, fourcc("mean")) + ":" +
                                                            freeformPart(bytes, parts, fourcc("name")));
        proto.keyNamespace = "----";
        dataAtoms(bytes, entry, proto, &out);
    }
    return out;
}

// A QuickTime user-data text atom: entries of a 16-bit length, a 16-bit language code and the text.
bool userDataTexts(ByteView bytes, const Atom& atom, QList<MetadataItem>* out) {
    QList<MetadataItem> items;
    qint64 at = atom.payload();
    while (at < atom.end()) {
        const auto length = bytes.be16(at);
        const auto language = bytes.be16(at + 2);
        if (!length || !language || at + 4 + *length > atom.end()) return false;
        MetadataItem item = makeItem(KeySpace::quickTimeUserData, keyBytes(atom.type));
        item.dataType = DataType::utf8;
        item.locale = *language;
        item.stored = bytes.mid(at + 4, *length);
        item.value = looseText(item.stored);
        items.append(item);
        at += 4 + *length;
    }
    if (items.isEmpty()) return false;
    out->append(items);
    return true;
}

// The string of a 3GPP atom: UTF-8, or UTF-16 after a byte-order mark; ends at a NUL.
QString isoString(const QByteArray& b) {
    if (b.size() >= 2 && uchar(b[0]) == 0xFE && uchar(b[1]) == 0xFF) {
        QByteArray body = b.mid(2);
        for (qsizetype i = 0; i + 1 < body.size(); i += 2)
            if (body[i] == 0 && body[i + 1] == 0) {
                body.truncate(i);
                break;
            }
        return utf16Text(body, true);
    }
    const qsizetype nul = b.indexOf('\0');
    return looseText(nul < 0 ? b : b.left(nul));
}

MetadataItem isoUserDataItem(ByteView bytes, const Atom& atom) {
    MetadataItem item = makeItem(KeySpace::isoUserData, keyBytes(atom.type));
    item.stored = bytes.mid(atom.payload(), atom.payloadSize());
    // Four bytes of version and flags, then (all but 'yrrc') a packed language code.
    item.locale = bytes.be16(atom.payload() + 4).value_or(0);
    static const FourCC texts[] = {fourcc("titl"), fourcc("dscp"), fourcc("cprt"), fourcc("perf"),
                                   fourcc("auth"), fourcc("gnre"), fourcc("albm")};
    if (atom.type == fourcc("yrrc")) {
        if (auto year = bytes.be16(atom.payload() + 4)) item.value = qint64(*year);
    } else if (std::find(std::begin(texts), std::end(texts), atom.type) != std::end(texts) && item.stored.size() >= 6) {
        item.value = isoString(item.stored.mid(6));
    } else {
        item.value = item.stored;
    }
    return item;
}

quint32 syncsafe(quint32 v) { return (v & 0x7F) | (v >> 8 & 0x7F) << 7 | (v >> 16 & 0x7F) << 14 | (v >> 24 & 0x7F) << 21; }

QString id3Text(const QByteArray& body) {
    if (body.isEmpty()) return {};
    const char encoding = body[0];
    QByteArray text = body.mid(1);
    QString out;
    switch (encoding) {
    case 0: out = QString::fromLatin1(text); break;
    case 1:
        if (text.size() >= 2 && uchar(text[0]) == 0xFF && uchar(text[1]) == 0xFE) out = utf16Text(text.mid(2), false);
        else out = utf16Text(text.mid(text.size() >= 2 ? 2 : 0), true);
        break;
    case 2: out = utf16Text(text, true); break;
    default: out = QString::fromUtf8(text); break;
    }
    // Several values are NUL-separated; a trailing NUL ends the text.
    while (out.endsWith(QChar(0))) out.chop(1);
    return out.replace(QChar(0), QStringLiteral("; "));
}

// The frames of an ID3v2.3 or 2.4 tag in an 'ID32' atom. Other versions, unsynchronised tags
// and extended headers are left to the writer to keep as they stand.
bool id3Items(ByteView bytes, const Atom& atom, QList<MetadataItem>* out) {
    const qint64 tag = atom.payload() + 6;
    const auto language = bytes.be16(atom.payload() + 4);
    if (!language || !bytes.contains(tag, 10) || tag + 10 > atom.end()) return false;
    if (std::memcmp(bytes.data() + tag, "ID3", 3) != 0) return false;
    const quint8 version = *bytes.u8(tag + 3);
    const quint8 flags = *bytes.u8(tag + 5);
    if ((version != 3 && version != 4) || (flags & 0xC0)) return false;
    const qint64 end = std::min(atom.end(), tag + 10 + qint64(syncsafe(*bytes.be32(tag + 6))));
    QList<MetadataItem> items;
    qint64 at = tag + 10;
    while (at + 10 <= end) {
        if (*bytes.u8(at) == 0) break;  // padding
        const quint32 raw = *bytes.be32(at + 4);
        const qint64 size = version == 4 ? syncsafe(raw) : raw;
        if (at + 10 + size > end) return false;
        MetadataItem item = makeItem(KeySpace::id3, bytes.mid(at, 4));
        item.dataType = version;
        item.locale = *language;
        item.stored = bytes.mid(at, 10 + size);
        const QByteArray body = item.stored.mid(10);
        const quint16 frameFlags = *bytes.be16(at + 8);
        const bool plain = (frameFlags & (version == 4 ? 0x000F : 0x00E0)) == 0;  // not compressed, encrypted or unsynchronised
        if (plain && item.key.startsWith('T') && item.key != "TXXX") item.value = id3Text(body);
        else item.value = body;
        items.append(item);
        at += 10 + size;
    }
    if (items.isEmpty()) return false;
    out->append(items);
    return true;
}

std::optional<QDateTime> parseDateText(QString text) {
    text = text.trimmed();
    if (text.isEmpty()) return std::nullopt;
    static const QRegularExpression year(QStringLiteral("^\\d{4}$"));
    if (year.match(text).hasMatch()) return QDateTime(QDate(text.toInt(), 1, 1), QTime(0, 0));
    // ISO 8601 as Qt reads it, also with a zone written without its colon (+0200).
    static const QRegularExpression zone(QStringLiteral("([+-]\\d{2})(\\d{2})$"));
    QString withColon = text;
    if (text.contains(u'T') || text.contains(u' ')) withColon.replace(zone, QStringLiteral("\\1:\\2"));
    for (const QString& t : {text, withColon}) {
        QDateTime d = QDateTime::fromString(t, Qt::ISODateWithMs);
        if (!d.isValid()) d = QDateTime::fromString(t, Qt::ISODate);
        if (d.isValid()) return d;
    }
    return std::nullopt;
}

}  // namespace

QString makeIdentifier(const QString& keySpace, const QByteArray& key) {
    QString out = keySpace + u'/';
    for (char c : key) {
        const uchar u = uchar(c);
        if (u < 0x20 || u > 0x7E || u == '%') out += u'%' + QStringLiteral("%1").arg(u, 2, 16, QChar(u'0')).toUpper();
        else out += QChar(u);
    }
    return out;
}

QString commonKeyFor(const QString& keySpace, const QByteArray& key) {
    if (keySpace == QLatin1String(KeySpace::quickTimeMetadata)) return quickTimeMetadataCommon().value(key);
    if (keySpace == QLatin1String(KeySpace::quickTimeUserData)) return quickTimeUserDataCommon().value(key);
    if (keySpace == QLatin1String(KeySpace::iTunes)) return iTunesCommon().value(key);
    if (keySpace == QLatin1String(KeySpace::isoUserData)) return isoUserDataCommon().value(key);
    if (keySpace == QLatin1String(KeySpace::id3)) return id3Common().value(key);
    return {};
}

QVariant decodeData(quint32 dataType, const QByteArray& stored) {
    const ByteView b(reinterpret_cast<const uchar*>(stored.constData()), stored.size());
    auto integer = [&](bool isSigned) -> QVariant {
        const qsizetype n = stored.size();
        if (n < 1 || n > 8) return stored;
        quint64 v = 0;
        for (qsizetype i = 0; i < n; ++i) v = v << 8 | *b.u8(i);
        if (isSigned && n < 8 && (v >> (n * 8 - 1) & 1)) v |= ~quint64(0) << (n * 8);
        return isSigned || v <= quint64(std::numeric_limits<qint64>::max()) ? QVariant(qint64(v)) : QVariant(double(v));
    };
    switch (dataType) {
    case DataType::utf8: case 4: return QString::fromUtf8(stored);
    case DataType::utf16: case 5: return utf16Text(stored, true);
    case DataType::signedInt: return integer(true);
    case DataType::unsignedInt: return integer(false);
    case DataType::float32:
        if (stored.size() == 4) {
            const quint32 bits = *b.be32(0);
            float f;
            std::memcpy(&f, &bits, 4);
            return double(f);
        }
        return stored;
    case DataType::float64:
        if (stored.size() == 8) {
            const quint64 bits = *b.be64(0);
            double d;
            std::memcpy(&d, &bits, 8);
            return d;
        }
        return stored;
    case 65: case 66: case 67: case 74: return integer(true);
    case 75: case 76: case 77: case 78: return integer(false);
    default: return stored;
    }
}

std::optional<QString> MetadataItem::stringValue() const {
    if (value.typeId() == QMetaType::QString) return value.toString();
    if (value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double) return value.toString();
    return std::nullopt;
}

std::optional<QDateTime> MetadataItem::dateValue() const {
    if (value.typeId() == QMetaType::LongLong) {
        const qint64 y = value.toLongLong();
        if (y >= 1 && y <= 9999) return QDateTime(QDate(int(y), 1, 1), QTime(0, 0));
        return std::nullopt;
    }
    if (value.typeId() != QMetaType::QString) return std::nullopt;
    return parseDateText(value.toString());
}

std::optional<double> MetadataItem::numberValue() const {
    if (value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Double) return value.toDouble();
    return std::nullopt;
}

MetadataItem MetadataItem::quickTimeText(const QByteArray& key, const QString& text) {
    MetadataItem item = makeItem(KeySpace::quickTimeMetadata, key);
    item.dataType = DataType::utf8;
    item.stored = text.toUtf8();
    item.value = text;
    return item;
}

namespace detail {

bool isItemMeta(ByteView bytes, const Atom& meta) {
    const FourCC handler = handlerType(bytes, metaChildren(bytes, meta));
    return handler == fourcc("mdta") || handler == fourcc("mdir");
}

QList<MetadataItem> metaItems(ByteView bytes, const Atom& meta) {
    const AtomList list = metaChildren(bytes, meta);
    const FourCC handler = handlerType(bytes, list);
    if (handler == fourcc("mdta")) return quickTimeMetadataItems(bytes, list);
    if (handler == fourcc("mdir")) return iTunesItems(bytes, list);
    return {};
}

bool udtaChildItems(ByteView bytes, const Atom& child, QList<MetadataItem>* out) {
    if ((child.type >> 24) == copyrightSign) {
        if (userDataTexts(bytes, child, out)) return true;
        // Not the packed text form: one item of the payload as it stands.
        MetadataItem item = makeItem(KeySpace::quickTimeUserData, keyBytes(child.type));
        item.stored = bytes.mid(child.payload(), child.payloadSize());
        item.value = item.stored;
        out->append(item);
        return true;
    }
    if (isIsoUserDataKey(child.type) && child.payloadSize() >= 6) {
        out->append(isoUserDataItem(bytes, child));
        return true;
    }
    if (child.type == fourcc("ID32")) return id3Items(bytes, child, out);
    return false;
}

}  // namespace detail

QList<MetadataItem> readMetadataItems(ByteView bytes, const Atom& moov) {
    QList<MetadataItem> mdta, udta, itsk, uiso, id3;
    auto takeMeta = [&](const Atom& meta) {
        for (const MetadataItem& item : detail::metaItems(bytes, meta))
            (item.keySpace == QLatin1String(KeySpace::iTunes) ? itsk : mdta).append(item);
    };
    for (const Atom& child : children(bytes, moov).atoms) {
        if (child.type == fourcc("meta")) takeMeta(child);
        if (child.type != fourcc("udta")) continue;
        for (const Atom& u : children(bytes, child).atoms) {
            if (u.type == fourcc("meta")) {
                takeMeta(u);
                continue;
            }
            QList<MetadataItem> items;
            if (!detail::udtaChildItems(bytes, u, &items)) continue;
            for (const MetadataItem& item : items) {
                if (item.keySpace == QLatin1String(KeySpace::quickTimeUserData)) udta.append(item);
                else if (item.keySpace == QLatin1String(KeySpace::isoUserData)) uiso.append(item);
                else id3.append(item);
            }
        }
    }
    return mdta + udta + itsk + uiso + id3;
}

QStringList metadataFormats(const QList<MetadataItem>& items) {
    static const QList<std::pair<QString, QString>> formats{
        {KeySpace::quickTimeMetadata, "com.apple.quicktime.mdta"},
        {KeySpace::quickTimeUserData, "com.apple.quicktime.udta"},
        {KeySpace::iTunes, "com.apple.itunes"},
        {KeySpace::isoUserData, "org.mp4ra"},
        {KeySpace::id3, "org.id3"},
    };
    QStringList out;
    for (const auto& entry : formats) {
        const QString& space = entry.first;
        if (std::any_of(items.begin(), items.end(), [&](const MetadataItem& i) { return i.keySpace == space; }))
            out << entry.second;
    }
    return out;
}

}  // namespace media
