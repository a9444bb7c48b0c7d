#include "launcherapp/query/rows/EngagedRows.h"

#include <gmock/gmock.h>

#include <set>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

TEST(EngagedRows, aListWithoutRowsSaysWhy) {
    const CommandSpec command{.id = "br", .name = "Branches", .kind = CommandKind::list};
    const ListResult none;
    const ListResult failed{.problem = "Its script ended with status 1"};

    const struct {
        const ListResult* result;
        const char* text;
    } cases[] = {
        {nullptr, "Its script is running"},
        {&none, "Its script found nothing"},
        {&failed, "Its script ended with status 1"},
    };

    for (const auto& [result, text] : cases) {
        const auto rows = listCommandRows(command, result, {});
        ASSERT_THAT(rows, SizeIs(1));
        EXPECT_EQ(rows[0].kind, RowKind::hint);
        EXPECT_EQ(rows[0].subtitle, text);
    }
}

TEST(EngagedRows, aPrintedRowIsShownAndGivenToWhoeverChooses) {
    CommandSpec command{.id = "br", .name = "Branches", .kind = CommandKind::list};
    std::vector<std::string> chosen;
    const auto choose = [&](const ListRow& row) { chosen.push_back(row.title); };
    const ListResult result{
        .rows = {{.title = "main", .subtitle = "today", .arg = "/a", .icon = "star"},
                 {.title = "old", .icon = ""},
                 {.title = "other", .arg = "/a"},
                 {.title = "trap", .arg = "/a#2"}}};
    const auto rows = listCommandRows(command, &result, choose);
    ASSERT_THAT(rows, SizeIs(4));
    EXPECT_EQ(rows[0].symbol, "star");
    EXPECT_EQ(rows[0].subtitle, "today");
    EXPECT_EQ(rows[0].primaryLabel, "open");
    EXPECT_EQ(rows[1].symbol, command.defaultSymbol()) << "an empty name is no symbol";
    std::set<std::string> ids;
    for (const auto& row : rows)
        ids.insert(row.id);
    EXPECT_THAT(ids, SizeIs(4)) << "a row that can't be told from another can't be kept selected";
    rows[1].primary();
    EXPECT_THAT(chosen, ElementsAre("old"));
    command.onSelect = "echo";
    EXPECT_EQ(listCommandRows(command, &result, choose)[0].primaryLabel, "run");
}

} // namespace
} // namespace tessarine
