#include "launcherapp/query/rows/EngagedRows.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::SizeIs;

TEST(EngagedRows, aListSaysThatItRunsThatItIsEmptyOrWhatItHas) {
    CommandSpec command{.id = "br", .name = "Branches", .kind = CommandKind::list};
    std::vector<std::string> chosen;
    const auto choose = [&](const ListRow& row) { chosen.push_back(row.title); };

    const auto waiting = listCommandRows(command, nullptr, choose);
    ASSERT_THAT(waiting, SizeIs(1));
    EXPECT_EQ(waiting[0].kind, RowKind::hint);
    const std::vector<ListRow> none;
    const auto empty = listCommandRows(command, &none, choose);
    ASSERT_THAT(empty, SizeIs(1));
    EXPECT_EQ(empty[0].kind, RowKind::hint);
    EXPECT_NE(empty[0].subtitle, waiting[0].subtitle);

    const std::vector<ListRow> printed{
        {.title = "main", .subtitle = "today", .arg = "/a", .icon = "star"}, {.title = "old"}};
    const auto rows = listCommandRows(command, &printed, choose);
    ASSERT_THAT(rows, SizeIs(2));
    EXPECT_EQ(rows[0].symbol, "star");
    EXPECT_EQ(rows[0].subtitle, "today");
    EXPECT_EQ(rows[0].primaryLabel, "open");
    EXPECT_EQ(rows[1].symbol, command.defaultSymbol());
    EXPECT_NE(rows[0].id, rows[1].id);
    rows[1].primary();
    EXPECT_THAT(chosen, testing::ElementsAre("old"));
    command.onSelect = "echo";
    EXPECT_EQ(listCommandRows(command, &printed, choose)[0].primaryLabel, "run");
}

} // namespace
} // namespace tessarine
