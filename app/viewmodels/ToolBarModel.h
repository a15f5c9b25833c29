// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Which tools the detail toolbar has for the current item and album, in their fixed order, and
// the more menu's setting toggles. The decision is a plain function of the state, so a library
// item's tools follow the same rules once the library fills in what it knows.
#include "TSMetaDataObservable.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <optional>

class ToolBarModel : public QObject, public TSMetaDataObserver, public TSViewControllerObserver {
    Q_OBJECT
    // Tool names, in the order they are shown: "share", "burst", "prefer", "delete", "more", "edit", "tags".
    Q_PROPERTY(QStringList tools READ tools NOTIFY toolsChanged)
    // The more menu: {title, symbol, checked} per toggle.
    Q_PROPERTY(QVariantList moreMenu READ moreMenu NOTIFY moreMenuChanged)
    // The prefer tool's symbol: "heart.fill" for a favourite, else "heart".
    Q_PROPERTY(QString favoriteSymbol READ favoriteSymbol NOTIFY toolsChanged)
public:
    // What the photo library knows of its item; a picked file has none.
    struct LibraryItem {
        bool canDelete = false;
        bool canEdit = false;
        bool representsBurst = false;
        bool favorite = false;
    };
    struct State {
        bool albumEmpty = true;
        bool burstAlbum = false;
        std::optional<int> collectionSubtype;
        std::optional<LibraryItem> libraryItem;
        bool subtypesReady = false;
        bool timeLapse = false;
    };

    explicit ToolBarModel(QObject* parent = nullptr);

    static QStringList toolsFor(const State& state);
    // The state of the current album and its current item.
    static State currentState();

    QStringList tools() const { return tools_; }
    QVariantList moreMenu() const;
    QString favoriteSymbol() const;
    // Flips the setting of a more-menu entry and has the visible table reloaded; on a tablet the
    // first entry is "Delete", which asks like the delete tool.
    Q_INVOKABLE void toggleMore(int index);

    // The library tools. Favourite turns the mark over at once; delete first asks through
    // deleteConfirmationRequested, and confirmDelete() moves the files to the trash. The screens
    // follow through the library observer. Failures come back as alert().
    Q_INVOKABLE void favorite();
    Q_INVOKABLE void requestDelete();
    Q_INVOKABLE void confirmDelete();
    // Opens the burst of the current item as the album "Burst Photos".
    Q_INVOKABLE void burst();
    Q_INVOKABLE void edit();
    // The page calls it when it appears: an album can change without telling its items' screens.
    Q_INVOKABLE void refresh();

    void beginLoading(const std::shared_ptr<TSAlbum>& album) override;
    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;
    void albumChanged() override;

signals:
    void toolsChanged();
    void moreMenuChanged();
    // A toggle changed what the detail and tag tables show.
    void reloadTables();
    void deleteConfirmationRequested(const QString& title, const QString& message, const QString& action);
    void alert(const QString& title, const QString& message);
    // A burst album is current: the group screen shows it.
    void burstOpened();
    // The edit screen is wanted for the current item.
    void editRequested();

private:
    QStringList tools_;
    QString favoriteSymbol_;
    QString pendingDelete_;  // the item the confirmation asks about
};
