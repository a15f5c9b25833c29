// `resources FILE... [--extract DIR]`: each file's resource and the auxiliary images inside it,
// one line each (label, file name, size, pixel size); --extract writes the auxiliary images
// into DIR under the names the resource list gives them.
#include "Commands.h"

#include "FileBytes.h"
#include "FileTypes.h"
#include "ImageDecoder.h"
#include "Resources.h"
#include "TSResourceAuxiliary.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QSaveFile>

namespace {

QString pixelSize(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    QSize size = QImageReader(&buffer).size();
    if (!size.isValid()) size = imageio::decodeImage(bytes).size();  // HEIF and AVIF
    return size.isValid() ? QString("%1 x %2").arg(size.width()).arg(size.height()) : QStringLiteral("--");
}

bool writeInto(const QString& dir, const QString& name, const QByteArray& data, const QString& source) {
    QSaveFile file(QDir(dir).filePath(name));
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit()) return true;
    printError("tessorin-cli: " + source + ": can't write " + file.fileName() + ": " + file.errorString() + "\n");
    return false;
}

}  // namespace

int resourcesCommand(const QStringList& args) {
    QStringList files;
    QString extractDir;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == "--extract") {
            if (++i >= args.size()) return printError("tessorin-cli resources: --extract needs a folder\n"), 2;
            extractDir = args[i];
        } else {
            files << args[i];
        }
    }
    if (files.isEmpty()) return printError("usage: tessorin-cli resources FILE... [--extract DIR]\n"), 2;
    if (!extractDir.isEmpty() && !QDir().mkpath(extractDir))
        return printError("tessorin-cli resources: can't make " + extractDir + "\n"), 1;

    int status = 0;
    for (const QString& path : files) {
        imageio::FileBytes file;
        QString error;
        if (!file.open(path, &error)) {
            printError("tessorin-cli: " + path + ": " + error + "\n");
            status = 1;
            continue;
        }
        const QByteArray& bytes = file.bytes();
        const QString name = QFileInfo(path).fileName();
        QString text = "==> " + path + " <==\n";
        text += name + "  " + filetypes::fileSizeText(bytes.size()) + "  " + pixelSize(bytes) + "\n";
        TSResourceAuxiliary auxiliary(bytes);
        for (AuxiliaryImageType type : allAuxiliaryImageTypes) {
            const std::optional<QByteArray> data = auxiliary.auxiliaryData(type);
            if (!data) continue;
            const QString auxName = auxiliaryFileName(name, type);
            text += "  " + label(type) + "  " + auxName + "  " + filetypes::fileSizeText(data->size()) + "  " +
                    pixelSize(*data) + "\n";
            if (!extractDir.isEmpty() && !writeInto(extractDir, auxName, *data, path)) status = 1;
        }
        printOut(text);
    }
    return status;
}
