// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The share menu of the detail screen: its rows, whether it is open, and its seven actions on the
// current item of the current album. Texts go to the clipboard; everything can then be saved
// through a save dialog (saveRequested, then saveTo); failures show an "Error" alert with "Ok".
#include "TSShare.h"

#include <QObject>
#include <QUrl>
#include <QVariantList>

class ShareViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool menuOpen READ menuOpen WRITE setMenuOpen NOTIFY menuOpenChanged)
    // Top to bottom: {kind: "title" | "button" | "separator", title, action}.
    Q_PROPERTY(QVariantList rows READ rows CONSTANT)
    Q_PROPERTY(int menuWidth READ menuWidth CONSTANT)
    Q_PROPERTY(int buttonHeight READ buttonHeight CONSTANT)
    // The pending save: the dialog's title, the file name it offers and the folder it opens in.
    Q_PROPERTY(QString saveTitle READ saveTitle NOTIFY saveChanged)
    Q_PROPERTY(QString saveFileName READ saveFileName NOTIFY saveChanged)
    Q_PROPERTY(QUrl saveFolder READ saveFolder CONSTANT)
    Q_PROPERTY(QString errorTitle READ errorTitle CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorChanged)
    Q_PROPERTY(bool errorVisible READ errorVisible NOTIFY errorChanged)

public:
    explicit ShareViewModel(QObject* parent = nullptr);

    bool menuOpen() const { return menuOpen_; }
    void setMenuOpen(bool open);
    QVariantList rows() const;
    int menuWidth() const { return 240; }
    int buttonHeight() const { return 44; }
    QString saveTitle() const { return saveTitle_; }
    QString saveFileName() const { return pending_.fileName; }
    QUrl saveFolder() const;
    QString errorTitle() const { return QStringLiteral("Error"); }
    QString errorMessage() const { return errorMessage_; }
    bool errorVisible() const { return !errorMessage_.isEmpty(); }
    // What a save would write now; empty when nothing waits.
    QByteArray pendingData() const { return pending_.data; }

    // The menu's actions: each closes the menu first, then works on the current item.
    Q_INVOKABLE void shareMeta();
    Q_INVOKABLE void shareWithoutMeta();
    Q_INVOKABLE void shareWithoutLocation();
    Q_INVOKABLE void shareDetails();
    Q_INVOKABLE void hrShare();
    Q_INVOKABLE void jsonShare();
    Q_INVOKABLE void rawShare();
    // An action by the name a row carries ("shareMeta", "hrShare", ...).
    Q_INVOKABLE void trigger(const QString& action);

    // Writes what the last action gave to the chosen file; false, with the error shown, on failure.
    Q_INVOKABLE bool saveTo(const QUrl& file);
    Q_INVOKABLE void cancelSave();
    Q_INVOKABLE void dismissError();

signals:
    void menuOpenChanged();
    void saveChanged();
    // The screen opens its save dialog.
    void saveRequested();
    void errorChanged();

private:
    void run(sharing::ShareAction action);
    void showError(const QString& message);

    bool menuOpen_ = false;
    sharing::ShareItems pending_;
    QString saveTitle_;
    QString errorMessage_;
};
