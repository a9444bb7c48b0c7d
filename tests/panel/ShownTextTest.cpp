#include "launcherapp/panel/appearance/ShownText.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

TEST(ShownText, foreignTextIsOneHarmlessLine) {
    const struct {
        std::string text;
        std::string shown;
        const char* reason;
    } cases[] = {
        {"Field notes", "Field notes", "nothing to do"},
        {"one\ntwo\tthree\r\n", "one two three  ", "breaks and tabs"},
        {"bell\x07"
         "del\x7f",
         "bell\uFFFDdel\uFFFD",
         "control characters are seen"},
        {"a\u0085b\u2028c", "a b c", "breaks beyond ASCII"},
        {"photo\u202Egnp.exe", "photognp.exe", "the end of a name stays its end"},
        {"\u2067abc\u2069\u200F", "abc", "isolates and marks"},
        {"zero\u200Bwidth\uFEFF", "zerowidth", "what is invisible"},
        {"👩\u200D💻 می\u200Cخواهم", "👩\u200D💻 می\u200Cخواهم", "joiners are spelling"},
        {"caf\xC3", "caf\uFFFD", "no UTF-8"},
        {"", "", "nothing"},
    };

    for (const auto& [text, shown, reason] : cases)
        EXPECT_EQ(ShownText::harmless(text), shown) << reason;
    const auto longest = ShownText::harmless(std::string(1000000, 'x'));
    EXPECT_EQ(longest, std::string(ShownText::mostCharacters, 'x') + "…");
    // A single character may be of any length.
    std::string tower = "a";
    for (int i = 0; i < 100000; ++i)
        tower += "\u0301";
    EXPECT_LT(ShownText::harmless(tower).size(), 10000u);
}

TEST(ShownText, theCharactersThatTheQueryNamesAreMarked) {
    const struct {
        std::string text;
        std::string query;
        std::string marked; ///< each run in brackets
        const char* reason;
    } cases[] = {
        {"Fieldnotes", "fi", "[Fi]eldnotes", "a beginning"},
        {"Google Chrome", "gc", "[G]oogle [C]hrome", "initials"},
        {"World Clock", "clock", "World [Clock]", "a later word"},
        {"Café Crème", "creme", "Café [Crème]", "marks count with their letters"},
        {"STRASSE", "straße", "[STRASSE]", "one typed character for two"},
        {"Straßenbahn", "strassenb", "[Straßenb]ahn", "two normal characters for one"},
        {"\u200BNotes", "no", "[No]tes", "what is left out moves nothing"},
        {"👩\u200D💻 Work", "work", "👩\u200D💻 [Work]", "beside a joined character"},
        {"Almanac", "zz", "Almanac", "no match"},
        {"Almanac", "", "Almanac", "no query"},
    };

    for (const auto& [text, query, marked, reason] : cases) {
        const auto line = ShownText::matching(text, query);
        std::string seen;
        std::size_t at = 0;
        for (const auto& [begin, end] : line.matched) {
            seen +=
                line.text.substr(at, begin - at) + "[" + line.text.substr(begin, end - begin) + "]";
            at = end;
        }
        EXPECT_EQ(seen + line.text.substr(at), marked) << reason;
    }
}

TEST(ShownText, isCutBetweenCharacters) {
    using enum ShownText::Cut;

    const struct {
        std::string text;
        std::size_t characters;
        ShownText::Cut cut;
        std::string shorter;
        const char* reason;
    } cases[] = {
        {"abcdef", 6, end, "abcdef", "it has room"},
        {"abcdef", 3, end, "abc…", ""},
        {"ab cdef", 3, end, "ab…", "not after a blank"},
        {"/home/u/long/file", 8, middle, "/hom…file", "both ends of a path"},
        {"e\u0301e\u0301e\u0301", 2, end, "e\u0301e\u0301…", "marks stay with their letters"},
        {"👩\u200D👩\u200D👦👩\u200D👩\u200D👦", 1, end, "👩\u200D👩\u200D👦…", "a family stays together"},
        {"🇩🇰🇸🇪", 1, end, "🇩🇰…", "and a flag"},
        {"abc", 0, end, "…", "no room at all"},
    };

    for (const auto& [text, characters, cut, shorter, reason] : cases)
        EXPECT_EQ(ShownText::shortened(text, characters, cut), shorter) << reason;
}

} // namespace
} // namespace tessarine
