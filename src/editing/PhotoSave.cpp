// SPDX-License-Identifier: GPL-3.0-or-later
#include "PhotoSave.h"

#include "PrivacyStrip.h"
#include "Settings.h"
#include "TSAsset.h"

namespace {

QList<ModifyingPhotoAsset> modifying(const QList<std::shared_ptr<TSAsset>>& assets) {
    QList<ModifyingPhotoAsset> out;
    for (const auto& a : assets) out << ModifyingPhotoAsset{a, std::make_shared<TagsPhotoModifier>(a->metaData()), a->imageData(), 1};
    return out;
}

}  // namespace

PhotoSave::Result PhotoSave::run(const UserSettings& wishes, const QList<std::shared_ptr<TSAsset>>& inPhotos,
                                 const QList<std::shared_ptr<TSAsset>>& inSidecars) const {
    ExifModifier photos(modifying(inPhotos));
    ExifModifier sidecars(modifying(inSidecars));
    if (batch.any()) {
        photos.eachPhoto = [this](ModifyingPhotoAsset& p) {
            for (const QString& line : applyBatch(*p.tags, batch))
                if (problem) problem(p.tsAsset->path(), line);
        };
        sidecars.eachPhoto = photos.eachPhoto;
    }
    for (ExifModifier* modifier : {&sidecars, &photos}) {
        if (motionCutOnly) {
            for (auto& p : modifier->modifing) PrivacyStrip::strip(*p.tags, PrivacyStrip::Kind::motion);
        } else {
            UserSettings own = wishes;
            modifier->modify(own);
        }
    }
    Result result;
    if (!photos.anyChanged() && !sidecars.anyChanged()) {
        result.nothingChanged = true;
        return result;
    }
    // Told once the save is through: a rendering still turns the tags upright on its way.
    const auto told = [&]() -> Result {
        for (const ExifModifier* modifier : {&sidecars, &photos})
            for (const auto& p : modifier->modifing) result.changes << p.tags->changedTags();
        return result;
    };
    const int sidecarCount = int(inSidecars.size());
    if (sidecars.anyChanged()) {
        sidecars.progress = progress;
        if ((result.failure = sidecars.saveToSidecars(Settings::value(SettingsKey::sidecarBaseName).toBool(), result.sidecars)))
            return told();
    }
    if (!photos.anyChanged()) return told();
    if (progress) photos.progress = [this, sidecarCount](int done) { progress(done + sidecarCount); };
    if (!filesDirectory.isEmpty()) photos.filesDirectory = filesDirectory;
    photos.library = library;
    photos.render = render;
    photos.keepOriginals = keepOriginals;
    photos.save(mode, [&result](const QStringList& written, const std::optional<QString>& message) {
        result.written << written;
        result.failure = message;
    });
    return told();
}
