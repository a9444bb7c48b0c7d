#include "LauncherCore/text/Graphemes.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

TEST(Graphemes, countsWhatAPersonSees) {
    const struct {
        std::string text;
        std::size_t count;
        const char* reason;
    } cases[] = {
        {"", 0, "nothing"},
        {"abc", 3, "letters"},
        {"a\r\nb", 3, "a line end of two characters is one"},
        {"\n\r", 2, "the other way round they are two"},
        {"é\u0301x", 2, "marks belong to their letter"},
        {"日本語", 3, "ideographs"},
        {"한글\u1112\u1161\u11ab", 3, "syllables whole and in parts"},
        {"\u1100\uac00", 1, "a leading consonant joins a syllable"},
        {"🇩🇪🇫🇷", 2, "flags"},
        {"👨‍👩‍👧‍👦!", 2, "a family joined into one"},
        {"👍🏽👍", 2, "a skin tone"},
        {"1\ufe0f\u20e3", 1, "a keycap"},
        {"\xff\xfe", 2, "bytes that are no UTF-8"},
    };

    for (const auto& [text, count, reason] : cases) {
        SCOPED_TRACE(reason);
        EXPECT_EQ(Graphemes::count(text), count);
        const auto boundaries = Graphemes::boundaries(text);
        EXPECT_EQ(boundaries.size(), count + 1);
        EXPECT_EQ(boundaries.back(), text.size());
        EXPECT_TRUE(Graphemes::hasAtLeast(text, count));
        EXPECT_FALSE(Graphemes::hasAtLeast(text, count + 1));
    }
    EXPECT_THAT(Graphemes::boundaries("aé日"), ElementsAre(0, 1, 3, 6));
}

TEST(Graphemes, prefixCutsBetweenCharacters) {
    EXPECT_EQ(Graphemes::prefix("a🇩🇪b", 2), "a🇩🇪");
    EXPECT_EQ(Graphemes::prefix("e\u0301e", 1), "e\u0301");
    EXPECT_EQ(Graphemes::prefix("aa🇩🇪", 1), "a"); // what joins lies behind what is asked for
    EXPECT_EQ(Graphemes::prefix("ab", 5), "ab");
    EXPECT_EQ(Graphemes::prefix("ab", 0), "");
}

} // namespace
} // namespace tessarine
