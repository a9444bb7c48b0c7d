#include "launcherapp/query/rows/EmojiRows.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(EmojiRows, typeIntoTheWindowOnlyWhereThatCanBeDone) {
    RowVerbs verbs;
    EXPECT_FALSE(emojiRows(":grin", verbs).front().secondary);
    std::string typed;
    verbs.typeText = [&](const std::string& text) { typed = text; };
    const auto row = emojiRows(":grin", verbs).front();
    EXPECT_EQ(row.secondaryLabel, "type");
    row.secondary();
    EXPECT_EQ(typed, row.glyph);
}

} // namespace
} // namespace tessarine
