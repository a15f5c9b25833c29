// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The layout of places.bin, the place data that ships with the program. The build writes it
// (tools/make_places) from GeoNames cities and ISO 3166 names; PlaceIndex reads it. All numbers
// are little-endian and every table starts on a 4-byte boundary, so the file is used in place
// once its header and offsets have been checked.
#include <QString>
#include <QtGlobal>

namespace places {

inline constexpr char magic[8] = {'T', 'S', 'P', 'L', 'A', 'C', 'E', 'S'};
inline constexpr quint32 formatVersion = 2;
inline constexpr quint16 noAdmin = 0xFFFF;

struct Header {
    char magic[8];
    quint32 version;
    quint32 placeCount;
    quint32 countryCount;
    quint32 adminCount;
    quint32 languageCount;
    quint32 stringBytes;
    // Byte offsets of the tables from the start of the file.
    quint32 placesOffset;
    quint32 countriesOffset;
    quint32 adminsOffset;
    quint32 languagesOffset;
    quint32 translationsOffset;  // languageCount rows of countryCount string offsets; 0: none
    quint32 stringsOffset;       // UTF-8, each text ends with a NUL; offset 0 is the empty text
    quint32 fileSize;
};

enum class Kind : quint8 {
    populated = 0,
    section = 1,  // a part of a larger town: named as the sub-locality, its town as the locality
};
inline constexpr quint32 noParent = 0xFFFFFFFF;

// Places are stored in the order of a balanced k-d tree over their unit vectors: the node of a
// range [lo, hi) is the place at (lo + hi) / 2, split on `axis`.
struct Place {
    float x, y, z;  // on the unit sphere, so that nearness needs no trigonometry
    float latitude, longitude;
    quint32 name;
    quint32 folded;  // the name as search compares it (see fold)
    quint32 population;  // 0: not known
    quint16 country;
    quint16 admin;  // noAdmin: none known
    quint8 axis;
    quint8 kind;  // a Kind; kept as a byte so that a damaged file can't load a bad enumerator
    quint16 reserved;
    quint32 parent;  // for a section, the index of its town; otherwise noParent
};
static_assert(sizeof(Place) == 44);

struct Country {
    char code[2];  // ISO 3166-1 alpha-2
    quint16 reserved;
    quint32 name;  // English short name
};

struct Admin {
    quint16 country;
    quint16 reserved;
    quint32 name;
};

struct Language {
    quint32 code;  // "it", "pt_BR", "sr@latin": the folder name of the translation it came from
};

// The text that search compares: compatibility-decomposed, marks dropped, case folded, letters
// that don't decompose spelt out (ß, æ, ø, ł...), apostrophes dropped and every other run of
// non-letters one blank. "Saint-Étienne" and "saint etienne" fold alike.
QString fold(const QString& text);

// Unit vector of a coordinate in degrees.
void unitVector(double latitude, double longitude, float out[3]);

}  // namespace places
