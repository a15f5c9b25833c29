// SPDX-License-Identifier: GPL-3.0-or-later
// `resources` over the sample media: what it lists and what --extract writes, against
// exiftool's and libheif's own extraction of the same images.
#include "Isolation.h"
#include "TestSupport.h"

#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace testsupport;

namespace {

ProcessResult cli(const QStringList& args) { return run(QStringLiteral(TESSORIN_CLI), args); }

QSize sizeOf(const QByteArray& bytes) { return QImage::fromData(bytes).size(); }

using ResourcesCommand = IsolatedTest;

}  // namespace

TEST_F(ResourcesCommand, ListsAndExtractsThePortraitMapsAsExiftoolSizesThem) {
    const QString portrait = corpusDir() + "/portrait/image-with-matte.jpg";
    QTemporaryDir out;
    const ProcessResult result = cli({"resources", portrait, "--extract", out.path()});
    ASSERT_EQ(result.exitCode, 0) << result.err.constData();
    const QStringList lines = QString::fromUtf8(result.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 4) << result.out.constData();
    EXPECT_EQ(lines[0], "==> " + portrait + " <==");
    EXPECT_EQ(lines[1], "image-with-matte.jpg  2.2 MB  3024 x 4032");
    EXPECT_TRUE(lines[2].startsWith("  Image Disparity  image-with-matte_ImageDisparity.jpg  ")) << lines[2].toStdString();
    EXPECT_TRUE(lines[2].endsWith("  576 x 768"));
    EXPECT_TRUE(lines[3].startsWith("  Portrait Effects Matte  image-with-matte_PortraitEffectsMatte.jpg  "));
    EXPECT_TRUE(lines[3].endsWith("  1512 x 2016"));

    const QByteArray disparity = readFile(out.filePath("image-with-matte_ImageDisparity.jpg"));
    const QByteArray matte = readFile(out.filePath("image-with-matte_PortraitEffectsMatte.jpg"));
    EXPECT_EQ(sizeOf(disparity), sizeOf(run("exiftool", {"-b", "-MPImage2", portrait}).out));
    EXPECT_EQ(sizeOf(matte), sizeOf(run("exiftool", {"-b", "-MPImage3", portrait}).out));
    EXPECT_TRUE(disparity.startsWith("\xFF\xD8"));
    EXPECT_TRUE(matte.startsWith("BM"));
    EXPECT_EQ(QDir(out.path()).entryList(QDir::Files).size(), 2);
}

TEST_F(ResourcesCommand, GainMapOfTheHeicAndNothingForPlainPhotos) {
    const QString heic = corpusDir() + "/heif/iphone_13_pro_max.HEIC";
    const QString plain = corpusDir() + "/jpeg/Canon_40D.jpg";
    QTemporaryDir out;
    const ProcessResult result = cli({"resources", heic, plain, "--extract", out.path()});
    ASSERT_EQ(result.exitCode, 0) << result.err.constData();
    const QStringList lines = QString::fromUtf8(result.out).split('\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 5) << result.out.constData();
    EXPECT_TRUE(lines[1].startsWith("iphone_13_pro_max.HEIC  ")) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].endsWith("  3024 x 4032"));
    EXPECT_TRUE(lines[2].startsWith("  HDR Gain Map  iphone_13_pro_max_HDRGainMap.HEIC  "));
    EXPECT_TRUE(lines[4].startsWith("Canon_40D.jpg  "));

    QTemporaryDir theirs;
    ASSERT_EQ(run("heif-convert", {"--with-aux", "--no-colons", heic, theirs.filePath("main.png")}).exitCode, 0);
    const QStringList aux = QDir(theirs.path()).entryList({"*hdrgainmap*"});
    ASSERT_EQ(aux.size(), 1);
    EXPECT_EQ(sizeOf(readFile(out.filePath("iphone_13_pro_max_HDRGainMap.HEIC"))),
              QImageReader(theirs.filePath(aux.first())).size());
}

TEST_F(ResourcesCommand, MissingFilesAndBadUsage) {
    EXPECT_EQ(cli({"resources"}).exitCode, 2);
    EXPECT_EQ(cli({"resources", corpusDir() + "/jpeg/Canon_40D.jpg", "--extract"}).exitCode, 2);
    const ProcessResult missing = cli({"resources", "/nowhere/none.jpg", corpusDir() + "/jpeg/Canon_40D.jpg"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(missing.err.contains("/nowhere/none.jpg"));
    EXPECT_TRUE(missing.out.contains("Canon_40D.jpg"));
}
