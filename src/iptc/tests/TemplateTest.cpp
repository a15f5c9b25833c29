// SPDX-License-Identifier: GPL-3.0-or-later
// The template file and applying it to an edit.
#include "TemplateModel.h"
#include "PropertyKeys.h"
#include "UserSettings.h"
#include "Isolation.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace {

class Template : public testsupport::IsolatedTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).startsWith(isolation().root()));
    }
    static QString file() {
        return QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).filePath("template_0.json");
    }
    static void write(const QByteArray& text) {
        QDir().mkpath(QFileInfo(file()).absolutePath());
        QFile f(file());
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
    }
};

TEST_F(Template, FileIsOneFlatArrayOfKeysAndValues) {
    TemplateModel empty;
    EXPECT_TRUE(empty.iptcProperties.isEmpty());  // no file yet
    EXPECT_EQ(empty.filePath(), file());
    ASSERT_TRUE(empty.save());
    QFile f(file());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll().trimmed(), "[]");
    f.close();

    TemplateModel model;
    model.iptcProperties = {{TSKey::IPTC_HEADLINE, QString::fromUtf8("Fête à Zürich 🎉")}, {TSKey::IPTC_CITY, QString::fromUtf8("東京")}};
    ASSERT_TRUE(model.save());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QByteArray text = f.readAll();
    EXPECT_EQ(text, QByteArray(R"(["Headline","Fête à Zürich 🎉","City","東京"])")) << text.toStdString();
    EXPECT_EQ(TemplateModel().iptcProperties, model.iptcProperties);
}

TEST_F(Template, AnythingButKnownKeysAndTextsLoadsEmpty) {
    write(R"(["Headline","A","Author:","Ann"])");
    const TemplateModel ok;
    EXPECT_EQ(ok.iptcProperties.value(TSKey::IPTC_HEADLINE), "A");
    EXPECT_EQ(ok.iptcProperties.value(TSKey::AUTHOR), "Ann");
    for (const QByteArray& bad : {QByteArray(R"(["Headline","A","No such key","B"])"), QByteArray(R"(["Headline"])"),
                                  QByteArray(R"(["Headline",3])"), QByteArray(R"({"Headline":"A"})"),
                                  QByteArray(R"(["headline","A"])"), QByteArray("[\"Headline\",\"A\"")}) {
        write(bad);
        EXPECT_TRUE(TemplateModel().iptcProperties.isEmpty()) << bad.toStdString();
    }
}

TEST_F(Template, SummaryListsFilledKeysInTheGivenOrder) {
    TemplateModel model;
    EXPECT_FALSE(model.summary({TSKey::IPTC_HEADLINE}));
    model.iptcProperties = {{TSKey::IPTC_HEADLINE, "H"}, {TSKey::IPTC_CITY, ""}, {TSKey::IPTC_CREDIT, "C"}};
    EXPECT_EQ(model.summary({TSKey::IPTC_CREDIT, TSKey::IPTC_CITY, TSKey::IPTC_HEADLINE}), "Credit: C\nHeadline: H");
    EXPECT_FALSE(model.summary({TSKey::IPTC_CITY}));
}

TEST_F(Template, ApplyingLaysValuesOverTheEditsItHoldsOnly) {
    const TSMetaData record;
    const TSDataStore store;
    UserSettings settings(record, store);
    settings.properties.set(QStringLiteral("old headline"), kCGImagePropertyIPTCHeadline);
    settings.properties.set(QStringLiteral("kept"), kCGImagePropertyIPTCCity);
    settings.properties.set(QStringLiteral("dropped"), kCGImagePropertyIPTCCredit);
    settings.creatorContactInfo.properties.set(QStringLiteral("old@example.org"), kCGImagePropertyIPTCContactInfoEmails);

    TemplateModel model;
    model.iptcProperties = {{TSKey::IPTC_HEADLINE, "New"},
                            {TSKey::IPTC_CREDIT, ""},
                            {TSKey::AUTHOR, "Zoë"},
                            {TSKey::IPTC_CREATOR_CONTACT_INFO_EMAILS, "zoe@example.org"},
                            {TSKey::IPTC_CREATOR_CONTACT_INFO_CITY, "Kraków"},
                            {TSKey::NAME, "a key with no tag is skipped"}};
    model.apply(settings);

    EXPECT_EQ(settings.properties.properties.value(kCGImagePropertyIPTCHeadline), "New");
    EXPECT_EQ(settings.properties.properties.value(kCGImagePropertyIPTCCity), "kept");
    EXPECT_FALSE(settings.properties.properties.contains(kCGImagePropertyIPTCCredit));
    // Author lives in the TIFF artist tag; every row bound to it shows the value.
    EXPECT_EQ(settings.properties.properties.value(kCGImagePropertyTIFFArtist), "Zoë");
    EXPECT_EQ(settings.value(TSKey::AUTHOR), "Zoë");
    // Contact fields go to the contact record, not to the top level.
    EXPECT_FALSE(settings.properties.properties.contains(kCGImagePropertyIPTCContactInfoEmails));
    const QVariantMap contact = settings.creatorContactInfo.dictionary();
    EXPECT_EQ(contact.value(kCGImagePropertyIPTCContactInfoEmails), "zoe@example.org");
    EXPECT_EQ(contact.value(kCGImagePropertyIPTCContactInfoCity), "Kraków");
    EXPECT_EQ(settings.properties.properties.size(), 3);
}

}  // namespace
