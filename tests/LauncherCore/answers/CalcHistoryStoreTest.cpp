#include "LauncherCore/answers/CalcHistoryStore.h"

#include "LauncherCore/answers/CalcHistoryJson.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;
using Kind = CalcEntry::Kind;
using Pinned = CalcHistoryStore::Pinned;

CalcEntry sum(const std::string& id, const std::string& expression, double value = 0) {
    return {.id = id, .expression = expression, .formatted = "=", .value = value};
}

std::vector<std::string> ids(const std::vector<CalcEntry>& entries) {
    std::vector<std::string> result;
    for (const auto& entry : entries)
        result.push_back(entry.id);
    return result;
}

TEST(CalcHistoryStore, filesTheSameCalculationOnce) {
    CalcHistoryStore history;
    auto named = sum("a", "x = 1", 1);
    named.name = "x";
    history.record(named);
    history.pin("a");
    history.record(sum("b", "2+2", 4));
    const auto filed = history.record(sum("c", "x = 1", 5));
    EXPECT_THAT(ids(history.entries()), ElementsAre("a", "b"));
    EXPECT_EQ(filed, history.entries().front());
    EXPECT_TRUE(filed.pinned);
    EXPECT_EQ(filed.name, "x");
    EXPECT_EQ(filed.value, 5) << "the result is the new one";

    auto unit = sum("d", "2+2");
    unit.kind = Kind::unit;
    history.record(unit);
    EXPECT_THAT(ids(history.entries()), ElementsAre("d", "a", "b")) << "another kind is another";
}

TEST(CalcHistoryStore, dropsTheOldestThatIsNotPinned) {
    CalcHistoryStore history;
    const auto fill = [&](std::size_t from, std::size_t to) {
        for (auto i = from; i < to; ++i)
            history.record(sum(std::to_string(i), std::to_string(i) + "+0"));
    };
    fill(0, 500);
    history.pin("0");
    history.pin("2");
    fill(500, 501);
    EXPECT_EQ(history.entries().size(), 501) << "the pinned one stays, past the 500th place";
    fill(501, 502);
    EXPECT_EQ(history.entries().size(), 501) << "its neighbour goes";
    EXPECT_EQ(history.entry("1"), nullptr);
    EXPECT_NE(history.entry("0"), nullptr);
    fill(502, 504);
    EXPECT_EQ(history.entries().size(), 502) << "places count, not what was kept";
    history.unpin("0");
    fill(504, 505);
    EXPECT_EQ(history.entry("0"), nullptr);
    EXPECT_NE(history.entry("2"), nullptr);
}

TEST(CalcHistoryStore, forgetsWhatItIsToldTo) {
    CalcHistoryStore history({sum("c", "3"), sum("b", "2"), sum("a", "1")});
    EXPECT_TRUE(history.remove("c"));
    EXPECT_FALSE(history.remove("c"));
    EXPECT_FALSE(history.pin("c"));
    EXPECT_TRUE(history.pin("a"));
    history.clear(Pinned::kept);
    EXPECT_THAT(ids(history.entries()), ElementsAre("a"));
    history.clear(Pinned::removed);
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST(CalcHistoryStore, findsInEveryText) {
    auto money = sum("money", "100 usd in eur");
    money.kind = Kind::currency;
    money.detail = "US Dollar to Euro at the Café";
    auto rent = sum("rent", "800+400");
    rent.formatted = "1,200";
    rent.name = "rent";
    const CalcHistoryStore history({money, rent, sum("old", "8*100")});

    const struct {
        const char* query;
        std::vector<std::string> found;
        const char* reason;
    } cases[] = {
        {" 100 ", {"money", "old"}, "what was typed"},
        {"1,2", {"rent"}, "the result"},
        {"CAFE", {"money"}, "the detail, whatever case and marks"},
        {"Rent", {"rent"}, "the name"},
        {" ", {"money", "rent", "old"}, "nothing asked"},
        {"9", {}, ""},
    };

    for (const auto& [query, found, reason] : cases)
        EXPECT_EQ(ids(history.search(query, 10)), found) << query << ": " << reason;
    EXPECT_THAT(ids(history.search("", 2)), ElementsAre("money", "rent"));
    EXPECT_THAT(ids(history.search("8", 1)), ElementsAre("rent"));
    EXPECT_THAT(history.search("8", 0), IsEmpty());
}

TEST(CalcHistoryStore, givesTheCalculatorItsNames) {
    EXPECT_THAT(CalcHistoryStore().variables(), IsEmpty());
    auto older = sum("a", "rent = 800", 800);
    auto newer = sum("b", "rent = 900", 900);
    older.name = newer.name = "rent";
    const CalcHistoryStore history({sum("c", "2+2", 4), newer, older});
    const auto variables = history.variables();
    EXPECT_THAT(variables, UnorderedElementsAre(Pair("ans", 4), Pair("rent", 900)));
    EXPECT_EQ(Calc::evaluate("rent + ans", {.variables = variables})->value, 904);
}

TEST(CalcHistoryJson, givesBackWhatItWasGiven) {
    auto whole = sum("a", "\xe2\x82\xac 5", 0.1);
    whole.detail = "said \"so\"";
    whole.kind = Kind::date;
    whole.at = 1767225600.25;
    whole.pinned = true;
    whole.name = "x";
    const CalcHistoryStore history({whole, sum("b", "1+1", -1e300)});
    EXPECT_EQ(CalcHistoryJson::decoded(CalcHistoryJson::encoded(history)), history);
    const CalcHistoryStore bad({sum("c", "\xff+1")});
    EXPECT_EQ(CalcHistoryJson::decoded(CalcHistoryJson::encoded(bad))->entries().front().expression,
              "\xef\xbf\xbd+1");
}

TEST(CalcHistoryJson, readsNothingFromWhatIsNoHistory) {
    const std::string whole =
        R"({"entries":[{"id":"a","expression":"1+1","formatted":"2","value":2,)"
        R"("kind":"math","at":1,"pinned":false}]})";
    ASSERT_TRUE(CalcHistoryJson::decoded(whole));
    const auto without = [&](std::string_view part, std::string_view instead) {
        auto text = whole;
        const auto at = text.find(part);
        EXPECT_NE(at, std::string::npos) << part;
        return text.replace(at, part.size(), instead);
    };
    const std::string broken[] = {
        "",
        "[]",
        R"({"entries":{}})",
        R"({"entries":[1]})",
        whole.substr(0, 40),
        without(R"("id":"a",)", ""),
        without(R"("expression":"1+1",)", ""),
        without(R"("formatted":"2",)", ""),
        without(R"("value":2,)", ""),
        without(R"("value":2,)", R"("value":"2",)"),
        without(R"("kind":"math",)", ""),
        without(R"("math")", R"("maths")"),
        without(R"("at":1,)", ""),
        without(R"(,"pinned":false)", ""),
        without(R"("pinned":false)", R"("pinned":0)"),
        without(R"("id")", R"("name":1,"id")"),
    };
    for (const auto& text : broken)
        EXPECT_EQ(CalcHistoryJson::decoded(text), std::nullopt) << text;
}

} // namespace
} // namespace tessarine
