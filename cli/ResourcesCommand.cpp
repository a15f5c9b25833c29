// SPDX-License-Identifier: GPL-3.0-or-later
// `resources FILE... [--extract DIR]`: each file's resource and the auxiliary images and
// motion photo movie inside it, one line each (label, file name, size, pixel size); --extract
// writes them into DIR under the names the resource list gives them, the movie byte for byte.
#include "Arguments.h"
#include "Commands.h"
#include "DurableFile.h"
#include "ExitStatus.h"
#include "FileArgs.h"
#include "JsonOutput.h"

#include "FileBytes.h"
#include "FileTypes.h"
#include "ImageProperties.h"
#include "ImageDecoder.h"
#include "MovieReader.h"
#include "Resources.h"
#include "TSResourceAuxiliary.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>

namespace {

QString pixelSize(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    QSize size = QImageReader(&buffer).size();
    if (!size.isValid()) size = imageio::decodeImage(bytes).size();  // HEIF and AVIF
    return size.isValid() ? QString("%1 x %2").arg(size.width()).arg(size.height()) : QStringLiteral("--");
}

QString moviePixelSize(const QByteArray& movie) {
    const auto info = media::readMovie(movie);
    const auto video = info ? info->tracksOfType(QStringLiteral("vide")) : QList<media::Track>();
    if (video.isEmpty()) return QStringLiteral("--");
    const QSizeF size = media::presentationSize(video.first());
    return QString("%1 x %2").arg(qRound(size.width())).arg(qRound(size.height()));
}

// Nothing, or why the file could not be written.
std::optional<QString> writeInto(const QString& dir, const QString& name, const QByteArray& data) {
    QString why;
    if (fileio::writeDurably(QDir(dir).filePath(name), data, &why)) return std::nullopt;
    return why;
}

}  // namespace

int resourcesCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    const QList<cli::Option> own{{"--extract", "", true}};
    if (auto rc = cli::parse("resources", rawArgs, own + cli::fileOptions + cli::jsonOptions, args)) return *rc;
    const auto files = cli::expandFiles("resources", args);
    if (!files) return 2;
    const QString extractDir = args.value("--extract");
    if (!extractDir.isEmpty() && !QDir().mkpath(extractDir))
        return printError("tessorin-cli resources: can't make " + extractDir + "\n"), 1;

    cli::JsonOutput out(args);
    cli::ExitStatus status;
    for (const QString& path : *files) {
        imageio::FileBytes file;
        QString error;
        if (!file.open(path, &error)) {
            status.fail(path, error, &out);
            continue;
        }
        const QByteArray& bytes = file.bytes();
        if (imageio::detectFormat(bytes) == imageio::Format::Unknown) {
            status.fail(path, QStringLiteral("not an image format that can be read"), &out);
            continue;
        }
        const QString name = QFileInfo(path).fileName();
        const QString size = pixelSize(bytes);
        QString text = "==> " + path + " <==\n";
        text += name + "  " + filetypes::fileSizeText(bytes.size()) + "  " + size + "\n";
        QJsonArray auxiliaries;
        std::optional<QString> failure;
        TSResourceAuxiliary auxiliary(bytes);
        for (AuxiliaryImageType type : allAuxiliaryImageTypes) {
            const std::optional<QByteArray> data = auxiliary.auxiliaryData(type);
            if (!data) continue;
            const QString auxName = auxiliaryFileName(name, type);
            const QString auxSize = pixelSize(*data);
            text += "  " + label(type) + "  " + auxName + "  " + filetypes::fileSizeText(data->size()) + "  " + auxSize + "\n";
            auxiliaries.append(QJsonObject{{"label", label(type)}, {"name", auxName}, {"bytes", data->size()}, {"pixelSize", auxSize}});
            if (!extractDir.isEmpty() && !failure) failure = writeInto(extractDir, auxName, *data);
        }
        QJsonObject entry{{"file", path}, {"bytes", bytes.size()}, {"pixelSize", size}, {"auxiliaryImages", auxiliaries}};
        QString brokenMovie;
        if (const auto movie = embeddedMovie(bytes, name, &brokenMovie)) {
            const QString movieSize = moviePixelSize(movie->data);
            text += "  " + movie->label + "  " + movie->fileName + "  " + filetypes::fileSizeText(movie->data.size()) +
                    "  " + movieSize + "\n";
            QJsonObject m{{"label", movie->label}, {"name", movie->fileName}, {"bytes", movie->data.size()}, {"pixelSize", movieSize}};
            if (movie->presentationTimestampUs) m.insert("presentationTimestampUs", *movie->presentationTimestampUs);
            entry.insert("movie", m);
            if (!extractDir.isEmpty() && !failure) failure = writeInto(extractDir, movie->fileName, movie->data);
        } else if (!brokenMovie.isEmpty() && !failure) {
            failure = brokenMovie;
        }
        if (!out.on()) printOut(text);
        if (failure) status.fail(path, *failure, &out);
        else out.add(entry);
    }
    out.print();
    return status.code();
}
