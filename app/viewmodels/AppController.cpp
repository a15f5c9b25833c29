// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppController.h"

#include "AppState.h"
#include "Credits.h"
#include "Log.h"
#include "TSAlbum.h"

#include <QFileInfo>
#include <QRegularExpression>

AppController::AppController(QObject* parent) : QObject(parent) {}

bool AppController::pad() const { return appState().isPad; }

QString AppController::appName() { return QStringLiteral(TESSORIN_APP_NAME); }

QString AppController::version() { return QStringLiteral(TESSORIN_VERSION); }

QString AppController::licence() { return QString::fromLatin1(credits::programLicence); }

QStringList AppController::libraryCredits() const {
    QStringList out;
    for (const credits::Credit& c : credits::libraries()) out << credits::libraryLine(c);
    return out;
}

QStringList AppController::dataCredits() const {
    QStringList out;
    for (const credits::Credit& c : credits::data()) out << credits::dataLine(c);
    return out;
}

void AppController::setWindowWidth(int width) {
    const bool wide = width >= padWidth;
    if (wide == appState().isPad) return;
    appState().isPad = wide;
    emit padChanged();
    if (wide && screens_.last() == QLatin1String("detail")) {
        screens_.removeLast();
        emit popped(QStringLiteral("detail"));
        emit screensChanged();
    }
}

void AppController::push(const QString& screen) {
    screens_.append(screen);
    emit pushed(screen);
    emit screensChanged();
}

void AppController::openGroup() {
    if (screens_.last() == QLatin1String("group")) return;
    rebuildRoot();
    push(QStringLiteral("group"));
}

void AppController::openDetail() {
    if (pad() || screens_.last() == QLatin1String("detail")) return;
    push(QStringLiteral("detail"));
}

void AppController::openSettings() {
    if (!screens_.contains(QLatin1String("settings"))) push(QStringLiteral("settings"));
}

void AppController::openAbout() {
    if (screens_.last() != QLatin1String("about")) push(QStringLiteral("about"));
}

void AppController::back() {
    if (screens_.size() < 2) return;
    const QString screen = screens_.takeLast();
    emit popped(screen);
    emit screensChanged();
    if (screen == QLatin1String("group")) emit groupLeft();
}

void AppController::rebuildRoot() {
    if (screens_.size() > 1) {
        screens_ = QStringList{QStringLiteral("albums")};
        emit screensChanged();
    }
    emit rootRebuilt();
}

std::optional<QString> AppController::host(const QString& link) {
    const qsizetype start = link.indexOf(QLatin1String("://"));
    if (start < 0) return std::nullopt;
    // The host alone names the album; path, query and fragment are not read.
    QString authority = link.mid(start + 3);
    const qsizetype end = authority.indexOf(QRegularExpression(QStringLiteral("[/?#]")));
    if (end >= 0) authority.truncate(end);
    const QString name = QUrl::fromPercentEncoding(authority.toUtf8()).trimmed();
    if (name.isEmpty()) return std::nullopt;
    return name;
}

void AppController::urlScheme(const QString& link) {
    appState().pendingUrlAlbumName = host(link);
    if (!appState().pendingUrlAlbumName) Log::debug(QStringLiteral("Invalid URL or album path missing"));
}

void AppController::openUrl(const QString& link) {
    urlScheme(link);
    rebuildRoot();
}

void AppController::openArguments(const QStringList& arguments) {
    QStringList paths;
    for (const QString& argument : arguments) {
        if (argument.startsWith(QLatin1String("tessorin:"), Qt::CaseInsensitive)) {
            openUrl(argument);
            continue;
        }
        const QUrl url(argument);
        // The desktop file passes %U: local files may come as file:// links.
        const QString path = url.isLocalFile() ? url.toLocalFile() : argument;
        const QFileInfo info(path);
        if (info.isFile()) paths << info.absoluteFilePath();
        else Log::warning(QStringLiteral("📂 not a file: ") + argument);
    }
    if (!paths.isEmpty()) emit filesOpened(paths);
}
