#include "launcherapp/query/rows/EmojiRows.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(EmojiRows, typeIntoTheWindowOnlyWhereThatCanBeDone) {
    RowVerbs verbs;
    EXPECT_FALSE(emojiRows(":grin", verbs).front().secondary);
    std::string typed;
    bool isAble = false;
    verbs.typeText = [&](const std::string& text) { typed = text; };
    verbs.canType = [&] { return isAble; };
    EXPECT_FALSE(emojiRows(":grin", verbs).front().secondary);
    isAble = true; // as when the compositor was late
    const auto row = emojiRows(":grin", verbs).front();
    EXPECT_EQ(row.secondaryLabel, "type");
    row.secondary();
    EXPECT_EQ(typed, row.glyph);
}

} // namespace
} // namespace tessarine
