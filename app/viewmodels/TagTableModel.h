// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// All tags of the current item as one flat list: a header per section that has rows, then the
// section's rows while it is open. Which sections are closed is kept for the whole process, so
// a section closed on one item stays closed on the next.
#include "TSMetaDataObservable.h"
#include "TSMetaDictionay.h"

#include <QAbstractListModel>
#include <memory>

class TagTableModel : public QAbstractListModel, public TSMetaDataObserver, public TSViewControllerObserver {
    Q_OBJECT
    // Every section's title, also of those without rows, for the "Go To:" list.
    Q_PROPERTY(QStringList sectionTitles READ sectionTitles NOTIFY reloaded)
public:
    enum Role {
        KindRole = Qt::UserRole + 1,  // "header", "row" or "download" (the data is still in the cloud)
        SectionRole,
        TitleRole,
        OpenRole,
        LabelRole,
        ValueRole,
    };

    explicit TagTableModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QStringList sectionTitles() const;
    const TSMetaDictProtocol& metaDic() const { return *metaDic_; }

    // Section key -> open; a key not in the map is open.
    static QHash<QString, bool>& collapseState();
    bool isOpen(int section) const;

    // Flips the section's open state and inserts or removes its rows.
    Q_INVOKABLE void toggle(int section);
    // The list index that brings the section to the top: its header, or where it would be.
    int indexOfSection(int section) const;
    // The same for a choice in the "Go To:" list; a closed section stays closed.
    Q_INVOKABLE int goTo(int section) const;
    // Puts the value of the row at a list index on the clipboard.
    Q_INVOKABLE void copy(int index) const;
    // Rebuilds the sections from the current item and the "human" setting.
    Q_INVOKABLE void reload();

    void processedMetaData(const std::shared_ptr<TSAlbum>& album) override;
    // Another album, or none after going back to the list: the table shows no stale item.
    void albumChanged() override { reload(); }

signals:
    void reloaded();

private:
    enum class Kind { header, row, download };
    struct Entry {
        Kind kind;
        int section;
        int row;
    };
    std::unique_ptr<TSMetaDictProtocol> metaDic_;
    bool needingDownload_ = false;
    QList<Entry> entries_;

    QString sectionKeyText(int section) const;
    int rowsIn(int section) const;
    QList<Entry> sectionEntries(int section) const;
    void rebuildEntries();
};
