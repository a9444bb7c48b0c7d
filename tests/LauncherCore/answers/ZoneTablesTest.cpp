#include "LauncherCore/answers/zones/ZoneTables.h"

#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Zone.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace tessarine {
namespace {

using testing::SizeIs;

std::string key(std::string_view word) {
    return ZoneTables::key(Folding::fold(word));
}

/// The words of a row that lead to its zone.
std::vector<std::string_view> words(std::string_view table, const Tables::Row& row) {
    std::vector<std::string_view> all;
    if (table == "city-aliases")
        all = Tables::list(row[0]);
    if (row.size() > 2)
        for (const auto word : Tables::list(row[2]))
            all.push_back(word);
    return all;
}

TEST(ZoneTables, everyWordIsGivenOnceAndLeadsToAZone) {
    for (const std::string_view table : {"zone-abbreviations", "city-aliases"}) {
        std::set<std::string> seen;
        for (const auto& row : Tables::rows(table)) {
            SCOPED_TRACE(std::string(row[0]));
            ASSERT_GE(row.size(), 2u);
            EXPECT_TRUE(Zone::named(row[1])) << row[1];
            for (const auto word : words(table, row)) {
                EXPECT_TRUE(seen.insert(key(word)).second) << word;
                // An abbreviation is stronger than a city of that name; nothing else is.
                const auto* place = ZoneTables::place(key(word));
                ASSERT_TRUE(place) << word;
                EXPECT_TRUE(place->identifier == row[1] || place->isAbbreviation) << word;
            }
        }
    }
}

TEST(ZoneTables, eachGroupOfAbbreviationsHasItsRelatives) {
    std::map<std::string_view, std::size_t> sizes;
    for (const auto& row : Tables::rows("zone-abbreviations"))
        sizes[Tables::list(row[2]).front()] = Tables::list(row[2]).size();
    const std::pair<const char*, std::size_t> groups[] = {
        {"et", 7},  {"ct", 5},  {"mt", 4},  {"pt", 5},  {"akst", 3}, {"hst", 3},  {"utc", 3},
        {"gmt", 2}, {"bst", 2}, {"wet", 2}, {"cet", 4}, {"eet", 4},  {"gst", 2},  {"ist", 2},
        {"msk", 2}, {"sgt", 2}, {"hkt", 2}, {"jst", 2}, {"kst", 2},  {"aest", 2}, {"nzst", 2},
    };
    for (const auto& [word, size] : groups)
        EXPECT_EQ(sizes[word], size) << word;
    for (const auto& row : Tables::rows("city-aliases"))
        if (row[0] == "New York") {
            EXPECT_THAT(Tables::list(row[2]), SizeIs(14)); // "nyc" and thirteen relatives
        }
}

TEST(ZoneTables, everyZonesCityIsAPlace) {
    for (const auto& identifier : Zone::identifiers())
        EXPECT_TRUE(ZoneTables::place(key(TimeZones::cityName(identifier)))) << identifier;
}

TEST(ZoneTables, everyCountryHasKnownZonesOfItsOwn) {
    const auto rows = Tables::rows("country-zones");
    EXPECT_EQ(rows.size(), 247u);
    std::set<std::string_view> regions;
    std::set<std::string_view> zones;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row[0]));
        ASSERT_EQ(row.size(), 2u);
        EXPECT_TRUE(row[0].size() == 2 && regions.insert(row[0]).second);
        const auto listed = Tables::list(row[1]);
        EXPECT_FALSE(listed.empty());
        for (const auto zone : listed) {
            EXPECT_TRUE(Zone::named(zone)) << zone;
            EXPECT_TRUE(zones.insert(zone).second) << zone;
            EXPECT_EQ(ZoneTables::region(zone), row[0]);
        }
    }
    for (const auto& row : Tables::rows("country-words")) {
        EXPECT_TRUE(regions.contains(row[0])) << row[0];
        EXPECT_GT(ZoneTables::zones(row[0]).size(), 1u) << row[0];
    }
}

TEST(ZoneTables, ordinaryWordsArePlacesOrUserWords) {
    const TimeZones::Context context{.home = {"Rome", "Europe/Rome"}};
    for (const auto& row : Tables::rows("zone-ordinary-words"))
        EXPECT_TRUE(TimeZones::resolvePlace(row[0], context)) << row[0];
}

TEST(ZoneTables, theBuiltInClocksAreKnownZonesUnderKnownNames) {
    const TimeZones::Context context;
    for (const auto& row : Tables::rows("clocks")) {
        const auto found = TimeZones::resolvePlace(row[0], context);
        ASSERT_TRUE(found) << row[0];
        EXPECT_EQ(found->identifier, row[1]);
    }
}

} // namespace
} // namespace tessarine
