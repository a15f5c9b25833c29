// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The movie reader, in place of the platform's timed-media framework: a movie's duration, its
// tracks with their sizes, matrices, frame rates and format descriptions, and its metadata items.
// Tracks come from FFmpeg's libavformat, which survives hostile files; metadata items come from
// our own atom walker, since FFmpeg flattens them into one dictionary without key spaces.
#include "MetadataItem.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSizeF>
#include <QString>
#include <QTransform>
#include <optional>

namespace media {

// A media type and subtype, each a four-character text: "vide"/"avc1", "soun"/"mp4a".
struct FormatDescription {
    QString mediaType;
    QString mediaSubtype;
};

struct Track {
    int trackID = 0;
    QString mediaType;  // "vide", "soun", "sbtl", "meta", or empty when unknown
    // The size of the track's pictures before its matrix, for a video track.
    std::optional<QSizeF> naturalSize;
    // The track's matrix (times the movie's), as an affine transform: m11 a, m12 b, m21 c, m22 d,
    // dx tx, dy ty, the platform's row-vector convention.
    QTransform preferredTransform;
    std::optional<double> nominalFrameRate;
    QList<FormatDescription> formatDescriptions;
};

struct MovieInfo {
    QString containerName;          // FFmpeg's name of the demuxer
    std::optional<double> duration;  // seconds; nothing when the movie doesn't say
    QList<Track> tracks;
    QList<MetadataItem> metadata;  // movie-level items (see readMetadataItems)

    // The tracks of one media type, in file order.
    QList<Track> tracksOfType(const QString& mediaType) const;
    QStringList availableMetadataFormats() const { return metadataFormats(metadata); }
};

// The movie in `bytes`, which must stay alive during the call. Nothing, with a reason in
// `error`, when the bytes are no movie that FFmpeg can open; a damaged movie gives what it can.
std::optional<MovieInfo> readMovie(const QByteArray& bytes, QString* error = nullptr);

// The natural size with the transform applied, each side made positive.
QSizeF presentationSize(const Track& track);

// The first picture of the first video track, turned by the track's matrix so that it shows
// upright. A null image when there is none or it can't be decoded.
QImage firstFrame(const QByteArray& bytes, QString* error = nullptr);

// "FFmpeg VERSION (libavformat X.Y.Z)", or why FFmpeg can't be loaded.
QString ffmpegVersions();
// FFmpeg's licence as it was configured ("GPL version 2 or later"), or why it can't be loaded.
QString ffmpegLicence();

}  // namespace media
