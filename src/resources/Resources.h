// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// An item's stored resources as the resource list shows them: what is known before loading
// (RawResource), one loader per kind of resource, and the finished record of a row.
#include "AuxiliaryImageType.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <map>
#include <memory>
#include <optional>

class RawResource {
public:
    virtual ~RawResource() = default;
    // Kind of the resource, for the row's title.
    virtual QString label() const = 0;
    virtual QString fileName() const = 0;
    virtual QString id() const = 0;
};

// A file opened from outside: its one resource is the file itself.
class TSFileRawResource : public RawResource {
public:
    TSFileRawResource(QString fileUrl, QByteArray resData) : fileUrl(std::move(fileUrl)), resData(std::move(resData)) {}
    QString label() const override { return {}; }
    QString fileName() const override;
    QString id() const override;

    const QString fileUrl;  // a local path
    const QByteArray resData;
};

// The thumbnail slot of a row.
struct ResourceImage {
    enum class Kind { image, temporary, genericDoc };
    Kind kind = Kind::temporary;
    QImage image;
};

struct LoadedResource {
    std::shared_ptr<const RawResource> source;
    QByteArray resData;
    std::optional<QString> url;
    QString formattedSize;
    ResourceImage resourceImg;
    std::map<AuxiliaryImageType, QImage> auxiliaryThumbnails;
    std::map<AuxiliaryImageType, QString> auxiliaryUrl;
};

// A loader; its operations run on ResourceActor, one at a time.
class TSResourceActorProtocol {
public:
    virtual ~TSResourceActorProtocol() = default;
    // Brings the data, the size text and the thumbnail up to date.
    virtual void load() = 0;
    // True when the resource holds an image of that kind that could be shown; fills the
    // thumbnail and temporary file of the kind.
    virtual bool checkAuxiliary(AuxiliaryImageType type) = 0;
    virtual LoadedResource loadedResource() const = 0;
};

class FileResourceActor : public TSResourceActorProtocol {
public:
    explicit FileResourceActor(std::shared_ptr<const TSFileRawResource> source);
    void load() override;
    bool checkAuxiliary(AuxiliaryImageType type) override;
    LoadedResource loadedResource() const override;

private:
    std::shared_ptr<const TSFileRawResource> source_;
    QString formattedSize_ = QStringLiteral("...");
    std::map<AuxiliaryImageType, QImage> auxiliaryThumbnails_;
    std::map<AuxiliaryImageType, QString> auxiliaryUrl_;
    ResourceImage resourceImg_;
    QByteArray resData_;
};

// The loader of a raw resource's kind; nothing for a kind that has none.
std::unique_ptr<TSResourceActorProtocol> makeActor(const std::shared_ptr<const RawResource>& raw);

// The side of the box a thumbnail is fitted into.
inline constexpr int resourceThumbnailSide = 52;

// The application's own folder for temporary files, made on first use and removed with
// everything in it when the application quits.
QString resourcesTemporaryFolder();
// The file name of an auxiliary image of a resource: the label without blanks goes before the
// extension ("IMG_0001.HEIC" and "Depth Map" give "IMG_0001_DepthMap.HEIC"; a name without
// extension ends in a point).
QString auxiliaryFileName(const QString& fileName, AuxiliaryImageType type);

// A motion photo's movie, as the resource list shows it.
struct EmbeddedMovie {
    QString label;     // the layout: "Motion Photo", "MicroVideo", "Samsung Motion Photo"
    QString fileName;  // the photo's name with the label squeezed in: "PXL_0001_MotionPhoto.mp4"
    QByteArray data;   // the movie, byte for byte as the photo holds it
    std::optional<qint64> presentationTimestampUs;
};
// The movie inside a photo's bytes; nothing for a still, nothing with the reason in `error`
// when the photo's claim of a movie is broken.
std::optional<EmbeddedMovie> embeddedMovie(const QByteArray& bytes, const QString& fileName, QString* error = nullptr);

// Writes data to the temporary folder under that name, replacing an earlier file; the path,
// or nothing (logged) when the write failed.
std::optional<QString> dataToTempFile(const QByteArray& data, const QString& fileName);
