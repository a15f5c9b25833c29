// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// XMP sidecars: the .xmp file beside a photo in which raw developers and catalogues keep ratings,
// keywords, descriptions and edits. For NAME.EXT the sidecar is NAME.EXT.xmp, else NAME.xmp (the
// extension in either case); what a sidecar says wins over what the photo says of itself.
#include "ImageProperties.h"
#include "XmpPacket.h"

#include <QString>
#include <optional>

namespace imageio {

// The group that lists a sidecar's own values as it holds them, under exiv2's keys, with the
// sidecar's file name under "File": a section of its own in the tag table.
inline constexpr char kSidecarDictionary[] = "{XMP Sidecar}";

// Larger than any sidecar a catalogue writes; a bigger file is refused before it is read.
inline constexpr qint64 kMaxSidecarSize = 16 << 20;

// The names the sidecar of `photoPath` may have, as paths, in the order they count: NAME.EXT.xmp
// (EXT as it is, in small and in capital letters; .xmp or .XMP), then the last two, NAME.xmp and
// NAME.XMP.
QStringList sidecarCandidates(const QString& photoPath);

struct SidecarFiles {
    QString found;    // the sidecar that counts, or empty
    QString ignored;  // a second one that NAME.EXT.xmp wins over, or empty
};
SidecarFiles findSidecar(const QString& photoPath);

// The path a new sidecar of `photoPath` gets: NAME.EXT.xmp, or NAME.xmp with `baseName`.
QString newSidecarPath(const QString& photoPath, bool baseName);

// Reads and parses a sidecar. Nothing, with the reason in words, when it can't be read, is too
// large, is not XML, nests too deeply or declares entities. `bytes`, when given, receives the file.
std::optional<XmpPacket> readSidecar(const QString& sidecarPath, QString* error = nullptr, QByteArray* bytes = nullptr);

// Lays the values of sidecar `packet` (file `sidecarPath`) over `top`, group by group, and adds
// the sidecar's own group.
void laySidecarOver(const XmpPacket& packet, const QString& sidecarPath, PropertyDict& top);

// Finds, reads and lays the sidecar of `photoPath` over `top`. A sidecar that can't be read is
// logged and left out; so is a second sidecar.
void addSidecar(const QString& photoPath, PropertyDict& top);

// The sidecar `existing` (empty for a new one) with `changes` laid over it, as a new packet.
// `before` is what the photo with its sidecar read as: values equal to it are left as they are.
// Dates, place and orientation go to their XMP homes (exif:, tiff:, xmp:), IPTC fields to the
// IPTC schemas; every other property of the sidecar stays. A new sidecar names the photo's
// extension in photoshop:SidecarForExtension. Nothing, with the reason, on failure.
std::optional<QByteArray> rewriteSidecar(const QByteArray& existing, const PropertyDict& before,
                                         const PropertyDict& changes, const QString& photoExtension,
                                         QString* error = nullptr);

}  // namespace imageio
