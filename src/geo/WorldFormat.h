// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The layout of world.bin, the offline world map that ships with the program: land rings to fill
// and country borders to stroke, as longitude/latitude pairs. The build writes it
// (tools/make_world) from Natural Earth; OfflineMap reads it. Little-endian, 4-byte aligned:
//   Header, quint32 ringStarts[ringCount + 1], quint32 borderStarts[borderCount + 1],
//   float points[2 * pointCount]
// Starts index points; the rings come first, then the borders.
#include <QtGlobal>

namespace world {

inline constexpr char magic[8] = {'T', 'S', 'W', 'O', 'R', 'L', 'D', '1'};
inline constexpr quint32 formatVersion = 1;

struct Header {
    char magic[8];
    quint32 version;
    quint32 ringCount;
    quint32 borderCount;
    quint32 pointCount;
};
static_assert(sizeof(Header) == 24);

}  // namespace world
