#include "Commands.h"
#include "ExitStatus.h"
#include "FileArgs.h"
#include "JsonOutput.h"

#include "FileBytes.h"
#include "ImageProperties.h"
#include "MovieReader.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>

namespace {

QJsonValue toJson(const QVariant& v);

QJsonObject toJson(const QVariantMap& map) {
    QJsonObject o;
    for (auto it = map.begin(); it != map.end(); ++it) o.insert(it.key(), toJson(it.value()));
    return o;
}

QJsonValue toJson(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::QVariantMap: return toJson(v.toMap());
    case QMetaType::QVariantList: {
        QJsonArray a;
        for (const QVariant& e : v.toList()) a.append(toJson(e));
        return a;
    }
    case QMetaType::QByteArray: return QString::fromLatin1(v.toByteArray().toBase64());
    case QMetaType::Bool: return v.toBool();
    case QMetaType::Double: {
        double d = v.toDouble();
        return std::isfinite(d) ? QJsonValue(d) : QJsonValue();
    }
    case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong: case QMetaType::ULongLong:
        return v.toLongLong();
    case QMetaType::UnknownType: case QMetaType::Nullptr: return QJsonValue();
    default: return v.toString();
    }
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
    for (const QString& path : *files) {
        imageio::FileBytes file;
        QString error;
        std::optional<QJsonObject> properties;
        if (file.open(path, &error)) {
            // Movies go to the movie reader, never to the image reader.
            if (imageio::detectFormat(file.bytes()) == imageio::Format::Movie) {
                if (auto movie = media::readMovie(file.bytes(), &error)) properties = movieProperties(*movie, file.bytes().size());
            } else if (auto props = imageio::readProperties(file.bytes(), &error)) {
                properties = toJson(*props);
            }
        }
        if (properties) out.add(QJsonObject{{"file", path}, {"properties", *properties}});
        else status.fail(path, error, &out);
    }
    out.print();
    return status.code();
}
