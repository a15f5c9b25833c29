// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What a file is, by its name: the type identifier and MIME type that the platform's type
// look-up gives for an extension, and the size text of a file.
#include <QString>
#include <optional>

namespace filetypes {

// "public.jpeg", "public.heic", "com.adobe.raw-image", ...; nothing for an unknown extension.
std::optional<QString> typeIdentifier(const QString& path);
// Nothing when the extension maps to no type.
std::optional<QString> mimeType(const QString& path);
// A movie by its MIME type: one that says "video" or "movie".
bool isVideo(const std::optional<QString>& mime);
// "Zero KB", "512 bytes", "8 KB", "2.5 MB", "1.25 GB": decimal units, as file sizes are shown.
QString fileSizeText(qint64 bytes);

}  // namespace filetypes
