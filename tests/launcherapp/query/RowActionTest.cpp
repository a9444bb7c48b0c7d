#include "launcherapp/query/RowAction.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

TEST(RowAction, isItselfAndNoOther) {
    const auto first = RowAction::make("Open", [] {});
    const auto second = RowAction::make("Open", [] {});
    EXPECT_EQ(first, RowAction(first));
    EXPECT_FALSE(first == second);
    EXPECT_THAT(first.id,
                testing::MatchesRegex(
                    "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
}

TEST(RowAction, aSeparatorDoesNothing) {
    const auto& separator = RowAction::separator();
    EXPECT_TRUE(separator.isSeparator());
    EXPECT_EQ(separator.title, "");
    separator.run();
    EXPECT_FALSE(separator.canBeChosen());
    EXPECT_FALSE(RowAction::note("pasted: Teletype").canBeChosen());
    EXPECT_FALSE(RowAction::make("", [] {}).isSeparator());
}

} // namespace
} // namespace tessarine
