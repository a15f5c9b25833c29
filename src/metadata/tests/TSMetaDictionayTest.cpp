// SPDX-License-Identifier: GPL-3.0-or-later
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMetaDictionay.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace {

class MetaDict : public ::testing::Test {
protected:
    static void setHuman(bool on) { Settings::setFlag(SettingsFlag::human, on); }
};

TSMetaDictionay photo() {
    return TSMetaDictionay(TSMetaData::fromProperties(QVariantMap{
        {kCGImagePropertyExifDictionary,
         QVariantMap{{kCGImagePropertyExifFlash, 16}, {kCGImagePropertyExifDateTimeOriginal, "2020:01:02 03:04:05"},
                     {kCGImagePropertyExifApertureValue, 1.69}, {kCGImagePropertyExifSubjectArea, QVariantList{1, 2, 3, 4}}}},
        {kCGImagePropertyTIFFDictionary, QVariantMap{{kCGImagePropertyTIFFMake, "Apple"}}},
        {kCGImagePropertyGPSDictionary, QVariantMap{{kCGImagePropertyGPSLatitude, 45.5}}},
        {kCGImagePropertyPixelWidth, 4032},
        {kCGImagePropertyMakerAppleDictionary, QVariantMap{{"8", QByteArray("\x01\x02", 2)}}},
    }));
}

}  // namespace

TEST_F(MetaDict, SectionsAreExifTiffThenSortedGroups) {
    const TSMetaDictionay d = photo();
    ASSERT_EQ(d.numberOfSections(), 5);
    EXPECT_EQ(d.sectionKey(0), "{Exif}");
    EXPECT_EQ(d.sectionKey(1), "{Tiff}");
    EXPECT_EQ(d.sectionKey(2), "General");
    EXPECT_EQ(d.sectionKey(3), "{GPS}");
    EXPECT_EQ(d.sectionKey(4), "{MakerApple}");
    EXPECT_FALSE(d.sectionKey(5));
    EXPECT_EQ(d.numberOfRows(0), 4);
    EXPECT_EQ(d.numberOfRows(9), 0);
    setHuman(true);
    EXPECT_EQ(d.sectionTitle(QString("{GPS}")), "GPS");
    EXPECT_EQ(d.sectionTitle(QString("General")), "General");
    EXPECT_EQ(d.sectionTitle(std::nullopt), "");
    setHuman(false);
    EXPECT_EQ(d.sectionTitle(QString("{GPS}")), "{GPS}");
}

TEST_F(MetaDict, RowsSortByKeyAndFollowTheHumanSetting) {
    const TSMetaDictionay d = photo();
    setHuman(true);
    EXPECT_EQ(d.row(0, 0).first, "ApertureValue");
    EXPECT_EQ(d.row(0, 1).first, "DateTimeOriginal");
    EXPECT_EQ(d.row(0, 2), (std::pair<QString, QString>{"Flash", "Flash did not fire, Compulsory flash suppression"}));
    EXPECT_EQ(d.row(0, 7).first, "-");
    setHuman(false);
    EXPECT_EQ(d.row(0, 2), (std::pair<QString, QString>{"Flash", "16"}));
    EXPECT_EQ(d.row(0, 3).second, "[1; 2; 3; 4]");
}

TEST_F(MetaDict, TextExportIndentsContinuationLines) {
    setHuman(true);
    const QString text = photo().allText();
    EXPECT_TRUE(text.startsWith("**Exif**\nApertureValue: 1.69\n"));
    EXPECT_TRUE(text.contains("SubjectArea: \n\tCenter X: 1\n\tCenter Y: 2\n\tWidth: 3\n\tHeight: 4\n"));
    EXPECT_TRUE(text.contains("\n\n**Tiff**\nMake: Apple\n"));
    EXPECT_TRUE(text.contains("**MakerApple**\n8: 0102\n"));
    EXPECT_TRUE(TSMetaDictionay(TSMetaData(), true).allText().isEmpty());
}

TEST_F(MetaDict, RawExportFlattensGroups) {
    EXPECT_EQ(TSMetaDictionay(TSMetaData()).rawText(), "Tags: empty;\n");
    const QString raw = photo().rawText();
    EXPECT_TRUE(raw.contains("{Exif}.Flash: 16;\n"));
    EXPECT_TRUE(raw.contains("PixelWidth: 4032;\n"));
}

TEST_F(MetaDict, JsonExportIsValidOrEmptyObject) {
    const QJsonObject o = QJsonDocument::fromJson(photo().jsonData()).object();
    EXPECT_EQ(o["{Exif}"].toObject()["Flash"].toInt(), 16);
    EXPECT_EQ(o["{MakerApple}"].toObject()["8"].toString(), "AQI=");  // binary as base64
    EXPECT_EQ(TSMetaDictionay(TSMetaData()).jsonText(), "{}");
    // Texts are not escaped, so a quote inside makes the export fall back to "{}".
    auto quoted = TSMetaDictionay(TSMetaData::fromProperties(QVariantMap{
        {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifUserComment, "say \"cheese\""}}}}));
    EXPECT_EQ(quoted.jsonText(), "{}");
    EXPECT_TRUE(TSMetaDictionay(TSMetaData(), true).jsonText().isEmpty());
}
