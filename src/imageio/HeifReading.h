// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A HEIF's metadata as properties: read by our own container code (HeifContainer) from the
// files the program is given, and by libheif from the files it wrote, a reader apart from the
// writer's code.
#include "ImageProperties.h"

#include <QByteArray>
#include <QString>
#include <optional>

namespace imageio {

class FilePieces;
class Rewritten;

std::optional<PropertyDict> readHeifBoxes(const QByteArray& bytes, QString* error);
// Reads the file up to the end of its 'meta' box and the metadata items, nothing else.
std::optional<PropertyDict> readHeifBoxes(FilePieces& file, QString* error);
std::optional<PropertyDict> readHeifWithLibheif(const Rewritten& file, QString* error);

}  // namespace imageio
