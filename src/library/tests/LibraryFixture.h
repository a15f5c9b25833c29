// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A library in a temporary folder, with the settings, data folder (and so the trash) of the
// test's own.
#include "Isolation.h"
#include "Library.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

class LibraryFixture : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(tmp.isValid());
        // Named folders of the test's own, so tests can look into the data folder's trash.
        isolation().setEnv("XDG_DATA_HOME", path("data").toUtf8());
        isolation().setEnv("XDG_CONFIG_HOME", path("config").toUtf8());
        isolation().setEnv("XDG_CACHE_HOME", path("cache").toUtf8());
        isolation().setEnv("HOME", path("home").toUtf8());
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("config"));
        QDir().mkpath(root());
        QDir().mkpath(path("home"));
        isolation().setEnv("TESSORIN_LIBRARY", root().toUtf8());
        reopen();
    }
    void TearDown() override { lib.reset(); }

    QString path(const QString& relative) const { return tmp.path() + '/' + relative; }
    QString root() const { return path("lib"); }
    QString database() const { return path("data/library.sqlite"); }
    void reopen(QStringList folders = {}) {
        lib.reset();
        lib = std::make_unique<library::Library>(folders.isEmpty() ? QStringList{root()} : folders, database());
        ASSERT_TRUE(lib->isOpen()) << lib->openError().toStdString();
    }
    // Copies a corpus file into the library under `relative`.
    QString add(const QString& corpusRelative, const QString& relative) {
        const QString target = root() + '/' + relative;
        QDir().mkpath(QFileInfo(target).absolutePath());
        const QString source = testsupport::corpusDir() + '/' + corpusRelative;
        EXPECT_TRUE(QFile::copy(source, target)) << source.toStdString();
        return target;
    }
    // The one asset holding this file.
    library::Asset assetOf(const QString& file) {
        auto a = lib->assetForPath(file);
        EXPECT_TRUE(a.has_value()) << file.toStdString();
        return a.value_or(library::Asset{});
    }

    QTemporaryDir tmp;
    std::unique_ptr<library::Library> lib;
};
