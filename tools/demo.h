// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The pieces of make-demo: the scenes it draws (demo_scene.cpp), the movie it encodes
// (demo_movie.cpp), and the album it writes with our own writers (make_demo.cpp).
#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>

enum class Land { arches, harbour, ocean, bridge, blossom, peaks, city, tableMountain, shapes };

struct Scene {
    QColor skyTop, skyBottom, disc, land;
    Land kind;
    double discX, discY;  // of the picture's size
};

// A landscape of the given kind: sky, sun or moon, land, and the place's name.
QImage drawScene(QSize size, const Scene& s, const QString& title, const QString& subtitle);
// The stored pixels of an upright picture for an EXIF orientation: what a camera held that way
// writes, so that a viewer that applies the orientation shows it upright again.
QImage storedFor(const QImage& upright, int orientation);

// A few seconds of a sunset over the river with the soft hum of a chord: H.264 video when
// libavcodec has it (MPEG-4 otherwise) and AAC sound, in a QuickTime movie.
bool encodeMovie(const QString& path, const Scene& scene, const QString& title);

// Says what failed on standard error; false.
bool fail(const QString& what);
