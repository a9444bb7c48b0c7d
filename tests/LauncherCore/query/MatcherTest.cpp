#include "LauncherCore/query/Matcher.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"

#include <gmock/gmock.h>

#include <random>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::optional<std::int64_t> scoreOf(std::string_view query, std::string_view candidate) {
    const auto match = Matcher::score(query, candidate);
    return match ? std::optional(match->score) : std::nullopt;
}

TEST(Matcher, scoresStandInTheirBands) {
    const struct {
        std::string query;
        std::string candidate;
        std::optional<std::int64_t> score;
        const char* reason;
    } cases[] = {
        {"clock", "Clock", 9000, "exact"},
        {"claude", "Claude", 9000, "exact, whatever the case"},
        {"Mab", "Mabel Thornbridge", 8486, "prefix: 14 characters more"},
        {"goog", "Google Chrome", 8491, "prefix"},
        {"cl", "Claude", 8496, "a shorter name wins"},
        {"cl", "CleanShot X", 8491, "over a longer one"},
        {"cl", "CrispLabel", 7500, "initials of a camel-case name"},
        {"gc", "Google Chrome", 7500, "initials of two words"},
        {"wp", "World Clock Pro", 7480, "one word between costs 20"},
        {"cp", "World Clock Pro", 7420, "and a late first word 10 a character"},
        {"Thorn", "Mabel Thornbridge", 6458, "a later word begins with it"},
        {"chr", "Google Chrome", 6455, "a later word"},
        {"menu", "TrayMenu", 6476, "a later word of camel case"},
        {"goo chr", "Google Chrome", 7500, "two word beginnings"},
        {"go ch", "Google Chrome", 7500, "however short"},
        {"wor pro", "World Clock Pro", 7480, "a word between costs 20"},
        {"clo pro", "World Clock Pro", 7450, "a late first word 5 a character"},
        {"入力", "文字 入力", 6482, "a later word without case"},
        {"cafe", "Café", 9000, "folded"},
        {"MÜNCHENER", "Münchener", 9000, "folded on both sides"},
        {"strasse", "Straße", 9000, "one letter meets two"},
        {"ﾃｽﾄ", "テスト", 9000, "half-width meets full"},
        {"a b", "a\u3000b", 9000, "the ideographic space is a space"},
        {"ab", "a\u200d\u00adb\n", 9000, "what can't be seen doesn't count"},
        {"mp", "Lame mp3", 6469, "a digit after a letter begins no word"},
        {"cl", "BetterTouchTool", std::nullopt, "no subsequence"},
        {"ridg", "Mabel Thornbridge", std::nullopt, "no inside of a word"},
        {"gle", "Google Chrome", std::nullopt, "no inside of a word"},
        {"goch", "Google Chrome", std::nullopt, "initials take one character a word"},
        {"chr goo", "Google Chrome", std::nullopt, "words keep their order"},
        {"goo goo", "Google Chrome", std::nullopt, "a word is taken once"},
        {"3", "mp3", std::nullopt, "a letter and digit are one word"},
        {"z", "3z", std::nullopt, "and so are a digit and a letter"},
        {"cafe", "cave", std::nullopt, "an unrelated name"},
        {"🇩", "🇩🇪", std::nullopt, "half a flag is no beginning of it"},
        {"   ", "abc", std::nullopt, "blanks are not empty"},
        {"   ", "", std::nullopt, "nor do they find nothing"},
        {"a", "\u200d\u0001", std::nullopt, "a name of nothing that can be seen"},
        {"a", "\xff", std::nullopt, "bytes that are no UTF-8"},
    };

    for (const auto& [query, candidate, score, reason] : cases)
        EXPECT_EQ(scoreOf(query, candidate), score)
            << query << " / " << candidate << ": " << reason;
}

TEST(Matcher, anEmptyQueryNamesEverything) {
    for (const std::string_view candidate : {"", "abc", "é"}) {
        const auto match = Matcher::score("\u200d", candidate);
        ASSERT_TRUE(match);
        EXPECT_EQ(*match, MatchResult{});
    }
}

TEST(Matcher, positionsAreWhatWasTyped) {
    EXPECT_THAT(Matcher::score("clock", "Clock")->positions, ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(Matcher::score("chr", "Google Chrome")->positions, ElementsAre(7, 8, 9));
    EXPECT_THAT(Matcher::score("gc", "Google Chrome")->positions, ElementsAre(0, 7));
    EXPECT_THAT(Matcher::score("goo chr", "Google Chrome")->positions,
                ElementsAre(0, 1, 2, 7, 8, 9));
    EXPECT_THAT(Matcher::score("力", "🎨 力")->positions, ElementsAre(2)) << "in characters";
    // "ab" reaches over the capital that "b" then takes.
    EXPECT_THAT(Matcher::score("ab b", "aB")->positions, ElementsAre(0, 1));
}

TEST(Matcher, tailsNeverReachTheNextBand) {
    const std::string longTail(2000, 'x');
    EXPECT_EQ(scoreOf("ab", "ab" + longTail), 8000);
    EXPECT_EQ(scoreOf("ab", longTail + " ab"), 6000);
    std::string manyWords = "a b";
    for (int i = 0; i < 100; ++i)
        manyWords += " z";
    EXPECT_EQ(scoreOf("ab", manyWords), 7000);
}

TEST(Matcher, bandsOrderNames) {
    const struct {
        std::string query;
        std::string better;
        std::string worse;
    } cases[] = {
        {"clock", "Clock", "World Clock Pro"}, // an exact name before a later word
        {"gc", "Google Chrome", "Big GC"},     // initials before a later word
        {"c", "Calendar", "Google Chrome"},    // a beginning before a later word
        {"wo cl", "World Clock", "A wo cl"},   // an early word before a late one
    };

    for (const auto& [query, better, worse] : cases)
        EXPECT_GT(scoreOf(query, better), scoreOf(query, worse)) << query;
}

TEST(Matcher, wordStartsFollowLettersNumbersAndCase) {
    const auto starts = [](std::string_view text) {
        const auto bounds = Graphemes::boundaries(text);
        std::vector<std::string_view> characters;
        for (std::size_t i = 0; i + 1 < bounds.size(); ++i)
            characters.push_back(text.substr(bounds[i], bounds[i + 1] - bounds[i]));
        return Matcher::wordStarts(characters);
    };
    EXPECT_THAT(starts("CrispLabel"), ElementsAre(0, 5));
    EXPECT_THAT(starts("(mp3) HTMLView"), ElementsAre(1, 6));
    EXPECT_THAT(starts("éÉ e\u0301E"), ElementsAre(0, 1, 3, 4));
    EXPECT_THAT(starts("日本 語"), ElementsAre(0, 3));
    EXPECT_THAT(starts("--"), IsEmpty());
    EXPECT_THAT(starts("x½²"), ElementsAre(0)); // other numbers are numbers too
}

/// The rule written down once more, plainly and slowly, to hold the fast one against.
namespace reference {

std::vector<std::string> characters(const std::string& text) {
    const auto bounds = Graphemes::boundaries(text);
    std::vector<std::string> result;
    for (std::size_t i = 0; i + 1 < bounds.size(); ++i)
        result.push_back(text.substr(bounds[i], bounds[i + 1] - bounds[i]));
    return result;
}

using Characters = std::vector<std::string>;

bool hasAt(const Characters& text, const Characters& piece, std::size_t at) {
    return at + piece.size() <= text.size() &&
           std::equal(piece.begin(), piece.end(), text.begin() + static_cast<std::ptrdiff_t>(at));
}

std::int64_t score(const std::string& query, const std::string& candidate) {
    const auto q = characters(Matcher::normalize(query));
    if (q.empty())
        return 0;
    const auto c = characters(Matcher::normalize(candidate));
    if (c.empty())
        return -1;
    const auto cased =
        characters(Folding::foldKeepingCase(Folding::withoutControlAndFormat(candidate)));
    const std::vector<std::string_view> views(cased.begin(), cased.end());
    const auto starts = Matcher::wordStarts(views);
    const auto tail = [](std::int64_t penalty) { return std::max<std::int64_t>(0, 500 - penalty); };
    const auto length = [](const auto& list) { return static_cast<std::int64_t>(list.size()); };

    if (q == c)
        return 9000;
    if (hasAt(c, q, 0))
        return 8000 + tail(length(c) - length(q));
    if (q.size() >= 2 && starts.size() >= q.size()) {
        std::vector<std::int64_t> taken;
        std::size_t next = 0;
        for (const auto& wanted : q) {
            while (next < starts.size() && (starts[next] >= length(c) ||
                                            c[static_cast<std::size_t>(starts[next])] != wanted))
                ++next;
            if (next == starts.size())
                break;
            taken.push_back(starts[next++]);
        }
        if (taken.size() == q.size())
            return 7000 + tail(10 * taken[0] + 20 * (length(starts) - length(q)));
    }
    for (const auto start : starts) {
        if (start != 0 && hasAt(c, q, static_cast<std::size_t>(start)))
            return 6000 + tail(5 * start + length(c) - length(q));
    }
    std::vector<Characters> pieces(1);
    for (const auto& character : q) {
        if (character != " ")
            pieces.back().push_back(character);
        else if (!pieces.back().empty())
            pieces.emplace_back();
    }
    if (pieces.back().empty())
        pieces.pop_back();
    if (pieces.size() < 2)
        return -1;
    std::size_t next = 0;
    std::int64_t first = -1;
    for (const auto& piece : pieces) {
        while (next < starts.size() && !hasAt(c, piece, static_cast<std::size_t>(starts[next])))
            ++next;
        if (next == starts.size())
            return -1;
        if (first < 0)
            first = starts[next];
        ++next;
    }
    return 7000 + tail(5 * first + 20 * (length(starts) - length(pieces)));
}

} // namespace reference

TEST(Matcher, agreesWithThePlainRuleOnRandomNames) {
    const std::vector<std::string> ascii{"a", "b", "A", "B", "1", " ", "-", "\t", "ab", "Ba "};
    const std::vector<std::string> unicode{
        "a", "B", "é", "É", "ß",        "İ", "日",     "本", " ",  "\u3000", "\u0301",
        "1", "½", "🇩", "🇪", "👍🏽", "ς", "\u200d", "ｶ",  "가", "\u1100", "\xff"};
    std::mt19937 random(20260101);
    int matched = 0;
    for (int round = 0; round < 60000; ++round) {
        const auto& alphabet = round % 2 ? ascii : unicode;
        const auto text = [&](unsigned longest) {
            std::string result;
            for (auto n = random() % (longest + 1); n > 0; --n)
                result += alphabet[random() % alphabet.size()];
            return result;
        };
        const auto query = text(4);
        const auto candidate = text(9);
        const auto expected = reference::score(query, candidate);
        ASSERT_EQ(Matcher::Query(query).score(candidate), Matcher::score(query, candidate));
        ASSERT_EQ(scoreOf(query, candidate).value_or(-1), expected)
            << "query '" << query << "' candidate '" << candidate << "'";
        matched += expected > 0;
    }
    EXPECT_GT(matched, 3000); // else the comparison compared nothing
}

TEST(Matcher, normalizesEveryByteAtEveryPlaceAsFoldingDoes) {
    // Plain ASCII goes several bytes at a time, the last of them over some that are done.
    for (std::size_t length = 1; length <= 25; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(length, 'Q');
                text[place] = static_cast<char>(byte);
                ASSERT_EQ(Matcher::normalize(text),
                          Folding::lowercase(Folding::fold(Folding::withoutControlAndFormat(text))))
                    << "byte " << byte << " at " << place << " of " << length;
            }
        }
    }
}

} // namespace
} // namespace tessarine
