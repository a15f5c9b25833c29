// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The group screen: the current album's items as a list, or as a grid of four a row when
// "gridView" is on. One model row is one list cell or one grid row; its `items` carry each
// item's index, thumbnail source and video flag. It is the album's group observer and the library
// observer's delegate: a change of the library is shown as removed, inserted, changed and moved
// rows where the view can animate them, and as a reset where it can't.
#include "TSAlbum.h"
#include "TSLibraryObserver.h"
#include "TSMetaDataObservable.h"

#include <QAbstractListModel>
#include <memory>

class GroupViewModel : public QAbstractListModel,
                       public GroupObserver,
                       public TSMetaDataObserver,
                       public TSLibraryViewer {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY albumChanged)
    Q_PROPERTY(bool gridView READ gridView NOTIFY gridViewChanged)
    // The bar button's symbol: what a tap switches to.
    Q_PROPERTY(QString toggleSymbol READ toggleSymbol NOTIFY gridViewChanged)
    Q_PROPERTY(int count READ count NOTIFY albumChanged)
    // Where select() put the mark: the model row and, in a grid, the thumbnail in that row.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(int selectedColumn READ selectedColumn NOTIFY selectionChanged)
    Q_PROPERTY(int selectedIndex READ selectedIndex NOTIFY selectionChanged)
public:
    static constexpr int columns = 4;
    static constexpr double spacing = 2.0;

    enum Role { IndexRole = Qt::UserRole + 1, ItemsRole, NameRole, DateRole, TimeRole, ThumbnailRole, VideoRole };
    Q_ENUM(Role)

    explicit GroupViewModel(QObject* parent = nullptr);

    QString title() const;
    bool gridView() const;
    QString toggleSymbol() const;
    int count() const;
    int selectedRow() const { return selectedRow_; }
    int selectedColumn() const { return selectedColumn_; }
    int selectedIndex() const { return selectedIndex_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // The grid's row height for a view width: a square thumbnail plus the spacing.
    Q_INVOKABLE static double gridRowHeight(double viewWidth);
    // The model row that holds an item, and the item's place in that row.
    int rowOf(int index) const;
    int columnOf(int index) const;
    // The thumbnail source of a file: image://thumb/ and the percent-encoded path.
    // A library item's goes through the desktop's thumbnail cache: image://thumb/lib/...
    static QString thumbnailSource(const QString& path, bool libraryItem = false);

    // Takes the current album and becomes its group observer, then appears.
    Q_INVOKABLE void attach();
    // The screen is on view again: a tablet shows the album's current item beside it, a phone
    // marks the item it comes back from.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void toggleView();
    // Opens an item: nothing in an empty album; otherwise the album moves there, and on a
    // tablet the item is marked here while the detail beside follows, on a phone the detail opens.
    Q_INVOKABLE void show(int index);
    Q_INVOKABLE void select(int index);
    // The group was left by back: the album is reset, so the detail shows nothing.
    Q_INVOKABLE void leave();

    // GroupObserver: the album's contents changed.
    void reload(bool changed) override;
    // The library changed under the album: batch updates in the list; in the grid only changed
    // items reload their rows; anything else (and any move) takes the full refresh.
    void libraryDidChange(const library::ChangeDetails& details) override;
    // On a tablet the detail beside may page on its own (strip, arrow keys): the mark follows.
    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;

signals:
    void albumChanged();
    void gridViewChanged();
    void selectionChanged();
    // On a phone, show(index) asks for the detail.
    void detailRequested();

private:
    std::shared_ptr<TSAlbum> album_;
    int selectedRow_ = -1;
    int selectedColumn_ = -1;
    int selectedIndex_ = -1;
    QVariantMap item(int index) const;
    // While a batch update runs: the rows the view has been told of, and no resets.
    int shownRows_ = -1;
    void refresh(const library::ChangeDetails& details);
};
