// SPDX-License-Identifier: GPL-3.0-or-later
// The IPTC screen's view model as the page drives it: rows for many photos, the pick lists, and
// the template form's Cancel and Done followed by Apply.
#include "IptcViewModel.h"
#include "Isolation.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace testsupport;

namespace {

class IptcScreen : public IsolatedTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(model_.openPhotos({corpusDir() + "/jpeg/Canon_40D.jpg", corpusDir() + "/jpeg/DSC_3079.jpg",
                                       corpusDir() + "/heif/IMG_5195.HEIC"}));
    }
    QVariant at(int row, IptcViewModel::Role role) const { return model_.data(model_.index(row), role); }

    IptcViewModel model_;
};

TEST_F(IptcScreen, ManyPhotosAndThePickLists) {
    EXPECT_TRUE(model_.multi());
    ASSERT_EQ(model_.rowCount(), 19);
    EXPECT_EQ(at(0, IptcViewModel::SectionRole), "Content");
    EXPECT_EQ(at(0, IptcViewModel::PlaceholderRole), "Unchanged");
    EXPECT_EQ(at(8, IptcViewModel::KindRole), "group");
    EXPECT_EQ(at(18, IptcViewModel::SectionRole), "Media");
    EXPECT_EQ(at(18, IptcViewModel::KindRole), "options");
    EXPECT_TRUE(model_.isCountryCode(17));
    EXPECT_EQ(model_.contactTitle(), "Creator Contact Info (edited)");

    const QVariantList options = model_.options(18);
    ASSERT_GT(options.size(), 1);
    EXPECT_EQ(options.first().toMap().value("id"), "");
    model_.choose(18, options[1].toMap().value("id").toString());
    EXPECT_EQ(at(18, IptcViewModel::ValueRole), options[1].toMap().value("title"));
    EXPECT_EQ(model_.currentId(18), options[1].toMap().value("id"));

    const QVariantList found = model_.countries("zealand");
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().toMap().value("id"), "NZL");
    model_.choose(17, "NZL");
    EXPECT_EQ(at(17, IptcViewModel::ValueRole), "NZL");

    model_.setContactText(1, QString::fromUtf8("Gdańsk"));
    EXPECT_EQ(at(8, IptcViewModel::ValueRole), QString::fromUtf8("City: Gdańsk"));
    EXPECT_EQ(model_.contactRows().value(1).toMap().value("value"), QString::fromUtf8("Gdańsk"));
}

TEST_F(IptcScreen, TemplateFormCancelDoneThenApply) {
    const QString file = QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).filePath("template_0.json");
    ASSERT_TRUE(file.startsWith(isolation().root()));
    model_.setText(5, "kept");  // an edit the template does not touch

    model_.editTemplate();
    const QVariantList rows = model_.templateRows();
    ASSERT_EQ(rows.size(), 18 + 8);  // the fields but the group, then the group's eight
    EXPECT_EQ(rows.first().toMap().value("header"), "Content");
    EXPECT_EQ(rows.first().toMap().value("placeholder"), "Add Document title here");
    EXPECT_EQ(rows.last().toMap().value("header"), "");
    model_.setTemplateValue("Headline", "Cancelled");
    EXPECT_TRUE(model_.finishTemplate(false));
    EXPECT_FALSE(QFile::exists(file));

    model_.editTemplate();
    model_.setTemplateValue("Headline", QString::fromUtf8("Fête"));
    model_.setTemplateValue("City:", "Oslo");  // a contact field, by its raw key text
    EXPECT_TRUE(model_.finishTemplate(true));
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray(R"(["Headline","Fête","City:","Oslo"])"));

    model_.applyTemplate();
    EXPECT_EQ(at(3, IptcViewModel::ValueRole), QString::fromUtf8("Fête"));
    EXPECT_EQ(at(5, IptcViewModel::ValueRole), "kept");
    EXPECT_EQ(at(8, IptcViewModel::ValueRole), "City: Oslo");
}

}  // namespace
