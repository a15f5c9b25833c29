// SPDX-License-Identifier: GPL-3.0-or-later
#include "Settings.h"
#include "TSMetaVideo.h"

#include <gtest/gtest.h>


using media::MetadataItem;
using Row = std::pair<QString, QString>;

namespace {

class MetaVideo : public ::testing::Test {
protected:
    static void setHuman(bool on) { Settings::setFlag(SettingsFlag::human, on); }
};

MetadataItem userData(const QByteArray& key, const QString& text) {
    MetadataItem item;
    item.keySpace = "udta";
    item.key = key;
    item.identifier = media::makeIdentifier(item.keySpace, key);
    item.value = text;
    return item;
}

std::shared_ptr<TSMetaVideo> sample() {
    auto v = std::make_shared<TSMetaVideo>();
    v->add(MetadataItem::quickTimeText("com.apple.quicktime.make", "Apple"));
    v->add(userData("\xA9xyz", "+45.4640+009.1900+120.000/"));
    v->add(MetadataItem::quickTimeText("com.apple.quicktime.location.ISO6709", "+45.5000-122.2500+10/"));
    v->add(MetadataItem::quickTimeText("com.apple.x", "three parts"));
    MetadataItem binary = userData("\xA9" "abc", QString());
    binary.value = QByteArray("\x01\x02\x03", 3);
    v->add(binary);
    MetadataItem unreadable = userData("name", QString());
    unreadable.value = QVariant();
    v->add(unreadable);
    return v;
}

}  // namespace

TEST_F(MetaVideo, SectionsAreKeySpacesInTheOrderMet) {
    const TSMetaVideoDictionary d(sample());
    ASSERT_EQ(d.numberOfSections(), 2);
    EXPECT_EQ(d.sectionKey(0), "mdta");
    EXPECT_EQ(d.sectionKey(1), "udta");
    EXPECT_FALSE(d.sectionKey(2));
    EXPECT_EQ(d.numberOfRows(0), 3);
    EXPECT_EQ(d.numberOfRows(1), 3);
    EXPECT_EQ(d.numberOfRows(7), 0);
    // No human form of a key space.
    setHuman(true);
    EXPECT_EQ(d.sectionTitle(QString("mdta")), "mdta");
    EXPECT_EQ(d.sectionTitle(std::nullopt), "");
}

TEST_F(MetaVideo, HumanRowsShortenReverseDomainKeysAndReadPlaces) {
    const TSMetaVideoDictionary d(sample());
    setHuman(true);
    EXPECT_EQ(d.row(0, 0), Row("make", "Apple"));
    // Four dotted parts and more lose the first three; three parts stay whole.
    EXPECT_EQ(d.row(0, 1).first, "location.ISO6709");
    EXPECT_EQ(d.row(0, 1).second, "Latitude: 45.5°\nLongitude: -122.25°");
    EXPECT_EQ(d.row(0, 2), Row("mdta/com.apple.x", "three parts"));
    EXPECT_EQ(d.row(1, 0), Row("udta/%A9xyz", "Latitude: 45.464°\nLongitude: 9.19°"));
    EXPECT_EQ(d.row(1, 1).second, "3 bytes");
    EXPECT_EQ(d.row(1, 2).second, "-");
    // Out of range: the label "-" and the index as the value.
    EXPECT_EQ(d.row(1, 9), Row("-", "9"));
    setHuman(false);
    EXPECT_EQ(d.row(0, 1), Row("mdta/com.apple.quicktime.location.ISO6709", "+45.5000-122.2500+10/"));
}

TEST_F(MetaVideo, Exports) {
    const TSMetaVideoDictionary d(sample());
    setHuman(true);
    EXPECT_EQ(d.allText(),
              "**mdta**\n"
              "make: Apple\n"
              "location.ISO6709: \n\tLatitude: 45.5°\n\tLongitude: -122.25°\n"
              "mdta/com.apple.x: three parts\n"
              "\n"
              "**udta**\n"
              "udta/%A9xyz: \n\tLatitude: 45.464°\n\tLongitude: 9.19°\n"
              "udta/%A9abc: 3 bytes\n"
              "udta/name: -\n");
    EXPECT_EQ(d.rawText(),
              "mdta\n====\n"
              "mdta/com.apple.quicktime.make: Apple\n"
              "mdta/com.apple.quicktime.location.ISO6709: +45.5000-122.2500+10/\n"
              "mdta/com.apple.x: three parts\n"
              "\n"
              "udta\n====\n"
              "udta/%A9xyz: +45.4640+009.1900+120.000/\n"
              "udta/%A9abc: 3 bytes\n"
              "udta/name: -\n");
    EXPECT_EQ(d.jsonText(), "{}");
    EXPECT_EQ(d.jsonData(), "{}");
    const TSMetaVideoDictionary empty(std::make_shared<TSMetaVideo>());
    EXPECT_EQ(empty.numberOfSections(), 0);
    EXPECT_EQ(empty.allText(), "");
    EXPECT_EQ(empty.jsonText(), "{}");
}
