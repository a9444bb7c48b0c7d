#include "LauncherCore/clipboard/ClipGroups.h"

#include "LauncherCore/clipboard/ClipFilterKey.h"
#include "tests/LauncherCore/clipboard/Clippings.h"

#include <gmock/gmock.h>

#include <thread>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using FileState = ClipMatcher::FileState;

ClipGroups taught(const std::vector<std::string>& names) {
    ClipGroups groups;
    for (const auto& name : names)
        groups.groups.push_back({.name = name, .symbol = "tag", .match = {.contains = name}});
    return groups;
}

std::vector<std::string> namesOf(const ClipGroups& groups) {
    std::vector<std::string> names;
    for (const auto& group : groups.groups)
        names.push_back(group.name);
    return names;
}

TEST(ClipMatcher, asksEveryConditionOfAText) {
    const std::string text = "Invoice Café 12\nsecond Line";

    const struct {
        ClipMatcher rule;
        bool matches;
        const char* reason;
    } cases[] = {
        {{}, false, "no condition"},
        {{.contains = "cafe"}, true, "folded"},
        {{.contains = "tea"}, false, "not there"},
        {{.contains = "line", .minLength = 27}, true, "both hold"},
        {{.contains = "line", .minLength = 28}, false, "one fails"},
        {{.firstLineEndsWith = "12"}, true, "the end of the line"},
        {{.firstLineEndsWith = "Line"}, false, "the end of another line"},
        {{.firstLineEndsWith = "café 12"}, false, "of another case"},
        {{.firstLineContains = "INVOICE"}, true, "folded"},
        {{.firstLineContains = "second"}, false, "on another line"},
        {{.startsWith = "invoice caf"}, true, "folded"},
        {{.startsWith = "cafe"}, false, "not at the start"},
        {{.maxLength = 27}, true, "as long as may be"},
        {{.maxLength = 26}, false, "too long"},
        {{.minLength = -1}, true, "no length at all"},
        {{.regex = "^SECOND"}, true, "case ignored, anchors at lines"},
        {{.regex = R"(12$)"}, true, "anchors at the ends of lines"},
        {{.regex = R"(^\d)"}, false, "no line begins so"},
        {{.regex = "(unclosed"}, false, "doesn't compile"},
        {{.filePattern = "(.+)", .fileState = FileState::named}, false, "no condition on texts"},
        {{.kind = ClipKind::text}, false, "no condition on texts"},
    };

    for (const auto& [rule, matches, reason] : cases)
        EXPECT_EQ(rule.matches(ClipText(text)), matches) << reason;
    EXPECT_TRUE(ClipMatcher({.fileNeedle = "x"}).isEmpty());
    EXPECT_FALSE(ClipMatcher({.fileState = FileState::missing}).isEmpty());
}

TEST(ClipMatcher, asksOfAnEntryWhatItsTextCannotTell) {
    const auto fresh = clipping("a", 100, "text");
    auto unmarked = fresh;
    unmarked.pastedInto.emplace(); // empty, as after a merge
    auto marked = fresh;
    marked.pastedInto = {{"Mail"}};

    const struct {
        ClipMatcher rule;
        ClipboardEntry entry;
        double trackingSince;
        bool matches;
        const char* reason;
    } cases[] = {
        {{.kind = ClipKind::text}, fresh, 0, true, "the kind alone is a rule"},
        {{.kind = ClipKind::file}, fresh, 0, false, "of another kind"},
        {{.contains = "z", .kind = ClipKind::text}, fresh, 0, false, "of the kind, but the text"},
        {{.pasted = true}, marked, 500, true, "pasted"},
        {{.pasted = true}, unmarked, 0, false, "no mark in the list"},
        {{.pasted = false}, marked, 0, false, "pasted"},
        {{.pasted = false}, unmarked, 0, true, "since when isn't known"},
        {{.pasted = false}, fresh, 100, true, "as old as the marks"},
        {{.pasted = false}, fresh, 101, false, "older than the marks"},
        {{.filePattern = "(.+)", .fileState = FileState::named}, fresh, 0, false, "files alone"},
        {{.filePattern = "(.+)", .fileState = FileState::named, .kind = ClipKind::text},
         fresh,
         0,
         true,
         "names something"},
        {{.fileState = FileState::named, .kind = ClipKind::text}, fresh, 0, false, "no pattern"},
    };

    for (const auto& [rule, entry, trackingSince, matches, reason] : cases)
        EXPECT_EQ(rule.matches(entry, {.pasteTrackingSince = trackingSince}), matches) << reason;
}

TEST(ClipMatcher, takesTheFirstGroupOfThePatternForAPath) {
    const struct {
        const char* pattern;
        std::string_view text;
        std::optional<std::string> path;
        const char* reason;
    } cases[] = {
        {R"re(open "([^"]+)")re", "x\nopen \" /a b \"", "/a b", "without blanks around it"},
        {R"(^open (\S+)$)", "x\nopen /a\ny", "/a", "anchors at lines"},
        {R"(OPEN (\S+))", "open /a", std::nullopt, "of another case"},
        {R"(open \S+)", "open /a", std::nullopt, "no group"},
        {R"(open( /b)?)", "open /a", std::nullopt, "the group took no part"},
        {R"(open(\s*))", "open  ", std::nullopt, "blanks alone"},
        {R"((open)", "open", std::nullopt, "doesn't compile"},
        {R"re(open "([^"]+)")re",
         std::string_view("open \"/a\0b\"", 11),
         std::nullopt,
         "a NUL in it"},
    };

    for (const auto& [pattern, text, path, reason] : cases)
        EXPECT_EQ(ClipMatcher({.filePattern = pattern}).namedPath(text), path) << reason;
}

TEST(ClipMatcher, followsItsFieldsWhenTheyChange) {
    ClipMatcher rule{.regex = "one", .filePattern = "(one)"};
    EXPECT_TRUE(rule.matches(ClipText("one")));
    auto copy = rule;
    EXPECT_EQ(copy, rule);
    copy.regex = "two";
    copy.filePattern = "(two)";
    EXPECT_FALSE(copy.matches(ClipText("one")));
    EXPECT_THAT(copy.namedPath("two"), Optional(std::string("two")));
    EXPECT_NE(copy, rule);
    EXPECT_TRUE(rule.matches(ClipText("one")));
    rule = copy;
    EXPECT_TRUE(rule.matches(ClipText("two")));
}

TEST(ClipMatcher, givesUpOnAnExpressionThatTakesTooLong) {
    const std::string line(200000, 'a'); // each of these would take seconds or for ever

    const struct {
        const char* regex;
        const char* reason;
    } cases[] = {
        {"(a+)+b", "many ways"},
        {"(?=.*).b", "a look to the end of the line from each place"},
        {"(?:(?=[^b]*)a)*b", "or at each step"},
        {R"((.*)\1b)", "compared with itself"},
        {R"((?s)(?=.*\z).b)", "a jump to the end of the text"},
    };

    for (const auto& [regex, reason] : cases) {
        EXPECT_FALSE(ClipMatcher({.regex = regex}).matches(ClipText(line + "c"))) << reason;
        EXPECT_TRUE(ClipMatcher({.regex = regex}).matches(ClipText("aab"))) << reason;
    }
    // Nor does it begin to look for the end of a whole book.
    const ClipMatcher last{.regex = "last|end"};
    EXPECT_FALSE(last.matches(ClipText(std::string(1 << 20, 'x') + "last")));
    EXPECT_TRUE(last.matches(ClipText(std::string(50000, 'e') + "last")));
}

TEST(ClipMatcher, readsATextWhereverItsPiecesAreParted) {
    // ICU reads the text in pieces; pairs of surrogates, looks back and far jumps cross them.
    for (std::size_t before = 0; before < 140; ++before) {
        const ClipText text(std::string(before, 'x') + "é🎨🎨 end\nlast");
        const ClipMatcher forward{.regex = "é\\p{So}{2} (?=E)"};
        const ClipMatcher back{.regex = "(?<=🎨) end$"};
        const ClipMatcher whole{.regex = R"(\A[^\n]*🎨🎨 end\nlast\z)"};
        EXPECT_TRUE(forward.matches(text) && back.matches(text) && whole.matches(text)) << before;
        EXPECT_THAT(ClipMatcher({.filePattern = "^x*(é🎨+)"}).namedPath(text.string()),
                    Optional(std::string("é🎨🎨")));
    }
}

TEST(ClipMatcher, canBeAskedByManyThreads) {
    const ClipMatcher rule{.regex = "on[e]$", .filePattern = "(o.e)"};
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([rule, &shared = rule] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_TRUE(shared.matches(ClipText("one")));
                EXPECT_TRUE(ClipMatcher(shared).matches(ClipText("one")));
                EXPECT_THAT(rule.namedPath("one"), Optional(std::string("one")));
            }
        });
}

TEST(ClipGroups, offersRulesForHandoffs) {
    const auto& plain = ClipGroups::templates().back().match;

    const struct {
        const char* text;
        bool matches;
        const char* reason;
    } cases[] = {
        {"Do the thing [repo · branch · 3]\nRead and execute \"/h/a.md\"", true, "a real opener"},
        {"Do [repo · branch · 3] \nmore", true, "the tag ends a line"},
        {"Do [repo ? branch ? 3]\nRead and execute \"/h/a.md\"", true, "a mangled separator"},
        {"The tag [repo · branch · 3] stands in the middle", false, "in mid-sentence"},
        {"Do the thing [repo · branch]", false, "two fields"},
        {"Please Read and execute \"/h/a.md\"", false, "the launch line is no line"},
        {"An ordinary sentence.", false, "prose"},
    };

    for (const auto& [text, matches, reason] : cases)
        EXPECT_EQ(plain.matches(ClipText(text)), matches) << reason;
    const std::string opener = "Read and execute \"/h/a.md\"\n";
    EXPECT_TRUE(plain.matches(ClipText(opener + std::string(1500 - opener.size(), 'x'))));
    EXPECT_FALSE(plain.matches(ClipText(opener + std::string(1501 - opener.size(), 'x'))));
    EXPECT_THAT(ClipGroups::suggested().groups, IsEmpty());
}

TEST(ClipGroups, replacesAndRemovesByNameWhateverItsCase) {
    auto groups = taught({"One", "Zwölf", "Three"});
    groups.upsert({.name = "ZWÖLF", .symbol = "star", .match = {.kind = ClipKind::file}});
    groups.upsert({.name = "Zwolf", .symbol = "tag", .match = {}}); // an accent is another name
    EXPECT_THAT(namesOf(groups), ElementsAre("One", "ZWÖLF", "Three", "Zwolf"));
    EXPECT_EQ(groups.named("zwölf")->symbol, "star");
    EXPECT_EQ(groups.named("four"), nullptr);

    groups.groups.push_back({.name = "ONE"});
    EXPECT_TRUE(groups.remove(groups.groups.front().name));
    EXPECT_FALSE(groups.remove("one"));
    EXPECT_THAT(namesOf(groups), ElementsAre("ZWÖLF", "Three", "Zwolf"));
}

TEST(ClipGroups, givesAClippingToTheFirstThatMatches) {
    auto groups = taught({"a", "b"});
    EXPECT_EQ(groups.match(ClipText("ab"))->name, "a");
    std::swap(groups.groups[0], groups.groups[1]);
    EXPECT_EQ(groups.match(ClipText("ab"))->name, "b");
    EXPECT_EQ(groups.match(ClipText("c")), nullptr);
}

TEST(ClipGroups, upgradesOnlyTheLedgerThatNobodyEdited) {
    auto ledger = ClipGroups::templates().back();
    ledger.name = "Mine";
    ledger.symbol = "star";
    ledger.match.pasted = false;
    const auto [upgraded, changed] = ClipGroups::migratingLedger({{ledger}});
    EXPECT_TRUE(changed);
    EXPECT_EQ(upgraded.groups.front(),
              (ClipGroup{"Mine", "star", ClipGroups::templates().front().match}));
    EXPECT_FALSE(ClipGroups::migratingLedger(upgraded).isChanged);

    const auto edited = [&](auto edit) {
        auto group = ledger;
        edit(group.match);
        const auto [groups, any] = ClipGroups::migratingLedger({{group}});
        return any || groups.groups.front() != group;
    };
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.pasted = true; }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.pasted.reset(); }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.maxLength = 1499; }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { *rule.regex += "x"; }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.contains = ""; }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.fileNeedle = "EXECUT"; }));
    EXPECT_FALSE(edited([](ClipMatcher& rule) { rule.kind = ClipKind::text; }));
}

TEST(ClipFilterKey, resolvesATypedWord) {
    const auto groups = taught({"Receipts", "Rechnungen März", "LINKS of mine", "Files"});
    const auto builtin = ClipFilterKey::builtin;

    const struct {
        const char* word;
        std::optional<ClipFilterKey> key;
        const char* reason;
    } cases[] = {
        {"", std::nullopt, "nothing typed"},
        {"receipts", ClipFilterKey::group("Receipts"), "a group's name"},
        {"rechnungen marz", ClipFilterKey::group("Rechnungen März"), "folded"},
        {"files", ClipFilterKey::group("Files"), "a group before a category"},
        {"FILE", builtin(ClipCategory::file), "a category's stored name"},
        {"Línks", builtin(ClipCategory::link), "a label before a part of a group's name"},
        {"photo", std::nullopt, "a symbol is no name"},
        {"märz", ClipFilterKey::group("Rechnungen März"), "a part of one name"},
        {"rec", std::nullopt, "a part of two names"},
        {"word", std::nullopt, "of none"},
    };

    for (const auto& [word, key, reason] : cases)
        EXPECT_EQ(ClipFilterKey::resolve(word, groups), key) << reason;
}

TEST(ClipFilterKey, leavesAWordOfSeveralGroupsToAChoice) {
    const ClipGroups groups{ClipGroups::templates()};
    EXPECT_EQ(ClipFilterKey::resolve("handoffs", groups), std::nullopt);
    EXPECT_EQ(groups.partialMatches("handoffs").size(), 3u);
    EXPECT_THAT(groups.partialMatches(""), IsEmpty());
    EXPECT_EQ(ClipFilterKey::resolve("gone", groups),
              ClipFilterKey::group("Handoffs whose file is gone"));
}

TEST(ClipFilterKey, isShownByItsOwnWordsOnceItsGroupIsGone) {
    const auto key = ClipFilterKey::group("receipts");
    const ClipGroups groups{{{.name = "Receipts", .symbol = "star"}}};
    EXPECT_EQ(key.label(groups) + key.symbol(groups), "Receiptsstar");
    EXPECT_EQ(key.label({}) + key.symbol({}), "receiptstag");
    const auto links = ClipFilterKey::builtin(ClipCategory::link);
    EXPECT_EQ(links.label(groups) + links.symbol(groups), "Linkslink");
}

} // namespace
} // namespace tessarine
