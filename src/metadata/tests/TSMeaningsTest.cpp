// SPDX-License-Identifier: GPL-3.0-or-later
#include "Formatter.h"
#include "PropertyKeys.h"
#include "Settings.h"
#include "TSMeanings.h"

#include <gtest/gtest.h>


namespace {

QString meaning(const char* key, const QVariant& value, bool human = true) {
    return TSMeanings::shared().meaning(key, value, human);
}

}  // namespace

TEST(Flash, DecodesTheBits) {
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 0), "Flash did not fire");
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 16), "Flash did not fire, Compulsory flash suppression");
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 25), "Flash fired, Auto mode");
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 89), "Flash fired, Auto mode, Red-eye reduction supported");
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 7), "Flash fired, Strobe return light detected");
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 32), "Flash did not fire, No flash function");
    // Not an integer: no flash text; the number falls through to "%g".
    EXPECT_EQ(meaning(kCGImagePropertyExifFlash, 16.0), "16");
}

TEST(Meaning, FallsThroughInOrder) {
    EXPECT_EQ(meaning(kCGImagePropertyExifVersion, QVariantList{2, 3, 2}), "2.3.2");
    EXPECT_EQ(meaning("AnyVersion", QVariantList{}), "");
    EXPECT_EQ(meaning("AnyVersion", 5), "5");  // no array: goes on to the later steps
    EXPECT_EQ(meaning(kCGImagePropertyExifFocalLength, 4.254), "4.25 mm");
    EXPECT_EQ(meaning(kCGImagePropertyExifFocalLength, 4.254, false), "4.254 mm");
    EXPECT_EQ(meaning(kCGImagePropertyExifFocalLength, 135.0), "135.0 mm");
    EXPECT_EQ(meaning(kCGImagePropertyExifFNumber, 1.8), "ƒ/1.8");
    EXPECT_EQ(meaning(kCGImagePropertyExifFNumber, 2.0), "ƒ/2.0");
    EXPECT_EQ(meaning(kCGImagePropertyExifExposureTime, 0.008), "1/125");
    EXPECT_EQ(meaning(kCGImagePropertyGPSTimeStamp, "10:11:12"), "10:11:12 UTC");
    EXPECT_EQ(meaning(kCGImagePropertyExifSubjectArea, QVariantList{1, 2, 3, 4}), "Center X: 1\nCenter Y: 2\nWidth: 3\nHeight: 4");
    EXPECT_EQ(meaning(kCGImagePropertyExifSubjectArea, QVariantList{1, 2, 3}), "Center X: 1\nCenter Y: 2\ndiameter: 3)");
    EXPECT_EQ(meaning(kCGImagePropertyExifSubjectArea, QVariantList{1}), "1");
    EXPECT_EQ(meaning(kCGImagePropertyExifSubjectLocation, QVariantList{5, 6}), "X: 5 Y: 6");
    EXPECT_EQ(meaning(kCGImagePropertyTIFFOrientation, 6), "Rotate 90° CW");
    EXPECT_EQ(meaning(kCGImagePropertyTIFFOrientation, 9), "9");
    EXPECT_EQ(meaning(kCGImagePropertyExifMeteringMode, 5), "Multi-segment (or Pattern) ");
    EXPECT_EQ(meaning(kCGImagePropertyGPSImgDirectionRef, "T"), "True North");
    EXPECT_EQ(meaning(kCGImagePropertyGPSLatitudeRef, "Q"), "Q");
    EXPECT_EQ(meaning("Unknown", QVariant()), "-vv-");
}

TEST(Meaning, ArraysWithElements) {
    EXPECT_EQ(meaning(kCGImagePropertyExifComponentsConfiguration, QVariantList{1, 2, 3, 0}), "YCbCr");
    EXPECT_EQ(meaning(kCGImagePropertyExifComponentsConfiguration, QVariantList{1, 9, 3, 0}), "Y--Cr");
    // Three elements: not the expected count, so the scalar lookup, then the value text.
    EXPECT_EQ(meaning(kCGImagePropertyExifComponentsConfiguration, QVariantList{1, 2, 3}), "1, 2, 3");
    EXPECT_EQ(meaning(kCGImagePropertyExifComponentsConfiguration, QVariantList{1, 2, 3}, false), "[1; 2; 3]");
}

TEST(ValueText, RendersEachType) {
    EXPECT_FALSE(TSMeanings::valueText(QVariant(), true));
    EXPECT_EQ(TSMeanings::valueText(7, true), "7");
    EXPECT_EQ(TSMeanings::valueText(0.5, true), "0.5");
    EXPECT_EQ(TSMeanings::valueText(QVariantList{"a"}, false), "a");
    EXPECT_EQ(TSMeanings::valueText(QVariantMap{{"a", 1}, {"b", "x"}}, true), "a: 1;\nb: x");
    EXPECT_EQ(TSMeanings::valueText(QVariantMap{{"a", 1}, {"b", "x"}}, false), "a: 1; b: x");
    EXPECT_EQ(TSMeanings::valueText(QVariantMap{}, false), "");
    EXPECT_EQ(TSMeanings::valueText(QByteArray("\x01\xab", 2), true), "01AB");
}

TEST(ValueText, HexIsShortenedFrom161Characters) {
    QByteArray eighty(80, '\x11'), hundred(100, '\0');
    for (int i = 0; i < 100; ++i) hundred[i] = char(i);
    EXPECT_EQ(TSMeanings::hexText(eighty, true).size(), 160);
    EXPECT_EQ(TSMeanings::hexText(hundred, false).size(), 200);
    EXPECT_EQ(TSMeanings::hexText(hundred, true),
              "Byte array of size: 100\n\t0x00010203 04050607 ...\n\t04050607 60616263");
}

TEST(ShutterText, InvertsShortTimes) {
    EXPECT_EQ(TSMeanings::shutterText(0.008), "1/125");
    EXPECT_EQ(TSMeanings::shutterText(1.0), "1/1");
    EXPECT_EQ(TSMeanings::shutterText(0.8), "1/1");
    EXPECT_EQ(TSMeanings::shutterText(2.5), "2");
    EXPECT_EQ(TSMeanings::shutterText(0.0), "0");
    EXPECT_FALSE(TSMeanings::shutterText(QVariantList{}));
}

TEST(ContactText, ListsTheContactFieldsInVocabularyOrder) {
    QVariantMap contact{{kCGImagePropertyIPTCContactInfoEmails, "a@b.c"}, {kCGImagePropertyIPTCContactInfoCity, "Oslo"}};
    EXPECT_EQ(meaning(kCGImagePropertyIPTCCreatorContactInfo, contact), "City: Oslo\nEmail(s): a@b.c");
}

using StringFor = ::testing::Test;

TEST_F(StringFor, UsesTheFallbackAndIgnoresBareNumbers) {
    TSMetaData md = TSMetaData::fromProperties(QVariantMap{
        {kCGImagePropertyTIFFDictionary, QVariantMap{{kCGImagePropertyTIFFDateTime, "2020:01:02 03:04:05"}}},
        {kCGImagePropertyExifDictionary, QVariantMap{{kCGImagePropertyExifUserComment, 12},
                                                     {kCGImagePropertyExifISOSpeedRatings, QVariantList{100, 200}}}},
        {kCGImagePropertyIPTCDictionary, QVariantMap{{kCGImagePropertyIPTCKeywords, QVariantList{"a", "b"}}}},
        {kCGImagePropertyProfileName, "sRGB"},
    });
    EXPECT_EQ(string(md, TSKey::EXIF_DATE), "2020:01:02 03:04:05");
    EXPECT_FALSE(string(md, TSKey::USER_COMMENT));
    EXPECT_FALSE(string(md, TSKey::COLOR));
    EXPECT_EQ(string(md, TSKey::ISO_SPEED), "100,200");
    EXPECT_EQ(string(md, TSKey::IPTC_KEYWORDS), "a,b");
    EXPECT_FALSE(string(md, TSKey::CAMERA));
}

// An EXIF date is exactly "yyyy:MM:dd HH:mm:ss" naming a real day and time.
TEST(ExifDate, ReadsOnlyRealDatesOfTheExactShape) {
    EXPECT_EQ(Formatter::exifDate("2021:06:01 12:34:56"), QDateTime(QDate(2021, 6, 1), QTime(12, 34, 56)));
    EXPECT_EQ(Formatter::exifDate("2024:02:29 00:00:00"), QDateTime(QDate(2024, 2, 29), QTime(0, 0)));
    for (const char* wrong : {"2023:02:29 00:00:00", "2021:13:01 00:00:00", "2021:06:01 24:00:00",
                              "2021:06:01 12:60:00", "2021-06-01 12:34:56", "2021:06:01 12:34:5", "2021:06:01 12:34:567",
                              "2021:06:01T12:34:56", "    :  :     :  :  ", "0000:00:00 00:00:00", ""})
        EXPECT_EQ(Formatter::exifDate(QString::fromLatin1(wrong)), std::nullopt) << wrong;
    // Digits of other scripts are not EXIF's.
    EXPECT_EQ(Formatter::exifDate(QString::fromUtf8("\u0662\u0660\u0662\u0661:06:01 12:34:56")), std::nullopt);
}
