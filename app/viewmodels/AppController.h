// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// The app's navigation: which screens are stacked in the browsing column (album list, group,
// detail on a phone; settings and about over the list), whether the window is tablet-sized,
// and the links and files the app was started with. QML follows the signals; it decides nothing.
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <optional>

class AppController : public QObject {
    Q_OBJECT
    // The stacked screens, root first: "albums", "group", "detail", "settings", "about".
    Q_PROPERTY(QStringList screens READ screens NOTIFY screensChanged)
    // A tablet-sized window: the detail stands beside the browsing column instead of on top of it.
    Q_PROPERTY(bool pad READ pad NOTIFY padChanged)
    Q_PROPERTY(QString appName READ appName CONSTANT)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(QString licence READ licence CONSTANT)
public:
    // A window at least this wide shows the split view.
    static constexpr int padWidth = 700;

    explicit AppController(QObject* parent = nullptr);

    QStringList screens() const { return screens_; }
    bool pad() const;
    static QString appName();
    static QString version();
    static QString licence();
    // The About screen's credits, one line each: the libraries with the versions in use and their
    // licences; the data with its attribution, OpenStreetMap's terms while its tiles are shown.
    Q_INVOKABLE QStringList libraryCredits() const;
    Q_INVOKABLE QStringList dataCredits() const;

    // Follows the window: sets the tablet flag of the app state. A phone-sized window that
    // becomes a split hands its stacked detail over to the right-hand side.
    Q_INVOKABLE void setWindowWidth(int width);

    Q_INVOKABLE void openGroup();
    // On a phone the detail goes on the stack; on a tablet it is always beside the column.
    Q_INVOKABLE void openDetail();
    Q_INVOKABLE void openSettings();
    Q_INVOKABLE void openAbout();
    // One screen back; nothing at the root. Leaving the group by back resets the album.
    Q_INVOKABLE void back();
    // Everything but the album list goes; the list then acts on a pending link.
    Q_INVOKABLE void rebuildRoot();

    // A tessorin://NAME link: the host is kept as the album to open, the root is rebuilt.
    Q_INVOKABLE void openUrl(const QString& link);
    // Sorts the command line's arguments (after the program's name) into links, opened as
    // links, and files, handed on as one pick through filesOpened.
    void openArguments(const QStringList& arguments);

    // Keeps the host of a link as the album name to open; logs a link without one.
    static void urlScheme(const QString& link);
    // The host of a link, percent-decoded, as it was written: album titles have capitals and
    // spaces, which QUrl would fold or refuse in a host.
    static std::optional<QString> host(const QString& link);

signals:
    void screensChanged();
    void padChanged();
    // For the view: one screen pushed, one popped, all but the root popped.
    void pushed(const QString& screen);
    void popped(const QString& screen);
    void rootRebuilt();
    // The group was left by back.
    void groupLeft();
    // Files from the command line, to open as a files album.
    void filesOpened(const QStringList& paths);

private:
    QStringList screens_{QStringLiteral("albums")};
    void push(const QString& screen);
};
