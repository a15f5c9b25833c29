// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The settings screen: one table of titled sections, a disclosure to the about page, a switch per
// setting and a row per choice of a setting with several. A row is named by its tag,
// section + row × 100.
#include <QAbstractListModel>

class SettingsViewModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { SectionRole = Qt::UserRole + 1, SectionTitleRole, TextRole, KindRole, SymbolRole, OnRole, TagRole };
    Q_ENUM(Role)

    struct Row {
        int section;
        int row;
        QString sectionTitle;
        QString text;
        QString key;  // empty for a disclosure
        QString symbol;
        QString choice = {};  // the value this row chooses for `key`; empty for a switch
        int tag() const { return section + row * 100; }
    };

    explicit SettingsViewModel(QObject* parent = nullptr);

    static const QList<Row>& rows();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // A switch was flipped, or a choice chosen (`on` true): the key is written and the change
    // logged. Unknown tags do nothing.
    Q_INVOKABLE void setSwitch(int tag, bool on);
    // A disclosure row was chosen.
    Q_INVOKABLE void select(int tag);
    // The screen is going away: the album list reloads.
    Q_INVOKABLE void close();

signals:
    // "human" changed: the detail tables show their values anew.
    void humanChanged();
    void aboutRequested();
    // "Change Photo Access...": the view lets the user choose the library's folders.
    void photoAccessRequested();
    void closed();
};
