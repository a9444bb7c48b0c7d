#include "LauncherCore/answers/Emoji.h"

#include "LauncherCore/data/Tables.h"
#include "LauncherCore/text/Graphemes.h"

#include <gtest/gtest.h>

#include <set>

namespace tessarine {
namespace {

TEST(Emoji, findsByNameAndKeyword) {
    const struct {
        std::string text;
        std::string first;
        const char* reason;
    } cases[] = {
        {"red heart", "❤️", "a whole name"},
        {"thumbs_up:", "👍", "a short code with its closing colon"},
        {"THUMBS UP", "👍", "case doesn't count"},
        {"tada", "🎉", "a keyword"},
        {"grinning f", "😀", "the beginning of a name, in Unicode's order"},
        {"pinata", "🪅", "accents don't count"},
        {")", "🙂", "an emoticon"},
        {"'(", "😢", "an emoticon of two signs"},
        {"keycap: #", "#️⃣", "a keycap, whose line begins like a comment"},
        {"heart", "❤️", "the plain kind before a cat with hearts for eyes"},
        {"smile", "😃", "a wry cat is no plain kind of smile"},
        {"heart red", "❤️", "words in any order"},
        {"flag greece", "🇬🇷", "a name with a sign between its words"},
        {"flag-greec", "🇬🇷", "a hyphen between words, the last one unfinished"},
        {"love cat", "😻", "a keyword and a word of the name"},
        {"thumbsup", "👍", "a name without its blank"},
        {"", "😀", "nothing gives the first"},
    };

    for (const auto& [text, first, reason] : cases) {
        SCOPED_TRACE(reason);
        const auto found = Emoji::search(text, 12);
        ASSERT_FALSE(found.empty());
        EXPECT_EQ(found.front().emoji, first);
        EXPECT_LE(found.size(), 12U);
    }
    EXPECT_TRUE(Emoji::search("qqqq", 12).empty());
    EXPECT_TRUE(Emoji::search("heart qqqq", 12).empty()) << "every word counts";
}

TEST(Emoji, theTableIsWhole) {
    std::set<std::string_view> emoji;
    std::set<std::string_view> names;
    for (const auto& row : Tables::rows("emoji")) {
        SCOPED_TRACE(row[0]);
        ASSERT_EQ(row.size(), 3U);
        EXPECT_EQ(Graphemes::count(row[0]), 1U) << "one character to a reader";
        EXPECT_TRUE(emoji.insert(row[0]).second);
        EXPECT_TRUE(names.insert(row[1]).second);
    }
    EXPECT_GT(emoji.size(), 1800U);
    for (const auto& row : Tables::rows("emoticons"))
        EXPECT_TRUE(emoji.contains(row[1])) << row[0];
}

} // namespace
} // namespace tessarine
