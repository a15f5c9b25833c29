// SPDX-License-Identifier: GPL-3.0-or-later
#include "ExifModifier.h"

#include "DurableFile.h"
#include "Library.h"
#include "Log.h"
#include "PropertyKeys.h"
#include "Sidecar.h"
#include "Sidecars.h"
#include "Settings.h"
#include "TSError.h"
#include "WriteCheck.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTemporaryFile>
#include <QUrl>

namespace {

// What a newly created file gets under the process's umask (temporary files start private).
QFileDevice::Permissions newFilePermissions() {
    static const QFileDevice::Permissions permissions = [] {
        uint mask = 022;
        QFile status(QStringLiteral("/proc/self/status"));
        if (status.open(QIODevice::ReadOnly))
            for (const QByteArray& line : status.readAll().split('\n'))
                if (line.startsWith("Umask:")) mask = line.mid(6).trimmed().toUInt(nullptr, 8);
        QFileDevice::Permissions p;
        const std::pair<uint, QFileDevice::Permission> bits[] = {
            {0400, QFileDevice::ReadOwner}, {0200, QFileDevice::WriteOwner}, {040, QFileDevice::ReadGroup},
            {020, QFileDevice::WriteGroup}, {04, QFileDevice::ReadOther},    {02, QFileDevice::WriteOther}};
        for (const auto& [bit, flag] : bits)
            if (!(mask & bit)) p |= flag;
        return p;
    }();
    return permissions;
}

QString originalCopyPath(const QString& path) {
    const QFileInfo info(path);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral("_original.") + info.suffix());
}

// Copies the photo at `path` to its original's place and flushes it; a message when that fails.
std::optional<QString> keepOriginal(const QString& path) {
    const QString copy = originalCopyPath(path);
    const QString failure = QStringLiteral("can't keep the original as ") + copy;
    if (QFileInfo::exists(copy) || !QFile::copy(path, copy)) return failure;
    QFile kept(copy);
    if (!kept.open(QIODevice::ReadOnly) || !fileio::syncFile(kept.handle()) || !fileio::syncFolderOf(copy)) return failure;
    return std::nullopt;
}

}  // namespace

ExifModifier::ExifModifier(QList<ModifyingPhotoAsset> m) : modifing(std::move(m)), filesDirectory(QDir::tempPath()) {}

void ExifModifier::modify(UserSettings& settings) {
    if (settings.switchers[Sections::noTags]) {
        for (auto& photo : modifing) photo.tags->removeAllTags();
        settings.dropWishes(EditKeys::editableKeys());
        return;
    }

    if (settings.switchers[Sections::dateTime]) {
        for (auto& photo : modifing) {
            photo.tags->userDate.reset();
            photo.tags->changed = true;
        }
        settings.dropDateWishes();
    } else if (const auto wished = settings.date(TSKey::EXIF_DATE); settings.isDateChanged() && wished) {
        for (auto& photo : modifing) {
            if (photo.tsAsset->ddStore().exifDate == wished) continue;
            photo.tags->userDate = wished;
            photo.tags->changed = true;
        }
    }

    const bool removeLocation = settings.switchers[Sections::location];
    if (removeLocation) {
        for (auto& photo : modifing) photo.tags->removeLocation();
    } else if (settings.isLocationChanged() && settings.finalLoc->location) {
        for (auto& photo : modifing) {
            const auto& own = photo.tsAsset->ddStore().location;
            if (!own || *own != *settings.finalLoc->location) photo.tags->setLocation(*settings.finalLoc->location);
        }
    }

    const bool human = Settings::flag(SettingsFlag::human);
    for (auto& photo : modifing) {
        for (TSKey key : EditKeys::editableKeys()) photo.tags->apply(key, settings, photo.tsAsset->metaData(), human);
        photo.tags->applyCreatorContact(settings, photo.tsAsset->metaData());
    }

    if (settings.finalOrientation) {
        for (auto& photo : modifing) {
            photo.tags->userOrientation = settings.finalOrientation;
            photo.tags->changed = true;
            photo.tags->setOrientationTag(QString::number(*settings.finalOrientation));
        }
    }

    if (eachPhoto)
        for (auto& photo : modifing) eachPhoto(photo);

    QString software = QCoreApplication::applicationName();
    if (software.isEmpty()) software = QStringLiteral("Tessorin");
    for (auto& photo : modifing) {
        if (!photo.tags->changed) continue;
        photo.tags->setText(kCGImagePropertyTIFFSoftware, SubDictionary::tiff, software);
        photo.tags->commit(removeLocation);
    }
}

bool ExifModifier::anyChanged() const {
    for (const auto& photo : modifing)
        if (photo.tags->changed) return true;
    return false;
}

namespace {

// The dictionary a photo is saved with: its wished one, or with nothing wished (all tags
// dropped) what is left of what it read.
imageio::PropertyDict finalDictionary(const ModifyingPhotoAsset& photo, bool render) {
    if (photo.tags->metaData && !photo.tags->metaData->isEmpty()) return *photo.tags->metaData;
    return render ? imageio::PropertyDict{} : photo.tags->strippedFallback();
}

// What a sidecar can be held to of `dict`: a sidecar only adds and overrides, so a tag the photo
// holds itself stays whatever the sidecar says. Single tags the wishes clear beside new values of
// their group (as a new place clears the old one's altitude) are left out of the comparison;
// nothing when the photo's own tags were only to go (no place, no date, a removed tag), which
// only the photo can lose: saying they went would be a lie.
std::optional<imageio::PropertyDict> sidecarWishes(const imageio::PropertyDict& dict, const imageio::PropertyDict& own) {
    const auto removal = [](const QVariant& v) { return !v.isValid() || v.isNull(); };
    imageio::PropertyDict out;
    for (auto it = dict.begin(); it != dict.end(); ++it) {
        const QVariantMap held = own.value(it.key()).toMap();
        if (removal(it.value())) {
            if (!held.isEmpty() || (own.contains(it.key()) && !removal(own.value(it.key())))) return std::nullopt;
            out.insert(it.key(), it.value());
            continue;
        }
        if (it.value().typeId() != QMetaType::QVariantMap) {
            out.insert(it.key(), it.value());
            continue;
        }
        QVariantMap group = it.value().toMap();
        bool setsSome = false, dropsHeld = false;
        for (auto g = group.begin(); g != group.end(); ++g) {
            if (!removal(g.value())) setsSome = setsSome || held.value(g.key()) != g.value();
            else dropsHeld = dropsHeld || held.contains(g.key());
        }
        if (dropsHeld && !setsSome) return std::nullopt;
        for (auto g = group.begin(); g != group.end();)
            g = removal(g.value()) && held.contains(g.key()) ? group.erase(g) : std::next(g);
        out.insert(it.key(), group);
    }
    return out;
}

}  // namespace

QList<ModifyingPhotoAsset> ExifModifier::rewrite() {
    QList<ModifyingPhotoAsset> done;
    for (auto& photo : modifing) {
        // Pixels drawn upright need no turning any more.
        if (render) photo.tags->setOrientationTag(QStringLiteral("1"));
        const imageio::PropertyDict dict = finalDictionary(photo, render);
        photo.tags->destMutable = dict;
        imageio::PropertyDict readBack;
        ModifyingPhotoAsset written = ImageModifier::modifiedAsset(render, photo, &readBack);
        // What was read from the source is the baseline: the values the wishes change are checked.
        const imageio::PropertyDict before = photo.tags->fallbackData.value_or(imageio::PropertyDict{});
        if (const auto difference =
                WriteCheck::readBackDifference(before, dict, std::get<imageio::Rewritten>(written.dataSource), readBack))
            throw TSError("The written file differs from the wishes: " + *difference);
        done << written;
        if (progress) progress(int(done.size()));
    }
    return done;
}

std::optional<QString> ExifModifier::saveToSidecars(bool baseName, QStringList& sidecars) {
    int done = 0;
    for (auto& photo : modifing) {
        const QString path = photo.tsAsset->path();
        const imageio::SidecarFiles files = imageio::findSidecar(path);
        const QString target = files.found.isEmpty() ? imageio::newSidecarPath(path, baseName) : files.found;
        const QString name = QFileInfo(target).fileName();
        const auto failed = [&](const QString& why) {
            Log::error("📝 " + target + ": " + why);
            return QStringLiteral("Can't save the changes in %1: %2; nothing was saved").arg(name, why);
        };
        if (!Sidecars::writable(target)) return failed(QStringLiteral("the sidecar or its folder is read-only"));
        QByteArray existing;
        QString why;
        // A sidecar the reader refuses (not XML, a bomb) is never handed to exiv2 to be rewritten.
        if (!files.found.isEmpty() && !imageio::readSidecar(target, &why, &existing)) return failed("it " + why);
        const imageio::PropertyDict dict = finalDictionary(photo, false);
        photo.tags->destMutable = dict;
        const imageio::PropertyDict before = photo.tags->fallbackData.value_or(imageio::PropertyDict{});
        const auto bytes = imageio::rewriteSidecar(existing, before, dict, QFileInfo(path).suffix(), &why);
        if (!bytes) return failed(why);
        // Read back as the reader will: the photo's own values with the new sidecar laid over them.
        const auto packet = imageio::parseXmpPacket(*bytes, &why);
        if (!packet) return failed("the written sidecar " + why);
        const imageio::PropertyDict own = imageio::readProperties(photo.tsAsset->imageData()).value_or(imageio::PropertyDict{});
        imageio::PropertyDict read = own;
        imageio::laySidecarOver(*packet, target, read);
        const auto wished = sidecarWishes(dict, own);
        if (!wished) return failed(QStringLiteral("a sidecar can't take away what the photo holds itself"));
        if (const auto difference = WriteCheck::readBackDifference(before, *wished, imageio::Rewritten(), read))
            return failed("the written sidecar differs from the wishes: " + *difference);
        if (!fileio::writeDurably(target, *bytes, &why)) return failed(why);
        sidecars << target;
        if (progress) progress(++done);
    }
    return std::nullopt;
}

void ExifModifier::save(SaveMode mode, const Completion& onCompletition) {
    QList<ModifyingPhotoAsset> done;
    try {
        done = rewrite();
    } catch (const TSError& e) {
        onCompletition({}, e.localizedDescription());
        return;
    }
    Log::debug(QStringLiteral("Received values: %1").arg(done.size()));
    if (mode != SaveMode::files && !library) {
        onCompletition({}, QStringLiteral("Image is not editable"));
        return;
    }
    QStringList kept;
    const auto failed = [&](const std::optional<QString>& failure) {
        for (const QString& copy : kept) QFile::remove(copy);
        onCompletition({}, failure);
    };
    if (mode == SaveMode::files && keepOriginals)
        for (const auto& photo : done) {
            if (const auto failure = keepOriginal(photo.tsAsset->path())) return failed(failure);
            kept << originalCopyPath(photo.tsAsset->path());
        }
    QStringList urls;
    std::optional<QString> failure = mode == SaveMode::files     ? dataToTempFile(done, urls)
                                     : mode == SaveMode::newItem ? saveNewImages(done, urls)
                                                                 : modifyImages(done, urls);
    if (failure) failed(failure);
    else onCompletition(urls, std::nullopt);
}

namespace {

// The file name a rewritten photo is saved under: its own, or .jpg when drawn anew as JPEG.
QString savedName(const ModifyingPhotoAsset& photo) {
    const auto* data = std::get_if<imageio::Rewritten>(&photo.dataSource);
    QString name = photo.tsAsset->ddStore().datas.value(TSKey::NAME).value_or(QFileInfo(photo.tsAsset->path()).fileName());
    if (data && imageio::detectFormat(data->head(64)) == imageio::Format::Jpeg &&
        imageio::detectFormat(photo.tsAsset->imageData()) != imageio::Format::Jpeg)
        name = QFileInfo(name).completeBaseName() + QStringLiteral(".jpg");
    return name;
}

// The adjustment data of every edit in place: this program's mark, no edit parameters.
QByteArray adjustmentPayload() {
    return QJsonDocument(QJsonObject{{"key1", QStringLiteral("Tessorin")}, {"key2", QStringLiteral("value2")}}).toJson(QJsonDocument::Compact);
}

}  // namespace

std::optional<QString> ExifModifier::saveNewImages(const QList<ModifyingPhotoAsset>& assets, QStringList& identifiers) const {
    std::optional<QString> failure;
    for (const auto& photo : assets) {
        const auto* data = std::get_if<imageio::Rewritten>(&photo.dataSource);
        std::optional<library::Location> place;
        if (const auto& l = photo.tags->userLocation)
            place = library::Location{l->coordinate.latitude, l->coordinate.longitude, std::nullopt};
        QString error;
        auto id = data ? library->createAsset(data->joined(), savedName(photo), photo.tags->userDate, place, {}, &error) : std::nullopt;
        Log::info(QStringLiteral("Finished updating asset. %1").arg(id ? QStringLiteral("Success.") : error));
        // Each item is tried; the last failure is the one told.
        if (id) identifiers << *id;
        else failure = QStringLiteral("Error saving the image");
    }
    return failure;
}

std::optional<QString> ExifModifier::modifyImages(const QList<ModifyingPhotoAsset>& assets, QStringList& identifiers) const {
    // Every item must be a library item before any is changed.
    QStringList ids;
    for (const auto& photo : assets) {
        auto item = library->assetForPath(photo.tsAsset->path());
        if (!item || !std::holds_alternative<imageio::Rewritten>(photo.dataSource)) return QStringLiteral("Not a PHAsset");
        ids << item->localIdentifier;
    }
    for (qsizetype i = 0; i < assets.size(); ++i) {
        const QByteArray data = std::get<imageio::Rewritten>(assets[i].dataSource).joined();
        const QString extension = QFileInfo(savedName(assets[i])).suffix();
        QString error;
        const bool ok = library->editInPlace(ids[i], data, extension, adjustmentPayload(), &error);
        Log::info(QStringLiteral("Finished updating asset. \n-> %1").arg(ok ? QStringLiteral("Success.") : error));
        if (!ok) return QStringLiteral("Error updating the photo (%1)").arg(error);
        identifiers << ids[i];
    }
    return std::nullopt;
}

std::optional<QString> ExifModifier::dataToTempFile(const QList<ModifyingPhotoAsset>& assets, QStringList& urls) const {
    for (const auto& photo : assets) {
        const auto* data = std::get_if<imageio::Rewritten>(&photo.dataSource);
        // The ranges kept from the source are copied from its file by the kernel.
        const int sourceFd = data && data->keepsFrom(photo.tsAsset->imageData()) ? photo.tsAsset->fileHandle() : -1;
        // A photo drawn anew as JPEG is named as one.
        const QString name = savedName(photo);
        // Written to a temporary file beside the target, flushed to the disk, and renamed over it
        // only once complete; the folder is flushed after, so a power cut leaves one file or the other.
        const QString target = QDir(filesDirectory).filePath(name);
        QString failure;
        if (!data) {
            failure = QStringLiteral("no data");
        } else if (QFileInfo::exists(target)) {
            QSaveFile file(target);
            if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
                failure = file.errorString();
            } else if (auto cause = data->writeTo(file.handle(), sourceFd)) {
                failure = *cause;
                file.cancelWriting();
            } else {
                fileio::commitDurably(file, &failure);
            }
        } else {
            QTemporaryFile file(QDir(filesDirectory).filePath(QStringLiteral(".") + name + QStringLiteral(".XXXXXX")));
            if (!file.open()) failure = file.errorString();
            else if (auto cause = data->writeTo(file.handle(), sourceFd)) failure = *cause;  // the temporary file removes itself
            else if (!file.setPermissions(newFilePermissions()) || !fileio::syncFile(file.handle())) failure = file.errorString();
            else if (fileio::renameDurably(file.fileName(), target, &failure)) file.setAutoRemove(false);  // it is the target now
        }
        if (!failure.isEmpty()) {
            if (data) Log::error("Error writing the file: " + failure);
            return QStringLiteral("Error writing data to file");
        }
        urls << QUrl::fromLocalFile(target).toString();
    }
    return std::nullopt;
}
