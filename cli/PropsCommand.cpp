#include "Commands.h"

#include "FileBytes.h"
#include "ImageProperties.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <cstdio>

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

}  // namespace

int propsCommand(const QStringList& args) {
    if (args.isEmpty()) {
        printError("usage: tessorin-cli props FILE...\n");
        return 2;
    }
    QJsonArray out;
    int status = 0;
    for (const QString& path : args) {
        QJsonObject entry{{"file", path}};
        imageio::FileBytes file;
        QString error;
        if (file.open(path, &error)) {
            if (auto props = imageio::readProperties(file.bytes(), &error)) entry.insert("properties", toJson(*props));
        }
        if (!entry.contains("properties")) {
            entry.insert("error", error);
            printError(path + ": " + error + "\n");
            status = 1;
        }
        out.append(entry);
    }
    const QByteArray json = QJsonDocument(out).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    return status;
}
