#include "LauncherCore/query/UsageLog.h"

#include "LauncherCore/query/UsageJson.h"

#include <gmock/gmock.h>

#include <limits>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr double now = 1767225600;
constexpr double hour = 3600;
constexpr double day = 24 * hour;

UsageLog launched(const std::vector<double>& ages, const std::string& id = "a") {
    UsageLog log;
    for (const double age : ages)
        log.record(id, now - age);
    return log;
}

UsageLog picked(const std::string& query, int times, const std::string& id = "iterm") {
    UsageLog log;
    for (int i = 0; i < times; ++i)
        log.recordChoice(query, id, now);
    return log;
}

TEST(UsageLog, frecencyFadesInSteps) {
    const struct {
        std::vector<double> ages;
        std::int64_t frecency;
        const char* reason;
    } cases[] = {
        {{}, 0, "never launched"},
        {{0}, 100, "just now"},
        {{4 * hour - 1}, 100, "under four hours"},
        {{4 * hour}, 70, "from four hours"},
        {{day}, 50, "from a day"},
        {{3 * day}, 30, "from three days"},
        {{7 * day}, 10, "from a week"},
        {{30 * day}, 2, "from a month"},
        {{10000 * day}, 2, "however old"},
        {{-day}, 100, "in the future"},
        {{std::numeric_limits<double>::quiet_NaN()}, 100, "at no time at all"},
        {{2 * day, hour, 31 * day}, 152, "all of them together"},
        {std::vector<double>(10, hour), 900, "capped"},
    };

    for (const auto& [ages, frecency, reason] : cases)
        EXPECT_EQ(launched(ages).frecency("a", now), frecency) << reason;
    EXPECT_EQ(launched({0}).frecency("b", now), 0);
}

TEST(UsageLog, keepsTheNewestLaunchesAndCountsAll) {
    UsageLog log;
    for (int i = 0; i < 30; ++i)
        log.record("a", i);
    EXPECT_EQ(log.items.at("a").launches.size(), UsageLog::keep);
    EXPECT_EQ(log.items.at("a").launches.front(), 6);
    EXPECT_EQ(log.items.at("a").total, 30);
}

TEST(UsageLog, picksClimbTheLadders) {
    const std::int64_t exact[] = {0, 600, 1200, 1600, 2000, 2400, 2600, 2600};
    const std::int64_t prefix[] = {0, 200, 400, 533, 666, 800, 866, 866};
    for (int picks = 0; picks < 8; ++picks) {
        const auto log = picked("term", picks);
        EXPECT_EQ(log.affinity("term", "iterm", now), exact[picks]) << picks;
        EXPECT_EQ(log.affinity(" TERM\t", "iterm", now), exact[picks]) << picks;
        EXPECT_EQ(log.affinity("te", "iterm", now), prefix[picks]) << picks;
    }
    UsageLog forged;
    forged.choices["term"]["x"] = std::numeric_limits<std::int64_t>::max();
    forged.choices["term"]["y"] = -5;
    EXPECT_EQ(forged.affinity("term", "x", now), 2600);
    EXPECT_EQ(forged.affinity("term", "y", now), 0);
}

TEST(UsageLog, onlyTheQueryItselfAndItsBeginningsAreCredited) {
    auto log = picked("term", 3);
    EXPECT_EQ(log.affinity("terms", "iterm", now), 0); // longer
    EXPECT_EQ(log.affinity("er", "iterm", now), 0);    // inside
    EXPECT_EQ(log.affinity("t", "iterm", now), 0);     // too short
    EXPECT_EQ(log.affinity("term", "other", now), 0);
    // An exact entry counts alone, though a longer query has more.
    log.recordChoice("te", "iterm", now);
    EXPECT_EQ(log.affinity("te", "iterm", now), 600);
    // A combining accent makes another last character: "cafe" is no beginning of "café s".
    EXPECT_EQ(picked("cafe\u0301 s", 3).affinity("cafe", "iterm", now), 0);
}

TEST(UsageLog, theTableAgreesWithEachAffinity) {
    auto log = picked("term", 3);
    log.recordChoice("terminal", "other", now);
    log.recordChoice("te", "other", now);
    log.recordChoice("tx", "third", now);
    for (const auto* query : {"te", "ter", "term", "t", "x", ""}) {
        const auto table = log.affinityTable(query, now);
        for (const auto* id : {"iterm", "other", "third"}) {
            const auto found = table.find(id);
            EXPECT_EQ(found == table.end() ? 0 : found->second, log.affinity(query, id, now))
                << query << " " << id;
        }
    }
    EXPECT_THAT(log.affinityTable("te", now),
                UnorderedElementsAre(Pair("iterm", 533), Pair("other", 600)));
}

TEST(UsageLog, queriesOfTheRightLengthAreKept) {
    EXPECT_THAT(picked("t", 1).choices, IsEmpty());
    EXPECT_THAT(picked("  é ", 1).choices, IsEmpty());
    EXPECT_THAT(picked("日本", 1).choices, testing::SizeIs(1));
    EXPECT_THAT(picked(std::string(32, 'x'), 1).choices, testing::SizeIs(1));
    EXPECT_THAT(picked(std::string(33, 'x'), 1).choices, IsEmpty());
    EXPECT_EQ(picked(std::string(32, 'x'), 1).affinity("xx", "iterm", now), 200);
    EXPECT_EQ(UsageLog::normalizedQuery("\t ÀB \n"), "àb \n"); // line ends are no blanks
}

TEST(UsageLog, theWeakestQueryMakesRoom) {
    UsageLog log;
    for (int i = 0; i < 400; ++i) {
        log.recordChoice("query" + std::to_string(i), "a", now);
        if (i != 7)
            log.recordChoice("query" + std::to_string(i), "a", now);
    }
    auto withNew = log;
    withNew.recordChoice("fresh", "a", now);
    EXPECT_EQ(withNew.choices.size(), UsageLog::keepQueries);
    EXPECT_TRUE(withNew.choices.contains("fresh")); // as weak as query7, but just picked
    EXPECT_FALSE(withNew.choices.contains("query7"));
    // Where every other is stronger, the new one is the weakest itself.
    log.recordChoice("query7", "a", now);
    log.recordChoice("fresh", "a", now);
    EXPECT_FALSE(log.choices.contains("fresh"));
    EXPECT_EQ(log.choices.size(), UsageLog::keepQueries);
}

TEST(UsageLog, topIdsAreMostFrecentFirst) {
    UsageLog log = launched({hour}, "b");
    log.record("a", now);
    log.record("c", now - 40 * day);
    log.items["never"];
    EXPECT_THAT(log.topIds(now, 9), ElementsAre("a", "b", "c"));
    EXPECT_THAT(log.topIds(now, 1), ElementsAre("a"));
}

TEST(UsageLog, aRenamedIdTakesItsHistoryAlong) {
    auto log = launched(std::vector<double>(20, hour), "old");
    for (int i = 0; i < 10; ++i)
        log.record("new", now - 2 * hour + i);
    log.recordChoice("term", "old", now);
    log.recordChoice("term", "new", now);
    EXPECT_TRUE(log.renameID("old", "new"));
    EXPECT_FALSE(log.items.contains("old"));
    EXPECT_EQ(log.items.at("new").total, 30);
    EXPECT_EQ(log.items.at("new").launches.size(), UsageLog::keep);
    EXPECT_TRUE(std::ranges::is_sorted(log.items.at("new").launches));
    EXPECT_THAT(log.choices.at("term"), UnorderedElementsAre(Pair("new", 2)));
    EXPECT_FALSE(log.renameID("old", "new"));
    EXPECT_FALSE(log.renameID("new", "new"));
    EXPECT_THAT(UsageLog::renamingFavorites({"x", "cmd:wispr", "y", "cmd:sys.fixWispr", "x"},
                                            UsageLog::renamedIDs()),
                ElementsAre("x", "cmd:sys.fixWispr", "y"));
}

TEST(UsageLog, logsCombineInAnyOrder) {
    auto first = launched(std::vector<double>(20, hour));
    first.recordChoice("term", "a", now);
    auto second = launched(std::vector<double>(20, 2 * hour));
    second.recordChoice("term", "a", now);
    second.recordChoice("other", "b", now);
    const UsageLog none;
    const UsageLog* const forward[] = {&first, &second};
    const UsageLog* const backward[] = {&second, &first};
    const auto combined = none.combined(forward);
    EXPECT_EQ(combined, none.combined(backward));
    EXPECT_EQ(combined.items.at("a").total, 40);
    EXPECT_EQ(combined.items.at("a").launches.back(), now - hour);
    EXPECT_EQ(combined.choices.at("term").at("a"), 2);
    EXPECT_EQ(first.combined({}), first);
}

TEST(UsageJson, documentsSurviveTheWayToTheDiskAndBack) {
    auto log = launched({0.123456789, day});
    log.recordChoice("café", "cmd:x", now);
    log.items["bad\xff"].total = 1;
    const auto again = UsageJson::decodedLog(UsageJson::encoded(log));
    ASSERT_TRUE(again);
    EXPECT_EQ(again->items.at("a"), log.items.at("a"));
    EXPECT_EQ(again->choices, log.choices);
    EXPECT_EQ(UsageJson::decodedDevices(UsageJson::encoded({{"d1", *again}, {"d2", {}}})),
              (std::map<std::string, UsageLog>{{"d1", *again}, {"d2", {}}}));
}

TEST(UsageJson, whatIsNotWholeIsNothing) {
    const struct {
        const char* text;
        const char* reason;
    } cases[] = {
        {"", "empty"},
        {R"({"items":{})", "cut short"},
        {"[]", "no object"},
        {R"({"items":{}})", "no choices"},
        {R"({"items":[],"choices":{}})", "items of another type"},
        {R"({"items":{"a":{"launches":[1]}},"choices":{}})", "a record without its total"},
        {R"({"items":{"a":{"launches":["x"],"total":1}},"choices":{}})", "a launch in words"},
        {R"({"items":{"a":{"launches":[],"total":1.5}},"choices":{}})", "a broken total"},
        {R"({"items":{},"choices":{"q":3}})", "picks of another type"},
        {R"({"items":{},"choices":{"q":{"a":"1"}}})", "a count in words"},
    };

    for (const auto& [text, reason] : cases) {
        EXPECT_FALSE(UsageJson::decodedLog(text)) << reason;
        EXPECT_FALSE(UsageJson::decodedDevices(std::string(R"({"d":)") + text + "}")) << reason;
    }
    EXPECT_TRUE(UsageJson::decodedLog(R"({"items":{},"choices":{},"newer":1})"));
}

} // namespace
} // namespace tessarine
