// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The properties of an XMP packet under exiv2's keys ("Xmp.dc.title"; a structure's field as
// "Xmp.iptc.CreatorContactInfo/Iptc4xmpCore:CiAdrCity", an array item's as
// "Xmp.iptcExt.Genre[1]/Iptc4xmpExt:Name"), read with Qt's XML reader. exiv2's XMP toolkit keeps
// shared state, so its decoding must take turns across threads (see xmpMutex), and it was a
// fifth of a photo's reading time; the reader needs only the fields of its tables, in the
// schemas named below, and this gets them on any thread.
#include <QByteArrayView>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace imageio {

struct XmpProperty {
    enum class Kind { Text, Array, LangAlt };
    Kind kind = Kind::Text;
    QStringList items;  // the text; the array's items; the alternatives' texts
    QStringList langs;  // for LangAlt, each text's xml:lang
    // The texts a field reads as: an alternative text's default (or first) one, an array's
    // items, or the text.
    QStringList values() const;
    // The value as exiv2 prints it.
    QString toString() const;
};

struct XmpPacket {
    QList<std::pair<QString, XmpProperty>> properties;  // in the packet's order
    const XmpProperty* find(const QString& key) const;
};

// Nothing when the packet is no well-formed RDF/XML, nests too deeply or declares a document type:
// such a packet gives no values at all, and `error`, when given, receives why in words.
// Properties of schemas the reader doesn't use are left out.
std::optional<XmpPacket> parseXmpPacket(QByteArrayView packet, QString* error = nullptr);

// One entry of Google's container directory (Container:Directory): the files that follow the
// primary image at the end of a JPEG or HEIF, each as long as its Length (the primary's runs to
// the first of them), followed by Padding bytes. The numbers as the packet writes them.
struct ContainerItem {
    QString mime, semantic;
    std::optional<QString> length, padding;
};
// The directory's entries in order, the primary image first; none without a directory.
std::vector<ContainerItem> containerDirectory(const XmpPacket& xmp);

}  // namespace imageio
