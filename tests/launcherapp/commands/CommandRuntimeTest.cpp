#include "launcherapp/commands/CommandRuntime.h"

#include "tests/launcherapp/commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::Pair;
using testing::SizeIs;

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

TEST(CommandRuntime, aScriptGetsItsArgumentBesideItsText) {
    CommandFixture fixture;
    fixture.services.platform.tokens.gives = false;
    const std::string argument = "\"; rm -rf ~ #$(x)";
    fixture.runtime.run({.id = "s", .kind = CommandKind::script, .script = "echo \"$1\""},
                        argument);
    fixture.runtime.run(
        {.id = "z", .kind = CommandKind::script, .script = "x", .shell = "/bin/zsh"}, "");
    fixture.runtime.run({.id = "e", .kind = CommandKind::script, .script = "x", .shell = ""}, "");
    fixture.runtime.run({.id = "none", .kind = CommandKind::script, .script = ""}, "");
    ASSERT_THAT(fixture.started(), SizeIs(3));
    EXPECT_EQ(fixture.started()[2]->spec.arguments.front(), "/bin/bash");
    EXPECT_THAT(fixture.services.log(), HasSubstr("script none could not start: it has no text"));
    EXPECT_THAT(fixture.started()[0]->spec.arguments,
                ElementsAre("/bin/bash", "-c", "echo \"$1\"", "launcher", argument));
    EXPECT_THAT(
        fixture.started()[0]->spec.environment,
        ElementsAre(Pair("LAUNCHER_QUERY", argument),
                    Pair("PATH",
                         "/home/u/bin:/usr/bin:/opt/x/bin:/usr/local/bin:/bin:/usr/sbin:/sbin:"
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

TEST(CommandRuntime, whatTheUserStartsMayComeToTheFront) {
    CommandFixture fixture;
    auto& platform = fixture.services.platform;
    platform.processes.programs = {"/home/u/tool"};
    const auto hasToken = [](const char* token) {
        return IsSupersetOf({Pair(std::string("DESKTOP_STARTUP_ID"), std::string(token)),
                             Pair(std::string("XDG_ACTIVATION_TOKEN"), std::string(token))});
    };
    fixture.runtime.run({.id = "a", .kind = CommandKind::app, .path = "~/tool"}, "");
    fixture.runtime.run({.id = "s", .kind = CommandKind::script, .script = "x"}, "");
    fixture.runtime.run({.id = "w", .kind = CommandKind::search, .url = "https://a.example"}, "");
    fixture.settle();
    EXPECT_THAT(platform.processes.started.at(0).environment, hasToken("token-1"));
    EXPECT_THAT(fixture.started().at(0)->spec.environment, hasToken("token-2"));
    EXPECT_EQ(fixture.bus.requests.at(0).activationToken, "token-3");
    EXPECT_THAT(fixture.runtime.scriptProcess({.text = "x"}).environment, SizeIs(2))
        << "rows that a script makes while somebody types are no reason to come forward";
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
    EXPECT_THAT(fixture.services.log(), HasSubstr("reveal: https://a.example is no file\n"));
    EXPECT_THAT(done, ElementsAre("eject", "j x"));
    EXPECT_THAT(fixture.started(), IsEmpty());
    EXPECT_THAT(fixture.manager.revealed, ElementsAre("/d/a b"));
}

TEST(CommandRuntime, itIsSettledOnceItsApplicationsHaveStarted) {
    CommandFixture fixture;
    EXPECT_TRUE(fixture.runtime.isSettled());
    fixture.runtime.run({.id = "a", .kind = CommandKind::app, .path = "org.x.Chat"}, "");
    EXPECT_FALSE(fixture.runtime.isSettled());
    fixture.services.platform.time.advance(AppLauncher::busTimeout * 2);
    EXPECT_TRUE(fixture.runtime.isSettled());

    fixture.bus.silent = {"org.x.Web"};
    fixture.runtime.open({"https://a.example"}, CommandRuntime::Activation::foreground);
    fixture.services.platform.time.advance(AppLauncher::busTimeout / 2);
    EXPECT_FALSE(fixture.runtime.isSettled());
    fixture.services.platform.time.advance(AppLauncher::busTimeout);
    EXPECT_TRUE(fixture.runtime.isSettled()) << "it failed, and is not waited for";
}

} // namespace
} // namespace tessarine
