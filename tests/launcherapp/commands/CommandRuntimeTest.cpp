#include "launcherapp/commands/CommandRuntime.h"

#include "tests/launcherapp/commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::SizeIs;
using Activation = CommandRuntime::Activation;

TEST(CommandRuntime, anArgumentIsAValueInItsLinkAndNothingElse) {
    const struct {
        const char* reason;
        std::string url;
        std::string argument;
        std::string opened;
    } cases[] = {
        {"every reserved character is encoded",
         "https://s.example/?q={query}&l=en",
         "a b&c=d/e",
         "https://s.example/?q=a%20b%26c%3Dd%2Fe&l=en"},
        {"an empty one leaves nothing",
         "https://s.example/?q={query}",
         "",
         "https://s.example/?q="},
        {"in every place", "https://{query}.example/{query}", "x", "https://x.example/x"},
        {"one that is a placeholder itself",
         "https://s.example/{query}",
         "{query}",
         "https://s.example/%7Bquery%7D"},
        {"bytes that are no text",
         "https://s.example/{query}",
         "\xff\n",
         "https://s.example/%FF%0A"},
        {"white space around the link",
         " \nhttps://s.example/ü a\n",
         "",
         "https://s.example/%C3%BC%20a"},
        {"a scheme in capitals", "HTTPS://s.example/", "", "https://s.example/"},
    };

    for (const auto& [reason, url, argument, opened] : cases) {
        SCOPED_TRACE(reason);
        CommandFixture fixture;
        fixture.runtime.run({.id = "s", .kind = CommandKind::search, .url = url}, argument);
        fixture.settle();
        EXPECT_THAT(fixture.handed(), ElementsAre(Pair("org.x.Web", ElementsAre(opened))));
    }
}

TEST(CommandRuntime, nothingIsGuessedOfATarget) {
    const CommandFixture fixture;

    const struct {
        const char* text;
        std::optional<std::string> url;
    } cases[] = {
        {"example.org", std::nullopt},
        {"", std::nullopt},
        {"://x", std::nullopt},
        {"1a:b", std::nullopt},
        {"two words: x", std::nullopt},
        {"https://a\nb", std::nullopt},
        {"~other/x", std::nullopt},
        {"  https://a.example/50%25 \r\n", "https://a.example/50%25"},
        {"mailto:a@b.example", "mailto:a@b.example"},
        {"x-y+z.1:q", "x-y+z.1:q"},
        {"/tmp/a b#", "file:///tmp/a%20b%23"},
        {"~", "file:///home/u"},
        {" ~/x", "file:///home/u/x"},
    };

    for (const auto& [text, url] : cases)
        EXPECT_EQ(fixture.runtime.resolve(text), url) << text;
}

TEST(CommandRuntime, linksOfOneApplicationGoInOneGoAndOfTwoInTurn) {
    CommandFixture fixture;
    fixture.bus.silent = {"org.x.Web"}; // its Exec key is used after five seconds
    fixture.services.platform.processes.programs = {"org.x.Web"};
    fixture.runtime.run({.id = "o",
                         .kind = CommandKind::open,
                         .urls = {{"https://a.example",
                                   "https://b.example",
                                   "example.org",
                                   "chat:c",
                                   "https://d.example"}}},
                        "");
    fixture.settle();
    const auto first = Pair("org.x.Web", ElementsAre("https://a.example", "https://b.example"));
    EXPECT_THAT(fixture.handed(), ElementsAre(first));
    fixture.services.platform.time.advance(Seconds{6});
    EXPECT_THAT(fixture.handed(),
                ElementsAre(first,
                            Pair("org.x.Chat", ElementsAre("chat:c")),
                            Pair("org.x.Web", ElementsAre("https://d.example"))));
    fixture.services.platform.time.advance(Seconds{6});
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: \"example.org\" of o is no link\n"));
    EXPECT_THAT(fixture.services.log(), HasSubstr("open: 4 link(s) accepted in 10000 ms\n"));
}

TEST(CommandRuntime, aFailureIsLoggedAndStopsNoOther) {
    CommandFixture fixture;
    fixture.bus.answers["org.x.Web"] = "it is broken";
    fixture.runtime.open({"https://a.example",
                          "https://b.example",
                          "gopher://x",
                          "gopher://y",
                          "https://c.example",
                          "chat:c"},
                         Activation::foreground);
    const auto log = fixture.services.log();
    EXPECT_THAT(log, HasSubstr("open: Web could not start: "));
    EXPECT_THAT(log, HasSubstr("open: a gopher link failed: no application opens it\n"));
    EXPECT_THAT(log, HasSubstr("open: a https link failed: "));
    EXPECT_THAT(log, HasSubstr("open: 1 link(s) accepted in 0 ms\n"));
    EXPECT_THAT(log, Not(HasSubstr("held the caller")));
}

TEST(CommandRuntime, whoHoldsTheCallerIsTold) {
    CommandFixture fixture;
    fixture.bus.holds = Seconds{0.06};
    fixture.runtime.open({"https://a.example"}, Activation::foreground);
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: handing 1 link(s) to the desktop held the caller 60 ms\n"));
}

TEST(CommandRuntime, linksInTheBackgroundTakeNoFocus) {
    CommandFixture fixture;
    fixture.services.platform.time.advance(Seconds{1});
    fixture.runtime.open({"https://a.example"}, Activation::background);
    fixture.runtime.open({"https://a.example"}, Activation::foreground);
    fixture.settle();
    ASSERT_THAT(fixture.bus.requests, SizeIs(2));
    EXPECT_THAT(fixture.bus.requests[0].activationToken, EndsWith("_TIME0"));
    EXPECT_THAT(fixture.bus.requests[1].activationToken, EndsWith("_TIME1000"));
}

TEST(CommandRuntime, filesOpenByTheirTypeWithoutAWaitForTheDisk) {
    CommandFixture fixture;
    fixture.types.byPath = {{"/d/a.txt", {"text/x-log", "text/plain"}}, {"/d/x", {"a/b"}}};
    fixture.services.platform.work.apartDuration = Seconds{1};
    fixture.runtime.open({"file:///d/a.txt", "https://a.example", "file:///gone", "file:///d/x"},
                         Activation::foreground);
    fixture.settle();
    EXPECT_THAT(fixture.handed(), IsEmpty());
    fixture.services.platform.time.advance(Seconds{20});
    EXPECT_THAT(fixture.handed(),
                ElementsAre(Pair("org.x.Notes", ElementsAre("file:///d/a.txt")),
                            Pair("org.x.Web", ElementsAre("https://a.example"))));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: a file link failed: /gone is no longer there\n"));
    EXPECT_THAT(fixture.services.log(),
                HasSubstr("open: a file link failed: no application opens it\n"));

    fixture.bus.requests.clear();
    fixture.services.platform.work.apartDuration = Seconds{3600};
    fixture.runtime.open({"file:///d/a.txt", "https://a.example"}, Activation::foreground);
    fixture.services.platform.time.advance(CommandRuntime::diskPatience);
    EXPECT_THAT(fixture.handed(), ElementsAre(Pair("org.x.Web", ElementsAre("https://a.example"))));
    fixture.services.platform.time.advance(Seconds{3600});
    EXPECT_THAT(fixture.bus.requests, SizeIs(1)) << "it is too late for the file";
    EXPECT_THAT(fixture.services.log(), HasSubstr("the disk of /d/a.txt doesn't answer\n"));
}

TEST(CommandRuntime, aScriptGetsItsArgumentBesideItsText) {
    CommandFixture fixture;
    const std::string argument = "\"; rm -rf ~ #$(x)";
    fixture.runtime.run({.id = "s", .kind = CommandKind::script, .script = "echo \"$1\""},
                        argument);
    fixture.runtime.run(
        {.id = "z", .kind = CommandKind::script, .script = "x", .shell = "/bin/zsh"}, "");
    ASSERT_THAT(fixture.started(), SizeIs(2));
    EXPECT_THAT(fixture.started()[0]->spec.arguments,
                ElementsAre("/bin/bash", "-c", "echo \"$1\"", "launcher", argument));
    EXPECT_THAT(
        fixture.started()[0]->spec.environment,
        ElementsAre(Pair("LAUNCHER_QUERY", argument),
                    Pair("PATH",
                         "/usr/local/bin:/usr/bin:/bin:/usr/sbin:/sbin:/home/u/bin:/opt/x/bin:"
                         "/home/u/.local/bin")));
    EXPECT_EQ(fixture.started()[0]->spec.workingDirectory, "/home/u");
    EXPECT_EQ(fixture.started()[0]->reading.errors, OutputReading::Errors::merged);
    EXPECT_THAT(fixture.started()[1]->spec.arguments,
                ElementsAre("/bin/zsh", "-c", "x", "launcher", ""));
}

TEST(CommandRuntime, whatAScriptPrintedIsOneLineOfTheLog) {
    const std::string cut = std::string(CommandRuntime::loggedOutput - 1, 'a');

    const struct {
        const char* reason;
        ProcessEnd end;
        std::string line;
    } cases[] = {
        {"the end of a line is no news", {0, "done\n"}, "script s exit 0: done\n"},
        {"a failure", {3, "a\nb\r\n"}, "script s exit 3: a\\nb\n"},
        {"nothing", {137, ""}, "script s exit 137: \n"},
        {"a terminal's colours",
         {0, "\x1b[31mred\a\t."},
         "script s exit 0: \\x1b[31mred\\x07\\t.\n"},
        {"binary", {0, std::string("a\0\xff", 3)}, "script s exit 0: a\\x00\uFFFD\n"},
        {"other line ends, text turned round", {0, "a\u2028b\u202ec\u0085d"}, "exit 0: a\\nbcd\n"},
        {"very much", {0, cut + "üb"}, "exit 0: " + cut + "…\n"},
        {"more than was kept", {0, "a", true}, "exit 0: a…\n"},
    };

    for (const auto& [reason, end, line] : cases) {
        SCOPED_TRACE(reason);
        CommandFixture fixture;
        fixture.runtime.run({.id = "s", .kind = CommandKind::script, .script = "x"}, "");
        fixture.started().at(0)->end(end);
        EXPECT_THAT(fixture.services.log(), HasSubstr(line));
    }

    CommandFixture fixture;
    fixture.services.platform.programs.missing = {"/bin/bash"};
    fixture.runtime.run({.id = "s", .kind = CommandKind::script, .script = "x"}, "");
    EXPECT_THAT(fixture.services.log(), HasSubstr("script s could not start: /bin/bash "));
}

TEST(CommandRuntime, anApplicationIsNamedInThreeWays) {
    const struct {
        const char* reason;
        std::string path;
        std::string started; ///< by the bus, or as a process
        std::string problem;
    } cases[] = {
        {"its entry", "/usr/share/applications/org.x.Chat.desktop", "org.x.Chat", ""},
        {"an entry that another folder's hides", "/a/org.x.Chat.desktop", "org.x.Chat", ""},
        {"its id", "org.x.Chat", "org.x.Chat", ""},
        {"its id as a file's name", " org.x.Chat.desktop", "org.x.Chat", ""},
        {"a program of the user's", "~/tool", "/home/u/tool", ""},
        {"an entry that is not there",
         "~/x.desktop",
         "",
         "/home/u/x.desktop is no installed application"},
        {"a program that is not there", "~/no", "", "/home/u/no could not be started"},
        {"nothing", "", "", "it has no path"},
    };

    for (const auto& [reason, path, started, problem] : cases) {
        SCOPED_TRACE(reason);
        CommandFixture fixture;
        fixture.services.platform.processes.programs = {"/home/u/tool", "org.x.Chat"};
        fixture.runtime.run({.id = "a", .kind = CommandKind::app, .path = path}, "");
        fixture.settle();
        std::string ran;
        for (const auto& request : fixture.services.platform.bus.requests)
            ran += request.busName;
        for (const auto& spec : fixture.services.platform.processes.started)
            ran += fixture.services.platform.bus.requests.empty() ? spec.arguments[0] : "";
        EXPECT_EQ(ran, started);
        if (problem.empty())
            EXPECT_THAT(fixture.services.log(), Not(HasSubstr("failed")));
        else
            EXPECT_THAT(fixture.services.log(), HasSubstr("app command a failed: " + problem));
    }
}

TEST(CommandRuntime, otherKindsGoToTheirOwnServices) {
    CommandFixture fixture;
    fixture.runtime.run({.id = "j", .kind = CommandKind::jump}, "x"); // nobody is wired yet
    std::vector<std::string> done;
    fixture.runtime.system = [&](SystemAction action) {
        done.emplace_back(SystemActions::name(action));
    };
    fixture.runtime.jump = [&](const CommandSpec& command, const std::string& argument) {
        done.push_back(command.id + " " + argument);
    };
    fixture.runtime.run({.kind = CommandKind::system, .action = SystemAction::eject}, "x");
    fixture.runtime.run({.id = "j", .kind = CommandKind::jump}, "x");
    fixture.runtime.run({.kind = CommandKind::files}, "x");
    fixture.runtime.run({.kind = CommandKind::list, .script = "x"}, "x");
    fixture.runtime.reveal({"file:///d/a%20b", "https://a.example"});
    fixture.settle();
    EXPECT_THAT(done, ElementsAre("eject", "j x"));
    EXPECT_THAT(fixture.started(), IsEmpty());
    EXPECT_THAT(fixture.manager.revealed, ElementsAre("/d/a b"));
}

} // namespace
} // namespace tessarine
