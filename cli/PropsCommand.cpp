// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands.h"
#include "ExitStatus.h"
#include "FileArgs.h"
#include "JsonOutput.h"
#include "Workers.h"

#include "FileBytes.h"
#include "ImageProperties.h"
#include "MovieReader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

QJsonValue toJson(const QVariant& v) {
    QByteArray text;
    cli::appendJson(text, QVariantList{v});
    return QJsonDocument::fromJson(text).array().first();
}

// What the movie reader gives, in the shape of a property dictionary.
QJsonObject movieProperties(const media::MovieInfo& movie, qint64 fileSize) {
    QJsonObject out{{"FileSize", fileSize}, {"Container", movie.containerName}};
    if (movie.duration) out.insert("Duration", *movie.duration);
    QJsonArray tracks;
    for (const media::Track& t : movie.tracks) {
        QJsonObject track{{"TrackID", t.trackID}, {"MediaType", t.mediaType}};
        QJsonArray formats;
        for (const auto& f : t.formatDescriptions) formats.append(f.mediaType + "/" + f.mediaSubtype);
        track.insert("FormatDescriptions", formats);
        if (t.naturalSize) {
            track.insert("NaturalWidth", t.naturalSize->width());
            track.insert("NaturalHeight", t.naturalSize->height());
            const QTransform& m = t.preferredTransform;
            track.insert("PreferredTransform", QJsonArray{m.m11(), m.m12(), m.m21(), m.m22(), m.dx(), m.dy()});
        }
        if (t.nominalFrameRate) track.insert("NominalFrameRate", *t.nominalFrameRate);
        tracks.append(track);
    }
    out.insert("Tracks", tracks);
    QJsonArray items;
    for (const media::MetadataItem& i : movie.metadata) {
        QJsonObject item{{"KeySpace", i.keySpace}, {"Identifier", i.identifier}, {"DataType", qint64(i.dataType)},
                         {"Value", toJson(i.value)}};
        if (!i.commonKey.isEmpty()) item.insert("CommonKey", i.commonKey);
        items.append(item);
    }
    out.insert("Metadata", items);
    out.insert("MetadataFormats", QJsonArray::fromStringList(movie.availableMetadataFormats()));
    return out;
}

}  // namespace

int propsCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("props", rawArgs, cli::fileOptions + cli::jsonOptions, args)) return *rc;
    const auto files = cli::expandFiles("props", args);
    if (!files) return 2;
    cli::JsonOutput out(args, true);
    cli::ExitStatus status;
    struct Read {
        QByteArray properties;  // compact JSON, empty when the file failed
        QString error;
    };
    cli::inOrder<QString, Read>(
        *files,
        [](const QString& path) {
            Read read;
            // Movies go to the movie reader, never to the image reader; it needs the movie's
            // header atoms, which the mapping gives without reading the media data.
            imageio::FilePieces head;
            if (!head.open(path, &read.error)) return read;
            if (imageio::detectFormat(head.head(4096)) == imageio::Format::Movie) {
                imageio::FileBytes file;
                if (!file.open(path, &read.error)) return read;
                if (auto movie = media::readMovie(file.bytes(), &read.error))
                    read.properties = QJsonDocument(movieProperties(*movie, file.bytes().size())).toJson(QJsonDocument::Compact);
            } else if (auto props = imageio::readFileProperties(path, &read.error)) {
                cli::appendJson(read.properties, *props);
            }
            return read;
        },
        [&](const QString& path, Read& read) {
            if (read.properties.isEmpty()) return status.fail(path, read.error, &out);
            QByteArray entry = "{\"file\":";
            cli::appendJsonString(entry, path);
            entry += ",\"properties\":" + read.properties + '}';
            out.addText(entry);
        });
    out.print();
    return status.code();
}
