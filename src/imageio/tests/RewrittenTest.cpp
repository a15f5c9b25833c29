// SPDX-License-Identifier: GPL-3.0-or-later
// A rewritten file made of new bytes and kept ranges of its source: read back, joined and saved
// (through the kernel from the source file, or from memory) it is the same file.
#include "Rewritten.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

using imageio::Rewritten;

namespace {

QByteArray pattern(qsizetype n) {
    QByteArray out(n, Qt::Uninitialized);
    for (qsizetype i = 0; i < n; ++i) out[i] = char(i % 251);
    return out;
}

QByteArray fileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

struct Made {
    Rewritten file;
    QByteArray expected;  // the same file, made by hand
};

// A header before the source, the source with a wiped stretch, a patch that spans a new piece
// and a kept one, and a new tail.
Made sample(const QByteArray& source) {
    Made m{Rewritten::from(source), {}};
    m.file.add("HEAD");
    m.file.keep(0, 100);
    m.file.add("middle");
    m.file.keep(100, source.size() - 100);
    m.file.add("tail");
    m.file.overwrite(500, QByteArray(50, '\0'));
    m.file.overwrite(102, "xyzw");  // "middle" starts at 104
    m.expected = "HEAD" + source.left(100) + "middle" + source.mid(100) + "tail";
    m.expected.replace(500, 50, QByteArray(50, '\0'));
    m.expected.replace(102, 4, "xyzw");
    return m;
}

TEST(Rewritten, ReadsAndJoinsAsTheFileMadeByHand) {
    const QByteArray source = pattern(100000);
    const Made m = sample(source);
    EXPECT_EQ(m.file.size(), m.expected.size());
    EXPECT_EQ(m.file.joined(), m.expected);
    EXPECT_EQ(m.file.head(8), m.expected.left(8));
    EXPECT_EQ(m.file.leadingBytes(), "HEAD");
    EXPECT_TRUE(m.file.keepsFrom(source));
    EXPECT_FALSE(m.file.keepsFrom(QByteArray(source.constData(), source.size())));  // the same bytes elsewhere
    // Reads across every seam, and past the end.
    for (qint64 at : {qint64(0), qint64(3), qint64(99), qint64(102), qint64(106), qint64(499), qint64(549), qint64(100005), m.expected.size() - 3}) {
        QByteArray got(64, '?');
        const qint64 n = m.file.read(at, got.data(), got.size());
        EXPECT_EQ(got.left(n), m.expected.mid(at, 64)) << at;
    }
    // Ranges beyond the source are cut to it; an overwrite past the end is refused.
    Rewritten clamped = Rewritten::from(source);
    clamped.keep(99990, 100);
    clamped.overwrite(5, "toolong");
    EXPECT_EQ(clamped.joined(), source.mid(99990));
    // All new bytes are one piece, handed out without a copy.
    const QByteArray fresh = pattern(10);
    EXPECT_EQ(Rewritten(fresh).joined().constData(), fresh.constData());
}

TEST(Rewritten, SavesTheSameFileFromTheSourceFileOrFromMemory) {
    QTemporaryDir dir;
    const QByteArray source = pattern(3 * 1024 * 1024 + 17);
    const QString sourcePath = dir.filePath("source");
    {
        QFile f(sourcePath);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        ASSERT_EQ(f.write(source), source.size());
    }
    const Made m = sample(source);
    const int sourceFd = ::open(QFile::encodeName(sourcePath).constData(), O_RDONLY);
    ASSERT_GE(sourceFd, 0);
    for (const int from : {sourceFd, -1}) {
        const QString out = dir.filePath(from < 0 ? "from-memory" : "from-file");
        const int fd = ::open(QFile::encodeName(out).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_GE(fd, 0);
        EXPECT_EQ(m.file.writeTo(fd, from), std::nullopt);
        ::close(fd);
        EXPECT_TRUE(fileBytes(out) == m.expected) << out.toStdString();
    }
    // A file that can't be written gives the cause and no crash.
    const int readOnly = ::open(QFile::encodeName(sourcePath).constData(), O_RDONLY);
    const auto failure = m.file.writeTo(readOnly, sourceFd);
    ASSERT_TRUE(failure.has_value());
    EXPECT_FALSE(failure->isEmpty());
    ::close(readOnly);
    ::close(sourceFd);
    EXPECT_TRUE(fileBytes(sourcePath) == source);
}

}  // namespace
