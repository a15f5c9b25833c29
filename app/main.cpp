// SPDX-License-Identifier: GPL-3.0-or-later
// tessorin [FILE... | tessorin://ALBUM]: the app. Files open as a files album; a link opens the
// album it names. `tessorin --screenshots DIR [FILE...]` draws every screen over the demo album
// (or the files given) offscreen and writes PNG pictures into DIR.
#include "AppController.h"
#include "AppModels.h"
#include "AppState.h"
#include "Log.h"
#include "QmlSetup.h"
#include "Recent.h"
#include "Screenshots.h"
#include "SingleInstance.h"
#include "Albums.h"
#include "TSAlbum.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QQmlApplicationEngine>
#include <QSettings>
#include <QTemporaryDir>
#include <QTranslator>
#include <QWindow>
#include <cstring>

namespace {

bool wantsScreenshots(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--screenshots") == 0) return true;
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    // The pictures are drawn without a display, by the software renderer, so that they come out
    // the same on every machine.
    if (wantsScreenshots(argc, argv)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND")) qputenv("QT_QUICK_BACKEND", "software");
    }

    // Start-up, in order: the log, the defaults (Settings answers an unset flag with its
    // default and writes nothing, so registering them is a matter of the table there), the
    // recent dates and places.
    Log::configure(LogDateFormatter(QStringLiteral("yyyy-MM-dd HH:mm:ssSSS")), ExtraInfo::both);
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(AppController::appName());
    QGuiApplication::setApplicationVersion(AppController::version());
    QGuiApplication::setDesktopFileName(QStringLiteral("org.tessorin.Tessorin"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/tessorin.svg")));

    // The user's language, for our texts and for Qt's own dialogs; English where there is none.
    QTranslator qtTexts;
    if (qtTexts.load(QLocale(), QStringLiteral("qt"), QStringLiteral("_"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&qtTexts);
    QTranslator ownTexts;
    if (ownTexts.load(QLocale(), QStringLiteral("tessorin"), QStringLiteral("_"), QStringLiteral(":/i18n")))
        QCoreApplication::installTranslator(&ownTexts);

    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "See and fix what photos and videos say about themselves."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshots(QStringLiteral("screenshots"),
                                         QCoreApplication::translate("main", "Write pictures of every screen into <dir> and quit."),
                                         QStringLiteral("dir"));
    parser.addOption(screenshots);
    const QCommandLineOption lastPhoto(QStringLiteral("last-photo"), QCoreApplication::translate("main", "Open the photo last viewed."));
    parser.addOption(lastPhoto);
    parser.addPositionalArgument(QStringLiteral("files"), QCoreApplication::translate("main", "Photos and videos, or a tessorin://ALBUM link."),
                                 QStringLiteral("[FILE... | tessorin://ALBUM]"));
    parser.process(app);

    // The pictures show the screens as a first start sees them, and never touch the user's
    // settings.
    QTemporaryDir settingsDir;
    if (parser.isSet(screenshots))
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());

    // A link or file opened while the app runs goes to the running one.
    SingleInstance instance;
    if (!parser.isSet(screenshots)) {
        QStringList handed = parser.positionalArguments();
        for (QString& a : handed)
            if (!a.contains(QLatin1String("://"))) a = QFileInfo(a).absoluteFilePath();
        if (parser.isSet(lastPhoto)) handed.prepend(QStringLiteral("--last-photo"));
        if (SingleInstance::handOver(handed)) return 0;
        instance.listen();
    }

    recents::loadRecents();

    appqml::setStyle();
    AppModels models;
    models.registerWithQml();
    QQmlApplicationEngine engine;
    appqml::setUpEngine(engine);

    if (parser.isSet(screenshots)) {
        QStringList files = parser.positionalArguments();
        if (files.isEmpty()) files = Screenshots::demoFiles(QCoreApplication::applicationDirPath() + "/../demo");
        return Screenshots(engine, models).run(parser.value(screenshots), files);
    }

    engine.load(QUrl(QStringLiteral("qrc:/qml/Main.qml")));
    if (engine.rootObjects().isEmpty()) return 1;
    // The library is read once the screens listen, so that its alert can show.
    appState().pendingQuickAction = parser.isSet(lastPhoto);
    models.openLibrary({}, true, true);
    appState().maxImages = TSEnvironment::ramCheck(TSEnvironment::physicalMemory());
    models.app->openArguments(parser.positionalArguments());
    QObject::connect(&instance, &SingleInstance::argumentsReceived, &models, [&models, &engine](QStringList arguments) {
        if (arguments.removeAll(QStringLiteral("--last-photo")) > 0) {
            appState().pendingQuickAction = true;
            models.app->rebuildRoot();
        }
        models.app->openArguments(arguments);
        if (auto* window = qobject_cast<QWindow*>(engine.rootObjects().value(0))) {
            window->raise();
            window->requestActivate();
        }
    });
    return app.exec();
}
