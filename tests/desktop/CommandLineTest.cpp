#include "tests/desktop/Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <fstream>
#include <sstream>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using namespace std::chrono_literals;

class CommandLineTest : public testing::Test {
protected:
    void install(const std::string& id, const std::string& name, const std::string& more = "") {
        folder.write("/data/applications/" + id + ".desktop",
                     "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=true\n" + more);
    }

    std::vector<std::string> titles(const std::string& query) {
        const auto output = run({"--search", query}, environment);
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.error, "");
        std::vector<std::string> result;
        std::istringstream lines(output.out);
        for (std::string line; std::getline(lines, line);)
            result.push_back(nlohmann::json::parse(line).at("title"));
        return result;
    }

    TemporaryFolder folder;
    Program::Variables environment{{"HOME", folder.path("/home")},
                                   {"XDG_DATA_DIRS", folder.path("/data")},
                                   {"XDG_RUNTIME_DIR", folder.path("/runtime")}};
};

TEST_F(CommandLineTest, versionLeavesNoTrace) {
    const auto output = run({"--version"}, environment);
    EXPECT_EQ(output.status, 0);
    EXPECT_THAT(output.out, testing::MatchesRegex("Tessarine [0-9.]+ \\([0-9]+\\)\n"));
    EXPECT_EQ(output.error, "");
    EXPECT_THAT(folder.contents(), IsEmpty());
}

TEST_F(CommandLineTest, anUnknownOptionIsRefusedBeforeAnythingIsMade) {
    const auto output = run({"--frob"}, environment);
    EXPECT_EQ(output.status, 2);
    EXPECT_EQ(output.out, "");
    EXPECT_THAT(output.error, StartsWith("Tessarine: unknown option --frob\nknown options: --"));
    EXPECT_THAT(output.error, testing::EndsWith("\nsubcommands: startup\n"));
    EXPECT_THAT(folder.contents(), IsEmpty());
}

TEST_F(CommandLineTest, aModeThatCannotRunYetSaysWhatItLacks) {
    const auto output = run({"--selftest-keychain"}, environment);
    EXPECT_EQ(output.status, 2);
    EXPECT_THAT(output.out, StartsWith("selftest-keychain: NOT MEASURED, "));
    EXPECT_EQ(run({"startup"}, environment).status, 2);
}

TEST_F(CommandLineTest, searchKeepsItsOrderAmongHundreds) {
    install("fire", "Firewolf");
    install("campfire", "Campfire Stories");
    install("wall", "Wall of Fire");
    install("exact", "Fire");
    install("hidden", "Fire Drill", "NoDisplay=true\n");
    for (int i = 0; i < 400; ++i)
        install("filler" + std::to_string(i), "Filler Number " + std::to_string(i));
    EXPECT_THAT(titles("fire"), ElementsAre("Fire", "Firewolf", "Wall of Fire"));
    EXPECT_EQ(titles("filler").size(), 60u);
}

TEST_F(CommandLineTest, searchAnswersWhateverItsSurroundingsLack) {
    install("cafe", "Café 文字");

    const struct {
        Program::Variables variables;
        const char* reason;
    } cases[] = {
        {{{"HOME", ""}, {"XDG_RUNTIME_DIR", ""}}, "no home and no session"},
        {{{"HOME", "/proc/none"}}, "a home that can't be written"},
        {{{"LC_ALL", "xx_YY.nonsense"}}, "a locale that doesn't exist"},
        {{{"LC_ALL", "C"}}, "a locale that isn't UTF-8"},
        {{{"DISPLAY", ":987"}}, "a display that doesn't answer"},
        {{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/none"}}, "no session bus"},
    };

    for (const auto& [variables, reason] : cases) {
        SCOPED_TRACE(reason);
        const auto before = environment;
        for (const auto& [name, value] : variables)
            environment[name] = value;
        EXPECT_THAT(titles("cafe"), ElementsAre("Café 文字"));
        environment = before;
    }
}

TEST_F(CommandLineTest, searchTakesAnyBytes) {
    install("cafe", "Café");
    EXPECT_THAT(titles("caf\xff"), ElementsAre("Search the web for “caf\ufffd”"));
}

TEST_F(CommandLineTest, theCatalogProvesItsRule) {
    const auto output = run({"--selftest-app-catalog"}, environment);
    EXPECT_EQ(output.status, 0) << output.out;
    EXPECT_THAT(output.out,
                HasSubstr("decoy: the old rule drops the Parsec shape and the new one "
                          "lists it"));
    EXPECT_THAT(output.out, HasSubstr("live: "));
}

class ResidentTest : public CommandLineTest {
protected:
    ResidentTest() {
        folder.write("/runtime/.keep", "");
        environment["XDG_DATA_HOME"] = folder.path("/data");
    }

    /// Whether the log comes to hold the text; its lines are written a moment after they are given.
    bool logged(const std::string& text) const {
        return waitUntil(5s, [&] {
            std::ostringstream log;
            log << std::ifstream(folder.path("/data/tessarine/tessarine.log")).rdbuf();
            return log.str().find(text) != std::string::npos;
        });
    }

    /// 1000 for a program that still runs.
    static int statusOf(const std::optional<Program::Output>& output) {
        return output ? output->status : 1000;
    }

    static constexpr auto ready = "Tessarine is running";
};

TEST_F(ResidentTest, aSecondLaunchTakesOver) {
    Program first({}, environment);
    ASSERT_TRUE(first.waitForError(ready));
    Program second({}, environment);
    ASSERT_TRUE(second.waitForError(ready, 3s));
    // It has let go of its lock; the kernel may still be clearing it away.
    EXPECT_EQ(statusOf(first.finish(1s)), 0) << "it was asked, and ended in order";
    EXPECT_FALSE(second.finish(100ms));
    EXPECT_TRUE(logged(" single instance: 1 older copy quit\n"));
}

TEST_F(ResidentTest, aCopyThatHangsIsForced) {
    Program first({}, environment);
    ASSERT_TRUE(first.waitForError(ready));
    ::kill(first.pid(), SIGSTOP);
    Program second({}, environment);
    ASSERT_TRUE(second.waitForError(ready));
    EXPECT_EQ(statusOf(first.finish(1s)), -SIGKILL);
    EXPECT_TRUE(logged(" single instance: 1 copy did not quit in 2 s; forcing\n"));
    EXPECT_TRUE(logged(" single instance: forced quit succeeded; the chord is free\n"));
}

TEST_F(ResidentTest, withoutADisplayItRunsAndSaysWhatIsMissing) {
    const struct {
        const char* display;
        const char* missing;
    } cases[] = {
        {"", "there is no display"},
        {":987", "the X11 display does not answer"},
    };

    for (const auto& [display, missing] : cases) {
        SCOPED_TRACE(missing);
        environment["DISPLAY"] = display;
        Program resident({}, environment);
        EXPECT_TRUE(resident.waitForError(
            std::string("Tessarine is running, but its panel can't come up: ") + missing));
        EXPECT_TRUE(logged("; hotkey: no display; "));
        const auto show = run({"--selftest-show"}, environment);
        EXPECT_EQ(show.status, 2);
        EXPECT_EQ(show.out,
                  "selftest-show: NOT MEASURED, there is no display to show the panel on\n");
        EXPECT_FALSE(resident.finish(0ms)) << "it answers the bus all the same";
    }
}

TEST_F(ResidentTest, aOneShotModeLeavesTheResidentCopyAlone) {
    Program resident({}, environment);
    ASSERT_TRUE(resident.waitForError(ready));
    EXPECT_EQ(run({"--search", "x"}, environment).status, 0);
    EXPECT_FALSE(resident.finish(0ms));
}

} // namespace
} // namespace tessarine
