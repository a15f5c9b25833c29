// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A movie's metadata items, as the platform's timed-media framework presents them: each with
// its key space, key, common key, identifier and value; and how each is stored, so that the
// movie writer puts back an untouched item exactly as it was.
#include "Atoms.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>
#include <optional>

namespace media {

// Key spaces, by their published texts.
namespace KeySpace {
inline constexpr char quickTimeMetadata[] = "mdta";   // 'keys' and 'ilst' in a 'meta' with handler mdta
inline constexpr char quickTimeUserData[] = "udta";   // '©xyz'-style atoms in moov/udta
inline constexpr char iTunes[] = "itsk";              // 'ilst' in a 'meta' with handler mdir
inline constexpr char isoUserData[] = "uiso";         // the 3GPP atoms in moov/udta ('titl', 'loci', ...)
inline constexpr char id3[] = "org.id3";              // the frames of an 'ID32' atom
}  // namespace KeySpace

// The identifiers the edit rules look for.
namespace Identifier {
inline constexpr char commonCreationDate[] = "common/creationDate";
inline constexpr char quickTimeMetadataCreationDate[] = "mdta/com.apple.quicktime.creationdate";
inline constexpr char quickTimeUserDataCreationDate[] = "udta/%A9day";
inline constexpr char quickTimeMetadataLocationISO6709[] = "mdta/com.apple.quicktime.location.ISO6709";
inline constexpr char quickTimeUserDataLocationISO6709[] = "udta/%A9xyz";
inline constexpr char quickTimeMetadataSoftware[] = "mdta/com.apple.quicktime.software";
}  // namespace Identifier

// Data types of a 'data' atom ("well-known types").
namespace DataType {
inline constexpr quint32 reserved = 0;  // binary, as it stands
inline constexpr quint32 utf8 = 1;
inline constexpr quint32 utf16 = 2;
inline constexpr quint32 jpeg = 13;
inline constexpr quint32 png = 14;
inline constexpr quint32 signedInt = 21;    // big-endian, 1 to 8 bytes
inline constexpr quint32 unsignedInt = 22;  // big-endian, 1 to 8 bytes
inline constexpr quint32 float32 = 23;
inline constexpr quint32 float64 = 24;
}  // namespace DataType

struct MetadataItem {
    QString keySpace;
    QByteArray key;        // "com.apple.quicktime.make", "\xA9xyz", "TIT2"
    QString commonKey;     // "make", "creationDate", ...; empty when the key has none
    QString identifier;    // key space, "/", the key with bytes outside printable ASCII as %XX
    QVariant value;        // QString, qint64, double or QByteArray; invalid when unreadable
    // How it is stored: the data type (mdta, itsk), the locale of a data atom, the language code
    // of a user-data text, or the ID3 version; and the value's bytes as they stand in the file.
    quint32 dataType = DataType::reserved;
    quint32 locale = 0;
    QByteArray stored;
    QByteArray keyNamespace = "mdta";  // of a 'keys' entry; "----" marks a free-form iTunes key

    std::optional<QString> stringValue() const;
    // An ISO 8601 date text ("2023-05-14T10:20:30+0200", "2023-05-14", "2023"), or a year number.
    std::optional<QDateTime> dateValue() const;
    std::optional<double> numberValue() const;

    // A new UTF-8 text item of the QuickTime metadata key space.
    static MetadataItem quickTimeText(const QByteArray& key, const QString& text);
};

// "key space/key" with the key's bytes outside printable ASCII, and "%", written as %XX.
QString makeIdentifier(const QString& keySpace, const QByteArray& key);
// The common key that the platform gives a key of a key space, or the empty text.
QString commonKeyFor(const QString& keySpace, const QByteArray& key);
// The value of a 'data' atom's bytes by their type.
QVariant decodeData(quint32 dataType, const QByteArray& stored);

// Every movie-level item of the movie whose 'moov' atom is given, in file order within each key
// space; the key spaces in the order mdta, udta, itsk, uiso, org.id3.
QList<MetadataItem> readMetadataItems(ByteView bytes, const Atom& moov);
// The metadata formats that hold items, in the order above: "com.apple.quicktime.mdta", ...
QStringList metadataFormats(const QList<MetadataItem>& items);

}  // namespace media
