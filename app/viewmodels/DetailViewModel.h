// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The detail screen as a whole: the strip of images above the tables, its height as the user
// drags it, the switch between the detail and the tag table, the bars' state while an item
// loads, paging with the keys, and the full-screen view with its zoom limits.
#include "ImageStripModel.h"
#include "Library.h"
#include "TSAlbum.h"
#include "TSMetaDataObservable.h"

#include <QObject>
#include <QSizeF>
#include <QUrl>

class DetailViewModel : public QObject,
                        public TSMetaDataObserver,
                        public TSCloudObserver,
                        public TSViewControllerObserver {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY showTagsChanged)
    Q_PROPERTY(bool showTags READ showTags WRITE setShowTags NOTIFY showTagsChanged)
    // The window's size: the strip's default height follows it.
    Q_PROPERTY(QSizeF screenSize READ screenSize WRITE setScreenSize NOTIFY geometryChanged)
    Q_PROPERTY(qreal minimumHeight READ minimumHeight CONSTANT)
    Q_PROPERTY(qreal defaultHeight READ defaultHeight NOTIFY geometryChanged)
    // The height below the bars that strip and table share, set by the page from its layout.
    Q_PROPERTY(qreal availableHeight READ availableHeight WRITE setAvailableHeight NOTIFY geometryChanged)
    // Past this height the strip opens the full-screen view.
    Q_PROPERTY(qreal maximumHeight READ maximumHeight NOTIFY geometryChanged)
    Q_PROPERTY(qreal stripHeight READ stripHeight WRITE setStripHeight NOTIFY stripHeightChanged)
    Q_PROPERTY(bool bouncing READ bouncing NOTIFY bouncingChanged)
    Q_PROPERTY(bool fullScreen READ fullScreen WRITE setFullScreen NOTIFY fullScreenChanged)
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    Q_PROPERTY(int count READ count NOTIFY currentChanged)
    Q_PROPERTY(bool currentIsVideo READ currentIsVideo NOTIFY currentChanged)
    Q_PROPERTY(QUrl currentSource READ currentSource NOTIFY currentChanged)
    Q_PROPERTY(bool barEnabled READ barEnabled NOTIFY barChanged)
    // A veil over the tables while they still show the previous item.
    Q_PROPERTY(bool overlayShown READ overlayShown NOTIFY barChanged)
    // The cloud download's progress, 0 to 1; below 0 when there is none to show.
    Q_PROPERTY(qreal cloudProgress READ cloudProgress NOTIFY cloudChanged)
    // The live photo's movie of the item on view; empty for any other item. A motion photo's
    // movie, which lives inside the photo, is copied out to a temporary file first.
    Q_PROPERTY(QUrl liveVideoSource READ liveVideoSource NOTIFY currentChanged)
    // Where the movie plays from, in milliseconds: the frame the still was taken from, when the
    // motion photo names it.
    Q_PROPERTY(qint64 liveStartMs READ liveStartMs NOTIFY currentChanged)
    // The movie plays over the still: once at a tap on the live badge or the strip's live mark,
    // and when the full-screen view opens while "showLivePhotos" is on.
    Q_PROPERTY(bool livePlaying READ livePlaying WRITE setLivePlaying NOTIFY livePlayingChanged)
    Q_PROPERTY(ImageStripModel* strip READ strip CONSTANT)
public:
    static constexpr qreal lineSpacing = 10.0;
    // The strip's own bar under the images, which stays in view when the strip is at its largest.
    static constexpr qreal toolbarHeight = 19.0;

    explicit DetailViewModel(QObject* parent = nullptr);

    QString title() const { return showTags_ ? tr("All Tags") : tr("Details"); }
    bool showTags() const { return showTags_; }
    void setShowTags(bool on);
    Q_INVOKABLE void toggleTables() { setShowTags(!showTags_); }

    QSizeF screenSize() const { return screenSize_; }
    void setScreenSize(const QSizeF& size);
    // The window turned from phone to tablet size or back: the strip goes to its new default.
    Q_INVOKABLE void layoutChanged();
    qreal minimumHeight() const { return 100.0; }
    qreal defaultHeight() const;
    static qreal defaultHeight(const QSizeF& screen, bool pad);
    qreal availableHeight() const { return availableHeight_; }
    void setAvailableHeight(qreal height);
    qreal maximumHeight() const { return availableHeight_ - toolbarHeight; }
    qreal stripHeight() const;
    void setStripHeight(qreal height);
    bool bouncing() const { return bouncing_; }

    // The table or the strip moved by dy: the strip grows when pulled past the top, shrinks
    // (down to the minimum) when pushed up, and opens the full-screen view past the maximum.
    Q_INVOKABLE void offsetChanged(qreal dy);
    // A vertical pan on the strip: only upward moves count.
    Q_INVOKABLE void panChanged(qreal translationY);
    // The drag ended: the strip snaps to the default height, or to the minimum when released
    // below the default. The page animates to stripHeight and then calls bounceFinished().
    Q_INVOKABLE void dragEnded();
    Q_INVOKABLE void bounceFinished();
    qreal bounceTarget() const;

    bool fullScreen() const { return fullScreen_; }
    void setFullScreen(bool on);
    // ZoomPanView's limits for an image in a view: it fits at the minimum, and is never shown
    // larger than 1.5 times its size or seven times the fit.
    Q_INVOKABLE static qreal minimumZoom(qreal viewWidth, qreal viewHeight, qreal imageWidth, qreal imageHeight);
    Q_INVOKABLE static qreal maximumZoom(qreal viewWidth, qreal viewHeight, qreal imageWidth, qreal imageHeight);

    int currentIndex() const;
    int count() const;
    bool currentIsVideo() const;
    QUrl currentSource() const;

    ImageStripModel* strip() const { return strip_; }
    // An item's picture, for the full-screen view's placeholder.
    Q_INVOKABLE QString imageSource(int index) const { return ImageStripModel::imageSource(index); }

    // The strip's item under its centre for a scroll offset (the strip's left inset included).
    Q_INVOKABLE static int indexAt(qreal offset, qreal inset, qreal itemWidth);
    Q_INVOKABLE void dragBegan();
    // The strip came to rest: a new index becomes the album's; the same one only lifts the veil.
    Q_INVOKABLE void decelerationEnded(qreal offset, qreal inset, qreal itemWidth);
    // The arrow keys.
    Q_INVOKABLE void next();
    Q_INVOKABLE void previous();

    QUrl liveVideoSource() const;
    qint64 liveStartMs() const;
    bool livePlaying() const { return livePlaying_; }
    void setLivePlaying(bool on);

    bool barEnabled() const { return barEnabled_; }
    bool overlayShown() const { return overlayShown_; }
    qreal cloudProgress() const { return cloudProgress_; }

    // Where a new picture landed when the album on view doesn't hold it: a fetch, its index
    // there, and the album's title.
    struct Landing {
        library::FetchResult fetch;
        int index = 0;
        QString title;
    };
    // After a save of a new picture (the edit screen calls it): asks whether to go to the album
    // where the picture landed; the application's own album is offered too with "saveInTessorin".
    void offerAddedPicture(const Landing& allPhotos, const std::optional<Landing>& ownAlbum);
    // The dialog's texts, its title, message and actions, the last one "Cancel".
    struct AddedDialog {
        QString title;
        QString message;
        QStringList actions;
    };
    const std::optional<AddedDialog>& addedDialog() const { return addedDialog_; }
    // The user's choice in that dialog, by the action's place.
    Q_INVOKABLE void chooseAdded(int action);

    void beginLoading(const std::shared_ptr<TSAlbum>& album) override;
    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;
    void progress(float value) override;
    void done(const std::shared_ptr<TSAlbum>& album) override;
    void failure(const QString& message) override;
    void albumChanged() override;

signals:
    void showTagsChanged();
    void geometryChanged();
    void stripHeightChanged();
    void bouncingChanged();
    void fullScreenChanged();
    void currentChanged();
    void barChanged();
    void cloudChanged();
    void livePlayingChanged();
    // The strip should scroll to the album's current index.
    void alignRequested();
    // Another album came into view: the tables start over.
    void reloadTables();
    void alert(const QString& title, const QString& message);
    void addedDialogRequested(const QString& title, const QString& message, const QStringList& actions);

private:
    ImageStripModel* strip_;
    bool showTags_ = false;
    QSizeF screenSize_{390, 844};
    qreal availableHeight_ = 1e9;
    qreal stripHeight_ = -1;  // below 0: the default, which follows the window
    qreal precOffset_ = 0;
    bool bouncing_ = false;
    bool fullScreen_ = false;
    bool barEnabled_ = true;
    bool overlayShown_ = false;
    bool livePlaying_ = false;
    // The movie copied out of the motion photo last asked for: the file and version it came from.
    struct EmbeddedLive {
        QString path;
        qint64 version = -1;
        QUrl url;
        qint64 startMs = 0;
    };
    mutable EmbeddedLive embeddedLive_;
    const EmbeddedLive* embeddedLive() const;
    qreal cloudProgress_ = -1;
    TSAlbumId albumId_;
    std::optional<AddedDialog> addedDialog_;
    QList<Landing> landings_;

    void setBar(bool enabled, bool overlay);
    void takeIncremental();
    void setActualIndex(int index);
};
