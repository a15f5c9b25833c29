// SPDX-License-Identifier: GPL-3.0-or-later
#include "ResourcesViewModel.h"

#include "DurableFile.h"
#include "FileTypes.h"
#include "GroupViewModel.h"
#include "ImageProperties.h"
#include "ModuleTexts.h"
#include "ResourceActor.h"
#include "TSAlbum.h"
#include "TSResourceAuxiliary.h"

#include <QFile>
#include <QFileInfo>

ResourcesViewModel::ResourcesViewModel(QObject* parent) : QObject(parent) {
    TSEnvironment::observable().addObserver(this);
}

void ResourcesViewModel::setAvailable(bool available) {
    if (available_ == available) return;
    available_ = available;
    emit availableChanged();
}

void ResourcesViewModel::beginLoading(const std::shared_ptr<TSAlbum>&) {
    ++checkGeneration_;
    setAvailable(false);
}

// The detail check: a whole conversion per kind until one gives an image, so it runs on the
// resource worker and only its answer comes back.
void ResourcesViewModel::processedMetaData(const std::shared_ptr<TSAlbum>& album) {
    const std::shared_ptr<TSAsset> asset = album ? album->currentAsset : nullptr;
    if (!asset || asset->imageData().isEmpty()) return;
    const int generation = ++checkGeneration_;
    const std::weak_ptr<TSDataStore> store = asset->sharedStore();
    QPointer<ResourcesViewModel> self(this);
    // A copy of its own: the item's bytes are mapped from its file and go with the item.
    const QByteArray bytes(asset->imageData().constData(), asset->imageData().size());
    ResourceActor::shared().enqueue([self, generation, store, bytes] {
        const bool found = TSResourceAuxiliary::hasAuxiliaryImage(bytes);
        QMetaObject::invokeMethod(
            self.data(),
            [self, generation, store, found] {
                if (auto s = store.lock()) s->hasAuxiliaryImage = found;
                if (self && self->checkGeneration_ == generation) self->setAvailable(found);
            },
            Qt::QueuedConnection);
    });
}

void ResourcesViewModel::setOpen(bool open) {
    if (open == isOpen()) return;
    if (model_) {
        model_->deleteLater();
        model_ = nullptr;
    }
    showMedia({});
    if (open) {
        const auto album = TSEnvironment::currentAlbum();
        const std::shared_ptr<TSAsset> asset = album ? album->currentAsset : nullptr;
        std::vector<std::shared_ptr<const RawResource>> resources;
        if (asset) {
            const QByteArray bytes(asset->imageData().constData(), asset->imageData().size());
            resources.push_back(std::make_shared<TSFileRawResource>(asset->path(), bytes));
        }
        model_ = new ResourcesModel(std::move(resources), this);
        connect(model_, &ResourcesModel::changed, this, &ResourcesViewModel::listChanged);
        model_->load();
    }
    emit openChanged();
    emit listChanged();
}

QVariantList ResourcesViewModel::sections() const {
    QVariantList out;
    if (!model_) return out;
    for (const QString& key : model_->processedKeys()) {
        const LoadedResource record = model_->resourcesDic().value(key);
        const auto source = model_->rawSource(key);
        QVariantList rows;
        const char* symbol = record.resourceImg.kind == ResourceImage::Kind::temporary    ? "hourglass"
                             : record.resourceImg.kind == ResourceImage::Kind::genericDoc ? "doc.text"
                                                                                          : "";
        rows << QVariantMap{{"title", source ? source->fileName() : QString()},
                            {"subtitle", record.formattedSize},
                            {"symbol", QString::fromLatin1(symbol)},
                            {"thumbnail", record.url.value_or(QString())},
                            {"url", record.url ? QUrl::fromLocalFile(*record.url) : QUrl()}};
        for (AuxiliaryImageType type : model_->resourcesSub().value(key)) {
            const auto url = record.auxiliaryUrl.find(type);
            const QString path = url == record.auxiliaryUrl.end() ? QString() : url->second;
            rows << QVariantMap{{"title", moduletexts::resource(label(type))},
                                {"subtitle", QFileInfo(path).fileName()},
                                {"symbol", path.isEmpty() ? QStringLiteral("doc.text") : QString()},
                                {"thumbnail", path},
                                {"url", path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path)}};
        }
        out << QVariantMap{{"header", source ? moduletexts::resource(source->label()) : QString()}, {"rows", rows}};
    }
    return out;
}

void ResourcesViewModel::showMedia(const QUrl& url) {
    if (url == mediaUrl_) return;
    mediaUrl_ = url;
    // Read once here: the screen asks for the kind and the image at every change.
    mediaKind_ = kindOf(url);
    emit mediaChanged();
}

// By the file's content, not its name: an auxiliary image keeps its resource's extension.
QString ResourcesViewModel::kindOf(const QUrl& url) {
    if (url.isEmpty()) return {};
    const QString path = url.toLocalFile();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return QStringLiteral("text");
    const imageio::Format format = imageio::detectFormat(file.read(4096));
    if (format != imageio::Format::Unknown && format != imageio::Format::Movie) return QStringLiteral("image");
    file.seek(0);
    const QImage probe = QImage::fromData(file.read(64 << 20));
    if (!probe.isNull()) return QStringLiteral("image");
    if (filetypes::isVideo(filetypes::mimeType(path))) return QStringLiteral("video");
    return QStringLiteral("text");
}

QString ResourcesViewModel::mediaText() const {
    return mediaUrl_.isEmpty() ? QString() : QFileInfo(mediaUrl_.toLocalFile()).fileName() + " can't be shown here.";
}

QString ResourcesViewModel::mediaImage() const {
    return mediaKind_ == QLatin1String("image") ? GroupViewModel::thumbnailSource(mediaUrl_.toLocalFile()) : QString();
}

QString ResourcesViewModel::suggestedName() const { return QFileInfo(mediaUrl_.toLocalFile()).fileName(); }

bool ResourcesViewModel::saveCopy(const QUrl& target) {
    QFile source(mediaUrl_.toLocalFile());
    if (!source.open(QIODevice::ReadOnly)) return false;
    return fileio::writeDurably(target.isLocalFile() ? target.toLocalFile() : target.toString(), source.readAll());
}
