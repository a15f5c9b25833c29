// SPDX-License-Identifier: GPL-3.0-or-later
#include "ResourcesModel.h"

#include "Log.h"
#include "ResourceActor.h"

#include <QMetaObject>
#include <QPointer>

ResourcesModel::ResourcesModel(std::vector<std::shared_ptr<const RawResource>> resources, QObject* parent)
    : QObject(parent) {
    for (size_t i = 0; i < resources.size(); ++i) {
        const QString key = QString::number(i);
        rawSourcesDic_.insert(key, resources[i]);
        orderedKeys_ << key;
    }
    imgNumber_ = int(resources.size() * (allAuxiliaryImageTypes.size() + 1));
}

ResourcesModel::~ResourcesModel() { *cancelled_ = true; }

void ResourcesModel::load() {
    if (started_ || !processedKeys_.isEmpty()) return;
    started_ = true;
    QPointer<ResourcesModel> self(this);
    // Each result is posted to the GUI thread on its own; the loop goes on without waiting.
    auto post = [self](std::function<void(ResourcesModel&)> update) {
        QMetaObject::invokeMethod(
            self.data(),
            [self, update] {
                if (!self) return;
                update(*self);
                emit self->changed();
            },
            Qt::QueuedConnection);
    };
    const auto keys = orderedKeys_;
    const auto raws = rawSourcesDic_;
    ResourceActor::shared().enqueue([keys, raws, post, cancelled = cancelled_, self] {
        for (const QString& key : keys) {
            if (*cancelled) return;
            std::unique_ptr<TSResourceActorProtocol> actor = makeActor(raws.value(key));
            if (!actor) {
                // An unknown kind of resource ends the loop: the bar never fills.
                Log::error("ResourceActor domain, code 42: no loader for resource " + key);
                break;
            }
            actor->load();
            post([key, record = actor->loadedResource()](ResourcesModel& m) {
                m.processedKeys_ << key;
                m.resourcesDic_[key] = record;
                m.progress_ += 1;
            });
            for (AuxiliaryImageType type : allAuxiliaryImageTypes) {
                if (*cancelled) return;
                const bool found = actor->checkAuxiliary(type);
                post([key, type, found, record = actor->loadedResource()](ResourcesModel& m) {
                    if (found) {
                        m.resourcesDic_[key] = record;
                        m.resourcesSub_[key] << type;
                    }
                    m.progress_ += 1;
                });
            }
        }
        QMetaObject::invokeMethod(
            self.data(), [self] { if (self) emit self->finished(); }, Qt::QueuedConnection);
    });
}
