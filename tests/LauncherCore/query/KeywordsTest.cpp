#include "LauncherCore/query/Keywords.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(Keywords, theTableIsWhole) {
    std::set<std::string_view> words;
    for (const auto& info : Keywords::all()) {
        EXPECT_EQ(&Keywords::info(info.keyword), &info);
        EXPECT_EQ(Keywords::fromRawValue(info.rawValue), info.keyword);
        EXPECT_TRUE(words.insert(info.defaultWord).second) << info.defaultWord;
    }
    EXPECT_EQ(words.size(), 22u);
    EXPECT_EQ(Keywords::fromRawValue("teleport"), std::nullopt);
}

TEST(Keywords, theArgumentIsWhatFollowsTheBlank) {
    Keywords keywords;
    ASSERT_EQ(keywords.setWord(BuiltinKeyword::people, "İl"), std::nullopt);

    const struct {
        BuiltinKeyword keyword;
        std::string query;
        std::optional<std::string> argument;
        const char* reason;
    } cases[] = {
        {BuiltinKeyword::tabs, "t", "", "the bare word"},
        {BuiltinKeyword::tabs, "T  Safari \t", "Safari", "trimmed, in any case"},
        {BuiltinKeyword::tabs, "t ", "", "a blank alone"},
        {BuiltinKeyword::tabs, "tab", std::nullopt, "a longer word"},
        {BuiltinKeyword::tabs, "t\tx", std::nullopt, "only a blank begins an argument"},
        {BuiltinKeyword::tabs, "", std::nullopt, "nothing"},
        {BuiltinKeyword::people, "İL maria", "maria", "a letter that grows in lower case"},
        {BuiltinKeyword::people, "who maria", std::nullopt, "the old word"},
    };

    for (const auto& [keyword, query, argument, reason] : cases)
        EXPECT_EQ(keywords.argument(keyword, query), argument) << reason;
}

TEST(Keywords, aWordCanBeChangedUnlessItClashes) {
    Keywords keywords;
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::tabs, " tab "), std::nullopt);
    EXPECT_EQ(keywords.argument(BuiltinKeyword::tabs, "tab x"), "x");
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::tabs, "my tab"),
              "A keyword cannot contain a space: the space is what starts the argument.");
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::tabs, "WHO"),
              "Contacts is already WHO. Two built-ins on one word means the other one silently "
              "never fires.");
    EXPECT_EQ(keywords.word(BuiltinKeyword::tabs), "tab");
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::tabs, ""), std::nullopt);
    EXPECT_EQ(keywords.word(BuiltinKeyword::tabs), "t");
    EXPECT_TRUE(keywords.words().empty()); // a default is not kept as an override
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::tabs, "t"), std::nullopt);
    EXPECT_TRUE(keywords.words().empty());
}

TEST(Keywords, aDisabledKeywordFreesItsWord) {
    Keywords keywords;
    keywords.disable(BuiltinKeyword::people);
    EXPECT_EQ(keywords.argument(BuiltinKeyword::people, "who"), std::nullopt);
    EXPECT_EQ(keywords.setWord(BuiltinKeyword::slack, "who"), std::nullopt);
    EXPECT_EQ(keywords.argument(BuiltinKeyword::slack, "who x"), "x");
    keywords.enable(BuiltinKeyword::people);
    // Both have the word now: the earlier answers, and neither can be set to it anew.
    EXPECT_EQ(keywords.argument(BuiltinKeyword::people, "who x"), "x");
    EXPECT_EQ(keywords.argument(BuiltinKeyword::slack, "who x"), std::nullopt);
    EXPECT_THAT(keywords.setWord(BuiltinKeyword::slack, "who").value_or(""),
                HasSubstr("Contacts is already who"));
}

TEST(Keywords, aKeywordIsFoundByAllItsWords) {
    Keywords keywords({{"tabs", "tab"}, {"future", "x"}}, {"other"});
    static constexpr std::string_view alternatives[] = {"browser", "tab"};
    EXPECT_THAT(keywords.matchNames(BuiltinKeyword::tabs, alternatives),
                ElementsAre("tab", "t", "browser"));
    EXPECT_EQ(keywords.words().at("future"), "x"); // a newer program's, kept
}

} // namespace
} // namespace tessarine
