// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Motion photos made for tests from corpus photos and movies, in the layouts phones write:
// Google's Motion Photo and the older MicroVideo (XMP written by exiftool, the movie appended),
// Samsung's trailer (built here byte by byte, as exiftool reads it), and a HEIC with the movie
// in an 'mpvd' box.
#include <QByteArray>
#include <QString>

namespace testsupport {

// A Motion Photo in `out`: `photo` with GCamera:MotionPhoto, the presentation timestamp and a
// container directory whose movie item is `movieLength` long (the real length when -1), then
// the movie. A JPEG or a HEIC (then the movie sits in an 'mpvd' box).
void googleMotionPhoto(const QString& photo, const QString& movie, const QString& out, qint64 movieLength = -1);
// The XMP packet of such a photo, for tests that build their own variants.
QByteArray googleMotionXmp(const QString& movieLength, qint64 timestampUs = 500000);
// A MicroVideo: the JPEG with GCamera:MicroVideo and MicroVideoOffset, then the movie.
void microVideo(const QString& jpeg, const QString& movie, const QString& out);
// Samsung's layout: the JPEG, a time stamp block (1700000000000), the "MotionPhoto_Data" block
// with the movie, their SEFH directory and "SEFT".
void samsungMotionPhoto(const QString& jpeg, const QString& movie, const QString& out);
// `jpeg` with an XMP segment holding `packet` first after its start marker.
QByteArray withXmp(const QByteArray& jpeg, const QByteArray& packet);

}  // namespace testsupport
