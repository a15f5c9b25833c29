// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped digital source type vocabulary, the NewsCodes decoder and how keys are edited.
#include "IptcVocabulary.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace {

const QString kBase = QStringLiteral("http://cv.iptc.org/newscodes/digitalsourcetype/");

QByteArray scheme(const QByteArray& concepts) {
    return R"({"uri":"u","prefSchemeAlias":"a","copyrightHolder":"c","licenceLink":"l","dateReleased":"d",
               "prefLabel":{"en-GB":"P"},"definition":{"en-GB":"D"},"conceptSet":[)" + concepts + "]}";
}

TEST(Vocabulary, ShippedSourceTypesLeadWithTheEmptyOptionAndKeepRetiredOnes) {
    const auto options = iptc::iptcOptions(TSKey::IPTC_SOURCE_TYPE);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->dataKey, TSKey::IPTC_SOURCE_TYPE);
    ASSERT_GT(options->options.size(), 16);
    const IptcMultipleOption& empty = options->options.first();
    EXPECT_FALSE(empty.uri);
    EXPECT_EQ(empty.title(), QString());
    EXPECT_EQ(empty.id(), QString());

    bool sawRetired = false;
    for (const IptcMultipleOption& o : options->options.mid(1)) {
        ASSERT_TRUE(o.uri);
        EXPECT_TRUE(o.uri->startsWith(kBase)) << o.uri->toStdString();
        EXPECT_FALSE(o.prefLabel.value("en-GB").isEmpty());
        EXPECT_FALSE(o.details().isEmpty());
        if (o.retired) {
            sawRetired = true;
            EXPECT_TRUE(o.title().startsWith("RETIRED - "));
        }
    }
    EXPECT_TRUE(sawRetired);

    EXPECT_EQ(iptc::optionLabel(kBase + "digitalCapture", options->options),
              "Original digital capture sampled from real life");
    EXPECT_EQ(iptc::optionLabel(kBase + "trainedAlgorithmicMedia", options->options), "Trained algorithmic media");
    EXPECT_EQ(iptc::optionLabel(kBase + "softwareImage", options->options), "RETIRED - Created by software");
    // A value the vocabulary does not know shows as it is stored; no value is the empty option.
    EXPECT_EQ(iptc::optionLabel(QStringLiteral("http://example.org/other"), options->options), "http://example.org/other");
    EXPECT_EQ(iptc::optionLabel(std::nullopt, options->options), QString());
}

TEST(Vocabulary, MissingOrBrokenFileMakesSourceTypeFreeText) {
    QTemporaryDir dir;
    EXPECT_FALSE(iptc::iptcMultiData(TSKey::IPTC_SOURCE_TYPE, dir.filePath("none.json")));
    QFile broken(dir.filePath("broken.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write(scheme(R"({"uri":"x","created":"c"})"));  // no modified, labels, definition
    broken.close();
    EXPECT_FALSE(iptc::iptcOptions(TSKey::IPTC_SOURCE_TYPE, broken.fileName()));
    EXPECT_FALSE(iptc::iptcMultiData(TSKey::IPTC_SOURCE_TYPE, broken.fileName()));
}

TEST(Vocabulary, DecoderRules) {
    // A concept without English keeps its place with an empty label; no uri is allowed.
    const auto s = IptcScheme::decode(scheme(R"({"uri":"x1","created":"c","modified":"m","prefLabel":{"fr":"Un"},"definition":{}},
        {"created":"c","modified":"m","retired":"r","prefLabel":{"en-GB":"Two"},"definition":{"en-GB":"2"},"note":{"en-GB":"n"}})"));
    ASSERT_TRUE(s);
    ASSERT_EQ(s->conceptSet.size(), 2);
    EXPECT_EQ(s->conceptSet[0].title(), QString());
    EXPECT_EQ(s->conceptSet[1].title(), "RETIRED - Two");
    EXPECT_EQ(s->conceptSet[1].noteText(), "n");
    EXPECT_FALSE(s->conceptSet[1].uri);
    EXPECT_EQ(iptc::optionLabel(std::nullopt, s->conceptSet), "RETIRED - Two");
    // What we write reads back the same.
    const auto again = IptcScheme::decode(s->encode());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->conceptSet, s->conceptSet);
    EXPECT_EQ(again->prefLabel, s->prefLabel);

    EXPECT_FALSE(IptcScheme::decode("not json"));
    EXPECT_FALSE(IptcScheme::decode("[]"));
    EXPECT_FALSE(IptcScheme::decode(scheme(R"({"uri":"x","created":1,"modified":"m","prefLabel":{},"definition":{}})")));
    EXPECT_FALSE(IptcScheme::decode(scheme(R"("a concept is an object")")));
    EXPECT_FALSE(IptcScheme::decode(R"({"uri":"u","conceptSet":[]})"));
}

}  // namespace
