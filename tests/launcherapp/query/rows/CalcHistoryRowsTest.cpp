#include "launcherapp/query/rows/CalcHistoryRows.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = CalcEntry::Kind;

class CalcHistoryRowsTest : public testing::Test {
protected:
    CalcHistoryRowsTest() {
        verbs.copyText = [this](const std::string& text) { done.push_back("copy " + text); };
        verbs.openSettings = [this] { done.emplace_back("settings"); };
        calculations.typeText = [this](const std::string& text) { done.push_back("type " + text); };
        calculations.pin = [this](const std::string& id) { done.push_back("pin " + id); };
        calculations.unpin = [this](const std::string& id) { done.push_back("unpin " + id); };
        calculations.remove = [this](const std::string& id) { done.push_back("remove " + id); };
    }

    CalcHistoryRowSources sources() const {
        return {.history = history,
                .isEnabled = isEnabled,
                .verbs = verbs,
                .calculations = calculations};
    }

    RowVerbs verbs;
    CalcHistoryVerbs calculations;
    bool isEnabled = true;
    std::vector<std::string> done;
    CalcHistoryStore history{{
        {.id = "d",
         .expression = "days until dec 25",
         .formatted = "3 days",
         .value = 3,
         .detail = "until Friday",
         .kind = Kind::date},
        {.id = "c",
         .expression = "100 usd in eur",
         .formatted = "\u20ac92.50",
         .value = 92.5,
         .kind = Kind::currency},
        {.id = "b",
         .expression = "5 km in miles",
         .formatted = "3.11",
         .value = 3.11,
         .kind = Kind::unit,
         .pinned = true},
        {.id = "a",
         .expression = "rent = 600*2",
         .formatted = "1,200",
         .value = 1200,
         .detail = "rent is now 1,200",
         .name = "rent"},
        {.id = "z", .expression = "2+2", .formatted = "4", .value = 4, .detail = "= 2+2"},
    }};
};

TEST_F(CalcHistoryRowsTest, theKeywordListsWhatWasKept) {
    const struct {
        const char* id;
        const char* title;
        const char* subtitle;
        const char* symbol;
    } expected[] = {
        {"calc:d", "3 days", "days until dec 25 · until Friday", "calendar"},
        {"calc:c", "\u20ac92.50", "100 usd in eur", "dollarsign.circle"},
        {"calc:b", "3.11", "5 km in miles · pinned", "arrow.left.arrow.right"},
        {"calc:a", "1,200", "rent = 600*2 · rent is now 1,200", "equal.circle"},
        {"calc:z", "4", "= 2+2", "equal.circle"}, // not the same text twice
    };

    const auto rows = calcHistoryRows(sources(), "");
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].id, expected[i].id);
        EXPECT_EQ(rows[i].title, expected[i].title);
        EXPECT_EQ(rows[i].subtitle, expected[i].subtitle);
        EXPECT_EQ(rows[i].symbol, expected[i].symbol);
        EXPECT_EQ(rows[i].kind, RowKind::calc);
        EXPECT_EQ(rows[i].primaryLabel, "copy");
    }
    const auto found = calcHistoryRows(sources(), "RENT");
    ASSERT_EQ(found.size(), 1);
    found.front().primary();
    found.front().secondary();
    EXPECT_THAT(done, ElementsAre("copy 1,200", "type 1200"));
}

TEST_F(CalcHistoryRowsTest, aHintSaysWhyThereIsNothing) {
    const auto expectHint = [&](std::string_view query, const char* title, const char* subtitle) {
        const auto rows = calcHistoryRows(sources(), query);
        ASSERT_EQ(rows.size(), 1) << title;
        EXPECT_EQ(rows.front().kind, RowKind::hint);
        EXPECT_EQ(rows.front().title, title);
        EXPECT_EQ(rows.front().subtitle, subtitle);
        rows.front().primary();
    };
    expectHint(" 77 ", "No calculation matches “77”", "");
    history = {};
    expectHint("77",
               "Nothing calculated yet",
               "Type a sum in the panel and press Return; it is filed here.");
    EXPECT_THAT(done, IsEmpty());
    isEnabled = false;
    expectHint(
        "77", "Calculator history is switched off", "Settings › Calculator turns it back on");
    EXPECT_THAT(done, ElementsAre("settings"));
}

TEST_F(CalcHistoryRowsTest, earlierCalculationsStandBelowANewOne) {
    const struct {
        const char* id;
        const char* title;
        const char* subtitle;
        const char* symbol;
        std::int64_t score;
    } expected[] = {
        {"calcrecent:days until dec 253 days",
         "days until dec 25 = 3 days",
         "earlier",
         "calendar",
         9000},
        {"calcrecent:5 km in miles3.11",
         "5 km in miles = 3.11",
         "earlier",
         "arrow.left.arrow.right",
         8999},
        {"calcrecent:rent = 600*21,200",
         "rent = 1,200",
         "earlier · saved as rent",
         "equal.circle",
         8998},
    };

    const auto rows = earlierCalculationRows(sources(), "100 usd in eur", 3);
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].id, expected[i].id);
        EXPECT_EQ(rows[i].title, expected[i].title);
        EXPECT_EQ(rows[i].subtitle, expected[i].subtitle);
        EXPECT_EQ(rows[i].symbol, expected[i].symbol);
        EXPECT_EQ(rows[i].score, expected[i].score);
        EXPECT_EQ(rows[i].group, RowGroup::answers);
        EXPECT_EQ(rows[i].secondaryLabel, "use this number");
    }
    rows[1].primary();
    rows[1].secondary();
    EXPECT_THAT(done, ElementsAre("copy 3.11", "type 3.11"));
    EXPECT_EQ(calcHistoryCopyText(rows[2], history), "1,200") << "the result, not the title";

    EXPECT_THAT(earlierCalculationRows(sources(), ":2+2", 3), IsEmpty());
    EXPECT_THAT(earlierCalculationRows(sources(), "1+1", 0), IsEmpty());
    EXPECT_EQ(earlierCalculationRows(sources(), "1+1", 99).size(), 5);
    isEnabled = false;
    EXPECT_THAT(earlierCalculationRows(sources(), "1+1", 3), IsEmpty());
}

TEST_F(CalcHistoryRowsTest, saysWhyNothingCanBeCopiedAndStopsWhenItCan) {
    std::string obstacle = "the desktop shows it to nobody";
    verbs.copyObstacle = [&] { return obstacle; };
    EXPECT_EQ(calcHistoryRows(sources(), "2+2").front().subtitle,
              "= 2+2 · can't be copied: the desktop shows it to nobody");
    EXPECT_EQ(earlierCalculationRows(sources(), "1+1", 1).front().subtitle,
              "earlier · can't be copied: the desktop shows it to nobody");
    obstacle.clear();
    EXPECT_EQ(calcHistoryRows(sources(), "2+2").front().subtitle, "= 2+2");
}

TEST_F(CalcHistoryRowsTest, itsMenuActsOnTheCalculation) {
    const auto titles = [](const std::vector<RowAction>& actions) {
        std::vector<std::string> result;
        for (const auto& action : actions)
            result.push_back(action.title);
        return result;
    };
    const auto rows = calcHistoryRows(sources(), "");
    const auto earlier = earlierCalculationRows(sources(), "", 9);
    const auto ofPinned = calcHistoryActions(rows[2], sources());
    EXPECT_THAT(titles(ofPinned),
                ElementsAre("Unpin this calculation",
                            "Edit this calculation",
                            "Copy the expression",
                            "Remove from history"));
    const auto ofNamed = calcHistoryActions(earlier[3], sources());
    EXPECT_EQ(ofNamed.front().title, "Pin this calculation");
    EXPECT_TRUE(ofNamed.back().destructive);
    ofPinned[0].run();
    for (const auto& action : ofNamed)
        action.run();
    EXPECT_THAT(
        done,
        ElementsAre("unpin b", "pin a", "type rent = 600*2", "copy rent = 600*2", "remove a"));

    EXPECT_THAT(calcHistoryActions({.id = "/usr/bin/calc:a"}, sources()), IsEmpty());
    history.remove("a");
    EXPECT_THAT(calcHistoryActions(rows[3], sources()), IsEmpty()) << "gone in the meantime";
    EXPECT_EQ(calcHistoryCopyText(earlier[3], history), std::nullopt);
    calculations = {};
    EXPECT_THAT(titles(calcHistoryActions(rows[0], sources())), ElementsAre("Copy the expression"));
}

} // namespace
} // namespace tessarine
