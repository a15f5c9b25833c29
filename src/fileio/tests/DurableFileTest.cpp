// SPDX-License-Identifier: GPL-3.0-or-later
// A durable write replaces a file whole or not at all, keeps a replaced file's mode, and leaves no
// temporary file behind, whatever fails.
#include "DurableFile.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace testsupport;

TEST(DurableFile, ReplacesWholeOrNotAtAllAndLeavesNothingBehind) {
    QTemporaryDir dir;
    const QString path = dir.filePath("copy.jpg");
    ASSERT_TRUE(fileio::writeDurably(path, "first"));
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0604), 0);
    ASSERT_TRUE(fileio::writeDurably(path, "second, longer"));
    EXPECT_EQ(readFile(path), "second, longer");
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0604u) << "a replaced file keeps its mode";
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"copy.jpg"});

    QString error;
    EXPECT_FALSE(fileio::writeDurably(dir.filePath("missing/copy.jpg"), "x", &error));
    EXPECT_FALSE(error.isEmpty());
    // A folder in the way is not replaced.
    ASSERT_TRUE(QDir(dir.path()).mkdir("taken"));
    EXPECT_FALSE(fileio::writeDurably(dir.filePath("taken"), "x", &error));
    EXPECT_TRUE(QFileInfo(dir.filePath("taken")).isDir());

    // A write cut short by a file size limit (it holds for root too) leaves the old file whole.
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{64, saved.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_FALSE(fileio::writeDurably(path, QByteArray(4096, 'x'), &error));
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    EXPECT_EQ(readFile(path), "second, longer");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"copy.jpg"});
}

TEST(DurableFile, RenamesAcrossFoldersAndSaysWhyItCannot) {
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkdir("a"));
    ASSERT_TRUE(fileio::writeDurably(dir.filePath("a/new.tmp"), "data"));
    ASSERT_TRUE(fileio::renameDurably(dir.filePath("a/new.tmp"), dir.filePath("new.jpg")));
    EXPECT_EQ(readFile(dir.filePath("new.jpg")), "data");
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("a/new.tmp")));
    QString error;
    EXPECT_FALSE(fileio::renameDurably(dir.filePath("a/none"), dir.filePath("x"), &error));
    EXPECT_TRUE(error.contains("a/none")) << error.toStdString();
}
