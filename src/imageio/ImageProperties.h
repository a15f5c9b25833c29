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
enum class Format { Unknown, Jpeg, Tiff, Png, WebP, Heif, Avif, Cr3, Movie };

Format detectFormat(const QByteArray& bytes);
QString formatName(Format format);

// The properties of the primary image. Nothing when the bytes are no image we can read
// (unknown or movie container, or a container too broken to hold any image).
// `error`, when given, receives the reason for nothing.
std::optional<PropertyDict> readProperties(const QByteArray& bytes, QString* error = nullptr);

}  // namespace imageio
