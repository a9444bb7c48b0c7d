#include "LauncherCore/commands/CommandTemplates.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(CommandTemplates, theArgumentStandsInItsPlacesAsAValue) {
    const struct {
        const char *text, *argument, *filled;
    } cases[] = {
        {"x:?q={query}", "a b&c=d/e", "x:?q=a%20b%26c%3Dd%2Fe"},
        {"{query}{query}", "é", "%C3%A9%C3%A9"},
        {"x:?q={query}&r={query}", "{query}", "x:?q=%7Bquery%7D&r=%7Bquery%7D"}, // once is enough
        {"x:?q={query}", "", "x:?q="},
        {"x:{Query}{query", "a", "x:{Query}{query"}, // no place
    };

    for (const auto& [text, argument, filled] : cases)
        EXPECT_EQ(CommandTemplates::filled(text, argument), filled);
}

} // namespace
} // namespace tessarine
