// SPDX-License-Identifier: GPL-3.0-or-later
// The country table and the long pick list.
#include "Choosers.h"

#include <gtest/gtest.h>

namespace {

TEST(Countries, EveryRowHasItsCodes) {
    const auto& all = IsoCountries::allCountries();
    ASSERT_EQ(all.size(), 251);
    // Rows the table names in its own older words still carry their codes.
    EXPECT_EQ(IsoCountryCodes::find("TUR").name, "Turkey");
    EXPECT_EQ(IsoCountryCodes::find("SZ").alpha3, "SWZ");
    EXPECT_EQ(IsoCountryCodes::find("MKD").name, "Macedonia, the former Yugoslav Republic of");
    for (const auto& c : all.mid(0, 249)) {
        EXPECT_EQ(c.alpha2.size(), 2) << c.name.toStdString();
        EXPECT_EQ(c.alpha3.size(), 3) << c.name.toStdString();
        EXPECT_EQ(c.numeric.size(), 3) << c.name.toStdString();
        EXPECT_FALSE(c.continent.isEmpty()) << c.name.toStdString();
    }
}

TEST(Countries, FindByEitherCodeAndSearchByName) {
    const IsoCountryInfo italy = IsoCountryCodes::find("it");
    EXPECT_EQ(italy.name, "Italy");
    EXPECT_EQ(IsoCountryCodes::find("ITA"), italy);
    EXPECT_EQ(IsoCountryCodes::find("380"), italy);
    EXPECT_EQ(IsoCountryCodes::find("XYZ"), IsoCountryInfo{});
    EXPECT_EQ(IsoCountryCodes::find("001").name, "World");

    const auto aland = IsoCountryCodes::searchByName("aland islands");
    ASSERT_EQ(aland.size(), 1);
    EXPECT_EQ(aland.first().alpha3, "ALA");
    EXPECT_EQ(IsoCountryCodes::searchByName(QString::fromUtf8("CÔTE D'IVOIRE")).value(0).alpha2, "CI");
    EXPECT_TRUE(IsoCountryCodes::searchByName("Atlantis").isEmpty());
}

TEST(Countries, ListLabelsAndChooser) {
    EXPECT_EQ(IsoCountryCodes::flag("de"), QString::fromUtf8("\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA"));
    EXPECT_EQ(IsoCountryCodes::flag("1!"), "-");
    const auto elements = IsoCountryCodes::countryElements();
    ASSERT_EQ(elements.size(), 251);
    EXPECT_EQ(elements[0], (ChoosingElement{QString::fromUtf8("\xF0\x9F\x87\xA6\xF0\x9F\x87\xAB AFG Afghanistan"), "AFG"}));
    EXPECT_EQ(elements[249].label, "-  World");  // no flag, no alpha-3
    EXPECT_EQ(elements[249].id, "");

    ChooserInputModel model;
    model.title = "Country Code";
    model.list = elements;
    EXPECT_EQ(model.results("").size(), 251);
    const auto found = model.results("zealand");
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found.first().id, "NZL");
    EXPECT_EQ(model.actualIndex(), -1);

    std::vector<std::optional<ChoosingElement>> handed;
    model.onChoosen = [&](const std::optional<ChoosingElement>& e) { handed.push_back(e); };
    model.choose(found.first());
    EXPECT_EQ(model.list[model.actualIndex()].id, "NZL");
    model.choose(std::nullopt);  // "None"
    EXPECT_FALSE(model.actual);
    ASSERT_EQ(handed.size(), 2u);
    EXPECT_EQ(handed[0]->id, "NZL");
    EXPECT_FALSE(handed[1]);
}

}  // namespace
