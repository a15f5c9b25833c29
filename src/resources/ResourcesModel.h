// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The model behind the resource list: loads an item's resources one after the other on
// ResourceActor, looks in each for every kind of auxiliary image, and counts ten steps per
// resource (the resource, then each kind). Its published members change on the GUI thread only.
#include "Resources.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <atomic>
#include <memory>
#include <vector>

class ResourcesModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(int progress READ progress NOTIFY changed)
    Q_PROPERTY(int imgNumber READ imgNumber CONSTANT)
    Q_PROPERTY(QStringList processedKeys READ processedKeys NOTIFY changed)

public:
    // The resources in the order the item lists them. Starts no work.
    explicit ResourcesModel(std::vector<std::shared_ptr<const RawResource>> resources, QObject* parent = nullptr);
    ~ResourcesModel() override;

    // Starts loading everything; finished() follows when the last step has been published.
    // A second call does nothing.
    Q_INVOKABLE void load();

    int progress() const { return progress_; }
    int imgNumber() const { return imgNumber_; }
    const QStringList& processedKeys() const { return processedKeys_; }
    const QStringList& orderedKeys() const { return orderedKeys_; }
    const QMap<QString, LoadedResource>& resourcesDic() const { return resourcesDic_; }
    const QMap<QString, QList<AuxiliaryImageType>>& resourcesSub() const { return resourcesSub_; }
    std::shared_ptr<const RawResource> rawSource(const QString& key) const { return rawSourcesDic_.value(key); }

signals:
    void changed();
    void finished();

private:
    QMap<QString, std::shared_ptr<const RawResource>> rawSourcesDic_;
    QMap<QString, LoadedResource> resourcesDic_;
    QMap<QString, QList<AuxiliaryImageType>> resourcesSub_;
    QStringList processedKeys_;
    int progress_ = 0;
    QStringList orderedKeys_;
    int imgNumber_ = 0;
    bool started_ = false;
    // Lets a running load stop early once nobody looks at its results.
    std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
};
