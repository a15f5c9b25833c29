// `resources FILE... [--extract DIR]`: each file's resource and the auxiliary images inside it,
// one line each (label, file name, size, pixel size); --extract writes the auxiliary images
// into DIR under the names the resource list gives them.
#include "Arguments.h"
#include "Commands.h"
#include "ExitStatus.h"
#include "FileArgs.h"

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

void writeInto(const QString& dir, const QString& name, const QByteArray& data, const QString& source,
               cli::ExitStatus& status) {
    QSaveFile file(QDir(dir).filePath(name));
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit()) return;
    status.fail(source, "can't write " + file.fileName() + ": " + file.errorString());
}

}  // namespace

int resourcesCommand(const QStringList& rawArgs) {
    cli::Arguments args;
    if (auto rc = cli::parse("resources", rawArgs, cli::fileOptions + QList<cli::Option>{{"--extract", {}, true}}, args))
        return *rc;
    const std::optional<QStringList> expanded = cli::expandFiles("resources", args);
    if (!expanded) return 2;
    const QStringList& files = *expanded;
    const QString extractDir = args.value("--extract");
    if (args.has("--extract") && extractDir.isEmpty()) return cli::usageError("resources", "--extract needs a folder");
    if (!extractDir.isEmpty() && !QDir().mkpath(extractDir))
        return printError("tessorin-cli resources: can't make " + extractDir + "\n"), 1;

    cli::ExitStatus status;
    for (const QString& path : files) {
        imageio::FileBytes file;
        QString error;
        if (!file.open(path, &error)) {
            status.fail(path, error);
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
            if (!extractDir.isEmpty()) writeInto(extractDir, auxName, *data, path, status);
        }
        printOut(text);
    }
    return status.code();
}
