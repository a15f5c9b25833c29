// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once
// A library in the test's own library folder, with the settings, data folder (and so the trash)
// of the test's isolation.
#include "Isolation.h"
#include "Library.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <memory>

class LibraryFixture : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        base_ = isolation().root();
        ASSERT_TRUE(QFileInfo(database()).dir().exists()) << "the isolation makes the data folder";
        ASSERT_EQ(qEnvironmentVariable("TESSORIN_LIBRARY"), root());
        reopen();
    }
    void TearDown() override { lib.reset(); }

    // A path in the isolation's folder: "data" is XDG_DATA_HOME (with the trash), "library" the
    // library folder.
    QString path(const QString& relative) const { return base_ + '/' + relative; }
    QString root() const { return path("library"); }
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
    // Copies of corpus files outside the library, for hard links: the corpus's files belong to
    // another user, whom the kernel's protected hard links leave alone.
    QStringList ownCopies(const QStringList& corpusRelative) {
        QDir().mkpath(path("sources"));
        QStringList copies;
        for (const QString& s : corpusRelative) {
            const QString copy = path("sources/") + QFileInfo(s).fileName();
            EXPECT_TRUE(QFile::copy(testsupport::corpusDir() + '/' + s, copy)) << s.toStdString();
            copies << copy;
        }
        return copies;
    }
    // The one asset holding this file.
    library::Asset assetOf(const QString& file) {
        auto a = lib->assetForPath(file);
        EXPECT_TRUE(a.has_value()) << file.toStdString();
        return a.value_or(library::Asset{});
    }

    std::unique_ptr<library::Library> lib;

private:
    QString base_;
};
