#include "Commands.h"

#include "ImageProperties.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

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

// Maps the file rather than copying it: reading metadata touches only a few pages.
bool readFile(const QString& path, QFile& file, QByteArray& bytes, QString& error) {
    file.setFileName(path);
    if (!file.exists()) {
        error = "no such file";
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return false;
    }
    if (file.size() == 0) {
        bytes.clear();
        return true;
    }
    uchar* mapped = file.map(0, file.size());
    if (mapped) {
        bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(mapped), file.size());
    } else {
        bytes = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            error = file.errorString();
            return false;
        }
    }
    return true;
}

}  // namespace

int propsCommand(const QStringList& args) {
    if (args.isEmpty()) {
        QTextStream(stderr) << "usage: tessorin-cli props FILE...\n";
        return 2;
    }
    QJsonArray out;
    int status = 0;
    QTextStream err(stderr);
    for (const QString& path : args) {
        QJsonObject entry{{"file", path}};
        QFile file;
        QByteArray bytes;
        QString error;
        if (readFile(path, file, bytes, error)) {
            if (auto props = imageio::readProperties(bytes, &error)) entry.insert("properties", toJson(*props));
        }
        if (!entry.contains("properties")) {
            entry.insert("error", error);
            err << path << ": " << error << "\n";
            status = 1;
        }
        out.append(entry);
    }
    const QByteArray json = QJsonDocument(out).toJson(QJsonDocument::Indented);
    std::fwrite(json.constData(), 1, size_t(json.size()), stdout);
    return status;
}
