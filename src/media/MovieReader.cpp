// SPDX-License-Identifier: GPL-3.0-or-later
#include "MovieReader.h"

#include "FFmpegModule.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>

#include <cmath>

namespace media {
namespace {

// FFmpeg, and the hundred libraries it brings, load on the first movie and not at every start:
// they were two thirds of the command-line tool's start-up. The module lies in lib/tessorin/modules
// beside the program's bin folder, as built and as installed.
const FFmpegModule* ffmpeg(QString* error) {
    static QString failure;
    static const FFmpegModule* module = [] () -> const FFmpegModule* {
        const QFileInfo program(QStringLiteral("/proc/self/exe"));
        QLibrary library(QFileInfo(program.canonicalFilePath()).dir().filePath(QStringLiteral("../lib/tessorin/modules/tessorin_ffmpeg")));
        // Its symbols stay its own, and it stays loaded for the life of the process.
        library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        auto entry = reinterpret_cast<decltype(&tessorin_ffmpeg_module)>(library.resolve("tessorin_ffmpeg_module"));
        if (!entry) failure = QStringLiteral("movie support can't be loaded: ") + library.errorString();
        return entry ? entry() : nullptr;
    }();
    if (!module && error) *error = failure;
    return module;
}

}  // namespace

QList<Track> MovieInfo::tracksOfType(const QString& mediaType) const {
    QList<Track> out;
    for (const Track& t : tracks)
        if (t.mediaType == mediaType) out << t;
    return out;
}

QSizeF presentationSize(const Track& track) {
    if (!track.naturalSize) return {};
    const QSizeF s = *track.naturalSize;
    const QTransform& t = track.preferredTransform;
    return {std::abs(t.m11() * s.width() + t.m21() * s.height()), std::abs(t.m12() * s.width() + t.m22() * s.height())};
}

std::optional<MovieInfo> readMovie(const QByteArray& bytes, QString* error) {
    const FFmpegModule* module = ffmpeg(error);
    return module ? module->readMovie(bytes, error) : std::nullopt;
}

QImage firstFrame(const QByteArray& bytes, QString* error) {
    const FFmpegModule* module = ffmpeg(error);
    return module ? module->firstFrame(bytes, error) : QImage();
}

QString ffmpegVersions() {
    QString error;
    const FFmpegModule* module = ffmpeg(&error);
    return module ? module->versions() : error;
}

QString ffmpegLicence() {
    QString error;
    const FFmpegModule* module = ffmpeg(&error);
    return module ? module->licence() : error;
}

}  // namespace media
