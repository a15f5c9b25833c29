#include "TSAsset.h"

#include "FileTypes.h"
#include "Log.h"

#include <QFileInfo>

TSAsset::TSAsset(const QString& path, std::weak_ptr<Displayer> delegate) : path_(path) {
    ddStore_->displayDelegate = std::move(delegate);
    const auto mime = filetypes::mimeType(path);
    if (filetypes::isVideo(mime)) ddStore_->mediaType = MediaType::video;
    const QString name = QFileInfo(path).fileName();
    ddStore_->set(TSKey::NAME, name);
    ddStore_->set(TSKey::SUBTYPE, QStringLiteral("--"));
    ddStore_->set(TSKey::FILETYPE, filetypes::typeIdentifier(path));
    Log::debug("chosen file: " + name, "init(from:delegate:)");

    QString error;
    if (!file_.open(path, &error)) {
        readError_ = error;
        Log::warning(name + ": " + error, "init(from:delegate:)");
    }
    const QByteArray& bytes = file_.bytes();
    Log::debug("file length: " + QString::number(bytes.size()), "init(from:delegate:)");
    // Movies have no image properties; their rows come from the movie reader.
    if (!bytes.isEmpty() && !isVideo()) metaData_ = TSMetaData(bytes);
    ddStore_->set(TSKey::FILE_SIZE, bytes.isEmpty() ? QStringLiteral("0") : filetypes::fileSizeText(bytes.size()));
    ddStore_->fill(metaData_);
}
