// SPDX-License-Identifier: GPL-3.0-or-later
// The software centre's view of the app: the metainfo against the launcher entry, the committed
// screenshots and the version the build carries.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QSet>
#include <QUrl>
#include <QXmlStreamReader>

namespace {

struct Metainfo {
    QStringList mediaTypes, binaries, releases;
    struct Shot {
        QString file;
        QSize size;
    };
    QList<Shot> screenshots;
};

Metainfo readMetainfo() {
    Metainfo m;
    QXmlStreamReader xml(testsupport::readFile(TESSORIN_METAINFO_FILE));
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const auto name = xml.name();
        if (name == u"release") {
            m.releases << xml.attributes().value("version").toString();
        } else if (name == u"image") {
            const QSize size(xml.attributes().value("width").toInt(), xml.attributes().value("height").toInt());
            m.screenshots.append({QUrl(xml.readElementText()).fileName(), size});
        } else if (name == u"mediatype") {
            m.mediaTypes << xml.readElementText();
        } else if (name == u"binary") {
            m.binaries << xml.readElementText();
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return m;
}

}  // namespace

TEST(Metainfo, ProvidesTheLauncherEntrysTypesAndBothPrograms) {
    const Metainfo m = readMetainfo();
    const QString entry = QString::fromUtf8(testsupport::readFile(TESSORIN_DESKTOP_FILE));
    QStringList types;
    for (const QString& line : entry.split('\n'))
        if (line.startsWith("MimeType=")) types = line.mid(9).split(';', Qt::SkipEmptyParts);
    types.removeIf([](const QString& t) { return t.startsWith("x-scheme-handler/"); });
    ASSERT_FALSE(types.isEmpty());
    EXPECT_EQ(QSet<QString>(m.mediaTypes.begin(), m.mediaTypes.end()), QSet<QString>(types.begin(), types.end()));
    EXPECT_EQ(m.binaries, (QStringList{"tessorin", "tessorin-cli"}));
    ASSERT_FALSE(m.releases.isEmpty());
    EXPECT_EQ(m.releases.first(), TESSORIN_VERSION) << "the newest release entry is this version";
}

TEST(Metainfo, ScreenshotsAreCommittedAtTheSizesItGives) {
    const Metainfo m = readMetainfo();
    ASSERT_GE(m.screenshots.size(), 2);
    for (const Metainfo::Shot& shot : m.screenshots) {
        SCOPED_TRACE(shot.file.toStdString());
        const QImage image(QDir(TESSORIN_SCREENSHOTS_DIR).filePath(shot.file));
        ASSERT_FALSE(image.isNull());
        EXPECT_EQ(image.size(), shot.size);
        EXPECT_LT(QFileInfo(QDir(TESSORIN_SCREENSHOTS_DIR).filePath(shot.file)).size(), 400 * 1024) << "kept small";
    }
}
