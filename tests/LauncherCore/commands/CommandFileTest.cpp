#include "LauncherCore/commands/CommandFile.h"

#include "LauncherCore/commands/AliasFile.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tessarine {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Json = nlohmann::json;

LenientCommandFile read(const std::string& commands) {
    return CommandFile::decodeLenient(R"({"version": 1, "commands": [)" + commands + "]}");
}

constexpr auto good =
    R"({"id": "a", "name": "A", "kind": "open", "urls": ["https://a.example/b"]})";

CommandSpec whole() {
    return {.id = "x",
            .name = "X – ü",
            .keyword = "x",
            .kind = CommandKind::jump,
            .urls = {{"https://a.example/b", ""}},
            .script = "echo \"$1\"\n",
            .shell = "/bin/sh",
            .path = "~/x",
            .url = "https://a.example/?q={query}",
            .action = SystemAction::lockScreen,
            .extensions = {{}},
            .foldersOnly = false,
            .hotkey = "",
            .aliases = {{"y"}},
            .icon = "link",
            .onSelect = "open \"$1\"",
            .notes = "none",
            .press = {{"OK"}},
            .activate = true,
            .source = "pack"};
}

TEST(CommandFile, everyFieldSurvivesBeingWrittenAndRead) {
    const CommandFile file{.version = 3,
                           .commands = {whole(), {.id = "bare", .name = "Bare", .kind = {}}}};
    const auto text = file.encoded();
    EXPECT_EQ(CommandFile::decodeLenient(text).file, file);
    EXPECT_THAT(text, AllOf(HasSubstr("\n  \"commands\": ["), HasSubstr("https://a.example/b")));
    EXPECT_THAT(Json::parse(text)["commands"][1], SizeIs(3)) << "absent fields are left out";
}

TEST(CommandFile, theFileHasTheKeysThatPeopleWrite) {
    constexpr auto written = R"({
  "commands": [
    {
      "action": "lockScreen",
      "activate": true,
      "aliases": [
        "y"
      ],
      "extensions": [],
      "foldersOnly": false,
      "hotkey": "",
      "icon": "link",
      "id": "x",
      "keyword": "x",
      "kind": "jump",
      "name": "X – ü",
      "notes": "none",
      "onSelect": "open \"$1\"",
      "path": "~/x",
      "press": [
        "OK"
      ],
      "script": "echo \"$1\"\n",
      "shell": "/bin/sh",
      "source": "pack",
      "url": "https://a.example/?q={query}",
      "urls": [
        "https://a.example/b",
        ""
      ]
    }
  ],
  "version": 1
}
)";
    EXPECT_EQ((CommandFile{.commands = {whole()}}.encoded()), written);
}

TEST(CommandFile, whatTakesAnArgumentAndWhatItIsDrawnWith) {
    const struct {
        CommandSpec command;
        bool takesArgument;
        const char* symbol;
    } cases[] = {
        {{.kind = CommandKind::search}, true, "magnifyingglass"},
        {{.kind = CommandKind::files}, true, "doc"},
        {{.kind = CommandKind::files, .foldersOnly = true}, true, "folder"},
        {{.kind = CommandKind::list}, true, "list.bullet"},
        {{.kind = CommandKind::app}, false, "app"},
        {{.kind = CommandKind::system}, false, "gearshape"},
        {{.kind = CommandKind::script, .script = "echo $1"}, true, "terminal"},
        {{.kind = CommandKind::script, .script = "date", .icon = ""}, false, "terminal"},
        {{.kind = CommandKind::open, .urls = {{"a", "b{query}"}}}, true, "link"},
        {{.kind = CommandKind::open, .urls = {{"a"}}, .icon = "star"}, false, "star"},
        {{.kind = CommandKind::jump, .url = "x:{query}"}, true, "arrow.up.forward.app"},
        {{.kind = CommandKind::jump, .url = "x:"}, false, "arrow.up.forward.app"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.symbol);
        EXPECT_EQ(each.command.takesArgument(), each.takesArgument);
        EXPECT_EQ(each.command.defaultSymbol(), each.symbol);
    }
}

TEST(CommandFile, aMistakeCostsItsOwnCommandOnly) {
    const struct {
        const char* entry;
        const char* reason;
    } cases[] = {
        {R"({"id": "b", "name": "B", "kind": "teleport"})", "a kind of a newer version"},
        {R"({"id": "b", "name": "B", "kind": "system", "action": "fly"})", "an unknown action"},
        {R"({"name": "B", "kind": "open"})", "no id"},
        {R"({"id": null, "name": "B", "kind": "open"})", "null is absent"},
        {R"({"id": "b", "kind": "open"})", "no name"},
        {R"({"id": "b", "name": "B"})", "no kind"},
        {R"({"id": 7, "name": "B", "kind": "open"})", "an id that is a number"},
        {R"({"id": "b", "name": "B", "kind": "open", "urls": "https://b.example"})", "no list"},
        {R"({"id": "b", "name": "B", "kind": "open", "urls": ["a", null]})", "null in a list"},
        {R"({"id": "b", "name": "B", "kind": "files", "foldersOnly": 1})", "1 is no boolean"},
        {R"([1, 2])", "a list"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        const auto result = read(std::string(each.entry) + "," + good);
        EXPECT_THAT(result.file.commands, SizeIs(1));
        ASSERT_THAT(result.unreadable, SizeIs(1));
        EXPECT_EQ(Json::parse(result.unreadable.front()), Json::parse(each.entry));
    }
}

TEST(CommandFile, whatIsNoCommandAtAllVanishesAndNullCountsAsAbsent) {
    const auto result = read(R"(7, "text", null, true, {"id": "b", "name": "B", "kind": "files",
                                "keyword": null, "later": {"deep": [1]}})");
    EXPECT_THAT(result.unreadable, IsEmpty());
    EXPECT_THAT(result.file.commands,
                ElementsAre(CommandSpec{.id = "b", .name = "B", .kind = CommandKind::files}));
}

TEST(CommandFile, commandsOfANewerVersionGoThroughASaveUnchangedAndLast) {
    constexpr auto newer =
        R"({"beam":{"to":"a/b","x":[1,2.5,"ü"]},"id":"n","kind":"teleport","name":"N"})";
    const auto first = read(std::string(newer) + "," + good);
    EXPECT_THAT(first.unreadable, ElementsAre(newer));
    const auto saved = first.file.encoded(first.unreadable);
    const auto second = CommandFile::decodeLenient(saved);
    EXPECT_EQ(second.file, first.file);
    EXPECT_EQ(second.unreadable, first.unreadable);
    EXPECT_EQ(second.file.encoded(second.unreadable), saved);
    EXPECT_EQ(Json::parse(saved)["commands"][1]["id"], "n");
}

TEST(CommandFile, theVersionIsAWholeNumberOrOne) {
    const struct {
        const char* written;
        std::int64_t version;
    } cases[] = {{"4", 4},
                 {"4.0", 4},
                 {"-2", -2},
                 {"4.5", 1},
                 {"\"4\"", 1},
                 {"null", 1},
                 {"18446744073709551615", 1},
                 {"1e300", 1}};

    for (const auto& each : cases) {
        const auto text = std::string(R"({"commands": [], "version": )") + each.written + "}";
        EXPECT_EQ(CommandFile::decodeLenient(text).file.version, each.version) << each.written;
    }
    EXPECT_EQ(CommandFile::decodeLenient(R"({"commands": []})").file.version, 1);
}

TEST(CommandFile, aTextThatIsNoCommandsFileIsRefusedInWords) {
    const struct {
        std::string text;
        const char* word;
    } cases[] = {
        {"", "unexpected end of input"},
        {"{", "line 1"},
        {"{\"commands\": [],}", "unexpected"},
        {"\xff\xfe", "line 1"},
        {"[]", "object"},
        {R"({"version": 1})", "\"commands\""},
        {R"({"version": 1, "commands": null})", "\"commands\""},
        {R"({"version": 1, "commands": {}})", "\"commands\""},
        {std::string(100'000, '[') + std::string(100'000, ']'), "nested"},
        {"{\"commands\": [\"\xff\"]}", "UTF-8"},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.text.substr(0, 40));
        try {
            CommandFile::decodeLenient(each.text);
            ADD_FAILURE() << "nothing thrown";
        } catch (const CommandFileError& error) {
            EXPECT_THAT(error.what(),
                        AllOf(HasSubstr(each.word), testing::Not(HasSubstr("json."))));
        }
    }
}

TEST(CommandFile, theProblemsOfACommandAreToldInWords) {
    const auto actions = "eject, lockScreen, sleep, ";

    const struct {
        CommandSpec command;
        std::vector<std::string> problems;
    } cases[] = {
        {{.id = " \n", .name = "\t", .kind = CommandKind::files},
         {"a command needs an id", " \n: needs a name"}},
        {{.id = "k",
          .name = "K",
          .keyword = "a b",
          .kind = CommandKind::files,
          .hotkey = "cmd+",
          .aliases = {{"ok", "c d"}}},
         {R"(k: keyword "a b" contains a space, so it can never be typed as a keyword)",
          R"(k: keyword "c d" contains a space, so it can never be typed as a keyword)",
          R"(k: hotkey "cmd+" is not a chord I understand (try cmd+shift+c))"}},
        {{.id = "k", .name = "K", .kind = CommandKind::files, .hotkey = "c"},
         {R"(k: hotkey "c" needs a modifier (cmd, alt, ctrl or shift))"}},
        {{.id = "k", .name = "K", .keyword = "", .kind = CommandKind::files, .hotkey = ""}, {}},
        {{.id = "o", .name = "O", .kind = CommandKind::open, .urls = {{}}},
         {"o: kind open needs at least one url"}},
        {{.id = "s", .name = "S", .kind = CommandKind::script, .script = ""},
         {"s: kind script needs a script"}},
        {{.id = "a", .name = "A", .kind = CommandKind::app}, {"a: kind app needs a path"}},
        {{.id = "g", .name = "G", .kind = CommandKind::search, .url = "https://g.example"},
         {"g: kind search needs a url containing {query}"}},
        {{.id = "l", .name = "L", .kind = CommandKind::list},
         {"l: kind list needs a script that prints JSON rows"}},
        {{.id = "j", .name = "J", .kind = CommandKind::jump, .press = {{"OK", ""}}},
         {"j: kind jump needs a url (the deep link) or a path (the app), or both",
          "j: kind jump has an empty name in press"}},
    };

    for (const auto& each : cases)
        EXPECT_EQ(each.command.problems(), each.problems);
    const CommandSpec nothingToDo{.id = "y", .name = "Y", .kind = CommandKind::system};
    EXPECT_THAT(
        nothingToDo.problems(),
        ElementsAre(AllOf(HasSubstr(std::string("y: kind system needs an action: ") + actions),
                          testing::EndsWith("timeHomeClocks, fixWispr"))));
}

TEST(CommandFile, whatTwoCommandsBothClaimIsToldAfterTheirOwnProblems) {
    const auto command = [](std::string id, std::string keyword, std::string hotkey) {
        return CommandSpec{.id = std::move(id),
                           .name = "N",
                           .keyword = std::move(keyword),
                           .kind = CommandKind::files,
                           .hotkey = std::move(hotkey)};
    };
    const CommandFile file{.commands = {command("a", "G", "cmd+c"),
                                        command("b", "g", "⌘C"),
                                        command("b", "", "cmd+"),
                                        command("c", "", "cmd+")}};
    EXPECT_THAT(file.problems(),
                ElementsAre(HasSubstr("b: hotkey"),
                            HasSubstr("c: hotkey"),
                            "duplicate keyword: g",
                            "duplicate hotkey: ⌘C",
                            "duplicate id: b"));
}

TEST(CommandFile, theStarterFileIsWithoutProblemsAndReadsBack) {
    const auto starter = CommandFile::starter();
    EXPECT_THAT(starter.commands, SizeIs(10));
    EXPECT_THAT(starter.problems(), IsEmpty());
    EXPECT_EQ(CommandFile::decodeLenient(starter.encoded()).file, starter);
}

TEST(AliasFile, moreWordsAreReadAndAMistakeIsTold) {
    const auto file = AliasFile::decoded(
        R"({"version": 2, "chromeProfiles": {"Profile 1": ["work", "w"]}, "slack": {"U1": ["boss"]}})");
    EXPECT_EQ(file.version, 2);
    EXPECT_EQ(file.chromeProfiles.at("Profile 1"), (std::vector<std::string>{"work", "w"}));
    EXPECT_EQ(file.slack.at("U1"), std::vector<std::string>{"boss"});
    EXPECT_EQ(AliasFile::decoded("{}"), AliasFile());
    for (const auto* broken : {"", "[]", R"({"slack": []})", R"({"slack": {"U1": [1]}})"})
        EXPECT_THROW(AliasFile::decoded(broken), CommandFileError) << broken;
}

TEST(SystemActions, everyActionHasItsNameAndALineThatTellsWhatItDoes) {
    for (const auto action : allSystemActions) {
        EXPECT_EQ(SystemActions::named(SystemActions::name(action)), action);
        EXPECT_EQ(SystemActions::guidanceProblem(action), std::nullopt)
            << SystemActions::name(action);
    }
    EXPECT_EQ(SystemActions::named("Eject"), std::nullopt);
    EXPECT_EQ(SystemActions::guidanceProblem("  "), "empty");
    EXPECT_TRUE(SystemActions::guidanceProblem("system"));
    EXPECT_EQ(SystemActions::guidanceProblem("Ejects every drive"),
              "too short to explain anything: Ejects every drive");
    EXPECT_TRUE(SystemActions::guidanceProblem("Ejects every drive — at once, now"));
}

} // namespace
} // namespace tessarine
