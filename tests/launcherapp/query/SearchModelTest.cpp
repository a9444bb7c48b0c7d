#include "launcherapp/query/SearchModel.h"

#include "LauncherCore/query/Matcher.h"
#include "tests/fakes/FakeDictionarySource.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

ResultRow row(const std::string& id, RowKind kind, const std::string& group, std::int64_t score) {
    return {.id = id, .kind = kind, .title = id, .group = group, .score = score};
}

class SearchModelTest : public testing::Test {
protected:
    std::vector<std::string> titles(std::string query) {
        model.setQuery(std::move(query));
        return titles();
    }

    std::vector<std::string> titles() const {
        std::vector<std::string> result;
        for (const auto& each : model.rows())
            result.push_back(each.title);
        return result;
    }

    std::vector<std::string> ids(std::string query) {
        model.setQuery(std::move(query));
        std::vector<std::string> result;
        for (const auto& each : model.rows())
            result.push_back(each.id);
        return result;
    }

    FakeServices services;
    std::unique_ptr<SearchModel> owned = services.makeModel();
    SearchModel& model = *owned;
    Prefs& prefs = services.prefs;
};

TEST_F(SearchModelTest, theOneMatchingRuleOrdersApplications) {
    services.install("x1", "BetterTouchPad");
    services.install("x2", "Clauden");
    services.install("x3", "CleanShot X");
    services.install("x4", "CrispLabel");
    services.install("x5", "Google Chrome");
    services.install("x6", "Gecko");
    services.install("x7", "World Clock Pro");
    services.install("x8", "Café Müller");
    services.install("x9", "TrayMenu");
    services.install("x10", "文字 入力");
    services.install("x11", "🎨 Paint");
    services.install("x12", "מחשבון");
    services.startCatalog();

    const struct {
        std::string query;
        std::vector<std::string> titles;
        const char* reason;
    } cases[] = {
        {"cl", {"Clauden", "CleanShot X", "CrispLabel", "World Clock Pro"}, "bands in order"},
        {"gc", {"Google Chrome"}, "initials, and no subsequence"},
        {"goo chr", {"Google Chrome"}, "two word beginnings"},
        {"menu", {"TrayMenu"}, "a camel-case word"},
        {"CAFE mu", {"Café Müller"}, "accents and case are folded"},
        {"入力", {"文字 入力"}, "a later word of another script"},
        {"paint", {"🎨 Paint"}, "an emoji is no letter"},
        {"מחש", {"מחשבון"}, "right to left"},
        {"ouch", {"Search the web for “ouch”"}, "the inside of a word"},
    };

    for (const auto& [query, expected, reason] : cases) {
        auto found = titles(query);
        // The modes' own rows are another matter.
        std::erase_if(found, [&](const std::string& title) {
            return std::ranges::any_of(Keywords::all(),
                                       [&](const auto& info) { return info.name == title; });
        });
        EXPECT_EQ(found, expected) << reason;
    }
}

TEST_F(SearchModelTest, aRowIsWhatTheCatalogSays) {
    const auto path = services.install("org.x.Web", "Web", "Keywords=browser;\nIcon=web\n");
    services.startCatalog();
    services.platform.windows.open = {{.id = 7, .className = "org.x.Web"}};
    model.setQuery(" browser ");
    const auto& found = model.rows().front();
    EXPECT_EQ(found.id, path);
    EXPECT_EQ(found.group, "apps");
    EXPECT_EQ(found.score, Matcher::exact); // the alias counts like the name
    EXPECT_TRUE(found.running);
    EXPECT_EQ(found.url, "file:///usr/share/applications/org.x.Web.desktop");
    prefs.showRunningDot.set(false);
    model.recompute();
    EXPECT_FALSE(model.rows().front().running);
    prefs.hiddenApps.set({path});
    EXPECT_THAT(ids("browser"), testing::Not(testing::Contains(path)));
}

TEST_F(SearchModelTest, picksInOneRunChangeTheOrderOfTheNext) {
    model.families.calcHistory = [](std::string_view, ListMode) { return Rows(); };
    const auto calendar = services.install("x1", "Calendar");
    const auto calculator = services.install("x2", "Calculator");
    services.startCatalog();
    prefs.disableKeyword(BuiltinKeyword::agenda); // another "Calendar"
    EXPECT_THAT(titles("cal"), ElementsAre("Calendar", "Calculator", "Calculator history"));
    model.select(1);
    model.runSelected();
    EXPECT_EQ(titles("cal").front(), "Calculator");    // one pick lifts it a whole tier
    EXPECT_EQ(titles("ca").front(), "Calculator");     // and a beginning of the query too
    EXPECT_EQ(titles("calendar").front(), "Calendar"); // but no exact name is buried
    services.platform.time.settle();

    FakeServices next;
    next.install("x1", "Calendar");
    next.install("x2", "Calculator");
    next.platform.files.file(
        "/home/u/.local/share/tessarine/usage.json",
        services.platform.files.read("/home/u/.local/share/tessarine/usage.json", 1 << 20).value());
    UsageStore again(
        next.platform.queue,
        next.diagnostics,
        {.own = next.usageFile("usage.json"), .synced = next.usageFile("synced-usage.json")},
        [] { return true; },
        [](std::string_view) { return false; });
    again.load();
    SearchModel nextModel({.queue = next.platform.queue,
                           .diagnostics = next.diagnostics,
                           .catalog = next.catalog,
                           .prefs = next.prefs,
                           .usage = again});
    next.startCatalog();
    nextModel.setQuery("cal");
    EXPECT_EQ(nextModel.rows().front().title, "Calculator");
}

TEST_F(SearchModelTest, tiersOrderTheRowsOfAllSources) {
    services.install("x1", "Sample");
    services.startCatalog();
    model.families.commands = [] {
        static const std::vector<CommandSpec> commands{
            {.id = "s", .name = "Something", .keyword = "samp", .kind = CommandKind::script}};
        return std::span<const CommandSpec>(commands);
    };
    model.families.files = [](std::string_view) {
        return Rows{row("/sample.txt", RowKind::file, "files", 8490)};
    };
    model.families.answers = [](std::string_view) {
        return AnswerRows{.currencyFan = {row("fan", RowKind::calc, "answers", 10000)}};
    };
    model.families.tabs = [](std::string_view, ListMode) {
        return Rows{row("tab", RowKind::web, "web", 9500)};
    };
    EXPECT_THAT(
        ids("samp"),
        ElementsAre("fan", "cmd:s", "/usr/share/applications/x1.desktop", "/sample.txt", "tab"));
    EXPECT_EQ(model.rows()[1].score, 9001); // a command's own word, above an exact name
    prefs.resultOrder.set({"files", "apps"});
    EXPECT_THAT(
        ids("samp"),
        ElementsAre("fan", "cmd:s", "/sample.txt", "/usr/share/applications/x1.desktop", "tab"));
    prefs.favorites.set({"tab", "/sample.txt"});
    EXPECT_THAT(
        ids("samp"),
        ElementsAre("tab", "/sample.txt", "fan", "cmd:s", "/usr/share/applications/x1.desktop"));
}

TEST_F(SearchModelTest, modesAndKeywordsHaveTheListToThemselves) {
    services.install("x1", "Terminal");
    services.startCatalog();
    const auto saying = [](const std::string& what) {
        return [what](std::string_view query) {
            return Rows{row(what + ":" + std::string(query), RowKind::command, "apps", 1)};
        };
    };
    model.families.clearClipboard = saying("clear");
    model.families.agenda = saying("agenda");
    model.families.calcHistory = [&](std::string_view query, ListMode mode) {
        return mode == ListMode::keyword ? saying("calc")(query) : Rows{};
    };
    model.families.tabs = [](std::string_view query, ListMode mode) {
        return mode == ListMode::keyword
                   ? Rows{row("tabs:" + std::string(query), RowKind::web, "tabs", 1)}
                   : Rows{};
    };
    int agendaLoads = 0;
    model.families.loadAgenda = [&] { ++agendaLoads; };
    EXPECT_THAT(ids("t  term "), ElementsAre("tabs:term"));
    EXPECT_THAT(ids("clear all"), ElementsAre("clear:all"));
    EXPECT_THAT(ids("next"), ElementsAre("agenda:"));
    EXPECT_EQ(agendaLoads, 1);
    EXPECT_THAT(ids("calc 1"), ElementsAre("calc:1"));
    model.families.snippets = saying("snip");
    EXPECT_THAT(ids("snip x"), ElementsAre("snip:x"));
    prefs.disableKeyword(BuiltinKeyword::tabs);
    EXPECT_THAT(titles("t"), testing::Contains("Terminal"));
    // A family may claim the list; one that doesn't joins it.
    model.families.slack = [](std::string_view query) {
        return TakeOverRows{.rows = {row("chat", RowKind::web, "people", 1)},
                            .takeover = query == "slack"};
    };
    EXPECT_THAT(ids("slack"), ElementsAre("chat"));
    EXPECT_THAT(ids("termi"), testing::IsSupersetOf({"chat"}));
}

TEST_F(SearchModelTest, theClipboardKeywordSwitchesInPlace) {
    model.families.clipboard = [](std::string_view query, const auto& filter) {
        return Rows{row(std::string(query) + "/" + filter.value_or("all"), RowKind::calc, "x", 1)};
    };
    model.families.resolveFilter = [](std::string_view argument) {
        return argument == "images" ? std::optional<std::string>("image") : std::nullopt;
    };
    model.families.partialFilters = [](std::string_view argument) {
        return argument == "co" ? std::vector<std::string>{"group:Coast", "group:Cork"}
                                : std::vector<std::string>{};
    };
    model.families.filterMenu = [] {
        return std::vector<FilterMenuItem>{
            {"__all", "Everything", 3}, {"image", "Images", 1}, {"group:Cork", "Cork", 2}};
    };
    EXPECT_THAT(ids("clip hello"), ElementsAre("hello/all"));
    EXPECT_TRUE(model.clipboardMode());
    EXPECT_EQ(model.query(), "hello");
    EXPECT_THAT(ids("clip"), ElementsAre("clip/all")); // inside the mode it is text like any
    model.reset();
    EXPECT_FALSE(model.clipboardMode());
    EXPECT_THAT(ids("clip images"), ElementsAre("/image"));
    EXPECT_EQ(model.query(), "");
    model.reset();
    EXPECT_THAT(ids("clip co"), ElementsAre("/all"));
    EXPECT_TRUE(model.filterMenuOpen());
    EXPECT_EQ(model.filterMenuSelection(), 2u) << "the first that has anything";
    model.families.filterMenu = nullptr;
    model.reset();
    EXPECT_THAT(ids("clip co"), ElementsAre("/all"));
    EXPECT_TRUE(model.filterMenuOpen()) << "the word is two groups' although neither has anything";
    EXPECT_EQ(model.filterMenuSelection(), 0u);
}

TEST_F(SearchModelTest, aClipboardQueryTypedLetterByLetterIsSearchedFor) {
    model.families.clipboard = [](std::string_view query, const auto&) {
        return Rows{row("clip:" + std::string(query), RowKind::command, "x", 1)};
    };
    model.families.resolveFilter = [](std::string_view argument) {
        return argument == "links" ? std::optional<std::string>("link") : std::nullopt;
    };
    // As the field does it: each letter is added to what the model left there.
    const auto type = [&](std::string_view letters) {
        for (const char letter : letters)
            model.setQuery(model.query() + letter);
    };
    type("clip");
    EXPECT_TRUE(model.clipboardMode());
    type(" ");
    EXPECT_EQ(model.query(), "") << "Escape leaves the mode in one step";
    type("links");
    EXPECT_EQ(model.query(), "links");
    EXPECT_EQ(model.clipFilter(), std::nullopt);
    EXPECT_EQ(model.rows().front().id, "clip:links");
    type(" x");
    EXPECT_EQ(model.query(), "links x") << "a blank between words stays";
}

TEST_F(SearchModelTest, aCommandEngagesAtItsBlank) {
    model.families.commands = [] {
        static const std::vector<CommandSpec> commands{
            {.id = "plain", .name = "Plain", .keyword = "g", .kind = CommandKind::system},
            {.id = "g",
             .name = "Google",
             .keyword = "G",
             .kind = CommandKind::search,
             .url = "https://x/?q={query}",
             .aliases = {{"goo"}}},
            {.id = "f", .name = "Find", .keyword = "f", .kind = CommandKind::files}};
        return std::span<const CommandSpec>(commands);
    };
    model.families.engaged = [](const CommandSpec& command, std::string_view argument) {
        return Rows{row(command.id + "/" + std::string(argument), RowKind::file, "files", 1)};
    };
    std::string ran;
    model.verbs.runCommand = [&](const CommandSpec& command, const std::string& argument) {
        ran = command.id + " " + argument;
    };
    EXPECT_THAT(ids("g "), ElementsAre("cmd:g")); // the first that takes an argument
    EXPECT_EQ(model.engaged()->id, "g");
    EXPECT_THAT(ids(" goo Big cats "), ElementsAre("cmd:g"));
    model.runSelected();
    EXPECT_EQ(ran, "g Big cats");
    EXPECT_EQ(model.rows()[0].credit, RowCreditSpec::forURLString("https://x"));
    EXPECT_THAT(ids("F pdf"), ElementsAre("f/pdf"));
    EXPECT_THAT(ids("g"), testing::Contains("cmd:plain"));
    EXPECT_EQ(model.engaged(), std::nullopt);
}

TEST_F(SearchModelTest, sourcesAreAskedOnlyWhenTheyMayAnswer) {
    std::string asked;
    bool answered = false;
    model.families.files = [&](std::string_view) {
        asked += "files ";
        return Rows{};
    };
    model.families.tabs = [&](std::string_view, ListMode) {
        asked += "tabs ";
        return Rows{};
    };
    model.families.people = [&](std::string_view, ListMode) {
        asked += "people ";
        return Rows{};
    };
    model.families.loadPeople = [&] { asked += "load "; };
    model.families.answers = [&](std::string_view) {
        return answered ? AnswerRows{.main = row("answer", RowKind::calc, "answers", 10000)}
                        : AnswerRows{};
    };
    const auto askedFor = [&](const char* query) {
        asked.clear();
        model.setQuery(query);
        return asked;
    };
    EXPECT_EQ(askedFor("é"), "");
    EXPECT_EQ(askedFor("éa"), "files tabs load people ");
    answered = true;
    EXPECT_EQ(askedFor("1+1"), "tabs ");
    EXPECT_EQ(model.rows().front().id, "answer");
}

TEST_F(SearchModelTest, theWebComesLastAndOnlyWhereFilesAreAll) {
    EXPECT_THAT(ids("zzz"), ElementsAre("web"));
    EXPECT_EQ(model.rows()[0].url, "https://www.google.com/search?q=zzz");
    model.families.files = [](std::string_view) {
        return Rows{row("/zzz", RowKind::file, "files", 8000)};
    };
    EXPECT_THAT(ids("zzz"), ElementsAre("/zzz", "web"));
    EXPECT_THAT(ids("a+b c"), ElementsAre("/zzz", "web"));
    EXPECT_EQ(model.rows()[1].url, "https://www.google.com/search?q=a%2Bb%20c");
    EXPECT_THAT(ids("example.com"), ElementsAre("url", "/zzz"));
    EXPECT_EQ(model.rows()[0].title, "Open https://example.com");
    EXPECT_THAT(ids("ftp://example.org"), ElementsAre("url", "/zzz"));
    EXPECT_EQ(model.rows()[0].title, "Open ftp://example.org");
}

TEST_F(SearchModelTest, aBrokenCommandsFileIsSaidFirstAndCostsNothing) {
    services.install("x1", "Terminal");
    services.startCatalog();
    model.families.commandsError = [] { return std::optional<std::string>("line 3"); };
    EXPECT_THAT(titles("term"), ElementsAre("Your commands file could not be read", "Terminal"));
    const auto& hint = model.rows()[0];
    EXPECT_EQ(hint.id, "commands-broken");
    EXPECT_EQ(hint.kind, RowKind::hint);
    EXPECT_EQ(hint.subtitle, "line 3");
}

TEST_F(SearchModelTest, emojiLeadAndDrivesReplaceTheirFiles) {
    model.families.emoji = [](std::string_view) {
        return Rows(20, row("emoji", RowKind::calc, "answers", 10000));
    };
    EXPECT_EQ(ids(":sm").size(), 12u);
    auto file = row("/media/usb", RowKind::file, "files", 8000);
    file.url = "file:///media/usb";
    auto drive = row("drive:usb", RowKind::file, "files", 8000);
    drive.url = file.url;
    model.families.files = [file](std::string_view) { return Rows{file}; };
    model.families.drives = [drive](std::string_view) { return Rows{drive}; };
    EXPECT_THAT(ids("usb"), ElementsAre("drive:usb", "web"));
}

TEST_F(SearchModelTest, anEmptyFieldShowsWhatTheUserChose) {
    const auto a = services.install("a", "Alpha");
    services.install("b", "Beta");
    const auto c = services.install("c", "Gamma");
    services.startCatalog();
    model.families.recentApps = [&] { return std::vector<CatalogApp>{services.catalog.apps()[1]}; };
    model.families.commands = [] {
        static const std::vector<CommandSpec> commands{
            {.id = "x", .name = "X", .kind = CommandKind::script}};
        return std::span<const CommandSpec>(commands);
    };
    EXPECT_THAT(titles("  "), IsEmpty());
    prefs.emptyMode.set(EmptyMode::recents);
    EXPECT_THAT(titles(""), ElementsAre("Beta"));
    EXPECT_EQ(model.rows()[0].subtitle, "running");
    prefs.emptyMode.set(EmptyMode::mostUsed);
    services.usage.record("cmd:x");
    services.usage.record("gone");
    services.usage.record(c);
    services.usage.record(c);
    EXPECT_THAT(titles(""), ElementsAre("Gamma", "X", "Alpha", "Beta"));
    EXPECT_EQ(model.rows()[0].subtitle, "most used");
    EXPECT_EQ(model.rows()[2].subtitle, "");
    prefs.hiddenApps.set({a, c});
    EXPECT_THAT(titles(""), ElementsAre("X", "Beta"));
}

TEST_F(SearchModelTest, theListIsCutAfterItIsOrdered) {
    for (int i = 0; i < 70; ++i)
        services.install("app" + std::to_string(i), "App " + std::to_string(i));
    services.install("last", "App");
    services.startCatalog();
    const auto found = titles("app");
    EXPECT_EQ(found.size(), SearchModel::maximumRows);
    EXPECT_EQ(found.front(), "App");
    model.select(59);
    titles("app 69");
    EXPECT_EQ(model.selection(), 0u); // another text begins at the top
}

TEST_F(SearchModelTest, aBuilderThatCallsBackIsDropped) {
    int calls = 0;
    model.families.files = [&](std::string_view) {
        ++calls;
        model.recompute();
        model.setQuery("other");
        return Rows{};
    };
    model.setQuery("text");
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(services.log(), HasSubstr(" recompute re-entered; dropped\n"));
    model.families.files = [](std::string_view) -> Rows { throw std::runtime_error("broken"); };
    EXPECT_THROW(model.setQuery("text"), std::runtime_error);
    model.families.files = nullptr;
    // An early one takes away the very text that the run is about.
    model.families.slack = [&](std::string_view) {
        model.setQuery("q");
        return TakeOverRows{};
    };
    model.setQuery("zzzz");
    model.families.slack = nullptr;
    EXPECT_THAT(ids("zzzz"), ElementsAre("web")); // the guard is down again
}

TEST_F(SearchModelTest, aDefinitionJoinsTheEndUnlessTheUserTypedOn) {
    FakeDictionarySource dictionary{services.platform.queue};
    dictionary.definitions["apricot"] = "a fruit";
    dictionary.definitions["dog"] = "an animal";
    model.families.lookUp = [&](const std::string& word,
                                const std::function<void(std::string)>& found) {
        dictionary.define(word, [found](std::optional<std::string> text) {
            if (text)
                found(*text);
        });
    };
    int changes = 0;
    const auto subscription = model.onChange([&] { ++changes; });
    const auto settle = [&] { services.platform.time.advance(Seconds{1}); };
    model.setQuery("apricot");
    EXPECT_THAT(titles(), ElementsAre("Search the web for “apricot”"));
    settle();
    EXPECT_EQ(model.rows().back().id, "define");
    EXPECT_EQ(model.rows().back().subtitle, "a fruit");
    EXPECT_EQ(changes, 2);
    model.recompute();
    model.recompute();
    settle();
    EXPECT_EQ(model.rows().size(), 2u); // two look-ups of one word, one row

    model.setQuery("apricot");
    model.setQuery("apricots");
    settle();
    EXPECT_NE(model.rows().back().id, "define");
    dictionary.asked.clear();
    for (const auto* query : {"dog", "dog house", "define"})
        model.setQuery(query);
    EXPECT_THAT(dictionary.asked, ElementsAre("define")); // a word of its own, with no argument
    model.setQuery("define dog");
    settle();
    EXPECT_EQ(model.rows().back().subtitle, "an animal"); // asked for, however short
}

TEST_F(SearchModelTest, atRestIsAnEmptyFieldOnceBuilt) {
    EXPECT_FALSE(model.isAtRest());
    model.reset();
    EXPECT_TRUE(model.isAtRest());
    model.setQuery("a");
    EXPECT_FALSE(model.isAtRest());
    model.reset();
    model.enterClipboardMode();
    EXPECT_FALSE(model.isAtRest());
}

} // namespace
} // namespace tessarine
