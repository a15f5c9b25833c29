// SPDX-License-Identifier: GPL-3.0-or-later
// The IPTC screen's rules for one photo and for many, over a photo written with known values.
#include "IptcEditorModel.h"
#include "ImageWriter.h"
#include "PropertyKeys.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>


using namespace testsupport;

namespace {

const QString kCapture = QStringLiteral("http://cv.iptc.org/newscodes/digitalsourcetype/digitalCapture");

class IptcEditor : public IsolatedTest {
protected:
    void SetUp() override {
        const QByteArray source = readFile(corpusDir() + "/jpeg/Canon_40D.jpg");
        ASSERT_FALSE(source.isEmpty()) << "corpus missing";
        const imageio::PropertyDict iptc{
            {kCGImagePropertyIPTCHeadline, QString::fromUtf8("Own headline é")},
            {kCGImagePropertyIPTCKeywords, QStringList{"one", "two"}},
            {kCGImagePropertyIPTCExtDigitalSourceType, kCapture},
            {kCGImagePropertyIPTCCreatorContactInfo, QVariantMap{{kCGImagePropertyIPTCContactInfoCity, "Oslo"}}}};
        QString error;
        const auto bytes = imageio::writeProperties(source, {{kCGImagePropertyIPTCDictionary, iptc}}, &error);
        ASSERT_TRUE(bytes) << error.toStdString();
        record_ = TSMetaData(*bytes);
        const TSDataStore store;
        settings_.emplace(record_, store);
    }
    TSMetaData record_;
    std::optional<UserSettings> settings_;
};

TEST_F(IptcEditor, RowsAndTheirCells) {
    QList<TSKey> all;
    for (IptcSections s : IptcEditorModel::sections()) all << IptcEditorModel::rows(s);
    EXPECT_EQ(all.size(), 19);
    EXPECT_EQ(IptcEditorModel::cellKind(TSKey::IPTC_CREATOR_CONTACT_INFO), IptcCellKind::group);
    EXPECT_EQ(IptcEditorModel::cellKind(TSKey::IPTC_SOURCE_TYPE), IptcCellKind::options);
    EXPECT_EQ(IptcEditorModel::cellKind(TSKey::IPTC_KEYWORDS), IptcCellKind::list);
    EXPECT_EQ(IptcEditorModel::cellKind(TSKey::IPTC_COUNTRYCODE), IptcCellKind::text);
    IptcEditorModel model(*settings_, 1);
    EXPECT_EQ(model.row(TSKey::IPTC_KEYWORDS).title, "Keywords (comma-separated list)");
    EXPECT_EQ(IptcEditorModel::options(TSKey::IPTC_SOURCE_TYPE).first().id(), QString());
    EXPECT_TRUE(IptcEditorModel::options(TSKey::IPTC_HEADLINE).isEmpty());
}

TEST_F(IptcEditor, ManyPhotosShowOnlyWishes) {
    IptcEditorModel model(*settings_, 2);
    for (IptcSections s : IptcEditorModel::sections())
        for (TSKey k : IptcEditorModel::rows(s)) {
            const IptcRowText t = model.row(k);
            if (IptcEditorModel::cellKind(k) == IptcCellKind::text || IptcEditorModel::cellKind(k) == IptcCellKind::list) {
                EXPECT_EQ(t.value, QString()) << rawValue(k).toStdString();
                EXPECT_EQ(t.placeholder, "Unchanged") << rawValue(k).toStdString();
            }
        }
    EXPECT_EQ(model.row(TSKey::IPTC_SOURCE_TYPE).value, "Unchanged");
    const IptcRowText group = model.row(TSKey::IPTC_CREATOR_CONTACT_INFO);
    EXPECT_EQ(group.value, "Unchanged");
    EXPECT_TRUE(group.dimmed);
    EXPECT_EQ(model.contactTitle(), "Creator Contact Info (edited)");

    // An emptied text leaves the field alone on every photo; the empty option clears it.
    model.setText(TSKey::IPTC_HEADLINE, "New");
    model.setText(TSKey::IPTC_HEADLINE, "");
    EXPECT_FALSE(settings_->properties.properties.contains(kCGImagePropertyIPTCHeadline));
    model.choose(TSKey::IPTC_SOURCE_TYPE, "");
    EXPECT_EQ(model.row(TSKey::IPTC_SOURCE_TYPE).value, "Unselected");
    model.setText(TSKey::IPTC_CREATOR_CONTACT_INFO_EMAILS, "a@example.org");
    EXPECT_EQ(model.row(TSKey::IPTC_CREATOR_CONTACT_INFO).value, "Email(s): a@example.org");
    EXPECT_FALSE(model.row(TSKey::IPTC_CREATOR_CONTACT_INFO).dimmed);
}

TEST_F(IptcEditor, OnePhotoShowsItsOwnValuesUntilEdited) {
    IptcEditorModel model(*settings_, 1);
    EXPECT_EQ(model.row(TSKey::IPTC_HEADLINE).value, QString::fromUtf8("Own headline é"));
    EXPECT_EQ(model.row(TSKey::IPTC_CITY).value, QString());
    EXPECT_EQ(model.row(TSKey::IPTC_CITY).placeholder, "Add City here");
    EXPECT_EQ(model.row(TSKey::IPTC_KEYWORDS).placeholder, "Add Keywords here");
    EXPECT_EQ(model.row(TSKey::IPTC_SOURCE_TYPE).value, "Original digital capture sampled from real life");
    EXPECT_EQ(model.row(TSKey::IPTC_CREATOR_CONTACT_INFO).value, "City: Oslo");
    EXPECT_EQ(model.contactTitle(), "Creator Contact Info");

    // Emptying a field on one photo removes it.
    model.setText(TSKey::IPTC_HEADLINE, "");
    EXPECT_EQ(settings_->properties.properties.value(kCGImagePropertyIPTCHeadline), kRemovalMark);
    EXPECT_EQ(model.row(TSKey::IPTC_HEADLINE).value, "[removed]");
    model.setText(TSKey::IPTC_CREATOR_CONTACT_INFO_CITY, "");
    EXPECT_EQ(model.row(TSKey::IPTC_CREATOR_CONTACT_INFO).value, "City: [removed]");
    model.choose(TSKey::IPTC_SOURCE_TYPE, "");
    EXPECT_EQ(model.row(TSKey::IPTC_SOURCE_TYPE).value, QString());
    model.choose(TSKey::IPTC_SOURCE_TYPE, "urn:unknown");
    EXPECT_EQ(model.row(TSKey::IPTC_SOURCE_TYPE).value, "urn:unknown");
    EXPECT_TRUE(settings_->disclosureChanged);
}

TEST_F(IptcEditor, FooterCreditsTheIptc) {
    const QString f = IptcEditorModel::footer();
    EXPECT_TRUE(f.startsWith("        \n"));
    EXPECT_TRUE(f.contains("IPTC"));
    EXPECT_TRUE(f.contains("See also [standards]("));
}

}  // namespace
