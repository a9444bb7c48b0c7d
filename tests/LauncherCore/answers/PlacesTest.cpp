#include "LauncherCore/answers/Places.h"

#include "LauncherCore/answers/CurrencyWords.h"
#include "LauncherCore/data/Tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>

namespace tessarine {
namespace {

std::string region(std::string_view word) {
    const auto place = Places::resolve(word);
    return place ? place->region : "nowhere";
}

TEST(Places, countriesAreWhole) {
    const auto rows = Tables::rows("countries");
    ASSERT_EQ(rows.size(), 243U);
    EXPECT_EQ(rows[1], (Tables::Row{"AX", "EUR", "Åland Islands"}));
    EXPECT_EQ(rows.back(), (Tables::Row{"ZW", "ZWG", "Zimbabwe"}));
    std::set<std::string_view> regions;
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 3U) << row[0];
        SCOPED_TRACE(row[2]);
        EXPECT_TRUE(row[0].size() == 2 && std::ranges::all_of(row[0], ::isupper));
        EXPECT_TRUE(regions.insert(row[0]).second);
        EXPECT_NE(Answers::currencyName(row[1]), row[1]) << "a currency without a name";
        EXPECT_EQ(Answers::resolveCurrency(row[1])->code, row[1]);
        // A duplicate name would lead elsewhere.
        EXPECT_EQ(region(row[2]), row[0]);
        ASSERT_TRUE(Places::home(row[1]));
        EXPECT_EQ(Places::home(row[1])->currency, row[1]);
    }
}

TEST(Places, aliasesAreWholeAndEachMeansOnePlace) {
    const auto rows = Tables::rows("place-aliases");
    EXPECT_EQ(rows.size(), 113U);
    std::set<std::string_view> regions;
    std::set<std::string_view> seen;
    for (const auto& row : rows) {
        EXPECT_TRUE(regions.insert(row[0]).second) << row[0];
        for (const auto alias : Tables::list(row.at(1))) {
            EXPECT_TRUE(seen.insert(alias).second) << alias;
            EXPECT_EQ(region(alias), row[0]) << alias;
        }
    }
    EXPECT_GE(seen.size(), 484U);
}

TEST(Places, namesMeetInWhateverSpelling) {
    struct Case {
        std::string_view word;
        std::string_view region;
    };

    const Case cases[] = {
        {"the netherlands", "NL"},
        {"Netherlands", "NL"},
        {"cote d'ivoire", "CI"},
        {"Côte d’Ivoire", "CI"},
        {"trinidad and tobago", "TT"},
        {"TRINIDAD & TOBAGO", "TT"},
        {"U.K.", "GB"},
        {"u.s.a.", "US"},
        {"guinea bissau", "GW"},
        {"Türkiye", "TR"},
        {"europe", "EU"},
        {"the eurozone", "EU"},
        {"euro zona", "EU"},
        {"nz", "NZ"},
        {"aus", "AU"},
        {"kosovo", "EU"}, // which has no line of its own, but the money
        {"atlantis", "nowhere"},
        {"", "nowhere"},
        {"\xff", "nowhere"},
    };
    for (const auto& [word, expected] : cases) {
        SCOPED_TRACE(word);
        EXPECT_EQ(region(word), expected);
    }
    EXPECT_EQ(Places::key("euro area"), Places::key("EU"));
}

TEST(Places, currenciesAreAtHomeWhereTheirCodesSay) {
    const auto home = [](std::string_view code) {
        const auto place = Places::home(code);
        return place ? place->name : "nowhere";
    };
    EXPECT_EQ(home("USD"), "United States"); // and not American Samoa
    EXPECT_EQ(home("EUR"), "Eurozone");
    EXPECT_EQ(home("XOF"), "West Africa");
    EXPECT_EQ(home("XCG"), "Caribbean Netherlands");
    EXPECT_EQ(home("MAD"), "Morocco");
    EXPECT_EQ(home("XYZ"), "nowhere");
    EXPECT_EQ(Places::flagOfCurrency("EUR"), "🇪🇺");
    EXPECT_EQ(Places::flagOfCurrency("XYZ"), "");
    EXPECT_EQ(Places::flagOfRegion("fr"), "");
    EXPECT_EQ(Places::flagOfRegion("FRA"), "");
}

} // namespace
} // namespace tessarine
