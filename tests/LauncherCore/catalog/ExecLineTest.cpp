#include "LauncherCore/catalog/ExecLine.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

using Words = std::vector<std::string>;

TEST(ExecLine, quotingIsRead) {
    const struct {
        std::string exec;
        std::optional<Words> words;
        const char* reason;
    } cases[] = {
        {"a b\tc", Words{"a", "b", "c"}, "blanks and tabs part words"},
        {"\"/opt/a b/c\" d", Words{"/opt/a b/c", "d"}, "a quoted path"},
        {R"(a "\"x\" \$HOME \`b\` \\")", Words{"a", R"("x" $HOME `b` \)"}, "escapes in quotes"},
        {R"(a "b\c")", Words{"a", R"(b\c)"}, "a backslash before anything else stays"},
        {"a \"\"", Words{"a", ""}, "an empty argument"},
        {"a --x=\"b c\"", Words{"a", "--x=b c"}, "quotes within a word"},
        {R"(a\ b c)", Words{"a b", "c"}, "the shell's escape, as some files have it"},
        {"a %F \"%%\"", Words{"a", "%F", "%%"}, "field codes stay"},
        {"", std::nullopt, "empty"},
        {"  ", std::nullopt, "blank"},
        {"\"\" a", std::nullopt, "no program"},
        {"a \"b", std::nullopt, "an open quote"},
        {"a \"b\\\"", std::nullopt, "a quote that is escaped away"},
    };

    for (const auto& [exec, words, reason] : cases)
        EXPECT_EQ(ExecLine::words(exec), words) << reason;
}

TEST(ExecLine, fieldCodesAreFilledIn) {
    const std::vector<std::string> two{"file:///a%20b", "file:///c"};
    const std::vector<std::string> mixed{"https://x/?a=%20", "file:///c"};

    const struct {
        Words words;
        std::vector<std::string> uris;
        std::vector<Words> commands;
        const char* reason;
    } cases[] = {
        {{"x", "%F"}, two, {{"x", "/a b", "/c"}}, "all files at once"},
        {{"x", "%U"}, mixed, {{"x", "https://x/?a=%20", "file:///c"}}, "all URLs as they are"},
        {{"x", "%F"}, mixed, {{"x", "/c"}}, "a URL is no file"},
        {{"x", "%f", "y"}, two, {{"x", "/a b", "y"}, {"x", "/c", "y"}}, "once for each file"},
        {{"x", "%u"}, mixed, {{"x", "https://x/?a=%20"}, {"x", "file:///c"}}, "or each URL"},
        {{"x", "%f"}, {"https://x"}, {{"x"}}, "nothing that it can take"},
        {{"x", "%u"}, {}, {{"x"}}, "nothing to open"},
        {{"x", "--open=%u"}, {"a:b"}, {{"x", "--open=a:b"}}, "inside a word"},
        {{"x", "%i", "%c", "%k"}, {}, {{"x", "--icon", "icon", "Näme", "/p.desktop"}}, "the entry"},
        {{"x", "100%%", "a%%f"}, two, {{"x", "100%", "a%f"}}, "a percent sign"},
        {{"x", "%d", "%n", "%v", "%m", "%z"}, two, {{"x"}}, "deprecated and unknown codes"},
        {{"x", "", "a%"}, {}, {{"x", "", "a"}}, "an empty argument stays, a lone sign goes"},
    };

    for (const auto& [words, uris, commands, reason] : cases)
        EXPECT_EQ(ExecLine::commands(
                      words, {.uris = uris, .icon = "icon", .name = "Näme", .path = "/p.desktop"}),
                  commands)
            << reason;
    EXPECT_THAT(ExecLine::commands(Words{"x", "%i"}, {}), ElementsAre(Words{"x"}));
}

} // namespace
} // namespace tessarine
