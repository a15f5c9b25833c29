// SPDX-License-Identifier: GPL-3.0-or-later
// The video modifier's rules, and its saves checked by exiftool and ffprobe, run live: the wished
// date and place read back exactly, every stream's packets are unchanged, the rotation stays.
#include "HRLocation.h"
#include "MovieReader.h"
#include "TestSupport.h"
#include "VideoModifier.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

using media::MetadataItem;
using namespace testsupport;

namespace {

QStringList identifiers(const QList<MetadataItem>& items) {
    QStringList out;
    for (const auto& i : items) out << i.identifier;
    return out;
}

MetadataItem userData(const QByteArray& key, const QString& text) {
    MetadataItem item;
    item.keySpace = "udta";
    item.key = key;
    item.identifier = media::makeIdentifier("udta", key);
    item.dataType = media::DataType::utf8;
    item.stored = text.toUtf8();
    item.value = text;
    return item;
}

// The instant of an exiftool date such as "2024:01:01 21:34:05Z" or "2023:05:14 10:20:30+02:00".
QDateTime exiftoolInstant(QString text) {
    text.replace(10, 1, u'T');
    text.replace(4, 1, u'-').replace(7, 1, u'-');
    return QDateTime::fromString(text, Qt::ISODate);
}

class VideoModifier : public ::testing::Test {
protected:
    ExifVideoModifier modifierOf(const QString& path) {
        auto m = ExifVideoModifier::make({std::make_shared<const TSAsset>(path)});
        EXPECT_TRUE(m);
        return m ? *m : ExifVideoModifier();
    }
    QString save(const ExifVideoModifier& m) {
        const auto saved = m.save(2, QDir(dir_.path()));
        if (const QString* message = std::get_if<QString>(&saved)) {
            ADD_FAILURE() << message->toStdString();
            return {};
        }
        return std::get<QStringList>(saved).value(0);
    }
    QTemporaryDir dir_;
};

}  // namespace

TEST(VideoTags, TextsOfPlaceAndDate) {
    GeoLocation loc(45.5, -122.25);
    loc.altitude = 10;
    EXPECT_EQ(iso6709Text(loc), "+45.5000-122.2500+10/");
    EXPECT_EQ(iso6709Text(GeoLocation(-0.5, 9.19)), "-00.5000+009.1900+0/");
    const QDateTime d(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::OffsetFromUTC, 3600);
    EXPECT_EQ(iso8601Text(d), "2024-01-02T02:04:05Z");
}

TEST(VideoTags, DateAndLocationItemsAreReplacedWhole) {
    QList<MetadataItem> items{MetadataItem::quickTimeText("com.apple.quicktime.creationdate", "2020-01-01T00:00:00Z"),
                              userData("\xA9" "day", "2019"), userData("\xA9xyz", "+01.0000+002.0000/"),
                              MetadataItem::quickTimeText("com.apple.quicktime.make", "Apple"),
                              MetadataItem::quickTimeText("com.apple.quicktime.location.ISO6709", "+1+2/")};
    TagsVideoModifier m(items);
    const QDateTime when(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC);
    m.setDate(when);
    EXPECT_EQ(identifiers(m.items), QStringList({"udta/%A9xyz", "mdta/com.apple.quicktime.make",
                                                 "mdta/com.apple.quicktime.location.ISO6709",
                                                 "mdta/com.apple.quicktime.creationdate"}));
    EXPECT_EQ(m.items.last().stringValue(), "2024-01-02T03:04:05Z");
    EXPECT_EQ(m.userDate, when);
    m.setLocation(GeoLocation(45.5, 9.2));
    EXPECT_EQ(identifiers(m.items), QStringList({"mdta/com.apple.quicktime.make", "mdta/com.apple.quicktime.creationdate",
                                                 "mdta/com.apple.quicktime.location.ISO6709"}));
    m.removeDate();
    m.removeLocation();
    EXPECT_EQ(identifiers(m.items), QStringList{"mdta/com.apple.quicktime.make"});
    EXPECT_FALSE(m.userDate);
    EXPECT_FALSE(m.userLocation);
    // A video without a place that gets one has exactly one location item.
    TagsVideoModifier bare({});
    bare.setLocation(GeoLocation(1, 2));
    bare.setLocation(GeoLocation(3, 4));
    EXPECT_EQ(identifiers(bare.items), QStringList{"mdta/com.apple.quicktime.location.ISO6709"});
}

TEST_F(VideoModifier, WishesFollowTheSwitches) {
    const QString file = video("apple_meta.mov");
    // The removal switch wins over a wished date; no tags wins over everything.
    ExifVideoModifier m = modifierOf(file);
    m.modify({false, true, false, QDateTime::currentDateTime(), std::nullopt, {}, {}, {}});
    EXPECT_FALSE(identifiers(m.modifing[0].modifier.items).contains("mdta/com.apple.quicktime.creationdate"));
    ExifVideoModifier none = modifierOf(file);
    none.modify({true, false, false, QDateTime::currentDateTime(), GeoLocation(1, 2), {}, {}, {}});
    EXPECT_TRUE(none.modifing[0].modifier.items.isEmpty());
    EXPECT_TRUE(none.changed());
    // The date the video shows already changes nothing.
    ExifVideoModifier same = modifierOf(file);
    same.modify({false, false, false, same.modifing[0].asset->ddStore().date, std::nullopt, {}, {}, {}});
    EXPECT_FALSE(same.changed());
    // The software item names this application.
    const QList<MetadataItem> out = ExifVideoModifier::exportItems(m.modifing[0].modifier.items);
    EXPECT_EQ(identifiers(out).count("mdta/com.apple.quicktime.software"), 1);
    EXPECT_EQ(out.last().stringValue(), TESSORIN_APP_NAME);
}

TEST_F(VideoModifier, SaveModesAndNames) {
    const QDateTime now(QDate(2024, 3, 9), QTime(7, 8, 9));
    const QDir dir(dir_.path());
    EXPECT_EQ(ExifVideoModifier::outputPath(dir, now), dir.filePath("video_240309_070809.mp4"));
    QFile taken(dir.filePath("video_240309_070809.mp4"));
    ASSERT_TRUE(taken.open(QIODevice::WriteOnly));
    taken.close();
    EXPECT_EQ(ExifVideoModifier::outputPath(dir, now), dir.filePath("video_240309_070809_2.mp4"));

    ExifVideoModifier m = modifierOf(video("apple_meta.mov"));
    EXPECT_EQ(std::get<QString>(m.save(1, dir)), "Video editing not available");
    EXPECT_EQ(std::get<QString>(ExifVideoModifier().save(2, dir)), "Error getting the video asset");
    EXPECT_FALSE(ExifVideoModifier::make({std::make_shared<const TSAsset>(corpusDir() + "/jpeg/Canon_40D.jpg")}));
}

TEST_F(VideoModifier, ReadersSeeTheWishedDateAndPlaceAndTheSameStreams) {
    QDateTime when(QDate(2024, 1, 2), QTime(3, 4, 5));  // local time
    GeoLocation where(-33.8568, 151.2153);
    where.altitude = 58;
    ASSERT_EQ(movies().size(), 4);
    for (const QString& file : movies()) {
        SCOPED_TRACE(file.toStdString());
        ExifVideoModifier m = modifierOf(file);
        m.modify({false, false, false, when, where, {}, {}, {}});
        const QString out = save(m);
        ASSERT_FALSE(out.isEmpty());
        EXPECT_TRUE(QFileInfo(out).fileName().startsWith("video_"));

        const QJsonValue et = exiftoolJson(out, {"-n", "-G1", "-Keys:CreationDate", "-Keys:GPSCoordinates", "-Keys:Software",
                                                 "-UserData:all"});
        EXPECT_EQ(exiftoolInstant(et["Keys:CreationDate"].toString()), when);
        EXPECT_EQ(et["Keys:GPSCoordinates"].toString(), "-33.8568 151.2153 58");
        EXPECT_EQ(et["Keys:Software"].toString(), "Tessorin");
        const QJsonObject tags = ffprobe(out)["format"].toObject()["tags"].toObject();
        EXPECT_EQ(QDateTime::fromString(tags["com.apple.quicktime.creationdate"].toString(), Qt::ISODate), when);
        EXPECT_EQ(tags["com.apple.quicktime.location.ISO6709"].toString(), "-33.8568+151.2153+58/");
        EXPECT_EQ(streamHashes(out), streamHashes(file));
        // Every other item is still there.
        auto before = media::readMovie(readFile(file))->metadata;
        auto after = media::readMovie(readFile(out))->metadata;
        for (const MetadataItem& i : before) {
            if (i.commonKey == "creationDate" || i.commonKey == "location" || i.identifier.endsWith(".software")) continue;
            EXPECT_TRUE(identifiers(after).contains(i.identifier)) << i.identifier.toStdString();
        }
    }
}

TEST_F(VideoModifier, RotationSurvives) {
    ExifVideoModifier m = modifierOf(video("apple_meta_rot90.mov"));
    m.modify({false, false, true, std::nullopt, std::nullopt, {}, {}, {}});
    const QString out = save(m);
    const QJsonObject stream = ffprobe(out)["streams"][0].toObject();
    EXPECT_EQ(stream["side_data_list"][0]["rotation"].toInt(), -90);
    EXPECT_EQ(media::firstFrame(readFile(out)).size(), QSize(240, 320));
    EXPECT_TRUE(exiftoolJson(out, {"-n", "-G1", "-Keys:GPSCoordinates"})["Keys:GPSCoordinates"].isUndefined());
}

TEST_F(VideoModifier, NoTagsLeavesTheSoftwareItemAlone) {
    ASSERT_EQ(movies().size(), 4);
    for (const QString& file : movies()) {
        SCOPED_TRACE(file.toStdString());
        ExifVideoModifier m = modifierOf(file);
        m.modify({true, false, false, std::nullopt, std::nullopt, {}, {}, {}});
        const QString out = save(m);
        const auto items = media::readMovie(readFile(out))->metadata;
        ASSERT_EQ(items.size(), 1);
        EXPECT_EQ(items[0].identifier, "mdta/com.apple.quicktime.software");
        EXPECT_EQ(items[0].stringValue(), "Tessorin");
        const QJsonObject et = exiftoolJson(out, {"-G1", "-Keys:all", "-UserData:all", "-ItemList:all", "-XMP:all"}).toObject();
        EXPECT_EQ(et.keys(), QStringList({"Keys:Software", "SourceFile"}));
        QJsonObject tags = ffprobe(out)["format"].toObject()["tags"].toObject();
        for (const char* container : {"major_brand", "minor_version", "compatible_brands"}) tags.remove(container);
        EXPECT_EQ(tags.keys(), QStringList{"com.apple.quicktime.software"});
        EXPECT_EQ(streamHashes(out), streamHashes(file));
    }
}

TEST_F(VideoModifier, EditScreenSettingsDriveTheSameRules) {
    auto asset = std::make_shared<const TSAsset>(video("apple_meta.mov"));
    const QDateTime when(QDate(2024, 1, 2), QTime(3, 4, 5));
    UserSettings settings(asset->metaData(), asset->ddStore());
    settings.setDate(when, TSKey::EXIF_DATE);
    settings.setLocation(HRLocation{std::nullopt, std::nullopt, GeoLocation(1, 2), {}});
    auto m = ExifVideoModifier::make({asset});
    ASSERT_TRUE(m);
    m->modify(settings);
    const QList<MetadataItem>& items = m->modifing[0].modifier.items;
    EXPECT_EQ(identifiers(items).count("mdta/com.apple.quicktime.creationdate"), 1);
    EXPECT_EQ(items.last().stringValue(), "+01.0000+002.0000+0/");
    EXPECT_EQ(items[items.size() - 2].stringValue(), iso8601Text(when));

    // The date switch removes the date and drops the date wishes.
    UserSettings off(asset->metaData(), asset->ddStore());
    off.setDate(when, TSKey::EXIF_DATE);
    off.switchers.set(Sections::dateTime, true);
    auto m2 = ExifVideoModifier::make({asset});
    m2->modify(off);
    EXPECT_FALSE(identifiers(m2->modifing[0].modifier.items).contains("mdta/com.apple.quicktime.creationdate"));
    EXPECT_FALSE(off.date(TSKey::EXIF_DATE));
}
