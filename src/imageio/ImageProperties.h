// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The image metadata reader: bytes in, property dictionary out, without decoding pixels.
#include <QByteArray>
#include <QString>
#include <QVariantMap>
#include <optional>

namespace imageio {

// A property dictionary: text keys; values are QString, qint64, double, bool, QVariantList,
// QVariantMap, QByteArray, or a null QVariant (the writer's removal mark).
using PropertyDict = QVariantMap;

// The container that a file's bytes show, whatever its name says.
enum class Format { Unknown, Jpeg, Tiff, Png, WebP, Heif, Avif, Cr3, Raf, Movie };

Format detectFormat(const QByteArray& bytes);
QString formatName(Format format);

// The properties of the primary image. Nothing when the bytes are no image we can read
// (unknown or movie container, or a container too broken to hold any image).
// `error`, when given, receives the reason for nothing.
std::optional<PropertyDict> readProperties(const QByteArray& bytes, QString* error = nullptr);
// The same from a file, reading only the parts that hold metadata where the container allows
// (a JPEG up to its scan; a HEIF's boxes and metadata items). The answer is what readProperties
// gives for the whole file, with the file's XMP sidecar, if any, laid over it (Sidecar.h). `bytesRead`, when given, receives how many bytes were read (a mapped
// whole file counts in full).
std::optional<PropertyDict> readFileProperties(const QString& path, QString* error = nullptr,
                                               qint64* bytesRead = nullptr);

class Rewritten;
// The same for a rewritten file, reading only what its container needs, as from a file.
std::optional<PropertyDict> readProperties(const Rewritten& file, QString* error = nullptr);

}  // namespace imageio
