// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The resource list of the detail screen: whether the current item offers it (the detail check
// for auxiliary images, run off the GUI thread), the sheet's sections and rows over a
// ResourcesModel, and the full-screen view of one file with its "save a copy" share.
#include "ResourcesModel.h"
#include "TSMetaDataObservable.h"

#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QVariantList>

class ResourcesViewModel : public QObject, public TSMetaDataObserver {
    Q_OBJECT
    // The current item holds an auxiliary image (or several resources): the toolbar offers the list.
    Q_PROPERTY(bool available READ available NOTIFY availableChanged)
    Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY openChanged)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString doneTitle READ doneTitle CONSTANT)
    Q_PROPERTY(int progress READ progress NOTIFY listChanged)
    Q_PROPERTY(int total READ total NOTIFY listChanged)
    // The bar stands above the list until every step is counted.
    Q_PROPERTY(bool showProgress READ showProgress NOTIFY listChanged)
    // In completion order: {header, rows: [{title, subtitle, symbol ("hourglass" | "doc.text" | ""),
    // thumbnail (a file to draw, when symbol is empty), url}]}.
    Q_PROPERTY(QVariantList sections READ sections NOTIFY listChanged)
    // The file shown full screen, and how: "image", "video" or "text", with the text's line.
    Q_PROPERTY(QUrl mediaUrl READ mediaUrl NOTIFY mediaChanged)
    Q_PROPERTY(QString mediaKind READ mediaKind NOTIFY mediaChanged)
    // The image on view as the thumbnail provider draws it: upright, and HEIF too.
    Q_PROPERTY(QString mediaImage READ mediaImage NOTIFY mediaChanged)
    Q_PROPERTY(QString mediaText READ mediaText NOTIFY mediaChanged)
    Q_PROPERTY(QString shareSymbol READ shareSymbol CONSTANT)

public:
    explicit ResourcesViewModel(QObject* parent = nullptr);

    bool available() const { return available_; }
    bool isOpen() const { return bool(model_); }
    // Opening builds the model over the current item's resources and starts loading them.
    void setOpen(bool open);
    QString title() const { return QStringLiteral("Resources"); }
    QString doneTitle() const { return QStringLiteral("Done"); }
    int progress() const { return model_ ? model_->progress() : 0; }
    int total() const { return model_ ? model_->imgNumber() : 0; }
    bool showProgress() const { return progress() < total(); }
    QVariantList sections() const;
    QUrl mediaUrl() const { return mediaUrl_; }
    QString mediaKind() const { return mediaKind_; }
    QString mediaImage() const;
    QString mediaText() const;
    QString shareSymbol() const { return QStringLiteral("square.and.arrow.up"); }
    ResourcesModel* model() const { return model_; }

    // The full-screen view of a row's file; an empty URL closes it.
    Q_INVOKABLE void showMedia(const QUrl& url);
    // Saves a copy of the file on view; false when it could not be written.
    Q_INVOKABLE bool saveCopy(const QUrl& target);
    Q_INVOKABLE QString suggestedName() const;

    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;
    void beginLoading(const std::shared_ptr<TSAlbum>& album) override;

signals:
    void availableChanged();
    void openChanged();
    void listChanged();
    void mediaChanged();

private:
    void setAvailable(bool available);
    // "image", "video" or "text" for a file, by its content.
    static QString kindOf(const QUrl& url);

    bool available_ = false;
    QPointer<ResourcesModel> model_;
    QUrl mediaUrl_;
    QString mediaKind_;
    int checkGeneration_ = 0;
};
