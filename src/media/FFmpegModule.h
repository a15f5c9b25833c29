// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// What the FFmpeg module hands the program: the movie reader's two FFmpeg functions and the
// versions in use. Built with the program, so C++ types cross the boundary as they are.
#include "MovieReader.h"

namespace media {

struct FFmpegModule {
    std::optional<MovieInfo> (*readMovie)(const QByteArray& bytes, QString* error);
    QImage (*firstFrame)(const QByteArray& bytes, QString* error);
    QString (*versions)();
    QString (*licence)();
};

}  // namespace media

// The module's one exported symbol.
extern "C" const media::FFmpegModule* tessorin_ffmpeg_module();
