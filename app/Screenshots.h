// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// Draws every screen over a set of files and writes a PNG of each, at a phone's size and at a
// tablet's. It moves between screens only as a user would, through the view models.
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

class AppModels;
class QQmlApplicationEngine;
class QQuickWindow;

class Screenshots {
public:
    Screenshots(QQmlApplicationEngine& engine, AppModels& models) : engine_(engine), models_(models) {}

    // The demo album's photos and movies in a folder, sorted by name.
    static QStringList demoFiles(const QString& folder);
    // Returns the process's exit status: 0 when every picture was written.
    int run(const QString& outputDir, const QStringList& files);

private:
    QQmlApplicationEngine& engine_;
    AppModels& models_;
    QString dir_;
    QString prefix_;
    QQuickWindow* window_ = nullptr;
    int failures_ = 0;

    void drawAt(const QString& prefix, int width, int height, const QStringList& files);
    // The IPTC screen for one photo and for three, its contact and template forms and its choosers.
    void iptcScreens(const QStringList& files);
    // The edit screen on the item in view, then on three photos with its sub-screens and the save
    // question, then on a video.
    void editScreens(const QStringList& files);
    // Lets transitions, loading and thumbnails finish.
    void settle(int ms = 700);
    void shoot(const QString& name);
    // A view model's property or invokable by name, so that a screen still missing one is
    // skipped with a note rather than breaking the run.
    void set(QObject* model, const char* property, const QVariant& value);
    void call(QObject* model, const char* method, int argument);
    // The maps and the place-picking screens, each drawn over the window for its picture.
    void drawMaps();
    // The library's album list, group and detail, when TESSORIN_LIBRARY names one.
    void libraryScreens();
    QObject* overlay(const QByteArray& qml);
};
